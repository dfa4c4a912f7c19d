// The toolkit's message texts, all in one place. "%s" stands for the offending value; FormatText fills it in.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace quill {

inline constexpr std::string_view sInvalidIndex = "Invalid index";
inline constexpr std::string_view sInvalidLevelEx = "Invalid level (%s) for item \"%s\"";
inline constexpr std::string_view SInvalidInteger = "'%s' is not a valid integer value";
inline constexpr std::string_view SListIndexError = "List index out of bounds (%s)";
inline constexpr std::string_view SAssignError = "Cannot assign a %s to a %s";
inline constexpr std::string_view SFCreateError = "Cannot create file \"%s\": %s";
inline constexpr std::string_view SFOpenError = "Cannot open file \"%s\": %s";
inline constexpr std::string_view SReadError = "Stream read error: %s";
inline constexpr std::string_view SWriteError = "Stream write error: %s";
inline constexpr std::string_view SIndexOutOfRange = "Grid index out of range (%s)";
inline constexpr std::string_view SFixedColTooBig = "Fixed column count must be less than column count (%s)";
inline constexpr std::string_view SFixedRowTooBig = "Fixed row count must be less than row count (%s)";
inline constexpr std::string_view STooManyDeleted = "Too many rows or columns deleted (%s)";
inline constexpr std::string_view SGridTooLarge = "Grid too large for operation (%s)";

// Replaces each "%s" of Pattern by the next of Values; surplus places stay, surplus values are dropped.
std::string FormatText(std::string_view Pattern, std::initializer_list<std::string_view> Values);

} // namespace quill
