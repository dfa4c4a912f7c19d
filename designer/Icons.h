// The pictures of the controls on the palette.
#pragma once

#include <QIcon>

namespace quill::designer {

// Drawn for every size that a palette asks for.
QIcon TreeIcon();
QIcon LabelIcon();

} // namespace quill::designer
