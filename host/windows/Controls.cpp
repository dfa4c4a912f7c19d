// Life, window handle, size and properties of controls.
#include "host/windows/Controls.h"

#include "host/windows/ControlImpl.h"
#include "host/windows/FocusTracker.h"
#include "host/windows/PaintScheduler.h"

#include <QApplication>
#include <QEvent>
#include <QMetaMethod>
#include <QPalette>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace quill {

namespace {

// Children of a control (editors) inherit its font through Qt; the colour is the canvas's business.
QFont ToQt(const TFont& Font, const QFont& Base) {
    QFont Result = Base;
    if (!Font.GetName().empty()) Result.setFamilies({QString::fromStdString(Font.GetName())});
    if (Font.GetHeight() != 0) Result.setPixelSize(std::abs(Font.GetHeight()));
    const TFontStyles Style = Font.GetStyle();
    Result.setBold(Style.Contains(fsBold));
    Result.setItalic(Style.Contains(fsItalic));
    Result.setUnderline(Style.Contains(fsUnderline));
    Result.setStrikeOut(Style.Contains(fsStrikeOut));
    return Result;
}

} // namespace

Qt::CursorShape CursorShape(TCursor Cursor) {
    switch (Cursor) {
    case crNone:
        return Qt::BlankCursor;
    case crCross:
        return Qt::CrossCursor;
    case crIBeam:
        return Qt::IBeamCursor;
    case crSizeNS:
        return Qt::SizeVerCursor;
    case crSizeWE:
        return Qt::SizeHorCursor;
    case crHourGlass:
        return Qt::WaitCursor;
    case crDrag:
        return Qt::ClosedHandCursor;
    case crNoDrop:
        return Qt::ForbiddenCursor;
    case crHSplit:
        return Qt::SplitHCursor;
    case crVSplit:
        return Qt::SplitVCursor;
    case crHandPoint:
        return Qt::PointingHandCursor;
    default:
        return Qt::ArrowCursor;
    }
}

// --- life ---------------------------------------------------------------------------------------------------------

TCustomControl::TCustomControl(TComponent* AOwner, QWidget* AParent)
    : QAbstractScrollArea(AParent), TComponent(AOwner), FImpl(std::make_unique<TImpl>(*this)),
      FCanvas(std::make_unique<TCanvas>()),
      FFont(std::make_unique<TFont>()), FControlStyle{csCaptureMouse, csClickEvents, csDoubleClicks} {
    QWidget* Client = viewport();
    Client->setAttribute(Qt::WA_OpaquePaintEvent);
    Client->setAttribute(Qt::WA_NoSystemBackground);
    Client->setAutoFillBackground(false);
    Client->setMouseTracking(true);
    setAttribute(Qt::WA_InputMethodEnabled);
    setFocusPolicy(FImpl->FocusPolicy);
    FImpl->InstallBars();
    FBiDiMode = isRightToLeft() ? bdRightToLeft : bdLeftToRight;
    // A first frame, so that the client area is about right before the handle exists.
    TCreateParams Params;
    Params.ExStyle = WS_EX_CLIENTEDGE;
    FImpl->ApplyFrame(Params);
    FFont->SetFromQt(font());
    FFont->OnChange = [this](TObject*) { FImpl->FontChanged(); };
    FCanvas->SetFont(FFont.get());
    FCanvas->OnOpen = [this] { FImpl->CanvasOpened(); };
    FImpl->ApplyPalette();
    // The canvas measures texts from the start, as they will be.
    FImpl->Scale = FImpl->WindowScale();
    FImpl->BindCanvas();
    TFocusTracker::Add(this, [this](bool Inside) {
        auto& Waiting = FImpl->Waiting;
        if (Inside)
            FImpl->Wait(TImpl::EnterNotification);
        else if (std::erase_if(Waiting,
                               [](const TMessage& M) { return M.Msg == TImpl::EnterNotification; }) == 0)
            DoExit();
    });
}

TCustomControl::~TCustomControl() {
    BeginDestruction();
    FImpl->SaveDispatchers();
    // Before the widget loses its inside: owned widgets that go make Qt send events to it.
    Unlink();
}

void TCustomControl::BeginDestruction() {
    if (FImpl->DestructionBegun) return;
    FImpl->DestructionBegun = true;
    Destroying();
    TFocusTracker::Remove(this);
    ForgetDragOf(this);
    if (FHandleAllocated) DestroyWnd();
    TPaintScheduler::Remove(this);
    FImpl->KillTimers();
    FImpl->Waiting.clear();
    FFont->OnChange = nullptr;
    FCanvas->OnOpen = nullptr;
}

// --- the window handle --------------------------------------------------------------------------------------------

void TCustomControl::HandleNeeded() {
    if (FHandleAllocated || FImpl->CreatingHandle || FImpl->DestructionBegun) return;
    const TControlGuard Guard(this);
    FImpl->CreateHandle();
    if (!Guard) return;
    FImpl->ClientResized(true);
}

void TCustomControl::TImpl::CreateHandle() {
    const TControlGuard Guard(&Control);
    CreatingHandle = true;
    Control.FParams = TCreateParams();
    Control.CreateParams(Control.FParams);
    if (!Guard) return;
    Control.CreateWnd();
    if (!Guard) return;
    CreatingHandle = false;
}

void TCustomControl::RecreateWnd() {
    if (!FHandleAllocated || FImpl->CreatingHandle || FImpl->DestructionBegun) return;
    // The widget stays, and with it the focus: only our own state is made anew.
    const TControlGuard Guard(this);
    DestroyWnd();
    if (!Guard) return;
    HandleNeeded();
    if (!Guard) return;
    Invalidate();
}

void TCustomControl::CreateParams(TCreateParams& Params) {
    if (FTabStop) Params.Style |= WS_TABSTOP;
    if (FControlStyle.Contains(csDoubleClicks)) Params.WindowClassStyle |= CS_DBLCLKS;
    if (FBorderStyle == bsSingle) {
        if (FCtl3D)
            Params.ExStyle |= WS_EX_CLIENTEDGE;
        else
            Params.Style |= WS_BORDER;
    }
}

void TCustomControl::CreateWnd() { CreateWindowHandle(FParams); }

void TCustomControl::CreateWindowHandle(const TCreateParams& Params) {
    FParams = Params;
    FImpl->ApplyFrame(Params);
    FImpl->ApplyFocusPolicy();
    FImpl->ApplyDirection();
    const bool Exists[] = {(Params.Style & WS_HSCROLL) != 0, (Params.Style & WS_VSCROLL) != 0};
    for (const int Bar : {SB_HORZ, SB_VERT}) {
        FImpl->FindBar(Bar)->MayExist = Exists[Bar];
        if (!Exists[Bar]) FImpl->SetBarShown(Bar, false);
    }
    FImpl->LayOut();
    FHandleAllocated = true;
    FImpl->FitSurface();
    FImpl->WatchWindow();
}

void TCustomControl::DestroyWnd() {
    FHandleAllocated = false;
    FImpl->KillTimers();
    FImpl->DropSurface();
}

void TCustomControl::TImpl::WatchWindow() {
    if (Control.isVisible()) TPaintScheduler::Get().Watch(Control.window());
}

void TCustomControl::TImpl::ApplyFrame(const TCreateParams& Params) {
    if ((Params.ExStyle & WS_EX_CLIENTEDGE) != 0) {
        Control.setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    } else if ((Params.Style & WS_BORDER) != 0) {
        Control.setFrameStyle(QFrame::Box | QFrame::Plain);
        Control.setLineWidth(1);
    } else {
        Control.setFrameStyle(QFrame::NoFrame);
    }
}

void TCustomControl::TImpl::ApplyFocusPolicy() {
    if (Control.focusPolicy() != FocusPolicy) return;
    FocusPolicy = (Control.FParams.Style & WS_TABSTOP) != 0 ? Qt::StrongFocus : Qt::ClickFocus;
    Control.setFocusPolicy(FocusPolicy);
}

// --- size and place -----------------------------------------------------------------------------------------------

void TCustomControl::TImpl::LayOut() {
    if (Control.isVisible()) return; // Qt has done it
    QResizeEvent Event(Control.size(), Control.size());
    QCoreApplication::sendEvent(&Control, &Event);
}

void TCustomControl::TImpl::ClientResized(bool Always) {
    {
        const TControlGuard Guard(&Control);
        ChildrenRoomChanged();
        if (!Guard) return;
    }
    if (!Control.FHandleAllocated || DestructionBegun) return;
    FitSurface();
    const QSize Size = Control.viewport()->size();
    if (!Always && Size == ToldSize) return;
    // Mirrored contents hang on the right edge.
    if (Size.width() != ToldSize.width() && Control.UseRightToLeftAlignment()) Control.Invalidate();
    ToldSize = Size;
    Control.Perform(WM_SIZE, 0, MakePointParam(Size.width(), Size.height()));
}

int TCustomControl::GetClientWidth() const {
    if (!isVisible() && testAttribute(Qt::WA_PendingResizeEvent)) FImpl->LayOut();
    return viewport()->width();
}

int TCustomControl::GetClientHeight() const {
    if (!isVisible() && testAttribute(Qt::WA_PendingResizeEvent)) FImpl->LayOut();
    return viewport()->height();
}

void TCustomControl::SetBounds(int ALeft, int ATop, int AWidth, int AHeight) {
    AWidth = std::max(AWidth, 0);
    AHeight = std::max(AHeight, 0);
    const TControlGuard Guard(this);
    if (AWidth != GetWidth() || AHeight != GetHeight()) {
        const bool Allowed = FImpl->CheckSize(AWidth, AHeight);
        if (!Guard) return;
        if (!Allowed) {
            AWidth = GetWidth();
            AHeight = GetHeight();
        }
    }
    FImpl->AskedSize = QSize(AWidth, AHeight);
    setGeometry(ALeft, ATop, AWidth, AHeight);
    if (!Guard) return;
    FImpl->LayOut();
    FImpl->ClientResized();
}

void TCustomControl::SetClientSize(int AWidth, int AHeight) {
    SetBounds(GetLeft(), GetTop(), GetWidth() - GetClientWidth() + AWidth,
              GetHeight() - GetClientHeight() + AHeight);
}

TPoint TCustomControl::ClientToScreen(TPoint Point) const {
    const QPoint Result = viewport()->mapToGlobal(QPoint(Point.X, Point.Y));
    return {Result.x(), Result.y()};
}

TPoint TCustomControl::ScreenToClient(TPoint Point) const {
    const QPoint Result = viewport()->mapFromGlobal(QPoint(Point.X, Point.Y));
    return {Result.x(), Result.y()};
}

QSize TCustomControl::sizeHint() const {
    return FImpl->AskedSize.isEmpty() ? QAbstractScrollArea::sizeHint() : FImpl->AskedSize;
}

QSize TCustomControl::minimumSizeHint() const {
    return QAbstractScrollArea::minimumSizeHint().boundedTo(QSize(64, 48));
}

// --- properties ---------------------------------------------------------------------------------------------------

void TCustomControl::SetColor(TColor Value) {
    FParentColor = false;
    ChangeColor(Value);
}

void TCustomControl::ChangeColor(TColor Value) {
    if (FColor == Value) return;
    FColor = Value;
    if (FBorderWidth > 0) update();
    Invalidate();
    TellChildren();
}

void TCustomControl::SetParentColor(bool Value) {
    if (FParentColor == Value) return;
    FParentColor = Value;
    if (!Value) return;
    const TCustomControl* const Parent = FindParentControl();
    // What the toolkit's own windows show.
    ChangeColor(Parent ? Parent->GetColor() : clBtnFace);
}

void TCustomControl::SetFont(TFont* Value) { FFont->Assign(Value); }

void TCustomControl::SetParentFont(bool Value) {
    if (FParentFont == Value) return;
    FParentFont = Value;
    if (Value) FImpl->TakeWidgetFont();
}

void TCustomControl::TImpl::FontChanged() {
    if (ApplyingFont || DestructionBegun) return;
    Control.FParentFont = false;
    ApplyingFont = true;
    Control.setFont(ToQt(*Control.FFont, Control.font()));
    ApplyingFont = false;
    Control.Perform(CM_FONTCHANGED, 0, 0);
}

void TCustomControl::TImpl::TakeWidgetFont() {
    ApplyingFont = true;
    if (!Control.FParentFont || Control.testAttribute(Qt::WA_SetFont)) Control.setFont(QFont());
    const TColor Color = Control.FFont->GetColor();
    Control.FFont->SetFromQt(Control.font());
    Control.FFont->SetColor(Color);
    ApplyingFont = false;
    Control.Perform(CM_FONTCHANGED, 0, 0);
}

void TCustomControl::TImpl::ApplyPalette() {
    QPalette Palette = Control.palette();
    // Disabled controls look disabled; an inactive window keeps its colours.
    if (!Control.isEnabled()) {
        for (int Role = 0; Role < QPalette::NColorRoles; ++Role) {
            const auto ColorRole = static_cast<QPalette::ColorRole>(Role);
            Palette.setBrush(QPalette::Active, ColorRole, Palette.brush(QPalette::Disabled, ColorRole));
        }
    }
    Palette.setCurrentColorGroup(QPalette::Active);
    Control.FCanvas->SetPalette(Palette);
}

void TCustomControl::TImpl::ScaleChanged() {
    const double NewScale = WindowScale();
    if (NewScale == Scale) return;
    if (Control.FHandleAllocated) {
        FitSurface();
    } else {
        Scale = NewScale;
        BindCanvas();
    }
    // Texts are shaped for the scale, so their sizes may differ by a rounding.
    Control.Perform(CM_FONTCHANGED, 0, 0);
}

void TCustomControl::SetCtl3D(bool Value) {
    FParentCtl3D = false;
    ChangeCtl3D(Value);
}

void TCustomControl::ChangeCtl3D(bool Value) {
    if (FCtl3D == Value) return;
    FCtl3D = Value;
    const TControlGuard Guard(this);
    Perform(CM_CTL3DCHANGED, 0, 0);
    if (Guard) TellChildren();
}

void TCustomControl::SetParentCtl3D(bool Value) {
    FParentCtl3D = Value;
    if (!Value) return;
    const TCustomControl* const Parent = FindParentControl();
    ChangeCtl3D(!Parent || Parent->GetCtl3D());
}

void TCustomControl::SetBorderStyle(TBorderStyle Value) {
    if (FBorderStyle == Value) return;
    FBorderStyle = Value;
    RecreateWnd();
}

void TCustomControl::SetBorderWidth(int Value) {
    Value = std::max(Value, 0);
    if (FBorderWidth == Value) return;
    FBorderWidth = Value;
    const TControlGuard Guard(this);
    setViewportMargins(Value, Value, Value, Value);
    FImpl->LayOut();
    FImpl->ClientResized();
    if (Guard) Perform(CM_BORDERCHANGED, 0, 0);
}

void TCustomControl::SetTabStop(bool Value) {
    if (FTabStop == Value) return;
    FTabStop = Value;
    if (!FHandleAllocated) return;
    FParams.Style = Value ? FParams.Style | WS_TABSTOP : FParams.Style & ~WS_TABSTOP;
    FImpl->ApplyFocusPolicy();
}

void TCustomControl::SetBiDiMode(TBiDiMode Value) {
    FParentBiDiMode = false;
    if (FBiDiMode == Value) return;
    FBiDiMode = Value;
    FImpl->ApplyDirection();
    Perform(CM_BIDIMODECHANGED, 0, 0);
}

void TCustomControl::SetParentBiDiMode(bool Value) {
    if (FParentBiDiMode == Value) return;
    FParentBiDiMode = Value;
    if (!Value) return;
    FImpl->ApplyingDirection = true;
    unsetLayoutDirection();
    FImpl->ApplyingDirection = false;
    const TBiDiMode Mode = isRightToLeft() ? bdRightToLeft : bdLeftToRight;
    if (FBiDiMode == Mode) return;
    FBiDiMode = Mode;
    Perform(CM_BIDIMODECHANGED, 0, 0);
}

void TCustomControl::TImpl::ApplyDirection() {
    if (Control.FParentBiDiMode) return; // the widget's direction leads
    ApplyingDirection = true;
    Control.setLayoutDirection(Control.UseRightToLeftScrollBar() ? Qt::RightToLeft : Qt::LeftToRight);
    ApplyingDirection = false;
    LayOut();
}

void TCustomControl::SetCursor(TCursor Value) {
    FCursor = Value;
    ApplyCursor(Value);
}

void TCustomControl::ApplyCursor(TCursor Value) {
    if (FAppliedCursor == Value) return;
    FAppliedCursor = Value;
    if (Value == crDefault)
        viewport()->unsetCursor();
    else
        viewport()->setCursor(CursorShape(Value));
}

unsigned TCustomControl::DrawTextBiDiModeFlags(unsigned Flags) const {
    if (UseRightToLeftAlignment()) {
        if ((Flags & DT_RIGHT) != 0)
            Flags &= ~DT_RIGHT;
        else if ((Flags & DT_CENTER) == 0)
            Flags |= DT_RIGHT;
    }
    if (UseRightToLeftReading()) Flags |= DT_RTLREADING;
    return Flags;
}

// --- changes from outside -----------------------------------------------------------------------------------------

void TCustomControl::changeEvent(QEvent* Event) {
    QAbstractScrollArea::changeEvent(Event);
    if (FImpl->DestructionBegun) return;
    switch (Event->type()) {
    case QEvent::FontChange:
        if (FParentFont && !FImpl->ApplyingFont) FImpl->TakeWidgetFont();
        break;
    case QEvent::PaletteChange:
        FImpl->ApplyPalette();
        Invalidate();
        break;
    case QEvent::EnabledChange:
        FImpl->ApplyPalette();
        Invalidate();
        if (!isEnabled()) FImpl->CancelPress();
        break;
    case QEvent::StyleChange:
        FImpl->LayOut();
        FImpl->ClientResized();
        Invalidate();
        break;
    case QEvent::LayoutDirectionChange:
        if (FImpl->ApplyingDirection || !FParentBiDiMode) break;
        FBiDiMode = isRightToLeft() ? bdRightToLeft : bdLeftToRight;
        Perform(CM_BIDIMODECHANGED, 0, 0);
        break;
    default:
        break;
    }
}

void TCustomControl::showEvent(QShowEvent* Event) {
    QAbstractScrollArea::showEvent(Event);
    FImpl->WatchWindow();
    const TControlGuard Guard(this);
    HandleNeeded();
    if (!Guard) return;
    // While the control was hidden Qt did not hear of what became invalid.
    if (!FInvalid.isEmpty()) viewport()->update();
    FImpl->ClientResized();
    if (!Guard) return;
    Perform(CM_SHOWINGCHANGED, 1, 0);
}

void TCustomControl::hideEvent(QHideEvent* Event) {
    QAbstractScrollArea::hideEvent(Event);
    const TControlGuard Guard(this);
    FImpl->CancelPress();
    if (!Guard) return;
    Perform(CM_SHOWINGCHANGED, 0, 0);
}

void TCustomControl::CMFontChanged(TMessage&) {
    FCanvas->SetFont(FFont.get());
    Invalidate();
}

void TCustomControl::CMCtl3DChanged(TMessage&) {
    if (FBorderStyle == bsSingle) RecreateWnd();
}

void TCustomControl::CMBorderChanged(TMessage&) { Invalidate(); }

void TCustomControl::CMShowingChanged(TMessage&) {}

void TCustomControl::CMBiDiModeChanged(TMessage&) {
    // Bars and everything mirrored are made anew.
    RecreateWnd();
}

bool TCustomControl::HasListener(const char* Signal) const {
    const int Index = metaObject()->indexOfSignal(Signal);
    return Index >= 0 && isSignalConnected(metaObject()->method(Index));
}

} // namespace quill
