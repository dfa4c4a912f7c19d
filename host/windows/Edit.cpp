#include "host/windows/Edit.h"

#include "host/base/Utf8.h"
#include "host/windows/Application.h"
#include "host/windows/FlagScope.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <qdrawutil.h>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QValidator>

#include <algorithm>
#include <climits>

namespace quill {

namespace {

constexpr std::intptr_t DLGC_WANTARROWS = 0x1;
constexpr std::intptr_t DLGC_WANTCHARS = 0x80;

// Pixels between the edge and the text, besides the two that the platform's edit has itself: as much as a cell has.
constexpr int TextMargin = 2;

// What the keyboard sends for commands.
enum TControlChar : char32_t {
    ccSelectAll = 1,
    ccCopy = 3,
    ccBackspace = 8,
    ccPaste = 22,
    ccCut = 24,
    ccUndo = 26
};

bool IsControlChar(char32_t Char) { return Char < 32 || Char == 127; }

// One line of text: breaks and tabs become spaces, and what has no picture goes.
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

int CharCount(QStringView Text) {
    int Count = 0;
    for (const QChar Unit : Text) Count += Unit.isLowSurrogate() ? 0 : 1;
    return Count;
}

} // namespace

// Lets no change through that was not allowed, whichever way it comes.
class TCustomEdit::TGate : public QValidator {
public:
    TGate(TCustomEdit& AEdit, QObject* Parent) : QValidator(Parent), Edit(AEdit) {}
    State validate(QString&, int&) const override { return Edit.FModifying ? Acceptable : Invalid; }

private:
    TCustomEdit& Edit;
};

// The platform's edit. It hands what arrives to the control first, which gives it back.
class TCustomEdit::TLine : public QLineEdit {
public:
    explicit TLine(TCustomEdit& AEdit) : QLineEdit(AEdit.viewport()), Edit(&AEdit) {
        setFrame(false);
        setMaxLength(INT_MAX);
        setTextMargins(TextMargin, 0, TextMargin, 0);
        setValidator(new TGate(AEdit, this));
    }

    void BaseKeyPress(QKeyEvent& Event) { QLineEdit::keyPressEvent(&Event); }
    void BaseInputMethod(QInputMethodEvent& Event) { QLineEdit::inputMethodEvent(&Event); }

    // The control goes; this stays until Qt is done with it.
    void Leave(bool InUse) {
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

protected:
    void paintEvent(QPaintEvent* Event) override {
        QLineEdit::paintEvent(Event);
        if (!Edit || !Edit->FOutlined) return;
        QPainter Painter(this);
        qDrawPlainRect(&Painter, rect(), palette().color(QPalette::Highlight), 1);
    }
    bool event(QEvent* Event) override {
        if (!Edit) return QLineEdit::event(Event);
        const TControlGuard Guard(Edit);
        int& Dispatching = Edit->FDispatching;
        ++Dispatching;
        const bool Result = QLineEdit::event(Event);
        if (Guard) --Dispatching;
        return Result;
    }
    void keyPressEvent(QKeyEvent* Event) override {
        if (Edit) Edit->keyPressEvent(Event);
        // It is nobody else's: the control's parent would take it for a key of its own.
        Event->accept();
    }
    void keyReleaseEvent(QKeyEvent* Event) override {
        if (Edit) Edit->keyReleaseEvent(Event);
        Event->accept();
    }
    void inputMethodEvent(QInputMethodEvent* Event) override {
        if (Edit) Edit->inputMethodEvent(Event);
        Event->accept();
    }
    void mousePressEvent(QMouseEvent* Event) override {
        if (Edit && Edit->DeliverMessages()) QLineEdit::mousePressEvent(Event);
    }
    void mouseReleaseEvent(QMouseEvent* Event) override {
        if (Event->button() != Qt::MiddleButton || !QGuiApplication::clipboard()->supportsSelection()) {
            QLineEdit::mouseReleaseEvent(Event);
        } else if (Edit) {
            setCursorPosition(cursorPositionAt(Event->position().toPoint()));
            Edit->InsertPasted(QGuiApplication::clipboard()->text(QClipboard::Selection));
        }
    }
    void mouseDoubleClickEvent(QMouseEvent* Event) override {
        QLineEdit::mouseDoubleClickEvent(Event);
        if (Edit) Edit->DblClick();
    }
    void contextMenuEvent(QContextMenuEvent* Event) override {
        if (Edit) Edit->ShowMenu(Event->globalPos());
    }
    void dropEvent(QDropEvent* Event) override {
        if (!Edit || !Event->mimeData()->hasText()) return;
        const TControlGuard Guard(Edit);
        const bool Allowed = Edit->EditCanModify();
        if (!Guard || !Allowed) return;
        QMimeData Cleaned;
        Cleaned.setText(Edit->CutToLimit(AsLine(Event->mimeData()->text())));
        QDropEvent Copy(Event->position(), Event->possibleActions(), &Cleaned, Event->buttons(),
                        Event->modifiers());
        Copy.setDropAction(Event->dropAction());
        const TFlagScope Modifying(Edit, Edit->FModifying);
        QLineEdit::dropEvent(&Copy);
        Event->setDropAction(Copy.dropAction());
        Event->setAccepted(Copy.isAccepted());
    }
    void focusInEvent(QFocusEvent* Event) override {
        QLineEdit::focusInEvent(Event);
        if (Edit && Event->reason() != Qt::PopupFocusReason) Edit->Perform(WM_SETFOCUS, 0, 0);
    }
    void focusOutEvent(QFocusEvent* Event) override {
        QLineEdit::focusOutEvent(Event);
        if (Edit && Event->reason() != Qt::PopupFocusReason) Edit->Perform(WM_KILLFOCUS, 0, 0);
    }

private:
    TCustomEdit* Edit;
};

// --- life ---------------------------------------------------------------------------------------------------------

TCustomEdit::TCustomEdit(TComponent* AOwner, QWidget* AParent)
    : TCustomControl(AOwner, AParent), FLine(new TLine(*this)), FShown(std::make_unique<QString>()) {
    SetControlStyle(GetControlStyle() + TControlStyle{csOpaque});
    SetColor(clWindow);
    SetTabStop(true);
    setFocusProxy(FLine);
    setAttribute(Qt::WA_InputMethodEnabled, false); // the line's business
    FLine->setGeometry(viewport()->rect());
    ApplyColors();
    connect(FLine, &QLineEdit::textChanged, this, [this] {
        const TControlGuard Guard(this);
        FireEvent(OnChange, this);
        if (Guard) Q_EMIT changed();
    });
}

TCustomEdit::~TCustomEdit() {
    BeginDestruction();
    setFocusProxy(nullptr);
    FLine->Leave(FDispatching > 0);
}

void TCustomEdit::SetLineTabStop(bool Value) {
    FLine->setFocusPolicy(Value ? Qt::StrongFocus : Qt::ClickFocus);
}

void TCustomEdit::WMSize(TWMSize& Message) {
    TCustomControl::WMSize(Message);
    FLine->setGeometry(viewport()->rect());
}

void TCustomEdit::CMFontChanged(TMessage& Message) {
    TCustomControl::CMFontChanged(Message);
    ApplyColors();
}

void TCustomEdit::changeEvent(QEvent* Event) {
    TCustomControl::changeEvent(Event);
    if (Event->type() == QEvent::PaletteChange) ApplyColors();
}

// A change of Color comes here, too.
void TCustomEdit::Invalidate() {
    ApplyColors();
    FLine->update();
    TCustomControl::Invalidate();
}

void TCustomEdit::ApplyColors() {
    const auto ToQt = [this](TColor Color) {
        const TColor Value = ColorToRGB(Color, GetCanvas()->GetPalette());
        return QColor(static_cast<int>(Value & 0xFF), static_cast<int>(Value >> 8 & 0xFF),
                      static_cast<int>(Value >> 16 & 0xFF));
    };
    QPalette Palette = FLine->palette();
    const QColor Base = ToQt(GetColor());
    const QColor Text = ToQt(GetFont()->GetColor());
    if (Palette.color(QPalette::Base) == Base && Palette.color(QPalette::Text) == Text) return;
    Palette.setColor(QPalette::Base, Base);
    Palette.setColor(QPalette::Text, Text);
    FLine->setPalette(Palette);
}

// --- text and selection -------------------------------------------------------------------------------------------

std::string TCustomEdit::GetText() const {
    return FLine->text() == *FShown ? FOriginal : FLine->text().toStdString();
}

void TCustomEdit::SetText(const std::string& Value) {
    const QString Text = QString::fromStdString(Value);
    FLine->setText(Text);
    if (!FLine->inputMask().isEmpty() && !Text.isEmpty() && FLine->text() != Text) {
        FLine->setInputMask(QString());
        FLine->setText(Text);
    }
    *FShown = FLine->text();
    FOriginal = Value;
}

int TCustomEdit::GetTextLength() const { return CharCount(FLine->text()); }

int TCustomEdit::GetSelStart() const {
    const int Start = FLine->hasSelectedText() ? FLine->selectionStart() : FLine->cursorPosition();
    return CharCount(QStringView(FLine->text()).left(Start));
}

int TCustomEdit::GetSelLength() const { return CharCount(FLine->selectedText()); }

// The position in the line's units of the character at Position.
int TCustomEdit::ToUnits(int Position) const {
    const QString Text = FLine->text();
    int Unit = 0;
    for (; Unit < Text.size() && Position > 0; ++Unit) {
        if (!Text.at(Unit).isHighSurrogate()) --Position;
    }
    return Unit;
}

void TCustomEdit::SetSel(int Start, int End) {
    const int StartUnit = ToUnits(Start);
    const int EndUnit = ToUnits(End);
    FLine->setCursorPosition(EndUnit);
    if (StartUnit != EndUnit) FLine->setSelection(StartUnit, EndUnit - StartUnit);
}

void TCustomEdit::SelectAll() { FLine->selectAll(); }

void TCustomEdit::SetMaxLength(int Value) { FMaxLength = std::max(Value, 0); }

void TCustomEdit::SetEditMask(const std::string& Value) {
    FLine->setInputMask(QString::fromStdString(Value));
}

void TCustomEdit::SetAlignment(TAlignment Value) {
    FAlignment = Value;
    const Qt::Alignment Horizontal = Value == taRightJustify ? Qt::AlignRight
                                     : Value == taCenter     ? Qt::AlignHCenter
                                                             : Qt::AlignLeft;
    FLine->setAlignment(Horizontal | Qt::AlignAbsolute | Qt::AlignVCenter);
}

void TCustomEdit::SetOutlined(bool Value) {
    if (Value == FOutlined) return;
    FOutlined = Value;
    FLine->update();
}

// --- changes ------------------------------------------------------------------------------------------------------

bool TCustomEdit::CanUndo() const { return FLine->isUndoAvailable(); }

// What the limit leaves of a text that is to replace the selection. The user hears when something was cut.
QString TCustomEdit::CutToLimit(const QString& Text) {
    if (FMaxLength == 0) return Text;
    int Room = std::max(0, FMaxLength - GetTextLength() + GetSelLength());
    qsizetype Units = 0;
    for (; Units < Text.size() && (Room > 0 || Text.at(Units).isLowSurrogate()); ++Units) {
        if (!Text.at(Units).isHighSurrogate()) --Room;
    }
    // A pair is kept or dropped as a whole.
    if (Units > 0 && Units < Text.size() && Text.at(Units - 1).isHighSurrogate()) --Units;
    if (Units < Text.size()) MessageBeep(0);
    return Text.left(Units);
}

void TCustomEdit::Insert(const QString& Text) {
    const TControlGuard Guard(this);
    const bool Allowed = EditCanModify();
    if (!Guard || !Allowed) return;
    const QString Fitting = CutToLimit(Text);
    if (Fitting.isEmpty()) return;
    const TFlagScope Modifying(this, FModifying);
    FLine->insert(Fitting);
}

void TCustomEdit::InsertPasted(const QString& Text) { Insert(AsLine(Text)); }

void TCustomEdit::Undo() { Perform(WM_UNDO, 0, 0); }
void TCustomEdit::CutToClipboard() { Perform(WM_CUT, 0, 0); }
void TCustomEdit::CopyToClipboard() { Perform(WM_COPY, 0, 0); }
void TCustomEdit::PasteFromClipboard() { Perform(WM_PASTE, 0, 0); }
void TCustomEdit::ClearSelection() { Perform(WM_CLEAR, 0, 0); }

void TCustomEdit::WMCopy(TMessage&) { FLine->copy(); }

void TCustomEdit::WMPaste(TMessage&) { InsertPasted(QGuiApplication::clipboard()->text()); }

void TCustomEdit::WMCut(TMessage&) {
    const TControlGuard Guard(this);
    const bool Allowed = EditCanModify();
    if (!Guard || !Allowed) return;
    const TFlagScope Modifying(this, FModifying);
    FLine->cut();
}

void TCustomEdit::WMClear(TMessage&) {
    const TControlGuard Guard(this);
    const bool Allowed = EditCanModify();
    if (!Guard || !Allowed || !FLine->hasSelectedText()) return;
    const TFlagScope Modifying(this, FModifying);
    FLine->del();
}

void TCustomEdit::WMUndo(TMessage&) {
    const TControlGuard Guard(this);
    const bool Allowed = EditCanModify();
    if (!Guard || !Allowed) return;
    const TFlagScope Modifying(this, FModifying);
    FLine->undo();
}

void TCustomEdit::WMGetDlgCode(TMessage& Message) { Message.Result |= DLGC_WANTARROWS | DLGC_WANTCHARS; }

void TCustomEdit::WndProc(TMessage& Message) {
    switch (Message.Msg) {
    case WM_CLEAR:
        WMClear(Message);
        break;
    case WM_UNDO:
        WMUndo(Message);
        break;
    case WM_GETDLGCODE:
        WMGetDlgCode(Message);
        break;
    case EM_GETSEL:
        Message.Result = MakePointParam(GetSelStart(), GetSelStart() + GetSelLength());
        break;
    case EM_SETSEL:
        SetSel(static_cast<int>(Message.WParam), static_cast<int>(Message.LParam));
        break;
    default:
        TCustomControl::WndProc(Message);
    }
}

// --- input --------------------------------------------------------------------------------------------------------

// First the control's hooks; what they leave is the platform's.
void TCustomEdit::keyPressEvent(QKeyEvent* Event) {
    const TControlGuard Guard(this);
    // Not every platform gives the control character of a letter with Ctrl.
    QString Text = Event->text();
    if (Text.isEmpty() && Event->modifiers() == Qt::ControlModifier && Event->key() >= Qt::Key_A &&
        Event->key() <= Qt::Key_Z)
        Text = QChar(Event->key() - Qt::Key_A + 1);
    QKeyEvent WithText(Event->type(), Event->key(), Event->modifiers(), Text, Event->isAutoRepeat());
    FKeyEvent = &WithText;
    TCustomControl::keyPressEvent(&WithText);
    if (!Guard) return;
    FKeyEvent = nullptr;
    if (!WithText.isAccepted()) ForwardKey(WithText);
}

void TCustomEdit::WMChar(TWMKey& Message) {
    const TControlGuard Guard(this);
    TCustomControl::WMChar(Message);
    if (!Guard) return;
    const char32_t Char = std::exchange(Message.CharCode, 0);
    Message.Result = 1;
    if (Char == 0) return;
    if (!IsControlChar(Char)) {
        Insert(QString::fromUcs4(&Char, 1));
    } else if (FKeyEvent) {
        ForwardKey(*FKeyEvent);
    } else {
        TypeControl(Char);
    }
}

// A control character that did not come from a key.
void TCustomEdit::TypeControl(char32_t Char) {
    switch (Char) {
    case ccSelectAll:
        SelectAll();
        break;
    case ccCopy:
        CopyToClipboard();
        break;
    case ccPaste:
        PasteFromClipboard();
        break;
    case ccCut:
        CutToClipboard();
        break;
    case ccUndo:
        Undo();
        break;
    case ccBackspace: {
        const TControlGuard Guard(this);
        const bool Allowed = EditCanModify();
        if (!Guard || !Allowed) return;
        const TFlagScope Modifying(this, FModifying);
        FLine->backspace();
        break;
    }
    default:
        break;
    }
}

void TCustomEdit::ForwardKey(QKeyEvent& Event) {
    if (Event.matches(QKeySequence::Cut)) return CutToClipboard();
    if (Event.matches(QKeySequence::Copy)) return CopyToClipboard();
    if (Event.matches(QKeySequence::Paste)) return PasteFromClipboard();
    if (Event.matches(QKeySequence::Undo)) return Undo();
    const TControlGuard Guard(this);
    const bool Allowed = EditCanModify();
    if (!Guard) return;
    const bool Old = std::exchange(FModifying, Allowed);
    FLine->BaseKeyPress(Event);
    if (Guard) FModifying = Old;
}

// Committed text goes through the hooks character by character; what is still being composed is the platform's.
void TCustomEdit::inputMethodEvent(QInputMethodEvent* Event) {
    const TControlGuard Guard(this);
    const bool Allowed = EditCanModify();
    if (!Guard) return;
    if (!Allowed) {
        // The method may have been told no: what it composes is not shown.
        QInputMethodEvent Nothing;
        FLine->BaseInputMethod(Nothing);
        return;
    }
    if (!Event->commitString().isEmpty() || Event->replacementLength() > 0) {
        QInputMethodEvent Composed; // ends the old composition, with what the text replaces
        Composed.setCommitString(QString(), Event->replacementStart(), Event->replacementLength());
        const TFlagScope Modifying(this, FModifying);
        FLine->BaseInputMethod(Composed);
    }
    if (!Guard) return;
    TCustomControl::inputMethodEvent(Event);
    if (!Guard) return;
    QInputMethodEvent Composing(Event->preeditString(), Event->attributes());
    const TFlagScope Modifying(this, FModifying);
    FLine->BaseInputMethod(Composing);
}

// The commands under the names that the platform's own edit has, so that its translations serve.
void TCustomEdit::ShowMenu(const QPoint& ScreenPos) {
    const TControlGuard Guard(this);
    const bool Allowed = EditCanModify();
    if (!Guard || !DeliverMessages()) return;
    struct TCommand {
        const char* Text;
        const char* Icon;
        QKeySequence::StandardKey Key;
        unsigned Msg;
        bool Enabled;
    };
    const bool Selected = FLine->hasSelectedText();
    const bool Any = !FLine->text().isEmpty();
    const bool CanPaste = !QGuiApplication::clipboard()->text().isEmpty();
    const TCommand Commands[] = {
        {"&Undo", "edit-undo", QKeySequence::Undo, WM_UNDO, Allowed && FLine->isUndoAvailable()},
        {nullptr, nullptr, {}, 0, false},
        {"Cu&t", "edit-cut", QKeySequence::Cut, WM_CUT, Allowed && Selected},
        {"&Copy", "edit-copy", QKeySequence::Copy, WM_COPY, Selected},
        {"&Paste", "edit-paste", QKeySequence::Paste, WM_PASTE, Allowed && CanPaste},
        {"Delete", "edit-delete", QKeySequence::UnknownKey, WM_CLEAR, Allowed && Selected},
        {nullptr, nullptr, {}, 0, false},
        {"Select All", "edit-select-all", QKeySequence::SelectAll, EM_SETSEL, Any},
    };
    auto* Menu = new QMenu(FLine);
    Menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const TCommand& Command : Commands) {
        if (!Command.Text) {
            Menu->addSeparator();
            continue;
        }
        QAction* Action = Menu->addAction(QIcon::fromTheme(QLatin1String(Command.Icon)),
                                          QCoreApplication::translate("QLineEdit", Command.Text));
        Action->setEnabled(Command.Enabled);
        Action->setShortcut(Command.Key);
        Action->setShortcutContext(Qt::WidgetShortcut); // shown, not another way in
        // Later, because a handler may destroy us and with us the menu that is calling.
        connect(
            Action, &QAction::triggered, this,
            [this, Msg = Command.Msg] { Perform(Msg, 0, Msg == EM_SETSEL ? INT_MAX : 0); },
            Qt::QueuedConnection);
    }
    Menu->popup(ScreenPos);
}

} // namespace quill
