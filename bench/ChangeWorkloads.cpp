// Single nodes that come and go in view, and one branch that opens and closes.
#include "bench/Workloads.h"

namespace quill::bench {

void OpenExpanded(TContender& C, const TSize& Size) {
    const TShape Shape = TShape::Of(Size.Nodes);
    C.Open();
    C.Fill(Shape);
    C.ExpandAll();
    // A group in the middle: its heading is at the top of the window, the rest are leaves.
    const TNode Middle = C.GetChild(C.GetChild(0, Shape.Tops / 2), Shape.Groups / 2);
    C.ScrollTo(Middle);
    C.Show();
}

void ScrollAbout(TContender& C, const TSize& Size, int Turn) {
    constexpr int Pages = 8;
    const TShape Shape = TShape::Of(Size.Nodes);
    if (Turn % Pages == 0) C.ScrollTo(C.GetChild(C.GetChild(0, Turn / Pages * 7 % (Shape.Tops / 2)), 0));
}

TNode GetMiddleNode(TContender& C) {
    const TNode Node = C.GetNodeAt({150, TContender::Height / 2});
    Require(Node != 0, "no node in the middle of the window");
    return Node;
}

namespace {

// As a log does: each new line appears at the bottom.
TFigure AppendMany(TContender& C, const TSize& Size) {
    C.Open();
    const int Count = Size.Scaled(10000);
    const TStopwatch Watch;
    for (int Index = 0; Index < Count; ++Index) {
        const long Before = C.GetPaintCount();
        C.Append(TextsOf(Index));
        C.ScrollToEnd();
        C.Show();
        Require(C.GetPaintCount() > Before, "no paint event");
    }
    return Watch.Get().Times(1.0 / Count);
}

TFigure AppendOne(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    C.ScrollToEnd();
    int Number = 0;
    return Painted(C, [&] {
        C.Append(TextsOf(Number++));
        C.ScrollToEnd();
    });
}

TFigure InsertOne(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    int Number = 0;
    TNode Place = 0;
    return Painted(
        C, [&] { Place = GetMiddleNode(C); }, [&] { C.InsertBefore(Place, TextsOf(Number++)); });
}

TFigure DeleteOne(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    TNode Place = 0;
    return Painted(
        C,
        [&] {
            // As many leaves as there were.
            C.InsertBefore(GetMiddleNode(C), TextsOf(0));
            C.Show();
            Place = GetMiddleNode(C);
        },
        [&] { C.Delete(Place); });
}

// A group with 99 leaves near the top of the window.
TFigure Branch(TContender& C, const TSize& Size, bool Expand) {
    OpenExpanded(C, Size);
    const TNode Group = C.GetNodeAt({150, TContender::RowHeight / 2});
    return Painted(
        C, [&] { C.SetExpanded(Group, !Expand); }, [&] { C.SetExpanded(Group, Expand); });
}
TFigure ExpandBranch(TContender& C, const TSize& Size) { return Branch(C, Size, true); }
TFigure CollapseBranch(TContender& C, const TSize& Size) { return Branch(C, Size, false); }

constexpr TWorkload All[] = {
    {"append", "append a node, 10,000 times from none, each", "ms", 0.3, TKind::Fixed, AppendMany},
    {"append-one", "append a node", "ms", 0.3, TKind::Action, AppendOne},
    {"insert", "insert a visible node", "ms", 1.2, TKind::Action, InsertOne},
    {"delete", "delete a visible node", "ms", 1.2, TKind::Action, DeleteOne},
    {"expand", "expand a node with 99 children", "ms", 0, TKind::Action, ExpandBranch},
    {"collapse", "collapse a node with 99 children", "ms", 0, TKind::Action, CollapseBranch},
};

} // namespace

std::span<const TWorkload> ChangeWorkloads() { return All; }

} // namespace quill::bench
