// Clipboard formats: the numbers that data objects speak of, and the types of the desktop that they stand for.
#pragma once

#include "host/transfer/Com.h"

#include <string>
#include <string_view>

namespace quill {

inline constexpr std::uint16_t CF_TEXT = 1;
inline constexpr std::uint16_t CF_BITMAP = 2;
inline constexpr std::uint16_t CF_METAFILEPICT = 3;
inline constexpr std::uint16_t CF_ENHMETAFILE = 14;
inline constexpr std::uint16_t CF_HDROP = 15;

// The number of a named format: 0xC000 and above, the same for the same name (case does not count, as for the
// platform) until the program ends; 0 for an empty name or when all numbers are taken.
// A name with a slash ("text/html") is the desktop's type of that name. Any other name travels between programs as
// the parameter of a type of its own, so that no name can be mistaken for another type.
std::uint16_t RegisterClipboardFormatA(std::string_view Name);
// Empty for a number that no name was registered for.
std::string GetClipboardFormatName(std::uint16_t Format);

// The desktop's type for a registered format, empty for others; the number for a type.
std::string MimeTypeOfFormat(std::uint16_t Format);
std::uint16_t FormatOfMimeType(std::string_view MimeType);

} // namespace quill
