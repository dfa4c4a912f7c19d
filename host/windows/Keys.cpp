#include "host/windows/Keys.h"

#include "host/windows/Messages.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quill {

namespace {

using TEntry = std::pair<int, std::uint16_t>;

constexpr std::uint16_t Code(char C) { return static_cast<std::uint16_t>(C); }

// Sorted by Qt's code. Shifted characters stand on the keys of a US keyboard.
constexpr std::array Table{
    TEntry{Qt::Key_Space, VK_SPACE},
    TEntry{Qt::Key_Exclam, Code('1')},
    TEntry{Qt::Key_QuoteDbl, VK_OEM_7},
    TEntry{Qt::Key_NumberSign, Code('3')},
    TEntry{Qt::Key_Dollar, Code('4')},
    TEntry{Qt::Key_Percent, Code('5')},
    TEntry{Qt::Key_Ampersand, Code('7')},
    TEntry{Qt::Key_Apostrophe, VK_OEM_7},
    TEntry{Qt::Key_ParenLeft, Code('9')},
    TEntry{Qt::Key_ParenRight, Code('0')},
    TEntry{Qt::Key_Asterisk, Code('8')},
    TEntry{Qt::Key_Plus, VK_OEM_PLUS},
    TEntry{Qt::Key_Comma, VK_OEM_COMMA},
    TEntry{Qt::Key_Minus, VK_OEM_MINUS},
    TEntry{Qt::Key_Period, VK_OEM_PERIOD},
    TEntry{Qt::Key_Slash, VK_OEM_2},
    TEntry{Qt::Key_Colon, VK_OEM_1},
    TEntry{Qt::Key_Semicolon, VK_OEM_1},
    TEntry{Qt::Key_Less, VK_OEM_COMMA},
    TEntry{Qt::Key_Equal, VK_OEM_PLUS},
    TEntry{Qt::Key_Greater, VK_OEM_PERIOD},
    TEntry{Qt::Key_Question, VK_OEM_2},
    TEntry{Qt::Key_At, Code('2')},
    TEntry{Qt::Key_BracketLeft, VK_OEM_4},
    TEntry{Qt::Key_Backslash, VK_OEM_5},
    TEntry{Qt::Key_BracketRight, VK_OEM_6},
    TEntry{Qt::Key_AsciiCircum, Code('6')},
    TEntry{Qt::Key_Underscore, VK_OEM_MINUS},
    TEntry{Qt::Key_QuoteLeft, VK_OEM_3},
    TEntry{Qt::Key_BraceLeft, VK_OEM_4},
    TEntry{Qt::Key_Bar, VK_OEM_5},
    TEntry{Qt::Key_BraceRight, VK_OEM_6},
    TEntry{Qt::Key_AsciiTilde, VK_OEM_3},
    TEntry{Qt::Key_Escape, VK_ESCAPE},
    TEntry{Qt::Key_Tab, VK_TAB},
    TEntry{Qt::Key_Backtab, VK_TAB},
    TEntry{Qt::Key_Backspace, VK_BACK},
    TEntry{Qt::Key_Return, VK_RETURN},
    TEntry{Qt::Key_Enter, VK_RETURN},
    TEntry{Qt::Key_Insert, VK_INSERT},
    TEntry{Qt::Key_Delete, VK_DELETE},
    TEntry{Qt::Key_Pause, VK_PAUSE},
    TEntry{Qt::Key_Print, VK_SNAPSHOT},
    TEntry{Qt::Key_Clear, VK_CLEAR},
    TEntry{Qt::Key_Home, VK_HOME},
    TEntry{Qt::Key_End, VK_END},
    TEntry{Qt::Key_Left, VK_LEFT},
    TEntry{Qt::Key_Up, VK_UP},
    TEntry{Qt::Key_Right, VK_RIGHT},
    TEntry{Qt::Key_Down, VK_DOWN},
    TEntry{Qt::Key_PageUp, VK_PRIOR},
    TEntry{Qt::Key_PageDown, VK_NEXT},
    TEntry{Qt::Key_Shift, VK_SHIFT},
    TEntry{Qt::Key_Control, VK_CONTROL},
    TEntry{Qt::Key_Meta, VK_LWIN},
    TEntry{Qt::Key_Alt, VK_MENU},
    TEntry{Qt::Key_CapsLock, VK_CAPITAL},
    TEntry{Qt::Key_NumLock, VK_NUMLOCK},
    TEntry{Qt::Key_ScrollLock, VK_SCROLL},
    TEntry{Qt::Key_Super_L, VK_LWIN},
    TEntry{Qt::Key_Super_R, VK_RWIN},
    TEntry{Qt::Key_Menu, VK_APPS},
    TEntry{Qt::Key_Help, VK_HELP},
};
static_assert(std::is_sorted(Table.begin(), Table.end()));

constexpr std::array Keypad{
    TEntry{Qt::Key_Asterisk, VK_MULTIPLY}, TEntry{Qt::Key_Plus, VK_ADD},
    TEntry{Qt::Key_Comma, VK_DECIMAL},     TEntry{Qt::Key_Minus, VK_SUBTRACT},
    TEntry{Qt::Key_Period, VK_DECIMAL},    TEntry{Qt::Key_Slash, VK_DIVIDE},
};
static_assert(std::is_sorted(Keypad.begin(), Keypad.end()));

template <class TTable>
std::uint16_t Find(const TTable& Entries, int Key) {
    const auto Found = std::lower_bound(Entries.begin(), Entries.end(), TEntry{Key, 0});
    return Found != Entries.end() && Found->first == Key ? Found->second : std::uint16_t{0};
}

} // namespace

std::uint16_t VirtualKeyFromQt(int Key, bool KeypadKey) {
    const auto In = [Key](int First, int Last) { return Key >= First && Key <= Last; };
    if (KeypadKey) {
        if (In(Qt::Key_0, Qt::Key_9)) return static_cast<std::uint16_t>(VK_NUMPAD0 + (Key - Qt::Key_0));
        if (const std::uint16_t Found = Find(Keypad, Key)) return Found;
    }
    if (In(Qt::Key_0, Qt::Key_9) || In(Qt::Key_A, Qt::Key_Z)) return static_cast<std::uint16_t>(Key);
    if (In(Qt::Key_F1, Qt::Key_F24)) return static_cast<std::uint16_t>(VK_F1 + (Key - Qt::Key_F1));
    return Find(Table, Key);
}

TShiftState ShiftFromQt(Qt::KeyboardModifiers Modifiers, Qt::MouseButtons Buttons) {
    TShiftState Result;
    if (Modifiers.testFlag(Qt::ShiftModifier)) Result.Include(ssShift);
    if (Modifiers.testFlag(Qt::AltModifier)) Result.Include(ssAlt);
    if (Modifiers.testFlag(Qt::ControlModifier)) Result.Include(ssCtrl);
    if (Buttons.testFlag(Qt::LeftButton)) Result.Include(ssLeft);
    if (Buttons.testFlag(Qt::RightButton)) Result.Include(ssRight);
    if (Buttons.testFlag(Qt::MiddleButton)) Result.Include(ssMiddle);
    return Result;
}

bool IsNavigationKey(std::uint16_t Key) {
    switch (Key) {
    case VK_TAB:
    case VK_RETURN:
    case VK_ESCAPE:
    case VK_SPACE:
    case VK_PRIOR:
    case VK_NEXT:
    case VK_END:
    case VK_HOME:
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
    case VK_F2:
        return true;
    default:
        return false;
    }
}

} // namespace quill
