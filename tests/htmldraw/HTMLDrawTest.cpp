// The markup renderer: what is drawn in which look, where lines end, and what a text measures.
#include "htmldraw/HTMLDraw.h"

#include "host/graphics/RecordingCanvas.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <random>
#include <sstream>
#include <string>

namespace quill::testing {
namespace {

constexpr TColor TextColor = 0x102030;
constexpr TColor Paper = 0xFFFFFF;

class THtmlCanvas : public TRecordingCanvas {
public:
    explicit THtmlCanvas(double Scale = 1.0) : TRecordingCanvas(400, 200, Scale) {
        GetFont()->SetHeight(-14);
        GetFont()->SetColor(TextColor);
        GetBrush()->SetColor(Paper);
        ClearLog();
    }
    void DrawText(const std::string& Text, TRect Rect = {10, 10, 390, 190}, bool Wrap = false, int Horz = 0,
                  int Vert = 0) {
        ClearLog();
        DrawHTML(Rect, *this, Text, Wrap, false, Horz, Vert);
    }
    TSize Measure(const std::string& Text, int Width = 400, bool Wrap = false) {
        TRect R{7, 9, 7 + Width, 9};
        DrawHTML(R, *this, Text, Wrap, true, 0, 0);
        EXPECT_EQ(R.Left, 7);
        EXPECT_EQ(R.Top, 9);
        return {R.Width(), R.Height()};
    }
    using TRecordingCanvas::DrawText;
};

// The text of a line of the log, with its quotation marks; nothing for other operations.
std::string TextOf(const std::string& Line) {
    const std::size_t From = Line.find('"');
    return Line.starts_with("TextOut") ? Line.substr(From, Line.rfind('"') + 1 - From) : "";
}

// The texts that were drawn, in the order of drawing.
std::string TextsOf(const THtmlCanvas& Canvas) {
    std::string Result;
    for (const std::string& Line : Canvas.GetLines()) Result += TextOf(Line);
    return Result;
}

// What a text is drawn as: each piece with its styles, colour and background where they differ from the start. Lines
// are told apart by "/".
std::string Pieces(const std::string& Text, bool Wrap = false, int Width = 380) {
    THtmlCanvas Canvas;
    Canvas.DrawText(Text, {10, 10, 10 + Width, 190}, Wrap);
    std::string Result;
    int LastX = -1;
    for (const std::string& Line : Canvas.GetLines()) {
        int X = 0;
        if (std::sscanf(Line.c_str(), "TextOut (%d", &X) != 1) continue;
        if (!Result.empty()) Result += X <= LastX ? "/" : "|";
        LastX = X;
        const std::string Piece = TextOf(Line);
        std::string Look = Line.substr(Line.rfind('"') + 2);
        const std::string Plain = " $00102030";
        if (Look.starts_with(Plain)) Look.erase(0, Plain.size());
        std::replace(Look.begin(), Look.end(), ' ', ':');
        Result += Piece.substr(1, Piece.size() - 2) + Look;
    }
    return Result;
}

TEST(HTMLDraw, TagsChangeTheLookOfWhatFollows) {
    const std::pair<const char*, const char*> Cases[] = {
        {"plain", "plain"},
        {"A<B>b</B>c", "A|b:bold|c"},
        {"<i>a<u>b</I>c</u>d<S>e", "a:italic|b:italic:underline|c:underline|d|e:strikeout"},
        {"<FONT COLOR=#00FF00>g</COLOR>x", "g:clLime|x"},
        {"<FONT color=clred>r<FONT COLOR=$FF0000>b</FONT>r</FONT>x", "r:clRed|b:clBlue|r:clRed|x"},
        {"<font size=20><b>big</font>still", "big:bold|still:bold"}, // styles are not saved
        {"<COLOR=#0000FF>b</COLOR>x", "b:clBlue|x"},
        {"<COLOR=nonsense>x", "x"},
        {"<COLOR=#12345G>x", "x"},
        {"<COLOR=clRed and more>x", "x"}, // the rest is taken whole
        {"<COLOR>x</COLOR>y", "x|y"},     // no colour: the text stays visible
        {"a</FONT></B></COLOR></BGCOLOR>b", "a|b"},
        {"<FONT>x</FONT>", "<FONT>x"}, // without a space it is no tag; its end is one
        {"<FONT BOLD>x<FONT COLOR=#FF0000>r</FONT></FONT>y", "x|r:clRed|y"},
        {"<FONT SIZE=big COLOR=#FF0000>x", "x"}, // a bad number ends the tag
        {"<FOO>x", "<FOO>x"},
        {"a<b", "a"}, // a tag may end with the text
        {"a < b > c", "a |< b > c"},
        {"<<B>x", "<|x:bold"},
        {"1<2 and 3>2", "1|<2 and 3>2"},
        {"<my COLOR=#FF0000 tag>x", "x"},
        {"<\r\nB\n>x", "x:bold"},
        {"", ""},
    };
    for (const auto& [Text, Expected] : Cases) EXPECT_EQ(Pieces(Text), Expected) << Text;
}

TEST(HTMLDraw, BackgroundsComeBackInTheOrderInWhichTheyWereSaved) {
    THtmlCanvas Canvas;
    Canvas.DrawText("<BGCOLOR=#0000FF>a<BGCOLOR=#FF0000>b</BGCOLOR>c</BGCOLOR>d<BGCOLOR>e");
    std::string Fills;
    for (const std::string& Line : Canvas.GetLines()) {
        if (Line.starts_with("FillRect")) Fills += Line.substr(Line.rfind(' ') + 1) + " ";
    }
    // The page, a, b; c has the start's colour, d the first tag's, and e none.
    EXPECT_EQ(Fills, "clWhite clBlue clRed clBlue ");
}

TEST(HTMLDraw, FacesAndSizesComeFromTheFontTag) {
    THtmlCanvas Canvas;
    const auto HeightOf = [&](const std::string& Text) {
        Canvas.DrawText(Text);
        TRect R;
        const std::string Page = Canvas.GetLog("FillRect");
        std::sscanf(Page.c_str(), "FillRect (%d,%d,%d,%d)", &R.Left, &R.Top, &R.Right, &R.Bottom);
        return R.Height();
    };
    EXPECT_EQ(HeightOf("<FONT SIZE=40>x"), 40) << "a positive height is the line's";
    EXPECT_GT(HeightOf("<FONT SIZE=-40>x"), 40);
    EXPECT_NEAR(HeightOf("<FONT FACE=\"Times New Roman\" SIZE=\"33\">x"), 33, 3)
        << "a value ends at the quotation mark";
    for (const char* Wild : {"0", "2147483647", "-2147483648", "99999999999", "$7FFFFFFF"}) {
        const std::string Text =
            std::string("<FONT SIZE=") + Wild + " FACE=\"\xC3\x84\xC3\x96 \xFF\">x\xF0\x9F\x98\x80";
        EXPECT_GT(HeightOf(Text), 0) << Wild;
        EXPECT_LE(HeightOf(Text), 180) << "no more than the page";
    }
}

TEST(HTMLDraw, LinesBreakAtLineFeedsAndWhereWordsDoNotFit) {
    THtmlCanvas Canvas;
    const int Width = Canvas.TextWidth("one two ");
    const std::pair<const char*, const char*> Cases[] = {
        {"one two three", "one two /three"},
        {"one\ntwo\r\nthree", "one/two/three"},
        {"one\n\n\ntwo", "one/two"},
        {"unbreakably long", "unbreakably /long"},
        {"o<B>ne two thr</B>ee", "o|ne two :bold/thr:bold|ee"},
        {"one two<B>three", "one two/three:bold"}, // before a tag, inside a word
        {"one two <3 four", "one two /<3 four"},
        {"one  two  three", "one  two  /three"},
        {"\xC3\xA4\xC3\xB6\xC3\xBC \xC3\xA4\xC3\xB6 three",
         "\xC3\xA4\xC3\xB6\xC3\xBC \xC3\xA4\xC3\xB6 /three"},
    };
    for (const auto& [Text, Expected] : Cases) EXPECT_EQ(Pieces(Text, true, Width), Expected) << Text;
    EXPECT_EQ(Pieces("one two three", false, Width), "one two three");
    EXPECT_EQ(Pieces("one two three", true, 1), "one /two /three");
}

TEST(HTMLDraw, PiecesOfALineStandInReadingOrder) {
    const std::string Shalom = "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D";
    const std::string Olam = "\xD7\xA2\xD7\x95\xD7\x9C\xD7\x9D";
    // Texts, and their pieces as they stand from the left, for both directions. Numbers keep their order of digits and
    // stand in the order of what surrounds them.
    const std::tuple<std::string, std::string, std::string> Cases[] = {
        {"one <B>two</B> three", "one |two| three", "one |two| three"},
        {"up by <B>12.5 %</B> over", "up by |12.5 %| over", "up by |12.5 %| over"},
        {Shalom + " <B>" + Olam + "</B>", Olam + "|" + Shalom + " ", Olam + "|" + Shalom + " "},
        {"say " + Shalom + " <B>" + Olam + "</B> now", "say |" + Olam + "|" + Shalom + " | now",
         "now| |" + Olam + "| " + Shalom + " |say"},
        {"one <B>" + Shalom + "</B> 12, 13 two", "one |13|, |12| |" + Shalom + "| two",
         "two| |13|, |12| |" + Shalom + "| |one"},
    };
    for (const auto& [Text, LeftToRight, RightToLeft] : Cases) {
        for (const auto Flags : {decltype(ETO_RTLREADING){}, ETO_RTLREADING}) {
            THtmlCanvas Canvas;
            Canvas.SetTextFlags(Flags);
            Canvas.DrawText(Text);
            std::string Found;
            for (const std::string& Line : Canvas.GetLines())
                if (const std::string Piece = TextOf(Line); !Piece.empty())
                    Found += (Found.empty() ? "" : "|") + Piece.substr(1, Piece.size() - 2);
            EXPECT_EQ(Found, Flags == 0 ? LeftToRight : RightToLeft);
            EXPECT_EQ(Canvas.GetTextFlags(), Flags);
        }
    }
}

TEST(HTMLDraw, NoLineOfSeveralWordsIsWiderThanTheRoom) {
    const std::string Texts[] = {
        "one two three four five six seven eight nine ten eleven twelve i i i ill till fill",
        "\x80\x81\x82\x83 \xBF\xBF\xBF\xBF \x80\x81\x82\x83 \xBF\xBF\xBF\xBF \x80\x81\x82\x83 "
        "\xBF\xBF\xBF\xBF"};
    for (const double Scale : {1.0, 1.25, 1.5, 2.0}) {
        THtmlCanvas Canvas(Scale);
        for (const std::string& Text : Texts) {
            for (int Room = 40; Room < 200; ++Room) {
                Canvas.DrawText(Text, {10, 10, 10 + Room, 190}, true);
                for (const std::string& Line : Canvas.GetLines()) {
                    std::string Shown = TextOf(Line);
                    Shown = Shown.substr(0, Shown.find_last_not_of(" \"") + 1).erase(0, 1);
                    if (Shown.find(' ') == std::string::npos) continue;
                    ASSERT_LE(Canvas.TextWidth(Shown), Room) << Shown << " at " << Scale;
                }
            }
        }
    }
}

TEST(HTMLDraw, RectanglesMayReachToTheEndsOfTheirNumbers) {
    THtmlCanvas Canvas;
    TRect Wide{INT_MIN, 0, 0, 0};
    DrawHTML(Wide, Canvas, "one two", true, true, 0, 0);
    EXPECT_EQ(Wide.Height(), Canvas.TextHeight("Ag"));
    for (const TRect& R :
         {TRect{INT_MIN, INT_MIN, INT_MAX, INT_MAX}, TRect{INT_MAX, INT_MAX, INT_MIN, INT_MIN},
          TRect{0, INT_MIN, 10, INT_MAX}, TRect{INT_MIN, 0, INT_MIN + 1, 10}}) {
        for (const bool Mirrored : {false, true}) {
            Canvas.SetMirrored(Mirrored, 400);
            Canvas.DrawText("<B>one</B> two", R, true, HTMLCenter, HTMLMiddle);
            EXPECT_EQ(Canvas.GetFont()->GetStyle(), TFontStyles());
        }
    }
}

TEST(HTMLDraw, SpacesStayInsideTheirBackgroundWhereReadingTurns) {
    THtmlCanvas Canvas;
    Canvas.SetTextFlags(ETO_RTLREADING);
    Canvas.DrawText("<BGCOLOR=#FF0000> one </BGCOLOR><BGCOLOR=#0000FF> two ");
    EXPECT_EQ(TextsOf(Canvas), "\" one \"\" two \"");
}

TEST(HTMLDraw, MeasuringFollowsTheCanvasFontAlone) {
    THtmlCanvas Canvas;
    const int Line = Canvas.TextHeight("Ag");
    const auto Is = [&](const std::string& Text, int Width, int Lines, bool Wrap = false, int Room = 400) {
        for (int Round = 0; Round < 2; ++Round) { // measured, and remembered
            const TSize Size = Canvas.Measure(Text, Room, Wrap);
            EXPECT_EQ(Size.cx, Width) << Text;
            EXPECT_EQ(Size.cy, Lines * Line) << Text;
        }
    };
    const auto W = [&](const char* Text) { return Canvas.TextWidth(Text); };
    Is("Abc", W("Abc"), 1);
    Is("A<B>b</B>c", W("A") + W("b") + W("c"), 1);
    Is("<FONT SIZE=99 FACE=Courier>Wide", W("Wide"), 1);
    Is("a\n\n<B></B>\nlonger", W("longer"), 2);
    Is("one two three", W("one two "), 2, true, W("one two "));
    Is("unbreakable", W("unbreakable"), 1, true, 5);
    TRect R{1, 2, 3, 4};
    DrawHTML(R, Canvas, "", true, true, 0, 0);
    EXPECT_EQ(R, (TRect{1, 2, 3, 4}));
    // The same text in another font is another text.
    Canvas.GetFont()->SetHeight(-28);
    EXPECT_GT(Canvas.Measure("Abc").cy, Line);
}

TEST(HTMLDraw, CodesPlaceLinesAndBlock) {
    THtmlCanvas Canvas;
    const TRect Room{50, 20, 350, 120};
    const int Width = Canvas.TextWidth("Text");
    const int Height = Canvas.TextHeight("Ag");
    // The last two: of the text, from the rectangle's. Mirrored the sides stay.
    const std::tuple<int, int, bool, int, int> Cases[] = {
        {HTMLLeft, HTMLTop, false, 0, 0},
        {HTMLRight, HTMLMiddle, false, 300 - Width, (100 - Height) / 2},
        {HTMLCenter, HTMLBottom, false, (300 - Width) / 2, 100 - Height},
        {HTMLLeft, HTMLTop, true, 0, 0},
        {HTMLRight, HTMLTop, true, 300 - Width, 0},
    };
    for (const auto& [Horz, Vert, Mirrored, Left, Top] : Cases) {
        Canvas.SetMirrored(Mirrored, 400);
        Canvas.DrawText("Text", Room, false, Horz, Vert); // as far from the left as from the right
        Canvas.SetMirrored(false, 400);
        int X = 0;
        int Y = 0;
        std::sscanf(Canvas.GetLog("TextOut").c_str(), "TextOut (%d,%d)", &X, &Y);
        EXPECT_EQ(std::pair(X, Y), std::pair(Room.Left + Left, Room.Top + Top))
            << Horz << " " << Vert << Mirrored;
    }
    for (const int Wild : {1, 2, -4, 12}) {
        Canvas.DrawText("Text", Room, false, 0, Wild);
        EXPECT_EQ(TextsOf(Canvas), "") << Wild;
    }
    // A block that is too high begins at the top; what begins below the rectangle is not drawn.
    Canvas.DrawText("1\n2\n3\n4\n5\n6\n7\n8\n9", {0, 0, 300, 3 * Height + 1}, false, 0, HTMLBottom);
    EXPECT_TRUE(Canvas.GetLog("TextOut").starts_with("TextOut (0,0) \"1\""));
    EXPECT_EQ(TextsOf(Canvas), "\"1\"\"2\"\"3\"\"4\"");
}

TEST(HTMLDraw, FontsOfALineShareOneBaselineToThePixel) {
    for (const double Scale : {1.0, 1.25, 1.5, 2.0}) {
        for (int Size = 15; Size < 45; Size += 3) {
            THtmlCanvas Canvas(Scale);
            Canvas.DrawText("<COLOR=#000000><FONT SIZE=-" + std::to_string(Size) + ">HH</FONT>HH");
            // The lowest dark pixel in the first and in the last column that has any.
            const QImage& Image = Canvas.GetImage();
            int First = -1;
            int Last = -1;
            for (int X = 0; X < Image.width(); ++X) {
                for (int Y = Image.height() - 1; Y >= 0; --Y) {
                    if (qAlpha(Image.pixel(X, Y)) == 0 || qGray(Image.pixel(X, Y)) > 100) continue;
                    if (First < 0) First = Y;
                    Last = Y;
                    break;
                }
            }
            ASSERT_GT(First, 0);
            EXPECT_EQ(First, Last) << Size << " at " << Scale;
        }
    }
}

TEST(HTMLDraw, TheCanvasIsGivenBackAsItWas) {
    THtmlCanvas Canvas;
    Canvas.SetMirrored(true, 400);
    Canvas.MoveTo(3, 4);
    Canvas.SetBkMode(OPAQUE);
    Canvas.DrawText("<FONT SIZE=30 COLOR=#FF0000><B><BGCOLOR=#00FF00>x", {0, 0, 100, 10});
    EXPECT_EQ(Canvas.GetFont()->GetHeight(), -14);
    EXPECT_EQ(Canvas.GetFont()->GetColor(), TextColor);
    EXPECT_TRUE(Canvas.GetFont()->GetStyle().IsEmpty());
    EXPECT_EQ(Canvas.GetBrush()->GetColor(), Paper);
    EXPECT_EQ(Canvas.GetBkMode(), OPAQUE);
    EXPECT_EQ(Canvas.GetPenPos(), (TPoint{3, 4}));
    EXPECT_EQ(Canvas.GetCanvasOrientation(), coRightToLeft);
    EXPECT_EQ(Canvas.GetMirrorWidth(), 400);
    EXPECT_EQ(Canvas.GetClipRect().Width(), 400);
}

TEST(HTMLDraw, NothingIsPaintedOutsideTheRectangle) {
    for (const double Scale : {1.0, 1.5, 2.0}) {
        THtmlCanvas Canvas(Scale);
        Canvas.GetBrush()->SetColor(clWhite);
        Canvas.FillRect({0, 0, 400, 200});
        const TRect Room{100, 50, 220, 77};
        Canvas.GetBrush()->SetColor(0xC0FFFF);
        for (const int Horz : {0, 1, 2})
            Canvas.DrawText("<I>A<FONT SIZE=60>long</FONT> line</I> that does not fit into its room\nnor its "
                            "second\nthird",
                            Room, false, Horz, HTMLMiddle);
        const QImage& Image = Canvas.GetImage();
        for (int Y = 0; Y < Image.height(); ++Y) {
            for (int X = 0; X < Image.width(); ++X) {
                const bool Inside = X >= Canvas.ToDevice(Room.Left) && X < Canvas.ToDevice(Room.Right) &&
                                    Y >= Canvas.ToDevice(Room.Top) && Y < Canvas.ToDevice(Room.Bottom);
                ASSERT_TRUE(Inside || Image.pixelColor(X, Y) == QColor(Qt::white))
                    << X << ',' << Y << " at " << Scale;
            }
        }
    }
}

std::string Repeated(const std::string& Part, int Count) {
    std::string Result;
    for (; Count > 0; --Count) Result += Part;
    return Result;
}

// Texts that would take for ever if a part of them were read again for each of its characters.
TEST(HTMLDraw, HostileTextsAreReadOnce) {
    const std::string Hostile[] = {
        std::string(150'000, '<'),
        std::string(100'000, '<') + std::string(100'000, '\n') + ">",
        std::string(150'000, 'x'),
        std::string(80'000, ' ') + std::string(80'000, 'y'),
        "<B>x</B>" + Repeated("a\xD7\x90", 10'000),
        "<FONT FACE=" + std::string(100'000, 'F') + ">" + Repeated("<COLOR=>", 10'000) + "x",
    };
    THtmlCanvas Canvas;
    for (const std::string& Text : Hostile) {
        for (const bool Wrap : {false, true}) {
            EXPECT_GT(Canvas.Measure(Text, 300, Wrap).cx, 0);
            Canvas.DrawText(Text, {0, 0, 300, 50}, Wrap);
        }
    }
}

TEST(HTMLDraw, AnyBytesAreMarkup) {
    const unsigned Seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(Seed));
    std::mt19937 Random(Seed);
    std::vector<std::string> Parts{"\n", "\r", " ", "<FONT ", std::string(1, '\0')};
    std::istringstream More(
        "< > <B> </B> SIZE= FACE=\" COLOR=# </FONT> <BGCOLOR= </BGCOLOR> <COLOR= abc \xC3\xA9 "
        "\xD7\xA9 \xF0\x9F\x98\x80 \xFF = \" 12345678 -1");
    for (std::string Part; More >> Part;) Parts.push_back(Part);
    THtmlCanvas Canvas;
    for (int Step = 0; Step < 2000; ++Step) {
        std::string Text;
        for (auto Count = Random() % 12; Count > 0; --Count) Text += Parts[Random() % Parts.size()];
        const auto Any = [&](unsigned Limit) { return static_cast<int>(Random() % Limit); };
        const TRect Room = Bounds(Any(500) - 50, Any(300) - 50, Any(300) - 40, Any(100) - 20);
        const bool Wrap = Any(2) != 0;
        EXPECT_GE(Canvas.Measure(Text, Room.Width(), Wrap).cy, 0);
        Canvas.DrawText(Text, Room, Wrap, Any(3), Any(3) * 4);
        ASSERT_EQ(Canvas.GetFont()->GetHeight(), -14);
    }
}

} // namespace
} // namespace quill::testing
