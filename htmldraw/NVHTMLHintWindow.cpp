#include "htmldraw/NVHTMLHintWindow.h"

#include "host/base/PropertyTables.h"
#include "htmldraw/HTMLDraw.h"

namespace quill {

namespace {

constexpr int TextInset = 2; // at the left and the top
constexpr int ExtraWidth = 8;
constexpr int ExtraHeight = 2;

} // namespace

TNVHTMLHintWindow::TNVHTMLHintWindow(TComponent* AOwner) : THintWindow(AOwner) {}

TNVHTMLHintWindow::~TNVHTMLHintWindow() { BeginDestruction(); }

void TNVHTMLHintWindow::ApplyReading() {
    GetCanvas()->SetTextFlags(UseRightToLeftReading() ? ETO_RTLREADING : 0);
}

TRect TNVHTMLHintWindow::CalcHintRect(int MaxWidth, const std::string& AHint, void* AData) {
    if (!FHTMLDrawing) return THintWindow::CalcHintRect(MaxWidth, AHint, AData);
    FollowOwner();
    GetCanvas()->SetFont(GetFont());
    ApplyReading();
    TRect Result{0, 0, MaxWidth, 0};
    DrawHTML(Result, *GetCanvas(), AHint, FWordwrap, true, HTMLLeft, HTMLMiddle);
    Result.Right += ExtraWidth;
    Result.Bottom += ExtraHeight;
    return Result;
}

void TNVHTMLHintWindow::Paint() {
    if (!FHTMLDrawing) {
        THintWindow::Paint();
        return;
    }
    TRect Room = GetClientRect();
    Room.Left += TextInset;
    Room.Top += TextInset;
    GetCanvas()->GetFont()->SetColor(clInfoText);
    GetCanvas()->GetBrush()->SetColor(GetColor());
    ApplyReading();
    DrawHTML(Room, *GetCanvas(), GetCaption(), FWordwrap, false, HTMLLeft, HTMLMiddle);
}

const TClassInfo* TNVHTMLHintWindow::GetClassInfo() const {
    using T = TNVHTMLHintWindow;
    static const TPropertyInfo Properties[] = {
        Published<&T::GetHTMLDrawing, &T::SetHTMLDrawing>("HTMLDrawing"),
        Published<&T::GetWordwrap, &T::SetWordWrap>("Wordwrap"),
    };
    static const TClassInfo Info{"TNVHTMLHintWindow", THintWindow::GetClassInfo(), Properties};
    return &Info;
}

} // namespace quill
