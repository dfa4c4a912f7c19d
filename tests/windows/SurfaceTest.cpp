// What is painted, when, and which pixels it leaves. Runs at several scales.
#include "tests/support/QtTest.h"
#include "tests/windows/LogControl.h"

#include "host/windows/Application.h"

#include <QApplication>
#include <QImage>
#include <QScreen>
#include <QTest>

#include <algorithm>
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
};

// The colour of client pixel (X, Y): of its first device pixel.
QColor PixelAt(const QImage& Image, double Scale, int X, int Y) {
    return Image.pixelColor(static_cast<int>(std::floor(X * Scale + 0.5)),
                            static_cast<int>(std::floor(Y * Scale + 0.5)));
}

QImage Surface(TCustomControl& Control) { return Control.GetSurfaceImage(); }

// Each row of two client pixels gets a colour of its own: whole device rows at scales 1, 1.5 and 2.
TColor RowColor(int Row) {
    return static_cast<TColor>((Row * 37 + 11) % 256 | ((Row * 101) % 256) << 8 | 0x800000);
}
void PaintRows(TCanvas& Canvas, int First, int Width, int Height) {
    for (int Y = 0; Y < Height; Y += 2) {
        Canvas.GetBrush()->SetColor(RowColor(First + Y / 2));
        Canvas.FillRect({0, Y, Width, Y + 2});
    }
}

} // namespace

TEST(Surface, OnePaintPerTurnClippedToWhatIsInvalid) {
    TShown Control;
    EXPECT_EQ(Control.CountPaints([&] {
        Control.InvalidatePixels({10, 10, 20, 20});
        Control.InvalidatePixels({10, 10, 20, 20});
        Control.InvalidatePixels({40, 30, 60, 40});
        EXPECT_EQ(Control.GetInvalidBounds(), (TRect{10, 10, 60, 40}));
        qApp->processEvents();
    }),
              1u);
    EXPECT_EQ(Control.Take(), "paint 10,10-60,40");
    EXPECT_FALSE(Control.HasInvalidRegion());
    EXPECT_EQ(Control.CountPaints([&] {
        Control.Update();
        Control.viewport()->update(); // exposed anew: the surface is there
        qApp->processEvents();
    }),
              0u);
    EXPECT_EQ(Control.CountPaints([&] {
        Control.Repaint();
        qApp->processEvents();
    }),
              1u);
}

TEST(Surface, DrawingOutsideTheInvalidPartIsClipped) {
    TShown Control;
    Control.OnPaint = [&] {
        Control.GetCanvas()->GetBrush()->SetColor(clRed);
        Control.GetCanvas()->FillRect(Control.GetClientRect());
    };
    Control.InvalidatePixels({10, 10, 20, 20});
    Control.InvalidatePixels({30, 30, 40, 40});
    const std::uint64_t Before = Control.GetPaintedPixels();
    const QImage Image = Surface(Control);
    const double S = Control.GetScale();
    EXPECT_EQ(Control.GetPaintedPixels() - Before, static_cast<std::uint64_t>(2 * 100 * S * S));
    EXPECT_EQ(PixelAt(Image, S, 10, 10), QColor(Qt::red));
    EXPECT_EQ(PixelAt(Image, S, 19, 19), QColor(Qt::red));
    EXPECT_EQ(PixelAt(Image, S, 35, 35), QColor(Qt::red));
    EXPECT_EQ(PixelAt(Image, S, 9, 10), QColor(Qt::white));
    EXPECT_EQ(PixelAt(Image, S, 20, 20), QColor(Qt::white));
    EXPECT_EQ(PixelAt(Image, S, 25, 25), QColor(Qt::white)) << "between two invalid parts";
}

TEST(Surface, ErasesWithColorUnlessOpaque) {
    TShown Control;
    Control.OnPaint = [] {};
    Control.GetCanvas()->GetBrush()->SetColor(clBlack);
    Control.GetCanvas()->FillRect(Control.GetClientRect());
    const double S = Control.GetScale();
    Control.InvalidatePixels({0, 0, 50, 60}, false);
    EXPECT_EQ(PixelAt(Surface(Control), S, 5, 5), QColor(Qt::black)) << "no erasing asked for";
    Control.InvalidatePixels({0, 0, 50, 60}, true);
    EXPECT_EQ(PixelAt(Surface(Control), S, 5, 5), QColor(Qt::white));
    EXPECT_EQ(PixelAt(Surface(Control), S, 60, 5), QColor(Qt::black));
    if (S != std::floor(S)) return; // there every control is erased
    Control.SetControlStyle({csOpaque});
    Control.Invalidate();
    EXPECT_EQ(PixelAt(Surface(Control), S, 60, 5), QColor(Qt::black));
}

TEST(Surface, SurfaceCoversTheClientInDevicePixels) {
    TShown Control(101, 61);
    Control.SetColor(clLime);
    const double S = Control.GetScale();
    EXPECT_EQ(S, Control.devicePixelRatioF());
    const QImage Image = Surface(Control);
    EXPECT_EQ(Image.size(), QSize(static_cast<int>(std::ceil(101 * S)), static_cast<int>(std::ceil(61 * S))));
    for (int X : {0, Image.width() - 1})
        for (int Y : {0, Image.height() - 1})
            EXPECT_EQ(Image.pixelColor(X, Y), QColor(Qt::green)) << X << "," << Y;
    const auto Bitmap = Control.CaptureClient();
    EXPECT_EQ(Bitmap->GetWidth(), 101);
    EXPECT_EQ(Bitmap->GetHeight(), 61);
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
    const QImage Image = Surface(Control);
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
    const double S = Control.GetScale();
    TColor Color = clRed;
    Control.OnPaint = [&] {
        Control.GetCanvas()->GetBrush()->SetColor(Color);
        Control.GetCanvas()->FillRect(Control.GetClientRect());
    };
    Control.Repaint();
    Control.InvalidatePixels({0, 0, 5, 5});
    Control.Perform(WM_SETREDRAW, 0, 0);
    Color = clBlue;
    EXPECT_EQ(Control.CountPaints([&] {
        Control.Invalidate();
        Control.Repaint();
        Control.GetCanvas()->FillRect({0, 0, 10, 10});
        Control.ScrollWindow(0, 10, Control.GetClientRect(), Control.GetClientRect());
        qApp->processEvents();
    }),
              0u);
    EXPECT_FALSE(Control.HasInvalidRegion());
    EXPECT_EQ(PixelAt(Surface(Control), S, 3, 3), QColor(Qt::red));
    Control.Perform(WM_SETREDRAW, 0, 0); // a state, not a count
    Control.Perform(WM_SETREDRAW, 1, 0);
    EXPECT_EQ(Control.GetInvalidBounds(), Control.GetClientRect());
    EXPECT_EQ(PixelAt(Surface(Control), S, 3, 3), QColor(Qt::blue));
    Control.Perform(WM_SETREDRAW, 0, 0);
    Control.Perform(WM_SETREDRAW, 1, 0);
    EXPECT_FALSE(Control.HasInvalidRegion()) << "nothing changed meanwhile";
}

TEST(Surface, NewPartsAreInvalidWhenTheControlGrows) {
    TShown Control;
    Control.GetCanvas()->GetBrush()->SetColor(clBlack);
    Control.GetCanvas()->FillRect(Control.GetClientRect());
    const double S = Control.GetScale();
    Control.hide();
    Control.SetBounds(0, 0, 120, 60);
    EXPECT_EQ(Control.GetInvalidBounds(), (TRect{100, 0, 120, 60}));
    const QImage Image = Surface(Control);
    EXPECT_EQ(PixelAt(Image, S, 99, 59), QColor(Qt::black)) << "old pixels stay";
    EXPECT_EQ(PixelAt(Image, S, 100, 0), QColor(Qt::white));
    Control.SetBounds(0, 0, 50, 40);
    EXPECT_FALSE(Control.HasInvalidRegion());
    EXPECT_EQ(PixelAt(Surface(Control), S, 49, 39), QColor(Qt::black));
    Control.SetBiDiMode(bdRightToLeft);
    Control.Update();
    Control.SetBounds(0, 0, 60, 40);
    EXPECT_EQ(Control.GetInvalidBounds(), (TRect{0, 0, 60, 40}))
        << "mirrored contents hang on the right edge";
}

TEST(Surface, ManyRectanglesBecomeTheirBounds) {
    TShown Control(200, 100);
    for (int I = 0; I < 40; ++I) Control.InvalidatePixels({I * 4, I * 2, I * 4 + 2, I * 2 + 2});
    const std::uint64_t Before = Control.GetPaintedPixels();
    Control.Update();
    EXPECT_GT(Control.GetPaintedPixels() - Before, 1000u);
    EXPECT_EQ(Control.Take(), "paint 0,0-158,80");
}

TEST(Surface, DrawingOutsidePaintReachesTheScreen) {
    TShown Control;
    int Blits = 0;
    struct TFilter : QObject {
        int& Count;
        explicit TFilter(int& ACount) : Count(ACount) {}
        bool eventFilter(QObject*, QEvent* Event) override {
            Count += Event->type() == QEvent::Paint;
            return false;
        }
    } Filter(Blits);
    Control.viewport()->installEventFilter(&Filter);
    const std::uint64_t Paints = Control.GetPaintCount();
    Control.GetCanvas()->GetBrush()->SetColor(clBlue);
    Control.GetCanvas()->FillRect({0, 0, 10, 10});
    Control.GetCanvas()->FillRect({10, 10, 20, 20});
    EXPECT_EQ(Blits, 0);
    Control.Flush();
    EXPECT_EQ(Blits, 1);
    qApp->processEvents();
    EXPECT_EQ(Blits, 1);
    Control.GetCanvas()->FillRect({20, 20, 30, 30});
    qApp->processEvents();
    EXPECT_EQ(Blits, 2);
    EXPECT_EQ(Control.GetPaintCount(), Paints);
    EXPECT_EQ(PixelAt(Surface(Control), Control.GetScale(), 25, 25), QColor(Qt::blue));
}

TEST(Surface, FlushShowsWithoutPaintingWhatIsInvalid) {
    TShown Control;
    Control.Invalidate();
    EXPECT_EQ(Control.CountPaints([&] { Control.Flush(); }), 0u);
    EXPECT_TRUE(Control.HasInvalidRegion());
    EXPECT_EQ(Control.CountPaints([&] { qApp->processEvents(); }), 1u) << "it is not forgotten";
}

TEST(Surface, ProcessMessagesPaintsFirst) {
    TShown Control;
    Control.Invalidate();
    EXPECT_EQ(Control.CountPaints([&] { Application.ProcessMessages(); }), 1u);
    EXPECT_FALSE(Control.HasInvalidRegion());
}

TEST(Surface, GrabbingPaintsWhatIsInvalid) {
    TShown Control;
    Control.SetColor(clFuchsia);
    const QImage Grabbed = Control.grab().toImage();
    EXPECT_EQ(Grabbed.pixelColor(3, 3), QColor(Qt::magenta));
    EXPECT_FALSE(Control.HasInvalidRegion());
}

TEST(Surface, HiddenControlsPaintOnlyWhenAsked) {
    TLogControl Control;
    Control.SetBounds(0, 0, 50, 50);
    Control.Invalidate();
    EXPECT_FALSE(Control.HasInvalidRegion()) << "no handle";
    Control.HandleNeeded();
    EXPECT_TRUE(Control.HasInvalidRegion());
    qApp->processEvents();
    EXPECT_EQ(Control.GetPaintCount(), 0u);
    Control.Update();
    EXPECT_EQ(Control.GetPaintCount(), 1u);
}

TEST(Surface, PaintMayInvalidateResizeAndRecreate) {
    TShown Control;
    int Paints = 0;
    Control.OnPaint = [&] {
        ++Paints;
        Control.Update();
        Control.Repaint();
        Control.Flush();
    };
    Control.Invalidate();
    Control.Update();
    EXPECT_EQ(Paints, 1);
    EXPECT_TRUE(Control.HasInvalidRegion()) << "painted again in the next turn";
    for (int Turn = 0; Turn < 6; ++Turn) {
        const int Before = Paints;
        qApp->processEvents();
        EXPECT_LE(Paints, Before + 1) << "a Paint that always invalidates must not block";
    }
    EXPECT_GE(Paints, 3);

    Control.OnPaint = [&] {
        Control.SetBounds(0, 0, 150, 70);
        Control.GetCanvas()->FillRect({0, 0, 150, 70});
    };
    Control.Update();
    EXPECT_EQ(Control.GetClientWidth(), 150);
    EXPECT_TRUE(Control.HasInvalidRegion());
    Control.Update();
    EXPECT_FALSE(Control.HasInvalidRegion());

    Control.OnPaint = [&] {
        Control.RecreateWnd();
        Control.GetCanvas()->FillRect({0, 0, 150, 70});
    };
    Control.Repaint();
    EXPECT_EQ(Control.GetInvalidBounds(), (TRect{0, 0, 150, 70}));

    Control.OnPaint = [&] {
        Control.Perform(WM_SETREDRAW, 0, 0);
        Control.Invalidate();
        Control.Perform(WM_SETREDRAW, 1, 0);
        Control.GetCanvas()->FillRect({0, 0, 150, 70});
    };
    Control.Update();
    Control.OnPaint = [&] { Control.hide(); };
    Control.Repaint();
    Control.OnPaint = nullptr;
    Control.show();
    Control.SetColor(clRed);
    EXPECT_EQ(PixelAt(Surface(Control), Control.GetScale(), 100, 50), QColor(Qt::red));
}

TEST(Surface, AnExceptionFromPaintLeavesTheControlUsable) {
    TLogControl Control;
    Control.SetBorderStyle(bsNone);
    Control.SetBounds(0, 0, 50, 50);
    Control.HandleNeeded();
    Control.OnPaint = [&] {
        Control.GetCanvas()->SetMirrored(true, 50);
        throw std::runtime_error("from a handler");
    };
    EXPECT_THROW(Control.Update(), std::runtime_error);
    Control.OnPaint = nullptr;
    Control.SetColor(clAqua);
    EXPECT_EQ(Surface(Control).pixelColor(2, 2), QColor(Qt::cyan));
    EXPECT_EQ(Control.GetCanvas()->GetCanvasOrientation(), coLeftToRight);
}

// --- scrolling ----------------------------------------------------------------------------------------------------

TEST(Surface, ScrollingMovesPixelsAndUncoversTheRest) {
    TShown Control(60, 48);
    const int Rows = 24;
    int First = 100;
    Control.OnPaint = [&] { PaintRows(*Control.GetCanvas(), First, 60, 48); };
    const double S = Control.GetScale();
    struct {
        int Step; // rows
    } const Cases[] = {{1}, {-1}, {5}, {-7}, {30}, {-30}};
    for (const auto& Case : Cases) {
        Control.Repaint();
        First += Case.Step;
        const std::uint64_t Before = Control.GetPaintedPixels();
        Control.ScrollWindow(0, -2 * Case.Step, Control.GetClientRect(), Control.GetClientRect());
        const QImage Image = Surface(Control);
        for (int Row = 0; Row < Rows; ++Row) {
            const TColor C = RowColor(First + Row);
            EXPECT_EQ(PixelAt(Image, S, 30, Row * 2),
                      QColor(static_cast<int>(C & 0xFF), static_cast<int>(C >> 8 & 0xFF),
                             static_cast<int>(C >> 16)))
                << "step " << Case.Step << " row " << Row;
        }
        const int Painted = std::min(std::abs(Case.Step), Rows) * 2;
        EXPECT_EQ(Control.GetPaintedPixels() - Before, static_cast<std::uint64_t>(60 * S * Painted * S))
            << Case.Step;
    }
}

TEST(Surface, ScrollingStaysInsideTheClipAndWorksSideways) {
    TShown Control(60, 40);
    Control.SetControlStyle({csOpaque});
    Control.OnPaint = [] {};
    const double S = Control.GetScale();
    TCanvas& Canvas = *Control.GetCanvas();
    const auto Fill = [&](const TRect& R, TColor Color) {
        Canvas.GetBrush()->SetColor(Color);
        Canvas.FillRect(R);
    };
    Fill({0, 0, 60, 40}, clWhite);
    Fill({20, 10, 30, 20}, clRed);
    // The band right of x = 10 moves by 14 to the right; what was left of it stays.
    Fill({0, 0, 10, 40}, clBlue);
    Control.ScrollWindow(14, 0, {10, 0, 60, 40}, {10, 0, 60, 40});
    EXPECT_EQ(Control.GetInvalidBounds(), (TRect{10, 0, 24, 40}));
    const QImage Image = Surface(Control);
    EXPECT_EQ(PixelAt(Image, S, 34, 10), QColor(Qt::red));
    EXPECT_EQ(PixelAt(Image, S, 43, 19), QColor(Qt::red));
    EXPECT_EQ(PixelAt(Image, S, 32, 10), QColor(Qt::white));
    EXPECT_EQ(PixelAt(Image, S, 44, 10), QColor(Qt::white));
    EXPECT_EQ(PixelAt(Image, S, 8, 10), QColor(Qt::blue));
    Control.ScrollWindow(-30, 0, {10, 0, 60, 40}, {10, 0, 60, 40});
    EXPECT_EQ(Control.GetInvalidBounds(), (TRect{30, 0, 60, 40}));
    EXPECT_EQ(PixelAt(Surface(Control), S, 10, 19), QColor(Qt::red));
    EXPECT_EQ(PixelAt(Surface(Control), S, 8, 19), QColor(Qt::blue)) << "nothing leaves the clip";
    // From outside of the clip into it.
    Fill({0, 0, 60, 40}, clWhite);
    Fill({0, 0, 4, 4}, clRed);
    Control.Update();
    Control.ScrollWindow(20, 20, {0, 0, 60, 40}, {20, 20, 60, 40});
    EXPECT_EQ(PixelAt(Surface(Control), S, 22, 22), QColor(Qt::red));
    EXPECT_EQ(PixelAt(Surface(Control), S, 2, 2), QColor(Qt::red));
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
