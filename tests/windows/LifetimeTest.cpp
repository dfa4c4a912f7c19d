// A handler may destroy the control that calls it.
#include "tests/support/QtTest.h"
#include "tests/windows/LogControl.h"

#include "host/windows/Application.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QTest>
#include <QWindow>

#include <memory>

using namespace quill;
using quill::testing::SendWheel;
using quill::testing::TLogControl;

namespace {

// A window with a control in it and another widget beside it.
struct TScene {
    QWidget Window;
    QLineEdit Other{&Window};
    QPointer<TLogControl> Control = new TLogControl(&Window);

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
    QPoint Inside() const { return {50, 50}; }
};

using TDestroy = std::function<void()>;
struct TCase {
    const char* Name;
    std::function<void(TScene&, TDestroy)> Arm;
    std::function<void(TScene&)> Act;
};

void PrintTo(const TCase& Case, std::ostream* Out) { *Out << Case.Name; }

// Scroll messages have no event of their own.
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

const TCase Cases[] = {
    {"mouse down",
     [](TScene& S, TDestroy D) {
         S.Control->OnMouseDown = [D](TObject*, TMouseButton, TShiftState, int, int) { D(); };
     },
     [](TScene& S) { QTest::mouseClick(S.Handle(), Qt::LeftButton, {}, S.Inside()); }},
    {"right mouse down",
     [](TScene& S, TDestroy D) {
         S.Control->OnMouseDown = [D](TObject*, TMouseButton, TShiftState, int, int) { D(); };
     },
     [](TScene& S) { QTest::mouseClick(S.Handle(), Qt::RightButton, {}, S.Inside()); }},
    {"mouse up",
     [](TScene& S, TDestroy D) {
         S.Control->OnMouseUp = [D](TObject*, TMouseButton, TShiftState, int, int) { D(); };
     },
     [](TScene& S) { QTest::mouseClick(S.Handle(), Qt::LeftButton, {}, S.Inside()); }},
    {"click", [](TScene& S, TDestroy D) { S.Control->OnClick = [D](TObject*) { D(); }; },
     [](TScene& S) { QTest::mouseClick(S.Handle(), Qt::LeftButton, {}, S.Inside()); }},
    {"clicked signal",
     [](TScene& S, TDestroy D) { QObject::connect(S.Control, &TCustomControl::clicked, D); },
     [](TScene& S) { QTest::mouseClick(S.Handle(), Qt::LeftButton, {}, S.Inside()); }},
    {"double click", [](TScene& S, TDestroy D) { S.Control->OnDblClick = [D](TObject*) { D(); }; },
     [](TScene& S) { QTest::mouseDClick(S.Handle(), Qt::LeftButton, {}, S.Inside()); }},
    {"mouse move",
     [](TScene& S, TDestroy D) { S.Control->OnMouseMove = [D](TObject*, TShiftState, int, int) { D(); }; },
     [](TScene& S) { QTest::mouseMove(S.Handle(), S.Inside()); }},
    {"wheel",
     [](TScene& S, TDestroy D) {
         S.Control->OnMouseWheel = [D](TObject*, TShiftState, int, TPoint, bool&) { D(); };
     },
     [](TScene& S) { SendWheel(S.Handle(), S.Inside(), QPoint(0, -240)); }},
    {"wheel down",
     [](TScene& S, TDestroy D) {
         S.Control->OnMouseWheelDown = [D](TObject*, TShiftState, TPoint, bool&) { D(); };
     },
     [](TScene& S) { SendWheel(S.Handle(), S.Inside(), QPoint(0, -240)); }},
    {"key down",
     [](TScene& S, TDestroy D) {
         S.Control->OnKeyDown = [D](TObject*, std::uint16_t&, TShiftState) { D(); };
     },
     [](TScene& S) { QTest::keyClick(S.Handle(), Qt::Key_A); }},
    {"key press", [](TScene& S, TDestroy D) { S.Control->OnKeyPress = [D](TObject*, char32_t&) { D(); }; },
     [](TScene& S) { QTest::keyClick(S.Handle(), Qt::Key_A); }},
    {"key up",
     [](TScene& S, TDestroy D) { S.Control->OnKeyUp = [D](TObject*, std::uint16_t&, TShiftState) { D(); }; },
     [](TScene& S) { QTest::keyClick(S.Handle(), Qt::Key_A); }},
    {"input method", [](TScene& S, TDestroy D) { S.Control->OnKeyPress = [D](TObject*, char32_t&) { D(); }; },
     [](TScene& S) {
         QInputMethodEvent Commit;
         Commit.setCommitString(QStringLiteral("ab"));
         QApplication::sendEvent(S.Control, &Commit);
     }},
    {"paint", [](TScene& S, TDestroy D) { S.Control->OnPaint = D; },
     [](TScene& S) {
         S.Control->Invalidate();
         qApp->processEvents();
     }},
    {"paint by Update", [](TScene& S, TDestroy D) { S.Control->OnPaint = D; },
     [](TScene& S) { S.Control->Repaint(); }},
    {"paint by ProcessMessages", [](TScene& S, TDestroy D) { S.Control->OnPaint = D; },
     [](TScene& S) {
         S.Control->Invalidate();
         Application.ProcessMessages();
     }},
    {"paint on the screen's demand", [](TScene& S, TDestroy D) { S.Control->OnPaint = D; },
     [](TScene& S) {
         S.Control->Invalidate();
         S.Window.repaint();
     }},
    {"first paint",
     [](TScene& S, TDestroy D) {
         S.Window.hide();
         S.Control->RecreateWnd();
         S.Control->OnPaint = D;
     },
     [](TScene& S) {
         S.Window.show();
         EXPECT_TRUE(QTest::qWaitForWindowExposed(&S.Window));
         qApp->processEvents();
     }},
    {"timer",
     [](TScene& S, TDestroy D) {
         auto* Hook = static_cast<TMessageHook*>(S.Control.data());
         Hook->Msg = WM_TIMER;
         Hook->Destroy = D;
         Hook->SetTimer(1, 1);
     },
     [](TScene&) { QTest::qWait(20); }},
    {"enter",
     [](TScene& S, TDestroy D) {
         S.Other.setFocus();
         S.Control->OnEnter = [D](TObject*) { D(); };
     },
     [](TScene& S) { QTest::mouseClick(S.Handle(), Qt::LeftButton, {}, S.Inside()); }},
    {"enter by Tab",
     [](TScene& S, TDestroy D) {
         S.Control->SetTabStop(true);
         S.Other.setFocus();
         S.Control->OnEnter = [D](TObject*) { D(); };
     },
     [](TScene& S) {
         QTest::keyClick(S.Handle(), Qt::Key_Tab);
         qApp->processEvents();
     }},
    {"enter by SetFocus",
     [](TScene& S, TDestroy D) {
         S.Other.setFocus();
         S.Control->OnEnter = [D](TObject*) { D(); };
     },
     [](TScene& S) { S.Control->SetFocus(); }},
    {"exit by click", [](TScene& S, TDestroy D) { S.Control->OnExit = [D](TObject*) { D(); }; },
     [](TScene& S) { QTest::mouseClick(S.Handle(), Qt::LeftButton, {}, QPoint(20, 160)); }},
    {"exit by Tab", [](TScene& S, TDestroy D) { S.Control->OnExit = [D](TObject*) { D(); }; },
     [](TScene& S) { QTest::keyClick(S.Handle(), Qt::Key_Tab); }},
    {"mouse enter",
     [](TScene& S, TDestroy D) {
         QTest::mouseMove(S.Handle(), QPoint(21, 161)); // not where the mouse is already
         auto* Hook = static_cast<TMessageHook*>(S.Control.data());
         Hook->Msg = CM_MOUSEENTER;
         Hook->Destroy = D;
     },
     [](TScene& S) { QTest::mouseMove(S.Handle(), S.Inside()); }},
    {"mouse leave",
     [](TScene& S, TDestroy D) {
         QTest::mouseMove(S.Handle(), S.Inside());
         auto* Hook = static_cast<TMessageHook*>(S.Control.data());
         Hook->Msg = CM_MOUSELEAVE;
         Hook->Destroy = D;
     },
     [](TScene& S) {
         QTest::mouseMove(S.Handle(), QPoint(20, 160));
         qApp->processEvents();
     }},
    {"scroll bar button",
     [](TScene& S, TDestroy D) {
         auto* Hook = static_cast<TMessageHook*>(S.Control.data());
         Hook->Msg = WM_VSCROLL;
         Hook->Destroy = D;
     },
     [](TScene& S) {
         QScrollBar* Bar = S.Control->verticalScrollBar();
         QTest::mouseClick(S.Handle(), Qt::LeftButton, {}, Bar->mapTo(&S.Window, Bar->rect().center()));
         QTest::mouseClick(S.Handle(), Qt::LeftButton, {}, S.Inside());
     }},
    {"wheel over a scroll bar",
     [](TScene& S, TDestroy D) {
         S.Control->OnMouseWheelDown = [D](TObject*, TShiftState, TPoint, bool&) { D(); };
     },
     [](TScene& S) {
         QScrollBar* Bar = S.Control->verticalScrollBar();
         SendWheel(S.Handle(), Bar->mapTo(&S.Window, Bar->rect().center()), QPoint(0, -120));
     }},
    {"handle creation",
     [](TScene& S, TDestroy D) {
         auto* Hook = static_cast<TMessageHook*>(S.Control.data());
         Hook->Msg = WM_SIZE;
         Hook->Destroy = D;
     },
     [](TScene& S) { S.Control->RecreateWnd(); }},
    {"programmed resize",
     [](TScene& S, TDestroy D) {
         auto* Hook = static_cast<TMessageHook*>(S.Control.data());
         Hook->Msg = WM_SIZE;
         Hook->Destroy = D;
         S.Window.hide();
     },
     [](TScene& S) { S.Control->SetBounds(0, 0, 90, 90); }},
};

class Lifetime : public ::testing::TestWithParam<TCase> {};

std::string CaseName(const ::testing::TestParamInfo<TCase>& Info) {
    std::string Result = Info.param.Name;
    for (char& C : Result)
        if (C == ' ' || C == '\'') C = '_';
    return Result;
}

} // namespace

TEST_P(Lifetime, ControlMayGoInTheHandler) {
    TScene Scene;
    delete Scene.Control;
    auto* Hook = new TMessageHook(&Scene.Window);
    Scene.Control = Hook;
    Hook->ExtraStyle = WS_HSCROLL | WS_VSCROLL;
    Hook->SetBounds(0, 0, 200, 140);
    Hook->show();
    for (const int Bar : {SB_HORZ, SB_VERT}) {
        Hook->SetScrollRange(Bar, 0, 127, false);
        Hook->ShowScrollBar(Bar, true);
    }
    Hook->SetFocus();
    qApp->processEvents();
    int Calls = 0;
    GetParam().Arm(Scene, [&] {
        ++Calls;
        delete Scene.Control.data();
    });
    GetParam().Act(Scene);
    EXPECT_EQ(Calls, 1);
    EXPECT_FALSE(Scene.Control);
    // The window goes on working.
    QTest::mouseClick(Scene.Handle(), Qt::LeftButton, {}, QPoint(20, 160));
    QTest::keyClick(Scene.Handle(), Qt::Key_X);
    qApp->processEvents();
    EXPECT_EQ(Scene.Other.text(), QStringLiteral("x"));
}

INSTANTIATE_TEST_SUITE_P(Handlers, Lifetime, ::testing::ValuesIn(Cases), CaseName);

TEST(LifetimeOthers, GuardSeesTheBeginOfDestruction) {
    struct TProbe : TCustomControl {
        bool& Alive;
        explicit TProbe(bool& AAlive) : TCustomControl(nullptr), Alive(AAlive) {}
        ~TProbe() override {
            BeginDestruction();
            Alive = static_cast<bool>(TControlGuard(this));
        }
    };
    bool Alive = true;
    auto Control = std::make_unique<TProbe>(Alive);
    const TControlGuard Guard(Control.get());
    EXPECT_TRUE(Guard);
    Control.reset();
    EXPECT_FALSE(Guard);
    EXPECT_FALSE(Alive) << "a guard made while the control goes knows it";
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

TEST(LifetimeOthers, TimerRunsOnlyWhileEnabledWithAHandler) {
    TTimer Timer;
    int Ticks = 0;
    Timer.SetInterval(1);
    QTest::qWait(5);
    Timer.SetOnTimer([&](TObject*) { ++Ticks; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return Ticks >= 2; }));
    Timer.SetEnabled(false);
    const int Before = Ticks;
    QTest::qWait(10);
    EXPECT_EQ(Ticks, Before);
    Timer.SetEnabled(true);
    Timer.SetInterval(0);
    QTest::qWait(10);
    EXPECT_EQ(Ticks, Before);
}

TEST(LifetimeOthers, ChildOfAControlAsOwnerAndParent) {
    auto Owner = std::make_unique<TLogControl>();
    QPointer<TCustomControl> Child = new TCustomControl(Owner.get(), Owner->viewport());
    Owner->show();
    qApp->processEvents();
    Owner.reset();
    EXPECT_FALSE(Child);
}
