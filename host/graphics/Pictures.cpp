#include "host/graphics/Pictures.h"

#include "host/base/Errors.h"
#include "host/base/Streams.h"
#include "host/base/Texts.h"
#include "host/graphics/Canvas.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>

namespace quill {

namespace {

constexpr double LargestSide = 32767;
// Documents without any size.
constexpr double UsualSide = 100;
constexpr double PixelsPerInch = 96;

// A length such as "12", "3cm" or "50%"; 0 for none that says something about pixels.
double Length(QStringView Text) {
    Text = Text.trimmed();
    qsizetype Digits = 0;
    while (Digits < Text.size() && (Text[Digits].isDigit() || QStringView(u"+-.eE").contains(Text[Digits]))) {
        // The e of "em" is no exponent.
        if (Text[Digits].toLower() == u'e' && (Digits + 1 == Text.size() || Text[Digits + 1].isLetter()))
            break;
        ++Digits;
    }
    const double Number = Text.left(Digits).toDouble();
    const QStringView Unit = Text.mid(Digits);
    double Factor = 0;
    if (Unit.isEmpty() || Unit == u"px") Factor = 1;
    if (Unit == u"in") Factor = PixelsPerInch;
    if (Unit == u"cm") Factor = PixelsPerInch / 2.54;
    if (Unit == u"mm") Factor = PixelsPerInch / 25.4;
    if (Unit == u"pt") Factor = PixelsPerInch / 72;
    if (Unit == u"pc") Factor = PixelsPerInch / 6;
    return Number * Factor;
}

bool ReadRoot(const std::string& Svg, double& Width, double& Height) {
    QXmlStreamReader Reader(QByteArray::fromRawData(Svg.data(), static_cast<qsizetype>(Svg.size())));
    if (!Reader.readNextStartElement() || Reader.name() != u"svg") return false;
    const QXmlStreamAttributes Attributes = Reader.attributes();
    Width = Length(Attributes.value(QLatin1String("width")));
    Height = Length(Attributes.value(QLatin1String("height")));
    if (Width > 0 && Height > 0) return true;
    const QStringList Box = Attributes.value(QLatin1String("viewBox"))
                                .toString()
                                .replace(u',', u' ')
                                .split(u' ', Qt::SkipEmptyParts);
    Width = Box.size() == 4 ? Box[2].toDouble() : 0;
    Height = Box.size() == 4 ? Box[3].toDouble() : 0;
    if (!(Width > 0 && Height > 0)) Width = Height = UsualSide;
    return true;
}

QImage EmptyFrame(QSize Size) {
    QImage Result(Size, QImage::Format_ARGB32_Premultiplied);
    Result.fill(Qt::gray);
    QPainter Painter(&Result);
    Painter.setCompositionMode(QPainter::CompositionMode_Clear);
    Painter.fillRect(Result.rect().adjusted(1, 1, -1, -1), Qt::transparent);
    return Result;
}

int Side(double Value) { return static_cast<int>(std::lround(std::clamp(Value, 1.0, LargestSide))); }

} // namespace

// --- metafile -----------------------------------------------------------------------------------------------------

TMetafile& TMetafile::operator=(const TMetafile& Other) {
    FSvg = Other.FSvg;
    FWidth = Other.FWidth;
    FHeight = Other.FHeight;
    FTransparent = Other.FTransparent;
    Changed();
    return *this;
}

bool TMetafile::SetSvg(const std::string& Value) {
    double Width = 0;
    double Height = 0;
    if (!ReadRoot(Value, Width, Height)) return false;
    FSvg = Value;
    FWidth = Side(Width);
    FHeight = Side(Height);
    Changed();
    return true;
}

void TMetafile::Clear() {
    FSvg.clear();
    FWidth = FHeight = 0;
    Changed();
}

void TMetafile::LoadFromStream(TStream& Stream) {
    if (!SetSvg(Stream.ReadRest())) throw EReadError(FormatText(SReadError, {"not an SVG document"}));
}

void TMetafile::LoadFromFile(const std::string& FileName) {
    TFileStream Stream(FileName, fmOpenRead);
    LoadFromStream(Stream);
}

void TMetafile::SaveToStream(TStream& Stream) const {
    Stream.WriteBuffer(FSvg.data(), static_cast<std::int64_t>(FSvg.size()));
}

void TMetafile::SaveToFile(const std::string& FileName) const {
    TMemoryStream Stream(FSvg);
    Stream.SaveToFile(FileName);
}

void TMetafile::Assign(TPersistent* Source) {
    if (!Source) {
        Clear();
    } else if (const auto* Other = dynamic_cast<TMetafile*>(Source)) {
        *this = *Other;
    } else {
        TPersistent::Assign(Source);
    }
}

void TMetafile::DrawOn(TCanvas& Canvas, const TRect& Rect) {
    if (GetEmpty() || Rect.IsEmpty()) return;
    const QSize Size = Canvas.ToDeviceRect(Rect).size().boundedTo(
        QSize(static_cast<int>(LargestSide), static_cast<int>(LargestSide)));
    QByteArray Bytes = QByteArray::fromRawData(FSvg.data(), static_cast<qsizetype>(FSvg.size()));
    QBuffer Device(&Bytes);
    QImageReader Reader(&Device, "svg");
    Reader.setScaledSize(Size);
    QImage Image = Reader.read().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (Image.isNull()) Image = EmptyFrame(Size);
    Canvas.DrawImage(Rect, Image, Canvas.GetScale());
}

// --- picture ------------------------------------------------------------------------------------------------------

TGraphic* TPicture::GetGraphic() const {
    if (FBitmap) return FBitmap.get();
    return FMetafile.get();
}

void TPicture::SetGraphic(const TGraphic* Value) {
    std::unique_ptr<TBitmap> Bitmap;
    std::unique_ptr<TMetafile> Metafile;
    if (const auto* ABitmap = dynamic_cast<const TBitmap*>(Value)) {
        Bitmap = std::make_unique<TBitmap>(*ABitmap);
    } else if (const auto* AMetafile = dynamic_cast<const TMetafile*>(Value)) {
        Metafile = std::make_unique<TMetafile>(*AMetafile);
    } else if (Value) {
        throw EConvertError(FormatText(SAssignError, {Value->ClassName(), ClassName()}));
    }
    FBitmap = std::move(Bitmap);
    FMetafile = std::move(Metafile);
}

TBitmap* TPicture::GetBitmap() {
    FMetafile = nullptr;
    if (!FBitmap) FBitmap = std::make_unique<TBitmap>();
    return FBitmap.get();
}

TMetafile* TPicture::GetMetafile() {
    FBitmap = nullptr;
    if (!FMetafile) FMetafile = std::make_unique<TMetafile>();
    return FMetafile.get();
}

void TPicture::Assign(TPersistent* Source) {
    if (!Source) {
        SetGraphic(nullptr);
    } else if (const auto* Other = dynamic_cast<TPicture*>(Source)) {
        SetGraphic(Other->GetGraphic());
    } else if (const auto* Graphic = dynamic_cast<TGraphic*>(Source)) {
        SetGraphic(Graphic);
    } else {
        TPersistent::Assign(Source);
    }
}

} // namespace quill
