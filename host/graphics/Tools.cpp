// Fonts, pens and brushes.
#include "host/base/PropertyTables.h"
#include "host/graphics/Graphics.h"

#include <QFont>
#include <QFontInfo>
#include <QGuiApplication>

#include <cmath>

namespace quill {

template <>
struct TEnumNames<TFontStyle> {
    static constexpr std::string_view Names[] = {"fsBold", "fsItalic", "fsUnderline", "fsStrikeOut"};
};

namespace {

constexpr int PixelsPerInch = 96;
constexpr int PointsPerInch = 72;

} // namespace

// --- fonts --------------------------------------------------------------------------------------------------------

// The height of the application's font, 9 points when there is no application object yet.
TFont::TFont() : FHeight(-MulDiv(9, PixelsPerInch, PointsPerInch)) {
    if (qGuiApp == nullptr) return;
    const QFont Font = QGuiApplication::font();
    if (Font.pixelSize() > 0) {
        FHeight = -Font.pixelSize();
    } else if (Font.pointSizeF() > 0) {
        FHeight = -static_cast<int>(std::lround(Font.pointSizeF() * PixelsPerInch / PointsPerInch));
    }
}

void TFont::SetName(const std::string& Value) {
    if (FName == Value) return;
    FName = Value;
    Changed();
}

void TFont::SetHeight(int Value) {
    if (FHeight == Value) return;
    FHeight = Value;
    Changed();
}

int TFont::GetSize() const { return -MulDiv(FHeight, PointsPerInch, PixelsPerInch); }

void TFont::SetSize(int Value) { SetHeight(-MulDiv(Value, PixelsPerInch, PointsPerInch)); }

void TFont::SetColor(TColor Value) {
    if (FColor == Value) return;
    FColor = Value;
    Changed();
}

void TFont::SetStyle(TFontStyles Value) {
    if (FStyle == Value) return;
    FStyle = Value;
    Changed();
}

bool TFont::SameShape(const TFont& Other) const {
    return FHeight == Other.FHeight && FStyle == Other.FStyle && FName == Other.FName;
}

void TFont::Assign(TPersistent* Source) {
    const auto* Other = dynamic_cast<TFont*>(Source);
    if (Other == nullptr) {
        TPersistent::Assign(Source);
        return;
    }
    if (SameShape(*Other) && FColor == Other->FColor) return;
    FName = Other->FName;
    FHeight = Other->FHeight;
    FColor = Other->FColor;
    FStyle = Other->FStyle;
    Changed();
}

const TClassInfo* TFont::GetClassInfo() const {
    using T = TFont;
    static const TPropertyInfo Properties[] = {
        Published<&T::GetColor, &T::SetColor>("Color", clWindowText),
        // Some thousand pixels are more than any text has.
        InRange(Published<&T::GetHeight, &T::SetHeight>("Height"), -0x7FFF, 0x7FFF),
        Published<&T::GetName, &T::SetName>("Name"),
        Published<&T::GetStyle, &T::SetStyle>("Style", 0),
    };
    static const TClassInfo Info{"TFont", nullptr, Properties};
    return &Info;
}

void TFont::SetFromQt(const QFont& Font) {
    FName = Font == QGuiApplication::font() ? std::string() : Font.family().toStdString();
    FHeight = -(Font.pixelSize() > 0
                    ? Font.pixelSize()
                    : static_cast<int>(std::lround(Font.pointSizeF() * PixelsPerInch / PointsPerInch)));
    FStyle = {};
    if (Font.bold()) FStyle.Include(fsBold);
    if (Font.italic()) FStyle.Include(fsItalic);
    if (Font.underline()) FStyle.Include(fsUnderline);
    if (Font.strikeOut()) FStyle.Include(fsStrikeOut);
    Changed();
}

// --- pens ---------------------------------------------------------------------------------------------------------

void TPen::SetColor(TColor Value) {
    if (FColor == Value) return;
    FColor = Value;
    Changed();
}

void TPen::SetWidth(int Value) {
    if (FWidth == Value || Value < 0) return;
    FWidth = Value;
    Changed();
}

void TPen::SetStyle(TPenStyle Value) {
    if (FStyle == Value) return;
    FStyle = Value;
    Changed();
}

void TPen::SetMode(TPenMode Value) {
    if (FMode == Value) return;
    FMode = Value;
    Changed();
}

void TPen::Assign(TPersistent* Source) {
    const auto* Other = dynamic_cast<TPen*>(Source);
    if (Other == nullptr) {
        TPersistent::Assign(Source);
        return;
    }
    FColor = Other->FColor;
    FWidth = Other->FWidth;
    FStyle = Other->FStyle;
    FMode = Other->FMode;
    Changed();
}

// --- brushes ------------------------------------------------------------------------------------------------------

void TBrush::SetColor(TColor Value) {
    if (FColor == Value && FStyle == bsSolid) return;
    FColor = Value;
    FStyle = bsSolid;
    Changed();
}

void TBrush::SetStyle(TBrushStyle Value) {
    if (FStyle == Value) return;
    FStyle = Value;
    Changed();
}

void TBrush::Assign(TPersistent* Source) {
    const auto* Other = dynamic_cast<TBrush*>(Source);
    if (Other == nullptr) {
        TPersistent::Assign(Source);
        return;
    }
    FColor = Other->FColor;
    FStyle = Other->FStyle;
    Changed();
}

} // namespace quill
