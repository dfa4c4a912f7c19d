// What the contenders on Qt share: paint events, the event loop and synthetic input.
#pragma once

#include "bench/Contender.h"

#include <QAbstractScrollArea>
#include <QObject>

namespace quill::bench {

// Counts the paint events that Qt delivers to one widget.
class TPaintCounter : public QObject {
public:
    bool eventFilter(QObject* Watched, QEvent* Event) override;
    long Count = 0;
};

class TQtContender : public TContender {
public:
    void Show() override;
    long GetPaintCount() const override { return FPaints.Count; }
    void Press(TKey Key) override;
    void Type(char Letter) override;
    void Click(TSpot Spot) override;
    void MoveMouse(TSpot Spot) override;
    void TurnWheel() override;

protected:
    // Shows the control, which is a window of its own, with the keyboard focus.
    void OpenWindow();
    virtual QAbstractScrollArea& GetArea() = 0;

private:
    QPoint InWindow(TSpot Spot);
    TPaintCounter FPaints;
};

} // namespace quill::bench
