// The scroll bar widgets of controls. For the sources of the controls only.
#pragma once

#include <QScrollBar>

namespace quill {

// A bar that leaves the wheel to its control: a notch scrolls by what the control takes for a line.
class TControlScrollBar : public QScrollBar {
public:
    using QScrollBar::QScrollBar;

protected:
    void wheelEvent(QWheelEvent* Event) override;
};

// The one place where the bars of controls are made.
QScrollBar* CreateScrollBar(Qt::Orientation Orientation);

} // namespace quill
