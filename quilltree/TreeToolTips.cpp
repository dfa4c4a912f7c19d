// Tooltips: a hint window over a cell that is too narrow for its text.
#include "host/graphics/Canvas.h"
#include "host/windows/Application.h"
#include "htmldraw/NVHTMLHintWindow.h"
#include "quilltree/QuillTree.h"

#include <algorithm>

namespace quill {

void TCustomQuillTree::SetToolTips(bool Value) {
    FToolTips = Value;
    if (Value && !FHintWindow) {
        FHintWindow = std::make_unique<TNVHTMLHintWindow>(this);
    } else if (!Value && FHintWindow) {
        StopToolTipTimer();
        FHintWindow->ReleaseHandle();
        FHintWindow.reset();
    }
}

void TCustomQuillTree::WMMouseMove(TWMMouse& Message) {
    const TControlGuard Guard(this);
    // A move that shows a tooltip is not the grid's; one with a button held is the end of tooltips.
    const bool Held = !(Message.Shift * TShiftState{ssLeft, ssRight, ssMiddle}).IsEmpty();
    if (FToolTips && !Held && ActivateToolTips(Message.XPos, Message.YPos)) return;
    if (Guard) TCustomExGrid::WMMouseMove(Message);
}

bool TCustomQuillTree::ActivateToolTips(int X, int Y) {
    if (!FHintWindow) return false;
    const TControlGuard Guard(this);
    const TNodeWatch Node(GetNodeAt(X, Y));
    const TGridCoord Cell = MouseCoord(X, Y);
    if (!Guard) return false;
    if (!Node || (Node.Get() == FToolTipNode && Cell.X == FToolTipCol)) {
        if (!FToolTipNode) HideToolTip();
        return false;
    }
    const bool Structure = Cell.X == FStructureCol;
    const TRect Room = Structure ? DisplayRect(Node, true) : CellRect(Cell.X, Cell.Y);
    const std::string Text = Structure ? Node->GetText() : GetNodeData(Node, Cell.X);
    if (!Guard || !Node || !FHintWindow) return false;

    TNVHTMLHintWindow& Hint = *FHintWindow;
    Hint.SetFont(GetFont());
    Hint.SetWordWrap(FWordWrap);
    Hint.SetHTMLDrawing(FHTMLDrawing);
    const TPoint Corner = ClientToScreen({Room.Left, Room.Top});
    // Wrapped texts are broken as in their cell, so that only a word that is too wide needs a tooltip.
    const int MaxWidth = FWordWrap ? Room.Width() : THintWindow::MaxHintWidth(Corner);
    TRect Rect = Hint.CalcHintRect(MaxWidth, Text, nullptr);
    if (!FWordWrap && Rect.Width() > MaxWidth) {
        // Plain hints are wrapped there anyhow; of a line of markup the end would be beyond the screen.
        Hint.SetWordWrap(true);
        Rect = Hint.CalcHintRect(MaxWidth, Text, nullptr);
    }
    // Remembered also where none is needed, so that the way back to a cell shows its tooltip again.
    FToolTipNode = Node.Get();
    FToolTipCol = Cell.X;
    // The hint has margins of its own: a text that is shown whole needs none, even where those would not fit.
    if (Text.empty() || Room.Width() >= Rect.Width() || !IsTextCut(Room, Text, Structure)) return false;

    HideToolTip();
    Hint.SetColor(FTooltipColor);
    StartToolTipTimer(FToolTipPause);
    const int Width = Rect.Width();
    Rect.Offset(Corner.X, Corner.Y);
    // In the other direction texts begin at the right.
    if (UseRightToLeftAlignment()) Rect.Offset(Room.Width() - Width, 0);
    Hint.ActivateHint(Rect, Text);
    return Guard && FHintWindow != nullptr;
}

// Whether Text, broken into lines if the cell does so, needs more than the width of its room there.
bool TCustomQuillTree::IsTextCut(const TRect& Room, const std::string& Text, bool Structure) {
    const int Width =
        Room.Width() - TreeMetrics::TextMargin - (Structure && !FHTMLDrawing ? GetGridLineWidth() : 0);
    if (!FWordWrap) return TextWidthOf(Text) > Width;
    // A broken line of markup ends with its space, which may stand outside.
    return TextWidthOf(Text, std::max(Width, 0)) - (FHTMLDrawing ? TextWidthOf(" ") : 0) > Width;
}

void TCustomQuillTree::HideToolTip() {
    if (FHintWindow && FHintWindow->IsHintVisible()) FHintWindow->HideHint();
    StopToolTipTimer();
}

void TCustomQuillTree::ForgetToolTip() {
    HideToolTip();
    FToolTipNode = nullptr;
    FToolTipCol = -1;
}

void TCustomQuillTree::StartToolTipTimer(int Pause) {
    StopToolTipTimer();
    FToolTipTimer = std::make_unique<TTimer>(this);
    FToolTipTimer->SetInterval(std::max(Pause, 0));
    FToolTipTimer->SetOnTimer([this](TObject* Sender) { TimerProc(Sender); });
}

void TCustomQuillTree::StopToolTipTimer() { FToolTipTimer.reset(); }

void TCustomQuillTree::TimerProc(TObject*) { HideToolTip(); }

// What scrolls under a resting mouse leaves the tooltip over other cells.
void TCustomQuillTree::TopLeftChanged() {
    const TControlGuard Guard(this);
    HideToolTip();
    if (Guard) TCustomExGrid::TopLeftChanged();
    if (Guard) ReAim();
}

bool TCustomQuillTree::DoMouseWheelDown(TShiftState Shift, TPoint MousePos) {
    const TControlGuard Guard(this);
    const bool Handled = TCustomExGrid::DoMouseWheelDown(Shift, MousePos);
    if (Guard && Handled) HideToolTip();
    return Handled;
}

bool TCustomQuillTree::DoMouseWheelUp(TShiftState Shift, TPoint MousePos) {
    const TControlGuard Guard(this);
    const bool Handled = TCustomExGrid::DoMouseWheelUp(Shift, MousePos);
    if (Guard && Handled) HideToolTip();
    return Handled;
}

} // namespace quill
