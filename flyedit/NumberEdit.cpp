#include "flyedit/NumberEdit.h"

#include <QInputMethodEvent>
#include <QKeyEvent>

#include <algorithm>

namespace quill {

namespace {

bool IsNumeric(const QString& Text) {
    return std::all_of(Text.begin(), Text.end(), [](QChar C) { return C == '-' || (C >= '0' && C <= '9'); });
}

} // namespace

void TNumberEdit::keyPressEvent(QKeyEvent* Event) {
    const QString Text = Event->text();
    // With Alt alone a key that is no accelerator would be typed all the same.
    const Qt::KeyboardModifiers Modifiers = Event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    const bool Shortcut = Modifiers == Qt::ControlModifier || Modifiers == Qt::MetaModifier;
    const bool Types = !Shortcut && !Text.isEmpty() && Text.front().isPrint();
    if (Types || Event->key() == Qt::Key_Backspace) Q_EMIT keyTyped();
    if (Types && !IsNumeric(Text)) {
        Event->accept();
    } else {
        QLineEdit::keyPressEvent(Event);
    }
}

void TNumberEdit::inputMethodEvent(QInputMethodEvent* Event) {
    if (IsNumeric(Event->commitString())) {
        QLineEdit::inputMethodEvent(Event);
    } else {
        // What is being composed ends; nothing comes of it.
        QInputMethodEvent Nothing;
        QLineEdit::inputMethodEvent(&Nothing);
    }
}

} // namespace quill
