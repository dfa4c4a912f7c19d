#include "host/base/Errors.h"
#include "host/base/Texts.h"
#include "host/graphics/Canvas.h"
#include "host/graphics/Pixels.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>

#include <algorithm>
#include <cmath>

// The resource initialiser has to be named from outside any namespace.
static void InitResources() { Q_INIT_RESOURCE(quill_resources); }

namespace quill {
namespace {

// Sides above this cannot be painted on.
constexpr double LargestSide = 32767;
// A picture drawn in another size is kept in that size up to this many pixels.
constexpr int LargestDerived = 256 * 256;
constexpr std::size_t MostDerived = 6;

int DeviceSide(int Units, double Scale) {
    return static_cast<int>(std::min(std::ceil(Units * Scale - 1e-6), LargestSide));
}

QImage Usable(QImage Image) {
    // Qt reads a ratio from names with "@2x"; here the representation knows its scale and pixels are pixels.
    Image.setDevicePixelRatio(1.0);
    if (pixels::IsSupported(Image)) return Image;
    return Image.convertToFormat(Image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                         : QImage::Format_RGB32);
}

QImage WithoutColor(const QImage& Image, TColor Color) {
    QImage Result = Image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QRgb Key = qRgb(static_cast<int>(Color & 0xFF), static_cast<int>(Color >> 8 & 0xFF),
                          static_cast<int>(Color >> 16 & 0xFF));
    const pixels::TView View = pixels::Writable(Result);
    for (int Y = 0; Y < View.Height; ++Y) std::replace(View.Row(Y), View.Row(Y) + View.Width, Key, QRgb{0});
    return Result;
}

QString Name2x(const QString& FileName) {
    const QFileInfo Info(FileName);
    const QString Suffix = Info.suffix();
    if (Suffix.isEmpty()) return FileName + QStringLiteral("@2x");
    return FileName.chopped(Suffix.size() + 1) + QStringLiteral("@2x.") + Suffix;
}

QString ToQString(const std::string& Text) { return QString::fromStdString(Text); }

} // namespace

struct TBitmap::TRepresentations {
    struct TRepresentation {
        QImage Image;
        double Scale = 1.0;
    };
    // A representation without its transparent colour, in the size in which it is drawn.
    struct TDerived {
        std::size_t Index;
        bool Keyed;
        TColor Key;
        QSize Size;
        QImage Image;
    };

    int Width = 0;
    int Height = 0;
    bool HasAlpha = false;
    // In the order of their scales; at least one, which has no pixels while the bitmap is empty.
    std::vector<TRepresentation> Images;
    std::vector<TDerived> Derived;

    std::size_t IndexFor(double Scale) const {
        std::size_t Index = 0;
        while (Index + 1 < Images.size() && Images[Index].Scale < Scale) ++Index;
        return Index;
    }

    const QImage& DerivedImage(std::size_t Index, bool Keyed, TColor Key, QSize Size) {
        for (const TDerived& Known : Derived)
            if (Known.Index == Index && Known.Keyed == Keyed && (!Keyed || Known.Key == Key) &&
                Known.Size == Size)
                return Known.Image;
        QImage Image = Images[Index].Image;
        if (Keyed) Image = WithoutColor(Image, Key);
        if (Image.size() != Size) Image = Image.scaled(Size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        if (Derived.size() >= MostDerived) Derived.erase(Derived.begin());
        Derived.push_back({Index, Keyed, Key, Size, Usable(Image)});
        return Derived.back().Image;
    }
};

TBitmap::TBitmap() = default;

TBitmap::TBitmap(const TBitmap& Other)
    : TGraphic(), FImages((Other.FinishDrawing(), Other.FImages)), FTransparentMode(Other.FTransparentMode),
      FTransparentColor(Other.FTransparentColor) {
    FTransparent = Other.FTransparent;
}

TBitmap& TBitmap::operator=(const TBitmap& Other) {
    if (this == &Other) return *this;
    Other.FinishDrawing();
    FinishDrawing();
    FImages = Other.FImages;
    FTransparent = Other.FTransparent;
    FTransparentMode = Other.FTransparentMode;
    FTransparentColor = Other.FTransparentColor;
    Rebind();
    Changed();
    return *this;
}

TBitmap::~TBitmap() = default;

std::unique_ptr<TBitmap> TBitmap::CreateCompatible(const TCanvas& Canvas, int Width, int Height) {
    auto Result = std::make_unique<TBitmap>();
    Result->Unique().Images.back().Scale = Canvas.GetScale();
    Result->SetSize(Width, Height);
    Result->GetCanvas()->SetPalette(Canvas.GetPalette());
    return Result;
}

std::unique_ptr<TBitmap> TBitmap::CreateTransparent(int Width, int Height, double Scale) {
    auto Result = std::make_unique<TBitmap>();
    Result->Unique().Images.back().Scale = Scale;
    Result->FImages->HasAlpha = true;
    Result->SetSize(Width, Height);
    return Result;
}

int TBitmap::GetWidth() const { return FImages ? FImages->Width : 0; }
int TBitmap::GetHeight() const { return FImages ? FImages->Height : 0; }

// --- sharing ------------------------------------------------------------------------------------------------------

// Makes the representations our own before they change.
TBitmap::TRepresentations& TBitmap::Unique() {
    FinishDrawing();
    if (!FImages) {
        FImages = std::make_shared<TRepresentations>();
        FImages->Images.push_back({});
    } else if (FImages.use_count() > 1) {
        FImages = std::make_shared<TRepresentations>(*FImages);
    }
    FImages->Derived.clear();
    return *FImages;
}

TBitmap::TRepresentations& TBitmap::UniqueForDrawing() {
    TRepresentations& Images = Unique();
    // The others would show the old picture.
    if (Images.Images.size() > 1) Images.Images.erase(Images.Images.begin(), Images.Images.end() - 1);
    return Images;
}

// Closes our canvas's painter, so that the images can be read and shared; it opens again when it is drawn on.
void TBitmap::FinishDrawing() const {
    if (FCanvas) FCanvas->EndPainting();
}

void TBitmap::Rebind() {
    if (!FCanvas) return;
    if (!FImages) {
        FCanvas->Bind(nullptr, 1.0);
        return;
    }
    TRepresentations::TRepresentation& Best = FImages->Images.back();
    FCanvas->Bind(&Best.Image, Best.Scale);
}

TCanvas* TBitmap::GetCanvas() {
    if (!FCanvas) {
        FCanvas = std::make_unique<TCanvas>();
        FCanvas->OnOpen = [this] {
            if (!FImages) return;
            // What is shared with copies becomes our own now.
            FCanvas->ReplaceSurface(&UniqueForDrawing().Images.back().Image);
        };
        Rebind();
    }
    return FCanvas.get();
}

// --- size and pixels ----------------------------------------------------------------------------------------------

void TBitmap::SetSize(int Width, int Height) {
    Width = std::max(0, Width);
    Height = std::max(0, Height);
    if (Width == GetWidth() && Height == GetHeight()) return;
    TRepresentations& Images = UniqueForDrawing();
    TRepresentations::TRepresentation& Best = Images.Images.back();
    QImage Old;
    Old.swap(Best.Image);
    Best.Image = QImage(DeviceSide(Width, Best.Scale), DeviceSide(Height, Best.Scale),
                        Images.HasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    Best.Image.fill(Images.HasAlpha ? Qt::transparent : Qt::white);
    const QRect Common = Old.rect() & Best.Image.rect();
    if (!Common.isEmpty())
        pixels::Blit(pixels::Writable(Best.Image), Common, pixels::Writable(Old), QPoint(0, 0),
                     pixels::TCombine::Copy);
    Images.Width = Width;
    Images.Height = Height;
    Rebind();
    Changed();
}

const QImage& TBitmap::GetImage(double Scale) const {
    static const QImage None;
    FinishDrawing();
    return FImages ? FImages->Images[FImages->IndexFor(Scale)].Image : None;
}

void TBitmap::SetImage(const QImage& Image, double Scale) {
    FinishDrawing();
    FImages = nullptr;
    if (!Image.isNull()) {
        TRepresentations& Images = Unique();
        Images.Images.back() = {Usable(Image), Scale};
        Images.HasAlpha = Images.Images.back().Image.format() == QImage::Format_ARGB32_Premultiplied;
        Images.Width = static_cast<int>(std::lround(Image.width() / Scale));
        Images.Height = static_cast<int>(std::lround(Image.height() / Scale));
    }
    Rebind();
    Changed();
}

void TBitmap::AddImage(const QImage& Image, double Scale) {
    if (Image.isNull()) return;
    if (GetEmpty()) {
        SetImage(Image, Scale);
        return;
    }
    TRepresentations& Images = Unique();
    auto& List = Images.Images;
    const auto Place =
        std::find_if(List.begin(), List.end(), [Scale](const auto& R) { return R.Scale >= Scale; });
    if (Place != List.end() && Place->Scale == Scale) {
        Place->Image = Usable(Image);
    } else {
        List.insert(Place, {Usable(Image), Scale});
    }
    Rebind();
    Changed();
}

bool TBitmap::HasAlpha() const { return FImages && FImages->HasAlpha; }

// --- transparency -------------------------------------------------------------------------------------------------

TColor TBitmap::GetTransparentColor() const {
    if (FTransparentMode == tmFixed) return FTransparentColor;
    const QImage& Image = GetImage(1.0);
    if (Image.isNull()) return clNone;
    const QRgb Corner = Image.pixel(0, Image.height() - 1);
    return static_cast<TColor>(qRed(Corner)) | static_cast<TColor>(qGreen(Corner)) << 8 |
           static_cast<TColor>(qBlue(Corner)) << 16;
}

void TBitmap::SetTransparentColor(TColor Value) {
    FTransparentColor = Value;
    FTransparentMode = Value == clDefault ? tmAuto : tmFixed;
    Changed();
}

void TBitmap::MakeTransparent(TColor Color) {
    if (GetEmpty()) return;
    Unique().HasAlpha = true;
    for (TRepresentations::TRepresentation& Representation : FImages->Images)
        Representation.Image = WithoutColor(Representation.Image, ColorToRGB(Color));
    Rebind();
    Changed();
}

// --- files --------------------------------------------------------------------------------------------------------

void TBitmap::LoadFromFile(const std::string& FileName) {
    const QString Name = ToQString(FileName);
    QFile File(Name);
    if (!File.open(QIODevice::ReadOnly))
        throw EFOpenError(FormatText(SFOpenError, {FileName, File.errorString().toStdString()}));
    QImageReader Reader(&File);
    Reader.setDecideFormatFromContent(true);
    const QImage Image = Reader.read();
    if (Image.isNull())
        throw EReadError(FormatText(SReadError, {FileName + ": " + Reader.errorString().toStdString()}));
    SetImage(Image, 1.0);
    QImageReader Reader2x(Name2x(Name));
    Reader2x.setDecideFormatFromContent(true);
    const QImage Image2x = Reader2x.read();
    if (Image2x.size() == Image.size() * 2) AddImage(Image2x, 2.0);
}

void TBitmap::SaveToFile(const std::string& FileName) const {
    QImageWriter Writer(ToQString(FileName), "png");
    QImage Image = FImages ? GetImage(FImages->Images.back().Scale) : QImage();
    if (Image.isNull()) {
        // The format has no empty pictures.
        Image = QImage(1, 1, QImage::Format_ARGB32_Premultiplied);
        Image.fill(Qt::transparent);
    }
    if (!Writer.write(Image))
        throw EFCreateError(FormatText(SFCreateError, {FileName, Writer.errorString().toStdString()}));
}

bool TBitmap::LoadFromResourceName(const std::string& Name) {
    InitResources();
    const QString File = QStringLiteral(":/quill/res/%1.bmp").arg(ToQString(Name));
    const QImage Image(File);
    if (Image.isNull()) return false;
    SetImage(Image, 1.0);
    const QImage Image2x(Name2x(File));
    if (!Image2x.isNull()) AddImage(Image2x, 2.0);
    return true;
}

void TBitmap::Assign(TPersistent* Source) {
    if (Source == nullptr) {
        SetImage(QImage());
    } else if (const auto* Other = dynamic_cast<TBitmap*>(Source)) {
        *this = *Other;
    } else {
        TPersistent::Assign(Source);
    }
}

void TBitmap::DrawOn(TCanvas& Canvas, const TRect& Rect) {
    if (GetEmpty()) return;
    FinishDrawing();
    const std::shared_ptr<TRepresentations> Images = FImages; // drawing on our own canvas unshares
    const std::size_t Index = Images->IndexFor(Canvas.GetScale());
    const TRepresentations::TRepresentation& Best = Images->Images[Index];
    const bool Keyed = FTransparent && !HasAlpha();
    QSize Size = Canvas.ToDeviceRect(Rect).size();
    const bool IsWhole = std::int64_t{Rect.Left} + GetWidth() == Rect.Right &&
                         std::int64_t{Rect.Top} + GetHeight() == Rect.Bottom;
    if (Best.Scale == Canvas.GetScale() && IsWhole) Size = Best.Image.size();
    const bool Fits = Size == Best.Image.size();
    if (Size.isEmpty() || (Fits && !Keyed)) {
        Canvas.DrawImage(Rect, Best.Image, Best.Scale);
        return;
    }
    // A large picture is stretched by the painter, inside the clip alone.
    if (std::int64_t{Size.width()} * Size.height() > LargestDerived) Size = Best.Image.size();
    const TColor Key = Keyed ? ColorToRGB(GetTransparentColor()) : clNone;
    Canvas.DrawImage(Rect, Images->DerivedImage(Index, Keyed, Key, Size),
                     Fits ? Best.Scale : Canvas.GetScale());
}

} // namespace quill
