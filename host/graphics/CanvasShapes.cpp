// Lines, rectangles, ellipses and polygons.
#include "host/graphics/CanvasState.h"

#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace quill {
namespace {

// Lengths of lines and gaps in line widths, as the classic styles have them; empty for a solid line.
std::span<const int> DashPattern(TPenStyle Style) {
    static constexpr int Dash[] = {18, 6};
    static constexpr int Dot[] = {3, 3};
    static constexpr int DashDot[] = {9, 6, 3, 6};
    static constexpr int DashDotDot[] = {9, 3, 3, 3, 3, 3};
    switch (Style) {
    case psDash:
        return Dash;
    case psDot:
        return Dot;
    case psDashDot:
        return DashDot;
    case psDashDotDot:
        return DashDotDot;
    default:
        return {};
    }
}

pixels::TInk PenInk(TPenMode Mode, QRgb Color) {
    const std::uint32_t Rgb = Color & 0xFFFFFF;
    switch (Mode) {
    case pmBlack:
        return {0, 0};
    case pmWhite:
        return {0, 0xFFFFFF};
    case pmNot:
        return {0xFFFFFF, 0xFFFFFF};
    case pmXor:
        return {0xFFFFFF, Rgb};
    case pmNotXor:
        return {0xFFFFFF, ~Rgb & 0xFFFFFF};
    case pmCopy:
        break;
    }
    return {0, Rgb};
}

QPainter::CompositionMode PenComposition(TPenMode Mode) {
    switch (Mode) {
    case pmNot:
        return QPainter::RasterOp_NotDestination;
    case pmXor:
        return QPainter::RasterOp_SourceXorDestination;
    case pmNotXor:
        return QPainter::RasterOp_NotSourceXorDestination;
    default:
        return QPainter::CompositionMode_SourceOver;
    }
}

} // namespace

void TCanvas::MoveTo(int X, int Y) { FPenPos = {X, Y}; }

void TCanvas::LineTo(int X, int Y) {
    const TPoint From = MapPoint(FPenPos.X, FPenPos.Y);
    const TPoint To = MapPoint(X, Y);
    FPenPos = {X, Y};
    if (FPen.GetStyle() == psClear || From == To || !BeginDrawing()) return;
    if (From.X == To.X || From.Y == To.Y) {
        StraightLine(From, To);
    } else {
        SlantedLine(From, To);
    }
}

// Draws with the pen's colour and mode over a device rectangle.
void TCanvas::PenDevice(const QRect& Rect) {
    const pixels::TInk Ink = PenInk(FPen.GetMode(), FState->ToRgb(FPen.GetColor()));
    InkDevice(Rect, Ink.And, Ink.Xor);
}

// A horizontal or vertical line between mapped points, the last one excluded.
void TCanvas::StraightLine(TPoint From, TPoint To) {
    const bool Horizontal = From.Y == To.Y;
    const int First = Horizontal ? From.X : From.Y;
    const int Last = Horizontal ? To.X : To.Y;
    const bool Forwards = Last > First;
    // Along the line: the cells from the first point up to the last, in whichever direction.
    const int Begin = ToDevice(Forwards ? First : AddClamped(Last, 1));
    const int End = ToDevice(Forwards ? Last : AddClamped(First, 1));
    // Across it: a hairline, or the width around the coordinate.
    const int Across = Horizontal ? From.Y : From.X;
    const int Width = FPen.GetWidth();
    int Side = ToDevice(Across);
    int Thickness = Hairline();
    if (Width > 1) {
        Side = ToDevice(AddClamped(Across, -(Width / 2)));
        Thickness = ToDevice(AddClamped(Across, Width - Width / 2)) - Side;
    }
    if (Thickness < 1 || End <= Begin) return; // far outside
    const auto Strip = [&](int A, int B) {
        PenDevice(Horizontal ? QRect(A, Side, B - A, Thickness) : QRect(Side, A, Thickness, B - A));
    };
    const std::span<const int> Pattern = DashPattern(FPen.GetStyle());
    if (Pattern.empty()) {
        Strip(Begin, End);
        return;
    }
    int Period = 0;
    for (int Length : Pattern) Period += Length * Thickness;
    // Only the periods inside the clip are walked.
    const QRect& Clip = FState->ClipBounds;
    const int Near = std::max(Begin, Horizontal ? Clip.left() : Clip.top());
    const int Far = std::min(End, Horizontal ? Clip.right() + 1 : Clip.bottom() + 1);
    const int Skipped = (Forwards ? Near - Begin : End - Far) / Period;
    for (int At = Skipped * Period; At < End - Begin && At < (Forwards ? Far - Begin : End - Near);) {
        for (std::size_t I = 0; I < Pattern.size(); ++I) {
            const int Length = std::min(Pattern[I] * Thickness, End - Begin - At);
            if (I % 2 == 0 && Length > 0) {
                const int A = Forwards ? Begin + At : End - At - Length;
                Strip(A, A + Length);
            }
            At += Pattern[I] * Thickness;
        }
    }
}

void TCanvas::SlantedLine(TPoint From, TPoint To) {
    // Without smoothing the painter counts from the middle of the pixels.
    const double Half = (Hairline() - 1) / 2.0;
    const double Width = FPen.GetWidth() > 1 ? std::max(1.0, FPen.GetWidth() * FScale) : Hairline();
    const TPenMode Mode = FPen.GetMode();
    TColor Color = FPen.GetColor();
    if (Mode == pmBlack) Color = clBlack;
    if (Mode == pmWhite) Color = clWhite;
    QPen Pen(QBrush(QColor(FState->ToRgb(Color))), Width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    Pen.setCosmetic(true);
    if (const std::span<const int> Pattern = DashPattern(FPen.GetStyle()); !Pattern.empty())
        Pen.setDashPattern(QList<qreal>(Pattern.begin(), Pattern.end()));
    QPainter* P = GetPainter();
    if (P == nullptr) return;
    P->setPen(Pen);
    P->setCompositionMode(PenComposition(Mode));
    // Not smoothed, so that a line drawn again in the background's colour is gone.
    P->drawLine(QPointF(ToDevice(From.X) + Half, ToDevice(From.Y) + Half),
                QPointF(ToDevice(To.X) + Half, ToDevice(To.Y) + Half));
    P->setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void TCanvas::FrameDevice(const QRect& Rect, int Thickness, TColor Color) {
    if (Rect.width() <= 2 * Thickness || Rect.height() <= 2 * Thickness) {
        FillDevice(Rect, Color);
        return;
    }
    const int Inner = Rect.height() - 2 * Thickness;
    FillDevice(QRect(Rect.left(), Rect.top(), Rect.width(), Thickness), Color);
    FillDevice(QRect(Rect.left(), Rect.bottom() + 1 - Thickness, Rect.width(), Thickness), Color);
    FillDevice(QRect(Rect.left(), Rect.top() + Thickness, Thickness, Inner), Color);
    FillDevice(QRect(Rect.right() + 1 - Thickness, Rect.top() + Thickness, Thickness, Inner), Color);
}

void TCanvas::FrameRect(const TRect& Rect) {
    if (Rect.IsEmpty() || !BeginDrawing()) return;
    FrameDevice(ToDeviceRect(Rect), Hairline(), FBrush.GetColor());
}

void TCanvas::Rectangle(const TRect& Rect) {
    if (Rect.IsEmpty() || !BeginDrawing()) return;
    const QRect Device = ToDeviceRect(Rect);
    if (FBrush.GetStyle() != bsClear) FillDevice(Device, FBrush.GetColor());
    if (FPen.GetStyle() == psClear) return;
    const TRect Mapped = MapRect(Rect);
    const int Right = Mapped.Right - 1;
    const int Bottom = Mapped.Bottom - 1;
    const int Width = FPen.GetWidth();
    if (FPen.GetStyle() == psSolid && FPen.GetMode() == pmCopy) {
        if (Width <= 1) {
            FrameDevice(Device, Hairline(), FPen.GetColor());
            return;
        }
        const int Before = Width / 2;
        const int After = Width - Before;
        const QRect Outer = DeviceRect({AddClamped(Mapped.Left, -Before), AddClamped(Mapped.Top, -Before),
                                        AddClamped(Right, After), AddClamped(Bottom, After)});
        FrameDevice(Outer, ToDevice(Width), FPen.GetColor());
        return;
    }
    // The outline runs through the first and the last pixel of each side; every corner is drawn once.
    StraightLine({Mapped.Left, Mapped.Top}, {Right, Mapped.Top});
    StraightLine({Right, Mapped.Top}, {Right, Bottom});
    StraightLine({Right, Bottom}, {Mapped.Left, Bottom});
    StraightLine({Mapped.Left, Bottom}, {Mapped.Left, Mapped.Top});
}

void TCanvas::Ellipse(const TRect& Rect) {
    if (Rect.IsEmpty() || !BeginDrawing()) return;
    const TRect Mapped = MapRect(Rect);
    const TPoint Corners[] = {{Mapped.Left, Mapped.Top}, {Mapped.Right, Mapped.Bottom}};
    Shape(Corners, true);
}

void TCanvas::Polygon(std::span<const TPoint> Points) {
    if (Points.size() < 2 || !BeginDrawing()) return;
    std::vector<TPoint> Mapped;
    Mapped.reserve(Points.size());
    for (const TPoint& Point : Points) Mapped.push_back(MapPoint(Point.X, Point.Y));
    Shape(Mapped, false);
}

// Fills and outlines an ellipse (given by its rectangle) or a polygon, smoothed where no raster operation forbids.
void TCanvas::Shape(std::span<const TPoint> Mapped, bool IsEllipse) {
    const double Width = FPen.GetWidth() > 1 ? std::max(1.0, FPen.GetWidth() * FScale) : Hairline();
    QPainterPath Path;
    if (IsEllipse) {
        const double Half = FPen.GetStyle() == psClear ? 0.0 : Width / 2;
        const QRectF Device(QPointF(ToDevice(Mapped[0].X), ToDevice(Mapped[0].Y)),
                            QPointF(ToDevice(Mapped[1].X), ToDevice(Mapped[1].Y)));
        Path.addEllipse(Device.adjusted(Half, Half, -Half, -Half));
    } else {
        const double Half = Hairline() / 2.0;
        QPolygonF Corners;
        for (const TPoint& Point : Mapped)
            Corners << QPointF(ToDevice(Point.X) + Half, ToDevice(Point.Y) + Half);
        Path.addPolygon(Corners);
        Path.closeSubpath();
    }
    QPainter* P = GetPainter();
    if (P == nullptr) return;
    const TPenMode Mode = FPen.GetMode();
    P->setRenderHint(QPainter::Antialiasing, Mode == pmCopy);
    if (FBrush.GetStyle() != bsClear) P->fillPath(Path, QColor(FState->ToRgb(FBrush.GetColor())));
    if (FPen.GetStyle() != psClear) {
        TColor Color = FPen.GetColor();
        if (Mode == pmBlack) Color = clBlack;
        if (Mode == pmWhite) Color = clWhite;
        QPen Pen(QBrush(QColor(FState->ToRgb(Color))), Width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
        if (const std::span<const int> Pattern = DashPattern(FPen.GetStyle()); !Pattern.empty())
            Pen.setDashPattern(QList<qreal>(Pattern.begin(), Pattern.end()));
        P->setCompositionMode(PenComposition(Mode));
        P->strokePath(Path, Pen);
        P->setCompositionMode(QPainter::CompositionMode_SourceOver);
    }
    P->setRenderHint(QPainter::Antialiasing, false);
}

} // namespace quill
