#include "oledragdrop/DragImageList.h"

namespace quill {

namespace {

// A point of the client area, relative to the outer edge of the window.
TPoint ToWindow(HWND Window, int X, int Y) {
    if (!Window) return {X, Y};
    const TPoint Screen = Window->ClientToScreen({X, Y});
    const TRect Outer = GetWindowRect(Window);
    return {Screen.X - Outer.Left, Screen.Y - Outer.Top};
}

} // namespace

TNVDragImageList::TNVDragImageList(TComponent* AOwner, int AWidth, int AHeight)
    : TCustomImageList(AOwner, AWidth, AHeight) {
    TNVDragImageList::Initialize();
}

TNVDragImageList::~TNVDragImageList() {
    Destroying();
    EndDrag();
}

void TNVDragImageList::Initialize() { FDragCursor = crNone; }

TPoint TNVDragImageList::GetHotSpot() {
    TPoint Result;
    if (FDragging) ImageList_GetDragImage(nullptr, &Result);
    return Result;
}

bool TNVDragImageList::SetDragImage(int Index, int HotSpotX, int HotSpotY) {
    if (!HandleAllocated()) return false;
    FDragIndex = Index;
    FDragHotSpot = {HotSpotX, HotSpotY};
    ImageList_BeginDrag(*this, Index, HotSpotX, HotSpotY);
    FDragging = true;
    return true;
}

void TNVDragImageList::SetDragCursor(TCursor Value) {
    if (FDragCursor == Value) return;
    FDragCursor = Value;
    if (FDragging) CombineDragCursor();
}

void TNVDragImageList::CombineDragCursor() {
    if (FDragCursor == crNone) return;
    TPoint CursorHotSpot;
    const TBitmap Picture = CursorPicture(FDragCursor, CursorHotSpot);
    TImageList Cursors(nullptr, GetCursorSize(), GetCursorSize());
    Cursors.Add(Picture);
    Cursors.Add(Picture);
    ImageList_SetDragCursorImage(Cursors, 0, 0, 0);
    TPoint HotSpot;
    ImageList_GetDragImage(nullptr, &HotSpot);
    ImageList_SetDragCursorImage(Cursors, 1, HotSpot.X, HotSpot.Y);
}

bool TNVDragImageList::BeginDrag(HWND Window, int X, int Y, int HotSpotX, int HotSpotY) {
    if (!HandleAllocated()) return false;
    if (!FDragging) SetDragImage(FDragIndex, HotSpotX, HotSpotY);
    CombineDragCursor();
    return DragLock(Window, X, Y);
}

bool TNVDragImageList::DragLock(HWND Window, int X, int Y) {
    if (!HandleAllocated() || Window == FDragHandle) return false;
    DragUnlock();
    FDragHandle = Window;
    FreeNotification(Window);
    const TPoint Place = ToWindow(Window, X, Y);
    return ImageList_DragEnter(Window, Place.X, Place.Y);
}

void TNVDragImageList::DragUnlock() {
    if (!FDragHandle) return;
    ImageList_DragLeave(FDragHandle);
    RemoveFreeNotification(FDragHandle);
    FDragHandle = nullptr;
}

bool TNVDragImageList::DragMove(int X, int Y) {
    if (!HandleAllocated()) return false;
    const TPoint Place = ToWindow(FDragHandle, X, Y);
    return ImageList_DragMove(Place.X, Place.Y);
}

void TNVDragImageList::ShowDragImage() {
    if (HandleAllocated()) ImageList_DragShowNolock(true);
}

void TNVDragImageList::HideDragImage() {
    if (HandleAllocated()) ImageList_DragShowNolock(false);
}

bool TNVDragImageList::EndDrag() {
    if (!HandleAllocated() || !FDragging) return false;
    DragUnlock();
    const bool Result = ImageList_EndDrag();
    FDragging = false;
    FDragCursor = crNone;
    return Result;
}

void TNVDragImageList::Notification(TComponent* AComponent, TOperation Operation) {
    TCustomImageList::Notification(AComponent, Operation);
    if (Operation != opRemove || AComponent != static_cast<TComponent*>(FDragHandle)) return;
    ImageList_DragLeave(FDragHandle);
    FDragHandle = nullptr;
}

} // namespace quill
