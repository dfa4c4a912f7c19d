// The retained surface of controls: invalidating, painting, scrolling and copying to the screen.
#include "host/windows/ControlImpl.h"
#include "host/windows/PaintScheduler.h"

#include <QPainter>
#include <QPaintEvent>
#include <QPalette>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace quill {

namespace {

// Above that many rectangles an invalid region is taken by its bounds: clipping to it would cost more than it saves.
constexpr int MaxInvalidRects = 32;
// Device pixels beside the surface, so that a scroll bar that comes or goes needs no other memory.
constexpr int SpareColumns = 64;

QRect ToQt(const TRect& R) { return {R.Left, R.Top, std::max(R.Width(), 0), std::max(R.Height(), 0)}; }
TRect FromQt(const QRect& R) { return Bounds(R.x(), R.y(), R.width(), R.height()); }

bool IsWhole(double Value) { return std::abs(Value - std::round(Value)) < 1e-6; }

std::uint64_t PixelsOf(const QRegion& Region) {
    std::uint64_t Sum = 0;
    for (const QRect& R : Region)
        Sum += static_cast<std::uint64_t>(R.width()) * static_cast<std::uint64_t>(R.height());
    return Sum;
}

bool Covers(const QRegion& Region, const QRegion& Other) {
    return Region.rectCount() == 1 && Region.boundingRect().contains(Other.boundingRect());
}

void Merge(QRegion& Region, const QRegion& Other) {
    if (Covers(Region, Other)) return;
    Region += Other;
    if (Region.rectCount() <= 1) return;
    const QRect Whole = Region.boundingRect();
    // Nearly all of the bounds: their rest costs less than clipping to the pieces.
    if (Region.rectCount() > MaxInvalidRects || PixelsOf(Region) * 4 > PixelsOf(Whole) * 3) Region = Whole;
}

} // namespace

// --- surface ------------------------------------------------------------------------------------------------------

double TCustomControl::TImpl::WindowScale() const { return Control.viewport()->devicePixelRatioF(); }

QRect TCustomControl::TImpl::ClientRect() const { return Control.viewport()->rect(); }

// Edges go where the canvas puts them, so that neighbouring rectangles still meet; those at the client's edge take
// the rest of the surface.
QRegion TCustomControl::TImpl::ToDevice(const QRegion& Region) const {
    if (Scale == 1.0) return Region & Surface.rect();
    const auto Edge = [this](int Value, int Client, int Device) {
        return Value >= Client ? Device : std::min(static_cast<int>(std::floor(Value * Scale + 0.5)), Device);
    };
    QRegion Result;
    for (const QRect& R : Region) {
        const QPoint TopLeft(Edge(R.left(), SurfaceClient.width(), Surface.width()),
                             Edge(R.top(), SurfaceClient.height(), Surface.height()));
        const QPoint BottomRight(Edge(R.right() + 1, SurfaceClient.width(), Surface.width()),
                                 Edge(R.bottom() + 1, SurfaceClient.height(), Surface.height()));
        Result += QRect(TopLeft, BottomRight - QPoint(1, 1));
    }
    return Result;
}

void TCustomControl::TImpl::BindCanvas() {
    if (Painting) {
        SurfaceStale = true;
        return;
    }
    Control.FCanvas->Bind(Redraw && !Surface.isNull() ? &Surface : nullptr, Scale);
}

void TCustomControl::TImpl::FitSurface() {
    if (!Control.FHandleAllocated) return;
    const QSize Client = Control.viewport()->size();
    const double NewScale = WindowScale();
    if (Client == SurfaceClient && NewScale == Scale && (!Surface.isNull() || Client.isEmpty())) return;
    if (Painting) {
        SurfaceStale = true;
        return;
    }
    // Rounded up: a client that begins between two device pixels may touch one more than its rounded size.
    const auto ToSize = [NewScale](int Value) {
        return static_cast<int>(std::ceil(Value * NewScale - 1e-6));
    };
    Control.FCanvas->EndPainting();
    const QSize Size = Client.isEmpty() ? QSize() : QSize(ToSize(Client.width()), ToSize(Client.height()));
    const bool Keep = !Surface.isNull() && NewScale == Scale;
    const bool InPlace = Keep && HasRoomFor(Size);
    const QImage Old = InPlace ? QImage() : std::exchange(Surface, QImage());
    const std::unique_ptr<QRgb[]> OldBuffer = InPlace ? nullptr : std::move(SurfaceBuffer);
    if (InPlace) {
        SurfaceSpare += Surface.height() - Size.height();
        ShowBuffer(Size.width(), Size.height());
    } else if (!Size.isEmpty()) {
        MakeSurface(Size.width(), Size.height());
    }
    const QRect Kept = Keep ? QRect(QPoint(0, 0), SurfaceClient.boundedTo(Client)) : QRect();
    Scale = NewScale;
    SurfaceClient = Client;
    Control.FInvalid &= ClientRect();
    if (!Surface.isNull()) {
        const QRegion Uncovered = QRegion(ClientRect()) - Kept;
        // Partly covered device pixels at the old edges are new as well.
        const QRegion KeptDevice = Kept.isEmpty() ? QRegion() : ToDevice(Kept);
        FillSurface(QRegion(Surface.rect()) - KeptDevice);
        for (const QRect& R : InPlace ? QRegion() : KeptDevice) {
            const auto Bytes = static_cast<std::size_t>(R.width()) * sizeof(QRgb);
            for (int Y = R.top(); Y <= R.bottom(); ++Y)
                std::memcpy(Surface.scanLine(Y), Old.constScanLine(Y), Bytes);
        }
        BindCanvas();
        AddInvalid(Uncovered, true);
    } else {
        BindCanvas();
    }
}

void TCustomControl::TImpl::MakeSurface(int Width, int Height) {
    SurfaceTop = 0;
    SurfaceSpare = Height / 2;
    SurfaceStride = Width + SpareColumns;
    const auto Rows = static_cast<std::size_t>(Height) + static_cast<std::size_t>(SurfaceSpare);
    SurfaceBuffer = std::make_unique_for_overwrite<QRgb[]>(static_cast<std::size_t>(SurfaceStride) * Rows);
    ShowBuffer(Width, Height);
}

// Lets the surface be the rows of the buffer from SurfaceTop on.
void TCustomControl::TImpl::ShowBuffer(int Width, int Height) {
    Surface = QImage(reinterpret_cast<uchar*>(BufferRow(SurfaceTop)), Width, Height,
                     SurfaceStride * static_cast<int>(sizeof(QRgb)), QImage::Format_RGB32);
}

// Whether a surface of another size fits where the present one is, without a waste of memory. Somebody who holds a copy
// of the image got the buffer's rows; the surface then has others.
bool TCustomControl::TImpl::HasRoomFor(QSize Size) const {
    if (Size.isEmpty() || reinterpret_cast<const QRgb*>(Surface.constBits()) != BufferRow(SurfaceTop))
        return false;
    const int Rows = Surface.height() + SurfaceSpare;
    const int Spare = Rows - Size.height();
    return Size.width() <= SurfaceStride && Size.width() >= SurfaceStride / 2 && SurfaceTop <= Spare &&
           Spare >= Size.height() / 4 && Spare <= Size.height();
}

bool TCustomControl::TImpl::ShiftSurface(int From, int To, int ShiftY) {
    const int Height = Surface.height();
    const int Stay = From + Height - To;
    if (Stay > Height / 4 || std::abs(ShiftY) > SurfaceSpare) return false;
    if (!HasRoomFor(Surface.size())) return false;
    const auto Move = [this](int Row, int NewRow, int Count) {
        if (Count > 0)
            std::memmove(BufferRow(NewRow), BufferRow(Row),
                         static_cast<std::size_t>(Count) * static_cast<std::size_t>(SurfaceStride) *
                             sizeof(QRgb));
    };
    int NewTop = SurfaceTop - ShiftY;
    if (NewTop < 0 || NewTop > SurfaceSpare) {
        // At the end of the buffer: once in a while everything moves to its other end.
        const int Other = ShiftY > 0 ? SurfaceSpare : 0;
        Move(SurfaceTop, Other, Height);
        SurfaceTop = Other;
        NewTop = Other - ShiftY;
    }
    Move(SurfaceTop, NewTop, From);
    Move(SurfaceTop + To, NewTop + To, Height - To);
    SurfaceTop = NewTop;
    const int Width = Surface.width();
    ShowBuffer(Width, Height);
    FillSurface(ShiftY > 0 ? QRect(0, From, Width, ShiftY) : QRect(0, To + ShiftY, Width, -ShiftY));
    return true;
}

void TCustomControl::TImpl::DropSurface() {
    Control.FInvalid = QRegion();
    ChangedWhileOff = QRegion();
    TPaintScheduler::Remove(&Control);
    Control.FCanvas->Bind(nullptr, Scale);
    Surface = QImage();
    SurfaceBuffer.reset();
    SurfaceClient = QSize();
    ToldSize = QSize(-1, -1);
    if (Painting) SurfaceStale = true;
}

void TCustomControl::TImpl::FillSurface(const QRegion& Device) {
    const TColor Color = ColorToRGB(Control.FColor, Control.FCanvas->GetPalette());
    const QRgb Pixel = qRgb(static_cast<int>(Color & 0xFF), static_cast<int>(Color >> 8 & 0xFF),
                            static_cast<int>(Color >> 16 & 0xFF));
    const QRegion Inside = Device & Surface.rect();
    for (const QRect& R : Inside)
        for (int Y = R.top(); Y <= R.bottom(); ++Y)
            std::fill_n(reinterpret_cast<QRgb*>(Surface.scanLine(Y)) + R.left(), R.width(), Pixel);
}

double TCustomControl::GetScale() const { return FHandleAllocated ? FImpl->Scale : FImpl->WindowScale(); }

QImage TCustomControl::GetSurfaceImage() {
    const TControlGuard Guard(this);
    Update();
    if (!Guard) return {};
    FCanvas->EndPainting();
    return FImpl->Surface.copy(); // deep: drawing on must not copy the surface
}

std::unique_ptr<TBitmap> TCustomControl::CaptureClient() {
    const TControlGuard Guard(this);
    const QImage Image = GetSurfaceImage();
    auto Result = std::make_unique<TBitmap>();
    if (!Guard || Image.isNull()) return Result;
    // Without the pixels that round the surface up, so that the bitmap has the client's size.
    const QRect Client(0, 0, FCanvas->ToDevice(GetClientWidth()), FCanvas->ToDevice(GetClientHeight()));
    Result->SetImage(Image.copy(Client & Image.rect()), FImpl->Scale);
    return Result;
}

// --- invalidating -------------------------------------------------------------------------------------------------

void TCustomControl::Invalidate() {
    if (FHandleAllocated) FImpl->AddInvalid(FImpl->ClientRect(), true);
}

void TCustomControl::InvalidatePixels(const TRect& Rect, bool Erase) {
    if (!FHandleAllocated || Rect.IsEmpty()) return;
    TRect Inside;
    if (IntersectRect(Inside, Rect, GetClientRect())) FImpl->AddInvalid(ToQt(Inside), Erase);
}

void TCustomControl::TImpl::AddInvalid(const QRegion& Region, bool Erase) {
    if (Region.isEmpty() || DestructionBegun) return;
    if (!Redraw) {
        Merge(ChangedWhileOff, Region);
        return;
    }
    QRegion& Invalid = Control.FInvalid;
    if (Erase) EraseInvalid = true;
    if (Painting) {
        // Painted again in the next turn, not in this one: a Paint that always invalidates must not block.
        Invalid += Region;
        InvalidatedByPaint = true;
        return;
    }
    TPaintScheduler::Add(&Control);
    InvalidatedByPaint = false;
    if (Covers(Invalid, Region)) return;
    Merge(Invalid, Region);
    if (Control.isVisible()) Control.viewport()->update(Region);
}

bool TCustomControl::IsAllInvalid() const {
    const QRegion& Region = FImpl->Redraw ? FInvalid : FImpl->ChangedWhileOff;
    return Region.rectCount() == 1 && Region.boundingRect() == FImpl->ClientRect();
}

TRect TCustomControl::GetInvalidBounds() const { return FromQt(FInvalid.boundingRect()); }

bool TCustomControl::GetRedraw() const { return FImpl->Redraw; }

void TCustomControl::WMSetRedraw(TMessage& Message) {
    const bool On = Message.WParam != 0;
    if (On == FImpl->Redraw) return;
    FImpl->Redraw = On;
    FImpl->BindCanvas();
    if (!On) {
        // What was invalid before is painted with the rest afterwards.
        FImpl->ChangedWhileOff = std::exchange(FInvalid, QRegion());
        TPaintScheduler::Remove(this);
    } else {
        FImpl->AddInvalid(std::exchange(FImpl->ChangedWhileOff, QRegion()), true);
    }
}

// --- painting -----------------------------------------------------------------------------------------------------

void TCustomControl::Update() {
    const TControlGuard Guard(this);
    if (!FImpl->DeliverWaiting()) return;
    if (Guard) FImpl->PaintInvalid();
}

void TCustomControl::Repaint() {
    Invalidate();
    Update();
}

void TCustomControl::TImpl::PaintInvalid() {
    if (Painting || !Redraw || !Control.FHandleAllocated || DestructionBegun) return;
    FitSurface();
    TPaintScheduler::Remove(&Control);
    InvalidatedByPaint = false;
    const QRegion Region = std::exchange(Control.FInvalid, QRegion()) & ClientRect();
    const bool Erase = std::exchange(EraseInvalid, false);
    const QRegion Device = Surface.isNull() ? QRegion() : ToDevice(Region);
    if (Device.isEmpty()) return;

    TCanvas& Canvas = *Control.FCanvas;
    Canvas.EndPainting();
    // At fractional scales a descendant's cells may leave device pixels uncovered.
    if (!Control.FControlStyle.Contains(csOpaque) ? Erase : !IsWhole(Scale)) FillSurface(Device);
    Canvas.SetDeviceClip(Device);
    Canvas.SetFont(Control.FFont.get());
    Canvas.GetBrush()->SetColor(Control.FColor);
    ++Control.FPaintCount;
    Control.FPaintedPixels += PixelsOf(Device);

    struct TFinish {
        TImpl& Impl;
        TControlGuard Guard;
        explicit TFinish(TImpl& AImpl) : Impl(AImpl), Guard(&AImpl.Control) { Impl.Painting = true; }
        ~TFinish() {
            if (Guard) Impl.EndPaint();
        }
    };
    const TFinish Finish(*this);
    Control.Paint();
}

void TCustomControl::TImpl::EndPaint() {
    Painting = false;
    TCanvas& Canvas = *Control.FCanvas;
    Canvas.SetMirrored(false, 0);
    Canvas.SetDeviceClip(QRegion());
    Canvas.EndPainting();
    if (std::exchange(SurfaceStale, false)) {
        // The window changed its size, its redraw state or itself meanwhile.
        FitSurface();
        BindCanvas();
    }
    InvalidatedByPaint = !Control.FInvalid.isEmpty();
    if (!InvalidatedByPaint) return;
    TPaintScheduler::Add(&Control);
    WakeUp();
}

void TCustomControl::TImpl::CanvasOpened() {
    if (Painting || std::exchange(FlushScheduled, true)) return;
    if (Control.isVisible())
        Control.viewport()->update();
    else
        FlushScheduled = false;
}

void TCustomControl::Flush() {
    if (!FHandleAllocated || !viewport()->isVisible() || FImpl->Painting) return;
    const TControlGuard Guard(this);
    FImpl->Flushing = true;
    {
        const TPaintScheduler::TPause Pause;
        viewport()->repaint();
    }
    if (Guard) FImpl->Flushing = false;
}

void TCustomControl::paintEvent(QPaintEvent* Event) {
    TImpl& Impl = *FImpl;
    if (Impl.DestructionBegun) return;
    Impl.FitSurface(); // the window may have moved to a screen with another scale
    // Normally the surface is painted already; not when the widget is rendered into a picture.
    const TControlGuard Guard(this);
    if (!FInvalid.isEmpty() && !Impl.InvalidatedByPaint && !Impl.Flushing) Impl.PaintInvalid();
    if (!Guard) return;
    if (!Impl.Painting) {
        FCanvas->EndPainting(); // the next drawing outside Paint is announced again
        Impl.FlushScheduled = false;
    }
    QPainter Painter(viewport());
    if (Impl.Surface.isNull()) {
        Painter.fillRect(Event->rect(), palette().color(QPalette::Base));
        return;
    }
    Impl.Blit(Painter, Event->region());
}

QPoint TCustomControl::TImpl::DeviceOrigin() const {
    const QWidget* Viewport = Control.viewport();
    const QPoint Offset = Viewport->mapTo(Viewport->window(), QPoint(0, 0));
    return {static_cast<int>(std::floor(Offset.x() * Scale + 0.5)),
            static_cast<int>(std::floor(Offset.y() * Scale + 0.5))};
}

void TCustomControl::TImpl::Blit(QPainter& Painter, const QRegion& Region) {
    if (Scale == 1.0) {
        for (const QRect& R : Region) Painter.drawImage(R.topLeft(), Surface, R);
        return;
    }
    // Device pixel to device pixel: the painter's scale is undone, and its origin moved to the next whole pixel.
    Painter.scale(1.0 / Scale, 1.0 / Scale);
    for (const QRect& R : Region) {
        const QRect Source = QRect(QPoint(static_cast<int>(std::floor(R.left() * Scale)) - 1,
                                          static_cast<int>(std::floor(R.top() * Scale)) - 1),
                                   QPoint(static_cast<int>(std::ceil((R.right() + 1) * Scale)) + 1,
                                          static_cast<int>(std::ceil((R.bottom() + 1) * Scale)) + 1)) &
                             Surface.rect();
        Painter.drawImage(Source.topLeft(), Surface, Source);
    }
}

// --- scrolling ----------------------------------------------------------------------------------------------------

void TCustomControl::ScrollWindow(int DX, int DY, const TRect& Scroll, const TRect& Clip) {
    if (!FHandleAllocated || (DX == 0 && DY == 0)) return;
    TImpl& Impl = *FImpl;
    const QRect Client = Impl.ClientRect();
    const QRect Bound = ToQt(Clip) & Client;
    const QRect Source = ToQt(Scroll) & Client;
    if (Bound.isEmpty() || Source.isEmpty()) return;
    if (!Impl.Redraw) {
        Impl.AddInvalid(Client, true);
        return;
    }
    const double DeviceDX = DX * Impl.Scale;
    const double DeviceDY = DY * Impl.Scale;
    if (Impl.Painting || Impl.Surface.isNull() || !IsWhole(DeviceDX) || !IsWhole(DeviceDY)) {
        Impl.AddInvalid(Bound, true);
        return;
    }
    // What lands inside the clip, and the part of the scrolled area that nothing lands on.
    const QRect Target = Source.translated(DX, DY) & Bound;
    const QRegion Uncovered = QRegion(Source & Bound) - Target;
    if (!Target.isEmpty()) {
        const QRegion Invalid = FInvalid;
        // Nothing worth moving when all of it is to be painted anyway.
        if (!(QRegion(Target.translated(-DX, -DY)) - Invalid).isEmpty()) {
            const QRect Device = Impl.ToDevice(Target).boundingRect();
            const int ShiftX = static_cast<int>(std::lround(DeviceDX));
            const int ShiftY = static_cast<int>(std::lround(DeviceDY));
            FCanvas->EndPainting();
            // Where the moved pixels come from and go to, as one band.
            const QRect Band = Device | Device.translated(-ShiftX, -ShiftY);
            const bool WholeRows =
                ShiftX == 0 && Device.left() == 0 && Device.width() == Impl.Surface.width();
            const bool Shifted = WholeRows && Band.top() >= 0 && Band.bottom() < Impl.Surface.height() &&
                                 Impl.ShiftSurface(Band.top(), Band.bottom() + 1, ShiftY);
            const QRect To = Shifted ? QRect() : Device & Impl.Surface.rect().translated(ShiftX, ShiftY);
            const auto Bytes = static_cast<std::size_t>(std::max(To.width(), 0)) * sizeof(QRgb);
            const auto MoveRow = [&](int Y) {
                std::memmove(Impl.Surface.scanLine(Y) + To.left() * static_cast<int>(sizeof(QRgb)),
                             Impl.Surface.constScanLine(Y - ShiftY) +
                                 (To.left() - ShiftX) * static_cast<int>(sizeof(QRgb)),
                             Bytes);
            };
            if (ShiftY > 0) {
                for (int Y = To.bottom(); Y >= To.top(); --Y) MoveRow(Y);
            } else {
                for (int Y = To.top(); Y <= To.bottom(); ++Y) MoveRow(Y);
            }
        }
        // What was invalid has moved along with its pixels.
        FInvalid = (Invalid - Target) | (Invalid.translated(DX, DY) & Target);
        if (isVisible()) viewport()->update(Target);
    }
    Impl.AddInvalid(Uncovered, true);
}

} // namespace quill
