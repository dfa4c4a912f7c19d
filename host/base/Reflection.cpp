#include "host/base/Reflection.h"

#include <algorithm>

namespace quill {

std::string_view ValueName(const TPropertyInfo& Property, std::int64_t Value) {
    for (const TNamedValue& Named : Property.NamedValues)
        if (Named.Value == Value) return Named.Name;
    if (Value < 0 || static_cast<std::uint64_t>(Value) >= Property.Names.size()) return {};
    return Property.Names[static_cast<std::size_t>(Value)];
}

bool FindValue(const TPropertyInfo& Property, std::string_view Name, std::int64_t& Value) {
    for (const TNamedValue& Named : Property.NamedValues) {
        if (Named.Name != Name) continue;
        Value = Named.Value;
        return true;
    }
    const auto Found = std::find(Property.Names.begin(), Property.Names.end(), Name);
    if (Found == Property.Names.end()) return false;
    Value = Found - Property.Names.begin();
    return true;
}

std::vector<const TClassInfo*> ClassChain(const TClassInfo* Info) {
    std::vector<const TClassInfo*> Chain;
    for (; Info; Info = Info->Parent) Chain.push_back(Info);
    std::reverse(Chain.begin(), Chain.end());
    return Chain;
}

const TPropertyInfo* FindProperty(const TClassInfo* Info, std::string_view Name) {
    for (; Info; Info = Info->Parent)
        for (const TPropertyInfo& Property : Info->Properties)
            if (Property.Name == Name) return &Property;
    return nullptr;
}

} // namespace quill
