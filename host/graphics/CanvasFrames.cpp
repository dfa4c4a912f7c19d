// Edges, focus frames, check boxes and radio buttons.
#include "host/graphics/CanvasState.h"

#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace quill {
namespace {

constexpr unsigned CheckStates = DFCS_BUTTONRADIO | DFCS_INACTIVE | DFCS_PUSHED | DFCS_CHECKED | DFCS_FLAT;

QColor Blend(QRgb A, QRgb B, double PartOfB) {
    const auto Mix = [PartOfB](int X, int Y) { return static_cast<int>(std::lround(X + (Y - X) * PartOfB)); };
    return QColor(Mix(qRed(A), qRed(B)), Mix(qGreen(A), qGreen(B)), Mix(qBlue(A), qBlue(B)));
}

// Paints a check box or radio button of Side device pixels.
class TCheckPainter {
public:
    TCheckPainter(const TSystemColors& Colors, int Side, int Hairline, unsigned State)
        : FColors(Colors), FSide(Side), FHairline(Hairline), FState(State) {
        const QRgb Window = Color(clWindow);
        const QRgb Text = Color(clWindowText);
        const bool Inactive = Has(DFCS_INACTIVE);
        FInside = QColor(Inactive || Has(DFCS_PUSHED) ? Color(clBtnFace) : Window);
        FMark = Inactive ? Blend(Color(clGrayText), Text, 0.15) : QColor(Text);
        if (Has(DFCS_FLAT)) {
            FOuterFar = FOuterNear = Blend(Text, Window, Inactive ? 0.65 : 0.4);
        } else if (Colors.IsDark) {
            // Shadows do not show on a dark ground, so the box is sunken by the light on its edges.
            FOuterNear = Blend(Text, Window, Inactive ? 0.75 : 0.55);
            FOuterFar = Blend(Text, Window, Inactive ? 0.6 : 0.35);
            FInnerNear = Blend(Window, QColor(Qt::black).rgb(), 0.55);
            FInnerFar = FInside;
        } else {
            FOuterNear = QColor(Color(clBtnShadow));
            FOuterFar = QColor(Color(clBtnHighlight));
            // On a white ground a white edge would open the box.
            if (qGray(Window) - qGray(FOuterFar.rgb()) < 12)
                FOuterFar = Blend(Window, Color(clBtnShadow), 0.75);
            FInnerNear = Blend(Color(cl3DDkShadow), Color(clBtnShadow), 0.4);
            FInnerFar = FInside;
        }
    }

    QImage Paint() {
        QImage Image(FSide, FSide, QImage::Format_ARGB32_Premultiplied);
        Image.fill(Qt::transparent);
        QPainter P(&Image);
        if (Has(DFCS_BUTTONRADIO)) {
            PaintRadio(P);
        } else {
            PaintBox(P);
        }
        P.end();
        return Image;
    }

private:
    bool Has(unsigned Flag) const { return (FState & Flag) != 0; }
    QRgb Color(TColor Number) const { return FColors.Colors[Number & 0xFF]; }

    void Ring(QPainter& P, int Inset, const QColor& Near, const QColor& Far) const {
        const int Length = FSide - 2 * Inset;
        const int End = FSide - Inset;
        P.fillRect(Inset, Inset, Length, FHairline, Near);
        P.fillRect(Inset, Inset, FHairline, Length, Near);
        P.fillRect(Inset, End - FHairline, Length, FHairline, Far);
        P.fillRect(End - FHairline, Inset, FHairline, Length, Far);
    }

    void PaintBox(QPainter& P) const {
        P.fillRect(0, 0, FSide, FSide, FInside);
        Ring(P, 0, FOuterNear, FOuterFar);
        if (!Has(DFCS_FLAT)) Ring(P, FHairline, FInnerNear, FInnerFar);
        if (Has(DFCS_CHECKED)) PaintTick(P);
    }

    // Designed on a grid of 13 cells: seven columns of three cells, down and up again.
    void PaintTick(QPainter& P) const {
        static constexpr int Tops[] = {5, 6, 7, 6, 5, 4, 3};
        if (FSide < 17) {
            const int Offset = static_cast<int>(std::floor((FSide - 13) / 2.0));
            for (int I = 0; I < 7; ++I) P.fillRect(3 + I + Offset, Tops[I] + Offset, 1, 3, FMark);
            return;
        }
        const double Cell = FSide / 13.0;
        QPolygonF Tick;
        for (const auto& [X, Y] :
             {std::pair(3.0, 5.2), {5.5, 7.7}, {10.0, 3.2}, {10.0, 5.8}, {5.5, 10.3}, {3.0, 7.8}})
            Tick << QPointF(X * Cell, Y * Cell);
        QPainterPath Path;
        Path.addPolygon(Tick);
        P.setRenderHint(QPainter::Antialiasing);
        P.fillPath(Path, FMark);
    }

    void PaintRadio(QPainter& P) const {
        P.setRenderHint(QPainter::Antialiasing);
        const double Half = FHairline / 2.0;
        const QRectF Outer = QRectF(0, 0, FSide, FSide).adjusted(Half, Half, -Half, -Half);
        P.setPen(Qt::NoPen);
        P.setBrush(FInside);
        P.drawEllipse(Outer);
        P.setBrush(Qt::NoBrush);
        Arcs(P, Outer, FOuterNear, FOuterFar);
        if (!Has(DFCS_FLAT)) {
            const double In = FHairline;
            Arcs(P, Outer.adjusted(In, In, -In, -In), FInnerNear, FInnerFar);
        }
        if (!Has(DFCS_CHECKED)) return;
        const double Radius = std::max(2.0, FSide * 2.4 / 13.0);
        P.setPen(Qt::NoPen);
        P.setBrush(FMark);
        P.drawEllipse(QPointF(FSide / 2.0, FSide / 2.0), Radius, Radius);
    }

    // Light comes from the top left.
    void Arcs(QPainter& P, const QRectF& Circle, const QColor& Near, const QColor& Far) const {
        P.setPen(QPen(Near, FHairline, Qt::SolidLine, Qt::FlatCap));
        P.drawArc(Circle, 45 * 16, 180 * 16);
        P.setPen(QPen(Far, FHairline, Qt::SolidLine, Qt::FlatCap));
        P.drawArc(Circle, 225 * 16, 180 * 16);
    }

    const TSystemColors& FColors;
    int FSide;
    int FHairline;
    unsigned FState;
    QColor FInside;
    QColor FMark;
    QColor FOuterNear;
    QColor FOuterFar;
    QColor FInnerNear;
    QColor FInnerFar;
};

} // namespace

void TCanvas::DrawFrameControl(const TRect& Rect, unsigned Type, unsigned State) {
    if (Type != DFC_BUTTON || Rect.IsEmpty() || !BeginDrawing()) return;
    const QRect Device = ToDeviceRect(Rect);
    const int Side = std::min(Device.width(), Device.height());
    if (Side < 3 || Side > 1024) return;
    const TSystemColors& Colors = FState->System();
    QImage& Image = Colors.Checks[{Side, Hairline(), State & CheckStates}];
    if (Image.isNull()) Image = TCheckPainter(Colors, Side, Hairline(), State).Paint();
    Painter().drawImage(Device.left() + (Device.width() - Side) / 2,
                        Device.top() + (Device.height() - Side) / 2, Image);
}

void TCanvas::DrawEdge(const TRect& Rect, unsigned Edge, unsigned Flags) {
    if (Rect.IsEmpty() || !BeginDrawing()) return;
    QRect Device = ToDeviceRect(Rect);
    const int Side = Hairline();
    // The sides are those of the application's coordinates, the light comes from the top left of the screen.
    const bool AtLeft = (Flags & (FMirrored ? BF_RIGHT : BF_LEFT)) != 0;
    const bool AtRight = (Flags & (FMirrored ? BF_LEFT : BF_RIGHT)) != 0;
    const bool AtTop = (Flags & BF_TOP) != 0;
    const bool AtBottom = (Flags & BF_BOTTOM) != 0;
    const auto Ring = [&](TColor Near, TColor Far) {
        if (Device.width() < Side || Device.height() < Side) return;
        const int Width = Device.width();
        const int Height = Device.height();
        if (AtLeft) FillDevice(QRect(Device.left(), Device.top(), Side, Height), Near);
        if (AtTop) FillDevice(QRect(Device.left(), Device.top(), Width, Side), Near);
        if (AtRight) FillDevice(QRect(Device.right() + 1 - Side, Device.top(), Side, Height), Far);
        if (AtBottom) FillDevice(QRect(Device.left(), Device.bottom() + 1 - Side, Width, Side), Far);
        Device.adjust(AtLeft ? Side : 0, AtTop ? Side : 0, AtRight ? -Side : 0, AtBottom ? -Side : 0);
    };
    if ((Edge & BDR_RAISEDOUTER) != 0) Ring(cl3DLight, cl3DDkShadow);
    if ((Edge & BDR_SUNKENOUTER) != 0) Ring(clBtnShadow, clBtnHighlight);
    if ((Edge & BDR_RAISEDINNER) != 0) Ring(clBtnHighlight, clBtnShadow);
    if ((Edge & BDR_SUNKENINNER) != 0) Ring(cl3DDkShadow, cl3DLight);
}

void TCanvas::DrawFocusRect(const TRect& Rect) {
    if (Rect.IsEmpty() || !BeginDrawing()) return;
    const QRect Device = ToDeviceRect(Rect);
    const int Dot = Hairline();
    // Every second dot along the frame is inverted, each exactly once, counted from the frame's own corner, so that
    // the frame vanishes when it is drawn again, also after its pixels were scrolled.
    const int Right = Device.right() + 1 - Dot;
    const int Bottom = Device.bottom() + 1 - Dot;
    const pixels::TView View = pixels::Writable(*FImage);
    const pixels::TInk Ink = pixels::TInk::Invert(0xFFFFFF);
    const auto Invert = [&](const QRect& Piece) {
        FState->Clipped(Piece, [&](const QRect& Part) { pixels::Fill(View, Part, Ink); });
    };
    const auto Dots = [&](int First, int Last, int Low, int High, auto&& At) {
        // Only the dots near the clip, but of the same parity.
        const int Period = 2 * Dot;
        if (Low > First) First += (Low - First) / Period * Period;
        for (int I = First; I < std::min(Last, High + 1); I += Period) Invert(At(I, std::min(Dot, Last - I)));
    };
    const QRect& Clip = FState->ClipBounds;
    const auto Row = [&](int Y) {
        const int Phase = ((Y - Device.top()) / Dot % 2) * Dot;
        Dots(Device.left() + Phase, Device.right() + 1, Clip.left(), Clip.right(),
             [&](int I, int Length) { return QRect(I, Y, Length, Dot); });
    };
    const auto Column = [&](int X) {
        const int Phase = ((X - Device.left()) / Dot % 2) * Dot;
        // Between the two rows.
        const int Start = Device.top() + Dot + (Phase == 0 ? Dot : 0);
        Dots(Start, Bottom, Clip.top(), Clip.bottom(),
             [&](int I, int Length) { return QRect(X, I, Dot, Length); });
    };
    Row(Device.top());
    if (Bottom >= Device.top() + Dot) Row(Bottom);
    if (Bottom > Device.top() + Dot) {
        Column(Device.left());
        if (Right >= Device.left() + Dot) Column(Right);
    }
}

} // namespace quill
