// UTF-8 by code points. Malformed bytes are read as U+FFFD, one for each byte that cannot start or continue.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quill {

inline constexpr char32_t ReplacementCharacter = 0xFFFD;

// Decodes the code point at Pos (which must be below Text.size()) and moves Pos behind it.
char32_t DecodeUtf8(std::string_view Text, std::size_t& Pos);
void AppendUtf8(std::string& Out, char32_t CodePoint);
int Utf8Length(std::string_view Text);
// Byte offset of code point Index (the size of Text when it has fewer).
std::size_t Utf8Offset(std::string_view Text, int Index);
std::u32string Utf8ToUtf32(std::string_view Text);
std::string Utf32ToUtf8(std::u32string_view Text);
bool IsValidUtf8(std::string_view Text);

} // namespace quill
