// Tells controls when the focus comes into them and leaves them. For the sources of the controls only.
#pragma once

#include <QObject>

#include <functional>
#include <vector>

class QWidget;

namespace quill {

class TCustomControl;

// A control has the focus inside while the focus widget of its window is the control itself or a child of it; that
// another window is active for a while changes nothing. So an editor inside a grid does not make the grid exit.
class TFocusTracker : public QObject {
public:
    static TFocusTracker& Get();

    // Starts to tell Control: Changed is called with true when the focus has come into it (Qt is still at work then:
    // handlers have to wait), with false when it has left.
    static void Add(TCustomControl* Control, std::function<void(bool Inside)> Changed);
    static void Remove(TCustomControl* Control);
    // Whether the focus is inside Control, in this sense.
    static bool IsInside(const TCustomControl* Control);

private:
    explicit TFocusTracker(QObject* Parent);
    void FocusChanged(const QWidget* Now);

    struct TEntry {
        TCustomControl* Control;
        std::function<void(bool)> Changed;
        bool Inside;
    };
    std::vector<TEntry> FEntries;
};

} // namespace quill
