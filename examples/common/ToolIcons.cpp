#include "ToolIcons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace quill::examples {

namespace {

constexpr int IconSize = 16;

// All coordinates are those of a 16 x 16 grid; lines run through the middle of pixels.
QPainterPath Outline(TToolIcon Icon) {
    QPainterPath Path;
    const auto Lines = [&Path](std::initializer_list<QPointF> Points) {
        Path.moveTo(*Points.begin());
        for (const QPointF& Point : Points) Path.lineTo(Point);
    };
    switch (Icon) {
    case tiNew: // a sheet with a folded corner
        Lines({{9.5, 1.5},
               {3.5, 1.5},
               {3.5, 14.5},
               {12.5, 14.5},
               {12.5, 4.5},
               {9.5, 1.5},
               {9.5, 4.5},
               {12.5, 4.5}});
        break;
    case tiOpen: // an open folder
        Lines({{1.5, 13.5}, {1.5, 3.5}, {6, 3.5}, {7.5, 5.5}, {12.5, 5.5}, {12.5, 7.5}});
        Lines({{1.5, 13.5}, {4, 7.5}, {15, 7.5}, {12.5, 13.5}, {1.5, 13.5}});
        break;
    case tiSave: // an arrow into a tray
        Lines({{8, 1.5}, {8, 9.5}});
        Lines({{4.5, 6}, {8, 9.5}, {11.5, 6}});
        Lines({{1.5, 9.5}, {1.5, 14.5}, {14.5, 14.5}, {14.5, 9.5}});
        break;
    case tiExpandAll:
    case tiCollapseAll: // two boxes with plus or minus
        Path.addRect(QRectF(1.5, 4.5, 10, 10));
        Lines({{4.5, 1.5}, {14.5, 1.5}, {14.5, 11.5}});
        Lines({{4, 9.5}, {9, 9.5}});
        if (Icon == tiExpandAll) Lines({{6.5, 7}, {6.5, 12}});
        break;
    case tiRefresh: // a circle with an arrow head
        Path.arcMoveTo(QRectF(2.5, 2.5, 11, 11), 60);
        Path.arcTo(QRectF(2.5, 2.5, 11, 11), 60, -310);
        Lines({{10.5, 0.5}, {10.75, 3.25}, {8, 4.5}});
        break;
    case tiUndo:
    case tiRedo: { // an arrow that bends back; redo mirrored
        Lines({{5.5, 2.5}, {2.5, 5.5}, {5.5, 8.5}});
        Lines({{2.5, 5.5}, {9.5, 5.5}});
        Path.arcTo(QRectF(5.5, 5.5, 8, 8), 90, -180);
        Path.lineTo(5.5, 13.5);
        if (Icon == tiRedo) Path = QTransform(-1, 0, 0, 1, IconSize, 0).map(Path);
        break;
    }
    case tiCut: // scissors
        Lines({{4.5, 1.5}, {10, 10}});
        Lines({{11.5, 1.5}, {6, 10}});
        Path.addEllipse(QPointF(4.5, 12), 2.25, 2.25);
        Path.addEllipse(QPointF(11.5, 12), 2.25, 2.25);
        break;
    case tiCopy: // two sheets
        Lines({{4.5, 11.5}, {2.5, 11.5}, {2.5, 1.5}, {9.5, 1.5}, {9.5, 3.5}});
        Path.addRect(QRectF(5.5, 4.5, 8, 10));
        break;
    case tiPaste: // a clipboard
        Lines({{5.5, 2.5}, {2.5, 2.5}, {2.5, 14.5}, {13.5, 14.5}, {13.5, 2.5}, {10.5, 2.5}});
        Path.addRect(QRectF(5.5, 1.5, 5, 3));
        break;
    case tiDelete:
        Lines({{3.5, 3.5}, {12.5, 12.5}});
        Lines({{12.5, 3.5}, {3.5, 12.5}});
        break;
    case tiAdd:
        Lines({{8, 2.5}, {8, 13.5}});
        Lines({{2.5, 8}, {13.5, 8}});
        break;
    }
    return Path;
}

QPixmap Draw(TToolIcon Icon, const QColor& Color, qreal Scale) {
    QPixmap Pixmap(qRound(IconSize * Scale), qRound(IconSize * Scale));
    Pixmap.setDevicePixelRatio(Scale);
    Pixmap.fill(Qt::transparent);
    QPainter Painter(&Pixmap);
    Painter.setRenderHint(QPainter::Antialiasing);
    // Lines of one device pixel are crisp, but too thin where pixels are small.
    Painter.setPen(QPen(Color, Scale > 1 ? 1.25 : 1.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    Painter.drawPath(Outline(Icon));
    return Pixmap;
}

} // namespace

QIcon MakeToolIcon(TToolIcon Icon, const QColor& Color) {
    QIcon Result;
    for (const qreal Scale : {1.0, 2.0, 3.0}) {
        Result.addPixmap(Draw(Icon, Color, Scale));
        QColor Pale = Color;
        Pale.setAlphaF(0.35F);
        Result.addPixmap(Draw(Icon, Pale, Scale), QIcon::Disabled);
    }
    return Result;
}

} // namespace quill::examples
