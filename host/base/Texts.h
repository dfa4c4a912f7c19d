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
inline constexpr std::string_view SSaveError = "Cannot save file \"%s\": %s";
inline constexpr std::string_view SContentKept = "%s. What was to be saved is in \"%s\"";
inline constexpr std::string_view SReadError = "Stream read error: %s";
inline constexpr std::string_view SWriteError = "Stream write error: %s";
inline constexpr std::string_view SSeekError = "Stream seek error: %s";
inline constexpr std::string_view SSizeError = "Cannot change the size of the stream: %s";
inline constexpr std::string_view SUnexpectedEnd = "%s bytes were asked for, %s were there";
inline constexpr std::string_view SShortWrite = "%s bytes were to be written, %s were taken";
inline constexpr std::string_view SNotSupported = "not supported by %s";
inline constexpr std::string_view SOwnerLoop = "A component cannot own itself or one of its owners";
inline constexpr std::string_view SIndexOutOfRange = "Grid index out of range (%s)";
inline constexpr std::string_view SFixedColTooBig = "Fixed column count must be less than column count (%s)";
inline constexpr std::string_view SFixedRowTooBig = "Fixed row count must be less than row count (%s)";
inline constexpr std::string_view STooManyDeleted = "Too many rows or columns deleted (%s)";
inline constexpr std::string_view SGridTooLarge = "Grid too large for operation (%s)";

// The longest value in a message, in characters.
inline constexpr int MaxMessageValue = 60;

// Replaces each "%s" of Pattern by the next of Values; surplus places stay, surplus values are dropped.
// Values are made fit to be read: malformed UTF-8 and NUL become U+FFFD, and a value above MaxMessageValue
// characters keeps its beginning and its end with an ellipsis between them.
std::string FormatText(std::string_view Pattern, std::initializer_list<std::string_view> Values);
// The same without shortening, for values that are useless in part, such as file names.
std::string FormatTextInFull(std::string_view Pattern, std::initializer_list<std::string_view> Values);

} // namespace quill
