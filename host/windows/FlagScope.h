// A flag of a control that is set for a stretch of code.
#pragma once

#include "host/windows/Controls.h"

#include <utility>

namespace quill {

// Sets Flag and puts it back at the end, also after an exception; harmless when the control goes meanwhile.
class TFlagScope {
public:
    TFlagScope(const TCustomControl* Control, bool& Flag)
        : FGuard(Control), FFlag(Flag), FOld(std::exchange(Flag, true)) {}
    ~TFlagScope() {
        if (FGuard) FFlag = FOld;
    }
    TFlagScope(const TFlagScope&) = delete;
    TFlagScope& operator=(const TFlagScope&) = delete;

private:
    TControlGuard FGuard;
    bool& FFlag;
    bool FOld;
};

} // namespace quill
