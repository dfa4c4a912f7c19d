#include "OutlineTree.h"

#include "ClipboardText.h"
#include "NodesTransfer.h"

#include "../common/Look.h"

#include "host/base/Collation.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <unordered_map>

namespace quill::examples {

namespace {

constexpr int HoverExpandTime = 700; // milliseconds over a closed branch until it opens

// A fifth of Mark over Ground.
QColor Blend(const QColor& Ground, const QColor& Mark) {
    const auto Mix = [](int From, int To) { return From + (To - From) / 5; };
    return {Mix(Ground.red(), Mark.red()), Mix(Ground.green(), Mark.green()),
            Mix(Ground.blue(), Mark.blue())};
}

} // namespace

TOutlineTree::TOutlineTree(QWidget* AParent) : TQuillTree(AParent) {
    SetUpTree(*this);
    SetSelectsRows(false);
    SetDragType(dtOLE);
    SetAutoDrop(true);
    SetDropMarks(true);
    SetHoverExpandTime(HoverExpandTime);
    SetDropScroll(true);
    ShowNothing();
}

void TOutlineTree::ShowNothing() {
    TOutline Empty;
    Empty.Bytes = std::make_unique<TMemoryStream>();
    ShowOutline(Empty, {});
}

void TOutlineTree::ShowOutline(const TOutline& Outline, std::vector<std::string> Captions) {
    const QScopedValueRollback<bool> Reading(FReading, true);
    FCaptions = std::move(Captions);
    GetItems()->Clear();
    FNodeCount = 0;
    // Tags are kept as they stand in the file only by a tree that numbers its nodes.
    SetUniqueTags(Outline.HasTags);
    SetShowImages(Outline.Options.Contains(tsnIncludeImageIndex));
    SetShowLogic(Outline.Options.Contains(tsnIncludeStateIndex));
    SetColCount(1);
    SetColumns(std::max(Outline.ColumnCount, static_cast<int>(FCaptions.size())));
    SetSortColumn(-1);
    LoadOutline(Outline, *GetItems());
    SetTopRow(GetFixedRows());
    if (TFlyNode* First = GetNodeAtRow(GetFixedRows())) SetSelection(First);
}

void TOutlineTree::SetColumns(int Count) {
    if (Count == GetColCount()) return;
    SetColCount(Count);
    SetStructureCol(0);
    for (int Col = 0; Col < Count; ++Col) SetCaptions(Col, CaptionOf(FCaptions, Col));
}

void TOutlineTree::SetSelectsRows(bool Value) {
    const TGridOptions Rows{goRowSelect};
    const TGridOptions Cells{goEditing, goTabs};
    SetOptions(Value ? GetOptions() - Cells + Rows : GetOptions() - Rows + Cells);
}

// Counted where each node comes and goes, so that nothing has to walk the outline.
TFlyNode* TOutlineTree::CreateNode(TTreeCollection* Owner) {
    ++FNodeCount;
    return TQuillTree::CreateNode(Owner);
}

void TOutlineTree::Delete(TFlyNode* Node) {
    --FNodeCount;
    TQuillTree::Delete(Node);
}

void TOutlineTree::DrawFixedFrame(TCanvas& Canvas, const TRect& Rect, int ACol, int ARow, bool Clicked) {
    TQuillTree::DrawFixedFrame(Canvas, Rect, ACol, ARow, Clicked);
    DrawCaptionEdge(*this, Canvas, Rect, ARow);
}

// The other cells of a selected row are tinted, so that one sees what is selected.
void TOutlineTree::GetColor(TFlyNode* Node, int ACol, int ARow, TExGridDrawState State, TColor& BrushColor,
                            TColor& FontColor, bool& Changed) {
    TQuillTree::GetColor(Node, ACol, ARow, State, BrushColor, FontColor, Changed);
    if (Changed || !Node || !Node->GetSelected() || (GetHideSelection() && !Focused())) return;
    BrushColor = ColorOf(Blend(palette().color(QPalette::Base), palette().color(QPalette::Highlight)));
    Changed = true;
}

// The control repaints the columns of the selection only.
void TOutlineTree::Change(TFlyNode* Node) {
    Invalidate();
    TQuillTree::Change(Node);
}

void TOutlineTree::MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) {
    Invalidate(); // a release takes marks away
    TQuillTree::MouseUp(Button, Shift, X, Y);
}

// --- editing ---------------------------------------------------------------------------------------------------

// An editor that closes stores its text whether it was changed or not.
void TOutlineTree::SetEditText(int ACol, int ARow, const std::string& Value) {
    const std::string Text = OneLine(Value);
    if (Text == GetEditText(ACol, ARow)) return;
    const TControlGuard Guard(this);
    TQuillTree::SetEditText(ACol, ARow, Text);
    if (Guard) Q_EMIT textEdited();
}

// --- sorting -------------------------------------------------------------------------------------------------------

void TOutlineTree::CaptionClick(int DataCol) {
    const bool Again = DataCol == GetSortColumn() && GetSortDirection() == srtAscending;
    SortBy(DataCol, Again ? srtDescending : srtAscending);
    TQuillTree::CaptionClick(DataCol);
}

void TOutlineTree::SortBy(int DataCol, TSortDirection Direction) {
    HideEditor();
    Q_EMIT sorting();
    SetSortColumn(DataCol);
    SetSortDirection(Direction);
    TFlyNode* Current = GetNodeAtRow(GetRow());
    // One key for each node, since a sort compares each of them many times.
    std::unordered_map<const TFlyNode*, std::string> Keys;
    for (TFlyNode* Node = GetItems()->GetFirstNode(); Node; Node = Node->GetNext()) {
        Keys.emplace(Node, NaturalCollationKey(GetNodeCells(Node, DataCol)));
    }
    OnCompare = [&Keys, Direction](TObject*, TFlyNode* Node1, TFlyNode* Node2, int& Compare) {
        Compare = Keys[Node1].compare(Keys[Node2]);
        if (Direction == srtDescending) Compare = -Compare;
    };
    {
        const TUpdateBracket Bracket(GetItems());
        SetSortType(stData);
        for (TFlyNode* Node = GetItems()->GetFirstNode(); Node; Node = Node->GetNext()) Node->AlphaSort();
    }
    GetItems()->AlphaSort();
    // Nodes that come later stay where they are put.
    SetSortType(stNone);
    OnCompare = nullptr;
    if (Current) Current->SetFocused(true);
    Q_EMIT sorted();
}

// --- dragging ------------------------------------------------------------------------------------------------------

bool TOutlineTree::DragsFromColumn(TFlyNode*, int DataCol) { return DataCol == GetStructureDataColumn(); }

// All that may be asked for is written down here: other programs are told at once what there is, and the nodes may
// change before they ask for it.
std::unique_ptr<TOLEDropSource> TOutlineTree::CreateDropSource() {
    return std::make_unique<TNodesDropSource>(NodesOut(SelectedRoots(*this)));
}

std::unique_ptr<TOLEDropTarget> TOutlineTree::CreateDropTarget() {
    return std::make_unique<TNodesDropTarget>();
}

TNodePlace TOutlineTree::PlaceOfDrop(TFlyNode* Target, TDropPlace Place) {
    if (!Target || Place == dpNone) return PlaceBehindLast(nullptr, *GetItems());
    if (Place == dpOn) return PlaceBehindLast(Target, *GetItems());
    TNodePlace Result = PlaceOf(*Target);
    if (Place == dpAfter) ++Result.Index;
    return Result;
}

void TOutlineTree::DropNodes(const std::vector<TFlyNode*>& Nodes, TFlyNode* Target, TDropPlace Place,
                             bool Copy) {
    if (OnDropNodes && CanDropNodes(Nodes, Target, Place, Copy))
        OnDropNodes(Nodes, PlaceOfDrop(Target, Place), Copy);
}

void TOutlineTree::NodesDragged(TDragResult Result, bool Inside) {
    if (Result == drDropMove && !Inside && OnNodesTaken) OnNodesTaken();
}

// --- check marks -------------------------------------------------------------------------------------------------

int TOutlineTree::FreshState(int StateIndex) {
    switch (StateIndex) {
    case stChosen:
    case stNotChosen:
    case stFixedChosen:
    case stFixedNotChosen:
        return stNotChosen;
    default:
        return StateIndex > 0 ? stOpen : StateIndex;
    }
}

// The control asks here before a state changes, whoever changes it: the space key, a click, a file being loaded.
bool TOutlineTree::ChangeState(TFlyNode* Node, int NewState) {
    if (!TQuillTree::ChangeState(Node, NewState)) return false;
    if (!FReading) {
        if (NewState == stChosen) ClearChoices(Node);
        Q_EMIT stateEdited();
    }
    return true;
}

bool TOutlineTree::HasChoice(TFlyNode* Parent) {
    TFlyNode* Node = Parent ? Parent->GetFirstChild() : GetItems()->GetFirstNode();
    while (Node && Node->GetStateIndex() != stChosen) Node = Node->GetNextSibling();
    return Node != nullptr;
}

// Of a group of radio buttons, one is chosen.
void TOutlineTree::ClearChoices(TFlyNode* Chosen) {
    TFlyNode* Parent = Chosen->GetParent();
    for (TFlyNode* Node = Parent ? Parent->GetFirstChild() : GetItems()->GetFirstNode(); Node;
         Node = Node->GetNextSibling()) {
        if (Node == Chosen || Node->GetStateIndex() != stChosen) continue;
        Node->SetStateIndexField(stNotChosen);
        InvalidateCell(GetStructureCol(), Node->GetRow());
    }
}

void TOutlineTree::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) {
    const bool OnMark = Button == mbLeft && GetHitTestInfoAt(X, Y).Contains(htOnStateIcon);
    const TControlGuard Guard(this);
    const TNodeWatch Node(OnMark ? GetNodeAt(X, Y) : nullptr);
    TQuillTree::MouseDown(Button, Shift, X, Y);
    if (!Guard || !Node) return;
    switch (Node->GetStateIndex()) {
    case stOpen:
        Node->SetStateIndex(stDone);
        break;
    case stDone:
        Node->SetStateIndex(stOpen);
        break;
    case stNotChosen:
        Node->SetStateIndex(stChosen);
        break;
    default:
        break;
    }
}

} // namespace quill::examples
