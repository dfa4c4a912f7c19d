// Moving, sorting, copying and deleting below a node.
#include "quilltree/FlyNode.h"

#include "host/base/Collation.h"
#include "host/base/Errors.h"
#include "host/base/Texts.h"
#include "quilltree/FlyNodeExtras.h"
#include "quilltree/FlyNodes.h"

#include <algorithm>
#include <vector>

namespace quill {

// The comparison of every sort: the application's, or the texts in the locale's order.
int TFlyNode::CompareNodes(TTreeCollection* Item1, TTreeCollection* Item2) {
    auto* const Node1 = static_cast<TFlyNode*>(Item1);
    auto* const Node2 = static_cast<TFlyNode*>(Item2);
    INodeHost* const Host = Node1->GetHost();
    if (Host && Host->HasCompare()) return Host->Compare(Node1, Node2);
    return CompareTextLocale(Node1->GetText(), Node2->GetText());
}

void TFlyNode::SortItems(TTreeCollection* Collection, const INodeHost* Host, bool ByComparison) {
    if (!ByComparison) {
        Collection->CustomSort(nullptr, true);
    } else if (Host && Host->HasCompare()) {
        Collection->CustomSort(CompareNodes, true);
    } else {
        // The same order as by the comparison, with one key for each text.
        Collection->SortByText(TTextOrder::Locale, true);
    }
}

bool TFlyNode::AlphaSort() {
    if (GetCount() == 0) return false;
    const TWatch<TFlyNode> Self(this);
    const INodeHost* const Host = GetHost();
    const TSortType Sort = Host ? Host->GetSortType() : stNone;
    // Sorting by text uses the collection's default order, not the application's comparison; required so.
    SortItems(this, Host, Sort == stData || Sort == stBoth);
    if (Self) SetFlag(FlagSorted, true);
    return true;
}

// --- changing the position --------------------------------------------------------------------------------------

void TFlyNode::SetIndex(int Value) {
    TTreeCollection* const Collection = GetCollection();
    if (!Collection) return;
    if (Collection->HasFlag(FlagContainer) && Value < 0) throw EQuillTreeError(std::string(sInvalidIndex));
    if (!Collection->HasFlag(FlagContainer) && Value >= Collection->GetCount()) {
        throw EQuillTreeError("GetItem:List index out of bounds (%d)");
    }
    TTreeSlot* const Target = Collection->GetPointer(Value);
    TFlyNodes* const Container = ShownBy();
    if (Container && Target != this) {
        if (Container->CanPatch()) {
            Container->RemoveSubtreeRows(this);
        } else {
            MoveRowsTo(Target);
        }
    }
    TTreeCollection::SetIndex(Value);
}

// Inside a bracket, where the rows are made right at its end: the node's entry moves to its target's place and its
// visible descendants follow, the child with index i to the node's position plus i (not plus i + 1; required so).
void TFlyNode::MoveRowsTo(const TTreeSlot* Target) {
    TRowList& Rows = GetOwner()->RowList;
    const int From = Rows.IndexOf(this);
    const int To = Rows.IndexOf(Target);
    if (From < 0 || To < 0 || From == To) return;
    Rows.Move(From, To);
    GetOwner()->RowList.FCurrent = false;
    struct TFrame {
        const TFlyNode* Parent;
        int Next;
    };
    std::vector<TFrame> Open{{this, 0}};
    while (!Open.empty()) {
        const TFlyNode* const Parent = Open.back().Parent;
        const int i = Open.back().Next++;
        if (!Parent->GetExpanded() || i >= Parent->GetCount()) {
            Open.pop_back();
            continue;
        }
        TTreeSlot* const Child = Parent->GetPointer(i);
        const int Row = Rows.IndexOf(Child);
        if (Row < 0) continue;
        Rows.Move(Row, std::min(Rows.IndexOf(Parent) + i, Rows.GetCount() - 1));
        if (Child->IsPlaceholder()) continue;
        if (const TFlyNode* const Node = AsNode(static_cast<TTreeCollection*>(Child)))
            Open.push_back({Node, 0});
    }
}

void TFlyNode::MoveTo(TFlyNode* Destination, TNodeAttachMode Mode) {
    if (Destination && Destination->GetParent() == this) return;
    const bool AsChild = Mode == naAddChild || Mode == naAddChildFirst;
    TFlyNodes* const OldContainer = GetOwner();
    TTreeCollection* Receiver = OldContainer;
    if (Destination) Receiver = AsChild ? Destination : Destination->GetCollection();
    if (!Receiver) return;
    if (IsAncestorOrSelfOf(Receiver)) throw EInvalidOperation("A node cannot be moved into itself");

    INodeHost* const OldHost = GetHost();
    const bool WasFocused = GetFocused();
    const int OldRow = GetRow();
    const bool CrossTree = Destination && Destination->GetHost() != OldHost;
    const bool SameCollection =
        GetCollection() == (Destination ? Destination->GetCollection() : OldContainer);
    TFlyNodes* const NewContainer = Destination ? Destination->GetOwner() : OldContainer;

    const TWatch<TFlyNode> Self(this);
    const TWatch<TFlyNode> DestinationWatch(Destination);
    const TWatch<TTreeCollection> ReceiverWatch(Receiver);
    const TWatch<TFlyNodes> OldWatch(OldContainer);
    const TWatch<TFlyNodes> NewWatch(NewContainer);
    const TRowPatch OldPatch(OldContainer);
    const TRowPatch NewPatch(NewContainer);
    const auto Refresh = [](TFlyNodes* Container, TFlyNode* Below) {
        if (Container && Container->GetHost()) Container->GetHost()->RefreshNodeList(Below);
    };
    // Whether everything that takes part is still there; a handler that deletes a part ends the move.
    const auto Complete = [&] {
        return Self && ReceiverWatch && DestinationWatch.Get() == Destination &&
               NewWatch.Get() == NewContainer;
    };

    if (OldHost) OldHost->SetClearing(true);
    SetTreeCollection(Receiver);
    if (Complete()) Refresh(NewContainer, AsChild ? Destination : nullptr);
    if (Complete() && CrossTree && OldHost) {
        if (AsChild) {
            // Only the node itself changes its owner here, its descendants when they get rows; required so.
            SetOwnerField(NewContainer);
        } else {
            SetOwner(NewContainer);
        }
        if (OldWatch) Refresh(OldContainer, nullptr);
    } else if (Self && !OldHost && GetOwner() != NewContainer) {
        SetOwner(NewContainer);
    }
    if (!Complete() || GetCollection() != Receiver) return;

    int Index = Receiver->GetCount() - 1;
    if (Mode == naAddFirst || Mode == naAddChildFirst || (Mode == naInsert && !Destination)) Index = 0;
    if (Mode == naInsert && Destination) {
        Index = Destination->GetIndex();
        if (SameCollection && Index >= GetIndex()) Index = std::max(0, Index - 1);
    }
    SetFlag(FlagMoving, true);
    SetIndex(Index);
    if (!Self) return;
    SetFlag(FlagMoving, false);

    if (NewWatch && NewContainer->GetHost()) {
        Refresh(NewContainer, nullptr);
        if (NewWatch) NewContainer->GetHost()->FixupRows();
        if (CrossTree && OldHost && OldWatch) OldHost->FixupRows();
        if (Self && NewWatch) NewContainer->GetHost()->FixupRowHeights(std::min(OldRow, GetRow()));
        if (Self) SetFocused(WasFocused);
    }
}

// --- copying and deleting -----------------------------------------------------------------------------------------

void TFlyNode::AssignFields(TFlyNode* Source) {
    const TGoneWatch Gone;
    const auto Step = [&](const auto& Work) {
        if (!Gone.IsGone(this) && !Gone.IsGone(Source)) Work();
    };
    SetCaption(Source->GetText());
    Step([&] { SetData(Source->Getdata()); });
    Step([&] { SetImageIndex(Source->FImageIndex); });
    Step([&] { SetSelectedIndex(Source->FSelectedIndex); });
    Step([&] { SetStateIndex(Source->FStateIndex); });
    Step([&] { SetOverlayIndex(Source->GetOverlayIndex()); });
    Step([&] { SetFocused(Source->GetFocused()); });
    Step([&] { SetDropTarget(Source->GetDropTarget()); });
    Step([&] { SetCut(Source->GetCut()); });
    Step([&] { SetChildren(Source->GetChildren()); });
    Step([&] {
        FUniqueTag = Source->GetUniqueTag();
        if (!Source->HasCells()) return;
        std::vector<std::string_view> Cells;
        Source->GetAllTexts(Cells);
        if (Source != this) StoreTexts(GetTextView(), Cells);
    });
}

void TFlyNode::Assign(TPersistent* Source) {
    auto* const Other = dynamic_cast<TFlyNode*>(Source);
    if (!Other) {
        TTreeCollection::Assign(Source);
        return;
    }
    // What is to be copied is listed first: the copy may grow inside its own source, and handlers may change both.
    struct TEntry {
        TFlyNode* Node; // null for a placeholder
        int Depth;
    };
    std::vector<TEntry> Entries;
    std::vector<std::pair<const TFlyNode*, TTreeSlot*>> Open{{Other, Other->FirstSlot()}};
    while (!Open.empty()) {
        TTreeSlot* const Slot = Open.back().second;
        if (!Slot) {
            Open.pop_back();
            continue;
        }
        Open.back().second = Open.back().first->GetChildList()->Next(Slot);
        TFlyNode* const Node = Slot->IsPlaceholder() ? nullptr : AsNode(static_cast<TTreeCollection*>(Slot));
        Entries.push_back({Node, static_cast<int>(Open.size())});
        if (Node) Open.push_back({Node, Node->FirstSlot()});
    }

    const TGoneWatch Gone;
    AssignFields(Other);
    if (Gone.IsGone(this) || !GetOwner()) return;
    const TUpdateBracket Bracket(GetOwner());
    const TRowPatch Patch(GetOwner());
    // Targets are noted with the time at which they were made.
    std::vector<std::pair<TFlyNode*, unsigned>> Targets{{this, 0}};
    for (const TEntry& Entry : Entries) {
        Targets.resize(static_cast<std::size_t>(Entry.Depth));
        TFlyNode* const Parent = Targets.back().first;
        TFlyNode* Copy = nullptr;
        unsigned Since = 0;
        if (Gone.IsGone(this)) return;
        if (Parent && !Gone.IsGone(Parent, Targets.back().second) && GetOwner()) {
            if (!Entry.Node) {
                Parent->AddPlaceholders(1);
            } else if (!Gone.IsGone(Entry.Node)) {
                Copy = GetOwner()->AddChild(Parent, {});
                Since = Gone.Now();
                if (Copy && !Gone.IsGone(Entry.Node)) Copy->AssignFields(Entry.Node);
                if (Gone.IsGone(Copy, Since)) Copy = nullptr;
            }
        }
        Targets.emplace_back(Copy, Since);
    }
}

void TFlyNode::DeleteChildren() {
    const TWatch<TFlyNode> Self(this);
    TFlyNodes* const Container = ShownBy();
    const TWatch<TFlyNodes> ContainerWatch(Container);
    const bool WasSelected = GetSelected();
    if (Container) {
        Container->FHost->SetClearing(true);
        Container->DropRowsBelow(this);
    }
    std::exception_ptr First;
    try {
        Clear();
    } catch (...) {
        First = std::current_exception();
    }
    if (ContainerWatch) {
        Container->FHost->SetClearing(false);
        Container->FHost->FixupRows();
    }
    if (Self && GetCount() == 0) SetExpandedField(false); // placeholders go without saying so
    if (Self && ContainerWatch) {
        if (WasSelected) SetSelected(true);
        const int Row = Self ? GetRow() : -1;
        if (ContainerWatch && Row >= 0 && Container->FHost->HasWindow()) {
            INodeHost* const Host = Container->FHost;
            Host->InvalidateBox(0, Row, Host->GetColCount(), Host->GetRowCount(), false);
        }
    }
    if (Self) SetChildren(false);
    if (First) std::rethrow_exception(First);
}

} // namespace quill
