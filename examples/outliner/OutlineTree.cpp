#include "OutlineTree.h"

#include "../common/Look.h"

#include "host/base/Collation.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <unordered_map>

namespace quill::examples {

namespace {

// The state indexes that the user can change; the others are shown as they are.
enum TState { stOpen = 1, stDone = 2, stChosen = 4, stNotChosen = 5 };

} // namespace

TOutlineTree::TOutlineTree(QWidget* AParent) : TQuillTree(AParent) {
    SetUpTree(*this);
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
    // Tags are kept as they stand in the file only by a tree that numbers its nodes.
    SetUniqueTags(Outline.HasTags);
    SetShowImages(Outline.Options.Contains(tsnIncludeImageIndex));
    SetShowLogic(Outline.Options.Contains(tsnIncludeStateIndex));
    // Columns that were moved are in their old places again.
    SetColCount(std::max(Outline.ColumnCount, static_cast<int>(FCaptions.size())));
    SetStructureCol(0);
    for (int Col = 0; Col < GetColCount(); ++Col) SetCaptions(Col, CaptionOf(FCaptions, Col));
    SetSortColumn(-1);
    LoadOutline(Outline, *GetItems());
    SetTopRow(GetFixedRows());
    if (TFlyNode* First = GetNodeAtRow(GetFixedRows())) SetSelection(First);
}

void TOutlineTree::DrawFixedFrame(TCanvas& Canvas, const TRect& Rect, int ACol, int ARow, bool Clicked) {
    TQuillTree::DrawFixedFrame(Canvas, Rect, ACol, ARow, Clicked);
    DrawCaptionEdge(*this, Canvas, Rect, ARow);
}

// --- sorting -------------------------------------------------------------------------------------------------------

void TOutlineTree::CaptionClick(int DataCol) {
    const bool Again = DataCol == GetSortColumn() && GetSortDirection() == srtAscending;
    SortBy(DataCol, Again ? srtDescending : srtAscending);
    TQuillTree::CaptionClick(DataCol);
}

void TOutlineTree::SortBy(int DataCol, TSortDirection Direction) {
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

std::string TOutlineTree::SelectedText() {
    std::vector<TFlyNode*> Nodes;
    FillSelectedList(Nodes);
    std::string Text;
    for (TFlyNode* Node : Nodes) {
        for (int Col = 0; Col < GetColCount(); ++Col) {
            if (Col > 0) Text += '\t';
            Text += GetNodeData(Node, Col);
        }
        Text += '\n';
    }
    return Text;
}

// --- check marks -------------------------------------------------------------------------------------------------

// The control asks here before a state changes, whoever changes it: the space key, a click, a file being loaded.
bool TOutlineTree::ChangeState(TFlyNode* Node, int NewState) {
    if (!TQuillTree::ChangeState(Node, NewState)) return false;
    if (!FReading) {
        if (NewState == stChosen) ClearChoices(Node);
        Q_EMIT stateEdited();
    }
    return true;
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
