#include "treecoll/TreeProperties.h"

#include <algorithm>
#include <map>

namespace quill {

namespace {

std::map<std::string, TTreeCollectionClass, std::less<>>& Registry() {
    static std::map<std::string, TTreeCollectionClass, std::less<>> Instance = [] {
        std::map<std::string, TTreeCollectionClass, std::less<>> Classes;
        Classes["TTreeCollection"] = {"TTreeCollection", [](TTreeCollection* AOwner) -> TTreeCollection* {
                                          return new TTreeCollection(AOwner);
                                      }};
        return Classes;
    }();
    return Instance;
}

} // namespace

void RegisterTreeCollectionClass(const TTreeCollectionClass& AClass) { Registry()[AClass.Name] = AClass; }

const TTreeCollectionClass* FindTreeCollectionClass(std::string_view Name) {
    const auto Found = Registry().find(Name);
    return Found == Registry().end() ? nullptr : &Found->second;
}

bool TTreePropertyAccess::IsStored(const TTreeCollection& Object, const TPropertyInfo& Property,
                                   TStreamValue& Value) {
    if (Property.Stored && !Property.Stored(Object)) return false;
    if (Property.Kind == TPropertyKind::String) {
        if (!Property.GetString || !Property.SetString) return false;
        Value.Kind = TStreamValue::Text;
        Value.String = Property.GetString(Object);
        return !Value.String.empty();
    }
    if (!Property.GetOrdinal || !Property.SetOrdinal) return false;
    Value.Kind = TStreamValue::Ordinal;
    Value.Number = Property.GetOrdinal(Object);
    return !Property.Default || *Property.Default != Value.Number;
}

const TPropertyInfo* TTreePropertyAccess::Find(const TTreeCollection& Object, std::string_view Name) {
    if (const TPropertyInfo* const Property = FindProperty(Object.GetClassInfo(), Name)) return Property;
    for (const TPropertyInfo& Property : Object.StreamOnlyProperties())
        if (Property.Name == Name) return &Property;
    return nullptr;
}

bool TTreeItemReader::Set(std::string_view Name, const TStreamValue& Value) {
    TTreeCollection* const Object = FObject.Get();
    if (!Object) return true;
    const TPropertyInfo* const Property = TTreePropertyAccess::Find(*Object, Name);
    if (!Property) return true;
    if (Value.Kind == TStreamValue::List) {
        if (!Object->StreamListName() || Name != Object->StreamListName()) return true;
        FNamed.push_back(Property);
        const std::vector<std::string_view> Texts(Value.Items.begin(), Value.Items.end());
        Object->SetStreamList(Texts);
    } else if (Value.Kind == TStreamValue::Text && Property->SetString) {
        FNamed.push_back(Property);
        Property->SetString(*Object, Value.String);
    } else if (Value.Kind == TStreamValue::Ordinal && Property->SetOrdinal) {
        if (Value.Number < Property->Lowest || Value.Number > Property->Highest) return false;
        FNamed.push_back(Property);
        Property->SetOrdinal(*Object, Value.Number);
    }
    return true;
}

void TTreeItemReader::Finish() {
    if (!FObject.IsAlive()) return;
    TTreePropertyAccess::VisitProperties(*FObject.Get(), [this](const TPropertyInfo& Property) {
        if (FObject.IsAlive() && std::find(FNamed.begin(), FNamed.end(), &Property) == FNamed.end())
            FObject.Get()->PropertyAbsent(Property);
    });
}

// --- building -------------------------------------------------------------------------------------------------------

TTreeBuilder::TTreeBuilder(TTreeCollection* Root) : FRoot(Root) {
    Root->BeginUpdate();
    FBracketOpen = FRoot.IsAlive();
    if (!FBracketOpen) return;
    try {
        Root->Clear();
    } catch (...) {
        if (FRoot.IsAlive()) Root->EndUpdate();
        throw;
    }
}

TTreeBuilder::~TTreeBuilder() {
    try {
        Close();
    } catch (...) {
        // Reached on the way of another exception only.
    }
}

void TTreeBuilder::Close() {
    if (!FBracketOpen) return;
    FBracketOpen = false;
    if (FRoot.IsAlive()) FRoot.Get()->EndUpdate();
}

bool TTreeBuilder::Enter(const std::string& ClassName) {
    if (FOpen.empty()) {
        FOpen.push_back({FRoot.Get(), FGone.Now()});
        return true;
    }
    TTreeCollection* const Parent = Current();
    if (!Parent) {
        FOpen.push_back({nullptr, 0});
        return true;
    }
    const TBirthWatch Birth;
    TTreeCollection* const Item = TTreePropertyAccess::CreateItem(*Parent, ClassName);
    const bool Died = Birth.Died();
    if (!Item && !Died) return false;
    FOpen.push_back({Died ? nullptr : Item, FGone.Now()});
    return true;
}

void TTreeBuilder::AddPlaceholders(int Count) {
    if (TTreeCollection* const Parent = Current()) Parent->AddPlaceholders(Count);
}

TTreeCollection* TTreeBuilder::Current() const {
    const TOpen& Last = FOpen.back();
    return !Last.Item || FGone.IsGone(Last.Item, Last.Since) ? nullptr : Last.Item;
}

} // namespace quill
