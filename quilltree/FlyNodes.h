// The container of a tree's top-level nodes and keeper of its row list.
#pragma once

#include "quilltree/FlyNode.h"
#include "quilltree/NodesText.h"
#include "quilltree/RowList.h"

#include <mutex>
#include <string>

namespace quill {

// Creates nodes in every position, destroys them, brackets mass changes, finds nodes, keeps the visible nodes in
// RowList and tells the control when rows change. Everything works without a control too; RowList is then empty.
//
// Outside BeginUpdate .. EndUpdate every change has its full result at once, at a cost of O(log n) plus the size of
// the change; inside, the rows are rebuilt once at the end.
//
// All calls come from one thread. Lock is held from the first BeginUpdate to the last EndUpdate, during Clear and
// during destruction.
class TFlyNodes : public TTreeCollection {
public:
    // ATree is the control (or a THeadlessHost), which must outlive the container; null for none.
    explicit TFlyNodes(INodeHost* ATree = nullptr);
    ~TFlyNodes() override;

    std::string ClassName() const override { return "TFlyNodes"; }

    // --- adding -----------------------------------------------------------------------------------------------
    // Each returns the new node, or null when a handler deleted it at once.
    // Last among Sibling's siblings; null stands for the top level, here and below.
    TFlyNode* Add(TFlyNode* Sibling, const std::string& S);
    TFlyNode* AddObject(TFlyNode* Sibling, const std::string& S, void* Ptr);
    // First child of Sibling itself, unlike AddObjectFirst.
    TFlyNode* AddFirst(TFlyNode* Sibling, const std::string& S);
    // First among Sibling's siblings.
    TFlyNode* AddObjectFirst(TFlyNode* Sibling, const std::string& S, void* Ptr);
    TFlyNode* AddChild(TFlyNode* Parent, const std::string& S);
    TFlyNode* AddChildObject(TFlyNode* Parent, const std::string& S, void* Ptr);
    TFlyNode* AddChildFirst(TFlyNode* Parent, const std::string& S);
    TFlyNode* AddChildObjectFirst(TFlyNode* Parent, const std::string& S, void* Ptr);
    // Before Sibling; first top-level node for null.
    TFlyNode* Insert(TFlyNode* Sibling, const std::string& S);
    TFlyNode* InsertObject(TFlyNode* Sibling, const std::string& S, void* Ptr);
    TFlyNode* InternalAddObject(TFlyNode* Parent, const std::string& S, void* Ptr, TAddMode Mode);
    // Works only inside an update bracket: marks the parent, repaints, calls OnCollectionChange.
    void AddedNode(TFlyNode* ParentNode);
    // The control's factory, or a plain TFlyNode without a control.
    TFlyNode* CreateNode(TTreeCollection* AOwner);

    TTreeCollection* _Add(int Index) override;
    const TTreeCollectionClass* InternalGetClass(const std::string& Name) const override;

    // --- removing ---------------------------------------------------------------------------------------------
    void Delete(TFlyNode* Node);
    // Node is going: takes its row away and tells the control.
    void Removed(TFlyNode* Node);
    void Clear() override;
    // Takes the cells of every node away.
    void ClearCells();

    // --- update brackets --------------------------------------------------------------------------------------
    void BeginUpdate() override;
    void EndUpdate() override;
    void SetUpdateState(bool Updating);
    void Update(TTreeCollection* Item) override;
    void LockList();
    void UnlockList();

    // --- lookup -----------------------------------------------------------------------------------------------
    // Top-level node Index. A negative Index raises EQuillTreeError, one at or above the count EListError.
    TFlyNode* GetNodeFromIndex(int Index);
    TFlyNode* GetItem(int Index) { return GetNodeFromIndex(Index); }
    void SetItem(int Index, TFlyNode* Value);
    TFlyNode* GetFirstNode();
    // The first node that exists already; see TFlyNode::GetNextExisting.
    TFlyNode* FirstExisting() const;
    // The last node in depth-first order.
    TFlyNode* GetLastNode();
    TFlyNode* GetNodeOnUniqueTag(int Tag);
    TFlyNode* GetFirstSelectedNode() { return GetNextSelectedNode(nullptr); }
    TFlyNode* GetLastSelectedNode() { return GetPrevSelectedNode(nullptr); }
    // Selected nodes among the visible ones. A Node without a row restarts at the first row.
    TFlyNode* GetNextSelectedNode(TFlyNode* Node);
    // A Node without a row yields null.
    TFlyNode* GetPrevSelectedNode(TFlyNode* Node);
    // Texts from the top-level ancestor down to Node, a line each.
    std::string GetItemText(TFlyNode* Node);
    // The node that such lines lead to, null when a line matches nothing.
    TFlyNode* SetItemText(const std::string& Path);
    TCustomQuillTree* GetTree() const;
    INodeHost* GetHost() const { return FHost; }

    // --- visibility and painting ------------------------------------------------------------------------------
    void ShowAll();
    void Hide(TFlyNode* Node);
    // Null: fit the rows and repaint everything. An expanded node: repaint its row. A collapsed one: nothing.
    void Repaint(TFlyNode* Node);

    bool AlphaSort();
    void Assign(TPersistent* Source) override;

    // --- nodes text (quilltree/NodesText.h) -------------------------------------------------------------------
    // Loading replaces the tree. A level that is too deep raises EQuillTreeError, a number that is none
    // EConvertError, a missing item EStringListError; the message names the line, and the file when there is one.
    // Nodes read before the fault stay.
    void SaveNodesToStream(TStream& Stream, TSaveNodesOptions Options);
    void SaveNodesToFile(const std::string& FileName, TSaveNodesOptions Options);
    void LoadNodesFromStream(TStream& Stream);
    void LoadNodesFromFile(const std::string& FileName);

    // --- streams: the collection's own format (treecoll/Treecoll.h) --------------------------------------------
    std::string SaveToText(bool WithProperties);
    void LoadFromText(const std::string& Text);
    void SaveToStream(TStream& Stream);
    void LoadFromStream(TStream& Stream);
    void SaveToFile(const std::string& FileName);
    void LoadFromFile(const std::string& FileName);

    // --- fields -----------------------------------------------------------------------------------------------
    bool GetEnumerating() const { return FEnumerating; }
    void SetEnumerating(bool Value) { FEnumerating = Value; }
    // Highest tag issued so far, -1 when none.
    int GetLastUniqueTag() const { return FLastUniqueTag; }
    void SetLastUniqueTag(int Value) { FLastUniqueTag = Value; }
    // True also while a node is added that will be put in its place.
    bool GetSorted() const { return FSorted || FPlacing; }
    void SetSorted(bool Value) { FSorted = Value; }
    // What every new node starts with.
    int GetDefaultStateIndex() const { return FDefaultStateIndex; }
    void SetDefaultStateIndex(int Value) { FDefaultStateIndex = Value; }
    int GetDefaultImageIndex() const { return FDefaultImageIndex; }
    void SetDefaultImageIndex(int Value) { FDefaultImageIndex = Value; }
    int GetDefaultSelectedIndex() const { return FDefaultSelectedIndex; }
    void SetDefaultSelectedIndex(int Value) { FDefaultSelectedIndex = Value; }
    const std::string& GetItemSeparator() const { return FItemSeparator; }
    // Stored for programs; the container does not read it.
    void SetItemSeparator(const std::string& Value) { FItemSeparator = Value; }

    // --- rows, for the host -----------------------------------------------------------------------------------
    TRowList& GetRowList() { return RowList; }
    // What a host's RefreshNodeList does: brings RowList in line with the tree. The model keeps it so after every
    // single change, in which case this costs nothing; otherwise everything is listed anew. For a node, the
    // selection of its visible descendants then moves up to it, as when it is collapsed.
    void RebuildRowList(TTreeCollection* Item);
    // False while RowList may differ from the tree's order (inside a bracket, for example).
    bool IsRowListCurrent() const { return RowList.FCurrent; }
    // The first entry of RowList that changes of children since the last call can make look different; the number of
    // entries or more when none can, -1 when nothing is known of such changes.
    int TakeFirstTouched();
    // To be called by whoever changes RowList by hand, so that the next refresh lists everything anew.
    void RowListChanged();
    // The node of row-list entry Index, made from its placeholder when necessary; null outside the list, and when a
    // handler deleted the new node.
    TFlyNode* MaterialiseRow(int Index);
    // Clears the selected mark of every visible node, without notifications; First and Last get the range of
    // entries that changed. False when there was none.
    bool ClearSelectedRows(int& First, int& Last);
    // Sets the selected mark of the entries First .. Last (clipped to the list), without notifications;
    // placeholders stay as they are.
    void SelectRows(int First, int Last, bool Value);

    // Whether some node may have a height of its own; and taking it from all of them (O(n) when one may).
    bool GetHasStoredHeights() const { return FHasStoredHeights; }
    void ResetStoredHeights();

    // The whole structure, the row list included when it is current. Throws std::logic_error. O(n).
    void CheckInvariants() const;

    // --- events -----------------------------------------------------------------------------------------------
    // The structure changed; after the last EndUpdate. Sender is the container.
    TNotifyEvent& OnCollectionChange;
    // A placeholder became Node (after the host's NodeMaterialised); programs fill it here.
    std::function<void(TFlyNode* Node)> OnMaterialise;

    // The visible nodes in display order.
    TRowList RowList;
    std::recursive_mutex Lock;

protected:
    void DestroySteps() override;
    TTreeCollection* CreateItem(const std::string& ClassNameWanted) override;
    void Materialised(TTreeCollection* Item) override;
    void SlotsInserted(int Index, int Count) override;
    void SlotsRemoving(int Index, int Count) override;
    void SlotMoved(int From, int To) override;
    void SlotsSorted() override;
    void SlotReplaced(TTreeSlot* Old, TTreeSlot* New) override;
    void CollectionChanged() override {}

private:
    friend class TFlyNode;
    friend class TUpdateBracket;
    friend class TRowPatch;

    // --- keeping the rows right (FlyNodesRows.cpp) --------------------------------------------------------------
    // Whether a change can be followed at once: rows are current and nothing waits for the end of a bracket.
    bool CanPatch() const;
    void SlotsAppeared(TTreeCollection* Parent, int Index, int Count);
    void SlotsDisappear(TTreeCollection* Parent, int Index, int Count);
    void NodeAppeared(TFlyNode* Node);
    void Touch(const TTreeCollection* Parent, int Index);
    void TouchRow(int Row);
    void ChildMoved(TTreeCollection* Parent, int To);
    void ChildrenReordered(TTreeCollection* Parent);
    bool IsRowParent(const TTreeCollection* Parent) const;
    int RowForSlot(const TTreeCollection* Parent, int Index) const;
    int RowBehind(const TTreeSlot* Down, const TTreeSlot* Up) const;
    void InsertSlotRows(TTreeCollection* Parent, int Index, int Count, int Row);
    void InsertRowsBelow(TFlyNode* Node, int Row);
    void RemoveRowsBelow(TFlyNode* Node);
    void RemoveSubtreeRows(TFlyNode* Node);
    void InsertSubtreeRows(TFlyNode* Node);
    void ListAllRows();
    void TakeOver(TTreeSlot* Slot);
    void SelectionUpTo(TFlyNode* Node, int FirstRow, int EndRow);
    void DropRowsBelow(TFlyNode* Node);
    void SortDueChildren();
    class TPlacingScope;
    void PlaceSorted(TFlyNode* Node);
    bool SortsNodes() const;
    bool SortsByComparison() const;
    bool SortTopLevelNow(TFlyNode* Newcomer);
    bool PlaceNewcomerAmong(TTreeCollection* Collection, TFlyNode* Node);

    INodeHost* FHost;
    TFlyNode::TAnchor* FAnchor;
    bool FEnumerating = false;
    bool FSorted = false;
    bool FPlacing = false;
    // Inside the bracket of a single operation that follows its own change.
    bool FPatchInBracket = false;
    // Some node has FlagSortDue.
    bool FSortDue = false;
    bool FHasStoredHeights = false;
    int FFirstTouched = -1;
    int FLockDepth = 0;
    int FLastUniqueTag = -1;
    int FDefaultStateIndex = 0;
    int FDefaultImageIndex = 0;
    int FDefaultSelectedIndex = 0;
    std::string FItemSeparator = ".";
};

// For an operation that keeps the rows right itself, also inside a bracket: while it lasts, the container follows
// every change at once. Of use to the model itself.
class TRowPatch {
public:
    explicit TRowPatch(TFlyNodes* Container);
    ~TRowPatch();
    TRowPatch(const TRowPatch&) = delete;
    TRowPatch& operator=(const TRowPatch&) = delete;

private:
    TWatch<TFlyNodes> FContainer;
    bool FOld = false;
};

// BeginUpdate .. EndUpdate for a scope; safe when the container goes meanwhile.
class TUpdateBracket {
public:
    explicit TUpdateBracket(TFlyNodes* Container);
    // May throw what handlers of the last EndUpdate throw, unless another exception is on its way.
    ~TUpdateBracket() noexcept(false);
    TUpdateBracket(const TUpdateBracket&) = delete;
    TUpdateBracket& operator=(const TUpdateBracket&) = delete;

private:
    TWatch<TFlyNodes> FContainer;
    int FExceptions;
};

} // namespace quill
