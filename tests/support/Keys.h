// The keyboard of the user, for tests with shown windows.
#pragma once

#include <QKeySequence>
#include <QPointer>
#include <QTest>
#include <QWidget>
#include <QWindow>

namespace quill::testing {

// "Down 'abc' Ctrl+Z": keys by their names and typed text, to the window and so to the widget with the focus.
inline void PressKeys(const QWidget& Widget, const QString& Script) {
    const QPointer<QWindow> Window = Widget.windowHandle();
    for (const QString& Word : Script.split(' ')) {
        if (Word.startsWith('\'')) {
            for (int I = 1; Window && I < Word.size() - 1; ++I) QTest::keyClick(Window, Word[I].toLatin1());
        } else if (Window) {
            const QKeyCombination Key = QKeySequence(Word)[0];
            QTest::keyClick(Window, Key.key(), Key.keyboardModifiers());
        }
    }
}

} // namespace quill::testing
