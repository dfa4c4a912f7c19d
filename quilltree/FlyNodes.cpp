// The container: adding, removing, brackets, lookup.
#include "quilltree/FlyNodes.h"

#include "host/base/Errors.h"
#include "host/base/Streams.h"
#include "host/base/Strings.h"
#include "host/base/Texts.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quill {

// --- life -----------------------------------------------------------------------------------------------------------

TFlyNodes::TFlyNodes(INodeHost* ATree)
    : OnCollectionChange(Extras().OnCollectionChange), FHost(ATree),
      FAnchor(new TFlyNode::TAnchor{this, 1, 0}) {
    SetFlag(FlagContainer, true);
    SetOwner(ATree ? ATree->GetPersistentOwner() : nullptr);
}

// Nodes that go now find neither a row list nor a control: nobody is told.
void TFlyNodes::DestroySteps() {
    LockList();
    FHost = nullptr;
    RowList.Drop();
}

TFlyNodes::~TFlyNodes() {
    FinishDestruction();
    FAnchor->Container = nullptr;
    if (--FAnchor->Users == 0) delete FAnchor;
    while (FLockDepth > 0) UnlockList();
}

void TFlyNodes::LockList() {
    Lock.lock();
    ++FLockDepth;
}

void TFlyNodes::UnlockList() {
    --FLockDepth;
    Lock.unlock();
}

TCustomQuillTree* TFlyNodes::GetTree() const { return FHost ? FHost->GetTreeControl() : nullptr; }

// --- making nodes -----------------------------------------------------------------------------------------------------

TFlyNode* TFlyNodes::CreateNode(TTreeCollection* AOwner) {
    return FHost ? FHost->CreateNode(AOwner) : new TFlyNode(AOwner);
}

TTreeCollection* TFlyNodes::CreateItem(const std::string&) { return CreateNode(this); }

const TTreeCollectionClass* TFlyNodes::InternalGetClass(const std::string&) const {
    return &TFlyNode::Class();
}

TTreeCollection* TFlyNodes::_Add(int Index) {
    const TWatch<TFlyNodes> Self(this);
    TFlyNode* const Node = TFlyNode::AsNode(TTreeCollection::_Add(Index));
    if (!Node || !Self) return Node;
    Node->SetOwnerField(this);
    FSorted = false;
    return Node;
}

void TFlyNodes::Materialised(TTreeCollection* Item) {
    const TWatch<TFlyNodes> Self(this);
    const TWatch<TTreeCollection> ItemWatch(Item);
    if (FHost) FHost->NodeMaterialised(static_cast<TFlyNode*>(Item));
    if (!Self || !ItemWatch) return;
    if (const auto Handler = OnMaterialise) Handler(static_cast<TFlyNode*>(Item));
    if (Self && ItemWatch) TTreeCollection::Materialised(Item);
}

// While a node is added to a collection that is in order by text, nobody else sorts: it takes its place at last. Nodes
// that handlers add meanwhile are sorted as ever.
class TFlyNodes::TPlacingScope {
public:
    TPlacingScope(TFlyNodes* Container, TTreeCollection* Collection)
        : FContainer(Container), FCollection(Collection) {
        FActive = Container->SortsNodes() && !Container->FHost->HasCompare() && !Container->FPlacing &&
                  Container->GetUpdateCount() == 0;
        if (!FActive) return;
        Collection->ExpectNewcomer();
        Container->FPlacing = Collection == Container;
    }
    ~TPlacingScope() {
        if (!FActive) return;
        if (FContainer) FContainer->FPlacing = false;
        if (FCollection) FCollection->EndNewcomer(FNode);
    }
    TPlacingScope(const TPlacingScope&) = delete;
    TPlacingScope& operator=(const TPlacingScope&) = delete;
    void SetNode(TFlyNode* Node) { FNode.Reset(Node); }

private:
    TWatch<TFlyNodes> FContainer;
    TWatch<TTreeCollection> FCollection;
    TWatch<TFlyNode> FNode{nullptr};
    bool FActive = false;
};

TFlyNode* TFlyNodes::InternalAddObject(TFlyNode* Parent, const std::string& S, void* Ptr, TAddMode Mode) {
    const TWatch<TFlyNodes> Self(this);
    TPlacingScope Placing(this, Parent ? static_cast<TTreeCollection*>(Parent) : this);
    TFlyNode* Node = nullptr;
    {
        const TBirthWatch Birth;
        Node = CreateNode(Parent ? static_cast<TTreeCollection*>(Parent) : this);
        if (!Node || Birth.Died()) return nullptr;
    }
    const TWatch<TFlyNode> NodeWatch(Node);
    Placing.SetNode(Node);
    Node->SetData(Ptr);
    if (NodeWatch) Node->SetCaption(S);
    if (NodeWatch && Mode == taAddFirst) Node->SetIndex(0);
    if (NodeWatch && Self) PlaceSorted(Node);
    // Without effect outside a bracket, as required; it notes the parent of what is added inside one.
    if (NodeWatch && Self && GetUpdateCount() == 0) AddedNode(Node->GetParent());
    return NodeWatch;
}

bool TFlyNodes::SortsNodes() const { return FHost && FHost->GetSortType() != stNone; }

// A node added to a tree that sorts takes its place once it has its text; in a bracket, at its end.
void TFlyNodes::PlaceSorted(TFlyNode* Node) {
    if (!SortsNodes()) return;
    TFlyNode* const Parent = Node->GetParent();
    if (GetUpdateCount() > 0) {
        if (Parent && Parent->GetExpanded()) {
            Parent->SetFlag(TFlyNode::FlagSortDue, true);
            FSortDue = true;
        }
    } else if (!Parent) {
        SortTopLevelNow(Node);
    } else if (Parent->GetExpanded()) {
        const TWatch<TFlyNode> ParentWatch(Parent);
        if (!PlaceNewcomerAmong(Parent, Node)) {
            Parent->AlphaSort();
        } else if (ParentWatch) {
            Parent->SetSortedField(true);
        }
    }
}

bool TFlyNodes::SortsByComparison() const {
    const TSortType Sort = FHost ? FHost->GetSortType() : stBoth;
    return Sort == stData || Sort == stBoth;
}

bool TFlyNodes::PlaceNewcomerAmong(TTreeCollection* Collection, TFlyNode* Node) {
    if (FHost && FHost->HasCompare()) return false;
    return Collection->PlaceNewcomer(Node, SortsByComparison() ? TTextOrder::Locale : TTextOrder::Natural);
}

void TFlyNodes::SortDueChildren() {
    if (!std::exchange(FSortDue, false)) return;
    std::vector<TFlyNode*> Due;
    for (TFlyNode* Node = FirstExisting(); Node; Node = Node->GetNextExisting()) {
        if (Node->HasFlag(TFlyNode::FlagSortDue)) Due.push_back(Node);
    }
    const TWatch<TFlyNodes> Self(this);
    const TGoneWatch Gone;
    for (TFlyNode* const Node : Due) {
        if (Gone.IsGone(Node)) continue;
        Node->SetFlag(TFlyNode::FlagSortDue, false);
        if (!Node->GetSorted()) Node->AlphaSort();
        if (!Self) return;
    }
}

TFlyNode* TFlyNodes::Add(TFlyNode* Sibling, const std::string& S) { return AddObject(Sibling, S, nullptr); }

TFlyNode* TFlyNodes::AddObject(TFlyNode* Sibling, const std::string& S, void* Ptr) {
    return InternalAddObject(Sibling ? Sibling->GetParent() : nullptr, S, Ptr, taAdd);
}

TFlyNode* TFlyNodes::AddFirst(TFlyNode* Sibling, const std::string& S) {
    return InternalAddObject(Sibling, S, nullptr, taAddFirst);
}

TFlyNode* TFlyNodes::AddObjectFirst(TFlyNode* Sibling, const std::string& S, void* Ptr) {
    return InternalAddObject(Sibling ? Sibling->GetParent() : nullptr, S, Ptr, taAddFirst);
}

TFlyNode* TFlyNodes::AddChild(TFlyNode* Parent, const std::string& S) {
    return InternalAddObject(Parent, S, nullptr, taAdd);
}

TFlyNode* TFlyNodes::AddChildObject(TFlyNode* Parent, const std::string& S, void* Ptr) {
    // The node is last already; a tree that sorts has given it its place.
    return InternalAddObject(Parent, S, Ptr, taAdd);
}

TFlyNode* TFlyNodes::AddChildFirst(TFlyNode* Parent, const std::string& S) {
    return AddChildObjectFirst(Parent, S, nullptr);
}

TFlyNode* TFlyNodes::AddChildObjectFirst(TFlyNode* Parent, const std::string& S, void* Ptr) {
    return InternalAddObject(Parent, S, Ptr, taAddFirst);
}

TFlyNode* TFlyNodes::Insert(TFlyNode* Sibling, const std::string& S) {
    return InsertObject(Sibling, S, nullptr);
}

TFlyNode* TFlyNodes::InsertObject(TFlyNode* Sibling, const std::string& S, void* Ptr) {
    TFlyNode* const Parent = Sibling ? Sibling->GetParent() : nullptr;
    const bool Outside = GetUpdateCount() == 0;
    const TWatch<TFlyNode> SiblingWatch(Sibling);
    TWatch<TFlyNode> Node(nullptr);
    const TWatch<TFlyNodes> Self(this);
    {
        const TUpdateBracket Bracket(this);
        const TRowPatch Patch(Outside ? this : nullptr);
        {
            const TBirthWatch Birth;
            TFlyNode* const Made = CreateNode(Parent ? static_cast<TTreeCollection*>(Parent) : this);
            if (!Made || Birth.Died()) return nullptr;
            Node.Reset(Made);
        }
        if (SiblingWatch.Get() == Sibling) Node->SetIndex(Sibling ? Sibling->GetIndex() : 0);
        if (Node && Parent) {
            Node->GetParent()->SetSortedField(false);
        } else if (Self) {
            FSorted = false;
        }
        if (Node && Self) Node->SetOwnerField(this);
        if (Node) Node->SetData(Ptr);
        if (Node) Node->SetCaption(S);
        if (Node && Self) PlaceSorted(Node);
    }
    return Node;
}

void TFlyNodes::AddedNode(TFlyNode* ParentNode) {
    if (GetUpdateCount() == 0) return;
    const TWatch<TFlyNodes> Self(this);
    if (ParentNode) {
        ParentNode->SetChildren(true);
        Repaint(ParentNode);
    } else if (FHost) {
        FHost->Repaint();
    }
    if (!Self) return;
    if (const auto Handler = OnCollectionChange) Handler(this);
}

// --- removing ---------------------------------------------------------------------------------------------------------

void TFlyNodes::Delete(TFlyNode* Node) {
    if (Node) Node->Delete();
}

void TFlyNodes::Removed(TFlyNode* Node) {
    if (!FHost || !Node) return;
    const TWatch<TFlyNodes> Self(this);
    const TWatch<TFlyNode> NodeWatch(Node);
    try {
        const int Row = Node->GetRow();
        if (Row >= 0 && GetUpdateCount() == 0 && FHost->GetRow() == Row) FHost->SetRow(0);
        if (Self && NodeWatch) RowList.Take(Node);
    } catch (...) {
        // A failure here must not keep the notification from being sent; a handler's error is no concern of ours.
        if (Self && NodeWatch) RowList.Take(Node);
    }
    if (Self && NodeWatch && FHost && !Node->HasFlag(FlagSilent)) FHost->Delete(Node);
}

void TFlyNodes::Clear() {
    if (HasFlag(FlagClearing)) return; // a handler clears what is being cleared
    const TWatch<TFlyNodes> Self(this);
    std::exception_ptr First;
    // Every step runs, whatever the steps before it raised, as long as the container is there.
    const auto Step = [&](const auto& Work) {
        if (!Self) return;
        try {
            Work();
        } catch (...) {
            if (!First) First = std::current_exception();
        }
    };
    const auto HostStep = [&](const auto& Work) {
        if (Self && FHost) Step(Work);
    };
    HostStep([&] { FHost->SetEditorMode(false); });
    HostStep([&] { FHost->SetClearing(true); });
    Step([&] {
        LockList();
        RowList.Drop();
        RowList.FCurrent = false;
    });
    Step([&] { TTreeCollection::Clear(); });
    Step([&] {
        FLastUniqueTag = -1;
        if (GetCount() == 0) {
            RowList.Drop();
            RowList.FCurrent = true;
        }
        UnlockList();
    });
    HostStep([&] { FHost->SetClearing(false); });
    HostStep([&] { FHost->ForgetSelectionNodes(); });
    HostStep([&] { FHost->HideEdit(); });
    HostStep([&] { FHost->FixupRows(); });
    HostStep([&] { FHost->SetEditorMode(false); });
    HostStep([&] { FHost->ProcessMessages(); });
    if (First) std::rethrow_exception(First);
}

void TFlyNodes::ClearCells() {
    for (TFlyNode* Node = FirstExisting(); Node; Node = Node->GetNextExisting()) Node->FreeCells();
}

// --- update brackets ----------------------------------------------------------------------------------------------------

TRowPatch::TRowPatch(TFlyNodes* Container) : FContainer(Container) {
    if (!Container) return;
    FOld = Container->FPatchInBracket;
    if (Container->RowList.FCurrent) Container->FPatchInBracket = true;
}

TRowPatch::~TRowPatch() {
    if (FContainer) FContainer->FPatchInBracket = FOld;
}

TUpdateBracket::TUpdateBracket(TFlyNodes* Container)
    : FContainer(Container), FExceptions(std::uncaught_exceptions()) {
    if (Container) Container->BeginUpdate();
}

TUpdateBracket::~TUpdateBracket() noexcept(false) {
    if (!FContainer) return;
    if (std::uncaught_exceptions() == FExceptions) {
        FContainer->EndUpdate();
        return;
    }
    try {
        FContainer->EndUpdate();
    } catch (...) {
        // The exception that ended the scope is the one to be told.
    }
}

void TFlyNodes::BeginUpdate() {
    if (GetUpdateCount() == 0) {
        SetUpdateState(true);
        LockList();
    }
    TTreeCollection::BeginUpdate();
}

void TFlyNodes::EndUpdate() {
    const TWatch<TFlyNodes> Self(this);
    if (GetUpdateCount() == 1) {
        SortDueChildren();
        if (!Self) return;
        // What changed is told by SetUpdateState below.
        Extras().ChangedInBracket = false;
    }
    TTreeCollection::EndUpdate();
    if (GetUpdateCount() > 0) return;
    UnlockList();
    SetUpdateState(false);
    if (!Self) return;
    if (const auto Handler = OnCollectionChange) Handler(this);
}

void TFlyNodes::SetUpdateState(bool Updating) {
    if (!FHost) return;
    const TWatch<TFlyNodes> Self(this);
    if (FHost->HasWindow()) FHost->SetRedraw(!Updating);
    if (Updating) return;
    if (Self) FHost->RefreshNodeList(nullptr);
    if (Self) FHost->FixupRows();
}

void TFlyNodes::Update(TTreeCollection* Item) {
    const TWatch<TFlyNodes> Self(this);
    TTreeCollection::Update(Item);
    if (!Self || !FHost) return;
    if (Item && Item != this) {
        if (TFlyNode* const Node = TFlyNode::AsNode(Item)) Repaint(Node);
        return;
    }
    // A change outside a bracket ends with rows in tree order.
    if (GetUpdateCount() == 0 && !RowList.FCurrent) FHost->RefreshNodeList(nullptr);
    if (Self) FHost->FixupRows();
}

// --- lookup -------------------------------------------------------------------------------------------------------------

TFlyNode* TFlyNodes::GetNodeFromIndex(int Index) {
    if (Index < 0) throw EQuillTreeError(std::string(sInvalidIndex));
    return TFlyNode::AsNode(TTreeCollection::GetItem(Index));
}

void TFlyNodes::SetItem(int Index, TFlyNode* Value) {
    if (TFlyNode* const Node = GetNodeFromIndex(Index)) Node->Assign(Value);
}

TFlyNode* TFlyNodes::GetFirstNode() { return TFlyNode::AsNode(ItemOfSlot(FirstSlot())); }

TFlyNode* TFlyNodes::FirstExisting() const { return TFlyNode::FirstExistingFrom(FirstSlot(), this); }

TFlyNode* TFlyNodes::GetLastNode() {
    TFlyNode* Node = TFlyNode::AsNode(ItemOfSlot(LastSlot()));
    while (Node && Node->GetCount() > 0) Node = Node->GetLastChild();
    return Node;
}

TFlyNode* TFlyNodes::GetNodeOnUniqueTag(int Tag) {
    if (!FHost || !FHost->GetEnumerateNodes()) return Tag == -1 ? GetFirstNode() : nullptr;
    for (TFlyNode* Node = FirstExisting(); Node; Node = Node->GetNextExisting()) {
        if (Node->GetUniqueTag() == Tag) return Node;
    }
    return nullptr;
}

TFlyNode* TFlyNodes::GetNextSelectedNode(TFlyNode* Node) {
    if (!FHost) return nullptr;
    return RowList.NodeAt(RowList.FindSelected(RowList.IndexOf(Node) + 1));
}

TFlyNode* TFlyNodes::GetPrevSelectedNode(TFlyNode* Node) {
    if (!FHost) return nullptr;
    const int From = Node ? RowList.IndexOf(Node) - 1 : RowList.GetCount() - 1;
    return From < 0 ? nullptr : RowList.NodeAt(RowList.FindSelectedBackward(From));
}

std::string TFlyNodes::GetItemText(TFlyNode* Node) {
    std::vector<const TFlyNode*> Path;
    for (; Node; Node = Node->GetParent()) Path.push_back(Node);
    std::string Result;
    for (auto Step = Path.rbegin(); Step != Path.rend(); ++Step)
        Result.append((*Step)->GetTextView()).append("\r\n");
    return Result;
}

TFlyNode* TFlyNodes::SetItemText(const std::string& Path) {
    TFlyNode* Found = nullptr;
    std::string_view Line;
    for (std::size_t Pos = 0; NextTextLine(Path, Pos, Line);) {
        TFlyNode* Node = Found ? Found->getFirstChild() : GetFirstNode();
        while (Node && Node->GetTextView() != Line) Node = Node->GetNextSibling();
        if (!Node) return nullptr;
        Found = Node;
    }
    return Found;
}

// --- visibility and painting ------------------------------------------------------------------------------------------

void TFlyNodes::ShowAll() {
    const TUpdateBracket Bracket(this);
    const TGoneWatch Gone;
    for (TFlyNode* Node = FirstExisting(); Node; Node = Node->GetNextExisting()) {
        const unsigned Since = Gone.Now();
        if (Node->GetHidden()) Node->SetHidden(false);
        if (Gone.IsGone(this, Since) || Gone.IsGone(Node, Since)) return;
    }
}

void TFlyNodes::Hide(TFlyNode* Node) {
    if (Node) Node->Hide();
}

void TFlyNodes::Repaint(TFlyNode* Node) {
    if (!FHost || FHost->IsLoading()) return;
    const TWatch<TFlyNodes> Self(this);
    if (!Node) {
        FHost->FixupRows();
        if (Self) FHost->Invalidate();
        return;
    }
    const int Row = Node->GetExpanded() ? Node->GetRow() : -1;
    if (Row < 0) return;
    // Once, and again for each top-level node, as required. Marking a row that is marked already changes nothing,
    // so that the repetition stops where it would begin to cost.
    constexpr int Enough = 64;
    for (int i = 0; i <= std::min(GetCount(), Enough); ++i) FHost->InvalidateRow(Row);
}

// --- sorting and copying ------------------------------------------------------------------------------------------------

bool TFlyNodes::AlphaSort() { return SortTopLevelNow(nullptr); }

// Of a Newcomer among nodes in order, only the place is to be found.
bool TFlyNodes::SortTopLevelNow(TFlyNode* Newcomer) {
    if (GetUpdateCount() > 0) return false;
    const TWatch<TFlyNodes> Self(this);
    const TWatch<TFlyNode> NewcomerWatch(Newcomer);
    TWatch<TFlyNode> Focused(nullptr);
    if (FHost) Focused.Reset(FHost->GetNodeAtRow(FHost->GetRow()));
    if (!Self) return true;
    {
        const TUpdateBracket Bracket(this);
        const TRowPatch Patch(Newcomer ? this : nullptr);
        try {
            if (!NewcomerWatch || !PlaceNewcomerAmong(this, NewcomerWatch)) {
                TFlyNode::SortItems(this, FHost, SortsByComparison());
            }
        } catch (...) {
            // The end of the bracket would sort again, and fail again, without end.
            if (Self) FSorted = true;
            throw;
        }
        if (Self) FSorted = true;
    }
    if (Focused) Focused->SetFocused(true);
    return true;
}

void TFlyNodes::Assign(TPersistent* Source) {
    if (Source == this) return;
    const TWatch<TFlyNodes> Self(this);
    if (auto* const Other = dynamic_cast<TFlyNodes*>(Source)) {
        const TWatch<TFlyNodes> SourceWatch(Other);
        Clear();
        if (!Self || !SourceWatch) return;
        TMemoryStream Stream;
        WriteCollectionToStream(Stream, Other);
        Stream.SetPosition(0);
        const int LastTag = Other->FLastUniqueTag;
        ReadCollectionFromStream(Stream, this);
        if (!Self) return;
        FLastUniqueTag = LastTag;
    } else {
        TTreeCollection::Assign(Source);
    }
    if (Self && FHost) FHost->RefreshNodeList(nullptr);
    if (Self && FHost) FHost->FixupRows();
}

} // namespace quill
