// Inside the node model: the fields that few nodes have.
#pragma once

#include "host/base/Strings.h"
#include "quilltree/FlyNode.h"

#include <memory>

namespace quill {

struct TFlyNode::TNodeExtras : TTreeCollection::TExtras {
    int OverlayIndex = 0;
    std::shared_ptr<INodeAdapter> Adapter;
    // The cells, once somebody asked for the list object (FlagListCells).
    std::unique_ptr<TStringList> Cells;
};

} // namespace quill
