#include "OpenBranches.h"

#include <utility>
#include <vector>

namespace quill::examples {

namespace {

// Calls Work with each node, in document order, and a hash of its text and those of its ancestors.
void ForEachPath(TFlyNodes& Nodes, const std::function<void(TFlyNode& Node, std::size_t Path)>& Work) {
    std::vector<std::pair<const TFlyNode*, std::size_t>> Above;
    for (TFlyNode* Node = Nodes.GetFirstNode(); Node; Node = Node->GetNext()) {
        while (!Above.empty() && Above.back().first != Node->GetParent()) Above.pop_back();
        const std::size_t Parent = Above.empty() ? 0 : Above.back().second;
        const std::size_t Path = Parent * 31 + std::hash<std::string>()(Node->GetText()) + 1;
        if (Node->GetCount() > 0) Above.emplace_back(Node, Path);
        Work(*Node, Path);
    }
}

} // namespace

TOpenBranches::TOpenBranches(TFlyNodes& Nodes) {
    ForEachPath(Nodes, [this](TFlyNode& Node, std::size_t Path) {
        if (Node.GetExpanded()) FPaths.insert(Path);
    });
}

void TOpenBranches::Restore(TFlyNodes& Nodes) const {
    const TUpdateBracket Bracket(&Nodes);
    ForEachPath(Nodes, [this](TFlyNode& Node, std::size_t Path) {
        // Expanding the node would open the branches that it is in.
        if (FPaths.count(Path) > 0) Node.SetExpandedField(true);
    });
}

} // namespace quill::examples
