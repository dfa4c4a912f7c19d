// Values of several kinds, as programs pass data around without knowing formats.
#pragma once

#include "host/graphics/Pictures.h"

#include <string>
#include <variant>
#include <vector>

namespace quill {

// A picture that values share; it does not change.
using TOlePicture = std::shared_ptr<const TPicture>;

// Unassigned, a number, a text, a picture, or a list of texts.
using OleVariant = std::variant<std::monostate, int, std::string, TOlePicture, std::vector<std::string>>;
using Variant = OleVariant;

// Stores a copy of Picture in Value, and the way back: an empty value empties Picture.
void GetOlePicture(const TPicture& Picture, TOlePicture& Value);
void SetOlePicture(TPicture& Picture, const TOlePicture& Value);

} // namespace quill
