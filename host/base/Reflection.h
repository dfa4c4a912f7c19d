// Published properties as data: one static table per class, read by form streams, designers and tests.
#pragma once

#include "host/base/Objects.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quill {

enum class TPropertyKind { Integer, Boolean, Enumeration, Set, Color, String, Object, Event };

// One property. Ordinal kinds use the ordinal accessors, strings the string ones; a missing setter means read-only.
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
};

struct TClassInfo {
    std::string_view Name;
    const TClassInfo* Parent = nullptr;
    std::span<const TPropertyInfo> Properties;
};

// The property of that name in Info or its parents; null when there is none. Names are case-sensitive.
const TPropertyInfo* FindProperty(const TClassInfo* Info, std::string_view Name);

} // namespace quill
