// Handlers for tests of what a handler may do to its caller.
#pragma once

#include <functional>

namespace quill::testing {

// Fits every event without a result.
struct TAnyHandler {
    std::function<void()> Run;
    template <class... TArgs>
    void operator()(TArgs&&...) const {
        // The handler's own place may go while it runs.
        const std::function<void()> Copy = Run;
        Copy();
    }
};

} // namespace quill::testing
