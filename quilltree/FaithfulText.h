// The nodes text (quilltree/NodesText.h) where it is as good as the collection's own format.
#pragma once

#include <optional>
#include <string>

namespace quill {

class TFlyNodes;

// The nodes text with all fields, or nothing when reading it would give other nodes: when a text has line breaks, or lies
// in a structure column behind a node's last cell, for example. Costs as much as saving and loading.
std::optional<std::string> FaithfulNodesText(TFlyNodes& Nodes);

} // namespace quill
