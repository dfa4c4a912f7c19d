// Sizing and moving columns and rows with the mouse.
#include "tests/exgrid/GridTestSupport.h"

#include "host/windows/Application.h"

#include <QImage>

namespace quill::testing {
namespace {

// Five columns of 75 and rows of 24 pixels with lines of 1; one fixed column and row. Logs what it is told.
class TDragGrid : public TTestGrid {
public:
    explicit TDragGrid(TGridOptions Add = {goColSizing, goRowSizing, goColMoving, goRowMoving})
        : TTestGrid(304, 124, 5, 20) {
        SetFixedCols(1);
        SetOptions(GetOptions() + Add);
        HasFocus = true;
        OnColumnWidthChanging = [this](int Index, int& Value) {
            Value = std::min(Value, MaxWidth);
            Log += "changing" + std::to_string(Index) + " ";
        };
        OnColumnWidthChanged = [this](int Index, int Value) { Tell("width", Index, "=", Value); };
        OnRowHeightChanged = [this](int Index, int Value) { Tell("height", Index, "=", Value); };
        OnColumnMoved = [this](TObject*, int From, int To) { Tell("col", From, ">", To); };
        OnRowMoved = [this](TObject*, int From, int To) { Tell("row", From, ">", To); };
        Update();
    }

    bool BeginColumnDrag(int& Origin, int&, const TPoint&) override {
        Log += "begin" + std::to_string(Origin) + " ";
        return MayBegin;
    }
    bool CheckColumnDrag(int&, int& Destination, const TPoint&) override {
        if (Forced != 0) Destination = Forced;
        return Destination != Refused;
    }
    bool EndColumnDrag(int& Origin, int& Destination, const TPoint&) override {
        Tell("end", Origin, ">", Destination);
        return MayEnd;
    }
    void FixedCellClick(int ACol, int ARow) override { Log += "click" + Show(TGridCoord{ACol, ARow}) + " "; }

    std::string TakeLog() { return std::exchange(Log, {}); }
    std::string Widths() {
        std::string Result;
        for (int Col = 0; Col < GetColCount(); ++Col) Result += std::to_string(GetColWidths(Col)) + " ";
        return Result;
    }

    // Where a press along a line would size, as runs: "c1 147-155" for column 1.
    std::string Zones(bool Columns, int Across) {
        std::string Result;
        std::string Last;
        TExGridDI DI;
        CalcDI(DI);
        const int Count = Columns ? GetClientWidth() : GetClientHeight();
        for (int Pos = 0; Pos <= Count; ++Pos) {
            TGridState State = gsNormal;
            int Index, Border, Distance;
            CalcSizingState(Columns ? Pos : Across, Columns ? Across : Pos, State, Index, Border, Distance,
                            DI);
            std::string Zone;
            if (Pos < Count && State != gsNormal)
                Zone = (State == gsColSizing ? "c" : "r") + std::to_string(Index);
            if (Zone == Last) continue;
            if (!Last.empty()) Result += "-" + std::to_string(Pos - 1) + "  ";
            if (!Zone.empty()) Result += Zone + " " + std::to_string(Pos);
            Last = Zone;
        }
        return Result;
    }

    std::string Log;
    int MaxWidth = 1000;
    int Refused = -1; // a destination
    int Forced = 0;
    bool MayBegin = true;
    bool MayEnd = true;

private:
    void Tell(const std::string& What, int Index, const char* Sign, int Value) {
        Log += What + std::to_string(Index) + Sign + std::to_string(Value) + " ";
    }
};

// Whether two pictures are equal but for the rounding of letters that a clip cuts.
bool Alike(const QImage& A, const QImage& B) {
    const auto Near = [](const QRgb& P, const QRgb& Q) {
        return std::abs(qRed(P) - qRed(Q)) <= 2 && std::abs(qGreen(P) - qGreen(Q)) <= 2 &&
               std::abs(qBlue(P) - qBlue(Q)) <= 2;
    };
    for (int I = 0; A.size() == B.size() && I < A.width() * A.height(); ++I) {
        if (!Near(A.pixel(I % A.width(), I / A.width()), B.pixel(I % A.width(), I / A.width()))) return false;
    }
    return A.size() == B.size();
}

TEST(GridDrag, BordersOfFixedCellsHaveZones) {
    TDragGrid Grid;
    EXPECT_EQ(Grid.Zones(true, 10), "c0 71-79  c1 147-155  c2 223-231  c3 299-303  ");
    EXPECT_EQ(Grid.Zones(false, 10), "r0 20-28  r1 45-53  r2 70-78  r3 95-103  r4 120-123  ");
    EXPECT_EQ(Grid.Zones(true, 60) + Grid.Zones(false, 100), "") << "not among the cells";
    EXPECT_EQ(Grid.Perform(CM_DESIGNHITTEST, 0, MakePointParam(151, 10)), 1);
    EXPECT_EQ(Grid.Perform(CM_DESIGNHITTEST, 0, MakePointParam(120, 10)), 0);
    Grid.SetBiDiMode(bdRightToLeft);
    EXPECT_EQ(Grid.Zones(true, 10), "c3 0-4  c2 72-80  c1 148-156  c0 224-232  ");
    Grid.SetOptions(Grid.GetOptions() - TGridOptions{goColSizing, goRowSizing});
    EXPECT_EQ(Grid.Zones(true, 10) + Grid.Zones(false, 10), "");
}

TEST(GridDrag, NarrowCellsKeepRoomForClicksAndHiddenOnesCanBeOpened) {
    TDragGrid Grid(goColSizing);
    Grid.SetColWidths(1, 6);
    Grid.SetColWidths(2, 0);
    Grid.SetColWidths(3, 0);
    // Column 0 ends at 75, 1 at 82, 2 at 83, 3 at 84.
    EXPECT_EQ(Grid.Zones(true, 10), "c0 71-77  c1 80-82  c2 83-83  c3 84-88  c4 156-164  ");
    for (const int Line : {0, 1}) {
        Grid.SetGridLineWidth(Line);
        Grid.SetColWidths(3, 0);
        Grid.Drag(85, 10, 105, 10);
        EXPECT_EQ(Grid.GetColWidths(3), 20) << Line;
    }
}

TEST(GridDrag, ABorderIsDraggedToSize) {
    const struct {
        const char* What;
        TBiDiMode Mode;
        int X, Y, ToX, ToY;
        const char* Log;
    } Cases[] = {
        {"from the far side of the line", bdLeftToRight, 154, 10, 144, 10, "changing1 width1=65 "},
        {"not below the minimum", bdLeftToRight, 151, 10, 20, 10, "changing1 width1=8 "},
        {"not above what the handler allows", bdLeftToRight, 151, 10, 301, 10, "changing1 width1=100 "},
        {"to the left when mirrored", bdRightToLeft, 152, 10, 132, 10, "changing1 width1=95 "},
        {"a row", bdLeftToRight, 10, 74, 99, 84, "height2=34 "},
        {"a fixed row", bdLeftToRight, 10, 24, 10, 30, "height0=30 "},
        {"a click sizes nothing", bdLeftToRight, 151, 10, 151, 10, ""},
    };
    for (const auto& Case : Cases) {
        for (const bool Designing : {false, true}) {
            TDragGrid Grid({goColSizing, goRowSizing});
            Grid.MaxWidth = 100;
            Grid.SetBiDiMode(Case.Mode);
            Grid.SetDesigning(Designing);
            QObject::connect(&Grid, &TCustomControl::designerModified, [&Grid] { Grid.Log += "designer "; });
            Grid.Drag(Case.X, Case.Y, Case.ToX, Case.ToY);
            const std::string Log = Case.Log;
            EXPECT_EQ(Grid.TakeLog(), Designing && !Log.empty() ? Log + "designer " : Log) << Case.What;
            EXPECT_EQ(Grid.GetGridState(), gsNormal) << Case.What;
        }
    }
}

TEST(GridDrag, EscAndTheLossOfTheMousePutBackWhatWasSized) {
    const std::pair<const char*, void (*)(TDragGrid&)> Ways[] = {
        {"Esc", [](TDragGrid& Grid) { Grid.Escape(); }},
        {"cancelled", [](TDragGrid& Grid) { Grid.Perform(WM_CANCELMODE, 0, 0); }},
        {"moved without a button", [](TDragGrid& Grid) { Grid.Move(195, 10, {}); }},
        {"pressed anew", [](TDragGrid& Grid) { Grid.Down(200, 60), Grid.Up(200, 60); }},
    };
    for (const auto& [What, Way] : Ways) {
        for (const int X : {151, 100, 30}) { // sizing, moving, a fixed cell
            SCOPED_TRACE(What + (" at " + std::to_string(X)));
            TDragGrid Grid;
            Grid.Down(X, 10);
            Grid.Move(X + 40, 10);
            EXPECT_EQ(Grid.GetColWidths(1), X == 151 ? 115 : 75);
            Way(Grid);
            EXPECT_EQ(Grid.GetGridState(), gsNormal);
            EXPECT_EQ(Grid.State(),
                      What == std::string("pressed anew") ? "2,2 [2,2..2,2] @1,1" : "1,1 [1,1..1,1] @1,1");
            Grid.Up(250, 10);
            EXPECT_EQ(Grid.Widths(), "75 75 75 75 75 ");
        }
    }
}

TEST(GridDrag, ADoubleClickFitsTheColumnToItsWidestVisibleText) {
    TDragGrid Grid;
    Grid.OnGetEditText = [](TObject*, int Col, int Row, std::string& Value) {
        if (Col == 1)
            Value = Row == 19 ? std::string(100, 'W') : Row == 3 ? "the widest text in view" : "short";
        if (Col == 3 && Row == 0) Value = "only the heading";
    };
    const auto Needed = [&](const char* Text) { return Grid.GetCanvas()->TextWidth(Text) + 8; };
    const auto DoubleClick = [&](int X) {
        Grid.Drag(X, 10, X, 10);
        Grid.Send(WM_LBUTTONDBLCLK, X, 10);
        Grid.Up(X, 10);
    };
    DoubleClick(151);
    EXPECT_EQ(Grid.GetColWidths(1), Needed("the widest text in view"));
    Grid.SetColWidths(1, 20);
    DoubleClick(96 + 76); // column 2 has no texts
    EXPECT_EQ(Grid.GetColWidths(2), 75);
    DoubleClick(96 + 2 * 76);
    EXPECT_EQ(Grid.GetColWidths(3), Needed("only the heading"));
    EXPECT_EQ(Grid.GetGridState(), gsNormal);
}

TEST(GridDrag, AColumnMovesToTheGapNearestToTheMouse) {
    const int Far = Mouse.GetDragThreshold();
    const std::tuple<const char*, TBiDiMode, int, int, const char*> Cases[] = {
        {"behind the half of another", bdLeftToRight, 100, 200, "begin1 end1>2 col1>2 "},
        {"before it nothing", bdLeftToRight, 100, 185, "begin1 end1>1 "},
        {"over the fixed column", bdLeftToRight, 250, 5, "begin3 end3>1 col3>1 "},
        {"outside", bdLeftToRight, 100, 900, "begin1 end1>3 col1>3 "},
        {"mirrored", bdRightToLeft, 204, 100, "begin1 end1>2 col1>2 "},
        {"not yet", bdLeftToRight, 100, 100 + Far, "begin1 end1>1 click1,0 "},
        {"a fixed column stays", bdLeftToRight, 30, 200, ""},
    };
    for (const auto& [What, Mode, From, To, Log] : Cases) {
        TDragGrid Grid;
        Grid.SetBiDiMode(Mode);
        Grid.Drag(From, 10, To, 10);
        EXPECT_EQ(Grid.TakeLog(), Log) << What;
        EXPECT_EQ(Grid.GetGridState(), gsNormal) << What;
        EXPECT_FALSE(Grid.HasTimer(TCustomExGrid::ScrollTimerID)) << What;
    }
}

TEST(GridDrag, AHeldFixedCellLooksSoWhileTheMouseIsOverIt) {
    TDragGrid Grid(goColSizing);
    Grid.Down(100, 10);
    std::string Seen;
    for (const int X : {100, 180, 110}) {
        Grid.Move(X, 10);
        Seen += Show(Grid.GetPressedFixed()) + " ";
    }
    Grid.Up(110, 10);
    EXPECT_EQ(Seen + Grid.TakeLog(), "1,0 -1,-1 1,0 click1,0 ");
    Grid.Down(100, 10);
    Grid.Escape();
    Grid.Up(100, 10);
    EXPECT_EQ(Grid.TakeLog(), "");
}

TEST(GridDrag, TheHooksOfAMoveDecide) {
    TDragGrid Grid;
    Grid.MayBegin = false;
    Grid.Drag(100, 10, 200, 10);
    EXPECT_EQ(Grid.TakeLog(), "begin1 ");
    Grid.MayBegin = true;
    Grid.Refused = 2;
    Grid.Down(100, 10);
    Grid.Move(200, 10);
    EXPECT_EQ(Grid.GetAppliedCursor(), crNoDrop);
    Grid.Up(200, 10);
    EXPECT_EQ(Grid.TakeLog(), "begin1 end1>1 ");
    EXPECT_EQ(Grid.GetAppliedCursor(), crDefault);
    Grid.Forced = 4;
    Grid.Drag(100, 10, 200, 10);
    EXPECT_EQ(Grid.TakeLog(), "begin1 end1>4 col1>4 ");
    Grid.Forced = 0;
    Grid.MayEnd = false;
    Grid.Drag(100, 10, 280, 10);
    EXPECT_EQ(Grid.TakeLog(), "begin1 end1>3 ");
}

TEST(GridDrag, RowsMoveByTheirFixedCellsOrWithoutThoseByAny) {
    TDragGrid Grid;
    Grid.Drag(10, 35, 10, 95);
    Grid.Drag(100, 35, 100, 95);
    EXPECT_EQ(Grid.TakeLog(), "row1>3 ");
    Grid.SetFixedCols(0);
    Grid.Drag(100, 85, 100, 30);
    EXPECT_EQ(Grid.TakeLog(), "row3>1 ");
}

TEST(GridDrag, AMoveScrollsAtTheEdges) {
    TDragGrid Grid;
    Grid.Down(100, 10);
    Grid.Tick(303, 10, 8); // not before the move has begun
    EXPECT_EQ(Grid.GetLeftCol(), 1);
    Grid.Move(250, 10);
    Grid.Tick(250, 10, 8);
    EXPECT_EQ(Grid.GetLeftCol(), 1);
    Grid.Tick(303, 10, 8);
    EXPECT_EQ(Grid.GetLeftCol(), 2);
    Grid.Up(303, 10);
    EXPECT_EQ(Grid.TakeLog(), "begin1 end1>4 col1>4 ");
    Grid.Down(10, 110);
    Grid.Move(10, 90);
    Grid.Tick(10, 200, 3);
    EXPECT_EQ(Grid.GetTopRow(), 4);
    Grid.Escape();
    EXPECT_EQ(Grid.TakeLog(), "");
}

TEST(GridDrag, PictureAndMarkFollowTheMouseAndLeaveNoTrace) {
    for (const TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
        TDragGrid Grid;
        Grid.SetBiDiMode(Mode);
        Grid.OnDrawCell = [&](TObject*, TCanvas& Canvas, int Col, int Row, TRect Rect, TExGridDrawState) {
            Canvas.GetBrush()->SetColor(Row == 0 ? clBtnFace : clWhite);
            Canvas.FillRect(Rect);
            Canvas.TextOut(Rect.Left + 3, Rect.Top + 3, Show(TGridCoord{Col, Row}));
        };
        Grid.Invalidate();
        const auto Fresh = [&] {
            Grid.Invalidate();
            return Grid.GetSurfaceImage();
        };
        const QImage Before = Fresh();
        Grid.Down(150 + 20, 10);
        for (const int X : {190, 60, 280, 130}) {
            Grid.Move(X, 40);
            if (X == 280) Grid.InvalidateCell(2, 2);
            const QImage Seen = Grid.GetSurfaceImage();
            EXPECT_NE(Seen, Before) << X;
            EXPECT_TRUE(Alike(Seen, Fresh())) << X;
        }
        Grid.Tick(-5, 10, 4);
        EXPECT_TRUE(Alike(Grid.GetSurfaceImage(), Fresh())) << "after scrolling";
        Grid.SetLeftCol(1);
        Grid.Escape();
        EXPECT_EQ(Grid.GetSurfaceImage(), Before);
        EXPECT_EQ(Grid.GetGridState(), gsNormal);
    }
}

} // namespace
} // namespace quill::testing
