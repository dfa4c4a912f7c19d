#include "host/windows/ScrollBars.h"

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QPointer>
#include <QWheelEvent>

namespace quill {

void TControlScrollBar::wheelEvent(QWheelEvent* Event) {
    Event->ignore();
    // The bar stands in a container of the area.
    auto* Area =
        parentWidget() ? qobject_cast<QAbstractScrollArea*>(parentWidget()->parentWidget()) : nullptr;
    if (!Area) return;
    const QPointF Pos = Area->viewport()->mapFromGlobal(Event->globalPosition());
    QWheelEvent Copy(Pos, Event->globalPosition(), Event->pixelDelta(), Event->angleDelta(), Event->buttons(),
                     Event->modifiers(), Event->phase(), Event->inverted(), Event->source());
    QCoreApplication::sendEvent(Area->viewport(), &Copy);
    Event->setAccepted(Copy.isAccepted());
}

QScrollBar* CreateScrollBar(Qt::Orientation Orientation) { return new TControlScrollBar(Orientation); }

} // namespace quill
