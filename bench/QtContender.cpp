#include "bench/QtContender.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

namespace quill::bench {

bool TPaintCounter::eventFilter(QObject*, QEvent* Event) {
    if (Event->type() == QEvent::Paint) ++Count;
    return false;
}

void TQtContender::OpenWindow() {
    QAbstractScrollArea& Area = GetArea();
    Area.resize(Width, Height);
    Area.show();
    Area.activateWindow();
    Area.setFocus();
    Area.viewport()->installEventFilter(&FPaints);
    Show();
}

// A delayed layout takes a second turn of the event loop.
void TQtContender::Show() {
    constexpr int MostTurns = 20;
    for (int Turn = 0; Turn < MostTurns; ++Turn) {
        const long Before = FPaints.Count;
        QCoreApplication::processEvents();
        if (Turn > 0 && FPaints.Count == Before) return;
    }
}

QPoint TQtContender::InWindow(TSpot Spot) {
    return GetArea().viewport()->mapTo(GetArea().window(), QPoint(Spot.X, Spot.Y));
}

void TQtContender::Press(TKey Key) {
    static constexpr Qt::Key Codes[] = {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_F2, Qt::Key_Return};
    QTest::keyClick(GetArea().windowHandle(), Codes[static_cast<int>(Key)]);
}

void TQtContender::Type(char Letter) { QTest::keyClick(GetArea().windowHandle(), Letter); }

void TQtContender::Click(TSpot Spot) {
    QTest::mouseClick(GetArea().windowHandle(), Qt::LeftButton, {}, InWindow(Spot));
}

void TQtContender::MoveMouse(TSpot Spot) { QTest::mouseMove(GetArea().windowHandle(), InWindow(Spot)); }

void TQtContender::TurnWheel() {
    QWidget& Viewport = *GetArea().viewport();
    const QPointF Spot(Width / 3, Height / 2);
    const QPoint Notch(0, -QWheelEvent::DefaultDeltasPerStep);
    QWheelEvent Event(Spot, Viewport.mapToGlobal(Spot), {}, Notch, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&Viewport, &Event);
}

} // namespace quill::bench
