#include "host/windows/FocusTracker.h"

#include "host/windows/Controls.h"

#include <QApplication>
#include <QPointer>

#include <algorithm>

namespace quill {

namespace {
QPointer<TFocusTracker> Tracker;
} // namespace

TFocusTracker::TFocusTracker(QObject* Parent) : QObject(Parent) {
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* Now) { FocusChanged(Now); });
}

TFocusTracker& TFocusTracker::Get() {
    if (!Tracker) Tracker = new TFocusTracker(qApp);
    return *Tracker;
}

void TFocusTracker::Add(TCustomControl* Control, std::function<void(bool)> Changed) {
    Get().FEntries.push_back({Control, std::move(Changed), false});
}

void TFocusTracker::Remove(TCustomControl* Control) {
    if (Tracker)
        std::erase_if(Tracker->FEntries, [Control](const TEntry& E) { return E.Control == Control; });
}

bool TFocusTracker::IsInside(const TCustomControl* Control) {
    const QWidget* Focus = Control->window()->focusWidget();
    return Focus && (Focus == Control || Control->isAncestorOf(Focus));
}

void TFocusTracker::FocusChanged(const QWidget* Now) {
    // A handler may destroy any control, so each exit looks at the list afresh; inner controls exit first.
    for (;;) {
        auto Found = FEntries.end();
        for (auto I = FEntries.begin(); I != FEntries.end(); ++I)
            if (I->Inside && !IsInside(I->Control) &&
                (Found == FEntries.end() || Found->Control->isAncestorOf(I->Control)))
                Found = I;
        if (Found == FEntries.end()) break;
        Found->Inside = false;
        const QPointer<QObject> Self(this);
        const auto Changed = Found->Changed;
        Changed(false);
        if (!Self) return;
    }
    if (!Now) return;
    for (TEntry& Entry : FEntries) {
        if (Entry.Inside || (Entry.Control != Now && !Entry.Control->isAncestorOf(Now))) continue;
        Entry.Inside = true;
        Entry.Changed(true);
    }
}

} // namespace quill
