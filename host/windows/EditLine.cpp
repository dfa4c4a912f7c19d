#include "host/windows/EditLine.h"

#include "host/windows/FlagScope.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <qdrawutil.h>
#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QValidator>

#include <climits>

namespace quill {

namespace {

// Pixels between the edge and the text, besides the two that the platform's edit has itself: as much as a cell has.
constexpr int TextMargin = 2;

} // namespace

QString AsLine(const QString& Text) {
    QString Result;
    Result.reserve(Text.size());
    for (qsizetype i = 0; i < Text.size(); ++i) {
        const char16_t Unit = Text.at(i).unicode();
        if (Unit == u'\r' && i + 1 < Text.size() && Text.at(i + 1) == u'\n') continue;
        if (Unit == u'\n' || Unit == u'\r' || Unit == u'\t' || Unit == u'\v' || Unit == u'\f' ||
            Unit == 0x85 || Unit == 0x2028 || Unit == 0x2029) {
            Result += u' ';
        } else if (Unit >= 32 && Unit != 127) {
            Result += Text.at(i);
        }
    }
    return Result;
}

// Lets no change through that was not allowed, whichever way it comes. Qt takes back what is refused here only if the
// text was accepted before, and does not ask for a change that is redone.
class TCustomEdit::TGate : public QValidator {
public:
    TGate(TCustomEdit& AEdit, QObject* Parent) : QValidator(Parent), Edit(AEdit) {}
    State validate(QString&, int&) const override { return Edit.FModifying ? Acceptable : Invalid; }

private:
    TCustomEdit& Edit;
};

TCustomEdit::TLine::TLine(TCustomEdit& AEdit) : QLineEdit(AEdit.viewport()), Edit(&AEdit) {
    setFrame(false);
    setMaxLength(INT_MAX);
    setTextMargins(TextMargin, 0, TextMargin, 0);
    setValidator(new TGate(AEdit, this));
}

void TCustomEdit::TLine::Leave(bool InUse) {
    Edit = nullptr;
    setValidator(nullptr);
    if (!InUse) {
        delete this;
        return;
    }
    hide();
    setParent(nullptr);
    deleteLater();
}

bool TCustomEdit::TLine::event(QEvent* Event) {
    if (!Edit) return QLineEdit::event(Event);
    const TValueScope Using(Edit, Edit->FUsingLine, Edit->FUsingLine + 1);
    return QLineEdit::event(Event);
}

void TCustomEdit::TLine::paintEvent(QPaintEvent* Event) {
    QLineEdit::paintEvent(Event);
    if (!Edit || !Edit->FOutlined) return;
    QPainter Painter(this);
    qDrawPlainRect(&Painter, rect(), palette().color(QPalette::Highlight), 1);
}

void TCustomEdit::TLine::keyPressEvent(QKeyEvent* Event) {
    if (Edit) Edit->keyPressEvent(Event);
    // It is nobody else's: the control's parent would take it for a key of its own.
    Event->accept();
}

void TCustomEdit::TLine::keyReleaseEvent(QKeyEvent* Event) {
    if (Edit) Edit->keyReleaseEvent(Event);
    Event->accept();
}

void TCustomEdit::TLine::inputMethodEvent(QInputMethodEvent* Event) {
    if (Edit) Edit->inputMethodEvent(Event);
    Event->accept();
}

void TCustomEdit::TLine::mousePressEvent(QMouseEvent* Event) {
    if (Edit && Edit->DeliverMessages()) QLineEdit::mousePressEvent(Event);
}

void TCustomEdit::TLine::mouseReleaseEvent(QMouseEvent* Event) {
    if (Event->button() != Qt::MiddleButton || !QGuiApplication::clipboard()->supportsSelection()) {
        QLineEdit::mouseReleaseEvent(Event);
    } else if (Edit) {
        setCursorPosition(cursorPositionAt(Event->position().toPoint()));
        Edit->InsertPasted(QGuiApplication::clipboard()->text(QClipboard::Selection));
    }
}

void TCustomEdit::TLine::mouseDoubleClickEvent(QMouseEvent* Event) {
    QLineEdit::mouseDoubleClickEvent(Event);
    if (Edit) Edit->DblClick();
}

void TCustomEdit::TLine::contextMenuEvent(QContextMenuEvent* Event) {
    if (Edit) Edit->ShowMenu(Event->globalPos());
}

void TCustomEdit::TLine::dropEvent(QDropEvent* Event) {
    if (!Edit || !Event->mimeData()->hasText()) return;
    Edit->Change([&](TLine&) {
        QMimeData Cleaned;
        Cleaned.setText(Edit->CutToLimit(AsLine(Event->mimeData()->text())));
        QDropEvent Copy(Event->position(), Event->possibleActions(), &Cleaned, Event->buttons(),
                        Event->modifiers());
        Copy.setDropAction(Event->dropAction());
        QLineEdit::dropEvent(&Copy);
        Event->setDropAction(Copy.dropAction());
        Event->setAccepted(Copy.isAccepted());
    });
}

void TCustomEdit::TLine::focusInEvent(QFocusEvent* Event) {
    QLineEdit::focusInEvent(Event);
    if (Edit && Event->reason() != Qt::PopupFocusReason) Edit->Perform(WM_SETFOCUS, 0, 0);
}

void TCustomEdit::TLine::focusOutEvent(QFocusEvent* Event) {
    QLineEdit::focusOutEvent(Event);
    if (Edit && Event->reason() != Qt::PopupFocusReason) Edit->Perform(WM_KILLFOCUS, 0, 0);
}

} // namespace quill
