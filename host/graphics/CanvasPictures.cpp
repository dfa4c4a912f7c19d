// Copying pixels between surfaces, and drawing graphics.
#include "host/graphics/CanvasState.h"

#include <algorithm>
#include <cmath>

namespace quill {
namespace {

TRect RectAt(int X, int Y, int Width, int Height) {
    return {X, Y, AddClamped(X, std::max(0, Width)), AddClamped(Y, std::max(0, Height))};
}

std::int64_t WidthOf(const TRect& Rect) { return std::int64_t{Rect.Right} - Rect.Left; }
std::int64_t HeightOf(const TRect& Rect) { return std::int64_t{Rect.Bottom} - Rect.Top; }

} // namespace

void TCanvas::BitBlt(int X, int Y, int Width, int Height, TCanvas& Source, int SrcX, int SrcY, unsigned Rop) {
    if (Rop == SRCCOPY || Rop == SRCINVERT) {
        CopyUnits(RectAt(X, Y, Width, Height), Source, RectAt(SrcX, SrcY, Width, Height), Rop, 255);
    } else {
        TCanvas::PatBlt(X, Y, Width, Height, Rop);
    }
}

void TCanvas::AlphaBlend(int X, int Y, int Width, int Height, TCanvas& Source, int SrcX, int SrcY,
                         int Alpha) {
    CopyUnits(RectAt(X, Y, Width, Height), Source, RectAt(SrcX, SrcY, Width, Height), SRCCOPY,
              std::clamp(Alpha, 0, 255));
}

void TCanvas::CopyRect(const TRect& Rect, TCanvas& Source, const TRect& SrcRect) {
    CopyUnits(Rect, Source, SrcRect, SRCCOPY, 255);
}

void TCanvas::CopyUnits(const TRect& Rect, TCanvas& Source, const TRect& From, unsigned Rop, int Alpha) {
    if (Rect.IsEmpty() || From.IsEmpty() || Source.FImage == nullptr || !BeginDrawing()) return;
    QRect To = ToDeviceRect(Rect);
    QRect Pixels = Source.ToDeviceRect(From);
    if (FScale == Source.FScale && WidthOf(Rect) == WidthOf(From) && HeightOf(Rect) == HeightOf(From)) {
        // At fractional scales the same length may be a pixel more at one place than at another. The target's
        // counts, unless a picture is taken at its origin: what will be put back later must be all there.
        const QSize Size = To.topLeft() == QPoint(0, 0) ? To.size().expandedTo(Pixels.size()) : To.size();
        To.setSize(Size);
        Pixels.setSize(Size);
        CopyPixels(To, Source, Pixels, Rop, Alpha);
    } else if (To.size() == Pixels.size()) {
        CopyPixels(To, Source, Pixels, Rop, Alpha);
    } else {
        StretchPixels(To, Source, Pixels, Rop, Alpha);
    }
}

// Moves device pixels one to one.
void TCanvas::CopyPixels(QRect Rect, TCanvas& Source, QRect From, unsigned Rop, int Alpha) {
    const QRect Inside = From & Source.FImage->rect();
    if (Inside.isEmpty()) return;
    Rect.adjust(Inside.left() - From.left(), Inside.top() - From.top(), Inside.right() - From.right(),
                Inside.bottom() - From.bottom());
    const bool Same = Source.FImage == FImage;
    pixels::TView SourceView = pixels::Writable(*Source.FImage);
    QPoint Offset = Inside.topLeft() - Rect.topLeft();
    QImage Copy;
    if (Same && (FState->ClipIsComplex || Alpha < 255)) {
        Copy = pixels::AsImage(SourceView).copy(Inside);
        SourceView = pixels::Writable(Copy);
        Offset = -Rect.topLeft();
    }
    if (Alpha < 255) {
        QPainter& P = Painter();
        P.setOpacity(Alpha / 255.0);
        P.drawImage(Rect.topLeft(), pixels::AsImage(SourceView), QRect(Rect.topLeft() + Offset, Rect.size()));
        P.setOpacity(1.0);
        return;
    }
    const pixels::TView Target = pixels::Writable(*FImage);
    const pixels::TCombine How = Rop == SRCINVERT ? pixels::TCombine::Xor : pixels::TCombine::Copy;
    FState->Clipped(Rect, [&](const QRect& Part) {
        pixels::Blit(Target, Part, SourceView, Part.topLeft() + Offset, How);
    });
}

void TCanvas::StretchPixels(const QRect& Rect, TCanvas& Source, const QRect& From, unsigned Rop, int Alpha) {
    if (Rect.isEmpty() || From.isEmpty()) return;
    QImage Image = pixels::AsImage(pixels::Writable(*Source.FImage));
    if (Source.FImage == FImage) Image = Image.copy();
    QPainter& P = Painter();
    P.setRenderHint(QPainter::SmoothPixmapTransform);
    P.setOpacity(Alpha / 255.0);
    if (Rop == SRCINVERT) P.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
    P.drawImage(QRectF(Rect), Image, QRectF(From));
    P.setCompositionMode(QPainter::CompositionMode_SourceOver);
    P.setOpacity(1.0);
    P.setRenderHint(QPainter::SmoothPixmapTransform, false);
}

void TCanvas::Draw(int X, int Y, TGraphic* Graphic) {
    if (Graphic != nullptr) DrawGraphic(RectAt(X, Y, Graphic->GetWidth(), Graphic->GetHeight()), Graphic);
}

void TCanvas::StretchDraw(const TRect& Rect, TGraphic* Graphic) {
    if (Graphic != nullptr) DrawGraphic(Rect, Graphic);
}

void TCanvas::DrawGraphic(const TRect& Rect, TGraphic* Graphic) {
    if (Rect.IsEmpty() || Graphic->GetEmpty()) return;
    // A graphic is placed by the mapping but drawn upright.
    struct TUnmapped {
        bool& Mirrored;
        bool Saved = Mirrored;
        ~TUnmapped() { Mirrored = Saved; }
    };
    const TRect Mapped = MapRect(Rect);
    const TUnmapped Unmapped{FMirrored};
    FMirrored = false;
    Graphic->DrawOn(*this, Mapped);
}

void TCanvas::DrawImage(const TRect& Rect, const QImage& Image, double ImageScale) {
    if (Rect.IsEmpty() || Image.isNull() || !BeginDrawing()) return;
    const QRect Device = DeviceRect(Rect);
    if (Device.isEmpty() || !FState->ClipBounds.intersects(Device)) return;
    const QSize Difference = Device.size() - Image.size();
    // Rounding may take or add a pixel at fractional scales; that is no reason to blur the picture.
    const bool IsRounding = ImageScale == FScale && FScale != std::floor(FScale) &&
                            std::abs(Difference.width()) <= 1 && std::abs(Difference.height()) <= 1;
    if (Difference == QSize(0, 0) || IsRounding) {
        if (Image.format() == QImage::Format_RGB32) {
            const pixels::TView Target = pixels::Writable(*FImage);
            pixels::TView Pixels{reinterpret_cast<std::uint32_t*>(const_cast<uchar*>(Image.constBits())),
                                 Image.bytesPerLine() / 4, Image.width(), Image.height(), false};
            FState->Clipped(QRect(Device.topLeft(), Image.size()), [&](const QRect& Part) {
                pixels::Blit(Target, Part, Pixels, Part.topLeft() - Device.topLeft(), pixels::TCombine::Copy);
            });
        } else {
            Painter().drawImage(Device.topLeft(), Image);
        }
        return;
    }
    QPainter& P = Painter();
    P.setRenderHint(QPainter::SmoothPixmapTransform);
    P.drawImage(QRectF(Device), Image, QRectF(Image.rect()));
    P.setRenderHint(QPainter::SmoothPixmapTransform, false);
}

} // namespace quill
