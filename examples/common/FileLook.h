// How files are shown in a tree: their names, types, sizes and dates as texts.
#pragma once

#include "Look.h"

#include <cstdint>
#include <ctime>
#include <string>

namespace quill::examples {

struct TFileType {
    const char* Name;
    TPicture Picture;
};

// By the ending of the name.
TFileType FileTypeOf(const std::string& Name);
// Control characters as the signs that stand for them: a line break would not survive in a nodes file.
std::string ShownName(const std::string& Name);
std::string SizeText(std::int64_t Bytes);
// ISO 8601 to the minute, in local time.
std::string DateText(std::time_t Time);

} // namespace quill::examples
