#include "treecoll/Treecoll.h"

#include "host/base/Errors.h"
#include "host/base/Reflection.h"
#include "host/base/Texts.h"
#include "treecoll/NodePool.h"

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>
#include <utility>

namespace quill {

namespace {

// A constructor that finds a claim for its owner takes that slot instead of appending itself.
struct TSlotClaim {
    TTreeCollection* Owner;
    TTreeSlot* Slot;
};
thread_local TSlotClaim* PendingClaim = nullptr;
thread_local TBirthWatch* InnermostBirth = nullptr;
thread_local unsigned MoveCount = 0;

[[noreturn]] void RaiseIndexError(int Index) {
    throw EListError(FormatText(SListIndexError, {std::to_string(Index)}));
}

// Sets a variable for a scope.
template <class T>
class TRestore {
public:
    TRestore(T& Variable, T Value) : FVariable(Variable), FOld(std::exchange(Variable, Value)) {}
    ~TRestore() { FVariable = FOld; }
    TRestore(const TRestore&) = delete;
    TRestore& operator=(const TRestore&) = delete;

private:
    T& FVariable;
    T FOld;
};

} // namespace

// --- life ---------------------------------------------------------------------------------------------------------

void* TTreeCollection::operator new(std::size_t Size) { return AllocateBlock(Size); }
void TTreeCollection::operator delete(void* Memory, std::size_t Size) noexcept { FreeBlock(Memory, Size); }
void* TTreeCollection::operator new(std::size_t Size, std::align_val_t Alignment) {
    return ::operator new(Size, Alignment);
}
void TTreeCollection::operator delete(void* Memory, std::size_t, std::align_val_t Alignment) noexcept {
    ::operator delete(Memory, Alignment);
}

void TTreeCollection::operator delete(TTreeCollection* Object, std::destroying_delete_t,
                                      std::size_t Size) noexcept {
    if (!Object->HasFlag(FlagReleasing)) {
        Object->FreeQuietly();
        return;
    }
    void* const Memory = dynamic_cast<void*>(Object);
    Object->~TTreeCollection();
    FreeBlock(Memory, Size);
}
void TTreeCollection::operator delete(TTreeCollection* Object, std::destroying_delete_t, std::size_t,
                                      std::align_val_t Alignment) noexcept {
    if (!Object->HasFlag(FlagReleasing)) {
        Object->FreeQuietly();
        return;
    }
    void* const Memory = dynamic_cast<void*>(Object);
    Object->~TTreeCollection();
    ::operator delete(Memory, Alignment);
}

TTreeCollection::TTreeCollection(TTreeCollection* AOwner) : TTreeSlot(false) {
    if (InnermostBirth && !InnermostBirth->FBorn) {
        InnermostBirth->FBorn = true;
        InnermostBirth->FWatch.Reset(this);
    }
    if (AOwner) Link(AOwner);
}

void TTreeCollection::Link(TTreeCollection* AOwner) {
    // Whatever is made while its parent goes will go with it, unannounced: announcing could go on for ever.
    SetFlag(FlagSilent, AOwner->HasFlag(FlagDestroying | FlagClearing | FlagSilent));
    TSlotClaim* const Claim = PendingClaim;
    if (!Claim || Claim->Owner != AOwner || !Claim->Slot) {
        AOwner->Items().Add(this);
        FCollection = AOwner;
        if (AOwner->HasFlag(FlagExpectsNewcomer)) {
            AOwner->SetFlag(FlagExpectsNewcomer, false);
            SetFlag(FlagNewcomer, true);
        } else {
            AOwner->DoubtOrder();
        }
        return;
    }
    TTreeSlot* const Placeholder = std::exchange(Claim->Slot, nullptr);
    SetFlag(FlagBornInSlot, true);
    AOwner->DoubtOrder();
    AOwner->FItems->Replace(AOwner->FItems->IndexOf(Placeholder), this);
    FCollection = AOwner;
    AOwner->SlotReplaced(Placeholder, this);
    FreePlaceholder(static_cast<TMetaNode*>(Placeholder));
}

TTreeCollection::~TTreeCollection() {
    FinishDestruction();
    if (HasFlag(FlagWatched)) TLifeWatch::Forget(this);
    TGoneWatch::Forget(this);
    if (!FCollection) return;
    TTreeCollection* const Parent = FCollection;
    Unlink();
    try {
        Parent->ItemsChanged();
    } catch (...) {
        // A destructor must not throw; Free passes the exceptions of handlers on.
    }
}

void TTreeCollection::Unlink() {
    TTreeCollection* const Parent = std::exchange(FCollection, nullptr);
    if (!Parent) return;
    const int Index = Parent->FItems->IndexOf(this);
    Parent->SlotsRemoving(Index, 1);
    Parent->FItems->Delete(Index);
}

void TTreeCollection::FreePlaceholder(TMetaNode* Meta) noexcept {
    Meta->~TMetaNode();
    FreeBlock(Meta, sizeof(TMetaNode));
}

void TTreeCollection::FinishDestruction() noexcept {
    SetFlag(FlagDestroying, true);
    if (!HasFlag(FlagStepsRun)) {
        SetFlag(FlagStepsRun, true);
        try {
            DestroySteps();
        } catch (...) {
            // See the destructor.
        }
    }
    DestroyItems();
}

// Takes the last items away until there is none; an item goes with everything below it.
std::exception_ptr TTreeCollection::DestroyItems() noexcept {
    std::exception_ptr First;
    TLifeWatch Self(this);
    while (Self.IsAlive() && GetCount() > 0) {
        if (DropLastPlaceholders()) continue;
        auto* const Item = static_cast<TTreeCollection*>(LastSlot());
        if (auto Error = DestroySubtree(Item); Error && !First) First = Error;
    }
    return First;
}

// Drops the run of placeholders at the end of the list; false when there is none.
bool TTreeCollection::DropLastPlaceholders() {
    const int Count = GetCount();
    std::array<TTreeSlot*, 256> Run;
    std::size_t Length = 0;
    for (TTreeSlot* Slot = LastSlot(); Slot && Slot->IsPlaceholder() && Length < Run.size();
         Slot = FItems->Prev(Slot)) {
        Run[Length++] = Slot;
    }
    if (Length == 0) return false;
    const int First = Count - static_cast<int>(Length);
    SlotsRemoving(First, static_cast<int>(Length));
    FItems->DeleteRange(First, static_cast<int>(Length));
    for (std::size_t i = 0; i < Length; ++i) FreePlaceholder(static_cast<TMetaNode*>(Run[i]));
    return true;
}

// Destroys Root and everything below it: first the steps of an item, then its children from the last to the first,
// then its memory. A step may run application code that destroys any part of this or all of it, so that after each
// the walk goes on from what is left. Returns the first exception.
std::exception_ptr TTreeCollection::DestroySubtree(TTreeCollection* Root) noexcept {
    std::exception_ptr First;
    TLifeWatch RootWatch(Root);
    TLifeWatch Watch(nullptr);
    TTreeCollection* Item = Root;
    for (;;) {
        if (!Item->HasFlag(FlagStepsRun)) {
            Item->SetFlag(FlagStepsRun | FlagDestroying, true);
            Watch.Reset(Item);
            try {
                Item->DestroySteps();
            } catch (...) {
                if (!First) First = std::current_exception();
            }
            if (!RootWatch.IsAlive()) return First;
            if (!Watch.IsAlive()) {
                Item = Root;
                continue;
            }
        }
        if (Item->GetCount() > 0) {
            if (!Item->DropLastPlaceholders()) Item = static_cast<TTreeCollection*>(Item->LastSlot());
            continue;
        }
        TTreeCollection* const Parent = Item->FCollection;
        Item->Unlink();
        Item->SetFlag(FlagReleasing, true);
        if (Item == Root) {
            delete Root;
            return First;
        }
        delete Item;
        // The destructor of a program's own class ran, which may have done anything, too.
        if (!RootWatch.IsAlive()) return First;
        Item = Parent;
    }
}

void TTreeCollection::FreeQuietly() noexcept {
    try {
        Free();
    } catch (...) {
        // delete must not throw; Free passes the exceptions of handlers on.
    }
}

void TTreeCollection::Free() {
    if (HasFlag(FlagDestroying)) return;
    TTreeCollection* const Parent = FCollection;
    TLifeWatch ParentWatch(Parent);
    std::exception_ptr First = DestroySubtree(this);
    if (ParentWatch.IsAlive()) {
        try {
            Parent->ItemsChanged();
        } catch (...) {
            if (!First) First = std::current_exception();
        }
    }
    if (First) std::rethrow_exception(First);
}

void TTreeCollection::Clear() {
    if (GetCount() == 0 || HasFlag(FlagClearing)) return;
    TLifeWatch Self(this);
    SetFlag(FlagClearing, true);
    std::exception_ptr First = DestroyItems();
    if (Self.IsAlive()) {
        SetFlag(FlagClearing, false);
        try {
            ItemsChanged();
        } catch (...) {
            if (!First) First = std::current_exception();
        }
    }
    if (First) std::rethrow_exception(First);
}

TBirthWatch::TBirthWatch() : FWatch(nullptr), FOuter(InnermostBirth) { InnermostBirth = this; }
TBirthWatch::~TBirthWatch() { InnermostBirth = FOuter; }
bool TBirthWatch::Died() const { return FBorn && !FWatch.IsAlive(); }

// --- rarely used fields -------------------------------------------------------------------------------------------

std::unique_ptr<TTreeCollection::TExtras> TTreeCollection::MakeExtras() const {
    return std::make_unique<TExtras>();
}

TTreeCollection::TExtras& TTreeCollection::Extras() {
    if (!FExtras) FExtras = MakeExtras();
    return *FExtras;
}

TPersistent* TTreeCollection::GetOwner() const { return FExtras ? FExtras->Owner : nullptr; }
void TTreeCollection::SetOwner(TPersistent* Value) {
    if (Value || FExtras) Extras().Owner = Value;
}
int TTreeCollection::GetUpdateCount() const { return FExtras ? FExtras->UpdateCount : 0; }
TNotifyEvent TTreeCollection::GetOnCollectionChange() const {
    return FExtras ? FExtras->OnCollectionChange : TNotifyEvent();
}
void TTreeCollection::SetOnCollectionChange(TNotifyEvent Value) {
    Extras().OnCollectionChange = std::move(Value);
}
std::function<void(TTreeCollection*)> TTreeCollection::GetOnMaterialiseItem() const {
    return FExtras ? FExtras->OnMaterialiseItem : nullptr;
}
void TTreeCollection::SetOnMaterialiseItem(std::function<void(TTreeCollection*)> Value) {
    Extras().OnMaterialiseItem = std::move(Value);
}

// --- items --------------------------------------------------------------------------------------------------------

TChildList& TTreeCollection::Items() {
    if (!FItems) FItems = std::make_unique<TChildList>();
    return *FItems;
}

TTreeSlot* TTreeCollection::GetPointer(int Index) const {
    if (Index < 0 || Index >= GetCount()) RaiseIndexError(Index);
    return FItems->Get(Index);
}

TTreeCollection* TTreeCollection::GetItem(int Index) {
    TTreeSlot* const Slot = GetPointer(Index);
    return Slot->IsPlaceholder() ? _Add(Index) : static_cast<TTreeCollection*>(Slot);
}

TTreeCollection* TTreeCollection::ItemOfSlot(TTreeSlot* Slot) {
    if (!Slot || !Slot->IsPlaceholder()) return static_cast<TTreeCollection*>(Slot);
    return _Add(FItems->IndexOf(Slot));
}

TTreeCollection* TTreeCollection::_Add(int Index) {
    if (Index < 0 || Index > GetCount()) RaiseIndexError(Index);
    TTreeSlot* const Slot = Index < GetCount() ? FItems->Get(Index) : nullptr;
    if (Slot && !Slot->IsPlaceholder()) return static_cast<TTreeCollection*>(Slot);
    TLifeWatch Self(this);
    TTreeCollection* Item = nullptr;
    {
        TSlotClaim Claim{this, Slot};
        const TRestore<TSlotClaim*> Pending(PendingClaim, &Claim);
        const TBirthWatch Birth;
        Item = CreateItem({});
        if (!Item || Birth.Died() || !Self.IsAlive()) return nullptr;
    }
    TLifeWatch ItemWatch(Item);
    Item->SetFlag(FlagBornInSlot, false);
    Materialised(Item);
    return ItemWatch.IsAlive() ? Item : nullptr;
}

TTreeCollection* TTreeCollection::CreateItem(const std::string& ClassNameWanted) {
    const TTreeCollectionClass* const Class = InternalGetClass(ClassNameWanted);
    return Class ? Class->Create(this) : nullptr;
}

const TTreeCollectionClass* TTreeCollection::InternalGetClass(const std::string& Name) const {
    return FindTreeCollectionClass(Name.empty() ? "TTreeCollection" : Name);
}

void TTreeCollection::Materialised(TTreeCollection* Item) {
    // Called through a copy: the handler may replace itself.
    if (auto Handler = GetOnMaterialiseItem()) Handler(Item);
}

void TTreeCollection::InsertPlaceholders(int Index, int Count) {
    if (Index < 0 || Index > GetCount()) RaiseIndexError(Index);
    if (Count <= 0) return;
    DoubtOrder();
    // In batches, so that ten million need no list of ten million besides.
    std::array<TTreeSlot*, 4096> Batch;
    for (int Done = 0; Done < Count;) {
        const int Now = std::min(Count - Done, static_cast<int>(Batch.size()));
        for (int i = 0; i < Now; ++i) {
            Batch[static_cast<std::size_t>(i)] = new (AllocateBlock(sizeof(TMetaNode))) TMetaNode(this);
        }
        Items().InsertRange(Index + Done,
                            std::span<TTreeSlot* const>(Batch.data(), static_cast<std::size_t>(Now)));
        Done += Now;
    }
    SlotsInserted(Index, Count);
    ItemsChanged();
}

// --- this item ----------------------------------------------------------------------------------------------------

int TTreeCollection::GetIndex() const { return FCollection ? FCollection->FItems->IndexOf(this) : -1; }

bool TTreeCollection::IsAncestorOrSelfOf(const TTreeCollection* Value) const {
    while (Value && Value != this) Value = Value->FCollection;
    return Value != nullptr;
}

unsigned TTreeCollection::GetMoveCount() { return MoveCount; }

void TTreeCollection::SetTreeCollection(TTreeCollection* Value) {
    if (Value == FCollection) return;
    if (IsAncestorOrSelfOf(Value)) throw EInvalidOperation("An item cannot be moved into itself");
    if (HasFlag(FlagDestroying) || (Value && Value->HasFlag(FlagDestroying | FlagClearing))) {
        throw EInvalidOperation("Items cannot be moved while they are being deleted");
    }
    ++MoveCount;
    TTreeCollection* const OldParent = FCollection;
    TLifeWatch OldWatch(OldParent);
    TLifeWatch NewWatch(Value);
    Unlink();
    if (Value) {
        Value->Items().Add(this);
        FCollection = Value;
        Value->DoubtOrder();
        Value->SlotsInserted(Value->GetCount() - 1, 1);
    }
    if (OldWatch.IsAlive()) OldParent->ItemsChanged();
    if (NewWatch.IsAlive()) Value->ItemsChanged();
}

void TTreeCollection::SetIndex(int Value) {
    if (!FCollection) return;
    if (Value < 0 || Value >= FCollection->GetCount()) RaiseIndexError(Value);
    const int Old = GetIndex();
    if (Old == Value) return;
    if (!HasFlag(FlagNewcomer)) FCollection->DoubtOrder();
    FCollection->FItems->Move(Old, Value);
    FCollection->SlotMoved(Old, Value);
    FCollection->ItemsChanged();
}

void TTreeCollection::SetItemMark(bool Value) {
    if (FCollection) {
        FCollection->FItems->SetMark(this, Value);
    } else {
        TChildList::StoreMark(this, Value);
    }
}

void TTreeCollection::SetCaption(const std::string& Value) { StoreCaption(Value); }

void TTreeCollection::StoreCaption(std::string_view Value) {
    CaptionChanges();
    FTexts.SetCaption(Value);
}

std::string TTreeCollection::GetDisplayName() const {
    return GetCaptionView().empty() ? ClassName() : GetCaption();
}

void TTreeCollection::Assign(TPersistent* Source) {
    auto* const Other = dynamic_cast<TTreeCollection*>(Source);
    if (!Other) {
        TPersistent::Assign(Source);
        return;
    }
    if (Other == this) return;
    if (Other->IsAncestorOrSelfOf(this) || IsAncestorOrSelfOf(Other)) {
        throw EInvalidOperation("A collection cannot be copied into a part of itself");
    }
    TLifeWatch Self(this);
    BeginUpdate();
    std::exception_ptr First;
    try {
        Clear();
        if (Self.IsAlive()) CopyItems(*Other);
    } catch (...) {
        First = std::current_exception();
    }
    if (Self.IsAlive()) EndUpdate();
    if (First) std::rethrow_exception(First);
}

// Caption and items of Source, walked in step with the copies.
void TTreeCollection::CopyItems(const TTreeCollection& Source) {
    const TTreeCollection* From = &Source;
    TTreeCollection* To = this;
    To->SetCaption(From->GetCaption());
    const TTreeSlot* Slot = From->FirstSlot();
    for (;;) {
        while (!Slot) {
            if (From == &Source) return;
            Slot = From->NextSlot();
            From = From->FCollection;
            To = To->FCollection;
        }
        if (Slot->IsPlaceholder()) {
            To->AddPlaceholders(1);
            Slot = From->FItems->Next(Slot);
            continue;
        }
        From = static_cast<const TTreeCollection*>(Slot);
        To = To->CreateItem(From->ClassName());
        if (!To) throw EInvalidOperation("The class " + From->ClassName() + " is not registered");
        To->SetCaption(From->GetCaption());
        Slot = From->FirstSlot();
    }
}

const TClassInfo* TTreeCollection::GetClassInfo() const {
    static const TPropertyInfo Properties[] = {
        {.Name = "Caption",
         .Kind = TPropertyKind::String,
         .GetString =
             [](const TPersistent& O) { return static_cast<const TTreeCollection&>(O).GetCaption(); },
         .SetString = [](TPersistent& O,
                         const std::string& S) { static_cast<TTreeCollection&>(O).SetCaption(S); }}};
    static const TClassInfo Info{"TTreeCollection", nullptr, Properties};
    return &Info;
}

bool TTreeCollection::GetStreamList(std::vector<std::string_view>&) const { return false; }
void TTreeCollection::SetStreamList(std::span<const std::string_view>) {}

std::span<const TPropertyInfo> TTreeCollection::StreamOnlyProperties() const { return {}; }

void TTreeCollection::PropertyAbsent(const TPropertyInfo& Property) {
    if (Property.SetOrdinal && Property.Default && Property.GetOrdinal(*this) != *Property.Default) {
        Property.SetOrdinal(*this, *Property.Default);
    } else if (Property.SetString && Property.GetString && !Property.GetString(*this).empty()) {
        Property.SetString(*this, {});
    }
}

// --- change propagation -------------------------------------------------------------------------------------------

void TTreeCollection::Changed(bool AllItems) {
    if (!FCollection || FCollection->HasFlag(FlagDestroying | FlagClearing)) return;
    if (FCollection->GetUpdateCount() > 0) {
        FCollection->Extras().ChangedInBracket = true;
    } else {
        FCollection->Update(AllItems ? nullptr : this);
    }
}

void TTreeCollection::ItemsChanged() {
    if (HasFlag(FlagDestroying | FlagClearing)) return;
    if (GetUpdateCount() > 0) {
        Extras().ChangedInBracket = true;
        return;
    }
    TLifeWatch Self(this);
    Update(nullptr);
    if (Self.IsAlive()) CollectionChanged();
}

void TTreeCollection::Update(TTreeCollection*) {}

void TTreeCollection::CollectionChanged() {
    if (auto Handler = GetOnCollectionChange()) Handler(this);
}

void TTreeCollection::BeginUpdate() { ++Extras().UpdateCount; }

void TTreeCollection::BeginUpdateMinCapacity(int Capacity) {
    BeginUpdate();
    Items().Reserve(Capacity);
}

void TTreeCollection::EndUpdate() {
    TExtras& E = Extras();
    if (E.UpdateCount == 0) throw EInvalidOperation("EndUpdate without BeginUpdate");
    if (--E.UpdateCount == 0 && std::exchange(E.ChangedInBracket, false)) ItemsChanged();
}

void TTreeCollection::SlotsInserted(int, int) {}
void TTreeCollection::SlotsRemoving(int, int) {}
void TTreeCollection::SlotMoved(int, int) {}
void TTreeCollection::SlotsSorted() {}
void TTreeCollection::SlotReplaced(TTreeSlot*, TTreeSlot*) {}

// --- checking -----------------------------------------------------------------------------------------------------

void TTreeCollection::CheckInvariants() const {
    std::vector<const TTreeCollection*> Open{this};
    while (!Open.empty()) {
        const TTreeCollection* const Item = Open.back();
        Open.pop_back();
        if (!Item->FItems) continue;
        Item->FItems->CheckInvariants();
        for (const TTreeSlot* Slot = Item->FirstSlot(); Slot; Slot = Item->FItems->Next(Slot)) {
            const TTreeCollection* const Parent =
                Slot->IsPlaceholder() ? static_cast<const TMetaNode*>(Slot)->GetCollection()
                                      : static_cast<const TTreeCollection*>(Slot)->FCollection;
            if (Parent != Item) throw std::logic_error("tree: an item knows its collection");
            if (!Slot->IsPlaceholder()) Open.push_back(static_cast<const TTreeCollection*>(Slot));
        }
    }
}

} // namespace quill
