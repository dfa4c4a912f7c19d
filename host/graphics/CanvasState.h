// The inside of a canvas: painter, clip and palette. For the sources of the canvas only.
#pragma once

#include "host/graphics/Canvas.h"
#include "host/graphics/Pixels.h"
#include "host/graphics/TextShaping.h"

#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QRegion>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <tuple>
#include <vector>

namespace quill {

// The system colours of one palette as pixels, shared by all canvases with that palette, and the check boxes and
// radio buttons drawn in them, by side, line width and state.
struct TSystemColors {
    std::array<QRgb, 0x19> Colors{};
    bool IsDark = false;
    mutable std::map<std::tuple<int, int, unsigned>, QImage> Checks;
};
std::shared_ptr<const TSystemColors> SystemColorsOf(const QPalette& Palette);

inline int AddClamped(int A, int B) {
    return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{A} + B, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

struct TCanvas::TState {
    // The painter is opened by the first operation that needs it.
    QPainter Painter;
    bool Opened = false;
    bool PainterClipStale = true;
    QRgb PainterPen = 0;

    QRegion DeviceClip;
    bool HasDeviceClip = false;
    // Nested clips in device pixels, each already inside the one before.
    std::vector<QRect> Clips;
    // The clip's bounds, and whether DeviceClip has to be walked as well.
    QRect ClipBounds;
    bool ClipIsComplex = false;

    QPalette Palette;
    bool HasPalette = false;
    std::shared_ptr<const TSystemColors> SystemColors;

    text::TFontUse FontUse;

    QRgb ToRgb(TColor Color);
    const TSystemColors& System();
    void UpdateClip(const QImage* Image);

    // Calls Part(QRect) for each piece of Rect inside the clip.
    template <class TPart>
    void Clipped(const QRect& Rect, TPart&& Part) const {
        const QRect Inside = Rect & ClipBounds;
        if (Inside.isEmpty()) return;
        if (!ClipIsComplex) {
            Part(Inside);
            return;
        }
        for (const QRect& Piece : DeviceClip) {
            const QRect Common = Inside & Piece;
            if (!Common.isEmpty()) Part(Common);
        }
    }
};

} // namespace quill
