// Messages: the typed form in which input and notifications reach a control.
//
// How a message packs its values (TMessage, Perform):
//
//   mouse messages         WParam: bits of the shift state        LParam: client position (MakePointParam)
//   WM_MOUSEWHEEL          WParam: MakeWheelParam(delta, shift)   LParam: screen position
//   WM_KEYDOWN, WM_KEYUP,  WParam: virtual key, or code point     LParam: bits of the shift state
//     WM_CHAR, CM_WANTSPECIALKEY
//   WM_HSCROLL, WM_VSCROLL WParam: scroll code                    LParam: position
//   WM_SIZE                                                       LParam: client size (MakePointParam)
//   WM_SETCURSOR                                                  LParam: client position
//   WM_TIMER               WParam: timer identifier
//   WM_SETREDRAW           WParam: 0 or 1
#pragma once

#include "host/base/Types.h"

#include <cstdint>

namespace quill {

inline constexpr unsigned WM_SIZE = 0x0005;
inline constexpr unsigned WM_SETFOCUS = 0x0007;
inline constexpr unsigned WM_KILLFOCUS = 0x0008;
inline constexpr unsigned WM_SETREDRAW = 0x000B;
inline constexpr unsigned WM_CANCELMODE = 0x001F;
inline constexpr unsigned WM_SETCURSOR = 0x0020;
inline constexpr unsigned WM_NCHITTEST = 0x0084;
inline constexpr unsigned WM_NCPAINT = 0x0085;
inline constexpr unsigned WM_GETDLGCODE = 0x0087;
inline constexpr unsigned WM_KEYDOWN = 0x0100;
inline constexpr unsigned WM_KEYUP = 0x0101;
inline constexpr unsigned WM_CHAR = 0x0102;
inline constexpr unsigned WM_COMMAND = 0x0111;
inline constexpr unsigned WM_TIMER = 0x0113;
inline constexpr unsigned WM_HSCROLL = 0x0114;
inline constexpr unsigned WM_VSCROLL = 0x0115;
inline constexpr unsigned WM_MOUSEMOVE = 0x0200;
inline constexpr unsigned WM_LBUTTONDOWN = 0x0201;
inline constexpr unsigned WM_LBUTTONUP = 0x0202;
inline constexpr unsigned WM_LBUTTONDBLCLK = 0x0203;
inline constexpr unsigned WM_RBUTTONDOWN = 0x0204;
inline constexpr unsigned WM_RBUTTONUP = 0x0205;
inline constexpr unsigned WM_RBUTTONDBLCLK = 0x0206;
inline constexpr unsigned WM_MBUTTONDOWN = 0x0207;
inline constexpr unsigned WM_MBUTTONUP = 0x0208;
inline constexpr unsigned WM_MBUTTONDBLCLK = 0x0209;
inline constexpr unsigned WM_MOUSEWHEEL = 0x020A;
inline constexpr unsigned WM_CUT = 0x0300;
inline constexpr unsigned WM_COPY = 0x0301;
inline constexpr unsigned WM_PASTE = 0x0302;
inline constexpr unsigned WM_CLEAR = 0x0303;

inline constexpr unsigned CM_FONTCHANGED = 0xB00E;
inline constexpr unsigned CM_CANCELMODE = 0xB00D;
inline constexpr unsigned CM_MOUSEENTER = 0xB013;
inline constexpr unsigned CM_MOUSELEAVE = 0xB014;
inline constexpr unsigned CM_CTL3DCHANGED = 0xB010;
inline constexpr unsigned CM_DESIGNHITTEST = 0xB01E;
inline constexpr unsigned CM_WANTSPECIALKEY = 0xB006;
inline constexpr unsigned CM_SHOWINGCHANGED = 0xB019;
inline constexpr unsigned CM_DRAG = 0xB02F;
inline constexpr unsigned CM_BORDERCHANGED = 0xB03B;
inline constexpr unsigned CM_BIDIMODECHANGED = 0xB03C;

inline constexpr int SB_HORZ = 0;
inline constexpr int SB_VERT = 1;
inline constexpr unsigned SB_LINEUP = 0;
inline constexpr unsigned SB_LINEDOWN = 1;
inline constexpr unsigned SB_PAGEUP = 2;
inline constexpr unsigned SB_PAGEDOWN = 3;
inline constexpr unsigned SB_THUMBPOSITION = 4;
inline constexpr unsigned SB_THUMBTRACK = 5;
inline constexpr unsigned SB_TOP = 6;
inline constexpr unsigned SB_BOTTOM = 7;
inline constexpr unsigned SB_ENDSCROLL = 8;

// Virtual keys that the controls know; letters and digits are their capital ASCII codes.
enum TVirtualKey : std::uint16_t {
    VK_BACK = 0x08,
    VK_TAB = 0x09,
    VK_CLEAR = 0x0C,
    VK_RETURN = 0x0D,
    VK_SHIFT = 0x10,
    VK_CONTROL = 0x11,
    VK_MENU = 0x12, // Alt
    VK_PAUSE = 0x13,
    VK_CAPITAL = 0x14,
    VK_ESCAPE = 0x1B,
    VK_SPACE = 0x20,
    VK_PRIOR = 0x21,
    VK_NEXT = 0x22,
    VK_END = 0x23,
    VK_HOME = 0x24,
    VK_LEFT = 0x25,
    VK_UP = 0x26,
    VK_RIGHT = 0x27,
    VK_DOWN = 0x28,
    VK_SNAPSHOT = 0x2C,
    VK_INSERT = 0x2D,
    VK_DELETE = 0x2E,
    VK_HELP = 0x2F,
    VK_LWIN = 0x5B,
    VK_RWIN = 0x5C,
    VK_APPS = 0x5D, // the context menu key
    VK_NUMPAD0 = 0x60,
    VK_NUMPAD9 = 0x69,
    VK_MULTIPLY = 0x6A,
    VK_ADD = 0x6B, // on the keypad, like the other operators here
    VK_SEPARATOR = 0x6C,
    VK_SUBTRACT = 0x6D,
    VK_DECIMAL = 0x6E,
    VK_DIVIDE = 0x6F,
    VK_F1 = 0x70,
    VK_F2 = 0x71,
    VK_F3 = 0x72,
    VK_F4 = 0x73,
    VK_F5 = 0x74,
    VK_F12 = 0x7B,
    VK_F24 = 0x87,
    VK_NUMLOCK = 0x90,
    VK_SCROLL = 0x91,
    // Punctuation by its place on a US keyboard.
    VK_OEM_1 = 0xBA, // ;:
    VK_OEM_PLUS = 0xBB,
    VK_OEM_COMMA = 0xBC,
    VK_OEM_MINUS = 0xBD,
    VK_OEM_PERIOD = 0xBE,
    VK_OEM_2 = 0xBF, // /?
    VK_OEM_3 = 0xC0, // `~
    VK_OEM_4 = 0xDB, // [{
    VK_OEM_5 = 0xDC, // \|
    VK_OEM_6 = 0xDD, // ]}
    VK_OEM_7 = 0xDE, // '"
    VK_PACKET = 0xE7 // a key without a code of its own that yields text
};

// The general form, for Perform and for descendants that handle a message themselves.
struct TMessage {
    unsigned Msg = 0;
    std::uintptr_t WParam = 0;
    std::intptr_t LParam = 0;
    std::intptr_t Result = 0;
};

// A mouse message: client position, and buttons and modifiers as a shift state. Mouse LParams of Perform pack the
// position (MakePointParam), their WParam holds the bits of the shift state.
struct TWMMouse {
    unsigned Msg = 0;
    TShiftState Shift;
    int XPos = 0;
    int YPos = 0;
    std::intptr_t Result = 0;
};

// A key (virtual key) or character (code point) message. Setting CharCode to 0 consumes it: a consumed WM_KEYDOWN
// is followed by no WM_CHAR. A key that is neither consumed nor answered with a Result other than 0 goes on to the
// parents of the control, dialogs included.
struct TWMKey {
    unsigned Msg = 0;
    char32_t CharCode = 0;
    TShiftState Shift;
    std::intptr_t Result = 0;
};

struct TWMScroll {
    unsigned Msg = 0;
    unsigned ScrollCode = 0;
    int Pos = 0;
    std::intptr_t Result = 0;
};

struct TWMTimer {
    unsigned Msg = WM_TIMER;
    int TimerID = 0;
    std::intptr_t Result = 0;
};

struct TWMSize {
    unsigned Msg = WM_SIZE;
    int Width = 0; // of the client area
    int Height = 0;
    std::intptr_t Result = 0;
};

constexpr std::intptr_t MakePointParam(int X, int Y) {
    return static_cast<std::intptr_t>((static_cast<std::uint64_t>(static_cast<std::uint32_t>(Y)) << 32) |
                                      static_cast<std::uint32_t>(X));
}
// Delta in eighths of a degree, 120 a notch, positive away from the user.
constexpr std::uintptr_t MakeWheelParam(int Delta, TShiftState Shift) {
    return static_cast<std::uintptr_t>((static_cast<std::uint64_t>(static_cast<std::uint32_t>(Delta)) << 32) |
                                       Shift.Bits());
}
constexpr int WheelDeltaFromParam(std::uintptr_t Param) {
    return static_cast<int>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(Param) >> 32));
}
constexpr TShiftState ShiftFromParam(std::uintptr_t Param) {
    return TShiftState::FromBits(static_cast<std::uint32_t>(Param));
}
constexpr TPoint PointFromParam(std::intptr_t Param) {
    const auto Bits = static_cast<std::uint64_t>(Param);
    return {static_cast<int>(static_cast<std::uint32_t>(Bits)),
            static_cast<int>(static_cast<std::uint32_t>(Bits >> 32))};
}

} // namespace quill
