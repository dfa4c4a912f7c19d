// A member of a control that has another value for a stretch of code.
#pragma once

#include "host/windows/Controls.h"

#include <type_traits>
#include <utility>

namespace quill {

// Sets Variable and puts it back at the end, also after an exception; harmless when the control goes meanwhile.
template <class T>
class TValueScope {
public:
    TValueScope(const TCustomControl* Control, T& Variable, std::type_identity_t<T> Value)
        : FGuard(Control), FVariable(Variable), FOld(std::exchange(Variable, Value)) {}
    ~TValueScope() {
        if (FGuard) FVariable = FOld;
    }
    TValueScope(const TValueScope&) = delete;
    TValueScope& operator=(const TValueScope&) = delete;

private:
    TControlGuard FGuard;
    T& FVariable;
    T FOld;
};

class TFlagScope : public TValueScope<bool> {
public:
    TFlagScope(const TCustomControl* Control, bool& Flag) : TValueScope(Control, Flag, true) {}
};

} // namespace quill
