// The image-list drag functions: a picture that follows the mouse. There is one such drag at a time in a program.
//
// The picture is a window of its own, through which the mouse passes. It is shown while the drag has entered a window
// (ImageList_DragEnter .. ImageList_DragLeave), and during DoDragDrop also on the way between windows. Coordinates are
// relative to the outer edge of the entered window.
#pragma once

#include "host/graphics/ImageLists.h"
#include "host/transfer/DragDrop.h"

namespace quill {

// Starts a drag of picture Index of List, a copy; the hot spot is the pixel of it that lies under the mouse. False
// when the list has no such picture. A drag that is running is ended.
bool ImageList_BeginDrag(const TCustomImageList& List, int Index, int HotSpotX, int HotSpotY);
// False when no drag was running.
bool ImageList_EndDrag();
// All four are false while no image is dragged.
bool ImageList_DragEnter(HWND Window, int X, int Y);
bool ImageList_DragLeave(HWND Window);
bool ImageList_DragMove(int X, int Y);
// Shows or hides the picture without leaving the window. What is hidden and shown again at once does not flicker.
bool ImageList_DragShowNolock(bool Show);
// Puts picture Index of List over the dragged one, its pixel (HotSpotX, HotSpotY) at the hot spot. An index outside
// takes the combined picture away again; false then, and while no image is dragged.
bool ImageList_SetDragCursorImage(const TCustomImageList& List, int Index, int HotSpotX, int HotSpotY);
// The list with the dragged picture as picture 0, null while there is none; it belongs to the drag. Position (in the
// entered window) and hot spot are stored where asked for.
const TCustomImageList* ImageList_GetDragImage(TPoint* Position, TPoint* HotSpot);

// Whether the picture is on the screen, and the screen point of the mouse that it follows; for tests.
bool IsDragImageVisible();
TPoint GetDragImagePosition();

// The outer rectangle of a control in screen coordinates.
TRect GetWindowRect(HWND Window);
// The usual size of cursors, in pixels, and a picture of one with its hot spot.
int GetCursorSize();
TBitmap CursorPicture(TCursor Cursor, TPoint& HotSpot);

// Whether programs may place their windows; where they may not, the drag loop hands the picture to the platform.
bool CanPlaceWindows();
// For the drag loop: the mouse is at that screen point; the picture stays visible between windows while a loop runs.
void DragImageFollow(TPoint Screen);
void SetDragImageLoop(bool Running);

} // namespace quill
