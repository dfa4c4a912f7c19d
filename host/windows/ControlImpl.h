// The inside of a control: surface, input state, scroll bars and timers. For the sources of the control only.
#pragma once

#include "host/windows/Controls.h"
#include "host/windows/ScrollBars.h"

#include <QEvent>
#include <QImage>
#include <QPointer>

#include <array>
#include <cstddef>
#include <deque>
#include <memory>
#include <utility>
#include <vector>

class QMouseEvent;
class QWheelEvent;

namespace quill {

// The platform's shape of a cursor number.
Qt::CursorShape CursorShape(TCursor Cursor);
// The control goes: a drag of it ends, one over it has no target.
void ForgetDragOf(const TCustomControl* Control);

struct TCustomControl::TImpl {
    explicit TImpl(TCustomControl& AControl) : Control(AControl) {}

    TCustomControl& Control;

    // --- window (Controls.cpp) --------------------------------------------------------------------------------
    bool CreatingHandle = false;
    bool DestructionBegun = false;
    // Changes of the widget's font and direction that we make ourselves are not to be followed.
    bool ApplyingFont = false;
    bool ApplyingDirection = false;
    // The focus policy set last by us; a different one was set by the program and is kept.
    Qt::FocusPolicy FocusPolicy = Qt::ClickFocus;
    // The size that the program asked for, the size hint in layouts.
    QSize AskedSize;
    // The client size that WM_SIZE told last.
    QSize ToldSize{-1, -1};

    void CreateHandle();
    void WatchWindow();
    void ApplyFrame(const TCreateParams& Params);
    void ApplyFocusPolicy();
    void ApplyDirection();
    // Font of the control changed: to the canvas, the children, and CM_FONTCHANGED.
    void FontChanged();
    void TakeWidgetFont();
    void ApplyPalette();
    // Another screen, perhaps with another scale.
    void ScaleChanged();
    // Lays out viewport and bars of a hidden widget, for which Qt would wait until it is shown.
    void LayOut();
    // After anything that may have changed the client size: fits the surface and sends WM_SIZE.
    void ClientResized(bool Always = false);

    // --- surface (ControlSurface.cpp) -------------------------------------------------------------------------
    // Device pixels, opaque, ratio 1. The canvas is bound to it unless redraw is off. It lies in a buffer with some
    // rows more, along which it is shifted when the contents scroll, so that most steps copy next to nothing, and with
    // some columns more.
    QImage Surface;
    std::unique_ptr<QRgb[]> SurfaceBuffer;
    int SurfaceTop = 0;    // row of the buffer where the surface begins
    int SurfaceSpare = 0;  // rows that the buffer has more
    int SurfaceStride = 0; // pixels of a row of the buffer
    QSize SurfaceClient;   // the client size that it stands for
    double Scale = 1.0;
    bool Redraw = true;
    QRegion ChangedWhileOff; // what became invalid while redraw was off
    bool Painting = false;
    // Something about surface or binding changed during Paint and waits for its end.
    bool SurfaceStale = false;
    // Paint itself invalidated: painted in the next turn, never in the same one.
    bool InvalidatedByPaint = false;
    bool EraseInvalid = false;
    bool Flushing = false;
    bool FlushScheduled = false;

    double WindowScale() const;
    QRect ClientRect() const;
    QRegion ToDevice(const QRegion& Region) const;
    void BindCanvas();
    void FitSurface();
    void DropSurface();
    void MakeSurface(int Width, int Height);
    void ShowBuffer(int Width, int Height);
    bool HasRoomFor(QSize Size) const;
    QRgb* BufferRow(int Row) const {
        return SurfaceBuffer.get() + static_cast<std::ptrdiff_t>(Row) * SurfaceStride;
    }
    // Shifts the surface so that the rows From .. To - 1 move by ShiftY; the other rows stay. What is uncovered gets
    // the control's colour. False when that would be no gain.
    bool ShiftSurface(int From, int To, int ShiftY);
    void FillSurface(const QRegion& Device);
    void AddInvalid(const QRegion& Region, bool Erase);
    void PaintInvalid();
    void EndPaint();
    void CanvasOpened();
    void Blit(QPainter& Painter, const QRegion& Region);
    // The device pixel at which the surface begins in its window.
    QPoint DeviceOrigin() const;

    // --- input (ControlInput.cpp) -----------------------------------------------------------------------------
    // Posted messages, and notifications that wait until Qt's own bookkeeping is done: CM_MOUSEENTER, CM_MOUSELEAVE,
    // EnterNotification, ResizeNotification.
    static constexpr unsigned EnterNotification = 0;
    static constexpr unsigned ResizeNotification = 1;
    std::deque<TMessage> Waiting;
    bool WakeUpPosted = false;
    // Calls of handlers that Qt made through one of our child widgets and that are still running.
    int Dispatching = 0;
    class TDispatch {
    public:
        explicit TDispatch(TImpl& AImpl) : Impl(AImpl), Guard(&AImpl.Control) { ++Impl.Dispatching; }
        ~TDispatch() {
            if (Guard) --Impl.Dispatching;
        }
        TDispatch(const TDispatch&) = delete;
        TDispatch& operator=(const TDispatch&) = delete;

    private:
        TImpl& Impl;
        TControlGuard Guard;
    };
    // What was turned and makes no whole notch yet; what a device moved in pixels and makes no whole unit of a notch.
    int WheelDelta = 0;
    int HorizontalWheelDelta = 0;
    QPoint WheelPixelRest;
    bool WheelHandled = false;
    bool SendingComposed = false;

    // Asks for a call of WokenUp from the event loop.
    void WakeUp();
    void WokenUp();
    void Wait(unsigned Msg, std::uintptr_t WParam = 0, std::intptr_t LParam = 0);
    // False when the control is gone afterwards.
    bool DeliverWaiting();
    TPoint ClientPos(const QMouseEvent& Event) const;
    bool HandleMouse(QMouseEvent& Event);
    bool HandleWheel(QWheelEvent& Event);
    QPoint TakeWheelDelta(const QWheelEvent& Event);
    void DropWheelRests();
    // Sends a key or character; consumed tells that CharCode became 0. Handled collects the results.
    bool SendKey(unsigned Msg, char32_t CharCode, TShiftState Shift, bool& Handled, bool& Consumed);
    // When a character moves the focus to a child (opens an editor), the rest of the text goes there.
    bool SendText(const QString& Text, TShiftState Shift, bool& Handled);
    bool WantsSpecialKey(std::uint16_t Key, TShiftState Shift);
    void CancelPress();
    // Keeps the widgets through which Qt is calling us alive until it has returned.
    void SaveDispatchers();

    // --- scroll bars (ControlScrollBars.cpp) ------------------------------------------------------------------
    struct TBar {
        QPointer<TControlScrollBar> Widget;
        int Pos = 0;
        bool MayExist = false;
        bool Shown = false;
    };
    std::array<TBar, 2> Bars; // SB_HORZ, SB_VERT

    void InstallBars();
    TBar* FindBar(int Bar);
    const TBar* FindBar(int Bar) const { return const_cast<TImpl*>(this)->FindBar(Bar); }
    void SetBarShown(int Bar, bool Show);
    void BarAction(int Bar, int Action);
    void BarReleased(int Bar);
    void SendScroll(int Bar, unsigned Code, int Pos);
    // The bar shows the position that the control has set.
    void SyncBar(int Bar);

    // --- place in the parent (Placement.cpp) --------------------------------------------------------------------
    // Lays out the controls of one parent; belongs to it.
    class TLayouter;
    TAlign Align = alNone;
    TAnchors Anchors{akLeft, akTop};
    // Bounds that were given, not computed, and the parent's size at that time.
    QRect AnchoredBounds;
    QSize AnchoredIn;
    bool Placing = false;
    std::unique_ptr<TSizeConstraints> Constraints;

    // False when the size must not change; may change it.
    bool CheckSize(int& Width, int& Height);
    void NotePlace(QEvent::Type Change);
    void PlaceAt(const QRect& Bounds);
    void KeepAnchors(QSize Parent);
    void RememberAnchors();
    void ChildrenRoomChanged();
    void ApplyConstraints();

    // --- hint, menu, order (ControlExtras.cpp) ------------------------------------------------------------------
    std::string Hint;
    TPopupMenu* PopupMenu = nullptr;
    int TabOrder = -1;
    bool ShowHint = false;
    bool ParentShowHint = true;
    bool UseDockManager = true;
    bool DockSite = false;

    void ApplyHint();
    void ApplyTabOrder();

    // --- timers -----------------------------------------------------------------------------------------------
    std::vector<std::pair<int, int>> Timers; // our identifier, Qt's
    void KillTimers();
};

} // namespace quill
