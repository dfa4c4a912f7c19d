// The owner-drawn grid: fixed and scrollable cells in two axes, with selection, scrolling and in-place editing.
// It owns geometry, current cell, selection and editor state, never cell data: descendants or handlers draw.
#pragma once

#include "exgrid/GridTypes.h"
#include "host/windows/Controls.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quill {

class TFiler;
class TInplaceEdit;
class TReader;
class TWriter;

// Indexes count from 0 and include the fixed cells. Pixels are device-independent client pixels, left-to-right:
// under right-to-left alignment positions are mirrored where an operation says so.
//
// Handlers may do anything, destroying the grid included: every call into application code is followed by a check.
// Overrides of GetColWidths and GetRowHeights are asked in the middle of computations and must not destroy it.
class TCustomExGrid : public TCustomControl {
    Q_OBJECT

public:
    // Cursors over the borders of rows and columns that can be sized.
    static constexpr TCursor VertCursor = crSizeNS;
    static constexpr TCursor HorzCursor = crSizeWE;
    // The bars of a grid with several columns run over 0 .. BarScale, whatever the number of cells.
    static constexpr int BarScale = 127;
    // The timer that scrolls while the mouse is held outside the cells; milliseconds.
    static constexpr int ScrollTimerID = 1;
    static constexpr int ScrollTimerInterval = 60;
    // How near to a border of a fixed cell a press sizes, and the least extent that the mouse gives; pixels.
    static constexpr int SizingZone = 4;
    static constexpr int MinSizedExtent = 8;
    // A count from here on is too large for an array of extents.
    static constexpr int MaxExtentCount = 0x7FFFFFE;

    explicit TCustomExGrid(TComponent* AOwner, QWidget* AParent = nullptr);
    ~TCustomExGrid() override;

    // --- axes -------------------------------------------------------------------------------------------------
    int GetColCount() const { return FColCount; }
    // At least 1. A count not above FixedCols lowers FixedCols (not while loading).
    void SetColCount(int Value);
    int GetRowCount() const { return FRowCount; }
    // At least FixedRows. Raises EInvalidGridOperation when stored heights cannot grow that far.
    void SetRowCount(int Value);
    int GetFixedCols() const { return FFixedCols; }
    // Raises EInvalidGridOperation below 0; a value that reaches ColCount first raises ColCount to one more.
    void SetFixedCols(int Value);
    int GetFixedRows() const { return FFixedRows; }
    // Raises EInvalidGridOperation below 0, and (unlike FixedCols) from RowCount on.
    void SetFixedRows(int Value);
    int GetDefaultColWidth() const { return FDefaultColWidth; }
    void SetDefaultColWidth(int Value);
    int GetDefaultRowHeight() const { return FDefaultRowHeight; }
    void SetDefaultRowHeight(int Value);
    int GetGridLineWidth() const { return FGridLineWidth; }
    // Pixels, 0 .. MaxLineWidth (others are ignored); 2 and more draws with geometric pens.
    static constexpr int MaxLineWidth = 0x7FFF;
    void SetGridLineWidth(int Value);
    int GetLeftCol() const { return FTopLeft.X; }
    void SetLeftCol(int Value);
    int GetTopRow() const { return FTopLeft.Y; }
    void SetTopRow(int Value);
    int GetCol() const { return FCurrent.X; }
    void SetCol(int Value);
    int GetRow() const { return FCurrent.Y; }
    // -1 is ignored.
    void SetRow(int Value);
    TGridOptions GetOptions() const { return FOptions; }
    void SetOptions(TGridOptions Value);
    bool HasOption(TGridOption Option) const { return FOptions.Contains(Option); }

    // Extents in pixels. Reading outside the grid gives the default; writing there raises EInvalidGridOperation.
    // Writing fires the changing and changed notifications when the value differs.
    virtual int GetColWidths(int Index);
    virtual int GetRowHeights(int Index);
    virtual void SetRowHeights(int Index, int Value);
    virtual void SetColWidths(int Index, int Value);
    // Whether an extent was ever written; without it every cell of the axis has the default.
    bool HasColWidths() const { return !FColWidths.empty(); }
    bool HasRowHeights() const { return !FRowHeights.empty(); }
    // Another number after every change of a stored or default width, for descendants that compute widths from them.
    std::uint64_t GetColWidthsVersion() const { return FColWidthsVersion; }
    // Whether Tab stops on the column.
    bool GetTabStops(int Index) const;
    void SetTabStops(int Index, bool Value);
    TAlignment GetColAlignMent(int Index) const;
    void SetColAlignMent(int Index, TAlignment Value);

    // Sets origin, current cell and both selection corners to the first scrollable cell.
    void Initialize();
    // Gives both axes their counts at once; the setters above lead here.
    void ChangeSize(int NewColCount, int NewRowCount);
    // Inserts (Amount above 0) or removes columns or rows at Index; extents after it move along.
    virtual void AdjustSize(int Index, int Amount, bool Rows);
    virtual void DeleteColumn(int ACol);
    virtual void DeleteRow(int ARow);
    // Moves a column or row with its extent; the current cell stays on its column or row.
    void MoveColumn(int FromIndex, int ToIndex);
    void MoveRow(int FromIndex, int ToIndex);
    // Raises OnAppendRow; adds nothing itself. Called when a key cannot move past the last row.
    virtual void AppendRow();
    virtual void SizeChanged(int OldColCount, int OldRowCount);
    virtual void ColCountChanged() {}
    // For descendants that compute widths; called after every change of size.
    virtual void Updatewidths() {}
    virtual void ColWidthsChanged();
    virtual void RowHeightsChanged();
    virtual void ColumnWidthChanging(int Index, int& Value);
    virtual void ColumnWidthChanged(int Index, int Value);
    virtual void RowHeightChanging(int Index, int& Value);
    virtual void RowHeightChanged(int Index, int Value);
    virtual void ColumnMoved(int FromIndex, int ToIndex);
    virtual void RowMoved(int FromIndex, int ToIndex);

    // --- geometry ---------------------------------------------------------------------------------------------
    // Costs the visible cells plus the fixed ones, never RowCount.
    void CalcDI(TExGridDI& DI);
    // As if the client had that size.
    void CalcDIXY(TExGridDI& DI, int AxisWidth, int AxisHeight);
    // Only what concerns the fixed cells.
    void CalcFI(TExGridDI& DI);
    // The pixel at which cell Line begins, or 0 when it begins beyond the client.
    static int LinePos(const TExGridAxisDI& Axis, int Line);
    // The cell under a client point, -1 on an axis where there is none. Under right-to-left alignment every point
    // in the zone of the fixed columns gives column 0.
    TGridCoord CalcCoordFromPoint(int X, int Y, const TExGridDI& DI);
    // A whole cell or (-1, -1).
    TGridCoord MouseCoord(int X, int Y);
    void MouseToCell(int X, int Y, int& ACol, int& ARow);
    // The visible part of a range in client pixels, all zeros when nothing of it is visible. Mirrored under
    // right-to-left alignment unless the canvas mapping already mirrors.
    void GridRectToScreenRect(const TGridRect& GridRect, TRect& ScreenRect, bool IncludeLine,
                              bool ExtendRight, bool ExtendBottom);
    TRect BoxRect(int ALeft, int ATop, int ARight, int ABottom);
    TRect CellRect(int ACol, int ARow);
    int GetGridWidth();
    int GetGridHeight();
    int GetVisibleColCount();
    int GetVisibleRowCount();
    // From the first scrollable cell to the client's right edge, but only down to the last row.
    TRect GetNonFixedArea();
    // Per axis the smallest first cell that still shows Coord wholly.
    TGridCoord CalcMaxTopLeft(const TGridCoord& Coord, const TExGridDI& DI);
    // Whether there is no scrollable cell.
    bool IsGridEmpty() const;

    // --- painting ---------------------------------------------------------------------------------------------
    TColor GetFixedColor() const { return FFixedColor; }
    void SetFixedColor(TColor Value);
    TColor GetLineColor() const { return FLineColor; }
    void SetLineColor(TColor Value);
    TColor GetFixedLineColor() const { return FFixedLineColor; }
    void SetFixedLineColor(TColor Value);
    bool GetFixedRowAsButton() const { return FFixedRowAsButton; }
    void SetFixedRowAsButton(bool Value);
    bool GetFixedColAsButton() const { return FFixedColAsButton; }
    void SetFixedColAsButton(bool Value);

    void Paint() override;
    // How far above its cells a descendant paints into a column, pixels. Where only that is to be painted anew the cell
    // below takes part.
    virtual int GetPaintReach(int) const { return 0; }
    // Paints the grid on ACanvas. With Full false only the mapping of the control's own canvas is set and reset.
    virtual void DrawOn(TCanvas& ACanvas, bool Full);
    // One region: cells from (ACol, ARow) on, between the pixels Start and Stop. Each row ends with a filler cell
    // whose column is ColCount.
    virtual void DrawCells(TCanvas& ACanvas, int ACol, int ARow, int StartX, int StartY, int StopX, int StopY,
                           TColor Color, TExGridDrawState IncludeDrawState, const TExGridDI& DI,
                           bool DrawGridLines);
    // The content of one cell; fires OnDrawCell. Setting ContinueRow false ends the row.
    virtual void DrawCell(TCanvas& ACanvas, int ACol, int ARow, const TRect& Rect, TExGridDrawState State,
                          bool& ContinueRow);
    // The lines right of and below a cell. A line that is switched off is drawn in the control's colour.
    virtual void DrawLines(TCanvas& ACanvas, int ACol, int ARow, const TRect& Rect, bool VertLine,
                           bool HorzLine, TColor Color);
    // The frame of a fixed cell that looks like a button; the grid itself never calls it.
    virtual void DrawFixedFrame(TCanvas& ACanvas, const TRect& Rect, int ACol, int ARow, bool Clicked) = 0;
    // For descendants: the colours of a cell; Changed tells that they differ from the usual ones.
    virtual void GetDrawColor(int ACol, int ARow, TColor& Color, TColor& FontColor, bool& Changed);
    // Fills the area below the last row on the control's own canvas.
    virtual void FillNotCellArea(const TRect& Rect);
    // Draws or measures (DT_CALCRECT) Text. VertMode: 0 as Flags say, DT_VCENTER or DT_BOTTOM for several lines too;
    // others draw nothing. Rect is and stays in the grid's left-to-right pixels; its Top is kept.
    void DrawRTLText(TCanvas& ACanvas, std::string_view Text, TRect& Rect, unsigned Flags, int VertMode);
    // Lays a drag picture over the grid with its top left corner at a client point. It is drawn on the control's
    // own surface, since pictures outside a window are overlay windows of their own here.
    void DrawDragImg(int X, int Y, int Width, int Height, TCanvas& Source, bool Blend);
    // Switches the mirrored mapping of the control's own canvas.
    void ChangeGridOrientation(bool RightToLeft);
    // The pixels by which the only column is scrolled; 0 in a grid with more columns.
    int GetHOffset() const { return FHOffset; }

    // Each does nothing without a window handle.
    void InvalidateGrid();
    // What looks different with the focus than without: everything, since a drawing handler may ask for it.
    virtual void InvalidateFocused() { InvalidateGrid(); }
    // What a descendant marks in the columns of the selected range beyond its rows.
    virtual void InvalidateMarked() {}
    // Ignored outside the grid, and for the current cell while the editor covers it.
    virtual void InvalidateCell(int ACol, int ARow);
    // Rows 0 .. VisibleRowCount + 1, even when the grid is scrolled down.
    void InvalidateCol(int ACol);
    // Columns 0 .. VisibleColCount + 1, even when the grid is scrolled sideways (InvalidateVisibleRow is exact).
    void InvalidateRow(int ARow);
    // The same to the client's right edge.
    void InvalidateFullRow(int ARow);
    void InvalidateRect(const TGridRect& GridRect);
    void InvalidateNonFixed();
    // All that a paint draws of a row, whatever the scroll position.
    void InvalidateVisibleRow(int ARow);

    // --- scrolling --------------------------------------------------------------------------------------------
    TScrollStyle GetScrollBars() const { return FScrollBars; }
    void SetScrollBars(TScrollStyle Value);
    TScrollBarStyle GetScrollBarsStyle() const { return FScrollBarsStyle; }
    void SetScrollBarsStyle(TScrollBarStyle Value);
    TColor GetScrollBarsColor() const { return FScrollBarsColor; }
    void SetScrollBarsColor(TColor Value);
    // Whether the bars of this window obey ScrollBarsStyle and ScrollBarsColor. Those of a right-to-left grid never
    // do; they look the platform's way.
    bool GetFlatScrollBars() const { return FFlatScrollBars; }
    // The seam to the flat bars: makes them for the window and tells whether that succeeded; styles and colours them.
    // System colours stay what they are, so that the bars follow the palette.
    virtual bool InitializeFlatScrollBars();
    virtual void SetFlatScrollBarProps(TScrollBarStyle AStyle, TColor ABkColor, bool Redraw);

    // Reacts to one scroll request: ScrollBar SB_HORZ or SB_VERT, ScrollCode SB_LINEUP ..., Pos for thumb codes.
    // Line and page steps skip cells without extent.
    void ModifyScrollBar(int ScrollBar, unsigned ScrollCode, unsigned Pos, bool UseRightToLeft);
    // Whether a scroll request, or a wheel step, is being processed.
    bool GetScrolling() const { return FScrolling; }
    bool GetWheeling() const { return FWheeling; }
    // Sets the origin, kept inside the scrollable cells.
    void MoveTopLeft(int ALeft, int ATop);
    void TopLeftMoved(const TGridCoord& OldTopLeft);
    virtual void TopLeftChanged();
    // Scrolls the contents by pixels; positive moves them right or down.
    void ScrollData(int DX, int DY);
    void ScrollDataInfo(int DX, int DY, TExGridDI& DI);
    // Whether moving the pixels by that much gives the same picture as painting anew. A descendant whose cells look
    // different at odd and even positions says no where it matters; everything is then painted.
    virtual bool CanScrollPixels(int DX, int DY);
    void UpdateScrollPos();
    void UpdateScrollRange();
    virtual void TimedScroll(TGridScrollDirections Direction);
    // A row, and a column (or the step of an only column).
    TPoint GetWheelLine() override;
    // Ends the timed scrolling.
    void StopDrag();
    // The mouse position in client pixels, as the timed scrolling reads it.
    virtual TPoint GetMouseClientPos() const;

    // --- selection and keyboard -------------------------------------------------------------------------------
    // The one entry for moving the focus; nothing happens in an empty grid. AMoveAnchor false extends the range.
    virtual void FocusCell(int ACol, int ARow, bool AMoveAnchor, TShiftState Shift, TSelectionWay Way);
    // Raises EInvalidGridOperation below 0 and above the count; an index equal to the count passes.
    void MoveCurrent(int ACol, int ARow, bool AMoveAnchor, bool Show, TShiftState Shift, TSelectionWay Way);
    void MoveColRow(int ACol, int ARow, bool AMoveAnchor, bool Show);
    // Whether a cell may become current; may change the target. Fires OnSelectCell.
    virtual bool SelectCell(int& ACol, int& ARow, bool AMoveAnchor, TShiftState Shift, TSelectionWay Way);
    // With goRangeSelect and without goEditing both selection corners go to the cell and the current cell stays;
    // else the current cell moves.
    void MoveAnchor(const TGridCoord& NewAnchor);
    // Scrolls so that the cell is wholly visible.
    void ClampInView(const TGridCoord& Coord);
    // (-1, -1, -1, -1) while cleared.
    TGridRect GetSelection() const;
    // The anchor becomes (Left, Top), the current cell (Right, Bottom); the opposite corner stays.
    void SetSelection(const TGridRect& Value);
    // Hides the selection until the current cell moves.
    void ClearSelection();
    bool GetSelectionCleared() const { return FSelectionCleared; }
    virtual bool InSelection(int ACol, int ARow);
    // Invalidates the difference between an old selection and the present one.
    void SelectionMoved(const TGridRect& OldSel);
    // The corner that follows the mouse, and the other one.
    TGridCoord GetAnchor() const { return FAnchor; }
    TGridCoord GetOppositeCorner() const { return FOpposite; }
    virtual bool CanGridAcceptKey(std::uint16_t Key, TShiftState Shift);
    // Whether the keyboard focus is in this control or its editor.
    virtual bool IsActiveControl() const;

    void KeyDown(std::uint16_t& Key, TShiftState Shift) override;
    void KeyPress(char32_t& Key) override;

    // --- mouse ------------------------------------------------------------------------------------------------
    TGridState GetGridState() const { return FGridState; }
    void SetGridState(TGridState Value) { FGridState = Value; }
    // Position of the last mouse message.
    TPoint GetHittest() const { return FHitTest; }
    // Whether a press at the point counts as a press on its cell.
    virtual bool MouseHit(int X, int Y);
    // Which buttons select cells; the left one here.
    virtual bool CanButtonSelect(TMouseButton Button);
    // While set, MouseDown does none of its own press handling (focus, editor, sizing, selection).
    bool GetSkipPress() const { return FSkipPress; }
    void SetSkipPress(bool Value) { FSkipPress = Value; }
    // Whether the release of a click on the current cell may open the editor.
    bool GetPlainClick() const { return FPlainClick; }
    void SetPlainClick(bool Value) { FPlainClick = Value; }
    // The row that a drop would hit, -1 for none. Painting and invalidating it is the descendant's business.
    int GetDropTargetRow() const { return FDropTargetRow; }
    void SetDropTargetRow(int Value) { FDropTargetRow = Value; }
    virtual bool AllowDesignSizing() { return true; }
    // Whether the border of a column may be dragged, pointed to in row ARow.
    virtual bool CanColSizing(int ACol, int ARow);
    // The zones at cell borders where a press starts sizing: columns in the fixed rows with goColSizing, rows in the
    // fixed columns with goRowSizing. State, the sized Index, the border's position in the grid's own direction and
    // its distance from the mouse; gsNormal everywhere else. DI is the present layout.
    virtual void CalcSizingState(int X, int Y, TGridState& State, int& Index, int& SizingPos, int& SizingOfs,
                                 TExGridDI& DI);
    // The width that shows the visible texts of a column wholly; -1 when it has none.
    int GetFitColWidth(int ACol);
    // The same for one cell; -1 for none.
    virtual int GetCellFitWidth(int ACol, int ARow);
    // Gives a column that width; a double click on its border does the same.
    void FitColumn(int ACol);
    // Moving by mouse: in fixed rows columns with goColMoving, in fixed columns rows with goRowMoving. The hooks ask:
    // may it start at Origin (called at the press, before it is known whether the mouse will move), may it go to
    // Destination, may it be done. All may change Origin and Destination; MousePt in client pixels.
    virtual bool BeginColumnDrag(int& Origin, int& Destination, const TPoint& MousePt);
    virtual bool BeginRowDrag(int& Origin, int& Destination, const TPoint& MousePt);
    virtual bool CheckColumnDrag(int& Origin, int& Destination, const TPoint& MousePt);
    virtual bool CheckRowDrag(int& Origin, int& Destination, const TPoint& MousePt);
    // Called at the end also when nothing moves.
    virtual bool EndColumnDrag(int& Origin, int& Destination, const TPoint& MousePt);
    virtual bool EndRowDrag(int& Origin, int& Destination, const TPoint& MousePt);
    // The mouse has drawn the selected range to GetSelection; before it was OldSel.
    virtual void RangeDragged(const TGridRect& OldSel);
    // Does what the mouse asked for: MoveRow here.
    virtual void DropRow(int FromIndex, int ToIndex);
    // Whether rows are moved by any of their cells; here when there is no fixed column to take them by.
    virtual bool MovesRowsByCells() const;
    // Whether the mouse is sizing a column or row, or has been pressed where it may move one; and which.
    bool IsDragging() const { return FDrag != nullptr; }
    int GetDragIndex() const;
    // Its extent before it was sized.
    int GetDragOldExtent() const;
    // Ends sizing or moving and takes it back, as Esc does.
    virtual void CancelDrag();
    // Ends whatever the mouse is doing; nothing is taken back, and nobody is told.
    void LeaveMode();
    // A fixed cell was pressed and released, and neither sized nor moved.
    virtual void FixedCellClick(int ACol, int ARow);
    // Whether the left button is held and draws a range, sizes, moves or presses a fixed cell. Other buttons and their
    // releases mean nothing meanwhile.
    bool IsPressing() const { return FDrag || FGridState == gsSelecting || FPressedFixed != NoGridCoord; }
    // The fixed cell that looks held down now, (-1, -1) for none: the one that was pressed, while the mouse is over it.
    TGridCoord GetPressedFixed() const { return FMouseOverPressed ? FPressedFixed : NoGridCoord; }

    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    bool DoMouseWheelDown(TShiftState Shift, TPoint MousePos) override;
    bool DoMouseWheelUp(TShiftState Shift, TPoint MousePos) override;

    // --- editor -----------------------------------------------------------------------------------------------
    bool GetEditorMode() const { return FEditorMode; }
    void SetEditorMode(bool Value);
    TInplaceEdit* GetInplaceEditor() const { return FInplaceEdit; }
    // Whether the editor can be seen, scrolled out of sight or not. Editor mode alone does not say so.
    bool IsEditorShown() const;
    // The editor's cell, (-1, -1) while its text must not be written back.
    TGridCoord GetEditorCell() const { return {FInplaceCol, FInplaceRow}; }
    virtual TInplaceEdit* CreateEditor();
    virtual bool CanEditShow();
    virtual void ShowEditor();
    virtual void ShowEditorChar(char32_t Ch);
    virtual void HideEditor();
    virtual void HideEdit();
    virtual void UpdateEdit();
    // Forces a refill from the cell.
    void InvalidateEditor();
    // Leaves editor mode without storing what was typed.
    void DiscardEdit();
    // Stores the text of the editor's cell; the editor stays.
    void UpdateText();
    // For descendants whose cells move: the editor has been opened on a cell, and its text is to be stored. Base:
    // SetEditText, if there still is such a cell.
    virtual void EditStarted(int ACol, int ARow);
    virtual void StoreEdit(int ACol, int ARow, const std::string& Text);
    void EditorGone(const TInplaceEdit* Editor);
    // The edited cell is now at another place; editor and current cell go there, nobody is told.
    void MoveEditedCell(int ACol, int ARow);
    virtual void MoveEditor(int ACol, int ARow, const TRect& Rect, bool Show);
    virtual bool NeedToShowEditor();
    virtual bool CanEditAcceptKey(char32_t Key);
    virtual bool CanEditModify();
    virtual std::string GetEditText(int ACol, int ARow);
    virtual void SetEditText(int ACol, int ARow, const std::string& Value);
    virtual std::string GetEditMask(int ACol, int ARow);
    // The longest text in characters, 0 for no limit.
    virtual int GetEditLimit();

    // --- window, streams, messages ----------------------------------------------------------------------------
    // While set, widths and heights that were written travel with the component's stream.
    bool GetSaveExtents() const { return FSaveExtents; }
    void SetSaveExtents(bool Value) { FSaveExtents = Value; }
    void DefineProperties(TFiler& Filer) override;
    void Loaded() override;
    void CreateParams(TCreateParams& Params) override;
    void CreateWnd() override;
    void DestroyWnd() override;

    void WndProc(TMessage& Message) override;
    void WMMouseMove(TWMMouse& Message) override;
    void WMLButtonDown(TWMMouse& Message) override;
    void WMChar(TWMKey& Message) override;
    void WMSetCursor(TMessage& Message) override;
    void WMHScroll(TWMScroll& Message) override;
    void WMVScroll(TWMScroll& Message) override;
    void WMTimer(TWMTimer& Message) override;
    void WMSize(TWMSize& Message) override;
    void WMSetFocus(TMessage& Message) override;
    void WMKillFocus(TMessage& Message) override;
    void WMCancelMode(TMessage& Message) override;
    virtual void WMGetDlgCode(TMessage& Message);
    void CMShowingChanged(TMessage& Message) override;
    void CMWantSpecialKey(TWMKey& Message) override;
    virtual void CMCancelMode(TMessage& Message);
    virtual void CMDesignHitTest(TMessage& Message);
    void DoExit() override;

    // --- events -----------------------------------------------------------------------------------------------
    TDrawCellEvent OnDrawCell;
    TSelectCellEvent OnSelectCell;
    TNotifyEvent OnTopLeftChanged;
    TNotifyEvent OnAppendRow;
    TMovedEvent OnColumnMoved;
    TMovedEvent OnRowMoved;
    TSizedEvent OnColumnWidthChanged;
    TSizedEvent OnRowHeightChanged;
    TSizingEvent OnColumnWidthChanging;
    TSizingEvent OnRowHeightChanging;
    TGetEditEvent OnGetEditText;
    TSetEditEvent OnSetEditText;
    TGetEditEvent OnGetEditMask;

Q_SIGNALS:
    void topLeftChanged();
    void appendRowRequested();
    void columnMoved(int fromIndex, int toIndex);
    void rowMoved(int fromIndex, int toIndex);
    void columnWidthChanged(int index, int value);
    void rowHeightChanged(int index, int value);
    void cellEdited(int col, int row, const std::string& value);

private:
    // Values per column or row; empty until the first write. Entry 0 is the count, index I is entry I + 1.
    using TExtents = std::vector<int>;
    struct TDrag; // exgrid/GridDrag.h

    void CalcAxis(TExGridAxisDI& Axis, int Extent) const;
    void CalcFixedAxis(TExGridAxisDI& Axis) const;
    bool AxisToScreen(const TExGridAxisDI& Axis, int Min, int Max, bool IncludeLine, bool Extend,
                      int& ScreenMin, int& ScreenMax) const;
    // Where the visible cells of a range and their lines begin and end; false when there are none.
    bool CellsToPixels(const TExGridAxisDI& Axis, int Min, int Max, int& Start, int& End) const;
    void StoreExtent(TExtents& Extents, int Count, int Index, int Value);
    void ResizeAxes(int NewColCount, int ColIndex, int NewRowCount, int RowIndex);
    void KeepCellsInside();
    void ExtentsChanged();
    bool MayEdit();
    void RefreshEdit(bool Show);
    void PlaceEditor(bool Show);
    // The largest origin of a client of that width, or height.
    int MaxLeftIn(int AxisWidth);
    int MaxTopIn(int AxisHeight);
    void ShowScrollPos(const TGridCoord& MaxTopLeft);
    void InvalidateStrips(int OldColCount, int OldRowCount);
    TGridCoord NextTabCell(bool Back);
    void MoveSingleColumn(unsigned ScrollCode, unsigned Pos, int Direction);
    int GetSingleColumnRange(const TExGridDI& DI);
    void SetBarPos(int ScrollBar, int Pos, int MaxPos);
    bool HasBar(int ScrollBar) const;
    void ExtendDrag(const TGridCoord& Cell);
    void Press(TMouseButton Button, TShiftState Shift, int X, int Y);
    void PressCell(const TGridCoord& Cell, TMouseButton Button, TShiftState Shift);
    int AlongAxis(const TPoint& Pos, bool Columns) const;
    void SetPressedFixed(const TGridCoord& Cell);
    void SetMouseOverPressed(bool Value);
    TGridState SizingAt(const TPoint& Pos, int& Index);
    void BeginSizing(TGridState State, int Index, const TPoint& Pos, bool Fit);
    void SizeTo(const TPoint& Pos);
    void SizeCell(bool Columns, int Index, int Extent);
    void BeginMoving(TGridState State, const TGridCoord& Cell, const TPoint& Pos);
    bool ShowDrag();
    bool IsDragShown() const;
    void MoveDragTo(const TPoint& Pos);
    void AimDrag();
    void MoveAndScroll(const TPoint& Pos);
    void GetDragRects(TRect& Picture, TRect& Mark, TRect& Line);
    void InvalidateDrag();
    void DrawDrag();
    void DropDrag(const TPoint& Pos);
    void CancelMode();
    void DrawFocus(TCanvas& ACanvas);
    int GetPaintShift(const TExGridDI& DI);
    void KeepHOffset();
    bool HasEmptyColumn(int A, int B);
    void ReadColWidths(TReader& Reader);
    void WriteColWidths(TWriter& Writer);
    void ReadRowHeights(TReader& Reader);
    void WriteRowHeights(TWriter& Writer);

    TExtents FColWidths;
    TExtents FRowHeights;
    TExtents FTabStops;
    TExtents FColAlignments;
    std::uint64_t FColWidthsVersion = 0;
    TGridCoord FTopLeft;
    TGridCoord FCurrent;
    TGridCoord FAnchor;
    TGridCoord FOpposite;
    TGridCoord FDragStart = NoGridCoord; // fixed corner of a range that the mouse draws
    TGridCoord FClickCell =
        NoGridCoord; // current cell that was pressed again and opens the editor on release
    TGridCoord FPressedFixed = NoGridCoord;
    std::unique_ptr<TDrag> FDrag; // what the mouse sizes or moves
    TInplaceEdit* FInplaceEdit = nullptr;
    TPoint FHitTest;
    TGridOptions FOptions{goFixedVertLine, goFixedHorzLine, goVertLine, goHorzLine, goRangeSelect};
    TColor FFixedColor = clBtnFace;
    TColor FLineColor = clSilver;
    TColor FFixedLineColor = clBlack;
    TColor FScrollBarsColor = clWhite;
    TScrollStyle FScrollBars = ssBoth;
    TScrollBarStyle FScrollBarsStyle = sbsRegular;
    TGridState FGridState = gsNormal;
    int FColCount = 1;
    int FRowCount = 2;
    int FFixedCols = 0;
    int FFixedRows = 1;
    int FDefaultColWidth = 75;
    int FDefaultRowHeight = 24;
    int FGridLineWidth = 1;
    int FHOffset = 0;
    int FDropTargetRow = -1;
    int FInplaceCol = -1;
    int FInplaceRow = -1;
    unsigned FEditSession = 0;           // counts how often the editor was given a cell or lost it
    unsigned FStoringSession = 0;        // whose text is being stored, 0 for none
    TGridCoord FAskedCell = NoGridCoord; // for which the application was asked whether it may be edited
    bool FFixedRowAsButton = true;
    bool FFixedColAsButton = true;
    bool FSelectionCleared = false;
    bool FEditorMode = false;
    bool FAskingEdit = false;
    bool FHidingEdit = false;
    bool FFlatScrollBars = false;
    bool FScrolling = false;
    bool FWheeling = false;
    bool FSkipPress = false;
    bool FPlainClick = true;
    bool FMouseOverPressed = true;
    bool FSaveExtents = true;
    bool FUpdatingRange = false;
};

} // namespace quill
