// Scroll bars of controls: what the user does with them becomes messages, and they show what the control sets.
#include "host/windows/ControlImpl.h"

#include "host/windows/ScrollBars.h"

#include <QCoreApplication>
#include <QPointer>
#include <QResizeEvent>

#include <algorithm>

namespace quill {

void TCustomControl::TImpl::InstallBars() {
    for (const int Bar : {SB_HORZ, SB_VERT}) {
        const Qt::Orientation Orientation = Bar == SB_HORZ ? Qt::Horizontal : Qt::Vertical;
        auto* Widget = new TControlScrollBar(Orientation);
        Bars[static_cast<std::size_t>(Bar)].Widget = Widget;
        if (Bar == SB_HORZ)
            Control.setHorizontalScrollBar(Widget);
        else
            Control.setVerticalScrollBar(Widget);
        // Positions are always counted from the left; mirroring is the control's business.
        Widget->setLayoutDirection(Qt::LeftToRight);
        Widget->setRange(0, 0);
        QObject::connect(Widget, &QScrollBar::actionTriggered, &Control,
                         [this, Bar](int Action) { BarAction(Bar, Action); });
        QObject::connect(Widget, &QScrollBar::sliderReleased, &Control, [this, Bar] { BarReleased(Bar); });
    }
    Control.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    Control.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

TCustomControl::TImpl::TBar* TCustomControl::TImpl::FindBar(int Bar) {
    if (Bar != SB_HORZ && Bar != SB_VERT) return nullptr;
    TBar& Result = Bars[static_cast<std::size_t>(Bar)];
    return Result.Widget ? &Result : nullptr;
}

void TCustomControl::TImpl::SetBarShown(int Bar, bool Show) {
    TBar* Found = FindBar(Bar);
    if (!Found || Found->Shown == Show) return;
    Found->Shown = Show;
    const Qt::ScrollBarPolicy Policy = Show ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff;
    const TControlGuard Guard(&Control);
    if (Bar == SB_HORZ)
        Control.setHorizontalScrollBarPolicy(Policy);
    else
        Control.setVerticalScrollBarPolicy(Policy);
    if (!Guard) return;
    LayOut();
    ClientResized();
}

void TCustomControl::TImpl::SyncBar(int Bar) {
    TBar* Found = FindBar(Bar);
    // A bar that is being dragged stays under the mouse; it is put right when it is released.
    if (Found && !Found->Widget->isSliderDown()) Found->Widget->setValue(Found->Pos);
}

void TCustomControl::TImpl::SendScroll(int Bar, unsigned Code, int Pos) {
    const TControlGuard Guard(&Control);
    const TDispatch Dispatch(*this);
    Control.Perform(Bar == SB_HORZ ? WM_HSCROLL : WM_VSCROLL, Code, Pos);
    if (Guard) SyncBar(Bar);
}

void TCustomControl::TImpl::BarAction(int Bar, int Action) {
    TBar* Found = FindBar(Bar);
    if (!Found || DestructionBegun) return;
    QScrollBar* Widget = Found->Widget;
    if (Action == QAbstractSlider::SliderMove) {
        SendScroll(Bar, SB_THUMBTRACK, Widget->sliderPosition());
        return;
    }
    unsigned Code = SB_ENDSCROLL;
    switch (Action) {
    case QAbstractSlider::SliderSingleStepAdd:
        Code = SB_LINEDOWN;
        break;
    case QAbstractSlider::SliderSingleStepSub:
        Code = SB_LINEUP;
        break;
    case QAbstractSlider::SliderPageStepAdd:
        Code = SB_PAGEDOWN;
        break;
    case QAbstractSlider::SliderPageStepSub:
        Code = SB_PAGEUP;
        break;
    case QAbstractSlider::SliderToMinimum:
        Code = SB_TOP;
        break;
    case QAbstractSlider::SliderToMaximum:
        Code = SB_BOTTOM;
        break;
    default:
        return;
    }
    // The bar does not move by itself; the control sets the position that it scrolled to. The bar is about to take
    // over its slider's position, so that is set back before the control is asked.
    Widget->setSliderPosition(Widget->value());
    const QPointer<QScrollBar> Alive(Widget);
    SendScroll(Bar, Code, 0);
    if (Alive) Alive->setSliderPosition(Alive->value());
}

void TCustomControl::TImpl::BarReleased(int Bar) {
    TBar* Found = FindBar(Bar);
    if (!Found || DestructionBegun) return;
    const TControlGuard Guard(&Control);
    SendScroll(Bar, SB_THUMBPOSITION, Found->Widget->sliderPosition());
    if (!Guard) return;
    SendScroll(Bar, SB_ENDSCROLL, 0);
}

void TCustomControl::SetScrollRange(int Bar, int MinPos, int MaxPos, bool Redraw) {
    TImpl::TBar* Found = FImpl->FindBar(Bar);
    if (!Found) return;
    MaxPos = std::max(MinPos, MaxPos);
    Found->Pos = std::clamp(Found->Pos, MinPos, MaxPos);
    Found->Widget->setRange(MinPos, MaxPos);
    FImpl->SyncBar(Bar);
    if (Redraw) Found->Widget->update();
}

void TCustomControl::GetScrollRange(int Bar, int& MinPos, int& MaxPos) const {
    const TImpl::TBar* Found = FImpl->FindBar(Bar);
    MinPos = Found ? Found->Widget->minimum() : 0;
    MaxPos = Found ? Found->Widget->maximum() : 0;
}

int TCustomControl::SetScrollPos(int Bar, int Pos, bool Redraw) {
    TImpl::TBar* Found = FImpl->FindBar(Bar);
    if (!Found) return 0;
    const int Old = Found->Pos;
    Found->Pos = std::clamp(Pos, Found->Widget->minimum(), Found->Widget->maximum());
    FImpl->SyncBar(Bar);
    if (Redraw) Found->Widget->update();
    return Old;
}

int TCustomControl::GetScrollPos(int Bar) const {
    const TImpl::TBar* Found = FImpl->FindBar(Bar);
    return Found ? Found->Pos : 0;
}

void TCustomControl::SetScrollPage(int Bar, int Page) {
    if (TImpl::TBar* Found = FImpl->FindBar(Bar)) Found->Widget->setPageStep(std::max(Page, 0));
}

void TCustomControl::ShowScrollBar(int Bar, bool Show) {
    const TImpl::TBar* Found = FImpl->FindBar(Bar);
    if (Found && (Found->MayExist || !Show)) FImpl->SetBarShown(Bar, Show);
}

bool TCustomControl::IsScrollBarShown(int Bar) const {
    const TImpl::TBar* Found = FImpl->FindBar(Bar);
    return Found && Found->Shown;
}

int TCustomControl::GetScrollBarSize(int Bar) const {
    const TImpl::TBar* Found = FImpl->FindBar(Bar);
    if (!Found) return 0;
    const QSize Hint = Found->Widget->sizeHint();
    return Bar == SB_HORZ ? Hint.height() : Hint.width();
}

void TCustomControl::SetScrollBarLook(TScrollBarLook Look, TColor Background, bool Redraw) {
    const TControlGuard Guard(this);
    const auto Sizes = [this] { return QSize(GetScrollBarSize(SB_VERT), GetScrollBarSize(SB_HORZ)); };
    const QSize OldSizes = Sizes();
    for (TImpl::TBar& Bar : FImpl->Bars) {
        if (!Bar.Widget) continue;
        Bar.Widget->SetLook(Look, Background);
        if (Redraw) Bar.Widget->update();
    }
    if (Sizes() == OldSizes) return;
    // The bars' new thickness changes the client area at once, not in some later turn of the event loop.
    QResizeEvent Event(size(), size());
    QCoreApplication::sendEvent(this, &Event);
    if (Guard) FImpl->ClientResized();
}

TScrollBarLook TCustomControl::GetScrollBarLook() const {
    const TImpl::TBar* Found = FImpl->FindBar(SB_VERT);
    return Found ? Found->Widget->GetLook() : sblRegular;
}

// Positions come through SetScrollPos only.
void TCustomControl::scrollContentsBy(int, int) {}

} // namespace quill
