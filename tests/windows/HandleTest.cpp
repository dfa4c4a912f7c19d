// The window handle, sizes of hidden controls, and properties that reach the window.
#include "tests/support/QtTest.h"
#include "tests/windows/LogControl.h"

#include <QPalette>
#include <QPointer>

using namespace quill;
using quill::testing::TLogControl;

namespace {

std::string SizeText(const TCustomControl& Control) {
    return std::to_string(Control.GetClientWidth()) + "x" + std::to_string(Control.GetClientHeight());
}

} // namespace

TEST(Handle, IsCreatedOnceInOrderToldItsSizeAndDestroyedThroughTheDescendant) {
    struct TControl : TLogControl {
        std::string* State = nullptr;
        ~TControl() override { BeginDestruction(); }
        void DestroyWnd() override {
            if (State) *State = HasState(csDestroying) ? "destroying" : "alive";
            TLogControl::DestroyWnd();
        }
    };
    std::string State;
    {
        TControl Control;
        Control.State = &State;
        Control.LogWindow = true;
        Control.SetBorderStyle(bsNone);
        Control.SetBounds(0, 0, 120, 80);
        EXPECT_EQ(Control.Take(), "");
        for (int Time = 0; Time < 2; ++Time) Control.HandleNeeded();
        EXPECT_EQ(Control.Take(), "params; create; handle; size 120,80");
        Control.SetBounds(5, 5, 100, 80);
        Control.SetBounds(7, 7, 100, 80);
        EXPECT_EQ(Control.Take(), "size 100,80");
        Control.RecreateWnd();
        EXPECT_EQ(State, "alive");
        Control.show();
        Control.hide();
        EXPECT_EQ(Control.Take(), "destroy; params; create; handle; size 100,80; shown; hidden");
    }
    EXPECT_EQ(State, "destroying");
}

TEST(Handle, IsCreatedByTheFirstShow) {
    TLogControl Control;
    Control.LogWindow = true;
    Control.SetBounds(0, 0, 120, 80);
    Control.show();
    EXPECT_TRUE(Control.Take().ends_with("; shown"));
}

TEST(Handle, ClientSizeIsRightBeforeTheControlIsShown) {
    TLogControl Control;
    Control.ExtraStyle = WS_HSCROLL | WS_VSCROLL;
    Control.SetBorderStyle(bsNone);
    Control.SetBounds(0, 0, 200, 150);
    Control.HandleNeeded();
    EXPECT_EQ(SizeText(Control), "200x150");
    const int V = Control.GetScrollBarSize(SB_VERT);
    const int H = Control.GetScrollBarSize(SB_HORZ);
    ASSERT_GT(std::min(V, H), 4);
    for (const int Bar : {SB_VERT, SB_HORZ}) Control.ShowScrollBar(Bar, true);
    const std::string Hidden = std::to_string(200 - V) + "x" + std::to_string(150 - H);
    EXPECT_EQ(SizeText(Control), Hidden);
    Control.LogWindow = true;
    Control.show();
    EXPECT_EQ(Control.Take(), "shown") << "with the size that it had before";
    Control.hide();
    Control.SetClientSize(100, 50);
    for (const int Bar : {SB_VERT, SB_HORZ}) Control.ShowScrollBar(Bar, false);
    EXPECT_EQ(SizeText(Control), std::to_string(100 + V) + "x" + std::to_string(50 + H));

    Control.SetBounds(0, 0, 200, 150);
    Control.SetCtl3D(false);
    Control.SetBorderStyle(bsSingle);
    EXPECT_EQ(SizeText(Control), "198x148") << "a plain frame of one pixel";
    Control.SetCtl3D(true);
    EXPECT_EQ(Control.GetClientWidth(), 200 - 2 * Control.frameWidth());
    Control.SetBorderStyle(bsNone);
    Control.resize(90, 40);
    EXPECT_EQ(SizeText(Control), "90x40") << "sized as a widget";
}

TEST(Handle, TabStopDecidesTheFocusPolicyUnlessTheProgramDid) {
    TLogControl Control;
    Control.HandleNeeded();
    EXPECT_EQ(Control.focusPolicy(), Qt::ClickFocus);
    Control.SetTabStop(true);
    EXPECT_EQ(Control.focusPolicy(), Qt::StrongFocus);
    Control.setFocusPolicy(Qt::NoFocus);
    Control.RecreateWnd();
    EXPECT_EQ(Control.focusPolicy(), Qt::NoFocus);
}

TEST(Handle, BidiModeMirrorsTheBarsSideOnly) {
    TLogControl Control;
    Control.ExtraStyle = WS_VSCROLL;
    Control.SetBounds(0, 0, 200, 150);
    Control.HandleNeeded();
    Control.ShowScrollBar(SB_VERT, true);
    const int Frame = Control.frameWidth();
    const int Bar = Control.GetScrollBarSize(SB_VERT);
    const std::pair<TBiDiMode, int> Cases[] = {
        {bdLeftToRight, 0}, {bdRightToLeft, Bar}, {bdRightToLeftReadingOnly, 0}, {bdRightToLeftNoAlign, Bar}};
    for (const auto& [Mode, Left] : Cases) {
        Control.SetBiDiMode(Mode);
        EXPECT_EQ(Control.viewport()->x(), Frame + Left) << Mode;
    }
    Control.setLayoutDirection(Qt::LeftToRight);
    EXPECT_EQ(Control.GetBiDiMode(), bdRightToLeftNoAlign) << "only with ParentBiDiMode the widget leads";
}

TEST(Handle, ParentBidiModeFollowsTheWidget) {
    QWidget Window;
    TLogControl Control(&Window);
    Window.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(Control.GetBiDiMode(), bdRightToLeft);
    EXPECT_EQ(TLogControl(&Window).GetBiDiMode(), bdRightToLeft) << "one that comes later";
    Control.SetBiDiMode(bdLeftToRight);
    EXPECT_EQ(Control.GetBiDiMode(), bdLeftToRight);
    Control.SetParentBiDiMode(true);
    EXPECT_EQ(Control.GetBiDiMode(), bdRightToLeft);
}

TEST(Handle, FontFollowsTheParentUntilSet) {
    QWidget Window;
    TLogControl Control(&Window);
    Control.LogWindow = true;
    const auto SetWindowFont = [&](int Height) {
        QFont Font = Window.font();
        Font.setPixelSize(Height);
        Window.setFont(Font);
        return Control.Take();
    };
    Control.GetFont()->SetColor(clRed);
    EXPECT_FALSE(Control.GetParentFont()) << "any change makes the font our own";
    Control.SetParentFont(true);
    Control.Take();
    EXPECT_EQ(SetWindowFont(31), "font");
    EXPECT_EQ(Control.GetFont()->GetHeight(), -31);
    EXPECT_EQ(Control.GetFont()->GetColor(), clRed) << "widgets have no font colour";
    Control.GetFont()->SetHeight(-17);
    EXPECT_EQ(Control.Take(), "font");
    EXPECT_EQ(Control.font().pixelSize(), 17) << "children inherit it";
    EXPECT_EQ(SetWindowFont(40), "");
    Control.SetParentFont(true);
    EXPECT_EQ(Control.GetFont()->GetHeight(), -40);
}

TEST(Handle, PaletteReachesTheCanvasAndRepaints) {
    TLogControl Control;
    Control.SetBorderStyle(bsNone);
    Control.SetBounds(0, 0, 40, 30);
    Control.HandleNeeded();
    Control.Update();
    QPalette Dark = Control.palette();
    Dark.setColor(QPalette::Base, QColor(20, 30, 40));
    Dark.setColor(QPalette::Disabled, QPalette::Base, QColor(50, 60, 70));
    Control.setPalette(Dark);
    EXPECT_TRUE(Control.HasInvalidRegion());
    EXPECT_EQ(Control.GetSurfaceImage().pixelColor(5, 5), QColor(20, 30, 40));
    Control.SetEnabled(false);
    EXPECT_EQ(Control.GetSurfaceImage().pixelColor(5, 5), QColor(50, 60, 70));
    Control.SetColor(clRed);
    EXPECT_FALSE(Control.GetParentColor());
    EXPECT_EQ(Control.GetSurfaceImage().pixelColor(5, 5), QColor(255, 0, 0));
}

TEST(Handle, OwnerAndParentMayGoInAnyOrder) {
    for (const bool OwnerFirst : {false, true}) {
        auto Parent = std::make_unique<TLogControl>();
        auto Owner = std::make_unique<TComponent>();
        QPointer<TCustomControl> Control = new TCustomControl(Owner.get(), Parent->viewport());
        // Of one that is both.
        QPointer<TCustomControl> Inner = new TCustomControl(Parent.get(), Parent->viewport());
        Parent->show();
        OwnerFirst ? Owner.reset() : Parent.reset();
        EXPECT_FALSE(Control);
        EXPECT_EQ(Owner ? Owner->GetComponentCount() : 0, 0);
        Parent.reset();
        EXPECT_FALSE(Inner);
    }
}

TEST(Handle, SizeHintIsTheSizeThatTheProgramAskedFor) {
    TLogControl Control;
    EXPECT_GT(Control.sizeHint().width(), 50);
    Control.SetBounds(0, 0, 321, 123);
    EXPECT_EQ(Control.sizeHint(), QSize(321, 123));
    Control.resize(50, 50); // by a layout
    EXPECT_EQ(Control.sizeHint(), QSize(321, 123));
}

TEST(Handle, TextFlagsFollowTheBidiMode) {
    TLogControl Control;
    const std::tuple<TBiDiMode, unsigned, unsigned> Cases[] = {
        {bdLeftToRight, DT_RIGHT, DT_RIGHT},
        {bdRightToLeft, DT_LEFT, DT_RIGHT | DT_RTLREADING},
        {bdRightToLeft, DT_RIGHT | DT_VCENTER, DT_VCENTER | DT_RTLREADING},
        {bdRightToLeft, DT_CENTER, DT_CENTER | DT_RTLREADING},
        {bdRightToLeftNoAlign, DT_LEFT, DT_RTLREADING},
        {bdRightToLeftReadingOnly, DT_RIGHT, DT_RIGHT | DT_RTLREADING},
    };
    for (const auto& [Mode, In, Out] : Cases) {
        Control.SetBiDiMode(Mode);
        EXPECT_EQ(Control.DrawTextBiDiModeFlags(In), Out) << Mode << " " << In;
    }
}
