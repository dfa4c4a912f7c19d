// The window in which hints are shown.
#pragma once

#include "host/windows/Controls.h"

#include <span>
#include <string>

namespace quill {

// A window of its own above all others, with a frame of one pixel, that takes neither the focus nor the mouse. It is
// measured and shown in two steps:
//
//   TRect Rect = Hint.CalcHintRect(THintWindow::MaxHintWidth(Screen point), Text, nullptr);
//   Rect.Offset(Screen point);
//   Hint.ActivateHint(Rect, Text);
//
// One that is owned by a control goes with it, has its palette and direction, and hides when the control is hidden or
// its window loses the focus. One without an owner is shown until it is hidden. Its own font is the platform's for
// tooltips.
class THintWindow : public TCustomControl {
    Q_OBJECT

public:
    explicit THintWindow(TComponent* AOwner = nullptr);
    ~THintWindow() override;

    // The client area that AHint needs, at (0, 0). Lines are broken where they would be wider than MaxWidth pixels; a
    // word that is wider itself is not. AData is for descendants.
    virtual TRect CalcHintRect(int MaxWidth, const std::string& AHint, void* AData);
    // Shows AHint with its client area at Rect, in screen coordinates, moved so far that all of the window is on one
    // screen: the one on which its text begins. What is larger than the screen is cut.
    virtual void ActivateHint(const TRect& Rect, const std::string& AHint);
    // Whether the hint is on the screen (and so has a handle).
    bool IsHintVisible() const { return HandleAllocated() && isVisible(); }
    void HideHint();
    // Hides the hint and gives its window back to the system. Showing it again makes a new one.
    void ReleaseHandle();

    const std::string& GetCaption() const { return FCaption; }
    void SetCaption(const std::string& Value);

    // A width for CalcHintRect at which long texts are still easily read: three fifths of the screen that holds the
    // point, in pixels.
    static int MaxHintWidth(TPoint ScreenPos);
    // Window moved onto one of the Screens: the one that holds its first corner (at the top right when RightToLeft),
    // or else shows most of it, or else is nearest. A window that is too large shows where it begins.
    static TRect KeepOnScreen(const TRect& Window, std::span<const TRect> Screens, bool RightToLeft);

    void CreateParams(TCreateParams& Params) override;
    // The caption in clInfoText, broken into lines.
    void Paint() override;

    bool eventFilter(QObject* Watched, QEvent* Event) override;

protected:
    // Takes over the owner's direction, and its screen while hidden; to be called before anything is measured.
    void FollowOwner();

private:
    unsigned TextFlags() const;

    std::string FCaption;
};

} // namespace quill
