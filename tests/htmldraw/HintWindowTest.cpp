// Hint windows: what they measure, where they are shown, and how they go.
#include "htmldraw/NVHTMLHintWindow.h"

#include "htmldraw/HTMLDraw.h"
#include "tests/support/QtTest.h"

#include <QApplication>
#include <QPointer>
#include <QScreen>
#include <QTest>

#include <climits>
#include <memory>

namespace quill::testing {
namespace {

struct TOwner : TCustomControl {
    TOwner() : TCustomControl(nullptr) {}
    ~TOwner() override { BeginDestruction(); }
};

TEST(HintWindow, MeasuresMarkupWithItsFixedExtras) {
    TNVHTMLHintWindow Hint;
    EXPECT_FALSE(Hint.GetHTMLDrawing() || Hint.GetWordwrap());
    EXPECT_EQ(Hint.GetColor(), clInfoBk);
    const std::string Text = "<B>b</B> and a few more words";
    Hint.SetHTMLDrawing(true);
    for (const bool Wrap : {false, true}) {
        Hint.SetWordWrap(Wrap);
        TRect Expected{0, 0, 60, 0};
        DrawHTML(Expected, *Hint.GetCanvas(), Text, Wrap, true, 0, 4);
        Expected.Right += 8;
        Expected.Bottom += 2;
        EXPECT_EQ(Hint.CalcHintRect(60, Text, nullptr), Expected);
    }
    Hint.SetHTMLDrawing(false);
    const TRect Plain = Hint.CalcHintRect(1000, Text, nullptr);
    EXPECT_GT(Plain.Right, Hint.GetCanvas()->TextWidth(Text)) << "tags are text";
    EXPECT_GT(Hint.CalcHintRect(60, Text, nullptr).Bottom, 3 * Hint.GetCanvas()->TextHeight("Ag"));
    EXPECT_GT(Hint.CalcHintRect(INT_MIN, "", nullptr).Right, 0);
}

TEST(HintWindow, PaintsAllOfItsTextInside) {
    TNVHTMLHintWindow Hint;
    Hint.SetColor(clWhite);
    for (const bool Markup : {false, true}) {
        for (const TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
            Hint.SetBiDiMode(Mode);
            Hint.SetHTMLDrawing(Markup);
            TRect Rect = Hint.CalcHintRect(1000, "MMMM\nM", nullptr);
            EXPECT_EQ(Rect.Bottom, 2 * Hint.GetCanvas()->TextHeight("Ag") + 2);
            Rect.Offset(100, 100);
            Hint.ActivateHint(Rect, "MMMM\nM");
            EXPECT_EQ(Hint.ClientToScreen({0, 0}), (TPoint{100, 100})) << "without the frame";
            const QImage Image = Hint.GetSurfaceImage();
            int Inked = 0;
            for (int Y = 0; Y < Image.height(); ++Y) {
                EXPECT_EQ(Image.pixelColor(0, Y), Image.pixelColor(Image.width() - 1, Y));
                bool Ink = false;
                for (int X = 0; X < Image.width(); ++X)
                    Ink = Ink || Image.pixelColor(X, Y) != QColor(Qt::white);
                Inked += Ink;
            }
            EXPECT_GT(Inked, Rect.Height() / 3);
        }
    }
}

TEST(HintWindow, StaysOnTheScreenWhereItBegins) {
    const TRect Screens[] = {{0, 0, 1000, 800}, {1000, 100, 2600, 1000}};
    const std::tuple<const char*, TRect, bool, TRect> Cases[] = {
        {"inside", {10, 10, 60, 30}, false, {10, 10, 60, 30}},
        {"left edge", {-20, 10, 30, 30}, false, {0, 10, 50, 30}},
        {"top edge", {10, -15, 60, 5}, false, {10, 0, 60, 20}},
        {"bottom edge", {10, 790, 60, 830}, false, {10, 760, 60, 800}},
        {"right edge beside another screen", {980, 300, 1080, 320}, false, {900, 300, 1000, 320}},
        {"the same from right to left", {980, 300, 1080, 320}, true, {1000, 300, 1100, 320}},
        {"right edge of all", {2590, 300, 2690, 320}, false, {2500, 300, 2600, 320}},
        {"above the second screen", {1500, 20, 1550, 40}, false, {1500, 100, 1550, 120}},
        {"far outside", {-5000, 5000, -4900, 5020}, false, {0, 780, 100, 800}},
        {"too wide", {500, 10, 9000, 30}, false, {0, 10, 1000, 30}},
        {"as wide as a number can say", {INT_MIN, INT_MIN, INT_MAX, INT_MAX}, true, {1000, 100, 2600, 1000}},
        {"inside out", {50, 50, 10, 10}, false, {50, 50, 51, 51}},
    };
    for (const auto& [What, Asked, RightToLeft, Expected] : Cases)
        EXPECT_EQ(THintWindow::KeepOnScreen(Asked, Screens, RightToLeft), Expected) << What;

    // The window itself, with its frame.
    const QRect Screen = QGuiApplication::primaryScreen()->geometry();
    THintWindow Hint;
    TRect Rect = Hint.CalcHintRect(THintWindow::MaxHintWidth({0, 0}), "some words", nullptr);
    const int Width = Rect.Width();
    Rect.Offset(Screen.right() - 10, Screen.bottom() - 10);
    Hint.ActivateHint(Rect, "some words");
    EXPECT_TRUE(Screen.contains(Hint.geometry()));
    EXPECT_EQ(Hint.width(), Width + 2);
}

TEST(HintWindow, TakesNeitherFocusNorMouse) {
    TOwner Owner;
    Owner.SetTabStop(true);
    Owner.resize(200, 100);
    Owner.move(300, 300);
    Owner.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Owner));
    Owner.SetFocus();
    auto* Hint = new TNVHTMLHintWindow(&Owner);
    Owner.SetBiDiMode(bdRightToLeft);
    Hint->ActivateHint(Bounds(310, 310, 50, 20), "hint");
    QApplication::processEvents();
    EXPECT_TRUE(Hint->IsHintVisible() && Owner.Focused() && Owner.isActiveWindow());
    EXPECT_EQ(Hint->GetCaption(), "hint");
    EXPECT_TRUE(Hint->IsRightToLeft()) << "as its owner";
    EXPECT_TRUE(Hint->testAttribute(Qt::WA_TransparentForMouseEvents));
    EXPECT_TRUE(Hint->windowFlags().testFlag(Qt::WindowTransparentForInput));
    // Given back and shown again; hidden with its owner.
    for (int Round = 0; Round < 2; ++Round) {
        Hint->ReleaseHandle();
        EXPECT_FALSE(Hint->IsHintVisible() || Hint->HandleAllocated() ||
                     Hint->testAttribute(Qt::WA_WState_Created));
        Hint->ActivateHint(Bounds(310, 310, 50, 20), "again");
        EXPECT_TRUE(Hint->IsHintVisible());
        QApplication::processEvents();
    }
    Owner.hide();
    EXPECT_FALSE(Hint->IsHintVisible());
}

TEST(HintWindow, GoesWithItsOwnerWhileItIsShown) {
    for (const bool Wrapped : {false, true}) {
        auto Window = std::make_unique<QWidget>();
        auto* Owner = new TOwner;
        if (Wrapped) Owner->setParent(Window.get());
        Owner->show();
        Window->show();
        const QPointer<THintWindow> Hint = new TNVHTMLHintWindow(Owner);
        const QPointer<THintWindow> Second = new THintWindow(Owner);
        Hint->ActivateHint(Bounds(10, 10, 50, 20), "a");
        Second->ActivateHint(Bounds(10, 10, 50, 20), "b");
        QApplication::processEvents();
        delete Second;
        if (Wrapped)
            Window.reset();
        else
            delete Owner;
        EXPECT_FALSE(Hint);
        QApplication::processEvents();
    }
}

} // namespace
} // namespace quill::testing
