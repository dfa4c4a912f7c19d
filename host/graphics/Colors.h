// Colours as texts: "clRed", "clBtnFace" or "$00BBGGRR".
#pragma once

#include "host/base/Types.h"

#include <string>
#include <string_view>

namespace quill {

// The name of a standard or system colour, else "$" and eight hexadecimal digits in blue-green-red order.
std::string ColorToString(TColor Color);
// The inverse; names are found in any case, anything else is read as an integer ("$" for hexadecimal). Raises
// EConvertError.
TColor StringToColor(std::string_view S);

} // namespace quill
