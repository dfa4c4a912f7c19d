#include "host/windows/Application.h"

#include "host/windows/Controls.h"
#include "host/windows/PaintScheduler.h"

#include <QApplication>
#include <QCursor>
#include <QTimer>

#include <algorithm>
#include <chrono>

namespace quill {

TApplication Application;
TMouse Mouse;

void TApplication::ProcessMessages() {
    if (!QCoreApplication::instance()) return;
    TPaintScheduler::Get().Paint(nullptr);
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void MessageBeep(unsigned) {
    if (qApp) QApplication::beep();
}

std::uint32_t GetTickCount() {
    const auto Now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(Now).count());
}

int TMouse::GetDragThreshold() const {
    // Without an application there is no mouse; the value is the toolkit's default.
    return qApp ? QApplication::startDragDistance() : 10;
}

TPoint TMouse::GetCursorPos() const {
    const QPoint Pos = QCursor::pos();
    return {Pos.x(), Pos.y()};
}

// --- timer --------------------------------------------------------------------------------------------------------

struct TTimer::TImpl {
    QTimer Timer;
};

TTimer::TTimer(TComponent* AOwner) : TComponent(AOwner), FImpl(std::make_unique<TImpl>()) {
    QObject::connect(&FImpl->Timer, &QTimer::timeout, [this] { FireEvent(FOnTimer, this); });
}

TTimer::~TTimer() { Destroying(); }

void TTimer::SetEnabled(bool Value) {
    if (FEnabled == Value) return;
    FEnabled = Value;
    UpdateTimer();
}

void TTimer::SetInterval(int Value) {
    Value = std::max(Value, 0);
    if (FInterval == Value) return;
    FInterval = Value;
    UpdateTimer();
}

void TTimer::SetOnTimer(TNotifyEvent Value) {
    FOnTimer = std::move(Value);
    UpdateTimer();
}

void TTimer::UpdateTimer() {
    // Without a handler nobody would notice; an interval of 0 rests.
    if (FEnabled && FInterval > 0 && FOnTimer)
        FImpl->Timer.start(FInterval);
    else
        FImpl->Timer.stop();
}

} // namespace quill
