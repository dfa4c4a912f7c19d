#include "host/windows/Application.h"
#include "host/windows/EditLine.h"
#include "host/windows/FlagScope.h"
#include "host/windows/Keys.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>

namespace quill {

namespace {

constexpr std::intptr_t DLGC_WANTARROWS = 0x1;
constexpr std::intptr_t DLGC_WANTCHARS = 0x80;

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

int CharCount(QStringView Text) {
    int Count = 0;
    for (const QChar Unit : Text) Count += Unit.isLowSurrogate() ? 0 : 1;
    return Count;
}

// Whether Text has all characters of Part in their order, whatever else it has. Masks may change their case.
bool HasAllOf(const QString& Text, const QString& Part) {
    qsizetype Pos = 0;
    for (const QChar Unit : Part) {
        Pos = Text.indexOf(Unit, Pos, Qt::CaseInsensitive) + 1;
        if (Pos == 0) return false;
    }
    return true;
}

// The platform's key of a virtual key that moves the caret or edits without being a character; 0 for others.
int EditingKey(std::uint16_t Key, TShiftState Shift) {
    switch (Key) {
    case VK_LEFT:
        return Qt::Key_Left;
    case VK_RIGHT:
        return Qt::Key_Right;
    case VK_HOME:
        return Qt::Key_Home;
    case VK_END:
        return Qt::Key_End;
    case VK_DELETE:
        return Qt::Key_Delete;
    case VK_INSERT:
        return Shift.Contains(ssShift) || Shift.Contains(ssCtrl) ? Qt::Key_Insert : 0;
    default:
        return 0;
    }
}

Qt::KeyboardModifiers ToQt(TShiftState Shift) {
    Qt::KeyboardModifiers Result = Qt::NoModifier;
    if (Shift.Contains(ssShift)) Result |= Qt::ShiftModifier;
    if (Shift.Contains(ssCtrl)) Result |= Qt::ControlModifier;
    if (Shift.Contains(ssAlt)) Result |= Qt::AltModifier;
    return Result;
}

// Whether the key may change the text, other than by a character that comes with it or a command.
bool MayChange(const QKeyEvent& Event) {
    if (!Event.text().isEmpty() || Event.key() == Qt::Key_Delete || Event.key() == Qt::Key_Backspace)
        return true;
    return Event.modifiers().testFlag(Qt::ControlModifier) && Event.key() >= Qt::Key_A &&
           Event.key() <= Qt::Key_Z && !Event.matches(QKeySequence::SelectAll);
}

} // namespace

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
    FLine->Leave(FUsingLine > 0);
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
    const TControlGuard Guard(this);
    const QString Text = QString::fromStdString(Value);
    FComposing = false;
    const auto Show = [&] {
        // A text that was not accepted would open the gate for all that follow.
        const TFlagScope Modifying(this, FModifying);
        const TValueScope Using(this, FUsingLine, FUsingLine + 1);
        FLine->setText(Text);
    };
    Show();
    if (!Guard) return;
    if (!FLine->inputMask().isEmpty() && !HasAllOf(FLine->text(), Text)) {
        SetEditMask({});
        if (Guard) Show();
        if (!Guard) return;
    }
    *FShown = FLine->text();
    FOriginal = Value;
}

// With a mask the line's text leaves out what the user has not filled in, and positions count it.
int TCustomEdit::GetTextLength() const { return CharCount(FLine->displayText()); }

int TCustomEdit::GetSelStart() const {
    const int Start = FLine->hasSelectedText() ? FLine->selectionStart() : FLine->cursorPosition();
    return CharCount(QStringView(FLine->displayText()).left(Start));
}

int TCustomEdit::GetSelLength() const { return CharCount(FLine->selectedText()); }

// The position in the line's units of the character at Position.
int TCustomEdit::ToUnits(int Position) const {
    const QString Text = FLine->displayText();
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
    const TFlagScope Modifying(this, FModifying);
    const TValueScope Using(this, FUsingLine, FUsingLine + 1);
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

// All that the user changes passes here, except for keys and composed text.
void TCustomEdit::Change(const std::function<void(TLine&)>& Apply) {
    const TControlGuard Guard(this);
    const bool Allowed = EditCanModify();
    if (!Guard || !Allowed) return;
    ChangeComing();
    if (!Guard) return;
    const TFlagScope Modifying(this, FModifying);
    const TValueScope Using(this, FUsingLine, FUsingLine + 1);
    Apply(*FLine);
}

// What the limit leaves of a text that is to replace the selection. The user hears when something was cut.
QString TCustomEdit::CutToLimit(const QString& Text) {
    // What a mask leaves room for is limit enough.
    if (FMaxLength == 0 || !FLine->inputMask().isEmpty()) return Text;
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
    Change([&](TLine& Line) {
        const QString Fitting = CutToLimit(Text);
        if (!Fitting.isEmpty()) Line.insert(Fitting);
    });
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
    Change([](TLine& Line) { Line.cut(); });
}

void TCustomEdit::WMClear(TMessage&) {
    Change([](TLine& Line) {
        if (Line.hasSelectedText()) Line.del();
    });
}

void TCustomEdit::WMUndo(TMessage&) {
    Change([](TLine& Line) { Line.undo(); });
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
    case EM_GETSEL: {
        const int Start = GetSelStart();
        const int End = Start + GetSelLength();
        if (Message.WParam != 0) *reinterpret_cast<unsigned*>(Message.WParam) = static_cast<unsigned>(Start);
        if (Message.LParam != 0) *reinterpret_cast<unsigned*>(Message.LParam) = static_cast<unsigned>(End);
        Message.Result = MakePointParam(Start, End);
        break;
    }
    case EM_SETSEL: {
        const int Start = static_cast<int>(Message.WParam);
        const int End = static_cast<int>(Message.LParam);
        const int Caret = GetSelStart() + GetSelLength();
        if (Start < 0)
            SetSel(Caret, Caret);
        else
            SetSel(Start, End < 0 ? GetTextLength() : End);
        break;
    }
    default:
        TCustomControl::WndProc(Message);
    }
}

// --- input --------------------------------------------------------------------------------------------------------

// First the control's hooks; what they leave is the platform's.
void TCustomEdit::keyPressEvent(QKeyEvent* Event) {
    // What was posted before the key is no part of it.
    if (!DeliverMessages()) return;
    const TControlGuard Guard(this);
    // Not every platform gives the control character of a letter with Ctrl.
    QString Text = Event->text();
    if (Text.isEmpty() && Event->modifiers() == Qt::ControlModifier && Event->key() >= Qt::Key_A &&
        Event->key() <= Qt::Key_Z)
        Text = QChar(Event->key() - Qt::Key_A + 1);
    QKeyEvent WithText(Event->type(), Event->key(), Event->modifiers(), Text, Event->isAutoRepeat());
    {
        const TValueScope Handling(this, FKeyEvent, &WithText);
        TCustomControl::keyPressEvent(&WithText);
    }
    if (!Guard || WithText.isAccepted()) return;
    auto* const Dialog = qobject_cast<QDialog*>(window());
    if (Event->key() == Qt::Key_Escape && Dialog) {
        // Past the parents in between, which would take it for a key of their own.
        QCoreApplication::sendEvent(Dialog, &WithText);
        return;
    }
    ForwardKey(WithText);
}

// A key that was made up, or that a handler exchanged for another one, edits as well.
void TCustomEdit::WMKeyDown(TWMKey& Message) {
    const TControlGuard Guard(this);
    TCustomControl::WMKeyDown(Message);
    if (!Guard) return;
    const auto Key = static_cast<std::uint16_t>(Message.CharCode);
    const int QtKey = EditingKey(Key, Message.Shift);
    // The key that is being pressed comes back by itself.
    if (QtKey == 0 || (FKeyEvent && FKeyEvent->key() == QtKey)) return;
    QKeyEvent Event(QEvent::KeyPress, QtKey, ToQt(Message.Shift));
    Message.CharCode = 0;
    Message.Result = 1;
    ForwardKey(Event);
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
    } else if (FKeyEvent && FKeyEvent->text() == QString::fromUcs4(&Char, 1)) {
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
    case ccBackspace:
        Change([](TLine& Line) { Line.backspace(); });
        break;
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
    if (Allowed && MayChange(Event)) ChangeComing();
    if (!Guard) return;
    const TValueScope Modifying(this, FModifying, Allowed);
    const TValueScope Using(this, FUsingLine, FUsingLine + 1);
    if (!Allowed) FLine->setReadOnly(true);
    FLine->BaseKeyPress(Event);
    if (Guard && !Allowed) FLine->setReadOnly(false);
}

// Committed text goes through the hooks character by character; what is still being composed is the platform's.
void TCustomEdit::inputMethodEvent(QInputMethodEvent* Event) {
    const TControlGuard Guard(this);
    FComposing = false;
    const bool Allowed = EditCanModify();
    if (!Guard) return;
    const TValueScope Using(this, FUsingLine, FUsingLine + 1);
    if (!Allowed) {
        // The method may have been told no: what it composes is not shown.
        QInputMethodEvent Nothing;
        FLine->BaseInputMethod(Nothing);
        return;
    }
    if (!Event->commitString().isEmpty() || !Event->preeditString().isEmpty()) ChangeComing();
    if (!Guard) return;
    if (!Event->commitString().isEmpty() || Event->replacementLength() > 0) {
        QInputMethodEvent Composed; // ends the old composition, with what the text replaces
        Composed.setCommitString(QString(), Event->replacementStart(), Event->replacementLength());
        const TFlagScope Modifying(this, FModifying);
        FLine->BaseInputMethod(Composed);
    }
    if (!Guard) return;
    TCustomControl::inputMethodEvent(Event);
    if (!Guard) return;
    FComposing = !Event->preeditString().isEmpty();
    QInputMethodEvent Composing(Event->preeditString(), Event->attributes());
    const TFlagScope Modifying(this, FModifying);
    FLine->BaseInputMethod(Composing);
}

void TCustomEdit::CommitComposition() {
    if (FComposing && FLine->hasFocus()) QGuiApplication::inputMethod()->commit();
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
            [this, Msg = Command.Msg] { Perform(Msg, 0, Msg == EM_SETSEL ? -1 : 0); }, Qt::QueuedConnection);
    }
    Menu->popup(ScreenPos);
}

} // namespace quill
