// Collections of collections: the base of tree nodes and of their container.
#pragma once

#include "host/base/Objects.h"
#include "treecoll/CountedList.h"
#include "treecoll/LifeWatch.h"
#include "treecoll/PackedTexts.h"
#include "treecoll/TreeSlot.h"

#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quill {

class TStream;
struct TPropertyInfo;
class TTreeCollection;

using TChildList = TCountedList<TTreeSlot::ChildList>;

// Two items of one collection; negative, zero or positive. It may run application code.
using TTreeCompare = std::function<int(TTreeCollection* Item1, TTreeCollection* Item2)>;

// A class of collections, by the name under which streams know it.
struct TTreeCollectionClass {
    std::string Name;
    TTreeCollection* (*Create)(TTreeCollection* AOwner) = nullptr;
};

// Stands in a collection for an item that has not been created yet. Its index is its position, so that insertions
// and removals before it keep it right. Sixteen bytes; made by TTreeCollection::AddPlaceholders.
class TMetaNode final : public TTreeSlot {
public:
    TTreeCollection* GetCollection() const { return FCollection; }
    int GetIndex() const;

private:
    friend class TTreeCollection;
    explicit TMetaNode(TTreeCollection* ACollection) : TTreeSlot(true), FCollection(ACollection) {}
    ~TMetaNode() = default;

    TTreeCollection* FCollection;
};

// An object with a caption, a data pointer, at most one parent collection and an ordered list of child items. A slot
// of the list holds an item or a placeholder; GetItem makes an item of a placeholder.
//
// Changes are reported upwards once: when the child list of a collection has changed, its Update(null) is called,
// after the change, never while a constructor links the new item; inside BeginUpdate .. EndUpdate once at the end. A
// changed caption is not reported. Deep trees are safe: nothing here recurses on depth.
//
// Items are owned by their collection. They are destroyed by Free, by Clear of their collection, by its destruction
// or by operator delete; all of them first run DestroySteps of every item of the subtree.
class TTreeCollection : public TPersistent, public TTreeSlot {
public:
    // Links the new item behind the items of AOwner (null: a free-standing collection).
    explicit TTreeCollection(TTreeCollection* AOwner = nullptr);
    ~TTreeCollection() override;
    TTreeCollection(const TTreeCollection&) = delete;
    TTreeCollection& operator=(const TTreeCollection&) = delete;
    static void* operator new(std::size_t Size);
    static void operator delete(void* Memory, std::size_t Size) noexcept;
    // A delete-expression is Free: it sees the whole object, whatever its class, and does nothing to one that is
    // being destroyed already. Exceptions of handlers get lost here.
    static void operator delete(TTreeCollection* Object, std::destroying_delete_t, std::size_t Size) noexcept;
    static void operator delete(TTreeCollection* Object, std::destroying_delete_t, std::size_t Size,
                                std::align_val_t Alignment) noexcept;
    static void* operator new(std::size_t Size, std::align_val_t Alignment);
    static void operator delete(void* Memory, std::size_t Size, std::align_val_t Alignment) noexcept;

    std::string ClassName() const override { return "TTreeCollection"; }
    // Publishes Caption.
    const TClassInfo* GetClassInfo() const override;

    // --- overridable operations -------------------------------------------------------------------------------
    // Copies the caption and the items of another collection (deep); existing items go first.
    void Assign(TPersistent* Source) override;
    // Tells the parent collection that this item changed (or, with AllItems, that anything may have).
    virtual void Changed(bool AllItems);
    // What designers show: the caption, or the class name when it is empty.
    virtual std::string GetDisplayName() const;
    // Moves this item to position Value of its collection. A Value outside it raises EListError.
    virtual void SetIndex(int Value);
    // Hook: the items of this collection (null) or one of them changed.
    virtual void Update(TTreeCollection* Item);
    virtual void SetCaption(const std::string& Value);
    // The class of new items; Name is what a stream names, empty for the default. Null for an unknown name.
    virtual const TTreeCollectionClass* InternalGetClass(const std::string& Name) const;
    // Makes the item for the placeholder at Index (Count appends a new item) and returns it; an item that exists
    // already is returned as it is. Null when a handler deleted the new item. (The name is the documented one, and
    // no identifier of any library in use.)
    virtual TTreeCollection* _Add(int Index);
    // Whether the items belong to the object's state; without, streams leave them out.
    virtual bool IsList() const { return true; }
    virtual void BeginUpdate();
    // BeginUpdate, with room made for Capacity items.
    virtual void BeginUpdateMinCapacity(int Capacity);
    virtual void EndUpdate();

    // --- items ------------------------------------------------------------------------------------------------
    // Number of slots, placeholders included.
    int GetCount() const { return FItems ? FItems->GetCount() : 0; }
    // The item at Index, made on demand; an Index outside the list raises EListError.
    TTreeCollection* GetItem(int Index);
    // The content of the slot as it is; an Index outside the list raises EListError.
    TTreeSlot* GetPointer(int Index) const;
    // Whether the slot holds a placeholder.
    bool NVMeta(int Index) const { return GetPointer(Index)->IsPlaceholder(); }
    // Appends Count placeholders at once, or inserts them before Index: 24 bytes each, without creating any item.
    void AddPlaceholders(int Count) { InsertPlaceholders(GetCount(), Count); }
    void InsertPlaceholders(int Index, int Count);
    // Destroys all items.
    virtual void Clear();
    // Sorts the items, stable; null stands for the default order: captions in the locale's collation, runs of digits
    // by value. Placeholders keep their slots. Compare may change the tree: what it deleted or moved away is left
    // out, what it added comes last.
    void CustomSort(const TTreeCompare& Compare, bool Ascending);
    // Sorts by captions, stable: in the default order of CustomSort, or as CompareTextLocale does. Each key is made
    // once.
    enum class TTextOrder { Natural, Locale };
    void SortByText(TTextOrder Order, bool Ascending);
    // For adding to items that are in order. The next item linked here, until EndNewcomer, is a newcomer: its texts and
    // its place do not count. PlaceNewcomer moves it to where SortByText (ascending) would, at O(log n) comparisons;
    // false when the others may be out of order.
    void ExpectNewcomer();
    bool PlaceNewcomer(TTreeCollection* Item, TTextOrder Order);
    void EndNewcomer(TTreeCollection* Item);

    // --- this item --------------------------------------------------------------------------------------------
    std::string GetCaption() const { return std::string(FTexts.GetCaption()); }
    // Valid until the next change of a text of this object.
    std::string_view GetCaptionView() const { return FTexts.GetCaption(); }
    void* GetDataPointer() const { return FData; }
    // Position in the parent collection; -1 without one.
    int GetIndex() const;
    TTreeCollection* GetCollection() const { return FCollection; }
    // Re-parents this item, last in Value (unless it is there already); null takes it out. Raises EInvalidOperation, before anything changes,
    // when that would make it its own ancestor.
    void SetTreeCollection(TTreeCollection* Value);
    // Counts how often any item was re-parented, so that walks can tell whether something moved under them.
    static unsigned GetMoveCount();
    // True when Value is this object or below it.
    bool IsAncestorOrSelfOf(const TTreeCollection* Value) const;
    TPersistent* GetOwner() const;
    void SetOwner(TPersistent* Value);
    int GetUpdateCount() const;
    // After changes of the items; TFlyNodes decides itself when it is called.
    TNotifyEvent GetOnCollectionChange() const;
    void SetOnCollectionChange(TNotifyEvent Value);
    // A placeholder of this collection became Item; programs fill the item here.
    std::function<void(TTreeCollection* Item)> GetOnMaterialiseItem() const;
    void SetOnMaterialiseItem(std::function<void(TTreeCollection* Item)> Value);

    // Destroys this item with everything below it and tells its collection. Safe at any time, also from within
    // its own destruction (then it does nothing). An exception of a handler passes through, after the work.
    void Free();

    // The item of a slot of this collection, made on demand; null for null.
    TTreeCollection* ItemOfSlot(TTreeSlot* Slot);

    // --- for walks that create nothing ------------------------------------------------------------------------
    // Neighbours in the parent's list and the ends of the own one, as raw slots; null when there is none.
    TTreeSlot* NextSlot() const { return FCollection ? FCollection->FItems->Next(this) : nullptr; }
    TTreeSlot* PrevSlot() const { return FCollection ? FCollection->FItems->Prev(this) : nullptr; }
    TTreeSlot* FirstSlot() const { return GetCount() > 0 ? FItems->Get(0) : nullptr; }
    TTreeSlot* LastSlot() const { return GetCount() > 0 ? FItems->Get(GetCount() - 1) : nullptr; }
    const TChildList* GetChildList() const { return FItems.get(); }

    // Throws std::logic_error that names the broken rule. Costs O(size of the subtree).
    void CheckInvariants() const;

    // One word of flags: the base uses the low bits, descendants the rest.
    enum TBaseFlag : std::uint32_t {
        FlagWatched = 1u << 0,    // some TLifeWatch may look at this object
        FlagStepsRun = 1u << 1,   // DestroySteps ran or runs
        FlagDestroying = 1u << 2, // a destruction of this object is under way
        FlagClearing = 1u << 3,   // items are destroyed in bulk; one report follows
        FlagBornInSlot = 1u << 4, // made for a placeholder, in its slot
        FlagSilent = 1u << 5,     // goes without telling anybody (added while its parent was going)
        FlagNode = 1u << 6,       // this is a TFlyNode,
        FlagContainer = 1u << 7,  // this is a TFlyNodes: known without a cast
        FlagReleasing = 1u << 8,  // the steps are done; the destructor may run
        // The items are in this order, newcomers aside.
        FlagNaturalOrder = 1u << 9,
        FlagLocaleOrder = 1u << 10,
        FlagExpectsNewcomer = 1u << 11,
        FlagNewcomer = 1u << 12,
        FlagsOfDescendants = 1u << 13
    };
    bool HasFlag(std::uint32_t Flag) const { return (FFlags & Flag) != 0; }

protected:
    // Rarely used fields, made on first use.
    struct TExtras {
        virtual ~TExtras() = default;
        TPersistent* Owner = nullptr;
        int UpdateCount = 0;
        bool ChangedInBracket = false;
        TNotifyEvent OnCollectionChange;
        std::function<void(TTreeCollection*)> OnMaterialiseItem;
    };
    virtual std::unique_ptr<TExtras> MakeExtras() const;
    TExtras& Extras();
    TExtras* ExtrasIfAny() const { return FExtras.get(); }

    // Runs once before this object goes, while it is whole and everything below it still stands (from the destructor
    // of an object that is no heap object). Descendants say here what has to be said, and guard themselves: the object may be gone after
    // any call to application code.
    virtual void DestroySteps() {}
    // Makes an item of the default class; the base of _Add calls it.
    virtual TTreeCollection* CreateItem(const std::string& ClassNameWanted);
    // A placeholder became Item, which stands in its slot.
    virtual void Materialised(TTreeCollection* Item);
    // Around changes of the child list other than by constructors, for those that mirror it.
    virtual void SlotsInserted(int Index, int Count);
    virtual void SlotsRemoving(int Index, int Count);
    virtual void SlotMoved(int From, int To);
    virtual void SlotsSorted();
    virtual void SlotReplaced(TTreeSlot* Old, TTreeSlot* New);
    // Fires OnCollectionChange after a reported change; TFlyNodes has its own rules.
    virtual void CollectionChanged();
    // What streams carry besides plain properties: a list of texts, kept as they are, in place of the published
    // string property of that name. Null: none.
    virtual const char* StreamListName() const { return nullptr; }
    virtual bool GetStreamList(std::vector<std::string_view>& Texts) const;
    virtual void SetStreamList(std::span<const std::string_view> Texts);
    // What streams hold besides the published properties and designers do not show.
    virtual std::span<const TPropertyInfo> StreamOnlyProperties() const;
    // A stream that was read does not name Property; the object takes the declared default.
    virtual void PropertyAbsent(const TPropertyInfo& Property);
    // Reports a change of the child list, now or at the end of the bracket.
    void ItemsChanged();

    // For descendants' destructors: runs DestroySteps unless that happened, then destroys the items.
    void FinishDestruction() noexcept;
    void SetFlag(std::uint32_t Flag, bool Value) { FFlags = Value ? FFlags | Flag : FFlags & ~Flag; }

    TPackedTexts& Texts() { return FTexts; }
    const TPackedTexts& Texts() const { return FTexts; }
    void StoreData(void* Value) { FData = Value; }
    void StoreCaption(std::string_view Value);
    // To be called before a caption changes.
    void CaptionChanges() {
        if (FCollection && !HasFlag(FlagNewcomer)) FCollection->DoubtOrder();
    }
    // The mark that the parent's list counts.
    bool GetItemMark() const { return GetMark(ChildList); }
    void SetItemMark(bool Value);

private:
    friend class TLifeWatch;
    friend class TBirthWatch;
    friend class TTreePropertyAccess;
    friend class TTreeItemReader;

    TChildList& Items();
    void Link(TTreeCollection* AOwner);
    void Unlink();
    static void FreePlaceholder(TMetaNode* Meta) noexcept;
    void FreeQuietly() noexcept;
    static std::exception_ptr DestroySubtree(TTreeCollection* Root) noexcept;
    std::exception_ptr DestroyItems() noexcept;
    bool DropLastPlaceholders();
    void CopyItems(const TTreeCollection& Source);
    std::vector<TTreeCollection*> ExistingItems() const;
    void TakeOrder(std::vector<TTreeCollection*> Sorted, std::uint32_t OrderFlag);
    void DoubtOrder() { FFlags &= ~std::uint32_t{FlagNaturalOrder | FlagLocaleOrder}; }

    std::uint32_t FFlags = 0;

protected:
    // Unused by the base; here because the space would be padding. Nodes keep their height in it.
    std::int32_t FSpare = 0;

private:
    TTreeCollection* FCollection = nullptr;
    std::unique_ptr<TChildList> FItems;
    TPackedTexts FTexts;
    void* FData = nullptr;
    std::unique_ptr<TExtras> FExtras;
};

// Tells a factory whether the item that it made is still there when its constructor has called application code.
class TBirthWatch {
public:
    TBirthWatch();
    ~TBirthWatch();
    TBirthWatch(const TBirthWatch&) = delete;
    TBirthWatch& operator=(const TBirthWatch&) = delete;
    // True when the first item constructed under this watch is already gone.
    bool Died() const;

private:
    friend class TTreeCollection;
    TLifeWatch FWatch;
    bool FBorn = false;
    TBirthWatch* FOuter;
};

inline int TMetaNode::GetIndex() const { return FCollection->GetChildList()->IndexOf(this); }

// --- streams ----------------------------------------------------------------------------------------------------
// A collection with everything below it: classes, captions, published properties (host/base/Reflection.h) that
// differ from their defaults, and placeholders. The binary form is versioned and checks what it reads: a damaged
// stream raises EReadError with place and reason, and what was read so far stays. Reading replaces caption,
// properties and items of Collection; properties that the stream does not name get their defaults.

// Makes a class known to reading; a second registration of a name replaces the first.
void RegisterTreeCollectionClass(const TTreeCollectionClass& AClass);
// Null when no class of that name is registered.
const TTreeCollectionClass* FindTreeCollectionClass(std::string_view Name);

void WriteCollectionToStream(TStream& Stream, TTreeCollection* Collection);
void ReadCollectionFromStream(TStream& Stream, TTreeCollection* Collection);

void SaveTreeCollectionToStream(TTreeCollection* Collection, TStream& Stream);
void LoadTreeCollectionFromStream(TTreeCollection* Collection, TStream& Stream);
// Writes beside the file first and then replaces it, so that a failure leaves the old file.
void SaveTreeCollectionToFile(TTreeCollection* Collection, const std::string& FileName);
void LoadTreeCollectionFromFile(TTreeCollection* Collection, const std::string& FileName);
// Readable text, one line per item, indented by tabs. WithProperties False writes the captions only.
std::string SaveTreeCollectionToText(TTreeCollection* Collection, bool WithProperties);
void LoadTreeCollectionFromText(TTreeCollection* Collection, const std::string& Text);

} // namespace quill
