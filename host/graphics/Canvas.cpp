#include "host/graphics/Canvas.h"

#include "host/graphics/CanvasState.h"

#include <QGuiApplication>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <limits>

namespace quill {
namespace {

// Device coordinates beyond this are clamped: far outside any surface, and sums stay inside 32 bits.
constexpr int DeviceLimit = 1 << 24;

int Reflect(int Width, int Value) {
    return static_cast<int>(std::clamp<std::int64_t>(
        std::int64_t{Width} - Value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

} // namespace

// --- binding and painter ------------------------------------------------------------------------------------------

TCanvas::TCanvas() : FState(std::make_unique<TState>()) {}

TCanvas::~TCanvas() { Bind(nullptr, 1.0); }

void TCanvas::Bind(QImage* Image, double Scale) {
    EndPainting();
    FImage = Image != nullptr && pixels::IsSupported(*Image) ? Image : nullptr;
    FScale = Scale > 0.0 ? Scale : 1.0;
    FState->Clips.clear();
    FState->DeviceClip = QRegion();
    FState->HasDeviceClip = false;
    FState->UpdateClip(FImage);
}

void TCanvas::ReplaceSurface(QImage* Image) {
    if (FState->Painter.isActive()) FState->Painter.end();
    FImage = Image;
    FState->UpdateClip(FImage);
}

void TCanvas::EndPainting() {
    if (FState->Painter.isActive()) FState->Painter.end();
    FState->Opened = false;
    // The application's palette may have changed by the next paint.
    if (!FState->HasPalette) FState->SystemColors = nullptr;
}

bool TCanvas::BeginDrawing() {
    if (!FState->Opened) {
        if (FImage == nullptr) return false;
        // The handler may bind another image, so the flag is set after it as well as before.
        FState->Opened = true;
        FireEvent(OnOpen);
        FState->Opened = true;
    }
    return FImage != nullptr && !FState->ClipBounds.isEmpty();
}

QPainter& TCanvas::Painter() {
    TState& State = *FState;
    if (!State.Painter.isActive()) {
        FImage->bits(); // an image shared with others becomes our own before it is drawn on
        State.Painter.begin(FImage);
        State.PainterClipStale = true;
        State.PainterPen = State.Painter.pen().color().rgb();
    }
    if (State.PainterClipStale) {
        State.PainterClipStale = false;
        if (State.ClipIsComplex) {
            State.Painter.setClipRegion(State.DeviceClip & State.ClipBounds);
        } else if (State.ClipBounds == FImage->rect()) {
            State.Painter.setClipping(false);
        } else {
            State.Painter.setClipRect(State.ClipBounds);
        }
    }
    return State.Painter;
}

QPainter* TCanvas::GetPainter() {
    if (!BeginDrawing()) return nullptr;
    QPainter& Result = Painter();
    // The caller may leave anything behind; the next operation of ours sets what it needs.
    FState->PainterClipStale = true;
    FState->PainterPen = 0;
    return &Result;
}

void TCanvas::SetPainterPen(TColor Color) {
    const QRgb Rgb = FState->ToRgb(Color);
    QPainter& P = Painter();
    if (FState->PainterPen == Rgb) return;
    P.setPen(QColor(Rgb));
    FState->PainterPen = Rgb;
}

// --- palette ------------------------------------------------------------------------------------------------------

std::shared_ptr<const TSystemColors> SystemColorsOf(const QPalette& Palette) {
    struct TRecent {
        qint64 Key;
        std::shared_ptr<const TSystemColors> Colors;
    };
    // A program has a handful of palettes; bitmaps made for painting share the one of their control.
    static std::vector<TRecent> Recent;
    const qint64 Key = Palette.cacheKey();
    for (const TRecent& Entry : Recent)
        if (Entry.Key == Key) return Entry.Colors;
    auto Colors = std::make_shared<TSystemColors>();
    Colors->IsDark = IsDarkPalette(Palette);
    for (std::size_t I = 0; I < Colors->Colors.size(); ++I) {
        const TColor Color = ColorToRGB(0x80000000u | static_cast<TColor>(I), Palette);
        Colors->Colors[I] = qRgb(static_cast<int>(Color & 0xFF), static_cast<int>(Color >> 8 & 0xFF),
                                 static_cast<int>(Color >> 16));
    }
    if (Recent.size() >= 8) Recent.erase(Recent.begin());
    Recent.push_back({Key, Colors});
    return Colors;
}

QRgb TCanvas::TState::ToRgb(TColor Color) {
    if (!IsSystemColor(Color)) {
        if (Color == clNone || Color == clDefault) return qRgb(0, 0, 0);
        return qRgb(static_cast<int>(Color & 0xFF), static_cast<int>(Color >> 8 & 0xFF),
                    static_cast<int>(Color >> 16 & 0xFF));
    }
    const TSystemColors& Known = System();
    const std::size_t Number = Color & 0xFF;
    return Number < Known.Colors.size() ? Known.Colors[Number] : qRgb(0, 0, 0);
}

const TSystemColors& TCanvas::TState::System() {
    if (!SystemColors) {
        if (!HasPalette) Palette = qGuiApp != nullptr ? QGuiApplication::palette() : QPalette(Qt::lightGray);
        SystemColors = SystemColorsOf(Palette);
    }
    return *SystemColors;
}

void TCanvas::SetPalette(const QPalette& Palette) {
    if (FState->HasPalette && FState->Palette.cacheKey() == Palette.cacheKey()) return;
    FState->Palette = Palette;
    FState->HasPalette = true;
    FState->SystemColors = nullptr;
}

const QPalette& TCanvas::GetPalette() const {
    if (!FState->HasPalette && qGuiApp != nullptr) FState->Palette = QGuiApplication::palette();
    return FState->Palette;
}

// --- mapping and clipping -----------------------------------------------------------------------------------------

void TCanvas::SetMirrored(bool On, int Width) {
    FMirrored = On;
    if (On) FMirrorWidth = Width;
}

TPoint TCanvas::MapPoint(int X, int Y) const {
    return FMirrored ? TPoint{Reflect(FMirrorWidth, X), Y} : TPoint{X, Y};
}

TRect TCanvas::MapRect(const TRect& Rect) const {
    if (!FMirrored) return Rect;
    return {Reflect(FMirrorWidth, Rect.Right), Rect.Top, Reflect(FMirrorWidth, Rect.Left), Rect.Bottom};
}

int TCanvas::ToDevice(int Value) const {
    if (FScale == 1.0) return std::clamp(Value, -DeviceLimit, DeviceLimit);
    const double Device = std::floor(Value * FScale + 0.5);
    return static_cast<int>(std::clamp<double>(Device, -DeviceLimit, DeviceLimit));
}

int TCanvas::Hairline() const { return std::max(1, static_cast<int>(FScale)); }

QRect TCanvas::DeviceRect(const TRect& Mapped) const {
    return QRect(QPoint(ToDevice(Mapped.Left), ToDevice(Mapped.Top)),
                 QPoint(ToDevice(Mapped.Right) - 1, ToDevice(Mapped.Bottom) - 1));
}

QRect TCanvas::ToDeviceRect(const TRect& Rect) const { return DeviceRect(MapRect(Rect)); }

void TCanvas::TState::UpdateClip(const QImage* Image) {
    PainterClipStale = true;
    ClipBounds = Image != nullptr ? Image->rect() : QRect();
    if (!Clips.empty()) ClipBounds &= Clips.back();
    ClipIsComplex = false;
    if (!HasDeviceClip) return;
    ClipBounds &= DeviceClip.boundingRect();
    ClipIsComplex = DeviceClip.rectCount() > 1;
}

void TCanvas::SetDeviceClip(const QRegion& Region) {
    FState->DeviceClip = Region;
    FState->HasDeviceClip = !Region.isEmpty();
    FState->UpdateClip(FImage);
}

bool TCanvas::RectVisible(const TRect& Rect) const {
    bool Visible = false;
    if (!Rect.IsEmpty()) FState->Clipped(ToDeviceRect(Rect), [&Visible](const QRect&) { Visible = true; });
    return Visible;
}

TRect TCanvas::GetClipRect() const {
    const QRect& Clip = FState->ClipBounds;
    if (Clip.isEmpty()) return {};
    const auto Down = [this](int Device) { return static_cast<int>(std::floor(Device / FScale)); };
    const auto Up = [this](int Device) { return static_cast<int>(std::ceil(Device / FScale)); };
    return MapRect({Down(Clip.left()), Down(Clip.top()), Up(Clip.right() + 1), Up(Clip.bottom() + 1)});
}

void TCanvas::IntersectClip(const TRect& Rect) {
    QRect Clip = Rect.IsEmpty() ? QRect() : ToDeviceRect(Rect);
    if (!FState->Clips.empty()) Clip &= FState->Clips.back();
    FState->Clips.push_back(Clip);
    FState->UpdateClip(FImage);
}

void TCanvas::RestoreClip() {
    if (FState->Clips.empty()) return;
    FState->Clips.pop_back();
    FState->UpdateClip(FImage);
}

// --- single pixels and solid areas --------------------------------------------------------------------------------

void TCanvas::InkDevice(const QRect& Rect, std::uint32_t And, std::uint32_t Xor) {
    const pixels::TView View = pixels::Writable(*FImage);
    FState->Clipped(Rect, [&](const QRect& Part) { pixels::Fill(View, Part, {And, Xor}); });
}

void TCanvas::FillDevice(const QRect& Rect, TColor Color) {
    InkDevice(Rect, 0, FState->ToRgb(Color) & 0xFFFFFF);
}

void TCanvas::FillRect(const TRect& Rect) {
    if (FBrush.GetStyle() == bsClear || Rect.IsEmpty() || !BeginDrawing()) return;
    FillDevice(ToDeviceRect(Rect), FBrush.GetColor());
}

void TCanvas::InvertRect(const TRect& Rect) {
    if (Rect.IsEmpty() || !BeginDrawing()) return;
    InkDevice(ToDeviceRect(Rect), 0xFFFFFF, 0xFFFFFF);
}

void TCanvas::PatBlt(int X, int Y, int Width, int Height, unsigned Rop) {
    const TRect Rect{X, Y, AddClamped(X, Width), AddClamped(Y, Height)};
    if (Rect.IsEmpty() || !BeginDrawing()) return;
    const std::uint32_t Brush = FState->ToRgb(FBrush.GetColor()) & 0xFFFFFF;
    const bool NeedsBrush = Rop == PATCOPY || Rop == PATINVERT;
    if (NeedsBrush && FBrush.GetStyle() == bsClear) return;
    const QRect Device = ToDeviceRect(Rect);
    switch (Rop) {
    case PATCOPY:
        InkDevice(Device, 0, Brush);
        break;
    case PATINVERT:
        InkDevice(Device, 0xFFFFFF, Brush);
        break;
    case DSTINVERT:
        InkDevice(Device, 0xFFFFFF, 0xFFFFFF);
        break;
    case BLACKNESS:
        InkDevice(Device, 0, 0);
        break;
    case WHITENESS:
        InkDevice(Device, 0, 0xFFFFFF);
        break;
    default:
        break;
    }
}

void TCanvas::SetPixel(int X, int Y, TColor Color) {
    const TPoint Single{X, Y};
    TCanvas::SetPixels({&Single, 1}, Color);
}

void TCanvas::SetPixels(std::span<const TPoint> Points, TColor Color) {
    if (!BeginDrawing()) return;
    const pixels::TView View = pixels::Writable(*FImage);
    const pixels::TInk Ink = pixels::TInk::Copy(FState->ToRgb(Color));
    const int Side = Hairline();
    const QRect& Bounds = FState->ClipBounds;
    const bool Plain = Side == 1 && !FState->ClipIsComplex;
    for (const TPoint& Point : Points) {
        const TPoint Mapped = MapPoint(Point.X, Point.Y);
        const int X = ToDevice(Mapped.X);
        const int Y = ToDevice(Mapped.Y);
        if (Plain) {
            if (Bounds.contains(X, Y)) View.Row(Y)[X] = Ink.Xor | 0xFF000000;
        } else {
            FState->Clipped(QRect(X, Y, Side, Side),
                            [&](const QRect& Part) { pixels::Fill(View, Part, Ink); });
        }
    }
}

TColor TCanvas::GetPixel(int X, int Y) const {
    const TPoint Mapped = MapPoint(X, Y);
    const QPoint Device(ToDevice(Mapped.X), ToDevice(Mapped.Y));
    if (FImage == nullptr || !FImage->rect().contains(Device)) return clNone;
    const QRgb Rgb = FImage->pixel(Device);
    return static_cast<TColor>(qRed(Rgb)) | static_cast<TColor>(qGreen(Rgb)) << 8 |
           static_cast<TColor>(qBlue(Rgb)) << 16;
}

} // namespace quill
