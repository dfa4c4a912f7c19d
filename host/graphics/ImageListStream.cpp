// Image lists in forms.
//
//   pictures       = "QPICS" version(1 byte) count { picture }
//   picture        = count(1 byte) { representation }
//   representation = scale in hundredths, size, PNG
//
// Numbers have four bytes, low first.
#include "host/base/Errors.h"
#include "host/base/Filers.h"
#include "host/base/PropertyTables.h"
#include "host/base/Texts.h"
#include "host/graphics/ImageLists.h"

#include <QBuffer>
#include <QImage>

#include <array>
#include <cmath>

namespace quill {

namespace {

constexpr std::string_view Magic = "QPICS\1";
// Of all pictures together: damaged data must not ask for more memory than a machine has.
constexpr std::int64_t MostPixels = 64'000'000;
constexpr int MostExtent = 4096;
constexpr int RepresentationScales[] = {100, 200};

[[noreturn]] void Fail(const std::string& Reason) {
    throw EReadError(FormatTextInFull(SReadError, {"damaged pictures: " + Reason}));
}

void PutNumber(TStream& Stream, std::uint32_t Value) {
    std::array<unsigned char, 4> Bytes{};
    for (unsigned char& Byte : Bytes) {
        Byte = static_cast<unsigned char>(Value & 0xFF);
        Value >>= 8;
    }
    Stream.WriteBuffer(Bytes.data(), 4);
}

std::uint32_t GetNumber(TStream& Stream) {
    std::array<unsigned char, 4> Bytes{};
    Stream.ReadBuffer(Bytes.data(), 4);
    std::uint32_t Value = 0;
    for (std::size_t I = 4; I-- > 0;) Value = Value << 8 | Bytes[I];
    return Value;
}

} // namespace

const TClassInfo* TCustomImageList::GetClassInfo() const {
    using T = TCustomImageList;
    static const TPropertyInfo Properties[] = {
        InRange(Published<&T::GetWidth, &T::SetWidth>("Width", 16), 1, MostExtent),
        InRange(Published<&T::GetHeight, &T::SetHeight>("Height", 16), 1, MostExtent),
        PublishedEvent<&T::OnChange>("OnChange"),
    };
    static const TClassInfo Info{"TImageList", TComponent::GetClassInfo(), Properties};
    return &Info;
}

void TCustomImageList::DefineProperties(TFiler& Filer) {
    TComponent::DefineProperties(Filer);
    Filer.DefineBinaryProperty(
        "Pictures", [this](TStream& Stream) { ReadPictures(Stream); },
        [this](TStream& Stream) { WritePictures(Stream); }, GetCount() > 0);
}

void TCustomImageList::WritePictures(TStream& Stream) const {
    Stream.WriteBuffer(Magic.data(), static_cast<std::int64_t>(Magic.size()));
    PutNumber(Stream, static_cast<std::uint32_t>(FImages.size()));
    for (const TBitmap& Picture : FImages) {
        std::vector<const QImage*> Images;
        for (const int Scale : RepresentationScales) {
            const QImage& Image = Picture.GetImage(Scale / 100.0);
            if (!Image.isNull() && (Images.empty() || Images.back() != &Image)) Images.push_back(&Image);
        }
        const auto Count = static_cast<unsigned char>(Images.size());
        Stream.WriteBuffer(&Count, 1);
        for (const QImage* Image : Images) {
            QByteArray Bytes;
            QBuffer Buffer(&Bytes);
            Buffer.open(QIODevice::WriteOnly);
            Image->save(&Buffer, "PNG");
            PutNumber(Stream, static_cast<std::uint32_t>(std::lround(100.0 * Image->width() / FWidth)));
            PutNumber(Stream, static_cast<std::uint32_t>(Bytes.size()));
            Stream.WriteBuffer(Bytes.constData(), Bytes.size());
        }
    }
}

void TCustomImageList::ReadPictures(TStream& Stream) {
    std::string Start(Magic.size(), '\0');
    Stream.ReadBuffer(Start.data(), static_cast<std::int64_t>(Start.size()));
    if (!Start.starts_with(Magic.substr(0, 5))) Fail("this is no list of pictures");
    if (Start != Magic) Fail("another version of the format");
    std::vector<TBitmap> Pictures;
    std::int64_t Pixels = 0;
    // Counts are never trusted: memory grows with the pictures that are really there.
    for (std::uint32_t Left = GetNumber(Stream); Left > 0; --Left) {
        TBitmap Picture;
        unsigned char Representations = 0;
        Stream.ReadBuffer(&Representations, 1);
        for (; Representations > 0; --Representations) {
            const double Scale = GetNumber(Stream) / 100.0;
            const std::uint32_t Size = GetNumber(Stream);
            if (Size > Stream.GetSize() - Stream.GetPosition()) Fail("a picture that ends too early");
            QByteArray Bytes(static_cast<qsizetype>(Size), Qt::Uninitialized);
            Stream.ReadBuffer(Bytes.data(), Size);
            const QImage Image = QImage::fromData(Bytes, "PNG");
            if (Image.isNull()) Fail("a picture that is no PNG");
            if (Image.width() != std::lround(FWidth * Scale) ||
                Image.height() != std::lround(FHeight * Scale))
                Fail("a picture of another size");
            Pixels += std::int64_t{Image.width()} * Image.height();
            if (Pixels > MostPixels) Fail("too many pictures");
            Picture.AddImage(Image, Scale);
        }
        if (Picture.GetEmpty()) Fail("an empty picture");
        Pictures.push_back(Picture);
    }
    FImages = std::move(Pictures);
    if (!FImages.empty()) FHandleAllocated = true;
    Change();
}

} // namespace quill
