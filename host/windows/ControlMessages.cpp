// Messages of controls: from their general form to the typed handlers, and what the base does with them.
#include "host/windows/ControlImpl.h"

#include <algorithm>
#include <cstdlib>

namespace quill {

namespace {

// Calls a typed handler; what it leaves in Result goes back into the message.
template <class TTyped>
void Call(TCustomControl& Control, void (TCustomControl::*Handler)(TTyped&), TMessage& Message,
          TTyped Typed) {
    (Control.*Handler)(Typed);
    Message.Result = Typed.Result;
}

void CallMouse(TCustomControl& Control, void (TCustomControl::*Handler)(TWMMouse&), TMessage& Message) {
    const TPoint Pos = PointFromParam(Message.LParam);
    Call(Control, Handler, Message, TWMMouse{Message.Msg, ShiftFromParam(Message.WParam), Pos.X, Pos.Y});
}

void CallKey(TCustomControl& Control, void (TCustomControl::*Handler)(TWMKey&), TMessage& Message) {
    TWMKey Typed{Message.Msg, static_cast<char32_t>(Message.WParam),
                 ShiftFromParam(static_cast<std::uintptr_t>(Message.LParam))};
    (Control.*Handler)(Typed);
    Message.WParam = Typed.CharCode;
    Message.Result = Typed.Result;
}

// A double click of a control that takes none is one more press.
unsigned WithoutDoubleClick(unsigned Msg) {
    switch (Msg) {
    case WM_LBUTTONDBLCLK:
        return WM_LBUTTONDOWN;
    case WM_RBUTTONDBLCLK:
        return WM_RBUTTONDOWN;
    case WM_MBUTTONDBLCLK:
        return WM_MBUTTONDOWN;
    default:
        return Msg;
    }
}

} // namespace

std::intptr_t TCustomControl::Perform(unsigned Msg, std::uintptr_t WParam, std::intptr_t LParam) {
    TMessage Message{Msg, WParam, LParam};
    WndProc(Message);
    return Message.Result;
}

void TCustomControl::WndProc(TMessage& Message) {
    using C = TCustomControl;
    if (!FControlStyle.Contains(csDoubleClicks)) Message.Msg = WithoutDoubleClick(Message.Msg);
    switch (Message.Msg) {
    case WM_MOUSEMOVE:
        CallMouse(*this, &C::WMMouseMove, Message);
        break;
    case WM_LBUTTONDOWN:
        FControlState.Include(csLButtonDown);
        CallMouse(*this, &C::WMLButtonDown, Message);
        break;
    case WM_LBUTTONDBLCLK:
        FControlState.Include(csLButtonDown);
        CallMouse(*this, &C::WMLButtonDblClk, Message);
        break;
    case WM_LBUTTONUP:
        FControlState.Exclude(csLButtonDown);
        CallMouse(*this, &C::WMLButtonUp, Message);
        break;
    case WM_RBUTTONDOWN:
        CallMouse(*this, &C::WMRButtonDown, Message);
        break;
    case WM_RBUTTONUP:
        CallMouse(*this, &C::WMRButtonUp, Message);
        break;
    case WM_RBUTTONDBLCLK:
        CallMouse(*this, &C::WMRButtonDblClk, Message);
        break;
    case WM_MBUTTONDOWN:
    case WM_MBUTTONDBLCLK:
        CallMouse(*this, &C::WMMButtonDown, Message);
        break;
    case WM_MBUTTONUP:
        CallMouse(*this, &C::WMMButtonUp, Message);
        break;
    case WM_MOUSEWHEEL:
        WMMouseWheel(Message);
        break;
    case WM_KEYDOWN:
        CallKey(*this, &C::WMKeyDown, Message);
        break;
    case WM_KEYUP:
        CallKey(*this, &C::WMKeyUp, Message);
        break;
    case WM_CHAR:
        CallKey(*this, &C::WMChar, Message);
        break;
    case CM_WANTSPECIALKEY:
        CallKey(*this, &C::CMWantSpecialKey, Message);
        break;
    case WM_HSCROLL:
    case WM_VSCROLL:
        Call(*this, Message.Msg == WM_HSCROLL ? &C::WMHScroll : &C::WMVScroll, Message,
             TWMScroll{Message.Msg, static_cast<unsigned>(Message.WParam), static_cast<int>(Message.LParam)});
        break;
    case WM_TIMER:
        Call(*this, &C::WMTimer, Message, TWMTimer{WM_TIMER, static_cast<int>(Message.WParam)});
        break;
    case WM_SIZE: {
        const TPoint Size = PointFromParam(Message.LParam);
        Call(*this, &C::WMSize, Message, TWMSize{WM_SIZE, Size.X, Size.Y});
        break;
    }
    case WM_SETFOCUS:
        WMSetFocus(Message);
        break;
    case WM_KILLFOCUS:
        WMKillFocus(Message);
        break;
    case WM_CANCELMODE:
        WMCancelMode(Message);
        break;
    case WM_SETREDRAW:
        WMSetRedraw(Message);
        break;
    case WM_SETCURSOR:
        WMSetCursor(Message);
        break;
    case WM_CUT:
        WMCut(Message);
        break;
    case WM_COPY:
        WMCopy(Message);
        break;
    case WM_PASTE:
        WMPaste(Message);
        break;
    case CM_DRAG: {
        TCMDrag Typed{CM_DRAG, static_cast<TDragMessage>(Message.WParam),
                      reinterpret_cast<TDragRec*>(Message.LParam)};
        if (Typed.DragRec) Call(*this, &C::CMDrag, Message, Typed);
        break;
    }
    case CM_MOUSEENTER:
        CMMouseEnter(Message);
        break;
    case CM_MOUSELEAVE:
        CMMouseLeave(Message);
        break;
    case CM_FONTCHANGED:
        CMFontChanged(Message);
        break;
    case CM_CTL3DCHANGED:
        CMCtl3DChanged(Message);
        break;
    case CM_BORDERCHANGED:
        CMBorderChanged(Message);
        break;
    case CM_SHOWINGCHANGED:
        CMShowingChanged(Message);
        break;
    case CM_BIDIMODECHANGED:
        CMBiDiModeChanged(Message);
        break;
    default:
        break;
    }
}

// --- mouse --------------------------------------------------------------------------------------------------------

void TCustomControl::WMMouseMove(TWMMouse& Message) { MouseMove(Message.Shift, Message.XPos, Message.YPos); }

void TCustomControl::WMLButtonDown(TWMMouse& Message) {
    if (FControlStyle.Contains(csCaptureMouse)) FMouseCapture = true;
    if (FControlStyle.Contains(csClickEvents)) FControlState.Include(csClicked);
    const TControlGuard Guard(this);
    MouseDown(mbLeft, Message.Shift, Message.XPos, Message.YPos);
    // A press is still a press: the drag begins when the mouse has moved on with it.
    if (Guard && FDragMode == dmAutomatic && !HasState(csDesigning)) BeginDrag(false);
}

void TCustomControl::WMLButtonDblClk(TWMMouse& Message) {
    if (FControlStyle.Contains(csCaptureMouse)) FMouseCapture = true;
    const TControlGuard Guard(this);
    if (FControlStyle.Contains(csClickEvents)) DblClick();
    if (!Guard) return;
    MouseDown(mbLeft, Message.Shift + TShiftState{ssDouble}, Message.XPos, Message.YPos);
}

void TCustomControl::WMLButtonUp(TWMMouse& Message) {
    if (FControlStyle.Contains(csCaptureMouse)) FMouseCapture = false;
    const TControlGuard Guard(this);
    if (FControlState.Contains(csClicked)) {
        FControlState.Exclude(csClicked);
        if (GetClientRect().Contains({Message.XPos, Message.YPos})) Click();
        if (!Guard) return;
    }
    MouseUp(mbLeft, Message.Shift, Message.XPos, Message.YPos);
}

void TCustomControl::WMRButtonDown(TWMMouse& Message) {
    MouseDown(mbRight, Message.Shift, Message.XPos, Message.YPos);
}

void TCustomControl::WMRButtonUp(TWMMouse& Message) {
    MouseUp(mbRight, Message.Shift, Message.XPos, Message.YPos);
}

void TCustomControl::WMRButtonDblClk(TWMMouse& Message) {
    MouseDown(mbRight, Message.Shift + TShiftState{ssDouble}, Message.XPos, Message.YPos);
}

void TCustomControl::WMMButtonDown(TWMMouse& Message) {
    TShiftState Shift = Message.Shift;
    if (Message.Msg == WM_MBUTTONDBLCLK) Shift.Include(ssDouble);
    MouseDown(mbMiddle, Shift, Message.XPos, Message.YPos);
}

void TCustomControl::WMMButtonUp(TWMMouse& Message) {
    MouseUp(mbMiddle, Message.Shift, Message.XPos, Message.YPos);
}

void TCustomControl::WMMouseWheel(TMessage& Message) {
    Message.Result = DoMouseWheel(ShiftFromParam(Message.WParam), WheelDeltaFromParam(Message.WParam),
                                  PointFromParam(Message.LParam))
                         ? 1
                         : 0;
}

void TCustomControl::WMCancelMode(TMessage&) {
    FMouseCapture = false;
    FControlState -= TControlState{csLButtonDown, csClicked};
}

void TCustomControl::WMSetCursor(TMessage& Message) {
    ApplyCursor(FCursor);
    Message.Result = 1;
}

void TCustomControl::CMMouseEnter(TMessage&) {}
void TCustomControl::CMMouseLeave(TMessage&) {}

void TCustomControl::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) {
    FireEvent(OnMouseDown, this, Button, Shift, X, Y);
}

void TCustomControl::MouseMove(TShiftState Shift, int X, int Y) { FireEvent(OnMouseMove, this, Shift, X, Y); }

void TCustomControl::MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) {
    FireEvent(OnMouseUp, this, Button, Shift, X, Y);
}

void TCustomControl::Click() {
    const TControlGuard Guard(this);
    FireEvent(OnClick, this);
    if (Guard) Q_EMIT clicked();
}

void TCustomControl::DblClick() {
    const TControlGuard Guard(this);
    FireEvent(OnDblClick, this);
    if (Guard) Q_EMIT doubleClicked();
}

bool TCustomControl::DoMouseWheel(TShiftState Shift, int WheelDelta, TPoint MousePos) {
    const TControlGuard Guard(this);
    bool Handled = false;
    FireEvent(OnMouseWheel, this, Shift, WheelDelta, MousePos, Handled);
    if (Handled || !Guard) return true;
    // Fine-grained wheels send parts of a notch; a change of direction starts a new one.
    int& Sum = FImpl->WheelDelta;
    if ((Sum < 0) != (WheelDelta < 0)) Sum = 0;
    Sum += WheelDelta;
    Handled = FImpl->WheelHandled;
    constexpr int Notch = 120;
    while (std::abs(FImpl->WheelDelta) >= Notch) {
        const bool Up = FImpl->WheelDelta > 0;
        FImpl->WheelDelta -= Up ? Notch : -Notch;
        Handled = Up ? DoMouseWheelUp(Shift, MousePos) : DoMouseWheelDown(Shift, MousePos);
        if (!Guard) return true;
        // Parts of a notch are used if whole ones are: otherwise a parent would scroll by the rests.
        FImpl->WheelHandled = Handled;
    }
    return Handled;
}

bool TCustomControl::DoMouseWheelDown(TShiftState Shift, TPoint MousePos) {
    bool Handled = false;
    FireEvent(OnMouseWheelDown, this, Shift, MousePos, Handled);
    return Handled;
}

bool TCustomControl::DoMouseWheelUp(TShiftState Shift, TPoint MousePos) {
    bool Handled = false;
    FireEvent(OnMouseWheelUp, this, Shift, MousePos, Handled);
    return Handled;
}

// --- keys ---------------------------------------------------------------------------------------------------------

void TCustomControl::WMKeyDown(TWMKey& Message) {
    auto Key = static_cast<std::uint16_t>(Message.CharCode);
    KeyDown(Key, Message.Shift);
    Message.CharCode = Key;
}

void TCustomControl::WMKeyUp(TWMKey& Message) {
    auto Key = static_cast<std::uint16_t>(Message.CharCode);
    KeyUp(Key, Message.Shift);
    Message.CharCode = Key;
}

void TCustomControl::WMChar(TWMKey& Message) { KeyPress(Message.CharCode); }

void TCustomControl::CMWantSpecialKey(TWMKey&) {}

void TCustomControl::KeyDown(std::uint16_t& Key, TShiftState Shift) {
    FireEvent(OnKeyDown, this, Key, Shift);
}
void TCustomControl::KeyUp(std::uint16_t& Key, TShiftState Shift) { FireEvent(OnKeyUp, this, Key, Shift); }
void TCustomControl::KeyPress(char32_t& Key) { FireEvent(OnKeyPress, this, Key); }

// --- the rest -----------------------------------------------------------------------------------------------------

void TCustomControl::WMHScroll(TWMScroll&) {}
void TCustomControl::WMVScroll(TWMScroll&) {}
void TCustomControl::WMTimer(TWMTimer&) {}
void TCustomControl::WMSize(TWMSize&) {}
void TCustomControl::WMSetFocus(TMessage&) {}
void TCustomControl::WMKillFocus(TMessage&) {}
void TCustomControl::WMCut(TMessage&) {}
void TCustomControl::WMCopy(TMessage&) {}
void TCustomControl::WMPaste(TMessage&) {}

void TCustomControl::DoEnter() { FireEvent(OnEnter, this); }
void TCustomControl::DoExit() { FireEvent(OnExit, this); }

} // namespace quill
