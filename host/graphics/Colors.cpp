#include "host/graphics/Colors.h"

#include "host/base/Errors.h"
#include "host/base/Numbers.h"
#include "host/graphics/Graphics.h"

#include <QColor>
#include <QGuiApplication>
#include <QPalette>

#include <cmath>
#include <cstdio>

namespace quill {
namespace {

struct TNamedColor {
    std::string_view Name;
    TColor Color;
};

constexpr TNamedColor NamedColors[] = {
    {"clBlack", clBlack},
    {"clMaroon", clMaroon},
    {"clGreen", clGreen},
    {"clOlive", clOlive},
    {"clNavy", clNavy},
    {"clPurple", clPurple},
    {"clTeal", clTeal},
    {"clGray", clGray},
    {"clSilver", clSilver},
    {"clRed", clRed},
    {"clLime", clLime},
    {"clYellow", clYellow},
    {"clBlue", clBlue},
    {"clFuchsia", clFuchsia},
    {"clAqua", clAqua},
    {"clWhite", clWhite},
    {"clScrollBar", clScrollBar},
    {"clBackground", clBackground},
    {"clActiveCaption", clActiveCaption},
    {"clInactiveCaption", clInactiveCaption},
    {"clMenu", clMenu},
    {"clWindow", clWindow},
    {"clWindowFrame", clWindowFrame},
    {"clMenuText", clMenuText},
    {"clWindowText", clWindowText},
    {"clCaptionText", clCaptionText},
    {"clActiveBorder", clActiveBorder},
    {"clInactiveBorder", clInactiveBorder},
    {"clAppWorkSpace", clAppWorkSpace},
    {"clHighlight", clHighlight},
    {"clHighlightText", clHighlightText},
    {"clBtnFace", clBtnFace},
    {"clBtnShadow", clBtnShadow},
    {"clGrayText", clGrayText},
    {"clBtnText", clBtnText},
    {"clInactiveCaptionText", clInactiveCaptionText},
    {"clBtnHighlight", clBtnHighlight},
    {"cl3DDkShadow", cl3DDkShadow},
    {"cl3DLight", cl3DLight},
    {"clInfoText", clInfoText},
    {"clInfoBk", clInfoBk},
    {"clNone", clNone},
    {"clDefault", clDefault},
};

bool SameIgnoringCase(std::string_view A, std::string_view B) {
    if (A.size() != B.size()) return false;
    const auto Lower = [](char C) { return C >= 'A' && C <= 'Z' ? static_cast<char>(C - 'A' + 'a') : C; };
    for (std::size_t I = 0; I < A.size(); ++I)
        if (Lower(A[I]) != Lower(B[I])) return false;
    return true;
}

TColor FromQColor(const QColor& Color) {
    return static_cast<TColor>(Color.red()) | static_cast<TColor>(Color.green()) << 8 |
           static_cast<TColor>(Color.blue()) << 16;
}

// Relative luminance (0 .. 1) and contrast (1 .. 21) as the accessibility guidelines define them.
double Luminance(const QColor& Color) {
    const auto Linear = [](double V) {
        return V <= 0.04045 ? V / 12.92 : std::pow((V + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * Linear(Color.redF()) + 0.7152 * Linear(Color.greenF()) + 0.0722 * Linear(Color.blueF());
}

double Contrast(const QColor& A, const QColor& B) {
    const double LA = Luminance(A) + 0.05;
    const double LB = Luminance(B) + 0.05;
    return std::max(LA, LB) / std::min(LA, LB);
}

QColor Mixed(const QColor& A, const QColor& B, double PartOfB) {
    const auto Mix = [PartOfB](int X, int Y) { return static_cast<int>(std::lround(X + (Y - X) * PartOfB)); };
    return QColor(Mix(A.red(), B.red()), Mix(A.green(), B.green()), Mix(A.blue(), B.blue()));
}

// The colour of a selection without focus: the highlight without most of its chroma, moved away from the highlighted
// text until that can be read on it.
QColor MutedHighlight(const QPalette& Palette) {
    const QColor Text = Palette.color(QPalette::Active, QPalette::HighlightedText);
    QColor Result = Palette.color(QPalette::Inactive, QPalette::Highlight);
    if (Result == Palette.color(QPalette::Active, QPalette::Highlight)) {
        const int Gray = qGray(Result.rgb());
        Result = Mixed(Result, QColor(Gray, Gray, Gray), 0.75);
    }
    const QColor Away = Luminance(Text) > 0.18 ? QColor(Qt::black) : QColor(Qt::white);
    for (int Step = 0; Step < 20 && Contrast(Result, Text) < 4.5; ++Step) Result = Mixed(Result, Away, 0.1);
    // Dark on dark: as visible as the text allows.
    const QColor Base = Palette.color(QPalette::Active, QPalette::Base);
    for (int Step = 0; Step < 20 && Contrast(Result, Base) < 1.7; ++Step) {
        const QColor Nearer = Mixed(Result, Text, 0.05);
        if (Contrast(Nearer, Text) < 4.5) break;
        Result = Nearer;
    }
    return Result;
}

// An edge colour that can be told from the face beside it; palettes made by hand often leave the roles alike.
QColor Edge(const QPalette& Palette, QPalette::ColorRole Role, bool Lighter) {
    const QColor Face = Palette.color(QPalette::Active, QPalette::Button);
    const QColor Own = Palette.color(QPalette::Active, Role);
    const int Difference = qGray(Own.rgb()) - qGray(Face.rgb());
    if ((Lighter ? Difference : -Difference) >= 12) return Own;
    return Mixed(Face, Lighter ? QColor(Qt::white) : QColor(Qt::black), Lighter ? 0.3 : 0.45);
}

QColor SystemColor(TColor Color, const QPalette& Palette) {
    const auto Active = [&Palette](QPalette::ColorRole Role) {
        return Palette.color(QPalette::Active, Role);
    };
    switch (Color) {
    case clScrollBar:
    case clActiveBorder:
    case clInactiveBorder:
    case clMenu:
    case clBackground:
        return Active(QPalette::Window);
    case clActiveCaption:
    case clHighlight:
        return Active(QPalette::Highlight);
    case clInactiveCaption:
        return MutedHighlight(Palette);
    case clWindow:
        return Active(QPalette::Base);
    case clMenuText:
    case clWindowFrame:
        return Active(QPalette::WindowText);
    case clWindowText:
        return Active(QPalette::Text);
    case clCaptionText:
    case clInactiveCaptionText:
    case clHighlightText:
        return Active(QPalette::HighlightedText);
    case clAppWorkSpace:
        return Active(QPalette::Mid);
    case clBtnFace:
        return Active(QPalette::Button);
    case clBtnText:
        return Active(QPalette::ButtonText);
    case clGrayText:
        return Palette.color(QPalette::Disabled, QPalette::Text);
    case clBtnShadow:
        return Edge(Palette, QPalette::Dark, false);
    case cl3DDkShadow:
        return Mixed(Edge(Palette, QPalette::Dark, false), Qt::black, 0.5);
    case clBtnHighlight:
        return Edge(Palette, QPalette::Light, true);
    case cl3DLight:
        return Mixed(Active(QPalette::Button), Edge(Palette, QPalette::Light, true), 0.4);
    case clInfoText:
        return Active(QPalette::ToolTipText);
    case clInfoBk:
        return Active(QPalette::ToolTipBase);
    default:
        return Qt::black;
    }
}

} // namespace

TColor ColorToRGB(TColor Color) {
    if (!IsSystemColor(Color)) return Color == clNone || Color == clDefault ? clBlack : Color & 0xFFFFFF;
    return FromQColor(
        SystemColor(Color, qGuiApp != nullptr ? QGuiApplication::palette() : QPalette(Qt::lightGray)));
}

TColor ColorToRGB(TColor Color, const QPalette& Palette) {
    return IsSystemColor(Color) ? FromQColor(SystemColor(Color, Palette)) : ColorToRGB(Color);
}

bool IsDarkPalette(const QPalette& Palette) {
    return qGray(Palette.color(QPalette::Active, QPalette::Base).rgb()) <
           qGray(Palette.color(QPalette::Active, QPalette::Text).rgb());
}

std::string ColorToString(TColor Color) {
    for (const TNamedColor& Named : NamedColors)
        if (Named.Color == Color) return std::string(Named.Name);
    char Text[16];
    std::snprintf(Text, sizeof Text, "$%08X", static_cast<unsigned>(Color));
    return Text;
}

TColor StringToColor(std::string_view S) {
    for (const TNamedColor& Named : NamedColors)
        if (SameIgnoringCase(Named.Name, S)) return Named.Color;
    return static_cast<TColor>(StrToInt(S));
}

} // namespace quill
