// The life of a node and its place in the structure.
#include "quilltree/FlyNode.h"

#include "host/base/Strings.h"
#include "quilltree/FlyNodeExtras.h"
#include "quilltree/FlyNodes.h"

#include <utility>

namespace quill {

static_assert(sizeof(TFlyNode) <= 96, "a million nodes have to fit");

namespace {

TTreeCollection* MakeNode(TTreeCollection* AOwner) { return new TFlyNode(AOwner); }

} // namespace

const TTreeCollectionClass& TFlyNode::Class() {
    static const TTreeCollectionClass Instance{"TFlyNode", MakeNode};
    return Instance;
}

const TTreeCollectionClass* TFlyNode::InternalGetClass(const std::string&) const { return &Class(); }

// --- life ---------------------------------------------------------------------------------------------------------

TFlyNode::TFlyNode(TTreeCollection* AOwner) : TTreeCollection(AOwner) {
    SetFlag(FlagNode, true);
    FSpare = -1; // the height
    if (!AOwner) return;
    TFlyNodes* Container = nullptr;
    if (AOwner->HasFlag(FlagContainer)) {
        Container = static_cast<TFlyNodes*>(AOwner);
        Container->FSorted = false;
        AcquireAnchor(Container->FAnchor);
    } else if (TFlyNode* const Parent = AsNode(AOwner)) {
        Parent->SetFlag(FlagSorted, false);
        AcquireAnchor(Parent->FAnchor);
        Container = GetOwner();
    }
    if (!Container) return;
    FStateIndex = Container->FDefaultStateIndex;
    FImageIndex = Container->FDefaultImageIndex;
    FSelectedIndex = Container->FDefaultSelectedIndex;
    INodeHost* const Host = Container->FHost;
    if (!Host) return;
    if (Host->GetEnumerateNodes()) SetUniqueTag(-1);
    // A node for a placeholder takes over its row; nothing else changes.
    if (HasFlag(FlagBornInSlot)) return;
    Container->NodeAppeared(this);
    if (Container->GetUpdateCount() > 0) return;
    const TWatch<TFlyNodes> ContainerWatch(Container);
    const TWatch<TFlyNode> Self(this);
    try {
        Host->RefreshNodeList(AsNode(AOwner));
        if (ContainerWatch) Host->FixupRows();
    } catch (...) {
        // A handler that deleted this very node has the last word: there is nothing left to unwind.
        if (!Self) return;
        // The destructor will not run; the base takes the node out of the lists.
        ReleaseAnchor();
        throw;
    }
}

TFlyNode::~TFlyNode() {
    FinishDestruction();
    ReleaseAnchor();
}

void TFlyNode::DestroySteps() {
    const TWatch<TFlyNode> Self(this);
    SetNodeAdapter(nullptr);
    if (!Self) return;
    SetFlag(FlagDeleting, true);
    TFlyNode* const Parent = GetParent();
    if (Parent && !Parent->HasFlag(FlagDeleting) && Parent->GetCount() == 1) {
        Parent->SetFlag(FlagHasChildren, false);
        Parent->SetFlag(FlagExpanded, false);
    }
    TFlyNodes* const Container = GetOwner();
    if (INodeHost* const Host = GetHost()) {
        Host->ForgetNode(this);
        // Handlers that hear of the removal see a node without cells; where nobody listens, they go with the node.
        FreeCells();
        if (Parent) {
            Parent->Removed(this);
        } else {
            Container->Removed(this);
        }
        if (!Self) return;
    }
    StoreData(nullptr);
    TFlyNodes* const Issuer = GetOwner();
    if (Issuer && FUniqueTag >= 0 && FUniqueTag == Issuer->FLastUniqueTag) --Issuer->FLastUniqueTag;
}

void TFlyNode::Delete() {
    if (HasFlag(FlagDestroying)) return;
    SetFlag(FlagDeleting, true);
    if (TFlyNodes* const Container = ShownBy()) Container->DropRowsBelow(this);
    Free();
}

void TFlyNode::Removed(TFlyNode* Node) {
    if (TFlyNodes* const Container = GetOwner()) Container->Removed(Node);
}

void TFlyNode::AcquireAnchor(TAnchor* Anchor) {
    FAnchor = Anchor;
    if (!Anchor) return;
    ++Anchor->Users;
    if (GetSelected()) ++Anchor->Selected;
}

void TFlyNode::ReleaseAnchor() {
    TAnchor* const Old = std::exchange(FAnchor, nullptr);
    if (!Old) return;
    if (GetSelected()) --Old->Selected;
    if (--Old->Users == 0) delete Old;
}

std::unique_ptr<TTreeCollection::TExtras> TFlyNode::MakeExtras() const {
    return std::make_unique<TNodeExtras>();
}
TFlyNode::TNodeExtras& TFlyNode::NodeExtras() { return static_cast<TNodeExtras&>(Extras()); }
const TFlyNode::TNodeExtras* TFlyNode::NodeExtrasIfAny() const {
    return static_cast<const TNodeExtras*>(ExtrasIfAny());
}

TTreeCollection* TFlyNode::_Add(int Index) {
    const TWatch<TFlyNode> Self(this);
    TFlyNode* const Child = AsNode(TTreeCollection::_Add(Index));
    if (!Child || !Self) return Child;
    Child->SetOwnerField(GetOwner());
    SetFlag(FlagSorted, false);
    return Child;
}

TTreeCollection* TFlyNode::CreateItem(const std::string&) {
    TFlyNodes* const Container = GetOwner();
    return Container ? Container->CreateNode(this) : new TFlyNode(this);
}

void TFlyNode::Materialised(TTreeCollection* Item) {
    if (TFlyNodes* const Container = GetOwner()) {
        Container->Materialised(Item);
    } else {
        TTreeCollection::Materialised(Item);
    }
}

// --- owner and parent -----------------------------------------------------------------------------------------------

TFlyNode* TFlyNode::GetParent() const { return AsNode(GetCollection()); }

TFlyNodes* TFlyNode::ShownBy() const {
    TFlyNodes* const Container = GetOwner();
    return Container && Container->FHost ? Container : nullptr;
}

INodeHost* TFlyNode::GetHost() const {
    const TFlyNodes* const Container = GetOwner();
    return Container ? Container->FHost : nullptr;
}

TCustomQuillTree* TFlyNode::GetTree() const {
    INodeHost* const Host = GetHost();
    return Host ? Host->GetTreeControl() : nullptr;
}

void TFlyNode::SetOwnerField(TFlyNodes* Value) {
    TFlyNodes* const Old = GetOwner();
    if (Old == Value) return;
    // A row list holds nodes of its own container only; it forgets those that leave.
    if (Old && Old->RowList.Take(this) >= 0) Old->RowList.FCurrent = false;
    ReleaseAnchor();
    AcquireAnchor(Value ? Value->FAnchor : nullptr);
    SetHeightField(GetHeightField()); // the new container learns of a height of its own
}

void TFlyNode::SetOwner(TFlyNodes* Value) {
    for (TFlyNode* Node = this; Node; Node = Node->NextExisting(this)) Node->SetOwnerField(Value);
}

// --- walking ------------------------------------------------------------------------------------------------------

TFlyNode* TFlyNode::GetItem(int Index) {
    // The message is required as it is, with the place for the number not filled in.
    if (Index >= GetCount()) throw EQuillTreeError("GetItem:List index out of bounds (%d)");
    return AsNode(TTreeCollection::GetItem(Index));
}

void TFlyNode::SetItem(int Index, TFlyNode* Value) {
    if (TFlyNode* const Item = GetItem(Index)) Item->Assign(Value);
}

int TFlyNode::IndexOf(TFlyNode* Value) const {
    return Value && Value->GetCollection() == this ? Value->GetIndex() : -1;
}

TFlyNode* TFlyNode::getFirstChild() { return AsNode(ItemOfSlot(FirstSlot())); }
TFlyNode* TFlyNode::GetLastChild() { return AsNode(ItemOfSlot(LastSlot())); }
TFlyNode* TFlyNode::GetNextChild(TFlyNode* Value) { return Value ? Value->GetNextSibling() : nullptr; }
TFlyNode* TFlyNode::GetPrevChild(TFlyNode* Value) { return Value ? Value->getPrevSibling() : nullptr; }

TFlyNode* TFlyNode::GetNextSibling() {
    return GetCollection() ? AsNode(GetCollection()->ItemOfSlot(NextSlot())) : nullptr;
}

TFlyNode* TFlyNode::getPrevSibling() {
    return GetCollection() ? AsNode(GetCollection()->ItemOfSlot(PrevSlot())) : nullptr;
}

TFlyNode* TFlyNode::GetNextVisibleSibling() {
    for (TFlyNode* Node = GetNextSibling(); Node; Node = Node->GetNextSibling()) {
        if (Node->IsNodeVisible()) return Node;
    }
    return nullptr;
}

TFlyNode* TFlyNode::GetNext() {
    if (GetCount() > 0) return getFirstChild();
    for (TFlyNode* Node = this; Node; Node = Node->GetParent()) {
        if (Node->NextSlot()) return Node->GetNextSibling();
    }
    return nullptr;
}

TFlyNode* TFlyNode::GetPrev() {
    TFlyNode* Node = getPrevSibling();
    if (!Node) return GetParent();
    while (TFlyNode* const Last = Node->GetLastChild()) Node = Last;
    return Node;
}

// The first node from Slot on in the list of Parent.
TFlyNode* TFlyNode::FirstExistingFrom(TTreeSlot* Slot, const TTreeCollection* Parent) {
    while (Slot && Slot->IsPlaceholder()) Slot = Parent->GetChildList()->Next(Slot);
    return AsNode(static_cast<TTreeCollection*>(Slot));
}

TFlyNode* TFlyNode::NextExistingSibling() const {
    return GetCollection() ? FirstExistingFrom(NextSlot(), GetCollection()) : nullptr;
}

TFlyNode* TFlyNode::NextExisting(const TFlyNode* Root, bool SkipChildren) const {
    if (!SkipChildren) {
        if (TFlyNode* const Child = FirstExistingFrom(FirstSlot(), this)) return Child;
    }
    for (const TFlyNode* Node = this; Node && Node != Root; Node = Node->GetParent()) {
        if (TFlyNode* const Sibling = Node->NextExistingSibling()) return Sibling;
    }
    return nullptr;
}

// NextExisting for a leaf, past the siblings behind it that are leaves too: their list is read run by run.
TFlyNode* TFlyNode::NextPastLeaves(const TFlyNode* Root) const {
    if (this == Root || !GetCollection()) return nullptr;
    const TChildList& Siblings = *GetCollection()->GetChildList();
    for (int Index = Siblings.IndexOf(this) + 1; Index < Siblings.GetCount();) {
        const auto Run = Siblings.ChunkAt(Index);
        for (TTreeSlot* const Slot : Run) {
            if (Slot->IsPlaceholder()) continue;
            TFlyNode* const Node = AsNode(static_cast<TTreeCollection*>(Slot));
            if (Node && Node->GetChildren()) return Node;
        }
        Index += static_cast<int>(Run.size());
    }
    TFlyNode* const Parent = GetParent();
    return Parent ? Parent->NextExisting(Root, true) : nullptr;
}

TFlyNode* TFlyNode::GetNextVisible() {
    INodeHost* const Host = GetHost();
    return Host ? Host->GetNextVisible(this) : nullptr;
}

TFlyNode* TFlyNode::GetPrevVisible() {
    INodeHost* const Host = GetHost();
    return Host ? Host->GetPrevVisible(this) : nullptr;
}

// Counts what lies before this node from its own list upwards, placeholders included, and creates nothing.
int TFlyNode::GetAbsoluteIndex() {
    int Result = 0;
    for (const TFlyNode* Node = this; Node; Node = Node->GetParent()) {
        if (Node != this) ++Result;
        for (TTreeSlot* Slot = Node->PrevSlot(); Slot;) {
            ++Result;
            if (Slot->IsPlaceholder()) {
                Slot = static_cast<TMetaNode*>(Slot)->GetCollection()->GetChildList()->Prev(Slot);
                continue;
            }
            const TFlyNode* const Sibling = AsNode(static_cast<TTreeCollection*>(Slot));
            if (!Sibling) break;
            Result += Sibling->CountBelow();
            Slot = Sibling->PrevSlot();
        }
    }
    return Result;
}

int TFlyNode::CountBelow() const {
    int Result = 0;
    for (const TFlyNode* Node = this; Node; Node = Node->NextExisting(this)) Result += Node->GetCount();
    return Result;
}

int TFlyNode::GetLevel() const {
    int Level = 0;
    for (const TFlyNode* Node = GetParent(); Node; Node = Node->GetParent()) ++Level;
    return Level;
}

bool TFlyNode::HasAsParent(const TFlyNode* Value) const {
    if (!Value) return true;
    for (const TFlyNode* Node = GetParent(); Node; Node = Node->GetParent()) {
        if (Node == Value) return true;
    }
    return false;
}

int TFlyNode::GetRow() const {
    const TFlyNodes* const Container = GetOwner();
    const int Index = Container ? Container->RowList.IndexOf(this) : -1;
    if (Index < 0) return -1;
    return Container->FHost ? Index + Container->FHost->GetFixedRows() : Index;
}

bool TFlyNode::IsNodeVisible() const {
    const TFlyNodes* const Container = GetOwner();
    return Container && Container->RowList.Contains(this);
}

// --- what the lists report ------------------------------------------------------------------------------------------

void TFlyNode::SlotsInserted(int Index, int Count) {
    SetFlag(FlagSorted, false);
    if (TFlyNodes* const Container = ShownBy()) Container->SlotsAppeared(this, Index, Count);
}

void TFlyNode::SlotsRemoving(int Index, int Count) {
    if (TFlyNodes* const Container = GetOwner()) Container->SlotsDisappear(this, Index, Count);
}

void TFlyNode::SlotMoved(int, int To) {
    if (TFlyNodes* const Container = ShownBy()) Container->ChildMoved(this, To);
}

void TFlyNode::SlotsSorted() {
    if (TFlyNodes* const Container = ShownBy()) Container->ChildrenReordered(this);
}

void TFlyNode::SlotReplaced(TTreeSlot* Old, TTreeSlot* New) {
    if (TFlyNodes* const Container = GetOwner()) Container->SlotReplaced(Old, New);
}

void TFlyNode::Update(TTreeCollection* Item) {
    const TWatch<TFlyNode> Self(this);
    TTreeCollection::Update(Item);
    TFlyNodes* const Container = Self ? ShownBy() : nullptr;
    if (!Container || Container->GetUpdateCount() > 0) return;
    const TWatch<TFlyNodes> ContainerWatch(Container);
    TWatch<TTreeCollection> ItemWatch(Item);
    Container->FHost->RefreshNodeList(Item);
    if (ContainerWatch) Container->FHost->FixupRows();
    if (ContainerWatch && (ItemWatch || !Item)) Container->Repaint(AsNode(Item));
}

} // namespace quill
