// The base of all windowed controls: a Qt widget that speaks the toolkit's language. It owns a retained surface, so
// that Canvas is valid at any time; it turns Qt events into typed messages; and it keeps the state "handle exists"
// on its own, so that what depends on it works without showing a window.
#pragma once

#include "host/base/Events.h"
#include "host/base/Objects.h"
#include "host/graphics/Canvas.h"
#include "host/windows/Messages.h"
#include "host/windows/Placement.h"

#include <QAbstractScrollArea>
#include <QRegion>

#include <functional>
#include <memory>
#include <string>

class QCursor;
class QScrollBar;

namespace quill {

enum TBorderStyle { bsNone, bsSingle };
enum TBiDiMode { bdLeftToRight, bdRightToLeft, bdRightToLeftNoAlign, bdRightToLeftReadingOnly };
enum TControlStyleValue {
    csAcceptsControls,
    csCaptureMouse,
    csClickEvents,
    csFramed,
    csOpaque,
    csDoubleClicks,
    csReplicatable
};
using TControlStyle = TSet<TControlStyleValue>;
enum TControlStateValue { csLButtonDown, csClicked };
using TControlState = TSet<TControlStateValue>;
enum TScrollStyle { ssNone, ssHorizontal, ssVertical, ssBoth };
// How scroll bars look: the platform's way; flat, and raised under the mouse; always flat.
enum TScrollBarLook { sblRegular, sblEncarta, sblFlat };
enum TDragMode { dmManual, dmAutomatic };
enum TDragState { dsDragEnter, dsDragLeave, dsDragMove };
enum TDragMessage { dmDragEnter, dmDragLeave, dmDragMove, dmDragDrop, dmDragCancel };
enum TDragKind { dkDrag, dkDock };

using TCursor = int;
inline constexpr TCursor crDefault = 0;
inline constexpr TCursor crNone = -1;
inline constexpr TCursor crArrow = -2;
inline constexpr TCursor crCross = -3;
inline constexpr TCursor crIBeam = -4;
inline constexpr TCursor crSizeNS = -7;
inline constexpr TCursor crSizeWE = -9;
inline constexpr TCursor crHourGlass = -11;
inline constexpr TCursor crDrag = -12;
inline constexpr TCursor crNoDrop = -13;
inline constexpr TCursor crHSplit = -14;
inline constexpr TCursor crVSplit = -15;
inline constexpr TCursor crHandPoint = -21;

// Window styles that CreateParams fills in.
inline constexpr unsigned WS_TABSTOP = 0x10000;
inline constexpr unsigned WS_HSCROLL = 0x100000;
inline constexpr unsigned WS_VSCROLL = 0x200000;
inline constexpr unsigned WS_BORDER = 0x800000;
inline constexpr unsigned WS_EX_CLIENTEDGE = 0x200;
inline constexpr unsigned ES_MULTILINE = 0x4;
inline constexpr unsigned CS_DBLCLKS = 8;
struct TCreateParams {
    unsigned Style = 0;
    unsigned ExStyle = 0;
    unsigned WindowClassStyle = 0;
};

using TMouseEvent =
    std::function<void(TObject* Sender, TMouseButton Button, TShiftState Shift, int X, int Y)>;
using TMouseMoveEvent = std::function<void(TObject* Sender, TShiftState Shift, int X, int Y)>;
using TKeyEvent = std::function<void(TObject* Sender, std::uint16_t& Key, TShiftState Shift)>;
using TKeyPressEvent = std::function<void(TObject* Sender, char32_t& Key)>;
using TMouseWheelEvent =
    std::function<void(TObject* Sender, TShiftState Shift, int WheelDelta, TPoint MousePos, bool& Handled)>;
using TMouseWheelUpDownEvent =
    std::function<void(TObject* Sender, TShiftState Shift, TPoint MousePos, bool& Handled)>;

class TCustomControl;
class TCustomImageList;
class TPopupMenu;  // host/windows/Menus.h
class TDragObject; // host/windows/Dragging.h

// Dragging inside the program. DragObject may be set to an object of the program's own, which stays the program's.
using TControlStartDragEvent = std::function<void(TObject* Sender, TDragObject*& DragObject)>;
using TDragOverEvent =
    std::function<void(TObject* Sender, TObject* Source, int X, int Y, TDragState State, bool& Accept)>;
using TDragDropEvent = std::function<void(TObject* Sender, TObject* Source, int X, int Y)>;
using TEndDragEvent = std::function<void(TObject* Sender, TObject* Target, int X, int Y)>;

// CM_DRAG: WParam is the TDragMessage, LParam points to the record.
struct TDragRec {
    TPoint Pos; // screen coordinates
    TObject* Source = nullptr;
    TDragObject* Object = nullptr;
    TCustomControl* Target = nullptr;
};
struct TCMDrag {
    unsigned Msg = 0;
    TDragMessage DragMessage = dmDragMove;
    TDragRec* DragRec = nullptr;
    std::intptr_t Result = 0; // whether a drop would be accepted
};

// Positions are client coordinates in device-independent pixels unless said otherwise. All protected operations of
// the toolkit are public here, so that descendants and tests can call them through the base.
//
// A handler may destroy the control: each call into application code is followed by a check (TControlGuard). Two
// kinds of notification wait until Qt has finished its own bookkeeping, which would not survive that: the mouse
// entering and leaving (CM_MOUSEENTER, CM_MOUSELEAVE) and DoEnter. They arrive before any later message to the
// control, at the latest with the next turn of the event loop.
class TCustomControl : public QAbstractScrollArea, public TComponent {
    Q_OBJECT

public:
    // AOwner destroys the control; AParent is the widget it is shown in (and destroys it as well). Whichever goes
    // first unlinks the control from the other.
    explicit TCustomControl(TComponent* AOwner, QWidget* AParent = nullptr);
    ~TCustomControl() override;

    // --- the window handle ------------------------------------------------------------------------------------
    // The handle exists from the first show or HandleNeeded until the control goes; RecreateWnd makes a new one.
    // Creation runs CreateParams, then CreateWnd, which calls CreateWindowHandle; then WM_SIZE tells the client size.
    bool HandleAllocated() const { return FHandleAllocated; }
    void HandleNeeded();
    // Destroys the handle and makes a new one at once, focus kept, everything invalid; nothing without a handle.
    void RecreateWnd();
    // Fills in the styles that the control's properties ask for; descendants add theirs.
    virtual void CreateParams(TCreateParams& Params);
    virtual void CreateWnd();
    // Applies the parameters: the frame, whether Tab stops here, whether bars may exist (WS_HSCROLL, WS_VSCROLL).
    virtual void CreateWindowHandle(const TCreateParams& Params);
    // Ends timers and drops the surface. Called by the destructor as well.
    virtual void DestroyWnd();
    const TCreateParams& GetWindowParams() const { return FParams; }

    // Shows the control in the client area of another one, which destroys it as well; hidden at first.
    void SetParent(TCustomControl* Value) { setParent(Value ? Value->viewport() : nullptr); }

    // --- size and place ---------------------------------------------------------------------------------------
    int GetClientWidth() const;
    int GetClientHeight() const;
    TRect GetClientRect() const { return {0, 0, GetClientWidth(), GetClientHeight()}; }
    // Sizes the control so that the client area gets that size (with the bars as they are now).
    void SetClientSize(int AWidth, int AHeight);
    int GetLeft() const { return x(); }
    int GetTop() const { return y(); }
    int GetWidth() const { return width(); }
    int GetHeight() const { return height(); }
    void SetBounds(int ALeft, int ATop, int AWidth, int AHeight);
    void SetLeft(int Value) { SetBounds(Value, GetTop(), GetWidth(), GetHeight()); }
    void SetTop(int Value) { SetBounds(GetLeft(), Value, GetWidth(), GetHeight()); }
    void SetWidth(int Value) { SetBounds(GetLeft(), GetTop(), Value, GetHeight()); }
    void SetHeight(int Value) { SetBounds(GetLeft(), GetTop(), GetWidth(), Value); }
    TAlign GetAlign() const;
    void SetAlign(TAlign Value);
    TAnchors GetAnchors() const;
    void SetAnchors(TAnchors Value);
    TSizeConstraints* GetConstraints();
    void SetConstraints(TSizeConstraints* Value);
    // Whether a layout of the platform gives the control its bounds.
    bool IsLaidOut() const;
    TPoint ClientToScreen(TPoint Point) const;
    TPoint ScreenToClient(TPoint Point) const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    // --- painting ---------------------------------------------------------------------------------------------
    // Draws on the control's surface, at any time. What is drawn outside Paint reaches the screen with the next
    // flush (Update, ProcessMessages or the event loop).
    TCanvas* GetCanvas() const { return FCanvas.get(); }
    // Paints what is invalid; the canvas is clipped to it, has the control's font, and a brush of its Color. The
    // clip is filled with Color before, unless the control is csOpaque or only Erase = false was asked for.
    virtual void Paint() {}
    // Marks all, or one rectangle, for the next paint. Nothing happens without a handle or while redraw is off.
    virtual void Invalidate();
    void InvalidatePixels(const TRect& Rect, bool Erase = true);
    // Brings the surface up to date now; the screen follows with the next flush. Nothing inside Paint itself.
    void Update();
    void Repaint();
    // Puts the surface on the screen now (when the window is shown), without painting invalid parts.
    void Flush();
    // Whether something waits to be painted; the invalid region's bounds, for tests.
    bool HasInvalidRegion() const { return !FInvalid.isEmpty(); }
    TRect GetInvalidBounds() const;
    // Whether everything waits already, so that finding out what else to invalidate would be wasted.
    bool IsAllInvalid() const;
    // Moves the pixels of Scroll by (DX, DY) inside Clip and invalidates what is uncovered. Falls back to
    // invalidating Clip when the distance is not a whole number of device pixels. What is still to be painted moves
    // along.
    void ScrollWindow(int DX, int DY, const TRect& Scroll, const TRect& Clip);
    // False between WM_SETREDRAW 0 and 1: nothing is invalidated, painted or drawn, the old picture stays. A state,
    // not a count; it outlives RecreateWnd.
    bool GetRedraw() const;
    // Device pixels per unit of the surface.
    double GetScale() const;
    // The surface as the user sees it, brought up to date first.
    QImage GetSurfaceImage();
    // Whether something is connected to one of our signals, named with its argument types: "changed(int)".
    bool HasListener(const char* Signal) const;
    // Bitmap of the surface for programs and tests without Qt (client size).
    std::unique_ptr<TBitmap> CaptureClient();
    // Number of Paint calls so far, for tests and benchmarks; device pixels painted by them.
    std::uint64_t GetPaintCount() const { return FPaintCount; }
    std::uint64_t GetPaintedPixels() const { return FPaintedPixels; }

    // --- properties -------------------------------------------------------------------------------------------
    TColor GetColor() const { return FColor; }
    void SetColor(TColor Value);
    TFont* GetFont() { return FFont.get(); }
    void SetFont(TFont* Value);
    bool GetParentColor() const { return FParentColor; }
    void SetParentColor(bool Value);
    bool GetParentFont() const { return FParentFont; }
    void SetParentFont(bool Value);
    bool GetCtl3D() const { return FCtl3D; }
    void SetCtl3D(bool Value);
    bool GetParentCtl3D() const { return FParentCtl3D; }
    void SetParentCtl3D(bool Value);
    TBorderStyle GetBorderStyle() const { return FBorderStyle; }
    void SetBorderStyle(TBorderStyle Value);
    // Pixels of the control's colour between border and client area, 0 or more; sends CM_BORDERCHANGED.
    int GetBorderWidth() const { return FBorderWidth; }
    void SetBorderWidth(int Value);
    bool GetTabStop() const { return FTabStop; }
    void SetTabStop(bool Value);
    // Of the control itself; inside a disabled parent it is disabled all the same.
    bool GetEnabled() const { return !testAttribute(Qt::WA_ForceDisabled); }
    void SetEnabled(bool Value) { setEnabled(Value); }
    // Whether the control is shown when its parent is; so in a new one.
    bool GetVisible() const {
        return !testAttribute(Qt::WA_WState_Hidden) || !testAttribute(Qt::WA_WState_ExplicitShowHide);
    }
    void SetVisible(bool Value) { setVisible(Value); }
    // Shown while the mouse rests over the control, with ShowHint.
    std::string GetHint() const;
    void SetHint(const std::string& Value);
    bool GetShowHint() const;
    void SetShowHint(bool Value);
    bool GetParentShowHint() const;
    void SetParentShowHint(bool Value);
    // Opened by the right mouse button and the menu key, with the menu's AutoPopup.
    TPopupMenu* GetPopupMenu() const;
    void SetPopupMenu(TPopupMenu* Value);
    // The place in the order in which Tab goes through the controls of one parent, from 0; -1 leaves it to the platform
    // (the order of creation). Equal ones keep theirs.
    int GetTabOrder() const;
    void SetTabOrder(int Value);
    // Kept for forms: there is no docking.
    bool GetUseDockManager() const;
    void SetUseDockManager(bool Value);
    bool GetDockSite() const;
    void SetDockSite(bool Value);
    // Painting always goes through a buffer; the value is kept for programs.
    bool GetDoubleBuffered() const { return FDoubleBuffered; }
    void SetDoubleBuffered(bool Value) { FDoubleBuffered = Value; }
    TBiDiMode GetBiDiMode() const { return FBiDiMode; }
    void SetBiDiMode(TBiDiMode Value);
    bool GetParentBiDiMode() const { return FParentBiDiMode; }
    void SetParentBiDiMode(bool Value);
    TCursor GetCursor() const { return FCursor; }
    void SetCursor(TCursor Value);
    // Shows a cursor without changing the property, until the next WM_SETCURSOR; for WMSetCursor.
    void ApplyCursor(TCursor Value);
    // The cursor that the mouse shows now.
    TCursor GetAppliedCursor() const { return FAppliedCursor; }
    TControlStyle GetControlStyle() const { return FControlStyle; }
    void SetControlStyle(TControlStyle Value) { FControlStyle = Value; }
    TControlState GetControlState() const { return FControlState; }
    TDragKind GetDragKind() const { return FDragKind; }
    void SetDragKind(TDragKind Value) { FDragKind = Value; }
    TDragMode GetDragMode() const { return FDragMode; }
    void SetDragMode(TDragMode Value) { FDragMode = Value; }

    bool IsRightToLeft() const { return FBiDiMode != bdLeftToRight; }
    // Whether alignment is mirrored (bdRightToLeft only).
    bool UseRightToLeftAlignment() const { return FBiDiMode == bdRightToLeft; }
    bool UseRightToLeftReading() const { return FBiDiMode != bdLeftToRight; }
    bool UseRightToLeftScrollBar() const {
        return FBiDiMode == bdRightToLeft || FBiDiMode == bdRightToLeftNoAlign;
    }
    // DrawText flags as they are meant in the control's direction: left and right swap under right-to-left
    // alignment, and right-to-left reading is added.
    unsigned DrawTextBiDiModeFlags(unsigned Flags) const;

    // --- focus ------------------------------------------------------------------------------------------------
    // Whether the control's window has the keyboard focus.
    virtual bool Focused() const;
    // Whether the keyboard focus is in the control or in one of its children (an editor).
    bool ContainsFocus() const;
    // DoEnter has run when this returns.
    void SetFocus();
    // Whether the control's window is a dialog, which has keys of its own.
    bool IsInDialog() const;
    bool CanFocus() const { return isEnabled() && isVisible(); }

    // --- scroll bars ------------------------------------------------------------------------------------------
    // Bar is SB_HORZ or SB_VERT. What the user does with a bar arrives as WM_HSCROLL or WM_VSCROLL; the bar follows
    // the thumb while it is dragged and otherwise waits for SetScrollPos. These operations send no message.
    void SetScrollRange(int Bar, int MinPos, int MaxPos, bool Redraw);
    void GetScrollRange(int Bar, int& MinPos, int& MaxPos) const;
    int SetScrollPos(int Bar, int Pos, bool Redraw);
    int GetScrollPos(int Bar) const;
    // The part of the range that is visible; decides the thumb's length.
    void SetScrollPage(int Bar, int Page);
    // Does nothing when the window was created without that bar (WS_HSCROLL, WS_VSCROLL).
    void ShowScrollBar(int Bar, bool Show);
    bool IsScrollBarShown(int Bar) const;
    // Thickness of a vertical (horizontal) bar in pixels.
    int GetScrollBarSize(int Bar) const;
    // The look of both bars. Background lies under thumb and arrows of the flat looks; a system colour follows the
    // palette. Bars of another thickness change the client size.
    void SetScrollBarLook(TScrollBarLook Look, TColor Background, bool Redraw);
    TScrollBarLook GetScrollBarLook() const;
    // The pixels that one line of each bar stands for, by which devices that report pixels scroll (the contents then
    // follow the finger). An extent of 0 is a control that the wheel does not scroll by itself.
    virtual TPoint GetWheelLine() { return {}; }

    // --- timers -----------------------------------------------------------------------------------------------
    // WM_TIMER with that identifier every Interval milliseconds; setting it again restarts it.
    void SetTimer(int TimerID, int Interval);
    void KillTimer(int TimerID);
    bool HasTimer(int TimerID) const;

    // --- messages ---------------------------------------------------------------------------------------------
    // Feeds one message through WndProc, as the window system would; returns its result.
    std::intptr_t Perform(unsigned Msg, std::uintptr_t WParam, std::intptr_t LParam);
    // Feeds the message once what runs now is done: before any later event reaches the control, at the latest with the
    // next turn of the event loop. Messages keep their order; those of a control that goes are dropped.
    void PostMessage(unsigned Msg, std::uintptr_t WParam, std::intptr_t LParam);
    // Dispatches to the typed handlers below.
    virtual void WndProc(TMessage& Message);
    virtual void WMMouseMove(TWMMouse& Message);
    virtual void WMLButtonDown(TWMMouse& Message);
    virtual void WMLButtonUp(TWMMouse& Message);
    virtual void WMLButtonDblClk(TWMMouse& Message);
    virtual void WMRButtonDown(TWMMouse& Message);
    virtual void WMRButtonUp(TWMMouse& Message);
    virtual void WMRButtonDblClk(TWMMouse& Message);
    virtual void WMMButtonDown(TWMMouse& Message);
    virtual void WMMButtonUp(TWMMouse& Message);
    // Result: whether the wheel was used; otherwise the parents get it.
    virtual void WMMouseWheel(TMessage& Message);
    virtual void WMKeyDown(TWMKey& Message);
    virtual void WMKeyUp(TWMKey& Message);
    virtual void WMChar(TWMKey& Message);
    virtual void WMHScroll(TWMScroll& Message);
    virtual void WMVScroll(TWMScroll& Message);
    virtual void WMTimer(TWMTimer& Message);
    virtual void WMSize(TWMSize& Message);
    virtual void WMSetFocus(TMessage& Message);
    virtual void WMKillFocus(TMessage& Message);
    virtual void WMCancelMode(TMessage& Message);
    virtual void WMSetRedraw(TMessage& Message);
    // The cursor for the position in LParam; Result 1 when the handler has set one.
    virtual void WMSetCursor(TMessage& Message);
    virtual void WMCut(TMessage& Message);
    virtual void WMCopy(TMessage& Message);
    virtual void WMPaste(TMessage& Message);
    virtual void CMMouseEnter(TMessage& Message);
    virtual void CMMouseLeave(TMessage& Message);
    virtual void CMFontChanged(TMessage& Message);
    virtual void CMCtl3DChanged(TMessage& Message);
    virtual void CMBorderChanged(TMessage& Message);
    virtual void CMShowingChanged(TMessage& Message);
    virtual void CMBiDiModeChanged(TMessage& Message);
    // Result 1: the control wants the key in CharCode although a dialog or a parent would use it: Tab (which then
    // does not move the focus), Enter, Esc, arrows, paging keys. It does not go on to the parents then.
    virtual void CMWantSpecialKey(TWMKey& Message);
    // Whether WM_CHAR follows a WM_KEYDOWN although that was consumed.
    virtual bool SendsConsumedChar(std::uint16_t /*Key*/) const { return false; }
    // Whether the WM_CHAR that is being handled comes from an input method, not from a key.
    bool IsComposedText() const;
    // How a standard key of Cut, Copy or Paste becomes Msg (WM_CUT, WM_COPY or WM_PASTE) when WM_KEYDOWN has left it: not
    // at all, unless a menu of the program has it as a shortcut, or even then. A Result of 0 leaves it to the parents.
    enum class TClipboardKey { Ignored, AfterMenus, BeforeMenus };
    virtual TClipboardKey GetClipboardKey(unsigned /*Msg*/) const { return TClipboardKey::Ignored; }

    // --- dragging ---------------------------------------------------------------------------------------------
    // Starts a drag with the mouse button that is held: at once, or when the mouse has gone Threshold pixels (the
    // platform's distance for -1). OnStartDrag is called in any case. Nothing while another drag goes on.
    void BeginDrag(bool Immediate, int Threshold = -1);
    // Ends a drag of this control.
    void EndDrag(bool Drop);
    // Whether a drag of this control goes on.
    bool IsDragSource() const;
    TCursor GetDragCursor() const { return FDragCursor; }
    void SetDragCursor(TCursor Value) { FDragCursor = Value; }
    virtual void DoStartDrag(TDragObject*& DragObject);
    // Target is the control of the drop, null when there was none; the point is in it, or else in this control.
    virtual void DoEndDrag(TObject* Target, int X, int Y);
    virtual void DragCanceled();
    // Accepted is what a handler of OnDragOver accepts; without a handler nothing is.
    virtual void DragOver(TObject* Source, int X, int Y, TDragState State, bool& Accept);
    virtual void DragDrop(TObject* Source, int X, int Y);
    // The picture of drags that start here; null for none.
    virtual TCustomImageList* GetDragImages() { return nullptr; }
    virtual void CMDrag(TCMDrag& Message);

    // --- input, after dispatch --------------------------------------------------------------------------------
    virtual void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y);
    virtual void MouseMove(TShiftState Shift, int X, int Y);
    virtual void MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y);
    virtual void Click();
    virtual void DblClick();
    virtual void KeyDown(std::uint16_t& Key, TShiftState Shift);
    virtual void KeyUp(std::uint16_t& Key, TShiftState Shift);
    virtual void KeyPress(char32_t& Key);
    // The focus came into the control or one of its children, or left them for another control of the same window.
    virtual void DoEnter();
    virtual void DoExit();
    // WheelDelta in eighths of a degree, 120 a notch; positive away from the user. MousePos in screen coordinates.
    virtual bool DoMouseWheel(TShiftState Shift, int WheelDelta, TPoint MousePos);
    virtual bool DoMouseWheelDown(TShiftState Shift, TPoint MousePos);
    virtual bool DoMouseWheelUp(TShiftState Shift, TPoint MousePos);
    // Whether the left button is held on this control (capture).
    bool GetMouseCapture() const { return FMouseCapture; }
    void SetMouseCapture(bool Value) { FMouseCapture = Value; }

    TNotifyEvent OnClick;
    TNotifyEvent OnDblClick;
    TNotifyEvent OnEnter;
    TNotifyEvent OnExit;
    TMouseEvent OnMouseDown;
    TMouseEvent OnMouseUp;
    TMouseMoveEvent OnMouseMove;
    TMouseWheelEvent OnMouseWheel;
    TMouseWheelUpDownEvent OnMouseWheelDown;
    TMouseWheelUpDownEvent OnMouseWheelUp;
    TKeyEvent OnKeyDown;
    TKeyEvent OnKeyUp;
    TKeyPressEvent OnKeyPress;
    TControlStartDragEvent OnStartDrag;
    TDragOverEvent OnDragOver;
    TDragDropEvent OnDragDrop;
    TEndDragEvent OnEndDrag;
    TCanResizeEvent OnCanResize;
    TConstrainedResizeEvent OnConstrainedResize;
    // The size has changed; told from the event loop, once for several changes.
    TNotifyEvent OnResize;
    TStartDockEvent OnStartDock;
    TEndDockEvent OnEndDock;
    TDockDropEvent OnDockDrop;
    TDockOverEvent OnDockOver;
    TGetSiteInfoEvent OnGetSiteInfo;
    TUnDockEvent OnUnDock;

    // --- forms ------------------------------------------------------------------------------------------------
    const TClassInfo* GetClassInfo() const override;
    // The control in which this one is shown.
    TComponent* GetParentComponent() const override;
    void SetParentComponent(TComponent* Value) override;
    void Notification(TComponent* AComponent, TOperation Operation) override;
    void Loaded() override;
    // Tells the designer that lays the control out (SetDesigning) that it was changed by its own means and not through
    // the designer: a column was sized on the form. Says nothing at any other time.
    virtual void UpdateDesigner();

Q_SIGNALS:
    // For designers: UpdateDesigner says so. What a form of the control would hold has changed.
    void designerModified();
    void clicked();
    void doubleClicked();

protected:
    bool event(QEvent* Event) override;
    bool viewportEvent(QEvent* Event) override;
    void paintEvent(QPaintEvent* Event) override;
    void keyPressEvent(QKeyEvent* Event) override;
    void keyReleaseEvent(QKeyEvent* Event) override;
    void inputMethodEvent(QInputMethodEvent* Event) override;
    void focusInEvent(QFocusEvent* Event) override;
    void focusOutEvent(QFocusEvent* Event) override;
    bool focusNextPrevChild(bool Next) override;
    void timerEvent(QTimerEvent* Event) override;
    void showEvent(QShowEvent* Event) override;
    void hideEvent(QHideEvent* Event) override;
    void changeEvent(QEvent* Event) override;
    void scrollContentsBy(int DX, int DY) override;
    void contextMenuEvent(QContextMenuEvent* Event) override;

    void IncludeControlState(TControlStateValue Value) { FControlState.Include(Value); }
    // Feeds the posted messages now. False when the control is gone afterwards.
    bool DeliverMessages();
    // To be called first by the most derived destructors: marks csDestroying and ends input and timers.
    void BeginDestruction();

private:
    struct TImpl;

    TCustomControl* FindParentControl() const;
    void FollowParent();
    void TellChildren() const;
    void ChangeColor(TColor Value);
    void ChangeCtl3D(bool Value);
    void ChangeShowHint(bool Value);

    std::unique_ptr<TImpl> FImpl;
    std::unique_ptr<TCanvas> FCanvas;
    std::unique_ptr<TFont> FFont;
    QRegion FInvalid;
    TCreateParams FParams;
    TControlStyle FControlStyle;
    TControlState FControlState;
    TColor FColor = clWindow;
    TBorderStyle FBorderStyle = bsSingle;
    int FBorderWidth = 0;
    TBiDiMode FBiDiMode = bdLeftToRight;
    TDragKind FDragKind = dkDrag;
    TDragMode FDragMode = dmManual;
    TCursor FDragCursor = crDrag;
    TCursor FCursor = crDefault;
    TCursor FAppliedCursor = crDefault;
    std::uint64_t FPaintCount = 0;
    std::uint64_t FPaintedPixels = 0;
    bool FHandleAllocated = false;
    bool FParentColor = true;
    bool FParentFont = true;
    bool FParentCtl3D = true;
    bool FParentBiDiMode = true;
    bool FCtl3D = true;
    bool FTabStop = false;
    bool FDoubleBuffered = false;
    bool FMouseCapture = false;
};

// Tells whether a control still exists after application code has run; false once its destruction has begun.
// Cheap, made on the stack before the call: TControlGuard Guard(this); Handler(); if (!Guard) return;
class TControlGuard {
public:
    // Guarding changes nothing that the control shows, so a const control will do.
    explicit TControlGuard(const TCustomControl* Control) : FGuard(const_cast<TCustomControl*>(Control)) {}
    explicit operator bool() const { return !FGuard.IsGone(); }

private:
    TComponentGuard FGuard;
};

} // namespace quill
