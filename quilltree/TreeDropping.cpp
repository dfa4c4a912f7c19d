// What a drop on the tree can do beside telling the program: marks before, on and after a node, branches that open under
// the mouse, scrolling at the edges, and nodes that are moved or copied.
#include "host/graphics/Canvas.h"
#include "host/windows/Dragging.h"
#include "quilltree/QuillTree.h"

#include <algorithm>

namespace quill {

namespace {

constexpr int DropMarkWidth = 2; // pixels
constexpr int DropMarkReach = 5; // from the middle of the mark to the end of its knob
constexpr int DropEdgeParts = 4; // the first and last such part of a row mean before and after
constexpr int HoverTimerID = 2;  // besides the grid's own

bool HasSelectedAncestor(const TFlyNode* Node) {
    for (const TFlyNode* Up = Node->GetParent(); Up; Up = Up->GetParent()) {
        if (Up->GetSelected()) return true;
    }
    return false;
}

} // namespace

// --- properties ---------------------------------------------------------------------------------------------------

void TCustomQuillTree::SetDropMarks(bool Value) {
    if (Value == FDropMarks) return;
    FDropMarks = Value;
    InvalidateGrid();
}

void TCustomQuillTree::SetHoverExpandTime(int Value) { FHoverExpandTime = std::max(Value, 0); }

// --- where ----------------------------------------------------------------------------------------------------------

// Something is dragged over that client point; Node is below it, or none.
void TCustomQuillTree::AimDrop(TFlyNode* Node, TPoint Pt) {
    FDropPoint = Pt;
    TDropPlace Place = dpOn;
    if (FDropMarks && Node) {
        const TRect Row = DisplayRect(Node, false);
        const int Edge = std::max(1, Row.Height() / DropEdgeParts);
        if (Pt.Y < Row.Top + Edge) {
            Place = dpBefore;
        } else if (Pt.Y >= Row.Bottom - Edge && !Node->GetExpanded()) {
            Place = dpAfter; // below an open branch is before its first child
        }
    }
    if (!Node) Place = dpNone;
    if (Node != FAimedNode || Place != FDropPlace) {
        KillTimer(HoverTimerID);
        if (FHoverExpandTime > 0 && Node && Place == dpOn && Node->GetChildren() && !Node->GetExpanded())
            SetTimer(HoverTimerID, FHoverExpandTime);
    }
    if (Node != FAimedNode || Place != FDropPlace) {
        InvalidateDropMark();
        FAimedNode = Node;
        FDropPlace = Place;
        InvalidateDropMark();
        // It may have been painted as the target of the place before.
        if (FDropMarks && Node) InvalidateDropRow(Node->GetRow());
    }
    // In a moving state the timer of the grid scrolls at the edges.
    if (FDropScroll && !HasTimer(ScrollTimerID)) SetTimer(ScrollTimerID, ScrollTimerInterval);
    if (FDropScroll && GetGridState() == gsNormal) SetGridState(gsRowMoving);
}

void TCustomQuillTree::EndAim() {
    InvalidateDropMark();
    KillTimer(HoverTimerID);
    FAimedNode = nullptr;
    FDropPlace = dpNone;
    FDropPoint.reset();
}

TPoint TCustomQuillTree::GetMouseClientPos() const {
    // While something is dragged the platform tells positions in its messages only.
    return FDropPoint ? *FDropPoint : TCustomExGrid::GetMouseClientPos();
}

void TCustomQuillTree::WMTimer(TWMTimer& Message) {
    if (Message.TimerID != HoverTimerID) {
        TCustomExGrid::WMTimer(Message);
        return;
    }
    KillTimer(HoverTimerID);
    const TControlGuard Guard(this);
    const TNodeWatch Node(FAimedNode);
    if (!Node) return;
    Node->Expand(false);
    if (!Guard) return;
    ReAim();
}

// Other nodes may lie under the mouse now, though it rests.
void TCustomQuillTree::ReAim() {
    if (!FDropPoint) return;
    const TPoint Pt = *FDropPoint;
    AimAt(Pt);
}

// --- the mark -----------------------------------------------------------------------------------------------------

// In client pixels; empty unless the place is before or after a node that is in view.
TRect TCustomQuillTree::GetDropMark() {
    if (!FDropMarks || !FAimedNode || (FDropPlace != dpBefore && FDropPlace != dpAfter)) return {};
    TRect R = DisplayRect(FAimedNode, true);
    const TRect Row = DisplayRect(FAimedNode, false);
    if (Row.IsEmpty()) return {};
    const int Middle = FDropPlace == dpBefore ? Row.Top : Row.Bottom;
    if (UseRightToLeftAlignment()) {
        R.Left = 0;
    } else {
        R.Right = GetClientWidth();
    }
    return {R.Left, Middle - DropMarkWidth / 2, R.Right, Middle - DropMarkWidth / 2 + DropMarkWidth};
}

void TCustomQuillTree::InvalidateDropMark() {
    if (!HandleAllocated()) return;
    if (FAimedNode && FDropPlace == dpOn && FDropMarks) InvalidateDropRow(FAimedNode->GetRow());
    InvalidatePixels(FMarkPainted);
    const TRect R = GetDropMark();
    if (R.IsEmpty()) return;
    InvalidatePixels(
        {R.Left - DropMarkReach, R.Top - DropMarkReach, R.Right + DropMarkReach, R.Bottom + DropMarkReach});
}

// A line with a knob where the node would begin, painted last, over the cells.
void TCustomQuillTree::DrawDropMark() {
    const TRect R = GetDropMark();
    FMarkPainted = {};
    if (R.IsEmpty()) return;
    FMarkPainted = {R.Left - DropMarkReach, R.Top - DropMarkReach, R.Right + DropMarkReach,
                    R.Bottom + DropMarkReach};
    TCanvas& Canvas = *GetCanvas();
    Canvas.GetBrush()->SetColor(clHighlight);
    Canvas.FillRect(R);
    const int Middle = (R.Top + R.Bottom) / 2;
    for (int Step = 0; Step < DropMarkReach; ++Step) {
        const int Half = DropMarkReach - Step;
        const int X = UseRightToLeftAlignment() ? R.Right - 1 - Step : R.Left + Step;
        Canvas.FillRect({X, Middle - Half, X + 1, Middle + Half});
    }
}

// --- nodes --------------------------------------------------------------------------------------------------------

std::vector<TFlyNode*> TCustomQuillTree::GetDraggedNodes() {
    std::vector<TFlyNode*> Nodes;
    FillSelectedList(Nodes);
    std::erase_if(Nodes, HasSelectedAncestor);
    return Nodes;
}

bool TCustomQuillTree::CanDropNodes(const std::vector<TFlyNode*>& Nodes, TFlyNode* Target, TDropPlace,
                                    bool Copy) {
    if (Nodes.empty()) return false;
    if (Copy) return true;
    for (const TFlyNode* Up = Target; Up; Up = Up->GetParent()) {
        if (std::find(Nodes.begin(), Nodes.end(), Up) != Nodes.end()) return false;
    }
    return true;
}

// Assigning a node makes it the drop target; that is no reason to show it as one.
void TCustomQuillTree::CopyFields(TFlyNode* To, TFlyNode* From) {
    const TGridState State = GetGridState();
    const int Row = TCustomExGrid::GetDropTargetRow();
    TFlyNode* const Remembered = FDropTargetNode;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Remembered);
    To->Assign(From);
    if (!Guard) return;
    InvalidateDropRow(TCustomExGrid::GetDropTargetRow());
    SetGridState(State);
    SetDropTargetRow(Row);
    FDropTargetNode = Watch;
}

void TCustomQuillTree::DropNodes(const std::vector<TFlyNode*>& Nodes, TFlyNode* Target, TDropPlace Place,
                                 bool Copy) {
    if (!CanDropNodes(Nodes, Target, Place, Copy)) return;
    // Behind Target is before the next one that stays where it is.
    TFlyNode* Before = Target;
    if (Target && Place == dpAfter) {
        do Before = Before->GetNextSibling();
        while (Before && !Copy && std::find(Nodes.begin(), Nodes.end(), Before) != Nodes.end());
    }
    TNodeAttachMode Mode = Place == dpOn ? naAddChild : naInsert;
    if (Target && !Before) {
        Before = Target;
        Mode = naAdd;
    }
    if (!Target) Mode = naAdd;
    const TControlGuard Guard(this);
    const TNodeWatch Where(Before);
    const TGoneWatch Gone;
    std::vector<TFlyNode*> Dropped;
    for (TFlyNode* Node : Nodes) {
        if (Gone.IsGone(Node) || (Before && !Where)) continue;
        if (!Copy && (Before || Node->GetTree() == this || FItems->GetFirstNode())) {
            // Another tree's node needs a place in this one.
            const bool Foreign = !Before && Node->GetTree() != this;
            Node->MoveTo(Foreign ? FItems->GetFirstNode() : Before, Mode);
            Dropped.push_back(Node);
        } else {
            TFlyNode* const New = FItems->Add(nullptr, Node->GetText());
            CopyFields(New, Node);
            if (!Guard) return;
            if (Before && Where && !Gone.IsGone(New)) New->MoveTo(Before, Mode);
            if (!Guard) return;
            if (!Copy && !Gone.IsGone(Node)) {
                Node->SetData(nullptr); // the copy has it
                Node->Delete();
            }
            Dropped.push_back(New);
        }
        if (!Guard) return;
    }
    if (Place == dpOn && Where) Where->Expand(false);
    if (!Guard) return;
    std::erase_if(Dropped, [&](const TFlyNode* Node) { return Gone.IsGone(Node); });
    if (Dropped.empty()) return;
    SetSelection(Dropped.front());
    for (TFlyNode* Node : Dropped) {
        if (Guard && !Gone.IsGone(Node)) Node->SetSelected(true);
    }
}

} // namespace quill
