#include "host/windows/ScrollBars.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QCommonStyle>
#include <QPainter>
#include <QPointer>
#include <QStyleOptionSlider>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace quill {

namespace {

// Pixels of the flat looks: how thick a bar is, how far the thumb stays away from its sides, the shortest thumb.
constexpr int FlatExtent = 14;
constexpr double ThumbInset = 2.0;
constexpr int ShortestThumb = 20;

QColor Mix(const QColor& From, const QColor& To, int Percent) {
    const auto Part = [Percent](int A, int B) { return A + (B - A) * Percent / 100; };
    return {Part(From.red(), To.red()), Part(From.green(), To.green()), Part(From.blue(), To.blue())};
}

QColor FromColor(TColor Color, const QPalette& Palette) {
    const TColor RGB = ColorToRGB(Color, Palette);
    return {static_cast<int>(RGB & 0xFF), static_cast<int>(RGB >> 8 & 0xFF),
            static_cast<int>(RGB >> 16 & 0xFF)};
}

// The palette's colour that stands out from the background, whichever of the two is dark.
QColor InkOn(const QColor& Background, const QPalette& Palette) {
    const auto Distance = [&](const QColor& Color) {
        return std::abs(qGray(Color.rgb()) - qGray(Background.rgb()));
    };
    const QColor Text = Palette.color(QPalette::Active, QPalette::WindowText);
    const QColor Window = Palette.color(QPalette::Active, QPalette::Window);
    return Distance(Text) >= Distance(Window) ? Text : Window;
}

// A style of its own, so that what is drawn is what the mouse hits.
class TFlatBarStyle : public QCommonStyle {
public:
    int pixelMetric(PixelMetric Metric, const QStyleOption* Option, const QWidget* Widget) const override {
        switch (Metric) {
        case PM_ScrollBarExtent:
            return FlatExtent;
        case PM_ScrollBarSliderMin:
            return ShortestThumb;
        default:
            return QCommonStyle::pixelMetric(Metric, Option, Widget);
        }
    }

    int styleHint(StyleHint Hint, const QStyleOption* Option, const QWidget* Widget,
                  QStyleHintReturn* Return) const override {
        if (Hint == SH_ScrollBar_Transient) return 0;
        // What clicks do is the platform's habit, whatever the bar looks like.
        return QApplication::style()->styleHint(Hint, Option, Widget, Return);
    }

    void polish(QWidget* Widget) override {
        QCommonStyle::polish(Widget);
        Widget->setAttribute(Qt::WA_Hover);
        Widget->setAttribute(Qt::WA_OpaquePaintEvent);
    }

    void drawComplexControl(ComplexControl Control, const QStyleOptionComplex* Option, QPainter* Painter,
                            const QWidget* Widget) const override {
        const auto* Slider = qstyleoption_cast<const QStyleOptionSlider*>(Option);
        const auto* Bar = dynamic_cast<const TControlScrollBar*>(Widget);
        if (Control != CC_ScrollBar || !Slider || !Bar) {
            QCommonStyle::drawComplexControl(Control, Option, Painter, Widget);
            return;
        }
        Painter->save();
        Painter->setPen(Qt::NoPen);
        TBarPainter{*this, *Painter, *Slider, *Bar}.Draw();
        Painter->restore();
    }

private:
    struct TBarPainter {
        TBarPainter(const QStyle& AStyle, QPainter& APainter, const QStyleOptionSlider& AOption,
                    const TControlScrollBar& ABar)
            : Style(AStyle), Painter(APainter), Option(AOption), Bar(ABar),
              Background(FromColor(ABar.GetBackground(), AOption.palette)),
              Ink(InkOn(Background, AOption.palette)), Hairline(1.0 / APainter.device()->devicePixelRatio()) {
        }

        const QStyle& Style;
        QPainter& Painter;
        const QStyleOptionSlider& Option;
        const TControlScrollBar& Bar;
        QColor Background;
        QColor Ink;
        double Hairline;

        bool Enabled() const {
            return Option.state.testFlag(State_Enabled) && Option.maximum > Option.minimum;
        }
        bool Hot(SubControl Part) const { return Enabled() && Option.activeSubControls.testFlag(Part); }
        bool Down(SubControl Part) const { return Hot(Part) && Option.state.testFlag(State_Sunken); }
        QRectF PartRect(SubControl Part) const {
            return Style.subControlRect(CC_ScrollBar, &Option, Part, &Bar);
        }

        void Draw() const {
            const QRectF All(Option.rect);
            const bool Horz = Option.orientation == Qt::Horizontal;
            Painter.fillRect(All, Background);
            for (const SubControl Part : {SC_ScrollBarSubPage, SC_ScrollBarAddPage})
                if (Down(Part)) Painter.fillRect(PartRect(Part), Mix(Background, Ink, 10));
            // Where the client area ends, which may have the same colour.
            Painter.fillRect(
                QRectF(All.left(), All.top(), Horz ? All.width() : Hairline, Horz ? Hairline : All.height()),
                Mix(Background, Ink, 14));
            DrawArrow(SC_ScrollBarSubLine, false);
            DrawArrow(SC_ScrollBarAddLine, true);
            if (Enabled()) DrawThumb();
        }

        void DrawThumb() const {
            QRectF Rect = PartRect(SC_ScrollBarSlider);
            const bool IsHot = Hot(SC_ScrollBarSlider);
            if (IsHot && Bar.GetLook() == sblEncarta) {
                // A thumb that is held does not go in: it would seem to be let go.
                DrawRaised(Rect, false);
                return;
            }
            if (Option.orientation == Qt::Horizontal)
                Rect.adjust(0, ThumbInset, 0, -ThumbInset);
            else
                Rect.adjust(ThumbInset, 0, -ThumbInset, 0);
            const int Strength = Down(SC_ScrollBarSlider) ? 44 : IsHot ? 32 : 20;
            Frame(Rect, Mix(Background, Ink, Strength + 18), Mix(Background, Ink, Strength));
        }

        void DrawArrow(SubControl Part, bool Forward) const {
            const QRectF Rect = PartRect(Part);
            if (Rect.isEmpty()) return;
            const bool IsDown = Down(Part);
            QColor Glyph = Mix(Background, Ink, !Enabled() ? 28 : Hot(Part) ? 90 : 62);
            double Shift = 0;
            if (Hot(Part) && Bar.GetLook() == sblEncarta) {
                DrawRaised(Rect, IsDown);
                Glyph = InkOn(Option.palette.color(QPalette::Button), Option.palette);
                if (IsDown) Shift = 1;
            } else if (Hot(Part)) {
                Painter.fillRect(Rect, Mix(Background, Ink, IsDown ? 26 : 12));
            }
            // A triangle twice as wide as high, in whole pixels so that its base is sharp.
            const double Size = std::max(2.0, std::floor(std::min(Rect.width(), Rect.height()) * 0.3));
            const QPointF Centre = Rect.center() + QPointF(Shift, Shift);
            const double Tip = Forward ? Size / 2 : -Size / 2;
            const bool Horz = Option.orientation == Qt::Horizontal;
            const auto At = [&](double Along, double Across) {
                return Centre + (Horz ? QPointF(Along, Across) : QPointF(Across, Along));
            };
            const QPointF Points[] = {At(Tip, 0), At(-Tip, -Size), At(-Tip, Size)};
            Painter.setRenderHint(QPainter::Antialiasing);
            Painter.setBrush(Glyph);
            Painter.drawPolygon(Points, 3);
            Painter.setRenderHint(QPainter::Antialiasing, false);
        }

        // A hairline frame: its edges are device pixels at every scale.
        void Frame(const QRectF& Rect, const QColor& Edge, const QColor& Body) const {
            Painter.fillRect(Rect, Edge);
            Painter.fillRect(Rect.adjusted(Hairline, Hairline, -Hairline, -Hairline), Body);
        }

        void DrawRaised(const QRectF& Rect, bool Sunken) const {
            const QColor Face = Option.palette.color(QPalette::Button);
            const bool Dark = qGray(Face.rgb()) < 128;
            const QColor Light = Mix(Face, Qt::white, Dark ? 22 : 85);
            const QColor Shadow = Mix(Face, Qt::black, Dark ? 45 : 35);
            Frame(Rect, Mix(Face, Qt::black, Dark ? 70 : 55), Face);
            const QRectF In = Rect.adjusted(Hairline, Hairline, -Hairline, -Hairline);
            const QColor& Upper = Sunken ? Shadow : Light;
            const QColor& Lower = Sunken ? Face : Shadow;
            Painter.fillRect(QRectF(In.left(), In.bottom() - Hairline, In.width(), Hairline), Lower);
            Painter.fillRect(QRectF(In.right() - Hairline, In.top(), Hairline, In.height()), Lower);
            Painter.fillRect(QRectF(In.left(), In.top(), In.width(), Hairline), Upper);
            Painter.fillRect(QRectF(In.left(), In.top(), Hairline, In.height()), Upper);
        }
    };
};

// One for all bars; goes with the application.
QStyle* FlatBarStyle() {
    static QPointer<QStyle> Style;
    if (!Style) {
        Style = new TFlatBarStyle;
        Style->setParent(qApp);
    }
    return Style;
}

} // namespace

void TControlScrollBar::SetLook(TScrollBarLook Look, TColor Background) {
    FBackground = Background;
    if ((Look == sblRegular) != (FLook == sblRegular)) {
        const bool WasOpaque = testAttribute(Qt::WA_OpaquePaintEvent);
        setStyle(Look == sblRegular ? nullptr : FlatBarStyle());
        if (Look == sblRegular && WasOpaque) setAttribute(Qt::WA_OpaquePaintEvent, false);
    }
    FLook = Look;
}

void TControlScrollBar::wheelEvent(QWheelEvent* Event) {
    Event->ignore();
    // The bar stands in a container of the area.
    auto* Area =
        parentWidget() ? qobject_cast<QAbstractScrollArea*>(parentWidget()->parentWidget()) : nullptr;
    if (!Area) return;
    const QPointF Pos = Area->viewport()->mapFromGlobal(Event->globalPosition());
    QWheelEvent Copy(Pos, Event->globalPosition(), Event->pixelDelta(), Event->angleDelta(), Event->buttons(),
                     Event->modifiers(), Event->phase(), Event->inverted(), Event->source(),
                     Event->pointingDevice());
    QCoreApplication::sendEvent(Area->viewport(), &Copy);
    Event->setAccepted(Copy.isAccepted());
}

} // namespace quill
