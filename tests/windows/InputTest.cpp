// Mouse, wheel, keys and focus, from real input to messages and events.
#include "tests/support/QtTest.h"
#include "tests/windows/LogControl.h"

#include "host/windows/Keys.h"

#include <QDialog>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>

#include <cmath>

using namespace quill;
using quill::testing::SendWheel;
using quill::testing::ShiftText;
using quill::testing::TLogControl;

namespace {

class TActive : public TLogControl {
public:
    TActive() {
        SetCtl3D(false);
        SetBounds(0, 0, 200, 100);
        show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(this));
        SetFocus();
        qApp->processEvents();
        Take();
    }
    // Window position of a client position (the frame is one pixel wide).
    static QPoint At(int X, int Y) { return {X + 1, Y + 1}; }
};

// A control without a frame in the upper part of a window, and below it an editor, which has the focus.
class InputInWindow : public ::testing::Test {
protected:
    InputInWindow() {
        Window.resize(300, 200);
        Control.SetBorderStyle(bsNone);
        Control.SetBounds(0, 0, 200, 100);
        Other.setGeometry(0, 120, 100, 30);
        Window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Window));
        Other.setFocus();
        Handle = Window.windowHandle();
    }
    QDialog Window;
    TLogControl Control{&Window};
    QLineEdit Inner{Control.viewport()}; // as an in-place editor is
    QLineEdit Other{&Window};
    QWindow* Handle;
};

} // namespace

TEST_F(InputInWindow, ClickSequence) {
    Inner.hide();
    QTest::mouseMove(Handle, {250, 150});
    qApp->processEvents();
    Control.LogMouse = true;
    const auto Captured = [&] { return Control.GetMouseCapture() ? " captured" : ""; };
    Control.OnClick = [&](TObject*) { Control.Log("click"); };
    Control.OnMouseDown = [&](TObject*, TMouseButton Button, TShiftState Shift, int, int) {
        Control.Log("down" + std::to_string(Button) + " " + ShiftText(Shift) + Captured());
    };
    Control.OnMouseUp = [&](TObject*, TMouseButton, TShiftState Shift, int, int) {
        Control.Log("up " + ShiftText(Shift) + Captured());
    };
    QTest::mouseMove(Handle, {10, 12});
    EXPECT_EQ(Control.Take(), "mouseenter; move 10,12");
    QTest::mousePress(Handle, Qt::LeftButton, Qt::ControlModifier, {10, 12});
    EXPECT_EQ(Control.Take(), "ldown 10,12 ctrl+left; down0 ctrl+left captured");
    EXPECT_TRUE(Control.GetControlState().Contains(csLButtonDown));
    QTest::mouseRelease(Handle, Qt::LeftButton, {}, {10, 12});
    EXPECT_EQ(Control.Take(), "lup 10,12; click; up ");
    EXPECT_TRUE(Control.GetControlState().IsEmpty());

    QTest::mousePress(Handle, Qt::LeftButton, {}, {10, 12});
    QTest::mouseMove(Handle, {250, 150});
    Control.Take();
    QTest::mouseRelease(Handle, Qt::LeftButton, {}, {250, 150});
    qApp->processEvents();
    EXPECT_EQ(Control.Take(), "lup 250,150; up ; mouseleave") << "no click outside";
}

TEST(Input, DoubleClicksAndOtherButtons) {
    TActive Control;
    Control.LogMouse = true;
    QWindow* Window = Control.windowHandle();
    const auto DoubleClick = [&] {
        std::string Presses;
        Control.OnDblClick = [&](TObject*) { Presses += "dbl;"; };
        Control.OnMouseDown = [&](TObject*, TMouseButton, TShiftState Shift, int, int) {
            Presses += ShiftText(Shift) + ";";
        };
        QTest::mouseDClick(Window, Qt::LeftButton, {}, Control.At(20, 20));
        Control.OnMouseDown = nullptr;
        return Presses;
    };
    EXPECT_EQ(DoubleClick(), "left;dbl;left+double;");
    EXPECT_NE(Control.Take().find("lup 20,20; ldbl 20,20 left; lup 20,20"), std::string::npos);
    Control.SetControlStyle({csClickEvents});
    QTest::qWait(QApplication::doubleClickInterval() + 20);
    EXPECT_EQ(DoubleClick(), "left;left;") << "a control without double clicks";
    Control.Take();
    for (const Qt::MouseButton Button : {Qt::RightButton, Qt::MiddleButton})
        QTest::mouseClick(Window, Button, {}, Control.At(20, 20));
    EXPECT_EQ(Control.Take(), "rdown 20,20 right; rup 20,20; mdown 20,20 middle; mup 20,20");
}

TEST(Input, PositionsAreThePixelsUnderTheMouse) {
    TActive Control;
    const double S = Control.GetScale();
    TPoint Last;
    Control.OnMouseMove = [&](TObject*, TShiftState, int X, int Y) { Last = {X, Y}; };
    // Device pixel D of the surface belongs to the client pixel whose range on the canvas contains it.
    for (int Device = 0; Device < 60; ++Device) {
        const double Start = std::floor(1 * S + 0.5); // the frame
        const QPointF InWindow((Device + Start) / S, (Device + Start) / S);
        const QPointF Local = Control.viewport()->mapFrom(&Control, InWindow);
        QMouseEvent Event(QEvent::MouseMove, Local, InWindow, Control.mapToGlobal(InWindow), Qt::NoButton, {},
                          {});
        QApplication::sendEvent(Control.viewport(), &Event);
        EXPECT_LE(Control.GetCanvas()->ToDevice(Last.X), Device);
        EXPECT_GT(Control.GetCanvas()->ToDevice(Last.X + 1), Device);
        EXPECT_EQ(Last.X, Last.Y);
    }
}

TEST(Input, LosingTheMouseCancelsThePress) {
    TActive Control;
    Control.LogMouse = true;
    QDialog Dialog;
    Dialog.setModal(true);
    for (const bool Modal : {false, true}) {
        QTest::mousePress(Control.windowHandle(), Qt::LeftButton, {}, Control.At(5, 5));
        EXPECT_TRUE(Control.GetMouseCapture());
        Control.Take();
        Modal ? Dialog.show() : Control.SetEnabled(false);
        EXPECT_EQ(Control.Take().substr(0, 6), "cancel") << (Modal ? "a modal dialog" : "disabled");
        EXPECT_FALSE(Control.GetMouseCapture());
        Control.SetEnabled(true);
        Dialog.hide();
        QTest::mouseRelease(Control.windowHandle(), Qt::LeftButton, {}, Control.At(5, 5));
    }
}

TEST(Input, CursorIsAskedForOnMovesWithoutButtons) {
    struct TCursors : TActive {
        void WMSetCursor(TMessage& Message) override {
            if (PointFromParam(Message.LParam).X < 50)
                ApplyCursor(crSizeWE);
            else
                TCustomControl::WMSetCursor(Message);
        }
    } Control;
    Control.SetCursor(crHandPoint);
    QWindow* Window = Control.windowHandle();
    QTest::mouseMove(Window, Control.At(10, 10));
    EXPECT_EQ(Control.GetAppliedCursor(), crSizeWE);
    EXPECT_EQ(Control.viewport()->cursor().shape(), Qt::SizeHorCursor);
    QTest::mousePress(Window, Qt::LeftButton, {}, Control.At(10, 10));
    QTest::mouseMove(Window, Control.At(90, 10));
    EXPECT_EQ(Control.GetAppliedCursor(), crSizeWE) << "stays while a button is held";
    QTest::mouseRelease(Window, Qt::LeftButton, {}, Control.At(90, 10));
    QTest::mouseMove(Window, Control.At(91, 10));
    EXPECT_EQ(Control.GetAppliedCursor(), crHandPoint);
    EXPECT_EQ(Control.GetCursor(), crHandPoint);
}

// --- wheel --------------------------------------------------------------------------------------------------------

TEST(Input, WheelCollectsNotches) {
    TActive Control;
    std::string Log;
    Control.OnMouseWheel = [&](TObject*, TShiftState, int Delta, TPoint, bool&) {
        Log += std::to_string(Delta) + " ";
    };
    Control.OnMouseWheelDown = [&](TObject*, TShiftState Shift, TPoint Pos, bool& Handled) {
        EXPECT_EQ(Control.ScreenToClient(Pos), (TPoint{30, 30}));
        Log += "down" + ShiftText(Shift) + " ";
        Handled = true;
    };
    Control.OnMouseWheelUp = [&](TObject*, TShiftState, TPoint, bool& Handled) {
        Log += "up ", Handled = true;
    };
    const auto Turn = [&](const std::vector<int>& Deltas, Qt::KeyboardModifiers Modifiers = {}) {
        Log.clear();
        for (const int Delta : Deltas)
            SendWheel(Control.windowHandle(), Control.At(30, 30), {0, Delta}, Modifiers);
        return Log;
    };
    EXPECT_EQ(Turn({-120}), "-120 down ");
    EXPECT_EQ(Turn({-50, -50, -50}), "-50 -50 -50 down ");
    EXPECT_EQ(Turn({-90}), "-90 down ") << "30 were left";
    EXPECT_EQ(Turn({-360}), "-360 down down down ");
    EXPECT_EQ(Turn({-100, 60, 60}), "-100 60 60 up ") << "a change of direction starts afresh";
    EXPECT_EQ(Turn({-120}, Qt::ControlModifier), "-120 downctrl ");
    Control.OnMouseWheel = [&](TObject*, TShiftState, int, TPoint, bool& Handled) { Handled = true; };
    EXPECT_EQ(Turn({-120}), "");
}

TEST_F(InputInWindow, UnusedWheelGoesToTheParent) {
    struct TCounter : QObject {
        int Wheels = 0;
        bool eventFilter(QObject*, QEvent* Event) override {
            Wheels += Event->type() == QEvent::Wheel;
            return false;
        }
    } Counter;
    Window.installEventFilter(&Counter);
    SendWheel(Handle, {50, 50}, {0, -120});
    EXPECT_EQ(Counter.Wheels, 1);
    Control.OnMouseWheelDown = [](TObject*, TShiftState, TPoint, bool& Handled) { Handled = true; };
    SendWheel(Handle, {50, 50}, {0, -120});
    SendWheel(Handle, {50, 50}, {0, -30});
    EXPECT_EQ(Counter.Wheels, 1) << "parts of used notches are used";
}

// --- keys ---------------------------------------------------------------------------------------------------------

TEST(Input, VirtualKeys) {
    const std::tuple<int, bool, int> Cases[] = {
        {Qt::Key_A, false, 'A'},
        {Qt::Key_7, false, '7'},
        {Qt::Key_7, true, VK_NUMPAD0 + 7},
        {Qt::Key_Plus, true, VK_ADD},
        {Qt::Key_Plus, false, VK_OEM_PLUS},
        {Qt::Key_Asterisk, false, '8'},
        {Qt::Key_F24, false, VK_F24},
        {Qt::Key_Up, true, VK_UP},
        {Qt::Key_PageDown, false, VK_NEXT},
        {Qt::Key_Enter, true, VK_RETURN},
        {Qt::Key_Backtab, false, VK_TAB},
        {Qt::Key_Adiaeresis, false, 0},
    };
    for (const auto& [Key, Keypad, Expected] : Cases)
        EXPECT_EQ(VirtualKeyFromQt(Key, Keypad), Expected) << Key;
}

TEST(Input, KeysAndCharacters) {
    TActive Control;
    Control.LogKeys = true;
    QWindow* Window = Control.windowHandle();
    const auto Sent = [&](Qt::Key Key, Qt::KeyboardModifiers Modifiers = {}) {
        QTest::keyPress(Window, Key, Modifiers);
        std::string Result = Control.Take();
        QTest::keyRelease(Window, Key, Modifiers);
        Control.Take();
        return Result;
    };
    EXPECT_EQ(Sent(Qt::Key_A), "keydown 65; char 97");
    EXPECT_EQ(Sent(Qt::Key_A, Qt::ShiftModifier), "keydown 16 shift; keydown 65 shift; char 97 shift");
    EXPECT_EQ(Sent(Qt::Key_Left, Qt::ControlModifier), "keydown 17 ctrl; keydown 37 ctrl");
    EXPECT_EQ(Sent(Qt::Key_Return), "keydown 13; char 13");
    EXPECT_EQ(Sent(Qt::Key_Backspace), "keydown 8; char 8");
    EXPECT_EQ(Sent(Qt::Key_A, Qt::AltModifier), "keydown 18 alt; keydown 65 alt")
        << "a menu key yields no character";
    QTest::keyRelease(Window, Qt::Key_Down);
    EXPECT_EQ(Control.Take(), "keyup 40");

    const auto Text = [&](const char* Utf8, Qt::KeyboardModifiers Modifiers = {}) {
        QKeyEvent Event(QEvent::KeyPress, Qt::Key_unknown, Modifiers, QString::fromUtf8(Utf8));
        QApplication::sendEvent(&Control, &Event);
        return Control.Take();
    };
    EXPECT_EQ(Text("\xC3\xA4"), "keydown 231; char 228");
    EXPECT_EQ(Text("\xF0\x9F\x98\x80"), "keydown 231; char 128512")
        << "one code point outside the first plane";
    EXPECT_EQ(Text("\xE2\x82\xAC", Qt::ControlModifier | Qt::AltModifier),
              "keydown 231 alt+ctrl; char 8364 alt+ctrl")
        << "AltGr";

    QInputMethodEvent Commit;
    Commit.setCommitString(QString::fromUtf8("\xE6\xBC\xA2\xE5\xAD\x97"));
    QApplication::sendEvent(&Control, &Commit);
    EXPECT_EQ(Control.Take(), "char 28450; char 23383");

    Control.OnKeyDown = [](TObject*, std::uint16_t& Key, TShiftState) { Key = 0; };
    EXPECT_EQ(Sent(Qt::Key_A), "keydown 65") << "a consumed key yields no character";
}

TEST_F(InputInWindow, UnhandledKeysGoOnToTheDialog) {
    QPushButton Default(&Window);
    Default.setDefault(true);
    Default.show();
    int Clicks = 0;
    QObject::connect(&Default, &QPushButton::clicked, [&] { ++Clicks; });
    Control.SetFocus();
    const auto ExpectConsumed = [&](const char* By) {
        QTest::keyClick(Handle, Qt::Key_Return);
        QTest::keyClick(Handle, Qt::Key_Escape);
        EXPECT_EQ(Clicks, 0) << By;
        EXPECT_TRUE(Window.isVisible()) << By;
    };
    Control.Wanted = {VK_RETURN, VK_ESCAPE};
    ExpectConsumed("the control");
    Control.Wanted = {};
    Control.OnKeyPress = [](TObject*, char32_t& Key) { Key = 0; };
    ExpectConsumed("the handler");
    Control.OnKeyPress = nullptr;
    QTest::keyClick(Handle, Qt::Key_Return);
    EXPECT_EQ(Clicks, 1);
    QTest::keyClick(Handle, Qt::Key_Escape);
    EXPECT_FALSE(Window.isVisible());
}

TEST_F(InputInWindow, TabMovesTheFocusUnlessWanted) {
    Control.SetTabStop(true);
    Control.LogKeys = true;
    Control.SetFocus();
    Control.Wanted = {VK_TAB};
    QTest::keyPress(Handle, Qt::Key_Tab);
    QTest::keyPress(Handle, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(Control.Take(), "keydown 9; char 9; keydown 16 shift; keydown 9 shift; char 9 shift");
    EXPECT_TRUE(Control.Focused());
    Inner.setFocus();
    QTest::keyPress(Handle, Qt::Key_Tab);
    EXPECT_TRUE(Inner.hasFocus()) << "the editor of a control that wants Tab sees it";
    Control.SetFocus();
    Control.Wanted = {};
    Control.Take();
    QTest::keyPress(Handle, Qt::Key_Tab);
    EXPECT_EQ(Control.Take(), "");
    EXPECT_FALSE(Control.Focused());
}

TEST(Input, ClipboardKeysBecomeMessagesWhenWanted) {
    struct TClipboardControl : TActive {
        TClipboardKey Wants = TClipboardKey::BeforeMenus;
        TClipboardKey GetClipboardKey(unsigned) const override { return Wants; }
    } Control;
    int Triggered = 0;
    QShortcut Shortcut(QKeySequence::Copy, &Control);
    QObject::connect(&Shortcut, &QShortcut::activated, [&] { ++Triggered; });
    Control.LogKeys = true;
    QWindow* Window = Control.windowHandle();
    QTest::keyPress(Window, Qt::Key_C, Qt::ControlModifier);
    QTest::keyPress(Window, Qt::Key_X, Qt::ControlModifier);
    QTest::keyPress(Window, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(
        Control.Take(),
        "keydown 17 ctrl; keydown 67 ctrl; copy; keydown 17 ctrl; keydown 88 ctrl; cut; keydown 17 ctrl; "
        "keydown 86 ctrl; paste");
    EXPECT_EQ(Triggered, 0);
    using TClipboardKey = TCustomControl::TClipboardKey;
    for (const TClipboardKey Wants : {TClipboardKey::Ignored, TClipboardKey::AfterMenus}) {
        Control.Wants = Wants;
        Triggered = 0;
        QTest::keyPress(Window, Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(Control.Take(), "keydown 17 ctrl");
        EXPECT_EQ(Triggered, 1) << "otherwise the program's shortcut works";
    }
    QTest::keyPress(Window, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Control.Take(), "keydown 17 ctrl; keydown 88 ctrl; cut") << "no menu has that one";
}

// --- focus --------------------------------------------------------------------------------------------------------

TEST_F(InputInWindow, FocusEntersAndLeavesTheControlAsAWhole) {
    Control.LogFocus = true;
    const auto Focus = [&](QWidget& Widget) {
        Widget.setFocus();
        qApp->processEvents();
        return Control.Take();
    };
    const auto Activate = [&](QWidget& Widget) {
        Widget.show();
        Widget.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Widget));
        qApp->processEvents();
        return Control.Take();
    };
    EXPECT_EQ(Focus(Control), "setfocus; enter");
    EXPECT_TRUE(Control.Focused());
    EXPECT_EQ(Focus(Inner), "killfocus") << "its own editor";
    EXPECT_FALSE(Control.Focused());
    EXPECT_TRUE(Control.ContainsFocus());
    EXPECT_EQ(Focus(Other), "exit");
    EXPECT_EQ(Focus(Inner), "enter");
    EXPECT_EQ(Focus(Control), "setfocus");
    QWidget Second;
    EXPECT_EQ(Activate(Second), "killfocus") << "another window is no exit";
    EXPECT_EQ(Activate(Window), "setfocus");
    Other.setFocus();
    Control.setFocus();
    EXPECT_EQ(Focus(Other), "killfocus; exit; setfocus; killfocus")
        << "left before it was told that it entered";
}

TEST_F(InputInWindow, EnterComesBeforeThePressThatCausedIt) {
    Control.LogFocus = true;
    Control.OnMouseDown = [&](TObject*, TMouseButton, TShiftState, int, int) { Control.Log("down"); };
    QTest::mouseClick(Handle, Qt::LeftButton, {}, {50, 50});
    EXPECT_EQ(Control.Take(), "setfocus; enter; down");
}
