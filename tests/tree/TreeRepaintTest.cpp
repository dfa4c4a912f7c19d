// What each action of a user paints: how often, and how many pixels.
#include "tests/tree/TreeTestSupport.h"

#include <QApplication>
#include <QTest>
#include <QWheelEvent>

#include <functional>
#include <iterator>
#include <random>
#include <string>

namespace quill {
namespace {

constexpr int Width = 600;
constexpr int RowHeight = 20;
constexpr int RowsInView = 20;

// Counts the paint events that reach the screen.
class TPaintEvents : public QObject {
public:
    bool eventFilter(QObject*, QEvent* Event) override {
        if (Event->type() == QEvent::Paint) ++Count;
        return false;
    }
    int Count = 0;
};

// 1000 nodes of three columns, every tenth with ten children; some of everything that can change by itself.
class TRepaintTree : public TQuillTree {
public:
    TRepaintTree() {
        SetSmoothExpandCollapse(false);
        SetColCount(3);
        SetFixedRows(1);
        SetDefaultRowHeight(RowHeight);
        SetGridLineWidth(0);
        SetBorderStyle(bsNone);
        SetScrollBars(ssNone);
        SetShowlines(true);
        SetShowRoot(true);
        SetShowButtons(true);
        SetShowLogic(true);
        SetOptions(GetOptions() + TGridOptions{goEditing, goColSizing} - TGridOptions{goHorzLine});
        for (int Col = 0; Col < 3; ++Col) SetColWidths(Col, Width / 3);
        resize(Width, (RowsInView + 1) * RowHeight);
        GetItems()->Clear();
        const TUpdateBracket Bracket(GetItems());
        for (int Index = 0; Index < 1000; ++Index) {
            TFlyNode* const Node = GetItems()->Add(nullptr, "node " + std::to_string(Index));
            Node->SetStateIndexField(1);
            for (int Child = 0; Index % 10 == 0 && Child < 10; ++Child)
                GetItems()->AddChild(Node, "child " + std::to_string(Child));
        }
    }
    TFlyNode* NodeOf(int Row) { return GetNodeAtRow(Row); }
    QPoint CellPoint(int Col, int Row) {
        const TRect Cell = CellRect(Col, Row);
        return {(Cell.Left + Cell.Right) / 2, (Cell.Top + Cell.Bottom) / 2};
    }
    QPoint ButtonPoint(int Row) {
        const int Y = CellPoint(0, Row).y();
        for (int X = 0; X < Width; ++X) {
            if (GetHitTestInfoAt(X, Y).Contains(htOnButton)) return {X + 4, Y};
        }
        return {};
    }
};

using TWork = std::function<void(TRepaintTree& Tree)>;

TWork Press(Qt::Key Key) {
    return [=](TRepaintTree&) { QTest::keyClick(QApplication::focusWidget(), Key); };
}
TWork Click(int Col, int Row, Qt::KeyboardModifiers Modifiers = {}) {
    return [=](TRepaintTree& Tree) {
        QTest::mouseClick(Tree.viewport(), Qt::LeftButton, Modifiers, Tree.CellPoint(Col, Row));
    };
}
void ClickButton(TRepaintTree& Tree) {
    QTest::mouseClick(Tree.viewport(), Qt::LeftButton, {}, Tree.ButtonPoint(11));
}
void RollWheel(TRepaintTree& Tree) {
    const QPointF Pos(50, 50);
    QWheelEvent Event(Pos, Tree.mapToGlobal(Pos), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(Tree.viewport(), &Event);
}
TWork Over(int Row, int X) {
    return
        [=](TRepaintTree& Tree) { QTest::mouseMove(Tree.viewport(), Tree.CellPoint(0, Row) + QPoint(X, 0)); };
}

TEST(TreeRepaint, AnActionPaintsOnceAndOnlyWhatChanged) {
    constexpr double Cell = 1.0 / 3;
    const struct {
        const char* Name;
        TWork Prepare; // with the current cell in row 3
        TWork Do;
        double Rows; // the most that may be painted, in rows
    } Actions[] = {
        {"nothing", {}, [](TRepaintTree&) {}, 0},
        {"Down", {}, Press(Qt::Key_Down), 2 * Cell},
        {"Right", {}, Press(Qt::Key_Right), 2 * Cell},
        {"Down at the lower edge", [](TRepaintTree& Tree) { Tree.SetRow(RowsInView); }, Press(Qt::Key_Down),
         1.5},
        {"Up at the upper edge",
         [](TRepaintTree& Tree) {
             Tree.SetTopRow(50);
             Tree.SetRow(50);
         },
         Press(Qt::Key_Up), 1.5},
        {"PageDown", {}, Press(Qt::Key_PageDown), RowsInView},
        {"End", {}, Press(Qt::Key_End), 2 * Cell},
        {"the wheel", {}, RollWheel, 3},
        {"click", {}, Click(0, 9), 2 * Cell},
        {"Ctrl+click", {}, Click(0, 9, Qt::ControlModifier), 3},
        {"Shift+click", {}, Click(0, 9, Qt::ShiftModifier), 7 * Cell},
        {"expand", {}, ClickButton, 11.5},
        {"collapse",
         [](TRepaintTree& Tree) {
             Tree.NodeOf(11)->Expand(false);
             Tree.SetTopRow(1);
         },
         ClickButton, 11.5},
        {"a state", {}, [](TRepaintTree& Tree) { Tree.NodeOf(5)->SetStateIndex(2); }, Cell},
        {"a text", {}, [](TRepaintTree& Tree) { Tree.NodeOf(5)->SetText("other"); }, Cell},
        {"a cell", {}, [](TRepaintTree& Tree) { Tree.NodeOf(5)->SetCell(1, "other"); }, Cell},
        {"a text out of view", {}, [](TRepaintTree& Tree) { Tree.NodeOf(500)->SetText("other"); }, 0},
        {"a new node", {}, [](TRepaintTree& Tree) { Tree.GetItems()->Insert(Tree.NodeOf(12), "new"); }, 10.1},
        {"a new node out of view", {}, [](TRepaintTree& Tree) { Tree.GetItems()->Add(nullptr, "new"); }, 0},
        {"a deleted node", {}, [](TRepaintTree& Tree) { Tree.NodeOf(12)->Delete(); }, 10.1},
        {"a deleted node out of view", {}, [](TRepaintTree& Tree) { Tree.NodeOf(500)->Delete(); }, 0},
        {"an editor", {}, Press(Qt::Key_F2), 1},
        {"a letter in the editor", Press(Qt::Key_F2), Press(Qt::Key_X), 0},
        {"a stored text", Press(Qt::Key_F2), Press(Qt::Key_Return), 1},
        {"the mouse over a row", Over(4, 0), Over(5, 0), 2 * Cell},
        {"the mouse within a row", Over(4, 0), Over(4, 9), 0},
        {"the focus", {}, [](TRepaintTree& Tree) { Tree.clearFocus(); }, 1},
    };
    for (const auto& Action : Actions) {
        SCOPED_TRACE(Action.Name);
        TRepaintTree Tree;
        Tree.SetHotTrack(true);
        Tree.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Tree));
        Tree.setFocus();
        Tree.SetRow(3);
        if (Action.Prepare) Action.Prepare(Tree);
        QApplication::processEvents();
        TPaintEvents Events;
        Tree.viewport()->installEventFilter(&Events);
        const std::uint64_t Before = Tree.GetPaintedPixels();
        Action.Do(Tree);
        QApplication::processEvents();
        const double Rows = static_cast<double>(Tree.GetPaintedPixels() - Before) / (Width * RowHeight);
        EXPECT_LE(Rows, Action.Rows + 0.001);
        EXPECT_EQ(Events.Count, Action.Rows > 0 ? 1 : 0);
        EXPECT_EQ(Rows > 0, Action.Rows > 0);
    }
}

// Whatever changes, what is left on screen is what a new picture would show.
TEST(TreeRepaint, WhatIsNotPaintedIsStillRight) {
    const unsigned Seed = std::random_device()();
    SCOPED_TRACE(Seed);
    std::mt19937 Random(Seed);
    const auto Below = [&](int Count) { return static_cast<int>(Random() % static_cast<unsigned>(Count)); };
    TRepaintTree Tree;
    Tree.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Tree));
    Tree.setFocus();
    while (Tree.GetItems()->GetCount() > 60) Tree.GetItems()->GetLastNode()->Delete();
    TFlyNodes& Items = *Tree.GetItems();
    // A row without text is lower than its check mark.
    Items.OnMaterialise = [](TFlyNode* Node) { Node->SetText("made"); };
    const auto Any = [&]() -> TFlyNode* {
        // Also one that has no row.
        TFlyNode* Node = Tree.NodeOf(1 + Below(std::max(1, Tree.GetRowCount() - 1)));
        return Node && Node->GetCount() > 0 && Below(2) == 0 ? Node->GetFirstChild() : Node;
    };
    const std::function<void(TFlyNode&)> Changes[] = {
        [&](TFlyNode& Node) { Items.Add(&Node, "added"); },
        [&](TFlyNode& Node) { Items.AddChild(&Node, "child"); },
        [&](TFlyNode& Node) { Items.AddChildFirst(&Node, "first"); },
        [&](TFlyNode& Node) { Items.Insert(&Node, "inserted"); },
        [&](TFlyNode& Node) { Node.Delete(); },
        [&](TFlyNode& Node) { Node.DeleteChildren(); },
        [&](TFlyNode& Node) { Node.SetExpanded(!Node.GetExpanded()); },
        [&](TFlyNode& Node) { Node.SetHidden(true); },
        [&](TFlyNode&) { Items.ShowAll(); },
        [&](TFlyNode& Node) {
            TFlyNode* const To = Any();
            if (To && !Node.IsAncestorOrSelfOf(To)) Node.MoveTo(To, static_cast<TNodeAttachMode>(Below(5)));
        },
        [&](TFlyNode& Node) { Node.SetIndex(Below(Node.GetCollection()->GetCount())); },
        [&](TFlyNode& Node) { Node.AlphaSort(); },
        [&](TFlyNode& Node) { Node.SetText("text " + std::to_string(Below(100))); },
        [&](TFlyNode& Node) { Node.SetStateIndex(Below(9)); },
        [&](TFlyNode& Node) { Node.SetSelected(!Node.GetSelected()); },
        [&](TFlyNode& Node) { Node.SetHeight(20 + Below(3)); },
        [&](TFlyNode& Node) { Node.AddPlaceholders(1 + Below(2)); },
        [&](TFlyNode&) { Tree.SetRow(1 + Below(std::max(1, Tree.GetRowCount() - 1))); },
        [&](TFlyNode&) { Tree.SetTopRow(1 + Below(std::max(1, Tree.GetRowCount() - 1))); },
        [&](TFlyNode&) { Tree.SetOutlineStyle(static_cast<TOutlineStyle>(Below(3))); },
        [&](TFlyNode&) { Tree.SetBiDiMode(Below(2) == 0 ? bdRightToLeft : bdLeftToRight); },
        [&](TFlyNode&) { Tree.SetFitToHeight(!Tree.GetFitToHeight()); },
        [&](TFlyNode&) { Tree.SetWordWrap(!Tree.GetWordWrap()); },
        [&](TFlyNode&) { Tree.SetSortType(static_cast<TSortType>(Below(4))); },
        [&](TFlyNode&) { Tree.SetHideSelection(!Tree.GetHideSelection()); },
        [&](TFlyNode&) { Tree.hasFocus() ? Tree.clearFocus() : Tree.setFocus(); },
        [&](TFlyNode&) { Tree.SetColWidths(Below(3), 100 + Below(100)); },
        [&](TFlyNode&) {
            const TGridOptions Rows{goRowSelect};
            Tree.SetOptions(Tree.HasOption(goRowSelect) ? Tree.GetOptions() - Rows
                                                        : Tree.GetOptions() + Rows);
        },
        [&](TFlyNode&) { Items.AlphaSort(); },
        [&](TFlyNode& Node) {
            const TUpdateBracket Bracket(&Items);
            Node.SetText("in a bracket");
            if (Below(2) == 0) Items.AddChild(&Node, "bracketed");
        },
        [&](TFlyNode& Node) { Tree.SetSelection(&Node); },
        [&](TFlyNode&) { Tree.SelectAll(); },
        [&](TFlyNode&) { Tree.resize(Width - Below(3) * 20, Tree.height()); },
    };
    int Steps = 0;
    for (; Steps < 200 && !HasFailure(); ++Steps) {
        TFlyNode* const Node = Any();
        if (!Node) {
            Items.Add(nullptr, "again");
            continue;
        }
        const int Change = Below(static_cast<int>(std::size(Changes)));
        Changes[Change](*Node);
        const QImage Kept = Tree.GetSurfaceImage();
        Tree.Invalidate();
        // Outline dots of the first row reach into the last line of the captions.
        const QRect Rows(0, RowHeight, Kept.width(), Kept.height());
        EXPECT_TRUE(Kept.copy(Rows) == Tree.GetSurfaceImage().copy(Rows))
            << "change " << Change << " in step " << Steps;
    }
    EXPECT_EQ(Steps, 200);
}

} // namespace
} // namespace quill
