// Inside the collection base: what the binary and the text form of a tree have in common.
#pragma once

#include "host/base/Reflection.h"
#include "treecoll/Treecoll.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quill {

// Whether the bytes begin like a saved collection of any version, in the binary or the text form.
bool IsSavedTreeCollection(std::string_view Bytes);

// One property as a stream holds it: a number, a text, or a list of texts.
struct TStreamValue {
    enum TKind { Ordinal, Text, List };
    TKind Kind = Ordinal;
    std::int64_t Number = 0;
    std::string String;
    std::vector<std::string> Items;
};

// The door to what collections tell streams only.
class TTreePropertyAccess {
public:
    // Calls Visit(Name, Value) for every property of Object that a stream has to hold. Value is reused.
    template <class TVisit>
    static void VisitStored(const TTreeCollection& Object, const TVisit& Visit);

    // Calls Visit for every property that streams know, in the order in which they hold them.
    template <class TVisit>
    static void VisitProperties(const TTreeCollection& Object, const TVisit& Visit) {
        const std::span<const TPropertyInfo> StreamOnly = Object.StreamOnlyProperties(); // while it is there
        for (const TClassInfo* Info = Object.GetClassInfo(); Info; Info = Info->Parent)
            for (const TPropertyInfo& Property : Info->Properties) Visit(Property);
        for (const TPropertyInfo& Property : StreamOnly) Visit(Property);
    }
    // Null when there is none of that name.
    static const TPropertyInfo* Find(const TTreeCollection& Object, std::string_view Name);

    static TTreeCollection* CreateItem(TTreeCollection& Parent, const std::string& Name) {
        return Parent.InternalGetClass(Name) ? Parent.CreateItem(Name) : nullptr;
    }

private:
    static bool IsStored(const TTreeCollection& Object, const TPropertyInfo& Property, TStreamValue& Value);
};

// Puts the properties that a stream names into one object, then the defaults of those that it does not name.
// Setting a property may run application code; the object may be gone after any call.
class TTreeItemReader {
public:
    explicit TTreeItemReader(TTreeCollection* Object) : FObject(Object) {}
    // A name that the object does not know, and a value of another kind, are passed over: they come from other versions
    // of its class. False for a number that the property cannot hold.
    [[nodiscard]] bool Set(std::string_view Name, const TStreamValue& Value);
    void Finish();
    bool IsAlive() const { return FObject.IsAlive(); }

private:
    TLifeWatch FObject;
    std::vector<const TPropertyInfo*> FNamed;
};

// Builds a tree below a collection that is being read, item by item; both forms use it. Opens an update bracket and
// closes it on every exit. Items may be destroyed by application code meanwhile: what the stream says about them is
// then read and dropped.
class TTreeBuilder {
public:
    // Clears Root.
    explicit TTreeBuilder(TTreeCollection* Root);
    ~TTreeBuilder();
    TTreeBuilder(const TTreeBuilder&) = delete;
    TTreeBuilder& operator=(const TTreeBuilder&) = delete;

    // Closes the bracket; exceptions of handlers pass through.
    void Close();

    // The number of open items, Root included; 0 before the root was entered.
    int GetDepth() const { return static_cast<int>(FOpen.size()); }
    // Enters Root itself, or a new item of the named class below the innermost open item. False when the class is
    // not known.
    bool Enter(const std::string& ClassName);
    void Leave() { FOpen.pop_back(); }
    void AddPlaceholders(int Count);
    // The innermost open item; null when it is gone.
    TTreeCollection* Current() const;

private:
    TLifeWatch FRoot;
    TGoneWatch FGone;
    struct TOpen {
        TTreeCollection* Item;
        unsigned Since;
    };
    std::vector<TOpen> FOpen;
    bool FBracketOpen = false;
};

// --- templates ----------------------------------------------------------------------------------------------------

template <class TVisit>
void TTreePropertyAccess::VisitStored(const TTreeCollection& Object, const TVisit& Visit) {
    thread_local TStreamValue Value;
    const char* const ListName = Object.StreamListName();
    VisitProperties(Object, [&](const TPropertyInfo& Property) {
        if (ListName && Property.Name == ListName) {
            thread_local std::vector<std::string_view> Texts;
            Texts.clear();
            if (!Object.GetStreamList(Texts)) return;
            Value.Kind = TStreamValue::List;
            Value.Items.assign(Texts.begin(), Texts.end());
        } else if (!IsStored(Object, Property, Value)) {
            return;
        }
        Visit(Property.Name, Value);
    });
}

} // namespace quill
