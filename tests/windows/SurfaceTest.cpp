// What is painted, when, and which pixels it leaves. Runs at several scales.
#include "tests/support/QtTest.h"
#include "tests/windows/LogControl.h"

#include "host/windows/Application.h"

#include <QImage>
#include <QScreen>

#include <cmath>

using namespace quill;
using quill::testing::TLogControl;

namespace {

// A shown control without a frame, painted once.
class TShown : public TLogControl {
public:
    explicit TShown(int Width = 100, int Height = 60) {
        SetBorderStyle(bsNone);
        SetColor(clWhite);
        SetBounds(0, 0, Width, Height);
        show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(this));
        qApp->processEvents();
        LogPaint = true;
        Take();
    }
    std::uint64_t CountPaints(const std::function<void()>& Action) {
        const std::uint64_t Before = GetPaintCount();
        Action();
        return GetPaintCount() - Before;
    }
    void Fill(const TRect& Rect, TColor Color) {
        GetCanvas()->GetBrush()->SetColor(Color);
        GetCanvas()->FillRect(Rect);
    }
    // The colour of a client pixel on the surface, after what is invalid was painted: of its first device pixel.
    TColor PixelAt(int X, int Y) {
        const double S = GetScale();
        const QColor Color = GetSurfaceImage().pixelColor(static_cast<int>(std::floor(X * S + 0.5)),
                                                          static_cast<int>(std::floor(Y * S + 0.5)));
        return static_cast<TColor>(Color.red() | Color.green() << 8 | Color.blue() << 16);
    }
};

} // namespace

TEST(Surface, OnePaintPerTurnClippedToWhatIsInvalid) {
    TShown Control;
    const auto Turn = [] { qApp->processEvents(); };
    EXPECT_EQ(Control.CountPaints([&] {
        for (int Time = 0; Time < 2; ++Time) Control.InvalidatePixels({10, 10, 20, 20});
        Control.InvalidatePixels({40, 30, 60, 40});
        EXPECT_EQ(Control.GetInvalidBounds(), (TRect{10, 10, 60, 40}));
        Turn();
    }),
              1u);
    EXPECT_EQ(Control.Take(), "paint 10,10-60,40");
    EXPECT_FALSE(Control.HasInvalidRegion());
    // Exposed anew: the surface is there.
    EXPECT_EQ(Control.CountPaints([&] { Control.Update(), Control.viewport()->update(), Turn(); }), 0u);
    EXPECT_EQ(Control.CountPaints([&] { Control.Repaint(), Turn(); }), 1u);
}

TEST(Surface, DrawingOutsideTheInvalidPartIsClipped) {
    TShown Control;
    Control.OnPaint = [&] { Control.Fill(Control.GetClientRect(), clRed); };
    Control.InvalidatePixels({10, 10, 20, 20});
    Control.InvalidatePixels({30, 30, 40, 40});
    const std::uint64_t Before = Control.GetPaintedPixels();
    for (const int Inside : {10, 19, 35}) EXPECT_EQ(Control.PixelAt(Inside, Inside), clRed) << Inside;
    // Also between two invalid parts.
    for (const int Outside : {9, 20, 25}) EXPECT_EQ(Control.PixelAt(Outside, Outside), clWhite) << Outside;
    const double S = Control.GetScale();
    EXPECT_EQ(Control.GetPaintedPixels() - Before, static_cast<std::uint64_t>(2 * 100 * S * S));
}

TEST(Surface, ErasesWithColorUnlessOpaque) {
    TShown Control;
    Control.Fill(Control.GetClientRect(), clBlack);
    Control.InvalidatePixels({0, 0, 50, 60}, false);
    EXPECT_EQ(Control.PixelAt(5, 5), clBlack) << "no erasing asked for";
    Control.InvalidatePixels({0, 0, 50, 60}, true);
    EXPECT_EQ(Control.PixelAt(5, 5), clWhite);
    EXPECT_EQ(Control.PixelAt(60, 5), clBlack);
    if (Control.GetScale() != std::floor(Control.GetScale())) return; // there every control is erased
    Control.SetControlStyle({csOpaque});
    Control.Invalidate();
    EXPECT_EQ(Control.PixelAt(60, 5), clBlack);
}

TEST(Surface, ScreenShowsTheSurfacePixelByPixel) {
    // A control at an odd place, whose device position is between pixels at scale 1.5.
    QWidget Window;
    Window.resize(140, 90);
    TLogControl Control(&Window);
    Control.SetBorderStyle(bsNone);
    Control.SetBounds(7, 5, 101, 61);
    Control.OnPaint = [&] {
        std::vector<TPoint> Points;
        for (int X = 0; X < 101; X += 3)
            for (int Y = X % 2; Y < 61; Y += 2) Points.push_back({X, Y});
        Control.GetCanvas()->SetPixels(Points, clBlue);
    };
    Window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&Window));
    qApp->processEvents();
    const QImage Image = Control.GetSurfaceImage();
    // The window system's own picture where it can be had.
    const bool IsX11 = QGuiApplication::platformName() == QLatin1String("xcb");
    const QPixmap Picture = IsX11 ? Window.screen()->grabWindow(Window.winId()) : Window.grab();
    QImage Screen = Picture.toImage().convertToFormat(QImage::Format_RGB32);
    Screen.setDevicePixelRatio(1.0);
    const double S = Control.GetScale();
    const int DX = static_cast<int>(std::floor(7 * S + 0.5));
    const int DY = static_cast<int>(std::floor(5 * S + 0.5));
    int Different = 0;
    for (int Y = 0; Y < static_cast<int>(61 * S); ++Y)
        for (int X = 0; X < static_cast<int>(101 * S); ++X)
            Different += Screen.pixel(X + DX, Y + DY) != Image.pixel(X, Y);
    EXPECT_EQ(Different, 0);
}

TEST(Surface, RedrawOffKeepsTheOldPicture) {
    TShown Control;
    TColor Color = clRed;
    Control.OnPaint = [&] { Control.Fill(Control.GetClientRect(), Color); };
    Control.Repaint();
    Control.InvalidatePixels({0, 0, 5, 5});
    Control.Perform(WM_SETREDRAW, 0, 0);
    Color = clBlue;
    EXPECT_EQ(Control.CountPaints([&] {
        Control.Invalidate();
        Control.Repaint();
        Control.Fill({0, 0, 10, 10}, clBlue);
        Control.ScrollWindow(0, 10, Control.GetClientRect(), Control.GetClientRect());
        qApp->processEvents();
    }),
              0u);
    EXPECT_FALSE(Control.HasInvalidRegion());
    EXPECT_EQ(Control.PixelAt(3, 3), clRed);
    Control.Perform(WM_SETREDRAW, 0, 0); // a state, not a count
    Control.Perform(WM_SETREDRAW, 1, 0);
    EXPECT_EQ(Control.GetInvalidBounds(), Control.GetClientRect());
    EXPECT_EQ(Control.PixelAt(3, 3), clBlue);
    Control.Perform(WM_SETREDRAW, 0, 0);
    Control.Perform(WM_SETREDRAW, 1, 0);
    EXPECT_FALSE(Control.HasInvalidRegion()) << "nothing changed meanwhile";
}

TEST(Surface, ManyRectanglesBecomeTheirBounds) {
    TShown Control(200, 100);
    for (int I = 0; I < 40; ++I) Control.InvalidatePixels({I * 4, I * 2, I * 4 + 2, I * 2 + 2});
    Control.Update();
    EXPECT_EQ(Control.Take(), "paint 0,0-158,80");
}

TEST(Surface, DrawingOutsidePaintReachesTheScreen) {
    TShown Control;
    struct TFilter : QObject {
        int Blits = 0;
        bool eventFilter(QObject*, QEvent* Event) override {
            Blits += Event->type() == QEvent::Paint;
            return false;
        }
    } Filter;
    Control.viewport()->installEventFilter(&Filter);
    EXPECT_EQ(Control.CountPaints([&] {
        Control.Fill({0, 0, 10, 10}, clBlue);
        Control.Fill({10, 10, 20, 20}, clBlue);
        EXPECT_EQ(Filter.Blits, 0);
        Control.Flush();
        EXPECT_EQ(Filter.Blits, 1);
        qApp->processEvents();
        EXPECT_EQ(Filter.Blits, 1);
        Control.Fill({20, 20, 30, 30}, clBlue);
        qApp->processEvents();
        EXPECT_EQ(Filter.Blits, 2);
    }),
              0u);
    EXPECT_EQ(Control.PixelAt(25, 25), clBlue);
}

TEST(Surface, IsPaintedWhenSomebodyWantsToSeeIt) {
    TShown Control;
    Control.Invalidate();
    EXPECT_EQ(Control.CountPaints([&] { Control.Flush(); }), 0u) << "shows what there is";
    EXPECT_EQ(Control.CountPaints([&] { qApp->processEvents(); }), 1u) << "what is invalid is not forgotten";
    Control.Invalidate();
    EXPECT_EQ(Control.CountPaints([&] { Application.ProcessMessages(); }), 1u);
    Control.SetColor(clFuchsia);
    EXPECT_EQ(Control.grab().toImage().pixelColor(3, 3), QColor(Qt::magenta));
    EXPECT_FALSE(Control.HasInvalidRegion());

    TLogControl Hidden;
    Hidden.SetBounds(0, 0, 50, 50);
    Hidden.Invalidate();
    EXPECT_FALSE(Hidden.HasInvalidRegion()) << "no handle";
    Hidden.HandleNeeded();
    EXPECT_TRUE(Hidden.HasInvalidRegion());
    qApp->processEvents();
    EXPECT_EQ(Hidden.GetPaintCount(), 0u);
    Hidden.Update();
    EXPECT_EQ(Hidden.GetPaintCount(), 1u);
}

TEST(Surface, PaintMayInvalidateResizeAndRecreate) {
    TShown Control;
    int Paints = 0;
    Control.OnPaint = [&] { ++Paints, Control.Update(), Control.Repaint(), Control.Flush(); };
    Control.Invalidate();
    Control.Update();
    EXPECT_EQ(Paints, 1);
    for (int Turn = 0; Turn < 6; ++Turn) {
        const int Before = Paints;
        qApp->processEvents();
        EXPECT_LE(Paints, Before + 1) << "a Paint that always invalidates must not block";
    }
    EXPECT_GE(Paints, 3) << "and is painted again in the next turn";

    const auto SetRedraw = [&](bool On) { Control.Perform(WM_SETREDRAW, On, 0); };
    const std::function<void()> Deeds[] = {
        [&] { Control.SetBounds(0, 0, 150, 70); },
        [&] { Control.RecreateWnd(); },
        [&] { SetRedraw(false), Control.Invalidate(), SetRedraw(true); },
    };
    for (const auto& Deed : Deeds) {
        Control.OnPaint = [&] { Deed(), Control.Fill({0, 0, 150, 70}, clBlue); };
        Control.Repaint();
        EXPECT_TRUE(Control.HasInvalidRegion());
    }
    Control.OnPaint = [&] { Control.hide(); };
    Control.Repaint();
    Control.OnPaint = nullptr;
    Control.show();
    Control.SetColor(clRed);
    EXPECT_EQ(Control.PixelAt(100, 50), clRed);
}

TEST(Surface, AnExceptionFromPaintLeavesTheControlUsable) {
    TShown Control;
    Control.hide(); // no event loop in the way of the exception
    Control.OnPaint = [&] {
        Control.GetCanvas()->SetMirrored(true, 50);
        throw std::runtime_error("from a handler");
    };
    Control.Invalidate();
    EXPECT_THROW(Control.Update(), std::runtime_error);
    Control.OnPaint = nullptr;
    Control.SetColor(clAqua);
    EXPECT_EQ(Control.PixelAt(2, 2), clAqua);
    EXPECT_EQ(Control.GetCanvas()->GetCanvasOrientation(), coLeftToRight);
}

// --- scrolling ----------------------------------------------------------------------------------------------------

TEST(Surface, ScrollingMovesPixelsAndUncoversTheRest) {
    TShown Control(60, 48);
    const int Rows = 24;
    int First = 100;
    // Each row of two client pixels gets a colour of its own: whole device rows at scales 1, 1.5 and 2.
    const auto ColorOf = [](int Row) {
        return static_cast<TColor>((Row * 37 + 11) % 256 | ((Row * 101) % 256) << 8 | 0x800000);
    };
    Control.OnPaint = [&] {
        for (int Row = 0; Row < Rows; ++Row)
            Control.Fill({0, 2 * Row, 60, 2 * Row + 2}, ColorOf(First + Row));
    };
    const double S = Control.GetScale();
    for (const int Step : {1, -1, 5, -7, 30, -30}) {
        SCOPED_TRACE(Step);
        Control.Repaint();
        First += Step;
        const std::uint64_t Before = Control.GetPaintedPixels();
        Control.ScrollWindow(0, -2 * Step, Control.GetClientRect(), Control.GetClientRect());
        for (int Row = 0; Row < Rows; ++Row)
            EXPECT_EQ(Control.PixelAt(30, Row * 2), ColorOf(First + Row)) << "row " << Row;
        const int Painted = std::min(std::abs(Step), Rows) * 2;
        EXPECT_EQ(Control.GetPaintedPixels() - Before, static_cast<std::uint64_t>(60 * S * Painted * S));
    }
}

TEST(Surface, ScrollingStaysInsideTheClipAndWorksSideways) {
    TShown Control(60, 40);
    Control.SetControlStyle({csOpaque});
    // The band right of x = 10 moves by 14 to the right; what was left of it stays.
    Control.Fill({20, 10, 30, 20}, clRed);
    Control.Fill({0, 0, 10, 40}, clBlue);
    Control.ScrollWindow(14, 0, {10, 0, 60, 40}, {10, 0, 60, 40});
    EXPECT_EQ(Control.GetInvalidBounds(), (TRect{10, 0, 24, 40}));
    EXPECT_EQ(Control.PixelAt(34, 10), clRed);
    EXPECT_EQ(Control.PixelAt(43, 19), clRed);
    EXPECT_EQ(Control.PixelAt(32, 10), clWhite);
    EXPECT_EQ(Control.PixelAt(44, 10), clWhite);
    EXPECT_EQ(Control.PixelAt(8, 10), clBlue);
    Control.ScrollWindow(-30, 0, {10, 0, 60, 40}, {10, 0, 60, 40});
    EXPECT_EQ(Control.GetInvalidBounds(), (TRect{30, 0, 60, 40}));
    EXPECT_EQ(Control.PixelAt(10, 19), clRed);
    EXPECT_EQ(Control.PixelAt(8, 19), clBlue) << "nothing leaves the clip";
    // From outside of the clip into it.
    Control.Fill({0, 0, 60, 40}, clWhite);
    Control.Fill({0, 0, 4, 4}, clRed);
    Control.ScrollWindow(20, 20, {0, 0, 60, 40}, {20, 20, 60, 40});
    EXPECT_EQ(Control.PixelAt(22, 22), clRed);
    EXPECT_EQ(Control.PixelAt(2, 2), clRed);
}

TEST(Surface, WhatIsInvalidScrollsAlong) {
    TShown Control(60, 40);
    Control.InvalidatePixels({0, 10, 60, 14});
    Control.ScrollWindow(0, 6, Control.GetClientRect(), Control.GetClientRect());
    Control.Update();
    EXPECT_EQ(Control.Take(), "paint 0,0-60,20");
    Control.InvalidatePixels({0, 38, 60, 40});
    Control.ScrollWindow(0, 6, {0, 0, 60, 30}, {0, 0, 60, 30});
    EXPECT_EQ(Control.GetInvalidBounds(), (TRect{0, 0, 60, 40})) << "outside the clip it stays";
}

TEST(Surface, ScrollingByBrokenDevicePixelsPaints) {
    TShown Control(60, 40);
    Control.ScrollWindow(0, 1, Control.GetClientRect(), Control.GetClientRect());
    const bool Whole = Control.GetScale() == std::floor(Control.GetScale());
    EXPECT_EQ(Control.GetInvalidBounds(), (TRect{0, 0, 60, Whole ? 1 : 40}));
}
