// The widget inside an edit control. For the sources of the edit only.
#pragma once

#include "host/windows/Edit.h"

#include <QLineEdit>

namespace quill {

// One line of text: breaks and tabs become spaces, and what has no picture goes.
QString AsLine(const QString& Text);

// The platform's edit. It hands what arrives to the control first, which gives it back.
class TCustomEdit::TLine : public QLineEdit {
public:
    explicit TLine(TCustomEdit& AEdit);

    void BaseKeyPress(QKeyEvent& Event) { QLineEdit::keyPressEvent(&Event); }
    void BaseInputMethod(QInputMethodEvent& Event) { QLineEdit::inputMethodEvent(&Event); }

    // The control goes; this stays until Qt is done with it.
    void Leave(bool InUse);

protected:
    bool event(QEvent* Event) override;
    void paintEvent(QPaintEvent* Event) override;
    void keyPressEvent(QKeyEvent* Event) override;
    void keyReleaseEvent(QKeyEvent* Event) override;
    void inputMethodEvent(QInputMethodEvent* Event) override;
    void mousePressEvent(QMouseEvent* Event) override;
    void mouseReleaseEvent(QMouseEvent* Event) override;
    void mouseDoubleClickEvent(QMouseEvent* Event) override;
    void contextMenuEvent(QContextMenuEvent* Event) override;
    void dropEvent(QDropEvent* Event) override;
    void focusInEvent(QFocusEvent* Event) override;
    void focusOutEvent(QFocusEvent* Event) override;

private:
    TCustomEdit* Edit;
};

} // namespace quill
