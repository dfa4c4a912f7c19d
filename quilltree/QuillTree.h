// TQuillTree: a tree view whose visible nodes are the rows of an owner-drawn grid.
//
// The nodes live in a container of their own (GetItems, quilltree/FlyNodes.h), which keeps the list of visible
// nodes; entry i of that list is grid row FixedRows + i. One column, the structure column, carries the outline; the
// others show the nodes' cell texts.
//
// A handler of any event may do anything: delete the node it is told about, clear the tree, destroy the control, run
// a nested event loop. Every call into application code is followed by a check of what is still there.
#pragma once

#include "exgrid/ExGrid.h"
#include "host/forms/QtProperties.h"
#include "host/graphics/ImageLists.h"
#include "host/windows/Dragging.h"
#include "oledragdrop/OLEDragDrop.h"
#include "quilltree/FlyNode.h"
#include "quilltree/FlyNodes.h"
#include "quilltree/NodeHost.h"
#include "quilltree/TreeTypes.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quill {

class TNVHTMLHintWindow;
class TTimer;

// Metrics of the outline, in pixels.
namespace TreeMetrics {
inline constexpr int TextMargin = 4;      // between the outline (or the cell edge) and the text
inline constexpr int TextOnlyExtra = 8;   // added to the text's width by tnsTextOnly
inline constexpr int FixedTextMargin = 4; // on both sides of a fixed cell's text
inline constexpr int RowTextPadding = 2;  // added to a measured row height
inline constexpr int ButtonArm = 3;       // half length of a button's plus and minus
inline constexpr int CheckBoxSize = 13;   // side of the system check-box glyph at scale 1
} // namespace TreeMetrics

// Side of one system check-box glyph; computed once per process.
extern int FCheckWidth;
int GetCheckSize();
// Loads the marks of the double-check glyphs anew.
void InitDoubleChecks();

// Horizontal slots of a node's structure cell, in the cell's logical direction (left to right before mirroring).
// Painting and every other reader take them from here.
struct TOutlineSlots {
    int Level = 0;
    int Button = 0; // left edge of the slot of lines and button
    bool HasButtonSlot = false;
    int State = 0; // left edge of the state glyph's slot
    bool HasStateSlot = false;
    int Rest = 0; // left edge of what follows: image, then text
};

using TNodeWatch = TWatch<TFlyNode>;

class TCustomQuillTree : public TCustomExGrid, public INodeHost {
    Q_OBJECT

public:
    explicit TCustomQuillTree(TComponent* AOwner, QWidget* AParent = nullptr);
    explicit TCustomQuillTree(QWidget* AParent)
        : TCustomQuillTree(static_cast<TComponent*>(nullptr), AParent) {}
    explicit TCustomQuillTree(std::nullptr_t = nullptr)
        : TCustomQuillTree(static_cast<TComponent*>(nullptr)) {}
    ~TCustomQuillTree() override;

    // --- nodes ------------------------------------------------------------------------------------------------
    TFlyNodes* GetItems() const { return FItems.get(); }
    // Copies Value's nodes into the tree's own container.
    void SetItems(TFlyNodes* Value) { SetNodes(Value); }
    void SetNodes(TFlyNodes* Value);
    // Factory of all nodes of this tree; a descendant makes its own class here.
    TFlyNode* CreateNode(TTreeCollection* Owner) override;

    // --- rows -------------------------------------------------------------------------------------------------
    // Rebuilds the whole row list (null) or the rows below one node.
    void RefreshNodeList(TTreeCollection* Node) override;
    void FixupRows() override;
    // The node of a grid row; makes a placeholder real. Null for fixed rows and rows outside.
    TFlyNode* GetNodeAtRow(int Row) override;
    TFlyNode* ExtractNodeFromMetaNode(int Index, TMetaNode* Meta);
    TFlyNode* GetNextVisible(TFlyNode* Node) override;
    TFlyNode* GetPrevVisible(TFlyNode* Node) override;
    TFlyNode* GetLastVisibleNode();
    bool IsNodeVisible(TFlyNode* Node) const;
    void MakeVisible(TFlyNode* Node);
    TFlyNode* GetTopItem() { return GetNodeAtRow(GetTopRow()); }
    void SetTopItem(TFlyNode* Node);
    // Rows Index + 1 .. Index + Count appear; the rows below slide down while SmoothExpandCollapse is on.
    void InsertRows(int Index, int Count) override;
    void DeleteRows(int Index, int Count) override;
    void FixupRowHeights(int FromRow) override;
    int GetFixedRows() const override { return TCustomExGrid::GetFixedRows(); }
    void SetFixedRows(int Value);

    // --- row heights ------------------------------------------------------------------------------------------
    int GetRowHeights(int Row) override;
    void SetRowHeights(int Row, int Height) override;
    // Height in pixels that Node needs in one column, and over all columns.
    int CalcNodeHeight(TFlyNode* Node, int Col);
    int RecalcNodeHeight(TFlyNode* Node) override;
    // Forgets every measured height; rows are measured again when they come into view.
    void RefreshRowHeights() override;
    // Width of the node's text in the control's font plus 1.
    int DisplayWidth(TFlyNode* Node);

    // --- columns ----------------------------------------------------------------------------------------------
    void InitColumnsMap();
    // The data column shown at display position Index; -1 outside.
    int GetColumnOrder(int Index) const;
    // The display position of a data column; -1 when it is not shown.
    int GetDisplayColumn(int DataCol) const;
    void ColumnMoved(int FromIndex, int ToIndex) override;
    void ColCountChanged() override;
    int GetStructureCol() const override { return FStructureCol; }
    // Grows ColCount when needed; -1 only repaints, since a tree always has a structure column.
    void SetStructureCol(int Value);
    virtual void StructureColChanged(int OldCol, int NewCol);
    int GetColWidths(int Col) override;
    void SizeChanged(int OldColCount, int OldRowCount) override;
    void ColumnWidthChanged(int Index, int Value) override;

    // --- captions ---------------------------------------------------------------------------------------------
    // Texts of columns, by data column, shown in the first fixed row (FixedRows 1 and more) where OnGetEditText
    // answers nothing. They move with their columns. None to begin with.
    static constexpr int CaptionRow = 0;
    std::string GetCaptions(int DataCol) const;
    void SetCaptions(int DataCol, const std::string& Value);
    // The data column whose caption shows the sort arrow, -1 for none. Only shown: sorting is the program's, when
    // OnCaptionClick tells that a caption was clicked.
    int GetSortColumn() const { return FSortColumn; }
    void SetSortColumn(int DataCol);
    TSortDirection GetSortDirection() const { return FSortDirection; }
    void SetSortDirection(TSortDirection Value);
    virtual void CaptionClick(int DataCol);
    void FixedCellClick(int ACol, int ARow) override;
    int GetCellFitWidth(int ACol, int ARow) override;

    // --- texts ------------------------------------------------------------------------------------------------
    std::string GetNodeCells(TFlyNode* Node, int DataCol) override;
    void SetNodeCells(TFlyNode* Node, int DataCol, const std::string& S) override;
    virtual std::string GetNodeData(TFlyNode* Node, int ACol);
    virtual void SetNodeData(TFlyNode* Node, int ACol, const std::string& S);
    std::string GetEditText(int ACol, int ARow) override;
    void SetEditText(int ACol, int ARow, const std::string& Value) override;
    virtual void Edited(TFlyNode* Node, std::string& S);
    bool CanEditShow() override;
    void MoveEditor(int ACol, int ARow, const TRect& Rect, bool Show) override;
    bool NeedToShowEditor() override;
    void UpdateEdit() override;
    void EditStarted(int ACol, int ARow) override;
    void StoreEdit(int ACol, int ARow, const std::string& Text) override;
    void WndProc(TMessage& Message) override;

    // --- dragging nodes ---------------------------------------------------------------------------------------
    // dtStandard: nodes are dragged inside the program (OnDragOver, OnDragDrop) where goRowMoving lets rows be moved.
    // dtOLE: they are dragged to any program as text, and the tree takes what others drag to it.
    TNVDragType GetDragType() const { return FDragType; }
    // Raises Exception when the tree's window has another drop target already.
    void SetDragType(TNVDragType Value);
    void UpdateDropTarget();
    // Whether a row that was moved with the mouse takes the selected nodes along; otherwise OnRowMoved only tells.
    bool GetAutoMove() const { return FAutoMove; }
    void SetAutoMove(bool Value) { FAutoMove = Value; }
    // The node that something is dragged over, and after a drop inside the program the one it fell on until the drag has
    // ended. Null without a window.
    TFlyNode* GetDropTarget();
    void SetDropTarget(TFlyNode* Node) override;
    // A line for each selected node: a space for each level, then the texts of the selected columns with a tab before each
    // but column 0, CR LF.
    std::string GetDragText();
    TCustomImageList* GetDragImages() override;
    // Puts a picture of the selected rows in view into ImageList; (X, Y) is where the mouse took Node, client pixels.
    void PrepareDragImages(TFlyNode* Node, int X, int Y, TCustomImageList* ImageList);
    // Drags the node at that point, and the others that are selected, with the mouse button that is held; returns after
    // the drop.
    void DoOleDrag(int X, int Y);
    // Whether a press on that data column of a node may become a drag; the base says so for all of them.
    virtual bool DragsFromColumn(TFlyNode* Node, int DataCol);
    // The components of drags with other programs; descendants give theirs more formats.
    virtual std::unique_ptr<TOLEDropSource> CreateDropSource();
    virtual std::unique_ptr<TOLEDropTarget> CreateDropTarget();
    virtual void OLEDragOver(TObject* Sender, NV_IDataObject* DataObject, TShiftState Shift, TPoint Pt,
                             int& Effect);
    virtual void OLEDragDrop(TObject* Sender, NV_IDataObject* DataObject, TShiftState Shift, TPoint Pt,
                             int& Effect);
    void DoDragOver(TDragObject* Source, int X, int Y, bool CanDrop);
    void DoStartDrag(TDragObject*& DragObject) override;
    void DoEndDrag(TObject* Target, int X, int Y) override;
    void DragOver(TObject* Source, int X, int Y, TDragState State, bool& Accept) override;
    void CMDrag(TCMDrag& Message) override;
    bool BeginRowDrag(int& Origin, int& Destination, const TPoint& MousePt) override;
    bool EndRowDrag(int& Origin, int& Destination, const TPoint& MousePt) override;
    void RowMoved(int FromIndex, int ToIndex) override;
    void CreateWindowHandle(const TCreateParams& Params) override;

    // --- drops that do something ------------------------------------------------------------------------------
    // Whether the upper and the lower edge of a row mean before and after its node, which a line shows.
    bool GetDropMarks() const { return FDropMarks; }
    void SetDropMarks(bool Value);
    // After so many milliseconds a closed node that something is held over opens; 0 for never.
    int GetHoverExpandTime() const { return FHoverExpandTime; }
    void SetHoverExpandTime(int Value);
    // Whether drags of other programs scroll at the edges, too.
    bool GetDropScroll() const { return FDropScroll; }
    void SetDropScroll(bool Value) { FDropScroll = Value; }
    // Whether nodes that are dragged from a tree of this program are moved to where they are dropped, or copied with
    // Ctrl. The drag events come first and can refuse. A node is not moved below itself.
    bool GetAutoDrop() const { return FAutoDrop; }
    void SetAutoDrop(bool Value) { FAutoDrop = Value; }
    // Where a drop would go now. With dpNone there is no node under the mouse: behind the last one.
    TDropPlace GetDropPlace() const { return FDropPlace; }
    // The selected nodes without those below others of them.
    std::vector<TFlyNode*> GetDraggedNodes();
    virtual bool CanDropNodes(const std::vector<TFlyNode*>& Nodes, TFlyNode* Target, TDropPlace Place,
                              bool Copy);
    // Moves or copies nodes of any tree in the program, with all that is below them, and selects them.
    virtual void DropNodes(const std::vector<TFlyNode*>& Nodes, TFlyNode* Target, TDropPlace Place,
                           bool Copy);
    // The drag to other programs has ended with that result; Inside tells that the drop was on a tree of this program.
    virtual void NodesDragged(TDragResult Result, bool Inside);
    TPoint GetMouseClientPos() const override;
    void WMTimer(TWMTimer& Message) override;
    void DragDrop(TObject* Source, int X, int Y) override;

    // --- clipboard --------------------------------------------------------------------------------------------
    // What cutting, copying and pasting nodes means is the program's business: these fire the events. They are reached
    // by WM_CUT, WM_COPY and WM_PASTE and by the platform's keys for them, never while the editor shows.
    virtual void CutSelection();
    virtual void CopySelection();
    virtual void PasteSelection();
    void WMCut(TMessage& Message) override;
    void WMCopy(TMessage& Message) override;
    void WMPaste(TMessage& Message) override;
    TClipboardKey GetClipboardKey(unsigned Msg) const override;

    // --- painting ---------------------------------------------------------------------------------------------
    void Paint() override;
    // Outline lines reach into the row above.
    int GetPaintReach(int ACol) const override { return FShowlines && ACol == FStructureCol ? 2 : 0; }
    void DrawCell(TCanvas& Canvas, int ACol, int ARow, const TRect& Rect, TExGridDrawState State,
                  bool& ContinueRow) override;
    virtual void DrawBackground(TCanvas& Canvas, const TRect& Rect, int ARow, int ACol,
                                TExGridDrawState State);
    // Selection colours of a cell; Changed tells that BrushColor and FontColor were set.
    using TCustomExGrid::GetColor;
    virtual void GetColor(TFlyNode* Node, int ACol, int ARow, TExGridDrawState State, TColor& BrushColor,
                          TColor& FontColor, bool& Changed);
    virtual void DrawFixed(TCanvas& Canvas, const TRect& Rect, int ARow, int ACol, TExGridDrawState State);
    void DrawFixedFrame(TCanvas& Canvas, const TRect& Rect, int ACol, int ARow, bool Clicked) override;
    virtual void DrawStructureNode(TCanvas& Canvas, TFlyNode* Node, const TRect& Rect, int ARow, int ACol,
                                   TExGridDrawState State);
    // Draws the outline parts in Options; leaves in Rect what remains for the text.
    virtual void DrawStructureButtonsLines(TCanvas& Canvas, TFlyNode* Node, int ARow, int ACol, TRect& Rect,
                                           TExGridDrawState State, TDrawOptions Options);
    // Draws the text of a structure cell; HotFont tells whether the canvas font was changed for the hot look.
    virtual void DrawStructureCellContents(TCanvas& Canvas, TRect& Rect, bool& HotFont,
                                           TExGridDrawState State, const std::string& Text, TFlyNode* Node,
                                           TNVVertAlign VertAlign, int ARow, int ACol);
    virtual void DrawDataNode(TCanvas& Canvas, TFlyNode* Node, const TRect& Rect, int ARow, int ACol,
                              TExGridDrawState State);
    virtual void DrawButton(TCanvas& Canvas, TFlyNode* Node, TQuillBitmap Kind, TRect Rect);
    virtual void DrawImagelistPic(TCanvas& Canvas, TFlyNode* Node, TQuillBitmap Kind, const TRect& Rect);
    // Copies glyph Index of the glyph set, or picture Index of Images (nothing without a list), into Bitmap.
    virtual void GetImage(TFlyNode* Node, int Index, TBitmap& Bitmap);
    virtual void GetBitmap(TFlyNode* Node, int Index, TBitmap& Bitmap);
    // Draws a bitmap transparently, centred horizontally in Rect.
    virtual void DrawImage(TCanvas& Canvas, TBitmap& Bitmap, const TRect& Rect);
    // A dotted line from the pen position to (X, Y).
    virtual void InternalLineTo(TCanvas& Canvas, int X, bool Vertical, int Y);
    // The x of the outline centre of a level; always odd.
    virtual int GetCX(int Level);
    virtual TAlignment GetAlignment(int ACol);
    void InitGlyphs();
    TCustomImageList* GetGlyphs() const { return FGlyphs.get(); }
    // The glyph kind of a node state index; -1 for none.
    static int StateGlyph(int StateIndex);
    // Slots of Node's structure cell whose left edge is Left.
    TOutlineSlots GetOutlineSlots(TFlyNode* Node, int Left) const;

    // --- mouse ------------------------------------------------------------------------------------------------
    THitTests GetHitTestInfoAt(int X, int Y);
    TFlyNode* GetNodeAt(int X, int Y);
    // The node's rectangle from the structure cell to the client edge, or only its text part.
    TRect DisplayRect(TFlyNode* Node, bool TextOnly);
    bool MouseHit(int X, int Y) override;
    // The right button too with RightClickSelect, unless the node under the mouse is marked already.
    bool CanButtonSelect(TMouseButton Button) override;
    void CalcSizingState(int X, int Y, TGridState& State, int& Index, int& SizingPos, int& SizingOfs,
                         TExGridDI& DI) override;
    void CancelDrag() override;
    // Marks the nodes that came into the range, and no longer those that left it.
    void RangeDragged(const TGridRect& OldSel) override;
    // Rows have the order of the nodes: RowMoved says what that means.
    void DropRow(int FromIndex, int ToIndex) override { RowMoved(FromIndex, ToIndex); }
    void WMLButtonDown(TWMMouse& Message) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void MouseMove(TShiftState Shift, int X, int Y) override;
    void WMLButtonUp(TWMMouse& Message) override;
    void CMMouseLeave(TMessage& Message) override;
    // Takes a row, not a node: the row under the mouse, -1 for none.
    void SetTrackedNode(int Row);
    int GetTrackedRow() const { return FTrackedRow; }
    virtual void ColSized(int ACol, int OldWidth, int NewWidth);
    void RowSized(int ARow, int OldHeight, int NewHeight) override;
    bool ChangeState(TFlyNode* Node, int NewState) override;

    // --- tooltips ---------------------------------------------------------------------------------------------
    // While on, a cell that is too narrow for its text shows it in a hint window when the mouse comes over it.
    bool GetToolTips() const { return FToolTips; }
    void SetToolTips(bool Value);
    TColor GetTooltipColor() const { return FTooltipColor; }
    void SetTooltipColor(TColor Value) { FTooltipColor = Value; }
    // How long a tooltip stays, in milliseconds; 0 for as long as the mouse.
    int GetToolTipPause() const { return FToolTipPause; }
    void SetToolTipPause(int Value) { FToolTipPause = Value; }
    // Shows the tooltip of the cell under a client point when it needs one; true when it did.
    bool ActivateToolTips(int X, int Y);
    void HideToolTip();
    void StartToolTipTimer(int Pause);
    void StopToolTipTimer();
    void TimerProc(TObject* Sender);
    // Null while tooltips are off.
    TNVHTMLHintWindow* GetHintWindow() const { return FHintWindow.get(); }
    void WMMouseMove(TWMMouse& Message) override;
    void TopLeftChanged() override;
    bool DoMouseWheelDown(TShiftState Shift, TPoint MousePos) override;
    bool DoMouseWheelUp(TShiftState Shift, TPoint MousePos) override;

    // --- selection and keys -----------------------------------------------------------------------------------
    using TCustomExGrid::SetSelection;
    // The node of the current row; null while the selection is cleared.
    TFlyNode* GetSelection();
    void SetSelection(TFlyNode* Node) override;
    TFlyNode* GetSelected() { return GetSelection(); }
    void SetSelected(TFlyNode* Node) { SetSelection(Node); }
    TGridRect GetGridSelection() const { return TCustomExGrid::GetSelection(); }
    bool SelectCell(int& ACol, int& ARow, bool MoveAnchor, TShiftState Shift, TSelectionWay Way) override;
    void Selecting(int ACol, int ARow, TFlyNode* Node, TShiftState Shift, bool MoveAnchor);
    void FocusCell(int ACol, int ARow, bool MoveAnchor, TShiftState Shift, TSelectionWay Way) override;
    // Marks the node of Row and makes it the anchor; other marks stay.
    void SelectOne(int Row) override;
    void SelectItem(TFlyNode* Node) override;
    void FlushSelection();
    // Marks every row; only with goRangeSelect.
    void SelectAll();
    void FillSelectedList(std::vector<TFlyNode*>& List);
    bool InSelection(int ACol, int ARow) override;
    virtual bool CanChange(TFlyNode* Node);
    virtual void Change(TFlyNode* Node);
    bool CanExpand(TFlyNode* Node) override;
    bool CanCollapse(TFlyNode* Node) override;
    void Expand(TFlyNode* Node) override;
    void Collapse(TFlyNode* Node) override;
    void Delete(TFlyNode* Node) override;
    // A hook for descendants; does nothing.
    virtual void ExpandItem(TFlyNode* Node, bool Expand);
    void FullExpand();
    void FullCollapse();
    // The next visible node whose text begins with the search text, Start itself when there is none.
    TFlyNode* IncSearch(TFlyNode* Start);
    // Whether pixels moved so far keep the outline right, whose dots and boxes keep to every second line.
    bool CanScrollPixels(int DX, int DY) override;
    void KeyDown(std::uint16_t& Key, TShiftState Shift) override;
    void CMWantSpecialKey(TWMKey& Message) override;
    void WMChar(TWMKey& Message) override;

    // --- published properties ---------------------------------------------------------------------------------
    int GetButtonSize() const { return FButtonSize; }
    // Side of the expand button; made odd, ignored above Indent.
    void SetButtonSize(int Value);
    int GetIndent() const { return FIndent; }
    // Pixels per outline level; ignored unless above ButtonSize.
    void SetIndent(int Value);
    bool GetSmoothExpandCollapse() const { return FSmoothExpandCollapse; }
    void SetSmoothExpandCollapse(bool Value) { FSmoothExpandCollapse = Value; }
    bool GetFitColumnToClientWidth() const { return FFitColumnToClientWidth; }
    void SetFitColumnToClientWidth(bool Value);
    bool GetFitToHeight() const override { return FFitToHeight; }
    void SetFitToHeight(bool Value);
    bool GetUniqueTags() const { return FUniqueTags; }
    void SetUniqueTags(bool Value) { SetEnumerateNodes(Value); }
    bool GetEnumerateNodes() const override { return FUniqueTags; }
    void SetEnumerateNodes(bool Value);
    // Numbers all nodes in document order.
    void EnumerateNodes();
    TNodeSelectionStyle GetNodeSelectionStyle() const { return FNodeSelectionStyle; }
    void SetNodeSelectionStyle(TNodeSelectionStyle Value);
    TOutlineStyle GetOutlineStyle() const { return FOutlineStyle; }
    void SetOutlineStyle(TOutlineStyle Value);
    TColor GetOutlineColor() const { return FOutlineColor; }
    void SetOutlineColor(TColor Value);
    bool GetHotTrack() const { return FHotTrack; }
    // Stays off while the structure column is a fixed column.
    void SetHotTrack(bool Value);
    TColor GetHotTrackColor() const { return FHotTrackColor; }
    void SetHotTrackColor(TColor Value);
    bool GetHideSelection() const { return FHideSelection; }
    void SetHideSelection(bool Value);
    bool GetRightClickSelect() const { return FRightClickSelect; }
    void SetRightClickSelect(bool Value) { FRightClickSelect = Value; }
    bool GetTransparentMode() const { return FTransparentMode; }
    void SetTransparentMode(bool Value);
    bool GetStatesDrawed() const { return FStatesDrawed; }
    void SetStatesDrawed(bool Value);
    bool GetShowlines() const { return FShowlines; }
    void SetShowlines(bool Value);
    bool GetShowRoot() const { return FShowRoot; }
    void SetShowRoot(bool Value);
    bool GetShowButtons() const { return FShowButtons; }
    void SetShowButtons(bool Value);
    bool GetShowImages() const { return FShowImages; }
    void SetShowImages(bool Value);
    bool GetShowLogic() const { return FShowLogic; }
    void SetShowLogic(bool Value);
    // Whether the texts of all cells are markup (htmldraw/HTMLDraw.h).
    bool GetHTMLDrawing() const { return FHTMLDrawing; }
    void SetHTMLDrawing(bool Value);
    bool GetWordWrap() const { return FWordWrap; }
    void SetWordWrap(bool Value);
    // Whether a plain click on a node toggles its mark, and Ctrl selects it alone.
    bool GetToggleSelection() const { return FToggleSelection; }
    void SetToggleSelection(bool Value) { FToggleSelection = Value; }
    bool GetAutoExpand() const { return FAutoExpand; }
    void SetAutoExpand(bool Value) { FAutoExpand = Value; }
    // Stored for programs; no painting step reads it.
    unsigned char GetFirstLevelDrawMode() const { return FFirstLevelDrawMode; }
    void SetFirstLevelDrawMode(unsigned char Value);
    virtual TCustomImageList* GetImages() const { return FImages; }
    void SetImages(TCustomImageList* Value);
    TSortType GetSortType() const override { return FSortType; }
    void SetSortType(TSortType Value);

    // --- events -----------------------------------------------------------------------------------------------
    TFTVExpandingEvent OnExpanding;
    TFTVExpandedEvent OnExpanded;
    TFTVCollapsingEvent OnCollapsing;
    TFTVExpandedEvent OnCollapsed;
    TFTVChangingEvent OnChanging;
    TFTVChangedEvent OnChange;
    TFTVCompareEvent OnCompare;
    TFTVExpandedEvent OnDeletion;
    TFTVExpandedEvent OnGetImageIndex;
    TFTVExpandedEvent OnGetSelectedIndex;
    TFTVEditingEvent OnEditing;
    TFTVEditedEvent OnEdited;
    TDropTargetEvent OnOLEDragOver;
    TDropTargetEvent OnOLEDragDrop;
    TFeedbackEvent OnOLEGiveFeedback;
    TCompleteDragEvent OnOLECompleteDrag;
    TStartDragEvent OnOLEStartDrag;
    TSetDataEvent OnOLESetData;
    TNotifyEvent OnCutSelection;
    TNotifyEvent OnCopySelection;
    TNotifyEvent OnPasteSelection;
    // A placeholder became a real node, which is empty still: give it its texts here.
    TFTVExpandedEvent OnMaterialise;
    // A caption was clicked (not sized, not moved); its data column.
    TFTVCaptionEvent OnCaptionClick;

    // --- forms ------------------------------------------------------------------------------------------------
    // Besides what the grid defines: "Data", the nodes in the collection's own format, where SaveNodes allows it; the
    // captions; and the order of the columns when they were moved.
    void DefineProperties(TFiler& Filer) override;
    virtual bool SaveNodes() { return true; }
    // Replaces the nodes by those of a stream; those that were read before a fault stay.
    void ReadData(TStream& Stream);
    void WriteData(TStream& Stream);

    // --- host overrides ---------------------------------------------------------------------------------------
    void Loaded() override;
    void Notification(TComponent* AComponent, TOperation Operation) override;
    void CMFontChanged(TMessage& Message) override;
    void InvalidateFocused() override;
    void InvalidateMarked() override;
    template <class TWanted>
    void InvalidateRowsWhere(TWanted Wanted);

    // --- what the node model asks and tells (quilltree/NodeHost.h) ----------------------------------------------
    TCustomQuillTree* GetTreeControl() override { return this; }
    TPersistent* GetPersistentOwner() override { return this; }
    bool HasWindow() const override { return HandleAllocated(); }
    bool IsLoading() const override { return HasState(csLoading) || FLoading; }
    bool IsDestroying() const override { return HasState(csDestroying); }
    void SetRedraw(bool Enable) override;
    void ProcessMessages() override;
    void SetExpanding(bool Value) override { FExpanding = Value; }
    bool GetExpanding() const { return FExpanding; }
    void SetClearing(bool Value) override { FClearing = Value; }
    bool GetClearing() const { return FClearing; }
    void ForgetNode(TFlyNode* Node) override;
    void ForgetSelectionNodes() override;
    void NodeMaterialised(TFlyNode* Node) override;
    // A descendant may override the reading and storing of cells.
    bool StoresPlainTexts() const override;
    int GetStructureDataColumn() const override { return GetColumnOrder(FStructureCol); }
    bool HasCompare() const override { return static_cast<bool>(OnCompare); }
    int Compare(TFlyNode* Node1, TFlyNode* Node2) override;
    int GetColCount() const override { return TCustomExGrid::GetColCount(); }
    int GetRowCount() const override { return TCustomExGrid::GetRowCount(); }
    int GetFixedCols() const override { return TCustomExGrid::GetFixedCols(); }
    int GetVisibleRowCount() override { return TCustomExGrid::GetVisibleRowCount(); }
    int GetTopRow() const override { return TCustomExGrid::GetTopRow(); }
    void SetTopRow(int Value) override { TCustomExGrid::SetTopRow(Value); }
    int GetCol() const override { return TCustomExGrid::GetCol(); }
    int GetRow() const override { return TCustomExGrid::GetRow(); }
    void SetRow(int Value) override { TCustomExGrid::SetRow(Value); }
    int CalcMaxTopRow(int ACol, int ARow) override;
    void MoveTopLeft(int ALeft, int ATop) override { TCustomExGrid::MoveTopLeft(ALeft, ATop); }
    bool HasSelection() const override { return TCustomExGrid::GetSelection().Top >= 0; }
    bool IsRowSelect() const override { return GetOptions().Contains(goRowSelect); }
    bool IsRangeSelect() const override { return GetOptions().Contains(goRangeSelect); }
    void SetGridSelection(int Left, int Top, int Right, int Bottom) override;
    int GetDropTargetRow() const override { return TCustomExGrid::GetDropTargetRow(); }
    int GetDefaultRowHeight() const override { return TCustomExGrid::GetDefaultRowHeight(); }
    void Invalidate() override { TCustomExGrid::Invalidate(); }
    void Repaint() override { TCustomExGrid::Repaint(); }
    void InvalidateCell(int ACol, int ARow) override;
    void InvalidateRow(int ARow) override { TCustomExGrid::InvalidateRow(ARow); }
    void InvalidateBox(int ALeft, int ATop, int ARight, int ABottom, bool Erase) override;
    void InvalidateRectBelow(TFlyNode* Node) override;
    void SetEditorMode(bool Value) override;
    void HideEditor() override;
    void HideEdit() override { TCustomExGrid::HideEdit(); }
    bool EditNodeText(TFlyNode* Node) override;
    void EndNodeEdit(TFlyNode* Node, bool Cancel) override;

public Q_SLOTS:
    // For menus: the editor's own command while it shows, otherwise that of the nodes.
    void cutSelection();
    void copySelection();
    void pasteSelection();

Q_SIGNALS:
    void expanded(quill::TFlyNode* Node);
    void collapsed(quill::TFlyNode* Node);
    void changed(quill::TFlyNode* Node);
    void deletion(quill::TFlyNode* Node);
    void captionClicked(int DataCol);
    // The user has edited a text, which is stored now.
    void edited(quill::TFlyNode* Node, int DataCol);

private:
    bool IsEditorShowing() const { return GetEditorMode() && IsEditorShown(); }
    void FindEditedCell(int& ACol, int& ARow) const;
    void StoreNodeText(TFlyNode* Node, int DataCol, const std::string& Value);
    void FollowEdit();
    void SendClipboard(unsigned Msg);
    void DoClipboard(TMessage& Message, void (TCustomQuillTree::*Operation)());
    void FireClipboard(const TNotifyEvent& Event);
    bool CanDragNodes() const { return FDragType == dtOLE || HasOption(goRowMoving); }
    void DetectDrag(int X, int Y);
    void EndDropTarget();
    void InvalidateDropRow(int Row);
    void MoveSelectedTo(TFlyNode* Target);
    void AimDrop(TFlyNode* Node, TPoint Pt);
    void EndAim();
    TRect GetDropMark();
    void InvalidateDropMark();
    void DrawDropMark();
    bool TakesDrag(TCustomQuillTree* From, TFlyNode* Target, bool Copy);
    bool CopiesDrag(TShiftState Shift) const;
    bool AimAt(TPoint Pt);
    void ReAim();
    void CopyFields(TFlyNode* To, TFlyNode* From);
    void DrawLinesOfSlot(TCanvas& Canvas, TFlyNode* Node, const TRect& Cell, int Level, bool IsTopRow);
    void OutlineLine(TCanvas& Canvas, TPoint From, TPoint To);
    void DrawExpandBox(TCanvas& Canvas, const TRect& Frame, bool Plus);
    void DrawNodePicture(TCanvas& Canvas, TFlyNode* Node, int ARow, const TRect& Cell, TExGridDrawState State,
                         int& X);
    bool FireImageEvent(const TFTVExpandedEvent& Event, TFlyNode* Node);
    bool HasRowBehind(TFlyNode* Node) const;
    bool SelectFound(TFlyNode* Start);
    void UpdateAncestors(TFlyNode* Node, int MaxLevels);
    int LevelOf(TFlyNode* Node) const;
    int OutlineCentre(int CellLeft, int Level) const;
    unsigned TextFlags() const;
    bool SelectionSpans(int ACol) const;
    bool ShowsImage(TFlyNode* Node) const;
    TRect PaintedStructureCell(int Row);

    // Draws markup over the brush's colour, aligned in the control's direction.
    void DrawMarkup(TCanvas& Canvas, const std::string& Text, const TRect& Rect, TAlignment Align,
                    int VertAlign);
    // Width of a text in the control's font, as cells show it; broken into lines unless WrapWidth is negative.
    int TextWidthOf(const std::string& Text, int WrapWidth = -1);
    bool IsTextCut(const TRect& Room, const std::string& Text, bool Structure);
    void ForgetToolTip();
    bool IsCaption(int ACol, int ARow) const;
    bool IsCaptionPressed(int ACol, int ARow) const;
    void DrawSortArrow(TCanvas& Canvas, TRect& Rect, int ACol, int ARow);
    bool ShowsCursor(TCursor Cursor) const { return GetCursor() == Cursor || GetAppliedCursor() == Cursor; }

    bool CanSlide() const;
    void SlideRowsDown(int Index, int Count);
    void SlideRowsUp(int Index, int Count);
    int SlideExtent(int Index, int Count, int Limit);
    void ShowFrame(int Frame);
    bool HeightsMatter() const;
    bool HasUniformHeights() const;
    void InvalidateTouched();
    bool HasHeightWatchers() const;
    template <class TVisit>
    void VisitRows(int First, int Last, TVisit Visit);
    void ShiftHeights(int First, int Last, int Offset);
    void StoreOwnHeights(int First, int Last);
    template <class THeight>
    void StoreHeights(int First, int Last, bool Down, THeight HeightOf);
    int OutlinePhase() const;
    int MadeOddRow(int Y) const { return (Y + FPhase) % 2 == 0 ? Y + 1 : Y; }

    // What a move of the focus does to the marks as soon as it is allowed.
    enum class TFocusMarks : unsigned char { Keep, Anchor, AnchorHere, Add, Alone };
    void ApplyMarks(TFocusMarks Marks, TFlyNode* Old, TFlyNode* Node);
    void AutoExpandTo(TFlyNode* Old, TNodeWatch& New);
    void MarkRange(int FromRow, int ToRow, bool Mark);
    TGridRect SelectionColumns(int FromRow, int ToRow) const;
    void InvalidateCurrent();
    void ImageListChange(TObject* Sender);
    std::size_t CountFormCaptions() const;
    void ReadCaptions(TReader& Reader);
    void WriteCaptions(TWriter& Writer);
    void ReadColumnOrder(TReader& Reader);
    void WriteColumnOrder(TWriter& Writer);
    void TakeLoadedColumns();
    template <class T>
    void SetPainted(T& Field, T Value);

    std::unique_ptr<TFlyNodes> FItems;
    std::vector<int> FColumnsMap;
    std::vector<int> FLoadedColumns; // the order that a form has named, until everything is loaded
    std::vector<std::string> FCaptions;
    std::unique_ptr<TCustomImageList> FGlyphs;
    TCustomImageList* FImages = nullptr;
    TChangeLink FImageChangeLink;

    // Remembered nodes; ForgetNode clears each.
    TFlyNode* FAnchorNode = nullptr;     // from which a range extends
    TFlyNode* FRangeStartNode = nullptr; // the other end of the last range, or the node toggled last
    TFlyNode* FDropTargetNode = nullptr;
    TFlyNode* FToolTipNode = nullptr; // whose cell was looked at last
    TFlyNode* FEditNode = nullptr;    // for which the editor was opened, with FEditCol
    std::unique_ptr<TNVHTMLHintWindow> FHintWindow;
    std::unique_ptr<TTimer> FToolTipTimer; // while a tooltip is shown

    // The ancestors of the node painted last, top level first, as far as they are visible.
    std::vector<TFlyNode*> FAncestors;
    std::vector<bool> FAncestorHasNext;
    TFlyNode* FAncestorsOf = nullptr;
    int FAncestorsLevel = 0;
    int FAncestorsMax = 0;
    int FOutlineLeft = 0; // left edge of the structure cell being painted
    std::vector<TPoint> FDots;

    std::unique_ptr<TNVDragImageList> FDragImages;
    std::unique_ptr<TOLEDropSource> FDropSource; // during a drag with other programs
    std::unique_ptr<TOLEDropTarget> FOleDropTarget;
    std::optional<TPoint> FDragPoint;       // where a press that may become a drag was
    static TCustomQuillTree* FDraggingTree; // from which nodes are being dragged to any program
    TFlyNode* FAimedNode = nullptr;         // under the mouse of a drag
    std::optional<TPoint> FDropPoint;       // that mouse, client pixels
    int FHoverExpandTime = 0;
    TDropPlace FDropPlace = dpNone;
    bool FDropMarks = false;
    bool FDropScroll = false;
    bool FAutoDrop = false;
    bool FDroppedInside = false;
    class TNodeDrag;
    class TOleDragScope;
    std::vector<TFlyNode*> FDraggedNodes; // of the drag that is going on
    TFlyNode* FDraggedNode = nullptr;     // whose row the grid was about to move
    TRect FMarkPainted;                   // the drop mark on the surface
    bool FEndingDrag = false;
    std::unique_ptr<TDragObject> FNodeDrag; // during a drag inside the program
    TPoint FDragHotSpot;                    // of the picture
    std::string FSearchText;
    std::uint32_t FSearchTick = 0;
    int FTrackedRow = -1;
    int FPressedCol = -1;
    int FPressedRow = -1;
    int FSortColumn = -1;
    int FToolTipCol = -1;
    // The data column that the editor was opened for, or one of these: none, since there was no node, and the text,
    // whichever column shows it.
    static constexpr int NoEdit = -1;
    static constexpr int EditsText = -2;
    int FEditCol = NoEdit;
    int FToolTipPause = 1000;
    TColor FTooltipColor = clInfoBk;
    int FButtonSize;
    int FIndent = 20;
    int FStructureCol = 0;
    TColor FOutlineColor = clGray;
    TColor FHotTrackColor = clBlue;
    TOutlineStyle FOutlineStyle = olsStandardTree;
    TNodeSelectionStyle FNodeSelectionStyle = tnsCell;
    TSortType FSortType = stNone;
    TSortDirection FSortDirection = srtAscending;
    unsigned char FFirstLevelDrawMode = 0;
    bool FSmoothExpandCollapse = true;
    bool FUniqueTags = false;
    bool FFitToHeight = false;
    bool FFitColumnToClientWidth = false;
    // With FFitColumnToClientWidth: the last column that has a width, and that width; valid while Key holds (the
    // stored widths, the client's width, the lines').
    struct {
        std::tuple<std::uint64_t, int, int> Key{0, -1, 0};
        int Col = 0;
        std::int64_t Width = 0;
    } FFit;
    bool FHotTrack = false;
    bool FHideSelection = false;
    bool FRightClickSelect = false;
    bool FTransparentMode = false;
    bool FStatesDrawed = true;
    bool FShowlines = true;
    bool FShowRoot = true;
    bool FShowButtons = true;
    bool FShowImages = false;
    bool FShowLogic = false;
    bool FWordWrap = false;
    bool FHTMLDrawing = false;
    bool FToolTips = false;
    bool FAutoExpand = false;
    bool FLoading = false;
    bool FExpanding = false;
    bool FClearing = false;
    bool FInButtonClick = false;
    bool FReopensEditor = false;
    bool FClipboardUnused = false; // nobody was there to cut, copy or paste
    bool FAutoExpanding = false;
    bool FSelectingAlone = false; // SetSelection asks FocusCell for it
    bool FFocusing = false;       // FocusCell is on its way to SelectCell, with FFocusMarks
    bool FInAction = false;       // a message of the keyboard or the mouse is at work
    bool FShiftingHeights = false;
    TFocusMarks FFocusMarks = TFocusMarks::Keep;
    int FPhase = 0; // of the picture on the surface: OutlinePhase when it was painted
    bool FToggleSelection = false;
    TNVDragType FDragType = dtStandard;
    bool FAutoMove = false;
    bool FDragPending = false; // a press that may become a drag inside the program
};

// The tree with its properties published for forms and designers.
class TQuillTree : public TCustomQuillTree {
    Q_OBJECT

public:
    using TCustomQuillTree::TCustomQuillTree;
    const TClassInfo* GetClassInfo() const override;

    // --- for the platform's designer and form loader -------------------------------------------------------------
    enum class ScrollBarsStyle { sbsRegular, sbsEncarta, sbsFlat };
    Q_ENUM(ScrollBarsStyle)
    enum class NodeSelectionStyle { tnsCell, tnsTextOnly };
    Q_ENUM(NodeSelectionStyle)
    enum class OutlineStyle { olsStandardTree, olsExplorer, olsExcel };
    Q_ENUM(OutlineStyle)
    enum class SortType { stNone, stData, stText, stBoth };
    Q_ENUM(SortType)
    enum class DragType { dtStandard, dtOLE };
    Q_ENUM(DragType)
    enum class DragMode { dmManual, dmAutomatic };
    Q_ENUM(DragMode)
    enum class BiDiMode { bdLeftToRight, bdRightToLeft, bdRightToLeftNoAlign, bdRightToLeftReadingOnly };
    Q_ENUM(BiDiMode)
    enum class BorderStyle { bsNone, bsSingle };
    Q_ENUM(BorderStyle)
    enum class ScrollBars { ssNone, ssHorizontal, ssVertical, ssBoth };
    Q_ENUM(ScrollBars)
    enum class GridOption {
        goFixedVertLine = 1 << 0,
        goFixedHorzLine = 1 << 1,
        goVertLine = 1 << 2,
        goHorzLine = 1 << 3,
        goRangeSelect = 1 << 4,
        goDrawFocusSelected = 1 << 5,
        goRowSizing = 1 << 6,
        goColSizing = 1 << 7,
        goRowMoving = 1 << 8,
        goColMoving = 1 << 9,
        goEditing = 1 << 10,
        goTabs = 1 << 11,
        goRowSelect = 1 << 12,
        goAlwaysShowEditor = 1 << 13,
        goThumbTracking = 1 << 14
    };
    Q_DECLARE_FLAGS(GridOptions, GridOption)
    Q_FLAG(GridOptions)

    QUILL_QT_PROPERTY(int, ButtonSize)
    QUILL_QT_PROPERTY(bool, SmoothExpandCollapse)
    QUILL_QT_PROPERTY(ScrollBarsStyle, ScrollBarsStyle)
    QUILL_QT_PROPERTY(QColor, ScrollBarsColor)
    QUILL_QT_PROPERTY(bool, FitColumnToClientWidth)
    QUILL_QT_PROPERTY(bool, UniqueTags)
    QUILL_QT_PROPERTY(NodeSelectionStyle, NodeSelectionStyle)
    QUILL_QT_PROPERTY(QColor, HotTrackColor)
    QUILL_QT_PROPERTY(QColor, OutlineColor)
    QUILL_QT_PROPERTY(OutlineStyle, OutlineStyle)
    QUILL_QT_PROPERTY(bool, FitToHeight)
    QUILL_QT_PROPERTY(bool, RightClickSelect)
    QUILL_QT_PROPERTY(bool, FixedRowAsButton)
    QUILL_QT_PROPERTY(bool, FixedColAsButton)
    QUILL_QT_PROPERTY(QColor, LineColor)
    QUILL_QT_PROPERTY(QColor, FixedLineColor)
    QUILL_QT_PROPERTY(bool, TransparentMode)
    QUILL_QT_PROPERTY(int, Indent)
    QUILL_QT_PROPERTY(bool, HideSelection)
    QUILL_QT_PROPERTY(bool, Showlines)
    QUILL_QT_PROPERTY(bool, ShowRoot)
    QUILL_QT_PROPERTY(bool, ShowButtons)
    QUILL_QT_PROPERTY(bool, ShowImages)
    QUILL_QT_PROPERTY(bool, ShowLogic)
    QUILL_QT_PROPERTY(int, ColCount)
    QUILL_QT_PROPERTY(int, StructureCol)
    QUILL_QT_PROPERTY(bool, HotTrack)
    QUILL_QT_PROPERTY(SortType, SortType)
    QUILL_QT_PROPERTY(bool, WordWrap)
    QUILL_QT_PROPERTY(bool, AutoMove)
    QUILL_QT_PROPERTY(bool, ToolTips)
    QUILL_QT_PROPERTY(bool, AutoExpand)
    QUILL_QT_PROPERTY(QColor, TooltipColor)
    QUILL_QT_PROPERTY(int, ToolTipPause)
    QUILL_QT_PROPERTY(bool, StatesDrawed)
    QUILL_QT_PROPERTY(bool, HTMLDrawing)
    QUILL_QT_PROPERTY(DragType, DragType)
    QUILL_QT_PROPERTY(DragMode, DragMode)
    QUILL_QT_PROPERTY(BiDiMode, BiDiMode)
    QUILL_QT_PROPERTY(BorderStyle, BorderStyle)
    QUILL_QT_PROPERTY(QColor, Color)
    QUILL_QT_PROPERTY(bool, Ctl3D)
    QUILL_QT_PROPERTY(int, DefaultColWidth)
    QUILL_QT_PROPERTY(int, DefaultRowHeight)
    QUILL_QT_PROPERTY(QColor, FixedColor)
    QUILL_QT_PROPERTY(int, FixedCols)
    QUILL_QT_PROPERTY(int, FixedRows)
    QUILL_QT_PROPERTY(int, GridLineWidth)
    QUILL_QT_PROPERTY(GridOptions, Options)
    QUILL_QT_PROPERTY(ScrollBars, ScrollBars)

    // Nodes: the nodes text; bytes in base 64 where that would lose something. What cannot be read is reported as a
    // warning of the platform and changes nothing.
    Q_PROPERTY(QStringList ColWidths READ GetColWidthsProperty WRITE SetColWidthsProperty)
    Q_PROPERTY(QStringList Captions READ GetCaptionsProperty WRITE SetCaptionsProperty)
    Q_PROPERTY(QString Nodes READ GetNodesProperty WRITE SetNodesProperty)
    QStringList GetColWidthsProperty() const;
    void SetColWidthsProperty(const QStringList& Value);
    QStringList GetCaptionsProperty() const;
    void SetCaptionsProperty(const QStringList& Value);
    QString GetNodesProperty() const;
    void SetNodesProperty(const QString& Value);
};

// Makes the controls and the components that they refer to known to forms: TQuillTree, TNVHTMLText, TImageList,
// TPopupMenu, TMenuItem. A program that uses a TQuillTree need not call it.
void RegisterFormClasses();

} // namespace quill
