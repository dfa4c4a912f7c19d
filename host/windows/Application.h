// The running program as the controls see it: pending messages, time, mouse settings, timers.
#pragma once

#include "host/base/Objects.h"

#include <cstdint>
#include <memory>

namespace quill {

class TApplication {
public:
    // Paints what is pending and delivers waiting events, user input excepted (so that no click or key arrives in
    // the middle of an operation). Does nothing before the toolkit runs.
    void ProcessMessages();
};
extern TApplication Application;

// Milliseconds of a monotonic clock; wraps after 49.7 days.
std::uint32_t GetTickCount();

struct TMouse {
    // Distance in pixels from which a press with motion is a drag.
    int GetDragThreshold() const;
    // Screen position.
    TPoint GetCursorPos() const;
};
extern TMouse Mouse;

// The platform's warning sound. There is one kind, whatever Type says.
void MessageBeep(unsigned Type);

// Calls OnTimer every Interval milliseconds while enabled. An interval of 0 rests; every change starts it afresh.
class TTimer : public TComponent {
public:
    explicit TTimer(TComponent* AOwner = nullptr);
    ~TTimer() override;
    bool GetEnabled() const { return FEnabled; }
    void SetEnabled(bool Value);
    int GetInterval() const { return FInterval; }
    void SetInterval(int Value);
    const TNotifyEvent& GetOnTimer() const { return FOnTimer; }
    void SetOnTimer(TNotifyEvent Value);

private:
    void UpdateTimer();
    struct TImpl;
    std::unique_ptr<TImpl> FImpl;
    bool FEnabled = true;
    int FInterval = 1000;
    TNotifyEvent FOnTimer;
};

} // namespace quill
