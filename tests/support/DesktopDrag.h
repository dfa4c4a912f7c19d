// What the desktop sends to a window that something is dragged over.
#pragma once

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>
#include <QWidget>

namespace quill::testing {

class TDesktopDrag {
public:
    explicit TDesktopDrag(QWidget* AWindow, const QMimeData* AGiven = nullptr)
        : Window(AWindow), Given(AGiven ? AGiven : &Data) {}

    // One event each; the action that the window says, 0 when it refuses.
    int Enter(QPoint Pos = {5, 5}) { return Send<QDragEnterEvent>(Pos); }
    int Move(QPoint Pos = {6, 6}) { return Send<QDragMoveEvent>(Pos); }
    int Release(QPoint Pos = {7, 7}) { return Send<QDropEvent>(Pos); }
    void Leave() {
        QDragLeaveEvent Event;
        if (Window) QCoreApplication::sendEvent(Window, &Event);
    }
    int Over(QPoint Pos) { return Enter(Pos), Move(Pos); }
    // Over a point and dropped there.
    int Drop(QPoint Pos) {
        if (Over(Pos) != 0) return Release(Pos);
        Leave();
        return 0;
    }

    QMimeData Data;
    Qt::KeyboardModifiers Modifiers;
    Qt::DropActions Actions = Qt::CopyAction | Qt::MoveAction;
    QPointer<QWidget> Window;
    const QMimeData* Given;
    bool Accepted = false; // the last event

private:
    template <class TEvent>
    int Send(QPoint Pos) {
        TEvent Event(Pos, Actions, Given, Qt::LeftButton, Modifiers);
        Event.setAccepted(false);
        if (Window) QCoreApplication::sendEvent(Window, &Event);
        Accepted = Event.isAccepted();
        return Accepted ? static_cast<int>(Event.dropAction()) : 0;
    }
};

} // namespace quill::testing
