// Handlers that destroy the grid or change it under its feet.
#include "tests/exgrid/GridTestSupport.h"

#include <functional>
#include <memory>

namespace quill::testing {
namespace {

using TDeed = std::function<void(TTestGrid*&)>;
using TPlot = std::function<void(TTestGrid&, std::function<void()> Strike)>;

struct TScene {
    const char* What;
    TPlot Arm;
    std::function<void(TTestGrid&)> Act;
};

const TScene Scenes[] = {
    {"OnDrawCell",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.OnDrawCell = [Strike](TObject*, TCanvas&, int Col, int Row, TRect, TExGridDrawState) {
             if (Col == 2 && Row == 3) Strike();
         };
     },
     [](TTestGrid& Grid) {
         Grid.Invalidate();
         Grid.Update();
     }},
    {"OnDrawCell, mirrored and while scrolling",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.SetBiDiMode(bdRightToLeft);
         Grid.Update();
         Grid.OnDrawCell = [Strike](TObject*, TCanvas&, int, int, TRect, TExGridDrawState) { Strike(); };
         Grid.Invalidate();
     },
     [](TTestGrid& Grid) { Grid.Press(VK_NEXT); }},
    {"OnSelectCell by key",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.OnSelectCell = [Strike](TObject*, int, int, bool&) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.Press(VK_DOWN, ssShift); }},
    {"OnSelectCell by mouse",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.OnSelectCell = [Strike](TObject*, int, int, bool&) { Strike(); };
     },
     [](TTestGrid& Grid) {
         Grid.Perform(WM_LBUTTONDOWN, TShiftState(ssLeft).Bits(), MakePointParam(170, 60));
     }},
    {"OnSelectCell while rows go",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.Focus(2, 19);
         Grid.OnSelectCell = [Strike](TObject*, int, int, bool&) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.SetRowCount(10); }},
    {"OnTopLeftChanged",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.OnTopLeftChanged = [Strike](TObject*) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.Press(VK_NEXT); }},
    {"OnTopLeftChanged by wheel",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.OnTopLeftChanged = [Strike](TObject*) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.DoMouseWheelDown({}, {}); }},
    {"OnAppendRow",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.Focus(1, 19);
         Grid.OnAppendRow = [Strike](TObject*) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.Press(VK_DOWN); }},
    {"OnMouseDown",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.OnMouseDown = [Strike](TObject*, TMouseButton, TShiftState, int, int) { Strike(); };
     },
     [](TTestGrid& Grid) {
         Grid.Perform(WM_LBUTTONDOWN, TShiftState(ssLeft).Bits(), MakePointParam(170, 60));
     }},
    {"OnMouseMove in a drag",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.Perform(WM_LBUTTONDOWN, TShiftState(ssLeft).Bits(), MakePointParam(170, 60));
         Grid.OnMouseMove = [Strike](TObject*, TShiftState, int, int) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.Perform(WM_MOUSEMOVE, TShiftState(ssLeft).Bits(), MakePointParam(90, 90)); }},
    {"OnMouseUp with an editor to open",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.SetOptions(Grid.GetOptions() + goEditing);
         for (int I = 0; I < 2; ++I)
             Grid.Perform(WM_LBUTTONDOWN, TShiftState(ssLeft).Bits(), MakePointParam(170, 60));
         Grid.OnMouseUp = [Strike](TObject*, TMouseButton, TShiftState, int, int) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.Perform(WM_LBUTTONUP, 0, MakePointParam(170, 60)); }},
    {"OnKeyDown",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.OnKeyDown = [Strike](TObject*, std::uint16_t&, TShiftState) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.Press(VK_TAB); }},
    {"OnColumnWidthChanging",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.OnColumnWidthChanging = [Strike](int, int&) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.SetColWidths(4, 10); }},
    {"OnRowHeightChanged",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.OnRowHeightChanged = [Strike](int, int) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.SetRowHeights(4, 10); }},
    {"OnColumnMoved in a deletion",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.OnColumnMoved = [Strike](TObject*, int, int) { Strike(); };
     },
     [](TTestGrid& Grid) { Grid.DeleteColumn(1); }},
    {"OnTopLeftChanged from the timer",
     [](TTestGrid& Grid, std::function<void()> Strike) {
         Grid.Perform(WM_LBUTTONDOWN, TShiftState(ssLeft).Bits(), MakePointParam(170, 60));
         Grid.OnTopLeftChanged = [Strike](TObject*) { Strike(); };
         Grid.MousePos = {170, 900};
     },
     [](TTestGrid& Grid) {
         const TControlGuard Guard(&Grid);
         for (int I = 0; I < 8 && Guard; ++I) Grid.Perform(WM_TIMER, TCustomExGrid::ScrollTimerID, 0);
     }},
};

void Play(const char* Deed, const TDeed& Strike) {
    for (const TScene& Scene : Scenes) {
        SCOPED_TRACE(std::string(Scene.What) + ": " + Deed);
        auto* Grid = new TTestGrid(304, 124, 5, 20);
        Grid->SetScrollBars(ssBoth);
        Grid->Update();
        int Count = 0;
        const TControlGuard Guard(Grid);
        Scene.Arm(*Grid, [&] {
            if (++Count > 3) return; // a deed may lead back to the handler
            Strike(Grid);
        });
        Scene.Act(*Grid);
        EXPECT_GT(Count, 0);
        if (Guard) {
            Grid->OnDrawCell = nullptr;
            Grid->Update();
            // Whatever was done, the current cell is one of the grid and the next paint works.
            EXPECT_LE(Grid->GetCol(), Grid->GetColCount());
            EXPECT_LE(Grid->GetRow(), Grid->GetRowCount());
            EXPECT_GE(Grid->GetTopRow(), Grid->GetFixedRows());
            delete Grid;
        }
    }
}

TEST(GridHostile, HandlersMayDestroyTheGrid) {
    Play("destroys it", [](TTestGrid*& Grid) {
        delete Grid;
        Grid = nullptr;
    });
}

TEST(GridHostile, HandlersMayShrinkTheGrid) {
    Play("shrinks it", [](TTestGrid*& Grid) {
        Grid->SetRowCount(2);
        Grid->SetColCount(1);
    });
}

TEST(GridHostile, HandlersMayEmptyTheGrid) {
    Play("empties it", [](TTestGrid*& Grid) { Grid->SetRowCount(0); });
}

TEST(GridHostile, HandlersMayGrowTheGrid) {
    Play("grows it", [](TTestGrid*& Grid) {
        Grid->SetRowCount(Grid->GetRowCount() + 7);
        Grid->SetColCount(Grid->GetColCount() + 3);
        Grid->SetFixedRows(3);
    });
}

TEST(GridHostile, HandlersMayScrollPaintAndMove) {
    Play("scrolls, paints and moves", [](TTestGrid*& Grid) {
        Grid->MoveTopLeft(2, 8);
        Grid->Focus(3, Grid->GetRowCount() - 1);
        Grid->Repaint();
        Grid->SetBounds(0, 0, 200, 90);
        Grid->RecreateWnd();
    });
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
