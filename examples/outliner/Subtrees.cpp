#include "Subtrees.h"

#include "host/base/Streams.h"
#include "quilltree/QuillTree.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace quill::examples {

namespace {

// From so many changes on, listing all rows anew once is cheaper than patching them with each.
constexpr std::size_t ManyChanges = 32;

TTreeCollection& ChildrenOf(TFlyNode* Parent, TFlyNodes& Nodes) {
    return Parent ? static_cast<TTreeCollection&>(*Parent) : Nodes;
}

TFlyNode* MakeNodeAt(const TNodePlace& Place, TFlyNodes& Nodes) {
    if (TFlyNode* Next = NodeAt(Place, Nodes)) return Nodes.Insert(Next, {});
    return Place.Parent ? Nodes.AddChild(Place.Parent, {}) : Nodes.Add(nullptr, {});
}

// A node without children is not open, so that it looks and is saved like any other.
void CloseIfEmpty(TFlyNode* Node) {
    if (!Node || Node->GetCount() > 0) return;
    Node->SetExpandedField(false);
    Node->SetChildren(false);
}

class TCopier {
public:
    TCopier(TFlyNodes& Target, bool WithTags) : FTarget(Target), FWithTags(WithTags) {}

    // Makes Copy, a node without children, like Root. Not recursive: outlines may be deep.
    void CopySubtree(TFlyNode& Root, TFlyNode& RootCopy) {
        TFlyNode* Node = &Root;
        TFlyNode* Copy = &RootCopy;
        for (;;) {
            CopyFields(*Node, *Copy);
            if (TFlyNode* Child = Node->getFirstChild()) {
                Node = Child;
                Copy = FTarget.CreateNode(Copy);
                continue;
            }
            TFlyNode* Next = nullptr;
            while (Node != &Root && !(Next = Node->GetNextSibling())) {
                Node = Node->GetParent();
                Copy = Copy->GetParent();
            }
            if (!Next) break;
            Node = Next;
            Copy = FTarget.CreateNode(Copy->GetParent());
        }
        // Whether all children of a node are hidden can be told only when they are there.
        for (TFlyNode* Hidden : FHidden) Hidden->SetHidden(true);
        FHidden.clear();
    }

private:
    void CopyFields(TFlyNode& From, TFlyNode& To) {
        FCells.clear();
        const std::string_view Text = From.GetAllTexts(FCells);
        To.StoreTexts(Text, FCells, !FCells.empty());
        To.SetImageIndexField(From.GetImageIndex());
        To.SetSelectedIndexField(From.GetSelectedIndex());
        To.SetStateIndexField(From.GetStateIndex());
        To.SetExpandedField(From.GetExpanded());
        if (From.GetHidden()) FHidden.push_back(&To);
        if (FWithTags) To.SetUniqueTagField(From.GetUniqueTagField());
    }

    TFlyNodes& FTarget;
    bool FWithTags;
    std::vector<std::string_view> FCells;
    std::vector<TFlyNode*> FHidden;
};

} // namespace

TNodePlace PlaceOf(const TFlyNode& Node) { return {Node.GetParent(), Node.GetIndex()}; }

TFlyNode* NodeAt(const TNodePlace& Place, TFlyNodes& Nodes) {
    TTreeCollection& Children = ChildrenOf(Place.Parent, Nodes);
    return Place.Index < Children.GetCount() ? TFlyNode::AsNode(Children.GetItem(Place.Index)) : nullptr;
}

TNodePlace PlaceBehindLast(TFlyNode* Parent, TFlyNodes& Nodes) {
    return {Parent, ChildrenOf(Parent, Nodes).GetCount()};
}

void OpenFor(std::size_t Changes, TFlyNodes& Nodes, std::optional<TUpdateBracket>& Bracket) {
    if (Changes >= ManyChanges) Bracket.emplace(&Nodes);
}

std::vector<TFlyNode*> SelectedRoots(TCustomQuillTree& Tree) {
    std::vector<TFlyNode*> Selected;
    Tree.FillSelectedList(Selected);
    // Whether a node or one above it is selected. Each node is asked once, so that deep outlines cost no more.
    std::unordered_map<const TFlyNode*, bool> Known;
    std::vector<const TFlyNode*> Path;
    std::vector<TFlyNode*> Roots;
    for (TFlyNode* Node : Selected) {
        Path.clear();
        const TFlyNode* Above = Node->GetParent();
        while (Above && Known.count(Above) == 0) {
            Path.push_back(Above);
            Above = Above->GetParent();
        }
        bool Covered = Above && Known[Above];
        for (auto Step = Path.rbegin(); Step != Path.rend(); ++Step) {
            Covered = Covered || (*Step)->GetSelected();
            Known[*Step] = Covered;
        }
        if (!Covered) Roots.push_back(Node);
    }
    return Roots;
}

void MoveToPlace(TFlyNode& Node, const TNodePlace& Place, TFlyNodes& Nodes) {
    TFlyNode* const OldParent = Node.GetParent();
    if (Node.GetParent() == Place.Parent) {
        Node.SetIndex(std::min(Place.Index, ChildrenOf(Place.Parent, Nodes).GetCount() - 1));
    } else if (TFlyNode* Next = NodeAt(Place, Nodes)) {
        Node.MoveTo(Next, naInsert);
    } else {
        Node.MoveTo(Place.Parent, Place.Parent ? naAddChild : naAdd);
    }
    CloseIfEmpty(OldParent);
}

void DeleteNodes(std::span<TFlyNode* const> Roots, TFlyNodes& Nodes) {
    std::optional<TUpdateBracket> Bracket;
    OpenFor(Roots.size(), Nodes, Bracket);
    for (TFlyNode* Root : Roots) {
        TFlyNode* const Parent = Root->GetParent();
        Nodes.Delete(Root);
        CloseIfEmpty(Parent);
    }
}

TSubtrees::TSubtrees() {
    // A node for which the text names no picture or state has none.
    GetNodes().SetDefaultImageIndex(-1);
    GetNodes().SetDefaultSelectedIndex(-1);
    GetNodes().SetDefaultStateIndex(-1);
    // Only nodes that are numbered are saved with their tags.
    FHost.SetEnumerateNodes(true);
}

TSubtrees::TSubtrees(const std::string& NodesText) : TSubtrees() {
    TMemoryStream Stream(NodesText);
    GetNodes().LoadNodesFromStream(Stream);
}

void TSubtrees::Add(TFlyNode& Root) {
    TCopier(GetNodes(), true).CopySubtree(Root, *GetNodes().CreateNode(&GetNodes()));
}

std::string TSubtrees::NodesText(TSaveNodesOptions Options) {
    TMemoryStream Stream;
    GetNodes().SaveNodesToStream(Stream, Options);
    return Stream.GetMemory();
}

std::vector<TFlyNode*> TSubtrees::PutInto(TFlyNodes& Nodes, std::span<const TNodePlace> Places,
                                          bool KeepTags) {
    std::optional<TUpdateBracket> Bracket;
    OpenFor(Places.size(), Nodes, Bracket);
    TCopier Copier(Nodes, KeepTags);
    std::vector<TFlyNode*> Roots;
    TFlyNode* Root = GetNodes().GetFirstNode();
    for (std::size_t Index = 0; Root && Index < Places.size(); ++Index, Root = Root->GetNextSibling()) {
        Roots.push_back(MakeNodeAt(Places[Index], Nodes));
        Copier.CopySubtree(*Root, *Roots.back());
    }
    return Roots;
}

} // namespace quill::examples
