// Scroll bars: the user's actions as messages, the program's positions as they are.
#include "tests/support/QtTest.h"
#include "tests/windows/LogControl.h"

#include <QHoverEvent>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>

#include <limits>

using namespace quill;
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

QRect PartRect(QScrollBar* Bar, QStyle::SubControl Part) {
    QStyleOptionSlider Option;
    Option.initFrom(Bar);
    Option.orientation = Bar->orientation();
    Option.minimum = Bar->minimum();
    Option.maximum = Bar->maximum();
    Option.sliderPosition = Bar->sliderPosition();
    Option.sliderValue = Bar->value();
    Option.pageStep = Bar->pageStep();
    Option.singleStep = Bar->singleStep();
    return Bar->style()->subControlRect(QStyle::CC_ScrollBar, &Option, Part, Bar);
}

} // namespace

TEST(ScrollBars, ActionsBecomeCodesAndTheBarWaitsForItsPosition) {
    TBars Control;
    Control.SetScrollPos(SB_VERT, 50, true);
    constexpr int Codes[] = {SB_LINEDOWN, SB_LINEUP, SB_PAGEDOWN, SB_PAGEUP, SB_TOP, SB_BOTTOM};
    int Action = QAbstractSlider::SliderSingleStepAdd; // the first of six, in the order of the codes
    for (const int Code : Codes) {
        Control.V()->triggerAction(static_cast<QAbstractSlider::SliderAction>(Action++));
        EXPECT_EQ(Control.Take(), "v" + std::to_string(Code) + " 0");
        EXPECT_EQ(Control.V()->value(), 50);
        EXPECT_EQ(Control.V()->sliderPosition(), 50);
    }
    Control.SetBiDiMode(bdRightToLeft); // mirroring is the control's business
    Control.horizontalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
    EXPECT_EQ(Control.Take(), "h3 0");
    EXPECT_FALSE(Control.horizontalScrollBar()->isRightToLeft());
}

TEST(ScrollBars, PositionsOfTheProgramSendNothing) {
    TBars Control;
    EXPECT_EQ(Control.SetScrollPos(SB_VERT, 500, true), 0);
    EXPECT_EQ(Control.GetScrollPos(SB_VERT), 127) << "clamped to the range";
    Control.SetScrollRange(SB_VERT, 0, 20, true);
    int Min = -1, Max = -1;
    Control.GetScrollRange(SB_VERT, Min, Max);
    EXPECT_TRUE(Min == 0 && Max == 20 && Control.GetScrollPos(SB_VERT) == 20 && Control.V()->value() == 20);
    EXPECT_EQ(Control.Take(), "");
    EXPECT_EQ(Control.SetScrollPos(7, 3, true), 0) << "no such bar";
}

TEST(ScrollBars, OnlyBarsOfTheWindowCanBeShown) {
    TBars Control;
    Control.ExtraStyle = WS_VSCROLL;
    Control.RecreateWnd();
    Control.ShowScrollBar(SB_HORZ, true);
    EXPECT_FALSE(Control.IsScrollBarShown(SB_HORZ));
    EXPECT_TRUE(Control.IsScrollBarShown(SB_VERT));
}

TEST(ScrollBars, DraggingTheThumbTracksAndThenPositions) {
    for (const TScrollBarLook Look : {sblRegular, sblEncarta, sblFlat}) {
        TBars Control;
        Control.SetScrollBarLook(Look, clWhite, false);
        Control.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Control));
        const auto At = [&](QPoint P) { return Control.V()->mapTo(&Control, P); };
        const QPoint From = PartRect(Control.V(), QStyle::SC_ScrollBarSlider).center();
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
        QTest::mouseClick(Control.windowHandle(), Qt::LeftButton, {},
                          At(PartRect(Control.V(), QStyle::SC_ScrollBarAddLine).center()));
        EXPECT_EQ(Control.Take(), "v1 0");
    }
}

TEST(ScrollBars, FlatLooksShowPartsOnTheirBackground) {
    TBars Control;
    const auto Look = [&](QScrollBar* Bar, QStyle::SubControl Part) {
        const QImage Image = Bar->grab().toImage();
        const QPointF Centre = QRectF(PartRect(Bar, Part)).center() * Image.devicePixelRatio();
        return Image.pixelColor(Centre.toPoint());
    };
    const auto Groove = [&](QScrollBar* Bar) { return Look(Bar, QStyle::SC_ScrollBarAddPage); };
    const auto Thumb = [&](QScrollBar* Bar) { return Look(Bar, QStyle::SC_ScrollBarSlider); };
    Control.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Control));
    const int Regular = Control.GetScrollBarSize(SB_VERT);
    const int Client = Control.GetClientWidth();
    for (QScrollBar* Bar : {Control.verticalScrollBar(), Control.horizontalScrollBar()}) {
        for (const TColor Background : {TColor(clWhite), TColor(0x800000), TColor(0x202020)}) {
            Control.SetScrollBarLook(sblFlat, Background, true);
            EXPECT_EQ(Control.GetClientWidth() - Client, Regular - Control.GetScrollBarSize(SB_VERT));
            const QColor Track = Groove(Bar);
            EXPECT_EQ(Track, QColor(Background & 0xFF, Background >> 8 & 0xFF, Background >> 16 & 0xFF));
            EXPECT_GT(std::abs(qGray(Thumb(Bar).rgb()) - qGray(Track.rgb())), 20) << "seen on any background";
            EXPECT_NE(Look(Bar, QStyle::SC_ScrollBarAddLine), Track) << "an arrow";
        }
        Control.SetScrollBarLook(sblEncarta, clWhite, true);
        const QPoint OnThumb = PartRect(Bar, QStyle::SC_ScrollBarSlider).center();
        QHoverEvent Event(QEvent::HoverMove, OnThumb, OnThumb, {0, 0});
        QCoreApplication::sendEvent(Bar, &Event);
        EXPECT_EQ(Thumb(Bar), Bar->palette().color(QPalette::Button)) << "raised under the mouse";
        Control.setEnabled(false);
        EXPECT_EQ(Thumb(Bar), Groove(Bar)) << "no thumb in a bar that cannot scroll";
        Control.setEnabled(true);
        Control.SetScrollBarLook(sblFlat, clBtnFace, true);
        QPalette Dark = Control.palette();
        Dark.setColor(QPalette::Button, QColor(40, 40, 44));
        Control.setPalette(Dark);
        EXPECT_EQ(Groove(Bar), QColor(40, 40, 44)) << "system colours follow the palette";
        Control.setPalette({});
    }
    Control.SetScrollRange(SB_VERT, 0, 0, true);
    EXPECT_EQ(Thumb(Control.V()), Look(Control.V(), QStyle::SC_ScrollBarGroove));
    Control.SetScrollBarLook(sblRegular, clWhite, true);
    EXPECT_EQ(Control.GetClientWidth(), Client);
}

// --- wheel and touchpad over client and bars ------------------------------------------------------------------------

namespace {

// Scrolls 20 pixels a line each way, and uses every notch.
class TScroller : public TBars {
public:
    explicit TScroller(QWidget* Parent = nullptr) { setParent(Parent); }
    TPoint GetWheelLine() override { return {20, 20}; }
    bool DoMouseWheelDown(TShiftState, TPoint) override { return Log("down"), true; }
    bool DoMouseWheelUp(TShiftState, TPoint) override { return Log("up"), true; }
};

void SendScroll(QWindow* Window, QPoint Pos, QPoint Pixels, char Phase, QPoint Angle = {}) {
    const Qt::ScrollPhase Phases[] = {Qt::ScrollBegin, Qt::ScrollUpdate, Qt::ScrollMomentum, Qt::ScrollEnd,
                                      Qt::NoScrollPhase};
    QWheelEvent Event(Pos, Window->mapToGlobal(Pos), Pixels, Angle, Qt::NoButton, {},
                      Phases[std::string("bgmen").find(Phase)], false);
    QSpontaneKeyEvent::setSpontaneous(&Event);
    qApp->notify(Window, &Event);
}

} // namespace

TEST(Touchpad, PixelsBecomeLinesAsTheFingerMoves) {
    TScroller Control;
    Control.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Control));
    struct TStep {
        char Phase; // begin, go on, momentum, end, none
        QPoint Pixels = {};
        QPoint Angle = {};
    };
    const std::tuple<const char*, std::vector<TStep>, const char*> Cases[] = {
        {"sums up", {{'b', {0, -7}}, {'g', {0, -7}}, {'g', {0, -7}}}, "down"},
        {"no rest is left", {{'b', {0, -19}}, {'e'}, {'g', {0, -19}}}, ""},
        {"a new beginning drops it", {{'b', {0, -19}}, {'b', {0, -19}}}, ""},
        {"turning back starts afresh", {{'b', {0, -19}}, {'g', {0, 10}}, {'g', {0, 10}}}, "up"},
        {"momentum goes on", {{'b', {0, -15}}, {'m', {0, -15}}, {'m', {0, -15}}}, "down; down"},
        {"pixels count before the angle", {{'b', {0, -40}, {0, -480}}}, "down; down"},
        {"fine angles sum up", {{'n', {}, {0, 60}}, {'n', {}, {0, 60}}}, "up"},
        {"both ways", {{'b', {-30, -30}}, {'g', {-30, -30}}}, "down; h1 0; down; down; h1 0; h1 0"},
    };
    for (const auto& [What, Steps, Result] : Cases) {
        for (const TStep& Step : Steps)
            SendScroll(Control.windowHandle(), {30, 30}, Step.Pixels, Step.Phase, Step.Angle);
        EXPECT_EQ(Control.Take(), Result) << What;
        SendScroll(Control.windowHandle(), {30, 30}, {}, 'e');
    }
    Control.ShowScrollBar(SB_HORZ, false);
    SendScroll(Control.windowHandle(), {30, 30}, {-900, 0}, 'n');
    EXPECT_EQ(Control.Take(), "") << "sideways without a bar";
    SendScroll(Control.windowHandle(), {30, 30}, {0, std::numeric_limits<int>::min()}, 'n');
    EXPECT_LE(Control.Take().size(), 100 * std::string("down; ").size());
}

// Who takes the first event of a gesture gets all of it.
TEST(Touchpad, AGestureThatBeginsSlowlyIsTheControlsNotTheParents) {
    struct TParent : QWidget {
        int Wheels = 0;
        void wheelEvent(QWheelEvent* Event) override {
            ++Wheels;
            Event->accept();
        }
    } Parent;
    Parent.resize(220, 220);
    TScroller Control(&Parent);
    Parent.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Parent));
    for (const QPoint First : {QPoint(0, 0), QPoint(0, -2)}) {
        SendScroll(Parent.windowHandle(), {30, 30}, First, 'b');
        SendScroll(Parent.windowHandle(), {30, 30}, {0, -20}, 'g');
        SendScroll(Parent.windowHandle(), {30, 30}, {}, 'e');
        EXPECT_EQ(Control.Take(), "down");
    }
    EXPECT_EQ(Parent.Wheels, 0);
    Control.ShowScrollBar(SB_HORZ, false);
    SendScroll(Parent.windowHandle(), {30, 30}, {-50, 0}, 'n');
    EXPECT_EQ(Parent.Wheels, 1) << "what it cannot scroll is the parent's";
}

TEST(ScrollBars, WheelOverABarIsTheControlsWheel) {
    TScroller Control;
    Control.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Control));
    for (QScrollBar* Bar : {Control.verticalScrollBar(), Control.horizontalScrollBar()}) {
        const QPoint Pos = Bar->mapTo(&Control, Bar->rect().center());
        SendScroll(Control.windowHandle(), Pos, {}, 'n', {0, -120});
        SendScroll(Control.windowHandle(), Pos, {0, -20}, 'n');
        EXPECT_EQ(Control.Take(), "down; down");
    }
}
