// Drag and drop between this program and all others on the desktop.
#pragma once

#include "host/transfer/Com.h"
#include "host/windows/Controls.h"

namespace quill {

// The window of a control is the control itself; null is none.
using HWND = TCustomControl*;

inline constexpr std::uint32_t DROPEFFECT_NONE = 0;
inline constexpr std::uint32_t DROPEFFECT_COPY = 1;
inline constexpr std::uint32_t DROPEFFECT_MOVE = 2;
inline constexpr std::uint32_t DROPEFFECT_LINK = 4;

// Bits of key states.
inline constexpr std::uint32_t MK_LBUTTON = 1;
inline constexpr std::uint32_t MK_RBUTTON = 2;
inline constexpr std::uint32_t MK_SHIFT = 4;
inline constexpr std::uint32_t MK_CONTROL = 8;
inline constexpr std::uint32_t MK_MBUTTON = 16;
inline constexpr std::uint32_t MK_ALT = 32;

TShiftState KeysToShiftState(std::uint32_t KeyState);
std::uint32_t ShiftStateToKeys(TShiftState Shift);
// The buttons and modifiers that are held now, as far as the toolkit has been told.
std::uint32_t GetKeysHeld();

// Opens data transfer for a user of it; counted. S_OK for the first one, S_FALSE for others. Without one, the
// operations below answer CO_E_NOTINITIALIZED. The last OleUninitialize revokes all drop targets.
HResult OleInitialize();
void OleUninitialize();
bool IsOleInitialized();

// Tells Target what is dragged over Control's client area, until it is revoked or the control goes. A target that
// is a component may go before; the control then refuses drops.
// DRAGDROP_E_INVALIDHWND for null, DRAGDROP_E_ALREADYREGISTERED when the control has a target.
// What a target raises counts as a refusal and is reported as a warning of the toolkit.
HResult RegisterDragDrop(HWND Control, IDropTarget* Target);
// DRAGDROP_E_NOTREGISTERED when the control has no target.
HResult RevokeDragDrop(HWND Control);

// Runs a drag with the mouse button that is held, until Source ends it; events are delivered meanwhile. OKEffects is
// what may happen to the data, Effect what did happen.
//
// DRAGDROP_S_DROP or DRAGDROP_S_CANCEL; E_UNEXPECTED when a drag is already running, CO_E_NOTINITIALIZED,
// E_INVALIDARG for null, E_OUTOFMEMORY. What Source raises is raised from here when the drag has ended.
//
// Where another program takes the data after the drop, the call waits for it, at most DropPatience milliseconds from
// the last sign of life (data that it asked for); user input waits meanwhile.
HResult DoDragDrop(IDataObject* Data, IDropSource* Source, std::uint32_t OKEffects, std::uint32_t& Effect);
inline constexpr int DropPatience = 3000;
bool IsDragRunning();

// The cursor of the drag that is running, for sources that show their own; it stays until another one is set or the
// source goes back to the usual ones. Only the shapes that CursorPicture knows look different from an arrow.
void SetDragCursor(TCursor Cursor);

} // namespace quill
