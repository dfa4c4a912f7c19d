// Handlers that destroy the grid or change it under its feet.
#include "exgrid/InplaceEdit.h"
#include "tests/exgrid/GridTestSupport.h"

#include "tests/support/Handlers.h"

namespace quill::testing {
namespace {

using TStrike = std::function<void()>;
using TArm = std::function<void(TTestGrid&, TStrike)>;
using TAct = std::function<void(TTestGrid&)>;

template <class TClass, class TEvent>
TArm On(TEvent TClass::*Event) {
    return [Event](TTestGrid& Grid, TStrike Strike) { Grid.*Event = TAnyHandler{Strike}; };
}
// Does something before.
TArm After(const TAct& Prepare, const TArm& Arm) {
    return [=](TTestGrid& Grid, TStrike Strike) {
        Prepare(Grid);
        Arm(Grid, Strike);
    };
}

void Paint(TTestGrid& Grid) {
    Grid.Invalidate();
    Grid.Update();
}
void PressMouse(TTestGrid& Grid) { Grid.Down(170, 60); }
void OpenEditor(TTestGrid& Grid) {
    Grid.SetOptions(Grid.GetOptions() + goEditing);
    for (int I = 0; I < 2; ++I) PressMouse(Grid);
}
// With the mouse in the fixed row, by a border or by a cell.
TAct Drag(int From) {
    return [=](TTestGrid& Grid) {
        const TControlGuard Guard(&Grid);
        Grid.Down(From, 10);
        for (const int To : {260, 290}) {
            if (Guard) Grid.Move(To, 10);
        }
        if (Guard) Grid.Up(290, 10);
        EXPECT_TRUE(!Guard || Grid.GetGridState() == gsNormal);
    };
}
TAct PressKey(std::uint16_t Key, TShiftState Shift = {}) {
    return [=](TTestGrid& Grid) { Grid.Press(Key, Shift); };
}

struct TScene {
    const char* What;
    TArm Arm;
    TAct Act;
};

const TScene Scenes[] = {
    {"OnDrawCell",
     [](TTestGrid& Grid, TStrike Strike) {
         Grid.OnDrawCell = [Strike](TObject*, TCanvas&, int Col, int Row, TRect, TExGridDrawState) {
             if (Col == 2 && Row == 3) Strike();
         };
     },
     Paint},
    {"OnDrawCell, mirrored and while scrolling",
     After([](TTestGrid& Grid) { Grid.SetBiDiMode(bdRightToLeft), Grid.Update(), Grid.Invalidate(); },
           On(&TTestGrid::OnDrawCell)),
     [](TTestGrid& Grid) {
         const TControlGuard Guard(&Grid);
         Grid.Press(VK_NEXT);
         if (Guard) Grid.Update();
     }},
    {"OnSelectCell by key", On(&TTestGrid::OnSelectCell), PressKey(VK_DOWN, ssShift)},
    {"OnSelectCell by mouse", On(&TTestGrid::OnSelectCell), PressMouse},
    {"OnSelectCell while rows go",
     After([](TTestGrid& Grid) { Grid.Focus(2, 19); }, On(&TTestGrid::OnSelectCell)),
     [](TTestGrid& Grid) { Grid.SetRowCount(10); }},
    {"OnTopLeftChanged", On(&TTestGrid::OnTopLeftChanged), PressKey(VK_NEXT)},
    {"OnTopLeftChanged by wheel", On(&TTestGrid::OnTopLeftChanged),
     [](TTestGrid& Grid) { Grid.DoMouseWheelDown({}, {}); }},
    {"OnTopLeftChanged from the timer", After(PressMouse, On(&TTestGrid::OnTopLeftChanged)),
     [](TTestGrid& Grid) { Grid.Tick(170, 900, 8); }},
    {"OnAppendRow", After([](TTestGrid& Grid) { Grid.Focus(1, 19); }, On(&TTestGrid::OnAppendRow)),
     PressKey(VK_DOWN)},
    {"OnMouseDown", On(&TTestGrid::OnMouseDown), PressMouse},
    {"OnMouseMove in a drag", After(PressMouse, On(&TTestGrid::OnMouseMove)),
     [](TTestGrid& Grid) { Grid.Move(90, 90); }},
    {"OnMouseUp with an editor to open", After(OpenEditor, On(&TTestGrid::OnMouseUp)),
     [](TTestGrid& Grid) { Grid.Up(170, 60); }},
    {"OnKeyDown", On(&TTestGrid::OnKeyDown), PressKey(VK_TAB)},
    {"OnColumnWidthChanging", On(&TTestGrid::OnColumnWidthChanging),
     [](TTestGrid& Grid) { Grid.SetColWidths(4, 10); }},
    {"OnColumnWidthChanging in a drag", On(&TTestGrid::OnColumnWidthChanging), Drag(227)},
    {"OnColumnWidthChanged in a drag", On(&TTestGrid::OnColumnWidthChanged), Drag(227)},
    {"OnColumnMoved in a drag", On(&TTestGrid::OnColumnMoved), Drag(170)},
    {"CheckColumnDrag", [](TTestGrid& Grid, TStrike Strike) { Grid.OnCheck = [=](int&) { Strike(); }; },
     Drag(170)},
    {"OnRowHeightChanged", On(&TTestGrid::OnRowHeightChanged),
     [](TTestGrid& Grid) { Grid.SetRowHeights(4, 10); }},
    {"OnSelectCell while rows are taken out",
     After([](TTestGrid& Grid) { Grid.Focus(2, 19); }, On(&TTestGrid::OnSelectCell)),
     [](TTestGrid& Grid) { Grid.AdjustSize(3, -5, true); }},
    {"OnSetEditText when columns become fixed",
     After(
         [](TTestGrid& Grid) {
             Grid.SetOptions(Grid.GetOptions() + goEditing);
             Grid.Focus(2, 3);
             Grid.HasFocus = true;
             Grid.ShowEditor();
             Grid.GetInplaceEditor()->SetText("typed");
         },
         On(&TTestGrid::OnSetEditText)),
     [](TTestGrid& Grid) { Grid.SetFixedCols(3); }},
    {"OnColumnMoved in a deletion", On(&TTestGrid::OnColumnMoved),
     [](TTestGrid& Grid) { Grid.DeleteColumn(1); }},
};

const struct {
    const char* What;
    std::function<void(TTestGrid*)> Do;
} Deeds[] = {
    {"destroys the grid", [](TTestGrid* Grid) { delete Grid; }},
    {"shrinks it", [](TTestGrid* Grid) { Grid->SetRowCount(2), Grid->SetColCount(1); }},
    {"empties it", [](TTestGrid* Grid) { Grid->SetRowCount(0); }},
    {"cancels drags", [](TTestGrid* Grid) { Grid->CancelDrag(); }},
    {"grows it",
     [](TTestGrid* Grid) {
         Grid->SetRowCount(Grid->GetRowCount() + 7);
         Grid->SetColCount(Grid->GetColCount() + 3);
         Grid->SetFixedRows(3);
     }},
    {"scrolls, paints and moves",
     [](TTestGrid* Grid) {
         Grid->MoveTopLeft(2, 8);
         Grid->Focus(3, Grid->GetRowCount() - 1);
         Grid->Repaint();
         Grid->SetBounds(0, 0, 200, 90);
         Grid->RecreateWnd();
     }},
};

TEST(GridHostile, HandlersMayDestroyAndChangeTheGrid) {
    for (const auto& Deed : Deeds) {
        for (const TScene& Scene : Scenes) {
            SCOPED_TRACE(std::string(Scene.What) + " " + Deed.What);
            auto* Grid = new TTestGrid(304, 124, 5, 20);
            Grid->SetScrollBars(ssBoth);
            Grid->SetOptions(Grid->GetOptions() + TGridOptions{goColSizing, goColMoving});
            Grid->Update();
            int Count = 0;
            const TControlGuard Guard(Grid);
            Scene.Arm(*Grid, [&] {
                if (++Count <= 3) Deed.Do(Grid); // a deed may lead back to the handler
            });
            Scene.Act(*Grid);
            EXPECT_GT(Count, 0);
            if (!Guard) continue;
            // Whatever was done, the current cell is one of the grid and the next paint works.
            Grid->OnDrawCell = nullptr;
            Grid->Update();
            EXPECT_LE(Grid->GetCol(), Grid->GetColCount());
            EXPECT_LE(Grid->GetRow(), Grid->GetRowCount());
            EXPECT_GE(Grid->GetTopRow(), Grid->GetFixedRows());
            delete Grid;
        }
    }
}

TEST(GridHostile, AnExceptionLeavesTheGridUsable) {
    TTestGrid Grid(304, 124, 5, 20);
    Grid.SetBiDiMode(bdRightToLeft);
    Grid.Update();
    Grid.OnDrawCell = [](TObject*, TCanvas&, int, int, TRect, TExGridDrawState) { throw Exception("no"); };
    Grid.Invalidate();
    EXPECT_THROW(Grid.Update(), Exception);
    Grid.OnDrawCell = nullptr;
    EXPECT_EQ(Grid.GetCanvas()->GetCanvasOrientation(), coLeftToRight);
    Grid.OnTopLeftChanged = [](TObject*) { throw Exception("no"); };
    EXPECT_THROW(Grid.ModifyScrollBar(SB_VERT, SB_LINEDOWN, 0, false), Exception);
    EXPECT_FALSE(Grid.GetScrolling());
    EXPECT_THROW(Grid.DoMouseWheelDown({}, {}), Exception);
    EXPECT_FALSE(Grid.GetWheeling());
    Grid.OnTopLeftChanged = nullptr;
    Grid.Update();
    EXPECT_EQ(Grid.GetTopRow(), 3);
}

TEST(GridHostile, AGridThatGrowsWhileItIsPaintedEndsThePaint) {
    TTestGrid Grid(304, 124, 5, 20);
    Grid.SetRowCount(2);
    int Cells = 0;
    Grid.OnDrawCell = [&](TObject*, TCanvas&, int, int, TRect, TExGridDrawState) {
        ++Cells;
        Grid.SetRowCount(Grid.GetRowCount() + 1);
    };
    Grid.Invalidate();
    Grid.Update();
    EXPECT_GT(Cells, 0);
    EXPECT_LT(Cells, 1000);
}

} // namespace
} // namespace quill::testing
