#include "exgrid/InplaceEdit.h"

#include "exgrid/ExGrid.h"
#include "host/base/Events.h"
#include "host/windows/Application.h"

#include <utility>

namespace quill {

namespace {

constexpr std::intptr_t DLGC_WANTTAB = 0x2;

enum TKeyChar : char32_t {
    kcBackspace = 8,
    kcTab = 9,
    kcReturn = 13,
    kcPaste = 22,
    kcCut = 24,
    kcEscape = 27
};

// As the grid understands it: 127 deletes a word, and is refused as letters are.
bool IsPrintable(char32_t Key) { return Key >= 32; }

} // namespace

TInplaceEdit::TInplaceEdit(TComponent* AOwner) : TCustomEdit(AOwner) {
    SetBorderStyle(bsNone);
    SetTabStop(false);
    SetLineTabStop(false);
    SetOutlined(true);
}

TInplaceEdit::~TInplaceEdit() {
    // Before the focus goes, which would make the grid store our text.
    if (FGrid) FGrid->EditorGone(this);
    BeginDestruction();
}

void TInplaceEdit::CreateParams(TCreateParams& Params) {
    TCustomEdit::CreateParams(Params);
    Params.Style |= ES_MULTILINE;
}

// --- place --------------------------------------------------------------------------------------------------------

bool TInplaceEdit::PosEqual(const TRect& Rect) const {
    return Rect == TRect{GetLeft(), GetTop(), GetLeft() + GetWidth(), GetTop() + GetHeight()};
}

void TInplaceEdit::InternalMove(const TRect& Rect, bool Show) {
    const TControlGuard Guard(this);
    if (Show) HandleNeeded();
    if (!Guard) return;
    if (!PosEqual(Rect)) {
        SetBounds(Rect.Left, Rect.Top, Rect.Right - Rect.Left, Rect.Bottom - Rect.Top);
        if (Guard) BoundsChanged();
    }
    if (!Guard || !Show) return;
    if (!Visible()) SetVisible(true);
    if (Guard && FGrid && FGrid->Focused()) SetFocus();
}

void TInplaceEdit::Hide() {
    const TControlGuard Guard(this);
    if (FGrid && ContainsFocus()) FGrid->SetFocus();
    if (Guard) SetVisible(false);
}

// --- text ---------------------------------------------------------------------------------------------------------

void TInplaceEdit::Deselect() { SetSel(GetTextLength(), GetTextLength()); }

void TInplaceEdit::UpdateContents() {
    const TControlGuard Guard(this);
    const TControlGuard GridGuard(FGrid ? static_cast<const TCustomControl*>(FGrid) : this);
    const auto Alive = [&] { return Guard && GridGuard && FGrid; };
    SetText({});
    if (!Alive()) return;
    const std::string Mask = FGrid->GetEditMask(FGrid->GetCol(), FGrid->GetRow());
    if (!Alive()) return;
    const std::string Text = FGrid->GetEditText(FGrid->GetCol(), FGrid->GetRow());
    if (!Alive()) return;
    const int Limit = FGrid->GetEditLimit();
    if (!Alive()) return;
    TAlignment Alignment = FGrid->GetColAlignMent(FGrid->GetCol());
    if (FGrid->UseRightToLeftAlignment() && Alignment != taCenter)
        Alignment = Alignment == taLeftJustify ? taRightJustify : taLeftJustify;
    SetAlignment(Alignment);
    SetMaxLength(Limit);
    SetEditMask(Mask);
    if (Guard) SetText(Text);
}

bool TInplaceEdit::EditCanModify() { return !FGrid || FGrid->CanEditModify(); }

// --- keys ---------------------------------------------------------------------------------------------------------

// Whether the caret stands at the end that the key moves to, or Ctrl leaves the text from anywhere.
bool TInplaceEdit::MovesOn(std::uint16_t Key, TShiftState Shift) const {
    if (!FGrid->HasOption(goAlwaysShowEditor)) return false;
    if (Shift.Contains(ssCtrl)) return true;
    const int Start = GetSelStart();
    const int Length = GetSelLength();
    const int End = GetTextLength();
    const bool Back = Key == VK_LEFT || Key == VK_HOME;
    return Back ? Start == 0 && (Length == 0 || Length == End)
                : (Length == 0 || Start == 0) && Start + Length == End;
}

// What is changed is to be seen.
void TInplaceEdit::ChangeComing() {
    if (FGrid && (GetWidth() <= 0 || GetHeight() <= 0))
        FGrid->ClampInView({FGrid->GetCol(), FGrid->GetRow()});
}

void TInplaceEdit::KeyDown(std::uint16_t& Key, TShiftState Shift) {
    if (!FGrid) return TCustomEdit::KeyDown(Key, Shift);
    const TControlGuard Guard(this);
    const auto ToGrid = [&] {
        std::uint16_t Sent = std::exchange(Key, std::uint16_t{0});
        FGrid->KeyDown(Sent, Shift);
        if (Guard) FEscapeUsed = Sent != VK_ESCAPE;
    };
    const bool NoModifiers = (Shift * TShiftState{ssShift, ssCtrl, ssAlt}).IsEmpty();
    switch (Key) {
    case VK_UP:
    case VK_DOWN:
    case VK_PRIOR:
    case VK_NEXT:
    case VK_ESCAPE:
        ToGrid();
        break;
    case VK_LEFT:
    case VK_HOME:
    case VK_RIGHT:
    case VK_END:
        if (MovesOn(Key, Shift)) ToGrid();
        break;
    case VK_TAB:
        if (!Shift.Contains(ssAlt)) ToGrid();
        break;
    case VK_INSERT:
        if (NoModifiers) {
            ToGrid();
        } else if ((Shift * TShiftState{ssShift, ssCtrl, ssAlt}) == TShiftState{ssShift} &&
                   !FGrid->CanEditModify()) {
            Key = 0;
        }
        break;
    case VK_F2:
        FireEvent(FGrid->OnKeyDown, FGrid, Key, Shift);
        if (Guard && Key == VK_F2) Deselect();
        if (!Guard || Key == VK_F2) return;
        break;
    default:
        break;
    }
    if (!Guard) return;
    if (Key == VK_DELETE && !FGrid->CanEditModify()) Key = 0;
    if (!Guard || Key == 0) return;
    FireEvent(FGrid->OnKeyDown, FGrid, Key, Shift);
    if (!Guard || Key == 0) return;
    TCustomEdit::KeyDown(Key, Shift);
}

void TInplaceEdit::KeyPress(char32_t& Key) {
    if (!FGrid) return TCustomEdit::KeyPress(Key);
    const TControlGuard Guard(this);
    FGrid->KeyPress(Key);
    if (!Guard) return;
    if (IsPrintable(Key)) {
        const bool Accepted = FGrid->CanEditAcceptKey(Key);
        if (!Guard) return;
        if (!Accepted) {
            Key = 0;
            MessageBeep(0);
        }
    }
    switch (Key) {
    case kcTab:
    case kcEscape:
        Key = 0;
        break;
    case kcReturn:
        // All of an empty text is selected as well as none of it.
        if (GetSelStart() == 0 && GetSelLength() == GetTextLength()) {
            Deselect();
        } else {
            SelectAll();
        }
        Key = 0;
        break;
    default:
        if (!IsPrintable(Key) && Key != kcBackspace && Key != kcPaste && Key != kcCut) break;
        if (!FGrid->CanEditModify() && Guard) Key = 0;
        break;
    }
    if (Guard && Key != 0) TCustomEdit::KeyPress(Key);
}

void TInplaceEdit::WMGetDlgCode(TMessage& Message) {
    TCustomEdit::WMGetDlgCode(Message);
    if (FGrid && FGrid->HasOption(goTabs)) Message.Result |= DLGC_WANTTAB;
}

void TInplaceEdit::CMWantSpecialKey(TWMKey& Message) {
    TCustomEdit::CMWantSpecialKey(Message);
    if (!FGrid) return;
    if (Message.CharCode == VK_TAB && FGrid->HasOption(goTabs)) Message.Result = 1;
    if (Message.CharCode == VK_ESCAPE &&
        (FEscapeUsed || FGrid->Perform(CM_WANTSPECIALKEY, VK_ESCAPE, 0) != 0))
        Message.Result = 1;
}

// --- the mouse ----------------------------------------------------------------------------------------------------

void TInplaceEdit::DblClick() {
    if (FGrid) FGrid->DblClick();
}

bool TInplaceEdit::DoMouseWheel(TShiftState Shift, int WheelDelta, TPoint MousePos) {
    return FGrid && FGrid->DoMouseWheel(Shift, WheelDelta, MousePos);
}

} // namespace quill
