// Work that only our tree knows: placeholders, streams, moves, order while adding, heights, markup.
#include "bench/Workloads.h"
#include "host/base/Streams.h"
#include "host/graphics/Canvas.h"
#include "host/graphics/Graphics.h"
#include "htmldraw/HTMLDraw.h"
#include "quilltree/HeadlessHost.h"
#include "quilltree/QuillTree.h"

#include <QCoreApplication>

#include <random>

namespace quill::bench {
namespace {

std::string RandomText(std::mt19937& Random) { return "item " + std::to_string(Random()); }

void Settle() {
    for (int Turn = 0; Turn < 3; ++Turn) QCoreApplication::processEvents();
}

// Siblings at the top level, with three texts each.
void FillFlat(TFlyNodes& Items, int Count) {
    const TUpdateBracket Bracket(&Items);
    for (int i = 0; i < Count; ++i) {
        const TTexts Texts = TextsOf(i);
        const std::string_view Cells[] = {{}, Texts[1], Texts[2]};
        Items.AddChild(nullptr, {})->StoreTexts(Texts[0], Cells);
    }
}

// A tree in a window, without nodes.
struct TWindow {
    TWindow() {
        Tree.SetSmoothExpandCollapse(false);
        Tree.resize(TContender::Width, TContender::Height);
        Tree.GetItems()->Clear();
        Tree.show();
        Settle();
    }
    TQuillTree Tree;
};

// --- without a window -------------------------------------------------------------------------------------------------

TFigure OpenPlaceholders(TContender&, const TSize& Size) {
    std::unique_ptr<THeadlessHost> Host;
    return Median([&] { Host = std::make_unique<THeadlessHost>(); },
                  [&] { Host->GetItems()->AddPlaceholders(10 * Size.Nodes); }, 3);
}

TFigure PlaceholderMemory(TContender&, const TSize& Size) {
    THeadlessHost Host;
    const double Before = ResidentBytes();
    Host.GetItems()->AddPlaceholders(10 * Size.Nodes);
    return TFigure::Of((ResidentBytes() - Before) / (10.0 * Size.Nodes));
}

// One branch as deep as the tree has nodes: built, expanded, closed, opened, destroyed.
TFigure DeepChain(TContender&, const TSize& Size) {
    return Median([] {},
                  [&] {
                      THeadlessHost Host;
                      TFlyNode* Last = nullptr;
                      {
                          const TUpdateBracket Bracket(Host.GetItems());
                          for (int i = 0; i < Size.Nodes; ++i) Last = Host.GetItems()->AddChild(Last, "n");
                      }
                      Last->MakeVisible();
                      Host.GetItems()->GetFirstNode()->Collapse(true);
                      Host.GetItems()->GetFirstNode()->Expand(true);
                  },
                  3);
}

// The collection's own stream, written and read again, each node.
TFigure Stream(TContender&, const TSize& Size) {
    THeadlessHost Host;
    FillFlat(*Host.GetItems(), Size.Nodes);
    TMemoryStream Memory;
    const TStopwatch Watch;
    WriteCollectionToStream(Memory, Host.GetItems());
    Memory.SetPosition(0);
    ReadCollectionFromStream(Memory, Host.GetItems());
    Require(Host.GetItems()->GetCount() >= Size.Nodes, "not read");
    return Watch.Get().Times(1000.0 / Size.Nodes);
}

TFigure SaveFile(TContender&, const TSize& Size) {
    THeadlessHost Host;
    FillFlat(*Host.GetItems(), Size.Nodes);
    return Median([] {},
                  [&] {
                      TMemoryStream Memory;
                      Host.GetItems()->SaveNodesToStream(Memory, {tsnIncludeCells, tsnIncludeExpands});
                  },
                  7);
}

// Nodes that take their place by text among those that are there.
TFigure AddSorted(TContender&, const TSize& Size) {
    THeadlessHost Host;
    Host.SetSortType(stBoth);
    std::mt19937 Random(9);
    const int Before = Size.Nodes / 20;
    for (int i = 0; i < Before; ++i) Host.GetItems()->Add(nullptr, RandomText(Random));
    const int Count = 1000;
    const TStopwatch Watch;
    for (int i = 0; i < Count; ++i) Host.GetItems()->Add(nullptr, RandomText(Random));
    return Watch.Get().Times(1000.0 / Count);
}

// --- with a window ----------------------------------------------------------------------------------------------------

// A node goes to another place among its siblings; nothing is painted between.
TFigure MoveTo(TContender&, const TSize& Size) {
    TWindow Window;
    TFlyNodes& Items = *Window.Tree.GetItems();
    FillFlat(Items, Size.Nodes);
    Settle();
    std::mt19937 Random(3);
    const auto Any = [&] { return static_cast<int>(Random() % static_cast<unsigned>(Size.Nodes)); };
    return PerCall(
               [&](int) { Items.GetNodeFromIndex(Any())->MoveTo(Items.GetNodeFromIndex(Any()), naInsert); })
        .Times(1000);
}
// A branch of one node opens above a tree in which one row has a height of its own, so that all of them shift.
TFigure ExpandAboveHeights(TContender&, const TSize& Size) {
    TWindow Window;
    TFlyNodes& Items = *Window.Tree.GetItems();
    FillFlat(Items, Size.Nodes);
    Items.GetNodeFromIndex(Size.Nodes / 2)->SetHeight(40);
    TFlyNode* const First = Items.GetFirstNode();
    Items.AddChild(First, "child");
    Settle();
    return Median(
        [&] {
            First->Collapse(false);
            Settle();
        },
        [&] {
            First->Expand(false);
            Settle();
        },
        21);
}

// Rows as high as their wrapped texts need.
struct TWrapped : TWindow {
    explicit TWrapped(int Nodes) {
        Tree.SetWordWrap(true);
        Tree.SetFitToHeight(true);
        Tree.SetColCount(Columns);
        for (int Col = 0; Col < Columns; ++Col) Tree.SetColWidths(Col, TContender::ColumnWidths[Col] / 3);
        const TUpdateBracket Bracket(Tree.GetItems());
        for (int i = 0; i < Nodes; ++i) {
            std::string Text;
            for (int Word = 0; Word < 1 + i % 20; ++Word) Text += "word " + std::to_string(i) + ' ';
            Tree.GetItems()->AddChild(nullptr, Text);
        }
    }
};

// From filling the tree to the first picture.
TFigure WrapOpen(TContender&, const TSize& Size) {
    TWrapped Window(Size.Nodes);
    const auto Before = Window.Tree.GetPaintCount();
    const TStopwatch Watch;
    Settle();
    const TFigure Figure = Watch.Get();
    Require(Window.Tree.GetPaintCount() > Before, "nothing was painted");
    return Figure;
}

// The thumb of the scroll bar is dragged to rows that were never seen.
TFigure WrapThumb(TContender&, const TSize& Size) {
    TWrapped Window(Size.Nodes);
    Settle();
    std::mt19937 Random(4);
    const auto Before = Window.Tree.GetPaintCount();
    const TFigure Figure = Median([] {},
                                  [&] {
                                      const auto Row = Random() % static_cast<unsigned>(Size.Nodes);
                                      Window.Tree.SetTopRow(1 + static_cast<int>(Row));
                                      Settle();
                                  });
    Require(Window.Tree.GetPaintCount() > Before, "nothing was painted");
    return Figure;
}

// The texts of a visible row grow, so that all rows below it move.
TFigure WrapText(TContender&, const TSize& Size) {
    TWrapped Window(Size.Nodes);
    Window.Tree.SetTopRow(Size.Nodes / 2);
    Settle();
    TFlyNode* const Node = Window.Tree.GetNodeAtRow(Size.Nodes / 2 + 2);
    int Turn = 0;
    return Median([] {},
                  [&] {
                      Node->SetText(++Turn % 2 ? "short" : "a text that needs some more lines than one");
                      Settle();
                  });
}

std::string MarkupText(int Number) {
    return "Cell <B>number</B> " + std::to_string(Number) + " <COLOR=#C00000>in red";
}

// A page of cells whose texts are markup.
TFigure PaintMarkup(TContender&, const TSize&) {
    constexpr int Rows = 40;
    TWindow Window;
    TQuillTree& Tree = Window.Tree;
    Tree.SetColCount(Columns);
    for (int Col = 0; Col < Columns; ++Col) Tree.SetColWidths(Col, TContender::ColumnWidths[Col]);
    Tree.SetHTMLDrawing(true);
    for (int Row = 0; Row < Rows; ++Row) {
        TFlyNode* const Node = Tree.GetItems()->Add(nullptr, MarkupText(Row));
        for (int Col = 1; Col < Columns; ++Col) Node->SetCell(Col, MarkupText(Row * Columns + Col));
    }
    Settle();
    const auto Before = Tree.GetPaintCount();
    const TFigure Figure = Median([] {},
                                  [&] {
                                      Tree.Invalidate();
                                      Settle();
                                  });
    Require(Tree.GetPaintCount() > Before, "nothing was painted");
    return Figure;
}

TFigure MeasureMarkup(TContender&, const TSize&) {
    std::vector<std::string> Texts;
    for (int i = 0; i < 2000; ++i) Texts.push_back(MarkupText(i));
    TBitmap Bitmap;
    Bitmap.SetSize(10, 10);
    TCanvas& Canvas = *Bitmap.GetCanvas();
    return PerCall([&](int i) {
               TRect Rect;
               DrawHTML(Rect, Canvas, Texts[static_cast<std::size_t>(i) % Texts.size()], false, true, 0, 0);
           })
        .Times(1000);
}

constexpr TWorkload All[] = {
    {"placeholders", "open ten times as many placeholders", "ms", 500, TKind::Bulk, OpenPlaceholders, false,
     true},
    {"placeholder-memory", "resident bytes per placeholder", "B", 40, TKind::Fixed, PlaceholderMemory, false,
     true},
    {"deep-chain", "a chain of all nodes: build, show, destroy", "ms", 3000, TKind::Bulk, DeepChain, false,
     true},
    {"stream", "write and read the own stream, each node", "us", 0, TKind::Action, Stream, false, true},
    {"save", "save nodes text", "ms", 0, TKind::Bulk, SaveFile, false, true},
    {"add-sorted", "add a node in order", "us", 30, TKind::Action, AddSorted, false, true},
    {"move-to", "move a node among its siblings", "us", 50, TKind::Action, MoveTo, false, true},
    {"heights", "expand above a row of its own height", "ms", 60, TKind::Bulk, ExpandAboveHeights, false,
     true},
    {"wrap-open", "show a tree with wrapped texts", "ms", 0, TKind::Action, WrapOpen, false, true},
    {"wrap-thumb", "scroll it to rows never seen", "ms", 0, TKind::Action, WrapThumb, false, true},
    {"wrap-text", "change a text in it", "ms", 0, TKind::Action, WrapText, false, true},
    {"markup", "full repaint of markup", "ms", 0, TKind::Fixed, PaintMarkup, false, true},
    {"markup-measure", "measure a short markup text", "us", 6, TKind::Fixed, MeasureMarkup, false, true},
};

} // namespace

std::span<const TWorkload> OwnWorkloads() { return All; }

} // namespace quill::bench
