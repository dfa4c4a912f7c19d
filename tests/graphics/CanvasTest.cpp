// Geometry of the canvas: scale, mirroring, clipping, lines, raster operations and copies, by pixels.
#include "tests/graphics/Pictures.h"
#include "tests/support/QtTest.h"

#include <QPainter>
#include <QRegion>

#include <functional>
#include <limits>

namespace quill {
namespace {

using testing::Art;
using testing::InkBounds;
using testing::Show;
using testing::TPictureCanvas;

constexpr int Low = std::numeric_limits<int>::min();
constexpr int High = std::numeric_limits<int>::max();

TEST(Canvas, SnapsAndMirrorsRectangles) {
    const std::tuple<double, bool, TRect, const char*> Cases[] = {
        {1.0, false, {2, 3, 5, 7}, "(2,3,5,7)"},       {1.0, true, {2, 3, 5, 7}, "(35,3,38,7)"},
        {2.0, true, {2, 3, 5, 7}, "(70,6,76,14)"},     {1.5, false, {1, 1, 2, 2}, "(2,2,3,3)"},
        {1.5, false, {2, 2, 3, 3}, "(3,3,5,5)"},       {1.0, false, {-5, -5, 3, 3}, "(0,0,3,3)"},
        {1.0, false, {5, 5, 3, 9}, "empty"},           {1.5, true, {Low, Low, High, High}, "(0,0,60,30)"},
        {1.0, false, {High - 1, 0, High, 5}, "empty"},
    };
    for (const auto& [Scale, Mirrored, Rect, Device] : Cases) {
        TPictureCanvas Canvas(40, 20, Scale);
        Canvas.SetMirrored(Mirrored, 40);
        Canvas.GetBrush()->SetColor(clRed);
        Canvas.FillRect(Rect);
        EXPECT_EQ(Show(InkBounds(Canvas.Image)), Device) << Scale << (Mirrored ? " mirrored" : "");
    }
}

TEST(Canvas, NeighboursMeetAtEveryScale) {
    for (const double Scale : {1.0, 1.1, 1.25, 1.5, 1.75, 2.0, 2.5}) {
        for (const bool Mirrored : {false, true}) {
            TPictureCanvas Canvas(60, 20, Scale);
            Canvas.SetMirrored(Mirrored, 60);
            // Inverted once each, all pixels are black: nothing was left out and nothing met twice.
            for (int X = 0; X < 60; X += 3)
                for (int Y = 0; Y < 20; Y += 5) Canvas.InvertRect({X, Y, X + 3, Y + 5});
            QImage Black(Canvas.Image.size(), QImage::Format_RGB32);
            Black.fill(Qt::black);
            EXPECT_TRUE(Canvas.Image == Black) << Scale;
        }
    }
}

TEST(Canvas, DrawsLinesWithoutTheirLastPoint) {
    struct TLine {
        const char* Name;
        int X1, Y1, X2, Y2;
        const char* Picture;
        int Width = 1;
        bool Mirrored = false;
        TPenStyle Style = psSolid;
        double Scale = 1.0;
    };
    const TLine Lines[] = {
        {"right", 1, 1, 4, 1, "......\n.###..\n......\n......\n"},
        {"left", 4, 1, 1, 1, "......\n..###.\n......\n......\n"},
        {"up", 1, 3, 1, 1, "......\n......\n.#....\n.#....\n"},
        {"slanted", 0, 0, 3, 3, "#.....\n.#....\n..#...\n......\n"},
        {"nothing", 2, 2, 2, 2, "......\n......\n......\n......\n"},
        {"clipped", Low, 2, High, 2, "......\n......\n######\n......\n"},
        {"width 3", 1, 2, 4, 2, "......\n.###..\n.###..\n.###..\n", 3},
        {"width 2", 3, 0, 3, 3, "..##..\n..##..\n..##..\n......\n", 2},
        {"mirrored column", 2, 0, 2, 3, "....#.\n....#.\n....#.\n......\n", 1, true},
        {"mirrored row", 1, 1, 4, 1, "......\n...###\n......\n......\n", 1, true},
        {"clear", 0, 0, 6, 0, "......\n......\n......\n......\n", 1, false, psClear},
        {"dots", 0, 0, 6, 0, "###...\n......\n......\n......\n", 1, false, psDot},
        {"dots to the left", 5, 3, -1, 3, "......\n......\n......\n...###\n", 1, false, psDot},
        {"hairline at 1.5", 1, 1, 3, 1, ".........\n.........\n..###....\n.........\n.........\n.........\n",
         1, false, psSolid, 1.5},
    };
    for (const TLine& Line : Lines) {
        TPictureCanvas Canvas(6, 4, Line.Scale);
        Canvas.SetMirrored(Line.Mirrored, 6);
        Canvas.GetPen()->SetWidth(Line.Width);
        Canvas.GetPen()->SetStyle(Line.Style);
        Canvas.MoveTo(Line.X1, Line.Y1);
        Canvas.LineTo(Line.X2, Line.Y2);
        EXPECT_EQ(Art(Canvas.Image), Line.Picture) << Line.Name;
    }
    for (const TPenMode Mode : {pmCopy, pmNot}) {
        TPictureCanvas Canvas(6, 4);
        Canvas.GetBrush()->SetStyle(bsClear);
        Canvas.GetPen()->SetMode(Mode);
        Canvas.Rectangle({1, 0, 5, 4});
        EXPECT_EQ(Art(Canvas.Image), ".####.\n.#..#.\n.#..#.\n.####.\n") << Mode;
    }
    TPictureCanvas Canvas(6, 4);
    const TPoint Points[] = {{0, 0}, {2, 1}, {9, 9}, {-1, 0}, {5, 3}};
    Canvas.SetPixels(Points, clRed);
    EXPECT_EQ(Art(Canvas.Image), "#.....\n..#...\n......\n.....#\n");
}

TEST(Canvas, CombinesColoursExactly) {
    const auto Check = [](TColor Expected, const std::function<void(TCanvas&)>& Draw) {
        TPictureCanvas Canvas(1, 1);
        Canvas.SetPixel(0, 0, 0x123456);
        Canvas.GetPen()->SetColor(0x0F0F0F);
        Canvas.GetBrush()->SetColor(0x0F0F0F);
        Draw(Canvas);
        EXPECT_EQ(Canvas.GetPixel(0, 0), Expected);
        EXPECT_EQ(qAlpha(Canvas.Image.pixel(0, 0)), 255);
    };
    const std::pair<TPenMode, TColor> Modes[] = {
        {pmNot, 0xEDCBA9}, {pmXor, 0x1D3B59}, {pmNotXor, 0xE2C4A6}, {pmBlack, 0x000000}, {pmWhite, 0xFFFFFF}};
    for (const auto& [Mode, Expected] : Modes) {
        SCOPED_TRACE(Mode);
        Check(Expected, [Mode = Mode](TCanvas& Canvas) {
            Canvas.GetPen()->SetMode(Mode);
            Canvas.LineTo(1, 0);
        });
    }
    const std::tuple<unsigned, TBrushStyle, TColor> Operations[] = {
        {PATCOPY, bsSolid, 0x0F0F0F},   {PATINVERT, bsSolid, 0x1D3B59}, {DSTINVERT, bsSolid, 0xEDCBA9},
        {BLACKNESS, bsSolid, 0x000000}, {WHITENESS, bsSolid, 0xFFFFFF}, {PATCOPY, bsClear, 0x123456}};
    for (const auto& [Rop, Style, Expected] : Operations) {
        SCOPED_TRACE(Rop);
        Check(Expected, [Rop = Rop, Style = Style](TCanvas& Canvas) {
            Canvas.GetBrush()->SetStyle(Style);
            Canvas.PatBlt(0, 0, 1, 1, Rop);
        });
    }
}

TEST(Canvas, FocusRectVanishesWhenDrawnTwice) {
    for (const double Scale : {1.0, 1.5, 2.0}) {
        for (const TRect& Rect : {TRect{1, 1, 17, 9}, TRect{1, 1, 2, 9}, TRect{1, 1, 9, 2},
                                  TRect{-4, -3, 40, 40}, TRect{Low, Low, High, High}}) {
            TPictureCanvas Canvas(20, 12, Scale);
            Canvas.DrawFocusRect(Rect);
            Canvas.DrawFocusRect(Rect);
            EXPECT_TRUE(InkBounds(Canvas.Image).isEmpty()) << Scale;
        }
    }
    TPictureCanvas Canvas(9, 5);
    Canvas.DrawFocusRect({1, 0, 8, 5});
    EXPECT_EQ(Art(Canvas.Image), ".#.#.#.#.\n.........\n.#.....#.\n.........\n.#.#.#.#.\n");
}

TEST(Canvas, ClipsNest) {
    TPictureCanvas Canvas(8, 3);
    Canvas.IntersectClip({1, 0, 7, 2});
    Canvas.IntersectClip({3, 0, 9, 9});
    EXPECT_EQ(Canvas.GetClipRect(), (TRect{3, 0, 7, 2}));
    EXPECT_TRUE(Canvas.RectVisible({6, 1, 20, 20}));
    EXPECT_FALSE(Canvas.RectVisible({7, 0, 20, 20}));
    Canvas.InvertRect({0, 0, 5, 9});
    Canvas.RestoreClip();
    Canvas.InvertRect({6, 0, 8, 1});
    Canvas.RestoreClip();
    Canvas.RestoreClip(); // one too many does no harm
    Canvas.InvertRect({0, 2, 1, 3});
    EXPECT_EQ(Art(Canvas.Image), "...##.#.\n...##...\n#.......\n");
    Canvas.SetMirrored(true, 8);
    Canvas.IntersectClip({0, 2, 0, 3});
    EXPECT_EQ(Canvas.GetClipRect(), TRect());
    Canvas.InvertRect({0, 0, 8, 3});
    Canvas.RestoreClip();
    Canvas.IntersectClip({1, 2, 3, 3});
    EXPECT_EQ(Canvas.GetClipRect(), (TRect{1, 2, 3, 3}));
    Canvas.InvertRect({0, 0, 8, 3});
    EXPECT_EQ(Art(Canvas.Image), "...##.#.\n...##...\n#....##.\n");
}

// Draws in all ways there are, into and out of a rectangle.
std::vector<std::pair<const char*, std::function<void(TCanvas&)>>> Operations(const TRect& R,
                                                                              TCanvas& Other) {
    static TBitmap Folder;
    Folder.LoadFromResourceName("FOPEN");
    constexpr TRect Part{0, 0, 7, 7};
    const auto Text = [R](unsigned Flags) {
        return [=](TCanvas& C) {
            TRect InOut = R;
            C.DrawText("Wide text", InOut, Flags);
        };
    };
    return {
        {"FillRect", [=](TCanvas& C) { C.FillRect(R); }},
        {"FrameRect", [=](TCanvas& C) { C.FrameRect(R); }},
        {"InvertRect", [=](TCanvas& C) { C.InvertRect(R); }},
        {"Rectangle", [=](TCanvas& C) { C.Rectangle(R); }},
        {"Ellipse", [=](TCanvas& C) { C.Ellipse(R); }},
        {"Polygon",
         [=](TCanvas& C) {
             const TPoint Points[] = {{R.Left, R.Top}, {R.Right, 5}, {3, R.Bottom}};
             C.Polygon(Points);
         }},
        {"LineTo",
         [=](TCanvas& C) {
             C.MoveTo(R.Left, R.Top);
             C.LineTo(R.Right, R.Bottom);
             C.LineTo(R.Left, R.Bottom);
         }},
        {"SetPixel", [=](TCanvas& C) { C.SetPixel(R.Left, R.Top, clRed); }},
        {"DrawFocusRect", [=](TCanvas& C) { C.DrawFocusRect(R); }},
        {"DrawEdge", [=](TCanvas& C) { C.DrawEdge(R, BDR_RAISEDINNER, BF_RECT); }},
        {"DrawFrameControl", [=](TCanvas& C) { C.DrawFrameControl(R, DFC_BUTTON, DFCS_CHECKED); }},
        {"DrawText", Text(DT_NOCLIP)},
        {"DrawText in the middle", Text(DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS)},
        {"DrawText in lines", Text(DT_RIGHT | DT_WORDBREAK | DT_NOCLIP)},
        {"TextOut", [=](TCanvas& C) { C.TextOut(R.Left, R.Top, "Text"); }},
        {"Draw", [=](TCanvas& C) { C.Draw(R.Left, R.Top, &Folder); }},
        {"StretchDraw", [=](TCanvas& C) { C.StretchDraw(R, &Folder); }},
        {"BitBlt", [=, &Other](TCanvas& C) { C.BitBlt(R.Left, R.Top, 20, 20, Other, 0, 0, SRCCOPY); }},
        {"AlphaBlend", [=, &Other](TCanvas& C) { C.AlphaBlend(R.Left, R.Top, 20, 20, Other, 0, 0, 128); }},
        {"CopyRect", [=, &Other](TCanvas& C) { C.CopyRect(R, Other, Part); }},
        {"PatBlt", [=](TCanvas& C) { C.PatBlt(R.Left, R.Top, 20, 20, PATCOPY); }},
    };
}

TEST(Canvas, EveryOperationStaysInsideTheClipRegion) {
    const QRegion Region = QRegion(0, 0, 6, 20) + QRegion(14, 4, 6, 9);
    TPictureCanvas Other(20, 20, 1.0, 0xFF00FF00);
    for (const auto& [Name, Draw] : Operations({0, 0, 20, 20}, Other)) {
        TPictureCanvas Canvas(20, 20);
        Canvas.SetDeviceClip(Region);
        Canvas.GetBrush()->SetColor(clRed);
        Draw(Canvas);
        Canvas.EndPainting();
        EXPECT_FALSE(InkBounds(Canvas.Image).isEmpty()) << Name;
        for (int Y = 0; Y < 20; ++Y)
            for (int X = 0; X < 20; ++X)
                if (!Region.contains(QPoint(X, Y))) {
                    ASSERT_EQ(Canvas.Image.pixel(X, Y), 0xFFFFFFFF) << Name << " at " << X << "," << Y;
                }
    }
}

TEST(Canvas, SurvivesExtremeArguments) {
    TPictureCanvas Canvas(20, 20, 1.5);
    for (const bool Mirrored : {false, true}) {
        Canvas.SetMirrored(Mirrored, Mirrored ? High : 20);
        for (const TRect& Rect :
             {TRect{Low, Low, High, High}, TRect{High, High, Low, Low}, TRect{0, 0, 0, 0},
              TRect{Low, 5, Low + 1, 6}, TRect{High - 1, 5, High, 6}, TRect{-1, -1, High, 1}}) {
            for (const TPenStyle Style : {psSolid, psDot, psClear}) {
                Canvas.GetPen()->SetStyle(Style);
                Canvas.GetPen()->SetWidth(Style == psDot ? 2 : 1);
                for (const auto& [Name, Draw] : Operations(Rect, Canvas)) Draw(Canvas);
            }
            TRect InOut = Rect;
            Canvas.DrawText("Text of words", InOut, DT_WORDBREAK | DT_CALCRECT);
            Canvas.CopyRect({0, 0, 5, 5}, Canvas, Rect);
            Canvas.BitBlt(Rect.Left, Rect.Top, High, Low, Canvas, Rect.Right, Rect.Bottom, SRCCOPY);
            Canvas.BitBlt(0, 0, High, High, Canvas, Rect.Left, Rect.Top, SRCINVERT);
            Canvas.AlphaBlend(Rect.Left, Rect.Top, High, High, Canvas, Rect.Right, 0, 999);
            Canvas.PatBlt(Rect.Left, Rect.Top, High, High, PATCOPY);
            Canvas.GetPixel(Rect.Right, Rect.Top);
            Canvas.IntersectClip(Rect);
            Canvas.RectVisible(Rect);
            Canvas.RestoreClip();
        }
    }
    Canvas.SetMirrored(false, 0);
    Canvas.GetBrush()->SetColor(clRed);
    Canvas.FillRect({0, 0, 20, 20});
    EXPECT_EQ(Canvas.GetPixel(19, 19), clRed) << "the canvas draws as before";
}

TEST(Canvas, WithoutSurfaceOnlyMeasures) {
    TCanvas Canvas;
    TPictureCanvas Other(4, 4);
    const TRect Rect{0, 0, 10, 10};
    for (const auto& [Name, Draw] : Operations(Rect, Other)) Draw(Canvas);
    Other.BitBlt(0, 0, 4, 4, Canvas, 0, 0, SRCCOPY);
    EXPECT_TRUE(InkBounds(Other.Image).isEmpty());
    EXPECT_EQ(Canvas.GetPixel(0, 0), clNone);
    EXPECT_FALSE(Canvas.RectVisible(Rect));
    EXPECT_EQ(Canvas.GetPainter(), nullptr);
    EXPECT_GT(Canvas.TextWidth("Text"), 0);
    QImage Unsupported(4, 4, QImage::Format_RGB888);
    Canvas.Bind(&Unsupported, 1.0);
    Canvas.FillRect(Rect);
    EXPECT_EQ(Canvas.GetSurface(), nullptr);
}

// Fills a picture with a different colour for every pixel.
void PaintGradient(QImage& Image) {
    for (int Y = 0; Y < Image.height(); ++Y)
        for (int X = 0; X < Image.width(); ++X)
            Image.setPixel(X, Y, qRgb(X * 3 % 256, Y * 5 % 256, (X + Y) % 256));
}

TEST(Canvas, MovesItsOwnPixelsInEveryDirection) {
    for (const int DX : {-7, 0, 7}) {
        for (const int DY : {-5, 0, 5}) {
            for (const bool Region : {false, true}) {
                TPictureCanvas Canvas(40, 30);
                PaintGradient(Canvas.Image);
                QImage Expected = Canvas.Image.copy();
                if (Region) Canvas.SetDeviceClip(QRegion(0, 0, 40, 14) + QRegion(0, 14, 39, 16));
                Canvas.BitBlt(10 + DX, 8 + DY, 20, 12, Canvas, 10, 8, SRCCOPY);
                QPainter(&Expected).drawImage(10 + DX, 8 + DY, Expected.copy(10, 8, 20, 12));
                EXPECT_TRUE(Canvas.Image == Expected) << DX << "," << DY;
            }
        }
    }
}

TEST(Canvas, CopiesAreClippedToBothSurfacesAndNeverStretched) {
    TPictureCanvas Source(6, 3, 1.0, 0xFF0000FF);
    struct TCase {
        int X, Y, Width, Height, SrcX, SrcY;
        const char* Ink;
    };
    for (const TCase& Case : {TCase{1, 1, 4, 2, 0, 0, "(1,1,5,3)"}, TCase{1, 1, 40, 20, 0, 0, "(1,1,7,4)"},
                              TCase{1, 1, 4, 2, 4, 0, "(1,1,3,3)"}, TCase{3, 2, 6, 3, -2, -1, "(5,3,9,5)"},
                              TCase{-2, -1, 6, 3, 0, 0, "(0,0,4,2)"}, TCase{7, 4, 6, 3, 0, 0, "(7,4,10,6)"},
                              TCase{1, 1, -4, 2, 0, 0, "empty"}, TCase{1, 1, 4, 2, 6, 0, "empty"}}) {
        TPictureCanvas Canvas(10, 6);
        Canvas.BitBlt(Case.X, Case.Y, Case.Width, Case.Height, Source, Case.SrcX, Case.SrcY, SRCCOPY);
        EXPECT_EQ(Show(InkBounds(Canvas.Image)), Case.Ink);
    }
}

TEST(Canvas, CombinesAndBlendsCopies) {
    TPictureCanvas Source(4, 1, 1.0, 0xFF0F0F0F);
    TPictureCanvas Canvas(4, 1, 1.0, 0xFF563412);
    Canvas.BitBlt(0, 0, 2, 1, Source, 0, 0, SRCINVERT);
    EXPECT_EQ(Canvas.GetPixel(0, 0), 0x1D3B59u);
    const std::pair<int, TColor> Blends[] = {{0, 0x123456}, {255, 0x0F0F0F}, {128, 0x112132}};
    for (const auto& [Alpha, Expected] : Blends) {
        Canvas.SetPixel(3, 0, 0x123456);
        Canvas.AlphaBlend(3, 0, 1, 1, Source, 0, 0, Alpha);
        EXPECT_NEAR(Canvas.GetPixel(3, 0) & 0xFF, Expected & 0xFF, 1) << Alpha;
        EXPECT_NEAR(Canvas.GetPixel(3, 0) >> 8 & 0xFF, Expected >> 8 & 0xFF, 1) << Alpha;
    }
    // Between scales the picture is stretched to the same size in units.
    TPictureCanvas Fine(4, 1, 2.0);
    Fine.BitBlt(1, 0, 2, 1, Source, 0, 0, SRCCOPY);
    EXPECT_EQ(Show(InkBounds(Fine.Image)), "(2,0,6,2)");
    EXPECT_EQ(Fine.GetPixel(2, 0), 0x0F0F0Fu);
}

} // namespace
} // namespace quill
