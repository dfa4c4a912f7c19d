// Virtual keys of Qt's key events. For the sources of the controls only.
#pragma once

#include "host/base/Types.h"

#include <qnamespace.h>

#include <cstdint>

namespace quill {

// The virtual key of a Qt key code, 0 when it has none. Keypad tells digits and operators of the keypad apart.
std::uint16_t VirtualKeyFromQt(int Key, bool Keypad);
// Modifiers and buttons as a shift state.
TShiftState ShiftFromQt(Qt::KeyboardModifiers Modifiers, Qt::MouseButtons Buttons = Qt::NoButton);
// Keys with which one moves around or leaves: a parent that gets one of these as well would move, too.
bool IsNavigationKey(std::uint16_t Key);

} // namespace quill
