#include "host/graphics/Pixels.h"

#include <algorithm>
#include <cstring>

namespace quill::pixels {
namespace {

constexpr std::uint32_t Opaque = 0xFF000000;

// A raster operation on a pixel with alpha works on its colour and keeps its alpha.
std::uint32_t WithAlpha(std::uint32_t Old, TInk Ink) {
    const QRgb Plain = qUnpremultiply(Old);
    return qPremultiply(((Plain & 0xFFFFFF & Ink.And) ^ Ink.Xor) | (Plain & Opaque));
}

std::uint32_t Over(std::uint32_t Source, std::uint32_t Target) {
    const std::uint32_t Rest = 255 - (Source >> 24);
    if (Rest == 0) return Source;
    std::uint32_t RB = (Target & 0xFF00FF) * Rest;
    RB = ((RB + ((RB >> 8) & 0xFF00FF) + 0x800080) >> 8) & 0xFF00FF;
    std::uint32_t AG = ((Target >> 8) & 0xFF00FF) * Rest;
    AG = (AG + ((AG >> 8) & 0xFF00FF) + 0x800080) & 0xFF00FF00;
    return Source + (RB | AG);
}

} // namespace

bool IsSupported(const QImage& Image) {
    return Image.format() == QImage::Format_RGB32 || Image.format() == QImage::Format_ARGB32_Premultiplied;
}

TView Writable(QImage& Image) {
    return {reinterpret_cast<std::uint32_t*>(Image.bits()), Image.bytesPerLine() / 4, Image.width(),
            Image.height(), Image.format() != QImage::Format_RGB32};
}

QImage AsImage(const TView& View) {
    return QImage(reinterpret_cast<uchar*>(View.Bits), View.Width, View.Height, View.Stride * 4,
                  View.HasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

void Fill(const TView& Target, const QRect& Rect, TInk Ink) {
    const int Count = Rect.width();
    for (int Y = Rect.top(); Y <= Rect.bottom(); ++Y) {
        std::uint32_t* Row = Target.Row(Y) + Rect.left();
        if (Ink.And == 0) {
            std::fill_n(Row, Count, Ink.Xor | Opaque);
        } else if (!Target.HasAlpha) {
            for (int X = 0; X < Count; ++X) Row[X] = ((Row[X] & Ink.And) ^ Ink.Xor) | Opaque;
        } else {
            for (int X = 0; X < Count; ++X) Row[X] = WithAlpha(Row[X], Ink);
        }
    }
}

void Blit(const TView& Target, const QRect& Rect, const TView& Source, QPoint From, TCombine How) {
    const int Count = Rect.width();
    // Upwards when the target lies below the source in the same image; memmove and the step handle the rest.
    const bool SameImage = Target.Bits == Source.Bits;
    const bool Upwards = SameImage && Rect.top() > From.y();
    const bool Leftwards = SameImage && Rect.top() == From.y() && Rect.left() > From.x();
    for (int I = 0; I < Rect.height(); ++I) {
        const int Line = Upwards ? Rect.height() - 1 - I : I;
        std::uint32_t* To = Target.Row(Rect.top() + Line) + Rect.left();
        const std::uint32_t* Pixels = Source.Row(From.y() + Line) + From.x();
        if (How == TCombine::Copy && Source.HasAlpha == Target.HasAlpha) {
            std::memmove(To, Pixels, static_cast<std::size_t>(Count) * 4);
            continue;
        }
        for (int J = 0; J < Count; ++J) {
            const int X = Leftwards ? Count - 1 - J : J;
            if (How == TCombine::Xor) {
                const TInk Ink = TInk::Invert(Pixels[X]);
                To[X] = Target.HasAlpha ? WithAlpha(To[X], Ink) : (To[X] ^ Ink.Xor) | Opaque;
            } else {
                To[X] = Source.HasAlpha ? Over(Pixels[X], To[X]) : Pixels[X] | Opaque;
            }
        }
    }
}

} // namespace quill::pixels
