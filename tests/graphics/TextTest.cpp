// Text drawing and measuring, and the cache behind them.
#include "host/graphics/TextShaping.h"
#include "tests/graphics/Pictures.h"
#include "tests/support/QtTest.h"

#include <QApplication>
#include <QFont>

#include <cmath>

namespace quill {
namespace {

using testing::InkBounds;
using testing::TPictureCanvas;

constexpr unsigned Cell = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX;

const char* const Texts[] = {
    "a",
    "Apple",
    "A longer text, with commas (and more).",
    "fi ffl -> AVATAR To.",
    "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82, \xCE\xBA\xCF\x8C\xCF\x83\xCE\xBC\xCE\xBF",
    "e\xCC\x81 combining",
    "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D mixed \xD8\xB3\xD9\x84\xD8\xA7\xD9\x85",
    "\xE6\x97\xA5\xE6\x9C\xAC",
    "trailing spaces   ",
    "   ",
    ""};

TEST(Text, FitsWhereItWasMeasured) {
    for (const double Scale : {1.0, 1.25, 1.5, 2.0}) {
        for (const char* Text : Texts) {
            for (const int Left : {3, 4, 5}) {
                TPictureCanvas Exact(400, 40, Scale);
                TRect Rect{Left, 5, Left, 5};
                const int Height = Exact.DrawText(Text, Rect, Cell | DT_CALCRECT);
                EXPECT_EQ(Rect.Left, Left);
                EXPECT_EQ(Rect.Top, 5);
                EXPECT_EQ(Rect.Height(), Height);
                EXPECT_EQ(Rect.Width(), Exact.TextWidth(Text));
                EXPECT_EQ(Rect.Height(), Exact.TextHeight(Text));
                EXPECT_EQ(Exact.DrawText(Text, Rect, Cell | DT_END_ELLIPSIS), Height);
                // In as much room as it likes it looks the same.
                TPictureCanvas Wide(400, 40, Scale);
                Rect.Right = 390;
                Wide.DrawText(Text, Rect, Cell | DT_END_ELLIPSIS);
                EXPECT_TRUE(Exact.Image == Wide.Image) << Text << " at " << Scale;
            }
        }
    }
}

TEST(Text, StaysInsideItsRectangle) {
    for (const double Scale : {1.0, 1.5}) {
        for (const unsigned Align : {DT_LEFT, DT_CENTER, DT_RIGHT, DT_RIGHT | DT_END_ELLIPSIS}) {
            for (const bool Mirrored : {false, true}) {
                TPictureCanvas Canvas(120, 30, Scale);
                Canvas.SetMirrored(Mirrored, 120);
                TRect Rect{20, 8, 61, 18};
                Canvas.DrawText("A text far too long for this", Rect, Cell | Align);
                EXPECT_EQ(Rect, (TRect{20, 8, 61, 18}));
                const QRect Ink = InkBounds(Canvas.Image);
                EXPECT_FALSE(Ink.isEmpty());
                EXPECT_TRUE(Canvas.ToDeviceRect(Rect).contains(Ink));
            }
        }
    }
    TPictureCanvas Canvas(120, 30);
    TRect Rect{20, 8, 30, 12};
    Canvas.DrawText("A text far too long", Rect, Cell | DT_NOCLIP);
    EXPECT_GT(InkBounds(Canvas.Image).right(), 40);
}

TEST(Text, IsAlignedInItsRectangle) {
    // Where the ink is: left, middle, right.
    const std::tuple<unsigned, bool, char> Cases[] = {{DT_LEFT, false, 'l'},
                                                      {DT_CENTER, false, 'm'},
                                                      {DT_RIGHT, false, 'r'},
                                                      {DT_LEFT, true, 'r'},
                                                      {DT_CENTER, true, 'm'},
                                                      {DT_RIGHT, true, 'l'},
                                                      {DT_LEFT | DT_RTLREADING, false, 'l'}};
    for (const auto& [Flags, Mirrored, Place] : Cases) {
        TPictureCanvas Canvas(200, 20);
        Canvas.SetMirrored(Mirrored, 200);
        TRect Rect{0, 0, 200, 20};
        Canvas.DrawText("mmm", Rect, Cell | Flags);
        const int Middle = InkBounds(Canvas.Image).center().x();
        EXPECT_EQ(Middle < 60 ? 'l' : Middle > 140 ? 'r' : 'm', Place) << Flags;
    }
    const int Line = TCanvas().TextHeight("H");
    const auto TopOf = [](unsigned Flags, int Height) {
        TPictureCanvas Canvas(50, 60);
        TRect Rect{0, 0, 50, Height};
        Canvas.DrawText("H", Rect, DT_SINGLELINE | DT_NOCLIP | Flags);
        return InkBounds(Canvas.Image).top();
    };
    EXPECT_EQ(TopOf(DT_VCENTER, Line + 20), TopOf(DT_TOP, Line) + 10);
    EXPECT_EQ(TopOf(DT_BOTTOM, Line + 20), TopOf(DT_TOP, Line) + 20);
}

TEST(Text, EndsInAnEllipsisOnlyWhenItDoesNotFit) {
    const std::string Text = "Several words in a row";
    const int Full = TCanvas().TextWidth(Text);
    const auto Paint = [&](int Width, unsigned Flags) {
        TPictureCanvas Result(300, 20);
        TRect Rect{0, 0, Width, 20};
        Result.DrawText(Text, Rect, Cell | Flags);
        return Result.Image;
    };
    EXPECT_TRUE(Paint(Full, DT_END_ELLIPSIS) == Paint(Full, 0));
    EXPECT_FALSE(Paint(Full - 1, DT_END_ELLIPSIS) == Paint(Full - 1, 0));
    int Before = Full + 1;
    for (int Width = Full - 1; Width > 0; --Width) {
        const int Right = InkBounds(Paint(Width, DT_END_ELLIPSIS)).right();
        EXPECT_LE(Right, std::min(Width, Before));
        Before = Right;
    }
}

TEST(Text, BreaksIntoLines) {
    TCanvas Canvas;
    const int Line = Canvas.TextHeight("X");
    const int Word = Canvas.TextWidth("mmmm");
    // Text, width in words, flags, lines.
    const std::tuple<const char*, int, unsigned, int> Cases[] = {
        {"", 1, 0, 1},
        {"a\n", 1, 0, 1},
        {"a\r\nb", 1, 0, 2},
        {"a\n\nb", 1, 0, 3},
        {"\n\n", 1, 0, 2},
        {"a\nb\nc", 1, DT_SINGLELINE, 1},
        {"mmmm mmmm mmmm", 9, DT_WORDBREAK, 1},
        {"mmmm mmmm mmmm", 1, DT_WORDBREAK, 3},
        {"mmmm mmmm mmmm", 1, 0, 1},
        {"mmmm mmmm mmmm", 1, DT_WORDBREAK | DT_SINGLELINE, 1},
        {"mmmmmmmmmmmm", 1, DT_WORDBREAK, 1},
        {"mmmm mmmm", 0, DT_WORDBREAK, 2},
    };
    for (const auto& [Text, Width, Flags, Lines] : Cases) {
        TRect Rect{7, 9, 7 + Width * (Word + 1), 10};
        EXPECT_EQ(Canvas.DrawText(Text, Rect, Flags | DT_CALCRECT | DT_NOPREFIX), Lines * Line) << Text;
        EXPECT_EQ(Rect.Height(), Lines * Line) << Text;
    }
    // A word that is wider than the rectangle stays whole, and the measured width grows to it.
    TRect Narrow{0, 0, 10, 0};
    Canvas.DrawText("mm mmmm mm", Narrow, DT_WORDBREAK | DT_CALCRECT);
    EXPECT_EQ(Narrow.Width(), Word);
    // Malformed bytes are shown as replacement characters; a single line shows line breaks as spaces, a pair as one.
    EXPECT_EQ(Canvas.TextWidth("a\xFF\xC3"), Canvas.TextWidth("a\xEF\xBF\xBD\xEF\xBF\xBD"));
    EXPECT_EQ(Canvas.TextWidth("a\r\nb"), Canvas.TextWidth("a b"));
    EXPECT_EQ(Canvas.TextWidth("a\tb\x01"), Canvas.TextWidth("a b "));
}

TEST(Text, WrapsAlikeWhenMeasuredAndDrawn) {
    for (const double Scale : {1.0, 1.25, 1.5}) {
        for (int Width = 30; Width < 120; Width += 7) {
            TPictureCanvas Canvas(200, 400, Scale);
            const char* const Text =
                "Several words of different lengths, wrapped at many widths\nand a second line";
            TRect Measured{11, 0, 11 + Width, 0};
            const int Height = Canvas.DrawText(Text, Measured, DT_WORDBREAK | DT_CALCRECT);
            TRect Rect{11, 0, 11 + Width, 400};
            EXPECT_EQ(Canvas.DrawText(Text, Rect, DT_WORDBREAK), Height);
            EXPECT_LE(InkBounds(Canvas.Image).bottom(), Canvas.ToDevice(Height));
        }
    }
}

TEST(Text, UnderlinesTheCharacterAfterAPrefix) {
    TCanvas Measure;
    const auto Width = [&](const char* Text, unsigned Flags) {
        TRect Rect;
        Measure.DrawText(Text, Rect, Flags | DT_CALCRECT | DT_SINGLELINE);
        return Rect.Width();
    };
    EXPECT_EQ(Width("&File", 0), Width("File", 0));
    EXPECT_EQ(Width("a && b", 0), Width("a & b", DT_NOPREFIX));
    EXPECT_EQ(Width("a&", 0), Width("a", 0));
    EXPECT_GT(Width("&File", DT_NOPREFIX), Width("File", 0));
    const auto Paint = [](const char* Text) {
        TPictureCanvas Canvas(100, 30);
        TRect Rect{0, 0, 100, 30};
        Canvas.DrawText(Text, Rect, DT_SINGLELINE);
        return Canvas.Image;
    };
    EXPECT_GT(InkBounds(Paint("File&n")).bottom(), InkBounds(Paint("Filen")).bottom());
}

TEST(Text, StylesChangeTheirOwnThing) {
    const auto Ink = [](TFontStyles Style) {
        TPictureCanvas Picture(200, 40);
        Picture.GetFont()->SetStyle(Style);
        Picture.TextOut(2, 2, "nun");
        return Picture.Image;
    };
    for (const TFontStyle Style : {fsBold, fsItalic, fsUnderline, fsStrikeOut})
        EXPECT_FALSE(Ink({}) == Ink(Style)) << Style;
    EXPECT_GT(InkBounds(Ink(fsBold)).width(), InkBounds(Ink({})).width());
    const int Plain = TCanvas().TextWidth("nun");
    EXPECT_EQ(InkBounds(Ink({fsUnderline, fsStrikeOut})).left(), 2) << "the lines run under the whole text";
    EXPECT_EQ(InkBounds(Ink({fsUnderline, fsStrikeOut})).width(), Plain);
}

TEST(Text, HeightsAreThoseOfTheFont) {
    TCanvas Canvas;
    for (const int Height : {12, 60}) {
        Canvas.GetFont()->SetHeight(Height);
        EXPECT_NEAR(Canvas.TextHeight("Ag"), Height, 2) << "a positive height is that of the line";
        Canvas.GetFont()->SetHeight(-Height);
        EXPECT_GT(Canvas.TextHeight("Ag"), Height);
        const TTextMetrics Metrics = Canvas.GetTextMetrics();
        EXPECT_EQ(Metrics.Ascent + Metrics.Descent, Canvas.TextHeight("Ag"));
    }
    Canvas.GetFont()->SetHeight(std::numeric_limits<int>::min());
    EXPECT_GT(Canvas.TextHeight("Ag"), 0);
}

TEST(Text, FillsItsBackgroundWhenOpaque) {
    const TSize Extent = TCanvas().TextExtent("nun");
    const auto Paint = [](bool Mirrored, TBrushStyle Style) {
        TPictureCanvas Canvas(200, 40, 1.0, 0xFF000000);
        Canvas.SetMirrored(Mirrored, 200);
        Canvas.GetBrush()->SetColor(clYellow);
        Canvas.GetBrush()->SetStyle(Style);
        Canvas.GetFont()->SetColor(clYellow);
        EXPECT_EQ(Canvas.SetBkMode(OPAQUE), TRANSPARENT);
        Canvas.TextOut(5, 6, "nun");
        return InkBounds(Canvas.Image, 0xFF000000);
    };
    EXPECT_EQ(Paint(false, bsSolid), QRect(5, 6, Extent.cx, Extent.cy));
    EXPECT_LT(Paint(false, bsClear).height(), Extent.cy);
    // Mirrored, the text ends where the mapped point is.
    EXPECT_EQ(Paint(true, bsSolid), QRect(195 - Extent.cx, 6, Extent.cx, Extent.cy));
}

TEST(Text, LooksTheSameWhetherShapedOrPlaced) {
    std::mt19937 Random(20240611);
    // Letters with kerning and ligatures, in random words.
    const std::string Letters = "aefilotvwyAFLPTVWY.,- ";
    std::vector<std::string> Words{"office waffle flight fjord"};
    for (int I = 0; I < 60; ++I) {
        Words.emplace_back();
        for (int J = 0; J < 12; ++J) Words.back() += Letters[Random() % Letters.size()];
    }
    for (const double Scale : {1.0, 1.5}) {
        const auto Paint = [&](const std::string& Text) {
            TPictureCanvas Canvas(300, 30, Scale);
            // Just as wide as it needs, where an ellipsis would be one too many.
            TRect Rect{0, 0, Canvas.TextWidth(Text), 30};
            Canvas.DrawText(Text, Rect, Cell | DT_END_ELLIPSIS);
            return std::pair(Canvas.Image, Rect.Right);
        };
        const auto PaintAnew = [&](const std::string& Text) { return text::ClearCache(), Paint(Text); };
        std::vector<std::pair<QImage, int>> Shaped;
        for (const std::string& Word : Words) Shaped.push_back(PaintAnew(Word));
        text::ClearCache();
        // Teaches every pair, then asks for the same texts, which are not in the cache under these names.
        for (const std::string& Word : Words) Paint(Word + "!"), Paint(Word.substr(0, 11));
        const std::uint64_t Before = text::CacheFigures().Placed;
        for (std::size_t I = 0; I < Words.size(); ++I)
            EXPECT_TRUE(Paint(Words[I]) == Shaped[I]) << Words[I] << " at " << Scale;
        EXPECT_GT(text::CacheFigures().Placed, Before + Words.size() / 2) << "the table was used at all";
        // The codes that the table gives to ligatures are no characters.
        const std::string Private = "\xEE\x80\x80-\xEE\x80\x81";
        const auto Learnt = Paint(Private);
        EXPECT_TRUE(PaintAnew(Private) == Learnt);
    }
}

TEST(Text, OfAnyLengthIsDrawnAndMeasured) {
    TPictureCanvas Canvas(300, 100);
    const auto Repeat = [](const std::string& Text) {
        std::string Result;
        while (Result.size() < std::size_t{1} << 20) Result += Text;
        return Result;
    };
    const std::string Words = Repeat("some words and ");
    const double Tenth = Canvas.TextWidth(Words.substr(0, Words.size() / 10));
    EXPECT_NEAR(Canvas.TextWidth(Words) / Tenth, 10.0, 0.5);
    TRect Rect{0, 0, 300, 100};
    Canvas.DrawText(Words, Rect, DT_SINGLELINE | DT_END_ELLIPSIS);
    EXPECT_FALSE(InkBounds(Canvas.Image).isEmpty());
    EXPECT_GT(Canvas.DrawText(Words, Rect, DT_WORDBREAK | DT_CALCRECT), 100000);
    EXPECT_LE(Rect.Width(), 300);
    TRect All;
    EXPECT_GT(Canvas.DrawText(Repeat("line\n"), All, DT_CALCRECT), 200000 * Canvas.TextHeight("line"));
    EXPECT_EQ(All.Width(), Canvas.TextWidth("line"));
    // A cut inside a character is none.
    for (const char* Text : {"\xE2\x82\xAC", "\xFF"}) EXPECT_GT(Canvas.TextWidth(Repeat(Text)), 1000);
}

TEST(Text, CacheIsBounded) {
    text::ClearCache();
    TCanvas Canvas;
    for (int I = 0; I < 9000; ++I) Canvas.TextWidth("Text number " + std::to_string(I));
    EXPECT_LE(text::CacheFigures().Entries, 8192u);
    const std::uint64_t Hits = text::CacheFigures().Hits;
    Canvas.TextWidth("Text number 8999");
    EXPECT_EQ(text::CacheFigures().Hits, Hits + 1);
    for (int I = 0; I < 120; ++I) Canvas.TextWidth(std::to_string(I) + std::string(4000, 'x'));
    EXPECT_LE(text::CacheFigures().Bytes, std::size_t{8} << 20);
    for (int I = 1; I < 270; ++I) {
        Canvas.GetFont()->SetHeight(-I);
        EXPECT_GT(Canvas.TextWidth("x"), 0) << "more fonts than are kept";
    }
}

} // namespace
} // namespace quill
