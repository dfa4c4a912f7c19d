// What a user does with keys and mouse, and the look-ups below it.
#include "bench/Workloads.h"

#include <random>

namespace quill::bench {
namespace {

// The spot of the text in visible row Row.
TSpot TextIn(TContender& C, int Row) {
    const TNode Node = C.GetNodeAt({150, Row * TContender::RowHeight + TContender::RowHeight / 2});
    Require(Node != 0, "no node in that row");
    return C.GetTextSpot(Node);
}

// The last row in view is the current one, so that each key scrolls.
TFigure KeyDown(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    C.SetCurrent(C.GetNodeAt({150, TContender::Height - 2 * TContender::RowHeight - 20}));
    C.Show();
    for (int Warm = 0; Warm < 3; ++Warm) {
        C.Press(TKey::Down);
        C.Show();
    }
    return Painted(C, [&] { C.Press(TKey::Down); });
}

TFigure KeyPage(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    int Turn = 0;
    return Painted(
        C,
        [&] {
            ScrollAbout(C, Size, Turn++);
            C.Show();
            C.SetCurrent(C.GetNodeAt({150, TContender::Height - 2 * TContender::RowHeight - 20}));
        },
        [&] { C.Press(TKey::PageDown); });
}

TFigure ClickSelect(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    int Turn = 0;
    TSpot Spot;
    return Painted(
        C, [&] { Spot = TextIn(C, 5 + 7 * (++Turn % 4)); }, [&] { C.Click(Spot); });
}

TFigure ClickCheck(TContender& C, const TSize& Size) {
    C.UseChecks();
    OpenExpanded(C, Size);
    const TNode Node = GetMiddleNode(C);
    const TSpot Spot = C.GetCheckSpot(Node);
    int State = C.GetCheckState(Node);
    const auto Changed = [&] {
        const int Now = C.GetCheckState(Node);
        const bool Different = Now != State;
        State = Now;
        return Different;
    };
    bool First = true;
    const TFigure Figure = Painted(
        C,
        [&] {
            Require(First || Changed(), "the check mark did not change");
            First = false;
        },
        [&] { C.Click(Spot); });
    Require(Changed(), "the check mark did not change");
    return Figure;
}

TFigure MoveMouse(TContender& C, const TSize& Size) {
    C.UseHotTracking();
    OpenExpanded(C, Size);
    int Turn = 0;
    TSpot Spot;
    return Painted(
        C, [&] { Spot = TextIn(C, 5 + 7 * (++Turn % 4)); }, [&] { C.MoveMouse(Spot); });
}

// A word is typed; each letter finds a node among the next 26. Once found, a node stays, and nothing is painted then.
TFigure TypeWord(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    C.SetCurrent(GetMiddleNode(C));
    C.Show();
    const std::string Word = "maple tree";
    const long Before = C.GetPaintCount();
    std::size_t Next = 0;
    const TFigure Figure = Median([] {},
                                  [&] {
                                      C.Type(Word[Next++]);
                                      C.Show();
                                  },
                                  static_cast<int>(Word.size()));
    Require(C.GetPaintCount() > Before, "no paint event");
    return Figure;
}

// The same letter again goes to the next node that begins with it, after all were searched for two such letters.
TFigure TypeAgain(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    C.SetCurrent(GetMiddleNode(C));
    return Painted(
        C, [&] { C.Type('m'); }, 21);
}

TFigure Edit(TContender& C, const TSize& Size, bool Open) {
    C.UseEditing();
    OpenExpanded(C, Size);
    C.SetCurrent(GetMiddleNode(C));
    C.Show();
    const auto Set = [&](bool Value) {
        if (C.IsEditing() != Value) C.Press(Value ? TKey::Edit : TKey::Accept);
    };
    const TFigure Figure = Painted(
        C, [&] { Set(!Open); }, [&] { Set(Open); });
    Require(C.IsEditing() == Open, "the editor did not follow");
    return Figure;
}
TFigure EditOpen(TContender& C, const TSize& Size) { return Edit(C, Size, true); }
TFigure EditClose(TContender& C, const TSize& Size) { return Edit(C, Size, false); }

// --- look-ups ---------------------------------------------------------------------------------------------------------

TFigure PointToNode(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    std::mt19937 Random(5);
    std::vector<TSpot> Spots;
    for (int Index = 0; Index < 4096; ++Index) {
        Spots.push_back({static_cast<int>(Random() % 900), static_cast<int>(Random() % 650)});
    }
    bool Found = true;
    const TFigure Figure = PerCall(
        [&](int Index) { Found &= C.GetNodeAt(Spots[static_cast<std::size_t>(Index) % Spots.size()]) != 0; });
    Require(Found, "no node under the point");
    return Figure.Times(1000);
}

TFigure NodeToRow(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    const TShape Shape = TShape::Of(Size.Nodes);
    std::mt19937 Random(6);
    const auto Any = [&](int Count) { return static_cast<int>(Random() % static_cast<unsigned>(Count)); };
    std::vector<TNode> Nodes;
    for (int Index = 0; Index < 100000; ++Index) {
        const TNode Group = C.GetChild(C.GetChild(0, Any(Shape.Tops)), Any(Shape.Groups));
        Nodes.push_back(C.GetChild(Group, Any(TShape::Leaves)));
    }
    Require(C.GetRowOf(C.GetChild(0, 1)) > C.GetRowOf(C.GetChild(0, 0)), "rows out of order");
    long Sum = 0;
    const TFigure Figure =
        PerCall([&](int Index) { Sum += C.GetRowOf(Nodes[static_cast<std::size_t>(Index) % Nodes.size()]); });
    Require(Sum != -1, "no rows");
    return Figure.Times(1000);
}

constexpr TWorkload All[] = {
    {"key-down", "key down, scrolling", "ms", 0.3, TKind::Action, KeyDown},
    {"key-page", "key page down", "ms", 1.2, TKind::Action, KeyPage},
    {"click-select", "click on another node", "ms", 0, TKind::Action, ClickSelect},
    {"click-check", "click on a check box", "ms", 0, TKind::Action, ClickCheck},
    {"hot-move", "move the mouse to another node", "ms", 0, TKind::Action, MoveMouse},
    {"type-word", "type a letter of a word, match near", "ms", 0, TKind::Action, TypeWord},
    {"type-again", "search for a text that no node has", "ms", 0, TKind::Bulk, TypeAgain},
    {"edit-open", "open the editor", "ms", 0, TKind::Action, EditOpen},
    {"edit-close", "close the editor", "ms", 0, TKind::Action, EditClose},
    {"point-node", "point to node", "us", 0.13, TKind::Action, PointToNode},
    {"node-row", "node to row, at random", "us", 0.3, TKind::Action, NodeToRow},
};

} // namespace

std::span<const TWorkload> InputWorkloads() { return All; }

} // namespace quill::bench
