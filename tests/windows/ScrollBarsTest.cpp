// Scroll bars: the user's actions as messages, the program's positions as they are.
#include "tests/support/QtTest.h"
#include "tests/windows/LogControl.h"

#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTest>
#include <QWindow>

using namespace quill;
using quill::testing::SendWheel;
using quill::testing::TLogControl;

namespace {

class TBars : public TLogControl {
public:
    TBars() {
        ExtraStyle = WS_HSCROLL | WS_VSCROLL;
        SetBounds(0, 0, 220, 220);
        HandleNeeded();
        for (const int Bar : {SB_HORZ, SB_VERT}) {
            SetScrollRange(Bar, 0, 127, false);
            ShowScrollBar(Bar, true);
        }
        LogScroll = true;
    }
    QScrollBar* V() { return verticalScrollBar(); }
};

QPoint ThumbCentre(QScrollBar* Bar) {
    QStyleOptionSlider Option;
    Option.initFrom(Bar);
    Option.orientation = Bar->orientation();
    Option.minimum = Bar->minimum();
    Option.maximum = Bar->maximum();
    Option.sliderPosition = Bar->sliderPosition();
    Option.sliderValue = Bar->value();
    Option.pageStep = Bar->pageStep();
    Option.singleStep = Bar->singleStep();
    return Bar->style()
        ->subControlRect(QStyle::CC_ScrollBar, &Option, QStyle::SC_ScrollBarSlider, Bar)
        .center();
}

} // namespace

TEST(ScrollBars, ActionsBecomeCodesAndTheBarWaitsForItsPosition) {
    TBars Control;
    struct {
        QAbstractSlider::SliderAction Action;
        unsigned Code;
    } const Cases[] = {
        {QAbstractSlider::SliderSingleStepAdd, SB_LINEDOWN},
        {QAbstractSlider::SliderSingleStepSub, SB_LINEUP},
        {QAbstractSlider::SliderPageStepAdd, SB_PAGEDOWN},
        {QAbstractSlider::SliderPageStepSub, SB_PAGEUP},
        {QAbstractSlider::SliderToMinimum, SB_TOP},
        {QAbstractSlider::SliderToMaximum, SB_BOTTOM},
    };
    Control.SetScrollPos(SB_VERT, 50, true);
    for (const auto& Case : Cases) {
        Control.V()->triggerAction(Case.Action);
        EXPECT_EQ(Control.Take(), "v" + std::to_string(Case.Code) + " 0");
        EXPECT_EQ(Control.V()->value(), 50);
        EXPECT_EQ(Control.V()->sliderPosition(), 50);
    }
    Control.horizontalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(Control.Take(), "h3 0");
}

TEST(ScrollBars, PositionsOfTheProgramSendNothing) {
    TBars Control;
    EXPECT_EQ(Control.SetScrollPos(SB_VERT, 60, true), 0);
    EXPECT_EQ(Control.SetScrollPos(SB_VERT, 500, true), 60);
    EXPECT_EQ(Control.GetScrollPos(SB_VERT), 127) << "clamped to the range";
    Control.SetScrollRange(SB_VERT, 0, 20, true);
    EXPECT_EQ(Control.GetScrollPos(SB_VERT), 20);
    int Min = -1, Max = -1;
    Control.GetScrollRange(SB_VERT, Min, Max);
    EXPECT_EQ(Min, 0);
    EXPECT_EQ(Max, 20);
    EXPECT_EQ(Control.V()->value(), 20);
    EXPECT_EQ(Control.Take(), "");
    EXPECT_EQ(Control.SetScrollPos(7, 3, true), 0);
    EXPECT_EQ(Control.GetScrollPos(7), 0);
}

TEST(ScrollBars, OnlyBarsOfTheWindowCanBeShown) {
    TLogControl Control;
    Control.ExtraStyle = WS_VSCROLL;
    Control.SetBounds(0, 0, 200, 200);
    Control.HandleNeeded();
    Control.ShowScrollBar(SB_HORZ, true);
    EXPECT_FALSE(Control.IsScrollBarShown(SB_HORZ));
    Control.ShowScrollBar(SB_VERT, true);
    EXPECT_TRUE(Control.IsScrollBarShown(SB_VERT));
    Control.ExtraStyle = 0;
    Control.RecreateWnd();
    EXPECT_FALSE(Control.IsScrollBarShown(SB_VERT));
}

TEST(ScrollBars, DraggingTheThumbTracksAndThenPositions) {
    TBars Control;
    Control.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Control));
    const auto At = [&](QPoint P) { return Control.V()->mapTo(&Control, P); };
    const QPoint From = ThumbCentre(Control.V());
    QTest::mousePress(Control.windowHandle(), Qt::LeftButton, {}, At(From));
    QTest::mouseMove(Control.windowHandle(), At(From + QPoint(0, 40)));
    const int Tracked = Control.V()->sliderPosition();
    EXPECT_GT(Tracked, 10);
    EXPECT_EQ(Control.Take(), "v5 " + std::to_string(Tracked));
    Control.SetScrollPos(SB_VERT, 33, true);
    EXPECT_EQ(Control.V()->sliderPosition(), Tracked) << "the thumb stays under the mouse";
    EXPECT_EQ(Control.GetScrollPos(SB_VERT), 33);
    QTest::mouseRelease(Control.windowHandle(), Qt::LeftButton, {}, At(From + QPoint(0, 40)));
    EXPECT_EQ(Control.Take(), "v4 " + std::to_string(Tracked) + "; v8 0");
    EXPECT_EQ(Control.V()->value(), 33) << "and then shows where the control is";
}

TEST(ScrollBars, StayLeftToRight) {
    TBars Control;
    Control.SetBiDiMode(bdRightToLeft);
    EXPECT_FALSE(Control.horizontalScrollBar()->isRightToLeft());
    EXPECT_TRUE(Control.isRightToLeft());
}

TEST(ScrollBars, WheelOverABarIsTheControlsWheel) {
    TBars Control;
    Control.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Control));
    int Downs = 0;
    Control.OnMouseWheelDown = [&](TObject*, TShiftState, TPoint, bool& Handled) {
        ++Downs;
        Handled = true;
    };
    const QPoint Pos = Control.V()->mapTo(&Control, Control.V()->rect().center());
    SendWheel(Control.windowHandle(), Pos, QPoint(0, -120));
    EXPECT_EQ(Downs, 1);
    EXPECT_EQ(Control.Take(), "");
}
