// What the desktop sends to a window that something is dragged over.
#pragma once

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QWidget>

namespace quill::testing {

class TDesktopDrag {
public:
    explicit TDesktopDrag(QWidget* AWindow, const QMimeData* AGiven = nullptr)
        : Window(AWindow), Given(AGiven ? AGiven : &Data) {}

    // Over a point and dropped there; returns the action that the window did, 0 when it refused.
    int Drop(QPoint Pos) {
        Send<QDragEnterEvent>(Pos);
        if (Send<QDragMoveEvent>(Pos) != 0) return Send<QDropEvent>(Pos);
        QDragLeaveEvent Leave;
        QCoreApplication::sendEvent(Window, &Leave);
        return 0;
    }

    QMimeData Data;
    Qt::KeyboardModifiers Modifiers;
    Qt::DropActions Actions = Qt::CopyAction | Qt::MoveAction;
    QWidget* Window;
    const QMimeData* Given;

private:
    template <class TEvent>
    int Send(QPoint Pos) {
        TEvent Event(Pos, Actions, Given, Qt::LeftButton, Modifiers);
        QCoreApplication::sendEvent(Window, &Event);
        return Event.isAccepted() ? static_cast<int>(Event.dropAction()) : 0;
    }
};

} // namespace quill::testing
