// A field for a whole number.
#pragma once

#include <QLineEdit>

namespace quill {

// Takes the digits, the minus sign and the keys that edit; any other character that is typed is dropped. What is pasted
// is taken as it is.
class TNumberEdit : public QLineEdit {
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

Q_SIGNALS:
    // A key that types or erases, dropped or not.
    void keyTyped();

protected:
    void keyPressEvent(QKeyEvent* Event) override;
    void inputMethodEvent(QInputMethodEvent* Event) override;
};

} // namespace quill
