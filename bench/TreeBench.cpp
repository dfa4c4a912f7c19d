// The tree control on screen: painting, expanding and adding, beside a QTreeView that shows the same data.
#include "bench/PeerModel.h"
#include "bench/Report.h"
#include "host/graphics/Canvas.h"
#include "host/windows/Application.h"
#include "htmldraw/HTMLDraw.h"
#include "quilltree/QuillTree.h"

#include <QApplication>
#include <QHeaderView>
#include <QPainter>
#include <QTreeView>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace {

using namespace quill;
using namespace quill::bench;

constexpr int Width = 1000;
constexpr int Height = 700;
constexpr int Tops = 100;
constexpr int Leaves = 100;

QImage IconImage() {
    QImage Image(16, 16, QImage::Format_ARGB32_Premultiplied);
    Image.fill(Qt::transparent);
    QPainter Painter(&Image);
    Painter.fillRect(2, 2, 12, 12, QColor(70, 120, 190));
    Painter.fillRect(4, 4, 8, 8, QColor(240, 240, 250));
    return Image;
}

void Settle() {
    for (int Turn = 0; Turn < 5; ++Turn) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

void SetTexts(TFlyNode* Node, int Level, int Top, int Group, int Row) {
    const std::string Text = TPeerModel::NodeText(Level, Top, Group, Row, 0);
    const std::string Value = TPeerModel::NodeText(Level, Top, Group, Row, 1);
    const std::string Kind = TPeerModel::NodeText(Level, Top, Group, Row, 2);
    const std::string_view Cells[] = {{}, Value, Kind};
    Node->StoreTexts(Text, Cells);
}

// The shape of all figures: 100 groups, in them Groups groups of 100 leaves, everything expanded.
void Fill(TCustomQuillTree& Tree, int Groups) {
    TFlyNodes& Items = *Tree.GetItems();
    Items.BeginUpdate();
    Items.Clear();
    for (int Top = 0; Top < Tops; ++Top) {
        TFlyNode* TopNode = Items.AddChild(nullptr, {});
        SetTexts(TopNode, 1, 0, 0, Top);
        for (int Group = 0; Group < Groups; ++Group) {
            TFlyNode* GroupNode = Items.AddChild(TopNode, {});
            SetTexts(GroupNode, 2, Top, 0, Group);
            for (int Leaf = 0; Leaf < Leaves; ++Leaf) {
                SetTexts(Items.AddChild(GroupNode, {}), 3, Top, Group, Leaf);
            }
            GroupNode->SetExpandedField(true);
        }
        TopNode->SetExpandedField(true);
    }
    Items.EndUpdate();
}

struct TOurTree {
    TOurTree(TCustomImageList& Images) {
        Tree.SetSmoothExpandCollapse(false);
        Tree.SetColCount(3);
        Tree.SetFixedRows(0);
        Tree.SetShowImages(true);
        Tree.SetImages(&Images);
        Tree.SetDefaultRowHeight(19);
        Tree.SetColWidths(0, 400);
        Tree.SetColWidths(1, 300);
        Tree.SetColWidths(2, 250);
        Tree.resize(Width, Height);
        Tree.show();
        Settle();
    }
    double FullPaint() {
        return Median(
            60, [this] { Settle(); },
            [this] {
                Tree.Invalidate();
                Tree.Flush();
                QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
            });
    }
    TQuillTree Tree;
};

double PeerPaint(QTreeView& View) {
    return Median(
        60, [] { Settle(); }, [&View] { View.viewport()->repaint(); });
}

void Show() { QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents); }

// Rows and pages scrolled as a user does, paint included.
void Scrolling(TOurTree& Ours) {
    TQuillTree& Tree = Ours.Tree;
    const double Full = Ours.FullPaint();
    const std::string Pitch = ", rows of " + std::to_string(Tree.GetDefaultRowHeight());
    const int Below = Tree.GetFixedRows() + 5000;
    const auto Key = [&](std::uint16_t Code) {
        Tree.KeyDown(Code, {});
        Show();
    };
    const auto Each = [&](const char* Name, double Allowed, auto Work) {
        const double Time = Median(
            60, [] { Settle(); },
            [&] {
                Work();
                Show();
            });
        Report("scroll " + std::string(Name) + Pitch, Time, "ms", "our full paint", Full, Allowed);
    };
    const auto GoTo = [&](int Row) {
        Tree.SetTopRow(Row);
        Tree.SetRow(Row + Tree.GetVisibleRowCount() - 1);
        Settle();
    };
    GoTo(Below);
    Each("a row by key", 0.4, [&] { Key(VK_DOWN); });
    Each("a row by the bar", 0.4, [&] { Tree.Perform(WM_VSCROLL, SB_LINEDOWN, 0); });
    Each("a row by the wheel", 0.4, [&] { Tree.DoMouseWheelDown({}, {10, 100}); });
    GoTo(Below);
    Each("a page by key", 1.5, [&] { Key(VK_NEXT); });
    Each("a page by the bar", 1.5, [&] { Tree.Perform(WM_VSCROLL, SB_PAGEDOWN, 0); });
}

// Warm: within ten thousand of the million rows. Anywhere, a look-up waits for memory (bench/ModelBench.cpp).
void LookUps(TQuillTree& Tree) {
    const int First = Tree.GetRowCount() / 2;
    constexpr unsigned Window = 10000;
    constexpr int Count = 1000000;
    std::mt19937 Random(5);
    std::vector<int> Order;
    for (int Index = 0; Index < Count; ++Index) Order.push_back(First + static_cast<int>(Random() % Window));
    std::vector<TFlyNode*> Nodes;
    for (const int Row : Order) Nodes.push_back(Tree.GetNodeAtRow(Row));
    std::size_t Sum = 0;
    const auto Each = [&](const char* Name, auto LookUp) {
        const TStopwatch Watch;
        for (std::size_t Index = 0; Index < Count; ++Index) Sum += LookUp(Index);
        Report(Name, Watch.Milliseconds() * 1000 / Count, "us", "1 us", 1, 0.5);
    };
    Each("row to node", [&](std::size_t Index) {
        return reinterpret_cast<std::uintptr_t>(Tree.GetNodeAtRow(Order[Index])) & 1;
    });
    Each("node to row", [&](std::size_t Index) { return static_cast<std::size_t>(Nodes[Index]->GetRow()); });
    Each("point to node", [&](std::size_t Index) {
        return reinterpret_cast<std::uintptr_t>(Tree.GetNodeAt(100, Order[Index] % (Height - 20))) & 1;
    });
    if (Sum == 1) std::puts("");
}

// A million rows by a click at the first and a click with Shift at the last, and a click that clears them.
void Selecting(TQuillTree& Tree) {
    const auto Click = [&](TFlyNode* Node, TShiftState Shift) {
        const TRect R = Tree.DisplayRect(Node, true);
        const TPoint At{R.Left + 5, (R.Top + R.Bottom) / 2};
        const TStopwatch Watch;
        Tree.MouseDown(mbLeft, Shift + TShiftState{ssLeft}, At.X, At.Y);
        Tree.MouseUp(mbLeft, Shift, At.X, At.Y);
        return Watch.Milliseconds();
    };
    std::vector<double> Select;
    std::vector<double> Clear;
    for (int Run = 0; Run < 5; ++Run) {
        Tree.SetTopRow(0);
        Settle();
        Click(Tree.GetNodeAtRow(0), {});
        Tree.SetTopRow(Tree.GetRowCount());
        Tree.SetTopRow(Tree.GetRowCount() - Tree.GetVisibleRowCount() - 1);
        Settle();
        TFlyNode* const Last = Tree.GetNodeAtRow(Tree.GetRowCount() - 3);
        Select.push_back(Click(Last, {ssShift}));
        if (Tree.GetItems()->RowList.GetSelectedCount() < Tree.GetRowCount() - 3)
            std::puts("# not all selected");
        Clear.push_back(Click(Last, {}));
    }
    std::sort(Select.begin(), Select.end());
    std::sort(Clear.begin(), Clear.end());
    Report("select a million rows by Shift and click", Select[2], "ms", "1 ms", 1, 40);
    Report("clear them by a click", Clear[2], "ms", "1 ms", 1, 40);
}

void PaintAndExpand(int Groups) {
    TImageList Images(nullptr, 16, 16);
    TBitmap Bitmap;
    Bitmap.SetImage(IconImage());
    Images.Add(Bitmap);

    QTreeView Peer;
    TPeerModel Model(Tops, Groups, Leaves, QIcon(QPixmap::fromImage(IconImage())));
    Peer.setUniformRowHeights(true);
    Peer.setHeaderHidden(true);
    Peer.setModel(&Model);
    Peer.setColumnWidth(0, 400);
    Peer.setColumnWidth(1, 300);
    Peer.resize(Width, Height);
    Peer.show();
    Peer.expand(Model.index(0, 0, {}));
    Peer.expand(Model.index(0, 0, Model.index(0, 0, {})));
    Settle();
    const double PeerFull = PeerPaint(Peer);
    Peer.hide();

    TOurTree Ours(Images);
    TQuillTree& Tree = Ours.Tree;
    Fill(Tree, Groups);
    Settle();
    const std::uint64_t Before = Tree.GetPaintCount();
    const double Full = Ours.FullPaint();
    if (Tree.GetPaintCount() < Before + 60) std::printf("# full paint: not every run painted\n");
    Report("full paint, texts seen", Full, "ms", "QTreeView", PeerFull, 0.5);

    // A node with 100 children near the top, so that the change is in view.
    TFlyNode* Node = Tree.GetItems()->GetFirstNode()->getFirstChild();
    const double Collapse = Median(
        40,
        [&] {
            Node->Expand(false);
            Settle();
        },
        [&] {
            Node->Collapse(false);
            Show();
        });
    const double Expand = Median(
        40,
        [&] {
            Node->Collapse(false);
            Settle();
        },
        [&] {
            Node->Expand(false);
            Show();
        });
    Report("expand 100 children in a million rows", Expand, "ms", "our full paint", Full, 2);
    Report("collapse 100 children in a million rows", Collapse, "ms", "our full paint", Full, 2);

    Node->Expand(false);
    Scrolling(Ours);
    Tree.SetDefaultRowHeight(24); // with its line an odd distance
    Scrolling(Ours);
    LookUps(Tree);
    Selecting(Tree);
}

// Moving one node inside a million siblings; the window is shown, and nothing is painted between.
void MoveAmongSiblings(int Count) {
    TImageList Images(nullptr, 16, 16);
    TOurTree Ours(Images);
    TFlyNodes& Items = *Ours.Tree.GetItems();
    Items.BeginUpdate();
    Items.Clear();
    for (int Index = 0; Index < Count; ++Index) Items.Add(nullptr, "A node among many");
    Items.EndUpdate();
    Settle();
    constexpr int Moves = 2000;
    std::mt19937 Random(3);
    const auto Any = [&] { return static_cast<int>(Random() % static_cast<unsigned>(Count)); };
    const auto Each = [&](const char* Name, auto Work) {
        const TStopwatch Watch;
        for (int Move = 0; Move < Moves; ++Move) Work();
        Report(Name, Watch.Milliseconds() * 1000 / Moves, "us", "1 us", 1, 50);
    };
    Each("move one of a million siblings, MoveTo",
         [&] { Items.GetNodeFromIndex(Any())->MoveTo(Items.GetNodeFromIndex(Any()), naInsert); });
    Each("move one of a million siblings, SetIndex", [&] { Items.GetNodeFromIndex(Any())->SetIndex(Any()); });
    Items.GetNodeFromIndex(Count / 2)->SetHeight(40);
    Settle();
    TFlyNode* First = Items.GetFirstNode();
    Items.AddChild(First, "child");
    const double Shift = Median(
        5, [&] { First->Collapse(false); }, [&] { First->Expand(false); });
    Report("expand above a million rows, one of its own height", Shift, "ms", "1 ms", 1, 60);
}

// A page of cells whose texts are markup beside the same page as plain text, and measuring such texts.
void Markup() {
    constexpr int Rows = 35;
    constexpr int Cols = 5;
    const auto CellText = [](int Row, int Col, bool Tags) {
        const std::string Number = std::to_string(Row * Cols + Col);
        return Tags ? "Cell <B>number</B> " + Number + " <COLOR=#C00000>in red"
                    : "Cell number " + Number + " in red";
    };
    TImageList Images(nullptr, 16, 16);
    const auto PaintOf = [&](bool Tags) {
        TOurTree Ours(Images);
        TQuillTree& Tree = Ours.Tree;
        TFlyNodes& Items = *Tree.GetItems();
        Tree.SetColCount(Cols);
        for (int Col = 0; Col < Cols; ++Col) Tree.SetColWidths(Col, 190);
        Tree.SetHTMLDrawing(Tags);
        Items.BeginUpdate();
        Items.Clear();
        for (int Row = 0; Row < Rows; ++Row) {
            TFlyNode* Node = Items.Add(nullptr, CellText(Row, 0, Tags));
            for (int Col = 1; Col < Cols; ++Col) Node->SetCell(Col, CellText(Row, Col, Tags));
        }
        Items.EndUpdate();
        Settle();
        return Ours.FullPaint();
    };
    Report("paint 35 x 5 cells of markup", PaintOf(true), "ms", "plain texts", PaintOf(false), 4);

    constexpr int Count = 2000;
    std::vector<std::string> Texts;
    for (int Index = 0; Index < Count; ++Index) Texts.push_back(CellText(Index, 1, true));
    TBitmap Bitmap;
    Bitmap.SetSize(10, 10);
    TCanvas& Canvas = *Bitmap.GetCanvas();
    const auto MeasureAll = [&] {
        const TStopwatch Watch;
        for (const std::string& Text : Texts) {
            TRect R;
            DrawHTML(R, Canvas, Text, false, true, 0, 0);
        }
        return Watch.Milliseconds() * 1000 / Count;
    };
    Report("measure a short markup text", MeasureAll(), "us", "1 us", 1, 6);
    Report("measure it again", MeasureAll(), "us", "1 us", 1, 1);
}

void AddOneByOne(int Count) {
    TImageList Images(nullptr, 16, 16);
    const auto Run = [&Images](int Nodes) {
        TOurTree Ours(Images);
        TFlyNodes& Items = *Ours.Tree.GetItems();
        Items.Clear();
        TFlyNode* Parent = Items.Add(nullptr, "Parent");
        Items.AddChild(Parent, "First");
        Parent->Expand(false);
        Settle();
        const TStopwatch Watch;
        for (int Index = 0; Index < Nodes; ++Index) Items.AddChild(Parent, "A node among many");
        return Watch.Milliseconds();
    };
    const double Half = std::min({Run(Count / 2), Run(Count / 2), Run(Count / 2)});
    const double Whole = std::min({Run(Count), Run(Count), Run(Count)});
    Report("add " + std::to_string(Count) + " nodes one by one", Whole, "ms", "half as many", Half, 2.2);
    Report("add one node, window shown", Whole * 1000.0 / Count, "us", "1 us", 1, 3);
}

void Memory(int Groups) {
    TImageList Images(nullptr, 16, 16);
    TOurTree Ours(Images);
    Ours.Tree.GetItems()->Clear();
    const double Before = ResidentBytes();
    Fill(Ours.Tree, Groups);
    const double Nodes = Tops + Tops * Groups + static_cast<double>(Tops) * Groups * Leaves;
    Report("bytes a node, expanded", (ResidentBytes() - Before) / Nodes, "B", "1 B", 1, 200);
}

} // namespace

int main(int ArgCount, char** Args) {
    if (!std::getenv("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication App(ArgCount, Args);
    // --tenth runs with a tenth of the nodes, --only NAME one of memory, paint, markup, move and add.
    bool Tenth = false;
    std::string Only;
    for (int Index = 1; Index < ArgCount; ++Index) {
        if (std::strcmp(Args[Index], "--tenth") == 0) Tenth = true;
        if (std::strcmp(Args[Index], "--only") == 0 && Index + 1 < ArgCount) Only = Args[++Index];
    }
    const auto Wanted = [&Only](const char* Name) { return Only.empty() || Only == Name; };
    const int Groups = Tenth ? 10 : 100;
    if (Wanted("memory")) Memory(Groups);
    if (Wanted("paint")) PaintAndExpand(Groups);
    if (Wanted("markup")) Markup();
    if (Wanted("move")) MoveAmongSiblings(Tenth ? 100000 : 1000000);
    if (Wanted("add")) AddOneByOne(Tenth ? 10000 : 100000);
    return 0;
}
