// Line icons for tool bars and menus, drawn in the colour of the text so that they suit light and dark windows.
#pragma once

#include <QColor>
#include <QIcon>

namespace quill::examples {

enum TToolIcon {
    tiNew,
    tiOpen,
    tiSave,
    tiExpandAll,
    tiCollapseAll,
    tiRefresh,
    tiUndo,
    tiRedo,
    tiCut,
    tiCopy,
    tiPaste,
    tiDelete,
    tiAdd
};

// 16 x 16 pixels, sharp at scales up to 3.
QIcon MakeToolIcon(TToolIcon Icon, const QColor& Color);

} // namespace quill::examples
