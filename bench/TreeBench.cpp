// The tree control on screen: painting, expanding and adding, beside a QTreeView that shows the same data.
#include "bench/PeerModel.h"
#include "bench/Report.h"
#include "host/windows/Application.h"
#include "quilltree/QuillTree.h"

#include <QApplication>
#include <QHeaderView>
#include <QPainter>
#include <QTreeView>

#include <cstdlib>
#include <cstring>
#include <memory>

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
    const auto Show = [&] { QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents); };
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
    const double Row = Median(
        60, [] { Settle(); },
        [&] {
            Tree.SetTopRow(Tree.GetTopRow() + 1);
            Show();
        });
    Report("scroll by a row", Row, "ms", "our full paint", Full, 1);
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
    // --tenth runs with a tenth of the nodes, --only NAME one of memory, paint and add.
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
    if (Wanted("add")) AddOneByOne(Tenth ? 10000 : 100000);
    return 0;
}
