// Helpers to look at what was drawn.
#pragma once

#include "host/graphics/Canvas.h"

#include <QImage>
#include <QRect>

#include <cstdio>
#include <string>

namespace quill::testing {

// A canvas on an image of its own, filled with one colour.
class TPictureCanvas : public TCanvas {
public:
    TPictureCanvas(int Width, int Height, double Scale = 1.0, QRgb Background = 0xFFFFFFFF)
        : Image(static_cast<int>(Width * Scale), static_cast<int>(Height * Scale), QImage::Format_RGB32) {
        Image.fill(Background);
        Bind(&Image, Scale);
        SetBkMode(TRANSPARENT);
    }
    ~TPictureCanvas() override { Bind(nullptr, 1.0); }

    QImage Image;
};

// One line per row: a dot for a pixel of the background, "#" for any other.
inline std::string Art(const QImage& Image, QRgb Background = 0xFFFFFFFF) {
    std::string Result;
    for (int Y = 0; Y < Image.height(); ++Y) {
        for (int X = 0; X < Image.width(); ++X) Result += Image.pixel(X, Y) == Background ? '.' : '#';
        Result += '\n';
    }
    return Result;
}

// The bounds of all pixels that are not of the background's colour.
inline QRect InkBounds(const QImage& Image, QRgb Background = 0xFFFFFFFF) {
    QRect Result;
    for (int Y = 0; Y < Image.height(); ++Y)
        for (int X = 0; X < Image.width(); ++X)
            if (Image.pixel(X, Y) != Background) Result |= QRect(X, Y, 1, 1);
    return Result;
}

inline std::string Show(const QRect& Rect) {
    if (Rect.isEmpty()) return "empty";
    char Text[64];
    std::snprintf(Text, sizeof Text, "(%d,%d,%d,%d)", Rect.left(), Rect.top(), Rect.right() + 1,
                  Rect.bottom() + 1);
    return Text;
}

} // namespace quill::testing
