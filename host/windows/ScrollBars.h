// The scroll bar widgets of controls. For the sources of the controls only.
#pragma once

#include "host/graphics/Graphics.h"
#include "host/windows/Controls.h"

#include <QScrollBar>

namespace quill {

// A bar that leaves the wheel to its control: a notch scrolls by what the control takes for a line. It looks as the
// platform's bars do, or is drawn flat.
class TControlScrollBar : public QScrollBar {
public:
    using QScrollBar::QScrollBar;

    // Background is the colour under thumb and arrows of the flat looks; all their shades are made from it.
    void SetLook(TScrollBarLook Look, TColor Background);
    TScrollBarLook GetLook() const { return FLook; }
    TColor GetBackground() const { return FBackground; }

protected:
    void wheelEvent(QWheelEvent* Event) override;

private:
    TScrollBarLook FLook = sblRegular;
    TColor FBackground = clWhite;
};

} // namespace quill
