#include "host/windows/PaintScheduler.h"

#include "host/windows/Controls.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace quill {

namespace {

// Lives as long as the application object: controls exist only with one.
QPointer<TPaintScheduler> Scheduler;

} // namespace

TPaintScheduler& TPaintScheduler::Get() {
    if (!Scheduler) Scheduler = new TPaintScheduler(QCoreApplication::instance());
    return *Scheduler;
}

void TPaintScheduler::Watch(QWidget* Window) {
    // Installing a filter again only moves it to the front.
    Window->installEventFilter(this);
    if (Window->windowHandle()) Window->windowHandle()->installEventFilter(this);
}

void TPaintScheduler::Add(TCustomControl* Control) {
    auto& Waiting = Get().FWaiting;
    if (std::find(Waiting.begin(), Waiting.end(), Control) == Waiting.end()) Waiting.push_back(Control);
}

void TPaintScheduler::Remove(TCustomControl* Control) {
    if (Scheduler) std::erase(Scheduler->FWaiting, Control);
}

void TPaintScheduler::Paint(const QWidget* Window) {
    // Paint may destroy any control and make others invalid; those made invalid on the way wait for the next turn.
    const std::vector<TCustomControl*> Round = FWaiting;
    const QPointer<TPaintScheduler> Self(this);
    for (TCustomControl* Control : Round) {
        if (std::find(FWaiting.begin(), FWaiting.end(), Control) == FWaiting.end()) continue;
        if (!Control->isVisible() || (Window && Control->window() != Window)) continue;
        Control->Update();
        if (!Self) return;
    }
}

void TPaintScheduler::EndPause() {
    if (--FPaused > 0) return;
    // What was put on the screen unpainted has to be put there again.
    for (const TCustomControl* Control : FWaiting) {
        const TRect R = Control->GetInvalidBounds();
        if (Control->isVisible()) Control->viewport()->update(R.Left, R.Top, R.Width(), R.Height());
    }
}

bool TPaintScheduler::eventFilter(QObject* Watched, QEvent* Event) {
    const bool Update = Event->type() == QEvent::UpdateRequest;
    if (FPaused > 0 || FWaiting.empty() || (!Update && Event->type() != QEvent::Expose)) return false;
    const QPointer<QObject> Alive(Watched);
    // An exposed window is a QWindow, which does not tell its widget.
    Paint(Update ? qobject_cast<QWidget*>(Watched) : nullptr);
    return !Alive;
}

} // namespace quill
