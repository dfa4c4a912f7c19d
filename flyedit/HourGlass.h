// The cursor of work that takes its time.
#pragma once

#include <QGuiApplication>

namespace quill {

class THourGlass {
public:
    THourGlass() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~THourGlass() { QGuiApplication::restoreOverrideCursor(); }
    THourGlass(const THourGlass&) = delete;
    THourGlass& operator=(const THourGlass&) = delete;
};

} // namespace quill
