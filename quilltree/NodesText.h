// The nodes text format: one line per node, depth as leading tabs, fields as comma text.
#pragma once

#include "host/base/Types.h"

namespace quill {

// What a saved line holds besides the text, in this order; bit k of the mask in the header is the k-th value.
enum TSaveNodesOption {
    tsnIncludeImageIndex,
    tsnIncludeSelectedIndex,
    tsnIncludeStateIndex,
    tsnIncludeCells,
    tsnIncludeExpands,
    tsnIncludeHiddens,
    tsnIncludeUniqueTags
};
using TSaveNodesOptions = TSet<TSaveNodesOption>;

} // namespace quill
