// What the tests of the grid share: a grid that draws plain cells and counts what it is asked, and state as text.
#pragma once

#include "exgrid/ExGrid.h"

#include "host/graphics/Canvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
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

    std::function<void(int&)> OnCheck; // asked for each destination of a dragged column
    bool CheckColumnDrag(int& Origin, int& Destination, const TPoint& Pos) override {
        if (!OnCheck) return TCustomExGrid::CheckColumnDrag(Origin, Destination, Pos);
        const auto Copy = OnCheck; // which may destroy the grid
        Copy(Destination);
        return true;
    }
    TPoint MousePos;
    TPoint GetMouseClientPos() const override { return MousePos; }

    // Current cell, selection and origin: "1,2 [1,2..3,4] @0,1".
    std::string State() const {
        return Show(TGridCoord{GetCol(), GetRow()}) + " [" + Show(GetSelection()) + "] @" +
               Show(TGridCoord{GetLeftCol(), GetTopRow()});
    }
    void Press(std::uint16_t Key, TShiftState Shift = {}) { KeyDown(Key, Shift); }
    void Escape() { Perform(WM_KEYDOWN, VK_ESCAPE, 0); }
    // Mouse messages as the window system sends them.
    void Send(unsigned Msg, int X, int Y, TShiftState Shift = ssLeft) {
        Perform(Msg, Shift.Bits(), MakePointParam(X, Y));
    }
    void Down(int X, int Y, TShiftState Shift = {}) { Send(WM_LBUTTONDOWN, X, Y, Shift + ssLeft); }
    void Move(int X, int Y, TShiftState Shift = ssLeft) { Send(WM_MOUSEMOVE, X, Y, Shift); }
    void Up(int X, int Y, TShiftState Shift = {}) { Send(WM_LBUTTONUP, X, Y, Shift); }
    void Drag(int X, int Y, int ToX, int ToY) { Down(X, Y), Move(ToX, ToY), Up(ToX, ToY); }
    // The timer that scrolls, with the mouse there.
    void Tick(int X, int Y, int Count = 1) {
        MousePos = {X, Y};
        for (const TControlGuard Guard(this); Guard && Count > 0; --Count)
            Perform(WM_TIMER, ScrollTimerID, 0);
    }
    void SetSize(int AWidth, int AHeight) { SetBounds(0, 0, std::max(1, AWidth), std::max(1, AHeight)); }
    void Focus(int Col, int Row) { FocusCell(Col, Row, true, {}, swNone); }
    // The bounds of what waits to be painted.
    std::string Invalid() const { return HasInvalidRegion() ? Show(GetInvalidBounds()) : "none"; }
};

} // namespace quill::testing
