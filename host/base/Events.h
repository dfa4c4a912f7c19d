// Calling event handlers.
#pragma once

#include <utility>

namespace quill {

// Calls Handler if it is assigned. The handler is copied first: it may assign the event anew or destroy the object
// that holds it, and must not destroy the function it is running in.
template <class THandler, class... TArgs>
void FireEvent(const THandler& Handler, TArgs&&... Args) {
    if (!Handler) return;
    const THandler Copy = Handler;
    Copy(std::forward<TArgs>(Args)...);
}

} // namespace quill
