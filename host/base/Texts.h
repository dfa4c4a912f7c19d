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
inline constexpr std::string_view SFormLine = "Form, line %s: %s";
inline constexpr std::string_view SFormPlace = "Form, line %s, %s: %s";
inline constexpr std::string_view SFormNoForm = "this is no form";
inline constexpr std::string_view SFormVersion =
    "the form was saved in version %s of the format; only version 1 is known";
inline constexpr std::string_view SFormUnexpected = "%s is expected, but %s was found";
inline constexpr std::string_view SFormOpenString = "the text does not end on its line";
inline constexpr std::string_view SFormEscape = "\"%s\" is no escape sequence";
inline constexpr std::string_view SFormOpenBinary = "the binary data do not end";
inline constexpr std::string_view SFormBase64 = "the binary data are damaged";
inline constexpr std::string_view SFormTooDeep = "components are nested more than %s levels deep";
inline constexpr std::string_view SFormTooMany = "more than %s components";
inline constexpr std::string_view SFormBehindEnd = "there is more behind the end of the form";
inline constexpr std::string_view SFormUnknownClass = "the class \"%s\" is not registered";
inline constexpr std::string_view SFormOtherClass = "a %s cannot be read into a %s";
inline constexpr std::string_view SFormUnknownProperty = "a %s has no such property";
inline constexpr std::string_view SFormReadOnly = "the property cannot be set";
inline constexpr std::string_view SFormTwice = "the property was set before, on line %s";
inline constexpr std::string_view SFormNameTaken = "there is another component \"%s\" already";
inline constexpr std::string_view SFormBadName = "\"%s\" cannot be a component's name in a form";
inline constexpr std::string_view SFormNoValue = "\"%s\" is no value of this property";
inline constexpr std::string_view SFormOutOfRange = "%s is outside %s .. %s";
inline constexpr std::string_view SFormNoComponent = "there is no component \"%s\"";
inline constexpr std::string_view SFormWrongComponent = "\"%s\" is a %s, which does not fit here";
inline constexpr std::string_view SFormNoHandler = "there is no handler \"%s\" for this event";
inline constexpr std::string_view SFormListEnd = "the list has more values than are wanted";
inline constexpr std::string_view SFormGone = "the component was destroyed while it was read";

// The longest value in a message, in characters.
inline constexpr int MaxMessageValue = 60;

// Replaces each "%s" of Pattern by the next of Values; surplus places stay, surplus values are dropped.
// Values are made fit to be read: malformed UTF-8 and NUL become U+FFFD, and a value above MaxMessageValue
// characters keeps its beginning and its end with an ellipsis between them.
std::string FormatText(std::string_view Pattern, std::initializer_list<std::string_view> Values);
// The same without shortening, for values that are useless in part, such as file names.
std::string FormatTextInFull(std::string_view Pattern, std::initializer_list<std::string_view> Values);

} // namespace quill
