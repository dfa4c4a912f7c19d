// Parts of an outline on their own: what travels over the clipboard, and what comes back when a deletion is undone.
#pragma once

#include "quilltree/HeadlessHost.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quill {
class TCustomQuillTree;
}

namespace quill::examples {

// Where a node stands: child Index of Parent (null: of the top level).
struct TNodePlace {
    TFlyNode* Parent = nullptr;
    int Index = 0;
    bool operator==(const TNodePlace&) const = default;
};
TNodePlace PlaceOf(const TFlyNode& Node);
// The node that stands there, null for none; the place behind all children of a node (null: of the top level).
TFlyNode* NodeAt(const TNodePlace& Place, TFlyNodes& Nodes);
TNodePlace PlaceBehindLast(TFlyNode* Parent, TFlyNodes& Nodes);
// An update bracket around many changes, nothing around a few: these cost less than listing all rows anew.
void OpenFor(std::size_t Changes, TFlyNodes& Nodes, std::optional<TUpdateBracket>& Bracket);

// The selected nodes in display order, without those below another selected one.
std::vector<TFlyNode*> SelectedRoots(TCustomQuillTree& Tree);
// Moves a node to where it is child Index of Parent afterwards.
void MoveToPlace(TFlyNode& Node, const TNodePlace& Place, TFlyNodes& Nodes);
// Destroys nodes with all that is below them.
void DeleteNodes(std::span<TFlyNode* const> Roots, TFlyNodes& Nodes);

// Subtrees of an outline, copied away from it. Everything that a nodes file can hold is copied.
class TSubtrees {
public:
    TSubtrees();
    // Reads nodes text. Raises Exception, with the line in its text, when it is malformed.
    explicit TSubtrees(const std::string& NodesText);

    // Appends a copy of Root with all that is below it.
    void Add(TFlyNode& Root);
    std::string NodesText(TSaveNodesOptions Options);
    TFlyNodes& GetNodes() { return *FHost.GetItems(); }

    // Copies the subtrees into an outline: the k-th to Places[k], where the places before it are filled already.
    // Returns the new nodes. Without KeepTags they are numbered as new ones.
    std::vector<TFlyNode*> PutInto(TFlyNodes& Nodes, std::span<const TNodePlace> Places, bool KeepTags);

private:
    THeadlessHost FHost;
};

} // namespace quill::examples
