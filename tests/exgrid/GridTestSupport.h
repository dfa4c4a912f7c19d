// What the tests of the grid share: a grid that draws plain cells and counts what it is asked, and state as text.
#pragma once

#include "exgrid/ExGrid.h"

#include "host/graphics/Canvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace quill::testing {

inline std::string Show(const TRect& R) {
    return std::to_string(R.Left) + "," + std::to_string(R.Top) + "," + std::to_string(R.Right) + "," +
           std::to_string(R.Bottom);
}

inline std::string Show(const TGridRect& R) {
    return std::to_string(R.Left) + "," + std::to_string(R.Top) + ".." + std::to_string(R.Right) + "," +
           std::to_string(R.Bottom);
}

inline std::string Show(const TGridCoord& C) { return std::to_string(C.X) + "," + std::to_string(C.Y); }

inline std::string Show(TExGridDrawState State) {
    std::string Result;
    if (State.Contains(gdFixed)) Result += 'x';
    if (State.Contains(gdSelected)) Result += 's';
    if (State.Contains(gdFocused)) Result += 'f';
    return Result;
}

// Without border and bars, so that the client has exactly the size that was asked for.
class TTestGrid : public TCustomExGrid {
public:
    explicit TTestGrid(int Width = 400, int Height = 300, int Cols = 5, int Rows = 20)
        : TCustomExGrid(nullptr) {
        SetBiDiMode(bdLeftToRight);
        SetBorderStyle(bsNone);
        SetScrollBars(ssNone);
        SetBounds(0, 0, Width, Height);
        SetColCount(Cols);
        SetRowCount(Rows);
        HandleNeeded();
        Update();
    }
    ~TTestGrid() override { BeginDestruction(); }

    // Whether the grid believes that it has the focus; tests set it.
    bool HasFocus = false;
    bool Focused() const override { return HasFocus; }
    bool IsActiveControl() const override { return HasFocus; }

    int HeightCalls = 0;
    int WidthCalls = 0;
    int GetRowHeights(int Index) override {
        ++HeightCalls;
        return TCustomExGrid::GetRowHeights(Index);
    }
    int GetColWidths(int Index) override {
        ++WidthCalls;
        return TCustomExGrid::GetColWidths(Index);
    }

    std::string Calls; // of hooks, in order
    void ColCountChanged() override { Calls += "ColCountChanged "; }
    void Updatewidths() override { Calls += "Updatewidths "; }
    void DrawFixedFrame(TCanvas& ACanvas, const TRect& Rect, int, int, bool Clicked) override {
        ACanvas.DrawEdge(Rect, Clicked ? BDR_SUNKENINNER : BDR_RAISEDINNER, BF_RECT);
    }

    TPoint MousePos;
    TPoint GetMouseClientPos() const override { return MousePos; }

    // Current cell, selection and origin: "1,2 [1,2..3,4] @0,1".
    std::string State() const {
        return Show(TGridCoord{GetCol(), GetRow()}) + " [" + Show(GetSelection()) + "] @" +
               Show(TGridCoord{GetLeftCol(), GetTopRow()});
    }
    void Press(std::uint16_t Key, TShiftState Shift = {}) { KeyDown(Key, Shift); }
    void SetSize(int AWidth, int AHeight) { SetBounds(0, 0, std::max(1, AWidth), std::max(1, AHeight)); }
    void Focus(int Col, int Row) { FocusCell(Col, Row, true, {}, swNone); }
    // The bounds of what waits to be painted.
    std::string Invalid() const { return HasInvalidRegion() ? Show(GetInvalidBounds()) : "none"; }
};

} // namespace quill::testing
