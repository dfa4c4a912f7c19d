// Which branches of an outline are open, when other nodes come in their place.
#pragma once

#include "quilltree/FlyNodes.h"

#include <cstddef>
#include <functional>
#include <unordered_set>

namespace quill::examples {

// Remembers the open branches by the texts on the way to them, since the nodes themselves go. Linear in the nodes.
class TOpenBranches {
public:
    explicit TOpenBranches(TFlyNodes& Nodes);
    // Opens those that are there under the same texts.
    void Restore(TFlyNodes& Nodes) const;

private:
    std::unordered_set<std::size_t> FPaths;
};

} // namespace quill::examples
