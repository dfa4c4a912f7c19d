#include "designer/Icons.h"

#include <QPainter>
#include <QPixmap>

namespace quill::designer {

namespace {

constexpr int Sizes[] = {16, 22, 24, 32, 48, 64};
constexpr qreal Grid = 16; // the pictures are described on so many units

const QColor Paper(255, 255, 255);
const QColor Frame(110, 118, 130);
const QColor Ink(70, 78, 90);
const QColor Accent(46, 125, 190);

template <class TDraw>
QIcon Drawn(TDraw Draw) {
    QIcon Icon;
    for (const int Size : Sizes) {
        QPixmap Picture(Size, Size);
        Picture.fill(Qt::transparent);
        QPainter Painter(&Picture);
        Painter.setRenderHint(QPainter::Antialiasing);
        Painter.scale(Size / Grid, Size / Grid);
        Painter.setPen(QPen(Frame, 1));
        Painter.setBrush(Paper);
        Painter.drawRoundedRect(QRectF(0.5, 1.5, 15, 13), 1.5, 1.5);
        Painter.setPen(Qt::NoPen);
        Draw(Painter);
        Painter.end();
        Icon.addPixmap(Picture);
    }
    return Icon;
}

void Bar(QPainter& Painter, QRectF Place, const QColor& Color) { Painter.fillRect(Place, Color); }

} // namespace

QIcon TreeIcon() {
    return Drawn([](QPainter& Painter) {
        // A row of captions, a branch with two leaves, a column of data.
        Bar(Painter, {1, 2, 14, 2.5}, QColor(214, 222, 232));
        Bar(Painter, {2.5, 6, 2.5, 2.5}, Accent);
        Bar(Painter, {6, 6.5, 4, 1.5}, Ink);
        Bar(Painter, {3.4, 8.5, 0.7, 4.2}, Frame);
        for (const qreal Y : {9.4, 12.0}) {
            Bar(Painter, {3.4, Y + 0.3, 2.2, 0.7}, Frame);
            Bar(Painter, {6, Y, 4, 1.4}, Ink);
        }
        Bar(Painter, {11, 2, 0.7, 12}, QColor(200, 206, 214));
        for (const qreal Y : {6.5, 9.4, 12.0}) Bar(Painter, {12.4, Y, 1.9, 1.4}, Frame);
    });
}

QIcon LabelIcon() {
    return Drawn([](QPainter& Painter) {
        // A heavy letter between angle brackets, over a coloured word.
        Painter.setPen(QPen(Frame, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        Painter.setBrush(Qt::NoBrush);
        Painter.drawPolyline(QPolygonF({{4.4, 4.2}, {2.4, 6.6}, {4.4, 9}}));
        Painter.drawPolyline(QPolygonF({{11.6, 4.2}, {13.6, 6.6}, {11.6, 9}}));
        Painter.setPen(QPen(Ink, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        Painter.drawPolyline(QPolygonF({{6, 9}, {8, 4}, {10, 9}}));
        Painter.drawLine(QPointF(6.8, 7.4), QPointF(9.2, 7.4));
        Bar(Painter, {2.4, 11, 6, 1.6}, Accent);
        Bar(Painter, {9.2, 11, 4.4, 1.6}, QColor(200, 206, 214));
    });
}

} // namespace quill::designer
