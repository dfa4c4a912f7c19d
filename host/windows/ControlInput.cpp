// From Qt's events to messages: mouse, wheel, keys, focus, timers.
#include "host/windows/ControlImpl.h"
#include "host/windows/FlagScope.h"
#include "host/windows/FocusTracker.h"
#include "host/windows/Keys.h"

#include <QApplication>
#include <QDialog>
#include <qdrawutil.h>
#include <QFocusEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimerEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace quill {

namespace {

// A notch of a wheel, in eighths of a degree, and the most that one event may turn.
constexpr int WheelNotch = 120;
constexpr int MostWheelDelta = 100 * WheelNotch;

// Our own event: something waits to be done from the event loop.
QEvent::Type WakeUpEvent() {
    static const int Type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(Type);
}

std::intptr_t ShiftParam(TShiftState Shift) { return static_cast<std::intptr_t>(Shift.Bits()); }

unsigned ButtonMessage(Qt::MouseButton Button, unsigned Left, unsigned Right, unsigned Middle) {
    switch (Button) {
    case Qt::LeftButton:
        return Left;
    case Qt::RightButton:
        return Right;
    case Qt::MiddleButton:
        return Middle;
    default:
        return 0;
    }
}

// Alt with a character is a shortcut, and so is Ctrl unless it yields a control character. Both together are AltGr.
bool YieldsText(const QKeyEvent& Event) {
    const QString Text = Event.text();
    if (Text.isEmpty()) return false;
    const bool Ctrl = Event.modifiers().testFlag(Qt::ControlModifier);
    const bool Alt = Event.modifiers().testFlag(Qt::AltModifier);
    if (Event.modifiers().testFlag(Qt::MetaModifier) || (Alt && !Ctrl)) return false;
    return Alt || !Ctrl || Text.at(0).unicode() < 32 || Text.at(0).unicode() == 127;
}

QColor FrameColor(const QPalette& Palette) {
    const QColor Text = Palette.color(QPalette::WindowText);
    const QColor Window = Palette.color(QPalette::Window);
    return {(Text.red() + Window.red()) / 2, (Text.green() + Window.green()) / 2,
            (Text.blue() + Window.blue()) / 2};
}

unsigned ClipboardMessage(const QKeyEvent& Event) {
    if (Event.matches(QKeySequence::Cut)) return WM_CUT;
    if (Event.matches(QKeySequence::Copy)) return WM_COPY;
    if (Event.matches(QKeySequence::Paste)) return WM_PASTE;
    return 0;
}

QString TextOf(const QKeyEvent& Event) {
    // Platforms differ in the text of Shift+Tab.
    return Event.key() == Qt::Key_Backtab ? QStringLiteral("\t") : Event.text();
}

TShiftState ShiftOf(const QKeyEvent& Event) {
    TShiftState Result = ShiftFromQt(Event.modifiers());
    if (Event.key() == Qt::Key_Backtab) Result.Include(ssShift);
    return Result;
}

} // namespace

// --- waiting notifications ----------------------------------------------------------------------------------------

void TCustomControl::TImpl::WakeUp() {
    if (!std::exchange(WakeUpPosted, true)) QCoreApplication::postEvent(&Control, new QEvent(WakeUpEvent()));
}

void TCustomControl::TImpl::WokenUp() {
    WakeUpPosted = false;
    if (!DeliverWaiting()) return;
    if (!Control.FInvalid.isEmpty() && Control.isVisible()) Control.viewport()->update(Control.FInvalid);
}

void TCustomControl::TImpl::Wait(unsigned Msg, std::uintptr_t WParam, std::intptr_t LParam) {
    Waiting.push_back({Msg, WParam, LParam});
    WakeUp();
}

bool TCustomControl::DeliverMessages() { return FImpl->DeliverWaiting(); }

void TCustomControl::PostMessage(unsigned Msg, std::uintptr_t WParam, std::intptr_t LParam) {
    if (!FImpl->DestructionBegun) FImpl->Wait(Msg, WParam, LParam);
}

bool TCustomControl::TImpl::DeliverWaiting() {
    const TControlGuard Guard(&Control);
    while (Guard && !Waiting.empty()) {
        const TMessage Message = Waiting.front();
        Waiting.pop_front();
        if (Message.Msg == EnterNotification)
            Control.DoEnter();
        else if (Message.Msg == ResizeNotification)
            FireEvent(Control.OnResize, &Control);
        else
            Control.Perform(Message.Msg, Message.WParam, Message.LParam);
    }
    return static_cast<bool>(Guard);
}

void TCustomControl::TImpl::SaveDispatchers() {
    // Qt calls handlers from the middle of its work on the viewport or a bar, and goes on with that widget after
    // they have destroyed us. So the widget lives on, on its own, until the event loop runs again.
    if (Dispatching == 0) return;
    for (QWidget* Widget : {Control.viewport(), static_cast<QWidget*>(Bars[SB_HORZ].Widget.data()),
                            static_cast<QWidget*>(Bars[SB_VERT].Widget.data())}) {
        if (!Widget) continue;
        Widget->setParent(nullptr);
        Widget->deleteLater();
    }
}

// --- mouse --------------------------------------------------------------------------------------------------------

// The client pixel whose device pixels contain the mouse.
TPoint TCustomControl::TImpl::ClientPos(const QMouseEvent& Event) const {
    const auto Floor = [](double Value) { return static_cast<int>(std::floor(Value)); };
    const QPointF Pos = Event.position();
    if (Scale == std::floor(Scale)) return {Floor(Pos.x()), Floor(Pos.y())};
    // With a fractional scale pixels differ in device size: the last one that begins at or left of the mouse.
    const QPoint Origin = DeviceOrigin();
    const QPointF InWindow = Control.viewport()->mapTo(Control.window(), Pos);
    const auto Find = [&](double Window, int DeviceStart) {
        const int Device = Floor(Window * Scale + 0.5) - DeviceStart;
        return static_cast<int>(std::ceil((Device + 0.5) / Scale)) - 1;
    };
    return {Find(InWindow.x(), Origin.x()), Find(InWindow.y(), Origin.y())};
}

bool TCustomControl::TImpl::HandleMouse(QMouseEvent& Event) {
    unsigned Msg = 0;
    switch (Event.type()) {
    case QEvent::MouseMove:
        Msg = WM_MOUSEMOVE;
        break;
    case QEvent::MouseButtonPress:
        Msg = ButtonMessage(Event.button(), WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN);
        break;
    case QEvent::MouseButtonDblClick:
        Msg = ButtonMessage(Event.button(), WM_LBUTTONDBLCLK, WM_RBUTTONDBLCLK, WM_MBUTTONDBLCLK);
        break;
    default:
        Msg = ButtonMessage(Event.button(), WM_LBUTTONUP, WM_RBUTTONUP, WM_MBUTTONUP);
        break;
    }
    if (Msg == 0) {
        Event.ignore();
        return true;
    }
    Event.accept();
    const TControlGuard Guard(&Control);
    const TDispatch Dispatch(*this);
    if (!DeliverWaiting()) return true;
    const TPoint Pos = ClientPos(Event);
    const std::intptr_t Where = MakePointParam(Pos.X, Pos.Y);
    if (Msg == WM_MOUSEMOVE && Event.buttons() == Qt::NoButton) {
        Control.Perform(WM_SETCURSOR, 0, Where);
        if (!Guard) return true;
    }
    Control.Perform(Msg, ShiftFromQt(Event.modifiers(), Event.buttons()).Bits(), Where);
    return true;
}

void TCustomControl::TImpl::DropWheelRests() {
    WheelDelta = 0;
    HorizontalWheelDelta = 0;
    WheelPixelRest = {};
}

// What a wheel or touchpad moved, in eighths of a degree; pixels are converted so that a line's pixels make a notch.
QPoint TCustomControl::TImpl::TakeWheelDelta(const QWheelEvent& Event) {
    const QPoint Pixels = Event.pixelDelta();
    // Drivers under X11 report steps of any size as pixels, also for plain wheels.
    static const bool PixelsAreReliable = QGuiApplication::platformName() != QLatin1String("xcb");
    if (Pixels.isNull() || (!PixelsAreReliable && !Event.angleDelta().isNull())) return Event.angleDelta();
    static constexpr int Shortest = 8;
    static constexpr int Longest = 96;
    const TPoint Asked = Control.GetWheelLine();
    const auto Convert = [](int Moved, int Line, int Default, int& Rest) {
        Line = std::clamp(Line > 0 ? Line : Default, Shortest, Longest);
        if (Moved == 0) return 0;
        if ((Rest < 0) != (Moved < 0)) Rest = 0;
        const std::int64_t Units = std::int64_t{Moved} * WheelNotch + Rest;
        Rest = static_cast<int>(Units % Line);
        return static_cast<int>(std::clamp<std::int64_t>(Units / Line, -MostWheelDelta, MostWheelDelta));
    };
    const int TextLine = Control.fontMetrics().height();
    return {Convert(Pixels.x(), Asked.X, TextLine, WheelPixelRest.rx()),
            Convert(Pixels.y(), Asked.Y, TextLine, WheelPixelRest.ry())};
}

bool TCustomControl::TImpl::HandleWheel(QWheelEvent& Event) {
    const TControlGuard Guard(&Control);
    const TDispatch Dispatch(*this);
    Event.accept();
    if (!DeliverWaiting()) return true;
    if (Event.phase() == Qt::ScrollBegin) DropWheelRests();
    QPoint Delta = TakeWheelDelta(Event);
    Delta = {std::clamp(Delta.x(), -MostWheelDelta, MostWheelDelta),
             std::clamp(Delta.y(), -MostWheelDelta, MostWheelDelta)};
    const TShiftState Shift = ShiftFromQt(Event.modifiers(), Event.buttons());
    const QPoint Global = Event.globalPosition().toPoint();
    // Whoever takes the first event of a gesture gets all of it, so a control that scrolls takes it however little
    // it moves.
    const bool Scrolls = Control.GetWheelLine().Y > 0;
    bool Handled = Scrolls && Delta.isNull();
    if (Delta.y() != 0) {
        Handled = Control.Perform(WM_MOUSEWHEEL, MakeWheelParam(Delta.y(), Shift),
                                  MakePointParam(Global.x(), Global.y())) != 0 ||
                  (Scrolls && std::abs(Delta.y()) < WheelNotch);
        if (!Guard) return true;
    }
    if (Delta.x() != 0 && Bars[SB_HORZ].Shown) {
        Handled = true;
        int& Sum = HorizontalWheelDelta;
        if ((Sum < 0) != (Delta.x() < 0)) Sum = 0;
        Sum += Delta.x();
        while (std::abs(HorizontalWheelDelta) >= WheelNotch) {
            // Qt reports a turn to the right as negative.
            const bool Right = HorizontalWheelDelta < 0;
            HorizontalWheelDelta += Right ? WheelNotch : -WheelNotch;
            Control.Perform(WM_HSCROLL, Right ? SB_LINEDOWN : SB_LINEUP, 0);
            if (!Guard) return true;
        }
    }
    if (Event.phase() == Qt::ScrollEnd) DropWheelRests();
    Event.setAccepted(Handled);
    return true;
}

void TCustomControl::TImpl::CancelPress() {
    if (Control.FMouseCapture || !Control.FControlState.IsEmpty()) Control.Perform(WM_CANCELMODE, 0, 0);
}

bool TCustomControl::viewportEvent(QEvent* Event) {
    TImpl& Impl = *FImpl;
    if (Impl.DestructionBegun) return false;
    switch (Event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        return Impl.HandleMouse(static_cast<QMouseEvent&>(*Event));
    case QEvent::Wheel:
        return Impl.HandleWheel(static_cast<QWheelEvent&>(*Event));
    case QEvent::Enter:
        Impl.Wait(CM_MOUSEENTER);
        break;
    case QEvent::Leave:
        Impl.Wait(CM_MOUSELEAVE);
        break;
    case QEvent::Resize: {
        const bool Result = QAbstractScrollArea::viewportEvent(Event);
        Impl.ClientResized();
        return Result;
    }
    default:
        break;
    }
    return QAbstractScrollArea::viewportEvent(Event);
}

// --- keys ---------------------------------------------------------------------------------------------------------

bool TCustomControl::TImpl::SendKey(unsigned Msg, char32_t CharCode, TShiftState Shift, bool& Handled,
                                    bool& Consumed) {
    const TControlGuard Guard(&Control);
    TMessage Message{Msg, CharCode, ShiftParam(Shift)};
    Control.WndProc(Message);
    Consumed = Message.WParam == 0;
    if (Consumed || Message.Result != 0) Handled = true;
    return static_cast<bool>(Guard);
}

bool TCustomControl::TImpl::SendText(const QString& Text, TShiftState Shift, bool& Handled) {
    const std::u32string Characters = Text.toStdU32String();
    const QWidget* const FocusBefore = QApplication::focusWidget();
    for (std::size_t i = 0; i < Characters.size(); ++i) {
        bool Consumed = false;
        if (Characters[i] != 0 && !SendKey(WM_CHAR, Characters[i], Shift, Handled, Consumed)) return false;
        QWidget* const Focus = QApplication::focusWidget();
        if (i + 1 == Characters.size() || !Focus || Focus == FocusBefore || !Control.isAncestorOf(Focus))
            continue;
        QInputMethodEvent Rest;
        Rest.setCommitString(QString::fromStdU32String(Characters.substr(i + 1)));
        const TControlGuard Guard(&Control);
        QCoreApplication::sendEvent(Focus, &Rest);
        return static_cast<bool>(Guard);
    }
    return true;
}

bool TCustomControl::TImpl::WantsSpecialKey(std::uint16_t Key, TShiftState Shift) {
    return Control.Perform(CM_WANTSPECIALKEY, Key, ShiftParam(Shift)) != 0;
}

void TCustomControl::keyPressEvent(QKeyEvent* Event) {
    TImpl& Impl = *FImpl;
    const TControlGuard Guard(this);
    Event->accept();
    if (!Impl.DeliverWaiting()) return;
    const bool HasText = YieldsText(*Event);
    std::uint16_t Key = VirtualKeyFromQt(Event->key(), Event->modifiers().testFlag(Qt::KeypadModifier));
    if (Key == 0 && HasText) Key = VK_PACKET;
    const TShiftState Shift = ShiftOf(*Event);
    bool Handled = false;
    bool Consumed = false;
    if (Key != 0 && !Impl.SendKey(WM_KEYDOWN, Key, Shift, Handled, Consumed)) return;
    if (const unsigned Command = ClipboardMessage(*Event);
        Command != 0 && !Consumed && GetClipboardKey(Command) != TClipboardKey::Ignored) {
        const bool Used = Perform(Command, 0, 0) != 0;
        if (Guard) Event->setAccepted(Used || Handled);
        return;
    }
    // A dialog closes with Esc unless a control that always takes the key has something to close itself.
    if (Key == VK_ESCAPE && Consumed && SendsConsumedChar(Key) && qobject_cast<QDialog*>(window()) &&
        !Impl.WantsSpecialKey(Key, Shift)) {
        if (Guard) Event->ignore();
        return;
    }
    if (!Guard) return;
    if (HasText && (!Consumed || SendsConsumedChar(Key)) && !Impl.SendText(TextOf(*Event), Shift, Handled))
        return;
    if (!Handled && IsNavigationKey(Key)) Handled = Impl.WantsSpecialKey(Key, Shift);
    if (Guard) Event->setAccepted(Handled);
}

void TCustomControl::keyReleaseEvent(QKeyEvent* Event) {
    Event->accept();
    if (!FImpl->DeliverWaiting()) return;
    const std::uint16_t Key = VirtualKeyFromQt(Event->key(), Event->modifiers().testFlag(Qt::KeypadModifier));
    bool Handled = false;
    bool Consumed = false;
    if (Key != 0 && !FImpl->SendKey(WM_KEYUP, Key, ShiftOf(*Event), Handled, Consumed)) return;
    Event->setAccepted(Handled);
}

void TCustomControl::inputMethodEvent(QInputMethodEvent* Event) {
    Event->accept();
    if (!FImpl->DeliverWaiting()) return;
    bool Handled = false;
    const TFlagScope Composed(this, FImpl->SendingComposed);
    FImpl->SendText(Event->commitString(), {}, Handled);
}

bool TCustomControl::IsComposedText() const { return FImpl->SendingComposed; }

bool TCustomControl::focusNextPrevChild(bool Next) {
    // Also asked by Qt for Tab in a child (an editor), which then gets the key.
    if (!FImpl->DestructionBegun &&
        FImpl->WantsSpecialKey(VK_TAB, Next ? TShiftState{} : TShiftState{ssShift}))
        return false;
    // A child that Tab does not reach (an editor) is a part of us: from it the focus goes to our neighbours. It was made
    // later than they, and we would hand the focus to it again.
    const QWidget* const Inside = QApplication::focusWidget();
    if (!Inside || Inside == this || !isAncestorOf(Inside) ||
        (Inside->focusPolicy() & Qt::TabFocus) == Qt::TabFocus)
        return QAbstractScrollArea::focusNextPrevChild(Next);
    for (QWidget* Outer = parentWidget(); !FTabStop && Outer; Outer = Outer->parentWidget()) {
        if (auto* Control = dynamic_cast<TCustomControl*>(Outer)) return Control->focusNextPrevChild(Next);
    }
    const auto Step = [Next](const QWidget* W) {
        return Next ? W->nextInFocusChain() : W->previousInFocusChain();
    };
    for (QWidget* Other = Step(this); Other != this; Other = Step(Other)) {
        const bool TakesTab = (Other->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && Other->isEnabled();
        if (!TakesTab || !Other->isVisible() || Other->window() != window() || isAncestorOf(Other)) continue;
        Other->setFocus(Next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }
    return false;
}

// --- focus --------------------------------------------------------------------------------------------------------

bool TCustomControl::Focused() const { return hasFocus(); }

bool TCustomControl::IsInDialog() const { return qobject_cast<const QDialog*>(window()) != nullptr; }

bool TCustomControl::ContainsFocus() const {
    const QWidget* Focus = QApplication::focusWidget();
    return Focus && (Focus == this || isAncestorOf(Focus));
}

void TCustomControl::SetFocus() {
    const TControlGuard Guard(this);
    setFocus(Qt::OtherFocusReason);
    if (Guard) FImpl->DeliverWaiting();
}

void TCustomControl::focusInEvent(QFocusEvent* Event) {
    QAbstractScrollArea::focusInEvent(Event);
    // Menus take the focus without being where the user works.
    if (!FImpl->DestructionBegun && Event->reason() != Qt::PopupFocusReason) Perform(WM_SETFOCUS, 0, 0);
}

void TCustomControl::focusOutEvent(QFocusEvent* Event) {
    QAbstractScrollArea::focusOutEvent(Event);
    if (!FImpl->DestructionBegun && Event->reason() != Qt::PopupFocusReason) Perform(WM_KILLFOCUS, 0, 0);
}

// --- timers -------------------------------------------------------------------------------------------------------

void TCustomControl::SetTimer(int TimerID, int Interval) {
    if (FImpl->DestructionBegun) return;
    KillTimer(TimerID);
    FImpl->Timers.emplace_back(TimerID, startTimer(std::max(Interval, 1)));
}

void TCustomControl::KillTimer(int TimerID) {
    auto& Timers = FImpl->Timers;
    const auto Found =
        std::find_if(Timers.begin(), Timers.end(), [=](const auto& T) { return T.first == TimerID; });
    if (Found == Timers.end()) return;
    killTimer(Found->second);
    Timers.erase(Found);
}

bool TCustomControl::HasTimer(int TimerID) const {
    const auto& Timers = FImpl->Timers;
    return std::any_of(Timers.begin(), Timers.end(), [=](const auto& T) { return T.first == TimerID; });
}

void TCustomControl::TImpl::KillTimers() {
    for (const auto& [TimerID, QtID] : std::exchange(Timers, {})) Control.killTimer(QtID);
}

void TCustomControl::timerEvent(QTimerEvent* Event) {
    for (const auto& [TimerID, QtID] : FImpl->Timers) {
        if (QtID != Event->timerId()) continue;
        Perform(WM_TIMER, static_cast<std::uintptr_t>(TimerID), 0);
        return;
    }
    QAbstractScrollArea::timerEvent(Event);
}

// --- events of the area itself ------------------------------------------------------------------------------------

bool TCustomControl::event(QEvent* Event) {
    if (FImpl->DestructionBegun) return QAbstractScrollArea::event(Event);
    if (Event->type() == WakeUpEvent()) {
        FImpl->WokenUp();
        return true;
    }
    switch (Event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
    case QEvent::ParentChange: {
        const TControlGuard Guard(this);
        FImpl->NotePlace(Event->type());
        if (!Guard) return true;
        break;
    }
    case QEvent::ShortcutOverride:
        if (const unsigned Msg = ClipboardMessage(static_cast<QKeyEvent&>(*Event));
            Msg != 0 && GetClipboardKey(Msg) == TClipboardKey::BeforeMenus) {
            Event->accept();
            return true;
        }
        break;
    case QEvent::WindowBlocked:
        FImpl->CancelPress();
        break;
    case QEvent::ScreenChangeInternal:
        FImpl->ScaleChanged();
        break;
    case QEvent::Paint: {
        if (FBorderWidth > 0) {
            const TColor Color = ColorToRGB(FColor, FCanvas->GetPalette());
            QPainter(this).fillRect(contentsRect(), QColor(static_cast<int>(Color & 0xFF),
                                                           static_cast<int>(Color >> 8 & 0xFF),
                                                           static_cast<int>(Color >> 16 & 0xFF)));
        }
        const bool Result = QAbstractScrollArea::event(Event);
        // Qt draws a plain frame in the text's colour, which is too loud around a whole control.
        if (frameStyle() == (QFrame::Box | QFrame::Plain)) {
            QPainter Painter(this);
            qDrawPlainRect(&Painter, frameRect(), FrameColor(palette()), lineWidth());
        }
        return Result;
    }
    case QEvent::Wheel:
        // Comes up from the viewport or a bar when the control did not use it; the parents' turn.
        Event->ignore();
        return false;
    default:
        break;
    }
    return QAbstractScrollArea::event(Event);
}

} // namespace quill
