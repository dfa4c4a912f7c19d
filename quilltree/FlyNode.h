// The node of the tree-grid control.
#pragma once

#include "host/base/Types.h"
#include "quilltree/NodeHost.h"
#include "treecoll/Treecoll.h"

#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/Errors.h"

namespace quill {

class TFlyNode;
class TFlyNodes;
class TStringList;
class TCustomQuillTree;

// Faults of the node model.
class EQuillTreeError : public Exception {
    using Exception::Exception;
};

// A companion object of one node, counted by shared_ptr.
class INodeAdapter {
public:
    virtual ~INodeAdapter() = default;
    virtual void AttachNode(TFlyNode* Node) = 0;
    virtual void DetachNode() = 0;
};

// One node: a text, cells, an untyped data pointer, images, a height and marks. It belongs to a parent node or to
// the container (its collection) and knows the container of the whole tree (its Owner). It never paints itself; the
// container keeps the list of visible nodes, and whatever shows it is reached through INodeHost.
//
// Setters never raise; one whose effect needs the control does only the storing when there is no control or no row.
// Handlers called on the way may delete any node or the control; operations end early when their node is gone.
//
// Nodes are made by the container (Add, AddChild, Insert, ...) and destroyed by Delete or with their container.
class TFlyNode : public TTreeCollection {
public:
    // AOwner is the container or the parent node; null makes a free-standing node.
    explicit TFlyNode(TTreeCollection* AOwner);
    ~TFlyNode() override;
    static const TTreeCollectionClass& Class();

    std::string ClassName() const override { return "TFlyNode"; }
    const TClassInfo* GetClassInfo() const override;

    // --- structure --------------------------------------------------------------------------------------------
    // The parent node; null for a top-level node.
    TFlyNode* GetParent() const;
    // The item as a node; null when it is none.
    static TFlyNode* AsNode(TTreeCollection* Item) {
        return Item && Item->HasFlag(FlagNode) ? static_cast<TFlyNode*>(Item) : nullptr;
    }
    // The container of the whole tree; null for a node outside any.
    TFlyNodes* GetOwner() const { return FAnchor ? FAnchor->Container : nullptr; }
    // Sets the container of this node and of everything below it.
    void SetOwner(TFlyNodes* Value);
    TCustomQuillTree* GetTree() const;
    INodeHost* GetHost() const;
    // Child Index. An Index at or above the count raises EQuillTreeError, a negative one EListError.
    TFlyNode* GetItem(int Index);
    void SetItem(int Index, TFlyNode* Value);
    // Position of a child, -1 when Value is none.
    int IndexOf(TFlyNode* Value) const;
    TFlyNode* getFirstChild();
    TFlyNode* GetFirstChild() { return getFirstChild(); }
    TFlyNode* GetLastChild();
    // The sibling behind (before) Value; null for null.
    TFlyNode* GetNextChild(TFlyNode* Value);
    TFlyNode* GetPrevChild(TFlyNode* Value);
    TFlyNode* GetNextSibling();
    TFlyNode* getPrevSibling();
    TFlyNode* GetPrevSibling() { return getPrevSibling(); }
    TFlyNode* GetNextVisibleSibling();
    // Depth-first successor and predecessor in the whole tree. Placeholders on the way become nodes.
    TFlyNode* GetNext();
    TFlyNode* GetPrev();
    // GetNext over the nodes that exist: placeholders are skipped and stay. For walks over the whole tree that have
    // nothing to do with nodes which were never looked at.
    TFlyNode* GetNextExisting() const { return NextExisting(nullptr); }
    // Neighbouring rows, asked of the control; null without one.
    TFlyNode* GetNextVisible();
    TFlyNode* GetPrevVisible();
    // Number of nodes before this one in the whole tree; O(that number).
    int GetAbsoluteIndex();
    // Number of ancestors; O(that number).
    int GetLevel() const;
    // True when Value is null or an ancestor.
    bool HasAsParent(const TFlyNode* Value) const;
    // Whether the node has children or is forced to look so.
    bool GetChildren() const { return GetCount() > 0 || HasFlag(FlagHasChildren); }
    void SetChildren(bool Value);
    bool GetHasChildren() const { return GetChildren(); }
    void SetHasChildren(bool Value) { SetChildren(Value); }
    // Grid row, -1 when the node has none.
    int GetRow() const;
    // Destroys the node and everything below it.
    void Delete();
    void Removed(TFlyNode* Node);

    TTreeCollection* _Add(int Index) override;
    const TTreeCollectionClass* InternalGetClass(const std::string& Name) const override;

    // --- texts and data ---------------------------------------------------------------------------------------
    std::string GetText() const { return GetCaption(); }
    // Without a copy; valid until the next change of a text of this node.
    std::string_view GetTextView() const { return GetCaptionView(); }
    void SetText(const std::string& Value);
    void SetCaption(const std::string& Value) override;
    // Cell text by data column.
    virtual std::string GetCell(int Index);
    virtual void SetCell(int Index, const std::string& Value);
    // All cells, each followed by carriage return and line feed.
    std::string GetCellsText() const;
    void SetCellsText(const std::string& Value);
    bool CellsStored() const { return HasCells(); }

    // The list of cells itself, null when there is none. Asking for it gives the node a list object (some hundred
    // bytes); GetCellCount and GetCellView read without.
    TStringList* GetCells();
    bool HasCells() const;
    int GetCellCount() const;
    // The stored cell, without asking the control; empty beyond the last one. Valid until the next change.
    std::string_view GetCellView(int Index) const;
    // The text, and all stored cells put behind what stands in Cells, in one pass; valid like GetCellView.
    std::string_view GetAllTexts(std::vector<std::string_view>& Cells) const;
    // A node has cells 0 .. MaxCells - 1; others are ignored, since the ones before them would have to exist.
    static constexpr int MaxCells = 1 << 24;
    // Stores a cell and nothing else (no repaint).
    void StoreCell(int Index, std::string_view Value);
    // Replaces text and cells in one step, and nothing else; WithCells False leaves no list of cells. For mass
    // loading.
    void StoreTexts(std::string_view Text, std::span<const std::string_view> Cells, bool WithCells = true);
    // Takes the list of cells away.
    void FreeCells();

    void* Getdata() const { return GetDataPointer(); }
    void* GetData() const { return GetDataPointer(); }
    // Never freed by the node.
    void SetData(void* Value);

    // --- attributes -------------------------------------------------------------------------------------------
    // -1 while the control does not number its nodes.
    int GetUniqueTag() const;
    void SetUniqueTag(int Value);
    // Pixels; the control's default height (-1 without a control) when none is stored.
    int GetHeight() const;
    void SetHeight(int Value);
    int GetImageIndex() const { return FImageIndex; }
    void SetImageIndex(int Value);
    int GetSelectedIndex() const { return FSelectedIndex; }
    void SetSelectedIndex(int Value);
    int GetStateIndex() const { return FStateIndex; }
    // With a control, storing is up to its ChangeState, which may refuse.
    void SetStateIndex(int Value);
    int GetOverlayIndex() const;
    // Ignores Value and moves the stored overlay mask on: (OverlayIndex + 1) shifted left by 8 bits.
    void SetOverlayIndex(int Value);

    bool GetSelected() const { return GetMark(RowsList); }
    void SetSelected(bool Value);
    bool GetCut() const { return GetState(nsCut); }
    // Marks the node cut whatever Value is; the mark cannot be cleared through this setter.
    void SetCut(bool Value);
    bool GetDropTarget() const;
    // Marks the node as drop target whatever Value is.
    void SetDropTarget(bool Value);
    bool GetFocused() const;
    void SetFocused(bool Value);
    // The node holds one state value, not a set.
    bool GetState(TNodeState Value) const { return GetStateField() == static_cast<int>(Value); }
    void SetState(TNodeState Value);

    std::shared_ptr<INodeAdapter> GetNodeAdapter() const;
    void SetNodeAdapter(std::shared_ptr<INodeAdapter> Value);

    // --- expansion and visibility -----------------------------------------------------------------------------
    void Expand(bool Recurse) { ExpandItem(true, Recurse); }
    void Collapse(bool Recurse) { ExpandItem(false, Recurse); }
    void ExpandItem(bool Expand, bool Recurse);
    bool GetExpanded() const { return HasFlag(FlagExpanded); }
    void SetExpanded(bool Value) { ExpandItem(Value, false); }
    bool DoCanExpand(bool Expand);
    void DoExpand(bool Expand);
    // Inserts the visible descendants of Node into the row list: behind Node (Position -1) or at Position, which
    // moves behind them. Row-list work only.
    void ExpandNodeList(TFlyNode* Root, TFlyNode* Node, int& Position, bool Recurse);
    // Takes them out; the selection of removed nodes moves up to Node.
    void CollapseNodeList(TFlyNode* Root, TFlyNode* Node, bool Recurse);
    // Rows that the expanded subtree may have at most: hidden children are counted.
    int GetExpandedCount();
    bool IsNodeVisible() const;
    bool GetIsVisible() const { return IsNodeVisible(); }
    void MakeVisible();
    void Show(bool Recurse);
    void Hide();
    bool GetHidden() const { return GetItemMark(); }
    void SetHidden(bool Value);
    bool GetAllChildrenHidden() const { return HasFlag(FlagAllChildrenHidden); }

    // --- moving, sorting, copying -----------------------------------------------------------------------------
    bool GetSorted() const { return HasFlag(FlagSorted); }
    // Sorts the children; false without children. Nothing but the children's order changes here: rows follow
    // through the change propagation.
    bool AlphaSort();
    void SetIndex(int Value) override;
    virtual void MoveTo(TFlyNode* Destination, TNodeAttachMode Mode);
    // Copies another node with its subtree; children are appended to those that are there.
    void Assign(TPersistent* Source) override;
    void DeleteChildren();
    void Update(TTreeCollection* Item) override;
    bool GetMoving() const { return HasFlag(FlagMoving); }
    bool GetDeleting() const { return HasFlag(FlagDeleting); }

    // --- editing ----------------------------------------------------------------------------------------------
    // Starts editing the text in place; whether the editor is showing now.
    bool EditText();
    // Ends it; the typed text is stored unless Cancel.
    void EndEdit(bool Cancel);

    // --- streams: the collection's own format (treecoll/Treecoll.h) --------------------------------------------
    std::string SaveToText(bool WithProperties);
    void LoadFromText(const std::string& Text);
    void SaveToStream(TStream& Stream);
    void LoadFromStream(TStream& Stream);
    void SaveToFile(const std::string& FileName);
    void LoadFromFile(const std::string& FileName);

    // --- fields, for the control and for descendants: they store and do nothing else ---------------------------
    int GetHeightField() const { return FSpare; }
    void SetHeightField(int Value);
    int GetUniqueTagField() const { return FUniqueTag; }
    void SetUniqueTagField(int Value) { FUniqueTag = Value; }
    bool GetHasChildrenField() const { return HasFlag(FlagHasChildren); }
    void SetHasChildrenField(bool Value) { SetFlag(FlagHasChildren, Value); }
    void SetExpandedField(bool Value);
    // Keeps the count of selected rows right.
    void SetSelectedField(bool Value);
    void SetHiddenField(bool Value);
    void SetAllChildrenHiddenField(bool Value) { SetFlag(FlagAllChildrenHidden, Value); }
    void SetSortedField(bool Value) { SetFlag(FlagSorted, Value); }
    void SetImageIndexField(int Value) { FImageIndex = Value; }
    void SetSelectedIndexField(int Value) { FSelectedIndex = Value; }
    void SetOverlayIndexField(int Value);
    void SetStateIndexField(int Value) { FStateIndex = Value; }
    void SetOwnerField(TFlyNodes* Value);

protected:
    void DestroySteps() override;
    TTreeCollection* CreateItem(const std::string& ClassNameWanted) override;
    void Materialised(TTreeCollection* Item) override;
    void SlotsInserted(int Index, int Count) override;
    void SlotsRemoving(int Index, int Count) override;
    void SlotMoved(int From, int To) override;
    void SlotsSorted() override;
    void SlotReplaced(TTreeSlot* Old, TTreeSlot* New) override;
    const char* StreamListName() const override { return "CellsText"; }
    bool GetStreamList(std::vector<std::string_view>& Cells) const override;
    void SetStreamList(std::span<const std::string_view> Cells) override;
    std::span<const TPropertyInfo> StreamOnlyProperties() const override;
    void PropertyAbsent(const TPropertyInfo& Property) override;

private:
    friend class TFlyNodes;
    friend class TRowList;

    // What the nodes of one container share, so that a node outlives its container with an Owner of null.
    struct TAnchor {
        TFlyNodes* Container;
        int Users;
        // Selected nodes, those without a row included.
        int Selected;
    };
    struct TNodeExtras;

    enum TNodeFlag : std::uint32_t {
        FlagAllChildrenHidden = FlagsOfDescendants << 0,
        FlagDeleting = FlagsOfDescendants << 1,
        FlagExpanded = FlagsOfDescendants << 2,
        FlagSorted = FlagsOfDescendants << 3,
        FlagMoving = FlagsOfDescendants << 4,
        FlagHasChildren = FlagsOfDescendants << 5,
        FlagSortDue = FlagsOfDescendants << 6,
        FlagListCells = FlagsOfDescendants << 7, // cells live in the list object, not in the packed texts
        // The one state value plus one, in three bits.
        StateBit0 = FlagsOfDescendants << 8,
        StateBit1 = FlagsOfDescendants << 9,
        StateBit2 = FlagsOfDescendants << 10
    };

    std::unique_ptr<TExtras> MakeExtras() const override;
    TNodeExtras& NodeExtras();
    const TNodeExtras* NodeExtrasIfAny() const;
    // The container that shows this node, when there is one with a host.
    TFlyNodes* ShownBy() const;
    // Sends nothing while the tree is loaded or inside a bracket.
    bool IsQuiet() const;
    int GetStateField() const;
    // The next existing node in depth-first order below Root (null: in the whole tree); without this node's
    // children on demand.
    TFlyNode* NextExisting(const TFlyNode* Root, bool SkipChildren = false) const;
    TFlyNode* NextExistingSibling() const;
    TFlyNode* NextPastLeaves(const TFlyNode* Root) const;
    static TFlyNode* FirstExistingFrom(TTreeSlot* Slot, const TTreeCollection* Parent);
    void AcquireAnchor(TAnchor* Anchor);
    void ReleaseAnchor();
    void InvalidateStructureCell();
    void ResortSiblings();
    void ExpandSelf(bool Expand, bool OpenAncestors);
    void ExpandRows();
    void CollapseRows();
    void FitGridRows();
    void ListVisibleBelow(TFlyNode* Node, int& Position);
    void UnlistBelow(TFlyNode* Node);
    void ScrollChildrenIntoView();
    void FillWindowAfterCollapse();
    void MoveRowsTo(const TTreeSlot* Target);
    static int CompareNodes(TTreeCollection* Item1, TTreeCollection* Item2);
    static void SortItems(TTreeCollection* Collection, const INodeHost* Host, bool ByComparison);
    void AssignFields(TFlyNode* Source);
    int CountBelow() const;

    TAnchor* FAnchor = nullptr;
    int FUniqueTag = 0;
    int FImageIndex = -1;
    int FStateIndex = -1;
    int FSelectedIndex = -1;
};

} // namespace quill
