// Published properties as data: one static table per class, read by form streams, designers and tests.
#pragma once

#include "host/base/Objects.h"

#include <any>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quill {

// Object: a persistent object that belongs to its holder, such as a font; its own properties are the values.
// Reference: another component, which is stored by its name.
enum class TPropertyKind { Integer, Boolean, Enumeration, Set, Color, String, Object, Reference, Event };

// An integer that texts show by a name.
struct TNamedValue {
    std::string_view Name;
    std::int64_t Value = 0;
};

// One property. Ordinal kinds use the ordinal accessors, strings the string ones, objects and references the object
// ones, events those of events; a missing setter means read-only.
struct TPropertyInfo {
    std::string_view Name;
    TPropertyKind Kind = TPropertyKind::Integer;
    std::int64_t (*GetOrdinal)(const TPersistent& Object) = nullptr;
    void (*SetOrdinal)(TPersistent& Object, std::int64_t Value) = nullptr;
    std::string (*GetString)(const TPersistent& Object) = nullptr;
    void (*SetString)(TPersistent& Object, const std::string& Value) = nullptr;
    // The value that is left out of a stream and restored when a stream does not name the property.
    std::optional<std::int64_t> Default = {};
    // Whether the property is streamed at all; always when null.
    bool (*Stored)(const TPersistent& Object) = nullptr;
    // Value names of enumerations and sets, by ordinal.
    std::span<const std::string_view> Names = {};
    // Names of some values of an integer.
    std::span<const TNamedValue> NamedValues = {};
    // What a stream may hold of an integer. Setters have rules of their own; these bounds keep a damaged stream from
    // asking for more than a machine has.
    std::int64_t Lowest = std::numeric_limits<std::int32_t>::min();
    std::int64_t Highest = std::numeric_limits<std::int32_t>::max();
    TPersistent* (*GetObject)(const TPersistent& Object) = nullptr;
    // False when Value, which may be null, is of a class that the property does not take.
    bool (*SetObject)(TPersistent& Object, TPersistent* Value) = nullptr;
    // The name of the handler (host/base/NamedHandlers.h); empty for none and for one that has no name.
    std::string (*GetEvent)(const TPersistent& Object) = nullptr;
    // Handler holds a std::function of the event's type, or nothing to clear the event; false for any other.
    bool (*SetEvent)(TPersistent& Object, const std::any& Handler) = nullptr;
    // A default that is restored after the properties that a stream names, because their setters change it.
    bool DefaultLast = false;
    // An object that streams do not hold by its own properties.
    bool Opaque = false;
};

struct TClassInfo {
    std::string_view Name;
    const TClassInfo* Parent = nullptr;
    std::span<const TPropertyInfo> Properties;
};

// The value name of an enumeration, set or named integer; empty when it has none.
std::string_view ValueName(const TPropertyInfo& Property, std::int64_t Value);
// The inverse; false when no value has that name.
bool FindValue(const TPropertyInfo& Property, std::string_view Name, std::int64_t& Value);
// All classes of an object, base first.
std::vector<const TClassInfo*> ClassChain(const TClassInfo* Info);
// The property of that name in Info or its parents; null when there is none. Names are case-sensitive.
const TPropertyInfo* FindProperty(const TClassInfo* Info, std::string_view Name);

} // namespace quill
