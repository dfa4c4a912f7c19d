// Numbers and their decimal texts.
#pragma once

#include <string>
#include <string_view>

namespace quill {

// Leading spaces, an optional sign, then decimal digits, or "$" or "0x" and hexadecimal digits; nothing else may
// follow. Anything else, or a value outside 32 bits, raises EConvertError with the text in it.
int StrToInt(std::string_view S);
int StrToIntDef(std::string_view S, int Default);
// Reads plain decimal digits with an optional minus, the form that our own files use; false on anything else.
bool TryDecimal(std::string_view S, int& Value);
std::string IntToStr(long long Value);
void AppendInt(std::string& Out, int Value);

} // namespace quill
