// A handler may destroy the control that calls it.
#include "tests/support/Handlers.h"
#include "tests/support/QtTest.h"
#include "tests/windows/LogControl.h"

#include "host/windows/Application.h"

#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>

#include <memory>

using namespace quill;
using quill::testing::SendWheel;
using quill::testing::TAnyHandler;
using quill::testing::TLogControl;

namespace {

using TDestroy = std::function<void()>;

// Calls Destroy for one kind of message: not all of them have an event of their own.
struct TMessageHook : TLogControl {
    unsigned Msg = 0;
    TDestroy Destroy;
    using TLogControl::TLogControl;
    void WndProc(TMessage& Message) override {
        if (Message.Msg == Msg) {
            const TDestroy Run = Destroy;
            Run();
            return;
        }
        TLogControl::WndProc(Message);
    }
};

// A window with a control in it and another widget beside it.
struct TScene {
    QWidget Window;
    QLineEdit Other{&Window};
    QPointer<TMessageHook> Control = new TMessageHook(&Window);

    TScene() {
        Window.resize(300, 200);
        Other.setGeometry(0, 150, 100, 30);
        Control->ExtraStyle = WS_HSCROLL | WS_VSCROLL;
        Control->SetBounds(0, 0, 200, 140);
        Control->HandleNeeded();
        for (const int Bar : {SB_HORZ, SB_VERT}) {
            Control->SetScrollRange(Bar, 0, 127, false);
            Control->ShowScrollBar(Bar, true);
        }
        Window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Window));
        Control->SetFocus();
        qApp->processEvents();
    }
    QWindow* Handle() { return Window.windowHandle(); }
    QPoint OnBar() {
        const QScrollBar* Bar = Control->verticalScrollBar();
        return Bar->mapTo(&Window, Bar->rect().center());
    }
};

constexpr QPoint Inside(50, 50);
constexpr QPoint Outside(20, 160);

using TArm = std::function<void(TScene&, TDestroy)>;
using TAct = std::function<void(TScene&)>;

// Ways to be called.
template <class TClass, class TEvent>
TArm On(TEvent TClass::*Event) {
    return [Event](TScene& S, TDestroy D) { S.Control->*Event = TAnyHandler{D}; };
}
TArm OnMessage(unsigned Msg) {
    return [Msg](TScene& S, TDestroy D) { S.Control->Destroy = D, S.Control->Msg = Msg; };
}
// Does something before.
TArm After(const TAct& Prepare, const TArm& Arm) {
    return [=](TScene& S, TDestroy D) { Prepare(S), Arm(S, D); };
}

// What calls.
TAct Click(QPoint Pos, Qt::MouseButton Button = Qt::LeftButton) {
    return [=](TScene& S) { QTest::mouseClick(S.Handle(), Button, {}, Pos); };
}
TAct MoveTo(QPoint Pos) {
    return [=](TScene& S) { QTest::mouseMove(S.Handle(), Pos), qApp->processEvents(); };
}
TAct Press(Qt::Key Key) {
    return [=](TScene& S) { QTest::keyClick(S.Handle(), Key), qApp->processEvents(); };
}
void DoubleClick(TScene& S) { QTest::mouseDClick(S.Handle(), Qt::LeftButton, {}, Inside); }
void TurnWheel(TScene& S) { SendWheel(S.Handle(), Inside, QPoint(0, -240)); }
void LeaveFocus(TScene& S) {
    S.Control->SetTabStop(true);
    S.Other.setFocus();
}

using TCase = std::tuple<const char*, TArm, TAct>;

const TCase Cases[] = {
    {"mouse_down", On(&TLogControl::OnMouseDown), Click(Inside)},
    {"right_mouse_down", On(&TLogControl::OnMouseDown), Click(Inside, Qt::RightButton)},
    {"mouse_up", On(&TLogControl::OnMouseUp), Click(Inside)},
    {"click", On(&TLogControl::OnClick), Click(Inside)},
    {"clicked_signal",
     [](TScene& S, TDestroy D) { QObject::connect(S.Control, &TCustomControl::clicked, D); }, Click(Inside)},
    {"double_click", On(&TLogControl::OnDblClick), DoubleClick},
    {"mouse_move", On(&TLogControl::OnMouseMove), MoveTo(Inside)},
    {"mouse_enter", After(MoveTo(Outside + QPoint(1, 1)), OnMessage(CM_MOUSEENTER)), MoveTo(Inside)},
    {"mouse_leave", After(MoveTo(Inside), OnMessage(CM_MOUSELEAVE)), MoveTo(Outside)},
    {"wheel", On(&TLogControl::OnMouseWheel), TurnWheel},
    {"wheel_down", On(&TLogControl::OnMouseWheelDown), TurnWheel},
    {"wheel_over_a_scroll_bar", On(&TLogControl::OnMouseWheelDown),
     [](TScene& S) { SendWheel(S.Handle(), S.OnBar(), QPoint(0, -120)); }},
    {"key_down", On(&TLogControl::OnKeyDown), Press(Qt::Key_A)},
    {"key_press", On(&TLogControl::OnKeyPress), Press(Qt::Key_A)},
    {"key_up", On(&TLogControl::OnKeyUp), Press(Qt::Key_A)},
    {"input_method", On(&TLogControl::OnKeyPress),
     [](TScene& S) {
         QInputMethodEvent Commit;
         Commit.setCommitString(QStringLiteral("ab"));
         QApplication::sendEvent(S.Control, &Commit);
     }},
    {"paint", On(&TLogControl::OnPaint), [](TScene& S) { S.Control->Invalidate(), qApp->processEvents(); }},
    {"paint_by_Repaint", On(&TLogControl::OnPaint), [](TScene& S) { S.Control->Repaint(); }},
    {"paint_by_ProcessMessages", On(&TLogControl::OnPaint),
     [](TScene& S) { S.Control->Invalidate(), Application.ProcessMessages(); }},
    {"paint_on_the_screens_demand", On(&TLogControl::OnPaint),
     [](TScene& S) { S.Control->Invalidate(), S.Window.repaint(); }},
    {"first_paint",
     After([](TScene& S) { S.Window.hide(), S.Control->RecreateWnd(); }, On(&TLogControl::OnPaint)),
     [](TScene& S) {
         S.Window.show();
         EXPECT_TRUE(QTest::qWaitForWindowExposed(&S.Window));
         qApp->processEvents();
     }},
    {"timer", After([](TScene& S) { S.Control->SetTimer(1, 1); }, OnMessage(WM_TIMER)),
     [](TScene&) { QTest::qWait(20); }},
    {"enter_by_click", After(LeaveFocus, On(&TLogControl::OnEnter)), Click(Inside)},
    {"enter_by_Tab", After(LeaveFocus, On(&TLogControl::OnEnter)), Press(Qt::Key_Tab)},
    {"enter_by_SetFocus", After(LeaveFocus, On(&TLogControl::OnEnter)),
     [](TScene& S) { S.Control->SetFocus(); }},
    {"exit_by_click", On(&TLogControl::OnExit), Click(Outside)},
    {"exit_by_Tab", On(&TLogControl::OnExit), Press(Qt::Key_Tab)},
    {"scroll_bar_button", OnMessage(WM_VSCROLL), [](TScene& S) { Click(S.OnBar())(S); }},
    {"handle_creation", OnMessage(WM_SIZE), [](TScene& S) { S.Control->RecreateWnd(); }},
    {"programmed_resize", After([](TScene& S) { S.Window.hide(); }, OnMessage(WM_SIZE)),
     [](TScene& S) { S.Control->SetBounds(0, 0, 90, 90); }},
};

} // namespace

TEST(Lifetime, ControlMayGoInTheHandler) {
    for (const auto& [Name, Arm, Act] : Cases) {
        SCOPED_TRACE(Name);
        TScene Scene;
        int Calls = 0;
        Arm(Scene, [&] { ++Calls, delete Scene.Control.data(); });
        Act(Scene);
        EXPECT_EQ(Calls, 1);
        EXPECT_FALSE(Scene.Control);
        // The window goes on working.
        Click(Outside)(Scene);
        Press(Qt::Key_X)(Scene);
        EXPECT_EQ(Scene.Other.text(), QStringLiteral("x"));
    }
}

TEST(LifetimeOthers, TimerMayGoInItsHandler) {
    auto Timer = std::make_unique<TTimer>();
    std::string Ran;
    const std::string Text(100, 'x'); // the handler's own copy lives until it has returned
    Timer->SetInterval(1);
    Timer->SetOnTimer([&Timer, &Ran, Text](TObject*) {
        Timer.reset();
        Ran = Text;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return !Ran.empty(); }));
    EXPECT_EQ(Ran, Text);
}
