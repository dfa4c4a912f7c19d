// Direct operations on the pixels of 32-bit images: what the canvas does without the painter, because it is exact
// and fast. Rectangles are in device pixels and must lie inside the image.
#pragma once

#include <QImage>
#include <QRect>

#include <cstdint>

namespace quill::pixels {

// The pixels of an image, opaque (RGB32) or with premultiplied alpha.
struct TView {
    std::uint32_t* Bits = nullptr;
    std::ptrdiff_t Stride = 0; // in pixels
    int Width = 0;
    int Height = 0;
    bool HasAlpha = false;

    std::uint32_t* Row(int Y) const { return Bits + Y * Stride; }
    QRect Bounds() const { return {0, 0, Width, Height}; }
};

bool IsSupported(const QImage& Image);
// The pixels for writing; makes a shared image unique first.
TView Writable(QImage& Image);
// The same image for the painter, without copying; valid as long as the view.
QImage AsImage(const TView& View);

// What happens to a pixel's colour: (old & And) ^ Xor. Covers every raster operation with a constant colour.
struct TInk {
    std::uint32_t And = 0;
    std::uint32_t Xor = 0;
    static constexpr TInk Copy(std::uint32_t RGB) { return {0, RGB & 0xFFFFFF}; }
    static constexpr TInk Invert(std::uint32_t RGB) { return {0xFFFFFF, RGB & 0xFFFFFF}; }
};

void Fill(const TView& Target, const QRect& Rect, TInk Ink);
// Copies or combines the pixels of Source at From (same size as Rect). Source and Target may be one image.
enum class TCombine { Copy, Xor };
void Blit(const TView& Target, const QRect& Rect, const TView& Source, QPoint From, TCombine How);

} // namespace quill::pixels
