// A host for nodes without a window: for tests, servers and command-line programs.
#pragma once

#include "quilltree/FlyNodes.h"
#include "quilltree/NodeHost.h"

#include <functional>
#include <memory>
#include <string>
#include <typeinfo>

namespace quill {

// Owns a container and keeps its rows as the control would: a row count, a current row, a top row, a structure
// column (0 at first), and the events as functions. It shows nothing.
class THeadlessHost : public INodeHost, public TPersistent {
public:
    THeadlessHost();
    ~THeadlessHost() override;

    TFlyNodes* GetItems() const { return FItems.get(); }

    // Events as the control fires them; unassigned means allowed.
    std::function<void(TFlyNode* Node, bool& Allow)> OnExpanding;
    std::function<void(TFlyNode* Node, bool& Allow)> OnCollapsing;
    std::function<void(TFlyNode* Node)> OnExpanded;
    std::function<void(TFlyNode* Node)> OnCollapsed;
    std::function<void(TFlyNode* Node)> OnDeletion;
    std::function<void(TFlyNode* Node, int NewState, bool& Allow)> OnStateChanging;
    std::function<void(TFlyNode* Node)> OnSelectItem;
    std::function<void(TFlyNode* Node1, TFlyNode* Node2, int& Compare)> OnCompare;
    std::function<void(TFlyNode* Node)> OnMaterialise;
    std::function<void(int Index, int Count)> OnInsertRows;
    std::function<void(int Index, int Count)> OnDeleteRows;
    std::function<void()> OnRefresh;

    // Settings.
    void SetSortType(TSortType Value);
    void SetFixedRows(int Value) { FFixedRows = Value; }
    void SetVisibleRowCount(int Value) { FVisibleRowCount = Value; }
    void SetDefaultRowHeight(int Value) { FDefaultRowHeight = Value; }
    // Numbers all nodes in document order when switched on.
    void SetEnumerateNodes(bool Value);
    void SetRangeSelect(bool Value) { FRangeSelect = Value; }
    // The structure column, which is also its data column (columns are never moved here).
    void SetStructureCol(int Value) { FStructureCol = Value; }

    // --- INodeHost --------------------------------------------------------------------------------------------
    TCustomQuillTree* GetTreeControl() override { return nullptr; }
    TPersistent* GetPersistentOwner() override { return this; }
    bool HasWindow() const override { return false; }
    bool IsLoading() const override { return false; }
    bool IsDestroying() const override { return FDestroying; }
    void RefreshNodeList(TTreeCollection* Item) override;
    void FixupRows() override;
    void SetRedraw(bool) override {}
    void InsertRows(int Index, int Count) override;
    void DeleteRows(int Index, int Count) override;
    void FixupRowHeights(int) override {}
    void ProcessMessages() override {}
    void SetExpanding(bool Value) override { FExpanding = Value; }
    void SetClearing(bool Value) override { FClearing = Value; }
    void ForgetNode(TFlyNode* Node) override;
    void ForgetSelectionNodes() override {}
    TFlyNode* CreateNode(TTreeCollection* Owner) override;
    void NodeMaterialised(TFlyNode* Node) override;
    bool CanExpand(TFlyNode* Node) override;
    bool CanCollapse(TFlyNode* Node) override;
    void Expand(TFlyNode* Node) override;
    void Collapse(TFlyNode* Node) override;
    void Delete(TFlyNode* Node) override;
    bool ChangeState(TFlyNode* Node, int NewState) override;
    void SelectItem(TFlyNode* Node) override;
    void SetDropTarget(TFlyNode* Node) override;
    void RowSized(int, int, int) override {}
    // A descendant may override the reading and storing of cells.
    bool StoresPlainTexts() const override { return typeid(*this) == typeid(THeadlessHost); }
    std::string GetNodeCells(TFlyNode* Node, int DataCol) override;
    void SetNodeCells(TFlyNode* Node, int DataCol, const std::string& S) override;
    int GetStructureDataColumn() const override { return FStructureCol; }
    TSortType GetSortType() const override { return FSortType; }
    bool HasCompare() const override { return OnCompare != nullptr; }
    int Compare(TFlyNode* Node1, TFlyNode* Node2) override;
    int GetStructureCol() const override { return FStructureCol; }
    int GetColCount() const override { return FStructureCol + 1; }
    int GetRowCount() const override { return FRowCount; }
    int GetFixedRows() const override { return FFixedRows; }
    int GetFixedCols() const override { return 0; }
    int GetVisibleRowCount() override { return FVisibleRowCount; }
    int GetTopRow() const override { return FTopRow; }
    void SetTopRow(int Value) override;
    int GetCol() const override { return 0; }
    int GetRow() const override { return FRow; }
    void SetRow(int Value) override;
    int CalcMaxTopRow(int ACol, int ARow) override;
    void MoveTopLeft(int ALeft, int ATop) override;
    TFlyNode* GetNodeAtRow(int ARow) override;
    TFlyNode* GetNextVisible(TFlyNode* Node) override;
    TFlyNode* GetPrevVisible(TFlyNode* Node) override;
    bool HasSelection() const override { return FRow >= FFixedRows; }
    bool IsRowSelect() const override { return false; }
    bool IsRangeSelect() const override { return FRangeSelect; }
    void SetSelection(TFlyNode* Node) override;
    void SetGridSelection(int Left, int Top, int Right, int Bottom) override;
    void SelectOne(int ARow) override;
    int GetDropTargetRow() const override;
    bool GetFitToHeight() const override { return false; }
    int GetDefaultRowHeight() const override { return FDefaultRowHeight; }
    int GetRowHeights(int ARow) override;
    void SetRowHeights(int ARow, int Value) override;
    int RecalcNodeHeight(TFlyNode* Node) override;
    void RefreshRowHeights() override;
    bool GetEnumerateNodes() const override { return FEnumerateNodes; }
    void Invalidate() override {}
    void Repaint() override {}
    void InvalidateCell(int, int) override {}
    void InvalidateRow(int) override {}
    void InvalidateBox(int, int, int, int, bool) override {}
    void InvalidateRectBelow(TFlyNode*) override {}
    void SetEditorMode(bool) override {}
    void HideEditor() override {}
    void HideEdit() override {}
    bool EditNodeText(TFlyNode*) override { return false; }
    void EndNodeEdit(TFlyNode*, bool) override {}

    bool GetExpanding() const { return FExpanding; }
    bool GetClearing() const { return FClearing; }

private:
    bool FDestroying = false;
    bool FExpanding = false;
    bool FClearing = false;
    bool FEnumerateNodes = false;
    bool FRangeSelect = false;
    TSortType FSortType = stNone;
    int FStructureCol = 0;
    int FFixedRows = 0;
    int FRowCount = 0;
    int FVisibleRowCount = 20;
    int FTopRow = 0;
    int FRow = 0;
    int FDefaultRowHeight = 20;
    TFlyNode* FDropTarget = nullptr;
    std::unique_ptr<TFlyNodes> FItems;
};

} // namespace quill
