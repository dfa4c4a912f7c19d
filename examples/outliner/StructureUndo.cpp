#include "StructureUndo.h"

#include "OutlineTree.h"

#include "../common/OutlineFile.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

namespace quill::examples {

namespace {

// A node to go on with when those at Place are gone: the one that took the place, one before it, or the parent.
TFlyNode* Neighbour(const TNodePlace& Place, TFlyNodes& Nodes) {
    TTreeCollection& Siblings = Place.Parent ? static_cast<TTreeCollection&>(*Place.Parent) : Nodes;
    if (Siblings.GetCount() == 0) return Place.Parent;
    TFlyNode* const Nearest =
        TFlyNode::AsNode(Siblings.GetItem(std::min(Place.Index, Siblings.GetCount() - 1)));
    for (TFlyNode* Node = Nearest; Node; Node = Node->GetNextSibling()) {
        if (!Node->GetHidden()) return Node;
    }
    for (TFlyNode* Node = Nearest; Node; Node = Node->getPrevSibling()) {
        if (!Node->GetHidden()) return Node;
    }
    return Place.Parent;
}

} // namespace

// --- content -------------------------------------------------------------------------------------------------------

TContentStep::TContentStep(std::vector<TFlyNode*> Present, int Columns)
    : FPresent(std::move(Present)), FColumns(Columns) {}

std::vector<TFlyNode*> TContentStep::Revert(TOutlineTree& Tree) {
    const int Columns = Tree.GetColCount();
    std::vector<TFlyNode*> Shown = FPresent.empty() ? PutBack(Tree) : TakeOut(Tree);
    Tree.SetColumns(std::exchange(FColumns, Columns));
    return Shown;
}

std::vector<TFlyNode*> TContentStep::TakeOut(TOutlineTree& Tree) {
    TSubtrees Subtrees;
    for (TFlyNode* Node : FPresent) {
        Subtrees.Add(*Node);
        FPlaces.push_back(PlaceOf(*Node));
    }
    FNodesText = Subtrees.NodesText(DefaultOptions() + TSaveNodesOptions{tsnIncludeUniqueTags});
    DeleteNodes(FPresent, *Tree.GetItems());
    FPresent.clear();
    TFlyNode* Next = Neighbour(FPlaces.front(), *Tree.GetItems());
    return Next ? std::vector{Next} : std::vector<TFlyNode*>();
}

std::vector<TFlyNode*> TContentStep::PutBack(TOutlineTree& Tree) {
    FPresent = TSubtrees(FNodesText).PutInto(*Tree.GetItems(), FPlaces, true);
    FPlaces.clear();
    FNodesText.clear();
    return FPresent;
}

// --- places --------------------------------------------------------------------------------------------------------

void TMoveStep::Move(TFlyNode& Node, const TNodePlace& Place, TFlyNodes& Nodes) {
    FMoved.push_back({&Node, PlaceOf(Node)});
    MoveToPlace(Node, Place, Nodes);
}

std::vector<TFlyNode*> TMoveStep::Revert(TOutlineTree& Tree) {
    std::optional<TUpdateBracket> Bracket;
    OpenFor(FMoved.size(), *Tree.GetItems(), Bracket);
    std::reverse(FMoved.begin(), FMoved.end());
    std::vector<TFlyNode*> Nodes;
    for (TMoved& Moved : FMoved) {
        const TNodePlace To = std::exchange(Moved.From, PlaceOf(*Moved.Node));
        MoveToPlace(*Moved.Node, To, *Tree.GetItems());
        Nodes.push_back(Moved.Node);
    }
    return Nodes;
}

// --- order ---------------------------------------------------------------------------------------------------------

TOrderStep::TOrderStep(TOutlineTree& Tree)
    : FSortColumn(Tree.GetSortColumn()), FSortDirection(Tree.GetSortDirection()) {
    for (TFlyNode* Node = Tree.GetItems()->GetFirstNode(); Node; Node = Node->GetNext()) {
        FOrder.push_back(Node);
    }
}

std::vector<TFlyNode*> TOrderStep::Revert(TOutlineTree& Tree) {
    TFlyNode* const Current = Tree.GetSelection();
    TOrderStep Now(Tree);
    std::unordered_map<const TTreeCollection*, int> Ranks;
    for (const TFlyNode* Node : FOrder) Ranks.emplace(Node, static_cast<int>(Ranks.size()));
    const TTreeCompare ByRank = [&Ranks](TTreeCollection* Item1, TTreeCollection* Item2) {
        return Ranks[Item1] - Ranks[Item2];
    };
    {
        const TUpdateBracket Bracket(Tree.GetItems());
        Tree.GetItems()->CustomSort(ByRank, true);
        for (TFlyNode* Node : FOrder) Node->CustomSort(ByRank, true);
    }
    Tree.SetSortColumn(FSortColumn);
    Tree.SetSortDirection(static_cast<TSortDirection>(FSortDirection));
    *this = std::move(Now);
    return Current ? std::vector{Current} : std::vector<TFlyNode*>();
}

// --- replacement ---------------------------------------------------------------------------------------------------

namespace {

std::string AllNodes(TOutlineTree& Tree) {
    return OutlineText(*Tree.GetItems(), DefaultOptions() + TSaveNodesOptions{tsnIncludeUniqueTags});
}

} // namespace

TReplaceStep::TReplaceStep(TOutlineTree& Tree) : FNodesText(AllNodes(Tree)), FColumns(Tree.GetColCount()) {}

bool TReplaceStep::IsNeeded(TOutlineTree& Tree) const { return FNodesText != AllNodes(Tree); }

std::vector<TFlyNode*> TReplaceStep::Revert(TOutlineTree& Tree) {
    const TReplaceStep Now(Tree);
    TFlyNodes& Nodes = *Tree.GetItems();
    TOutline Other;
    Other.Bytes = std::make_unique<TMemoryStream>(FNodesText);
    LoadOutline(Other, Nodes);
    Tree.SetColumns(FColumns);
    *this = Now;
    TFlyNode* const First = Nodes.GetFirstNode();
    return First ? std::vector{First} : std::vector<TFlyNode*>();
}

// --- the last step -------------------------------------------------------------------------------------------------

void TStructureUndo::Remember(const QString& Name, std::unique_ptr<TStructureStep> Step) {
    FName = Name;
    FStep = std::move(Step);
    FReverted = false;
}

void TStructureUndo::Forget() {
    FName.clear();
    FStep.reset();
    FReverted = false;
}

std::vector<TFlyNode*> TStructureUndo::Revert(TOutlineTree& Tree) {
    if (!FStep) return {};
    FReverted = !FReverted;
    return FStep->Revert(Tree);
}

} // namespace quill::examples
