// An image list whose pictures can be dragged.
#pragma once

#include "host/transfer/ImageDrag.h"

namespace quill {

// Drives the image-list drag functions, so that a picture follows the mouse during a drag, with a cursor of the
// program's choice on it. Idle; dragging (SetDragImage or BeginDrag); entered in a window (DragLock); moving
// (DragMove); left (DragUnlock); idle again (EndDrag). Operations of a list without a handle do nothing and are
// false. Points are client coordinates of the window.
class TNVDragImageList : public TCustomImageList {
public:
    explicit TNVDragImageList(TComponent* AOwner = nullptr, int AWidth = 16, int AHeight = 16);
    ~TNVDragImageList() override;

    // The list's own initialisation, called by the constructor. DragCursor becomes crNone.
    virtual void Initialize();
    // Where in its picture the mouse is; (0, 0) while nothing is dragged.
    virtual TPoint GetHotSpot();

    // The cursor that is shown on the picture; crNone for none.
    TCursor GetDragCursor() const { return FDragCursor; }
    void SetDragCursor(TCursor Value);
    bool GetDragging() const { return FDragging; }
    // The window in which the picture is entered, null for none.
    HWND GetLockWindow() const { return FDragHandle; }
    int GetDragIndex() const { return FDragIndex; }

    // Starts the drag of picture Index; true when the list has a handle.
    bool SetDragImage(int Index, int HotSpotX, int HotSpotY);
    // Puts the drag cursor on the picture, unless it is crNone.
    void CombineDragCursor();
    // Starts the drag of the picture of the last SetDragImage (the first one if there was none) and enters Window,
    // which is the result.
    bool BeginDrag(HWND Window, int X, int Y, int HotSpotX, int HotSpotY);
    // Leaves the window that was entered and enters Window; false, and nothing happens, for the same one again.
    bool DragLock(HWND Window, int X, int Y);
    void DragUnlock();
    bool DragMove(int X, int Y);
    void ShowDragImage();
    void HideDragImage();
    // Ends the drag; DragCursor becomes crNone. False, and nothing happens, when nothing is dragged.
    bool EndDrag();

    void Notification(TComponent* AComponent, TOperation Operation) override;

private:
    TCursor FDragCursor = crDefault;
    bool FDragging = false;
    HWND FDragHandle = nullptr;
    TPoint FDragHotSpot;
    int FDragIndex = 0;
};

} // namespace quill
