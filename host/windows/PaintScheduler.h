// Paints invalid controls before their window is put on the screen. For the sources of the controls only.
#pragma once

#include <QObject>
#include <QPointer>

#include <vector>

class QWidget;

namespace quill {

class TCustomControl;

// Qt paints a widget in the middle of its own work on the window, where a handler could not destroy the control.
// So the surfaces are painted one step earlier, when the window is told that it has to update; Qt's own paint
// events then only copy. All invalid controls of a window are painted in one go, each once per turn.
class TPaintScheduler : public QObject {
public:
    static TPaintScheduler& Get();

    // Window's updates are announced to us from now on.
    void Watch(QWidget* Window);
    // Control has something to paint, or nothing any more.
    static void Add(TCustomControl* Control);
    static void Remove(TCustomControl* Control);
    // Paints what waits in Window (null: in all windows) and is visible.
    void Paint(const QWidget* Window);

    // While one exists, windows are put on the screen as they are.
    class TPause {
    public:
        TPause() { ++Get().FPaused; }
        ~TPause() { Get().EndPause(); }
        TPause(const TPause&) = delete;
        TPause& operator=(const TPause&) = delete;
    };

    bool eventFilter(QObject* Watched, QEvent* Event) override;

private:
    using QObject::QObject;
    void EndPause();

    std::vector<TCustomControl*> FWaiting;
    int FPaused = 0;
};

} // namespace quill
