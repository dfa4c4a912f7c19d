// System colours, tools and the drawn controls, on light and dark palettes.
#include "host/graphics/Colors.h"
#include "host/base/Errors.h"
#include "tests/graphics/Pictures.h"
#include "tests/support/QtTest.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

#include <cmath>
#include <map>

namespace quill {
namespace {

using testing::InkBounds;
using testing::TPictureCanvas;

double Luminance(TColor Color) {
    double Result = 0.0;
    const double Weights[] = {0.2126, 0.7152, 0.0722};
    for (int I = 0; I < 3; ++I) {
        const double V = (Color >> (8 * I) & 0xFF) / 255.0;
        Result += Weights[I] * (V <= 0.04045 ? V / 12.92 : std::pow((V + 0.055) / 1.055, 2.4));
    }
    return Result;
}

double Contrast(TColor A, TColor B) {
    const double LA = Luminance(A) + 0.05;
    const double LB = Luminance(B) + 0.05;
    return std::max(LA, LB) / std::min(LA, LB);
}

// The palettes of the styles that come with the toolkit, and dark ones as programs make them.
std::map<std::string, QPalette> Palettes() {
    std::map<std::string, QPalette> Result;
    for (const char* Name : {"Fusion", "Windows"})
        if (const std::unique_ptr<QStyle> Style{QStyleFactory::create(Name)})
            Result[Name] = Style->standardPalette();
    Result["dark"] = QPalette(QColor(0x35, 0x35, 0x35), QColor(0x28, 0x28, 0x28));
    QPalette Custom(QColor(0x31, 0x36, 0x3B));
    Custom.setColor(QPalette::Base, QColor(0x1B, 0x1E, 0x20));
    Custom.setColor(QPalette::Text, QColor(0xFC, 0xFC, 0xFC));
    Custom.setColor(QPalette::Highlight, QColor(0x3D, 0xAE, 0xE9));
    Custom.setColor(QPalette::HighlightedText, QColor(0xFC, 0xFC, 0xFC));
    Result["custom dark"] = Custom;
    return Result;
}

TEST(Colors, CanBeToldApartOnEveryPalette) {
    for (const auto& [Name, Palette] : Palettes()) {
        SCOPED_TRACE(Name);
        const auto Color = [P = Palette](TColor System) { return ColorToRGB(System, P); };
        EXPECT_GE(Contrast(Color(clInactiveCaption), Color(clHighlightText)), 4.4);
        EXPECT_GE(Contrast(Color(clInactiveCaption), Color(clWindow)), 1.5);
        EXPECT_NE(Color(clInactiveCaption), Color(clHighlight));
        EXPECT_LT(Luminance(Color(cl3DDkShadow)), Luminance(Color(clBtnShadow)));
        EXPECT_LT(Luminance(Color(clBtnShadow)), Luminance(Color(clBtnFace)));
        EXPECT_GT(Luminance(Color(clBtnHighlight)), Luminance(Color(clBtnFace)));
        EXPECT_EQ(IsDarkPalette(Palette), Name.find("dark") != std::string::npos);
    }
}

// Each check fills its rectangle with a frame of four sides around the ground, and its mark can be seen.
void ExpectVisibleChecks(const QPalette& Palette, double Scale, int Side, unsigned Look) {
    const auto Paint = [&](unsigned State) {
        TPictureCanvas Canvas(20, 20, Scale);
        Canvas.SetPalette(Palette);
        Canvas.GetBrush()->SetColor(clWindow);
        Canvas.FillRect({0, 0, 20, 20});
        Canvas.DrawFrameControl({3, 3, 3 + Side, 3 + Side}, DFC_BUTTON, State);
        return Canvas.Image;
    };
    const auto Difference = [](QRgb A, QRgb B) { return std::abs(qGray(A) - qGray(B)); };
    const QImage Empty = Paint(Look);
    const QRgb Ground = Empty.pixel(0, 0);
    const QRect Frame = InkBounds(Empty, Ground);
    const int Edge = static_cast<int>(std::floor(3 * Scale + 0.5));
    const int Length = static_cast<int>(std::floor((3 + Side) * Scale + 0.5)) - Edge;
    EXPECT_EQ(Frame, QRect(Edge, Edge, Length, Length));
    const QPoint Middle(Edge + Length / 2, Edge + Length / 2);
    EXPECT_EQ(Empty.pixel(Middle), Ground);
    for (const QPoint P : {QPoint(Frame.left(), Middle.y()), QPoint(Middle.x(), Frame.top()),
                           QPoint(Frame.right(), Middle.y()), QPoint(Middle.x(), Frame.bottom())})
        EXPECT_GE(Difference(Empty.pixel(P), Ground), 20);
    for (const unsigned Kind : {DFCS_BUTTONCHECK, DFCS_BUTTONRADIO}) {
        const QImage Checked = Paint(Look | Kind | DFCS_CHECKED);
        const QImage Unchecked = Paint(Look | Kind);
        int Marked = 0;
        for (int Y = 0; Y < Checked.height(); ++Y)
            for (int X = 0; X < Checked.width(); ++X)
                Marked += Difference(Checked.pixel(X, Y), Unchecked.pixel(X, Y)) > 120;
        EXPECT_GE(Marked, static_cast<int>(9 * Scale * Scale)) << Kind;
        EXPECT_FALSE(Paint(Look | Kind | DFCS_CHECKED | DFCS_INACTIVE) == Checked);
    }
}

TEST(Colors, ChecksAreVisibleOnEveryPaletteAtEveryScale) {
    for (const auto& [Name, Palette] : Palettes())
        for (const double Scale : {1.0, 1.5, 2.0})
            for (const int Side : {11, 13, 15})
                for (const unsigned Look : {0u, DFCS_FLAT}) {
                    SCOPED_TRACE(Name + " at " + std::to_string(Scale) + ", " + std::to_string(Side) +
                                 " wide");
                    ExpectVisibleChecks(Palette, Scale, Side, Look);
                }
}

TEST(Colors, EdgesFollowTheirFlags) {
    QPalette Palette(QColor(0xC0, 0xC0, 0xC0));
    Palette.setColor(QPalette::Light, Qt::white);
    Palette.setColor(QPalette::Dark, QColor(0x80, 0x80, 0x80));
    const auto Draw = [&](bool Mirrored, unsigned Edge, unsigned Flags) {
        TPictureCanvas Canvas(5, 4, 1.0, 0xFFC0C0C0);
        Canvas.SetPalette(Palette);
        Canvas.SetMirrored(Mirrored, 5);
        Canvas.DrawEdge({0, 0, 5, 4}, Edge, Flags);
        std::string Result;
        for (int Y = 0; Y < 4; ++Y) {
            for (int X = 0; X < 5; ++X) {
                const int Gray = qGray(Canvas.Image.pixel(X, Y));
                Result += Gray == 0xC0 ? '.' : Gray > 0xC0 ? 'L' : 'D';
            }
            Result += '\n';
        }
        return Result;
    };
    EXPECT_EQ(Draw(false, BDR_RAISEDINNER, BF_RECT), "LLLLD\nL...D\nL...D\nDDDDD\n");
    EXPECT_EQ(Draw(false, BDR_SUNKENOUTER, BF_RECT), "DDDDL\nD...L\nD...L\nLLLLL\n");
    EXPECT_EQ(Draw(false, BDR_RAISEDINNER, BF_BOTTOM | BF_RIGHT), "....D\n....D\n....D\nDDDDD\n");
    EXPECT_EQ(Draw(true, BDR_RAISEDINNER, BF_RIGHT), "L....\nL....\nL....\nL....\n") << "a mirrored side";
}

TEST(Colors, NamesReadBack) {
    for (const TColor Color :
         {clBlack, clWhite, clBtnFace, clHighlight, clInfoBk, clNone, clDefault, TColor{0x123456}})
        EXPECT_EQ(StringToColor(ColorToString(Color)), Color);
    EXPECT_EQ(ColorToString(0x123456), "$00123456");
    EXPECT_EQ(StringToColor("CLBTNFACE"), clBtnFace);
    EXPECT_EQ(StringToColor("255"), 255u);
    EXPECT_THROW(StringToColor("clNoSuch"), EConvertError);
    EXPECT_THROW(StringToColor(""), EConvertError);
}

} // namespace
} // namespace quill
