// The border between the node model and whatever shows it. The model knows nothing else of the control: what it
// tells, and what it asks, stands here, one sentence each. The tree control implements it; THeadlessHost
// (quilltree/HeadlessHost.h) serves programs that use nodes without a window.
#pragma once

#include "host/base/Types.h"

#include <string>

namespace quill {

class TFlyNode;
class TFlyNodes;
class TTreeCollection;
class TCustomQuillTree;
class TPersistent;

// Rows are grid rows (fixed rows included), columns are displayed columns unless called data columns; heights and
// distances are device-independent pixels. Any call may run application code, which may delete nodes, clear the
// container or destroy the control: after a call, the model re-checks what it still holds.
class INodeHost {
public:
    virtual ~INodeHost() = default;

    // --- identity and state -----------------------------------------------------------------------------------
    // The control itself; null for a headless host.
    virtual TCustomQuillTree* GetTreeControl() = 0;
    // The persistent owner that the container reports.
    virtual TPersistent* GetPersistentOwner() = 0;
    // Whether the window exists, so that something can be invalidated.
    virtual bool HasWindow() const = 0;
    virtual bool IsLoading() const = 0;
    virtual bool IsDestroying() const = 0;

    // --- structure --------------------------------------------------------------------------------------------
    // Rebuilds the row list: all of it for null, the rows below Item for a node.
    virtual void RefreshNodeList(TTreeCollection* Item) = 0;
    // Fits the grid's row count to the row list (and sorts the container when that is due).
    virtual void FixupRows() = 0;
    // Switches drawing of the window off and on again (nothing without a window).
    virtual void SetRedraw(bool Enable) = 0;
    // Row-list entries appeared below row Index, or went away there; the host animates and moves heights.
    virtual void InsertRows(int Index, int Count) = 0;
    virtual void DeleteRows(int Index, int Count) = 0;
    virtual void FixupRowHeights(int FromRow) = 0;
    // Shows what is pending: the host's own surface first, then pending events without user input.
    virtual void ProcessMessages() = 0;
    // True while one ExpandItem runs.
    virtual void SetExpanding(bool Value) = 0;
    // True while nodes are destroyed or moved in bulk.
    virtual void SetClearing(bool Value) = 0;
    // Node is about to go: drops every reference to it (drop target, anchors, hot node, tooltip node, editor).
    virtual void ForgetNode(TFlyNode* Node) = 0;
    // Drops the anchor and the last node of a range selection.
    virtual void ForgetSelectionNodes() = 0;
    // Makes a node for Owner; the control's virtual factory.
    virtual TFlyNode* CreateNode(TTreeCollection* Owner) = 0;
    // A placeholder became Node; programs fill it here.
    virtual void NodeMaterialised(TFlyNode* Node) = 0;

    // --- notifications, which fire the application's events ---------------------------------------------------
    virtual bool CanExpand(TFlyNode* Node) = 0;
    virtual bool CanCollapse(TFlyNode* Node) = 0;
    virtual void Expand(TFlyNode* Node) = 0;
    virtual void Collapse(TFlyNode* Node) = 0;
    virtual void Delete(TFlyNode* Node) = 0;
    // Stores Node's state index and repaints, or refuses.
    virtual bool ChangeState(TFlyNode* Node, int NewState) = 0;
    virtual void SelectItem(TFlyNode* Node) = 0;
    virtual void SetDropTarget(TFlyNode* Node) = 0;
    virtual void RowSized(int ARow, int OldHeight, int NewHeight) = 0;

    // --- texts ------------------------------------------------------------------------------------------------
    // By data column; the structure column's data column stands for the node's text.
    virtual std::string GetNodeCells(TFlyNode* Node, int DataCol) = 0;
    virtual void SetNodeCells(TFlyNode* Node, int DataCol, const std::string& S) = 0;
    // Whether GetNodeCells and SetNodeCells do no more than read, store and repaint, so that loading and saving may
    // take whole records at once. A host that does more with each cell answers false.
    virtual bool StoresPlainTexts() const { return true; }
    // The data column of the structure column, -1 when there is none. Lets the model read texts without copies.
    virtual int GetStructureDataColumn() const = 0;

    // --- sorting ----------------------------------------------------------------------------------------------
    virtual TSortType GetSortType() const = 0;
    // Whether OnCompare is assigned.
    virtual bool HasCompare() const = 0;
    // OnCompare's answer; 0 when nothing is assigned.
    virtual int Compare(TFlyNode* Node1, TFlyNode* Node2) = 0;

    // --- geometry, selection, focus ---------------------------------------------------------------------------
    virtual int GetStructureCol() const = 0;
    virtual int GetColCount() const = 0;
    virtual int GetRowCount() const = 0;
    virtual int GetFixedRows() const = 0;
    virtual int GetFixedCols() const = 0;
    virtual int GetVisibleRowCount() = 0;
    virtual int GetTopRow() const = 0;
    virtual void SetTopRow(int Value) = 0;
    virtual int GetCol() const = 0;
    virtual int GetRow() const = 0;
    virtual void SetRow(int Value) = 0;
    // The largest top row that still fills the window below (and at) the cell.
    virtual int CalcMaxTopRow(int ACol, int ARow) = 0;
    virtual void MoveTopLeft(int ALeft, int ATop) = 0;
    virtual TFlyNode* GetNodeAtRow(int ARow) = 0;
    virtual TFlyNode* GetNextVisible(TFlyNode* Node) = 0;
    virtual TFlyNode* GetPrevVisible(TFlyNode* Node) = 0;
    // Whether the grid shows a selection at all (it can be cleared).
    virtual bool HasSelection() const = 0;
    // Whether goRowSelect, goRangeSelect are on.
    virtual bool IsRowSelect() const = 0;
    virtual bool IsRangeSelect() const = 0;
    // Makes Node the selected and current node.
    virtual void SetSelection(TFlyNode* Node) = 0;
    // Sets the grid's cell rectangle; (Right, Bottom) becomes the current cell.
    virtual void SetGridSelection(int Left, int Top, int Right, int Bottom) = 0;
    virtual void SelectOne(int ARow) = 0;
    // The row marked as drop target, -1 when none.
    virtual int GetDropTargetRow() const = 0;

    // --- heights ----------------------------------------------------------------------------------------------
    virtual bool GetFitToHeight() const = 0;
    virtual int GetDefaultRowHeight() const = 0;
    virtual int GetRowHeights(int ARow) = 0;
    virtual void SetRowHeights(int ARow, int Value) = 0;
    virtual int RecalcNodeHeight(TFlyNode* Node) = 0;
    virtual void RefreshRowHeights() = 0;

    // --- unique tags ------------------------------------------------------------------------------------------
    virtual bool GetEnumerateNodes() const = 0;

    // --- repainting -------------------------------------------------------------------------------------------
    virtual void Invalidate() = 0;
    // Brings the control's picture up to date now.
    virtual void Repaint() = 0;
    virtual void InvalidateCell(int ACol, int ARow) = 0;
    virtual void InvalidateRow(int ARow) = 0;
    // The pixels of the cells ALeft..ARight x ATop..ABottom (nothing without a window).
    virtual void InvalidateBox(int ALeft, int ATop, int ARight, int ABottom, bool Erase) = 0;
    virtual void InvalidateRectBelow(TFlyNode* Node) = 0;

    // --- in-place editor --------------------------------------------------------------------------------------
    virtual void SetEditorMode(bool Value) = 0;
    virtual void HideEditor() = 0;
    virtual void HideEdit() = 0;
    // Starts editing Node's text and tells whether the editor is open; ends it, storing unless Cancel.
    virtual bool EditNodeText(TFlyNode* Node) = 0;
    virtual void EndNodeEdit(TFlyNode* Node, bool Cancel) = 0;
};

} // namespace quill
