// Selection and keys: marks, ranges, the current node, keyboard actions and incremental search.
#include "host/base/Collation.h"
#include "host/base/Events.h"
#include "host/base/Utf8.h"
#include "host/windows/Application.h"
#include "host/windows/FlagScope.h"
#include "quilltree/QuillTree.h"

#include <algorithm>
#include <utility>

namespace quill {

namespace {

// Typed characters within this time of the last one extend the search text.
constexpr std::uint32_t SearchWindow = 1500; // milliseconds

// So many placeholders may become nodes in one search; the others are passed over, so that a keystroke does not
// create ten million nodes.
constexpr int SearchCreates = 10000;

// The state index that the space key gives to a check box or radio button; -1 for other states.
constexpr int ToggledState(int State) {
    switch (State) {
    case 1:
        return 2;
    case 2:
        return 1;
    case 4:
        return 5;
    case 5:
        return 4;
    default:
        return -1;
    }
}

// The first child that has a row.
TFlyNode* FirstListedChild(TFlyNode* Node) {
    TFlyNode* Child = Node->getFirstChild();
    while (Child && !Child->IsNodeVisible()) Child = Child->GetNextSibling();
    return Child;
}

} // namespace

// --- the selected node -------------------------------------------------------------------------------------------

TFlyNode* TCustomQuillTree::GetSelection() { return HasSelection() ? GetNodeAtRow(GetRow()) : nullptr; }

void TCustomQuillTree::SetSelection(TFlyNode* Node) {
    const TControlGuard Guard(this);
    if (!Node) {
        ClearSelection();
        FlushSelection();
        InvalidateCurrent();
        return;
    }
    if (Node->GetOwner() != FItems.get()) return; // another tree's rows mean nothing here
    const TNodeWatch Watch(Node);
    Node->MakeVisible();
    if (!Guard || !Watch) return;
    const int Row = Node->GetRow();
    if (Row < 0) return;
    FSelectingAlone = true;
    FocusCell(GetCol(), Row, false, {}, swNone);
    if (Guard) FSelectingAlone = false;
}

void TCustomQuillTree::SelectOne(int Row) {
    TFlyNode* Node = GetNodeAtRow(Row);
    if (!Node) return;
    FAnchorNode = Node;
    Node->SetSelected(true);
}

// Those rows in the columns that show the selection.
TGridRect TCustomQuillTree::SelectionColumns(int FromRow, int ToRow) const {
    const TGridRect Selection = GetGridSelection();
    const int Left = IsRowSelect() ? 0 : std::max(Selection.Left, 0);
    const int Right = Selection.Right < 0 ? GetColCount() - 1 : Selection.Right;
    return GridRect(Left, FromRow, Right, ToRow);
}

void TCustomQuillTree::SelectItem(TFlyNode* Node) {
    if (!Node) return;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    Node->MakeVisible();
    if (!Guard || !Watch) return;
    const int Row = Node->GetRow();
    if (Row < 0) return;
    InvalidateRect(SelectionColumns(Row, Row));
}

// Clears every mark without notifications; only chunks of the row list that hold a mark are visited.
void TCustomQuillTree::FlushSelection() {
    if (IsLoading() || HasState(csReading) || HasState(csDestroying) || !FItems) return;
    int First = -1;
    int Last = -1;
    if (!FItems->ClearSelectedRows(First, Last)) return;
    InvalidateRect(SelectionColumns(GetFixedRows() + First, GetFixedRows() + Last));
}

void TCustomQuillTree::RangeDragged(const TGridRect& OldSel) {
    const TGridRect Range = GetGridSelection();
    const auto Mark = [this](int FromRow, int ToRow, bool Value) {
        if (FromRow <= ToRow) MarkRange(FromRow, ToRow, Value);
    };
    if (OldSel.Bottom >= Range.Top && Range.Bottom >= OldSel.Top) {
        Mark(OldSel.Top, Range.Top - 1, false);
        Mark(Range.Bottom + 1, OldSel.Bottom, false);
        Mark(Range.Top, OldSel.Top - 1, true);
        Mark(OldSel.Bottom + 1, Range.Bottom, true);
    } else {
        if (OldSel.Bottom >= GetFixedRows()) MarkRange(OldSel.Top, OldSel.Bottom, false);
        MarkRange(Range.Top, Range.Bottom, true);
    }
}

void TCustomQuillTree::SelectAll() {
    if (IsRangeSelect()) MarkRange(GetFixedRows(), GetRowCount() - 1, true);
}

void TCustomQuillTree::FillSelectedList(std::vector<TFlyNode*>& List) {
    if (!FItems) return;
    for (TFlyNode* Node = FItems->GetFirstSelectedNode(); Node; Node = FItems->GetNextSelectedNode(Node)) {
        List.push_back(Node);
    }
}

bool TCustomQuillTree::InSelection(int ACol, int ARow) {
    if (!TCustomExGrid::InSelection(ACol, ARow)) return false;
    const TFlyNode* Node = GetNodeAtRow(ARow);
    return Node && Node->GetSelected();
}

// Invalidates those of the rows in view for which Wanted(Row, whether its node is selected) holds.
template <class TWanted>
void TCustomQuillTree::InvalidateRowsWhere(TWanted Wanted) {
    if (!HandleAllocated() || !FItems) return;
    TExGridDI DI;
    CalcDI(DI);
    for (int Row = GetTopRow(); Row <= DI.Vert.LastFullVisibleCell + 1; ++Row) {
        const TFlyNode* const Node = FItems->RowList.NodeAt(Row - GetFixedRows());
        if (Wanted(Row, Node && Node->GetSelected())) InvalidateRow(Row);
    }
}

// Rows that are selected or current; a descendant may mark the whole of them.
void TCustomQuillTree::InvalidateFocused() {
    const TGridRect Range = TCustomExGrid::GetSelection();
    InvalidateRowsWhere([&](int Row, bool Selected) {
        return Selected || Row == GetRow() || (Row >= Range.Top && Row <= Range.Bottom);
    });
}

void TCustomQuillTree::InvalidateMarked() {
    const TGridRect Range = TCustomExGrid::GetSelection();
    InvalidateRowsWhere(
        [&](int Row, bool Selected) { return Selected && (Row < Range.Top || Row > Range.Bottom); });
}

// --- moving ------------------------------------------------------------------------------------------------------

bool TCustomQuillTree::SelectCell(int& ACol, int& ARow, bool MoveAnchor, TShiftState Shift,
                                  TSelectionWay Way) {
    const bool Focusing = std::exchange(FFocusing, false);
    const TFocusMarks Marks = std::exchange(FFocusMarks, TFocusMarks::Keep);
    // Branches that close under the current cell move it about; where it ends is decided by the outer call.
    if (FAutoExpanding && !Focusing) return true;
    const TControlGuard Guard(this);
    TNodeWatch Old(GetNodeAtRow(GetRow()));
    TNodeWatch New(Guard ? GetNodeAtRow(ARow) : nullptr);
    if (!Guard) return false;
    const bool HadNode = New;
    bool Result = false;
    if (HadNode && ACol >= GetFixedCols()) {
        Result = CanChange(New);
        if (!Guard) return false;
        if (Result) Result = New && TCustomExGrid::SelectCell(ACol, ARow, MoveAnchor, Shift, Way);
        if (!Guard || !New) return false;
    } else {
        // An empty tree accepts its cells; a fixed column of a node's row is refused.
        Result = !HadNode && FItems && FItems->RowList.GetCount() == 0;
    }
    if (Result) {
        ApplyMarks(Marks, Old, GetNodeAtRow(ARow));
        if (!Guard) return false;
        TFlyNode* Node = GetNodeAtRow(ARow);
        if (MoveAnchor) FAnchorNode = Node;
        if (Way == swByMouse || Shift.Contains(ssShift)) Selecting(ACol, ARow, Node, Shift, MoveAnchor);
        if (!Guard) return false;
        if (!HadNode || New) Change(New);
        if (!Guard) return false;
    }
    if (FAutoExpand && Result && !FInButtonClick && !FAutoExpanding && FItems->GetCount() > 0) {
        AutoExpandTo(Old, New);
        if (!Guard) return false;
        if (New) ARow = New->GetRow();
    }
    return Result;
}

// The marks of an allowed move; a refused one leaves all as they are.
void TCustomQuillTree::ApplyMarks(TFocusMarks Marks, TFlyNode* Old, TFlyNode* Node) {
    if (!Node) return;
    switch (Marks) {
    case TFocusMarks::Keep:
        break;
    case TFocusMarks::Anchor:
        FAnchorNode = Node;
        break;
    case TFocusMarks::AnchorHere:
        FAnchorNode = Old;
        break;
    case TFocusMarks::Alone:
        FAnchorNode = Node;
        FlushSelection();
        [[fallthrough]];
    case TFocusMarks::Add:
        Node->SetSelected(true);
        break;
    }
}

// Toggles New and closes the other branches.
void TCustomQuillTree::AutoExpandTo(TFlyNode* Old, TNodeWatch& New) {
    const TControlGuard Guard(this);
    const TFlagScope Expanding(this, FAutoExpanding);
    const bool Moved = Old != New.Get();
    const TUpdateBracket Bracket(FItems.get());
    if (New) New->SetExpanded(!New->GetExpanded());
    if (!Guard || !Moved) return;
    std::vector<TFlyNode*> Open;
    for (TTreeSlot* Slot = FItems->FirstSlot(); Slot; Slot = FItems->GetChildList()->Next(Slot)) {
        if (Slot->IsPlaceholder()) continue;
        TFlyNode* const Top = TFlyNode::AsNode(static_cast<TTreeCollection*>(Slot));
        if (Top->GetExpanded() && Top != New.Get() && !(New && New->HasAsParent(Top))) Open.push_back(Top);
    }
    const TGoneWatch Gone;
    for (TFlyNode* const Top : Open) {
        if (!Gone.IsGone(Top)) Top->Collapse(true);
        if (!Guard) return;
    }
}

void TCustomQuillTree::MarkRange(int FromRow, int ToRow, bool Mark) {
    if (!FItems) return;
    const int Low = std::max(std::min(FromRow, ToRow) - GetFixedRows(), 0);
    const int High = std::min(std::max(FromRow, ToRow) - GetFixedRows(), FItems->RowList.GetCount() - 1);
    if (Low > High) return;
    FItems->SelectRows(Low, High, Mark);
    InvalidateRect(SelectionColumns(GetFixedRows() + Low, GetFixedRows() + High));
}

void TCustomQuillTree::Selecting(int, int ARow, TFlyNode* Node, TShiftState Shift, bool MoveAnchor) {
    if (!Node || !IsRangeSelect()) return;
    if (Shift.Contains(ssShift)) {
        if (!FAnchorNode) return;
        FlushSelection();
        if (FRangeStartNode && FRangeStartNode->GetRow() >= 0)
            MarkRange(FRangeStartNode->GetRow(), ARow, false);
        FRangeStartNode = GetNodeAtRow(ARow);
        const int AnchorRow = FAnchorNode->GetRow();
        if (AnchorRow >= 0) MarkRange(AnchorRow, ARow, true);
    } else if (Shift.Contains(ssCtrl) && !MoveAnchor) {
        TFlyNode* Target = GetNodeAtRow(ARow);
        FRangeStartNode = Target;
        if (!Target) return;
        FAnchorNode = Target;
        Target->SetSelectedField(!Target->GetSelected());
        InvalidateRow(ARow);
    }
}

void TCustomQuillTree::FocusCell(int ACol, int ARow, bool MoveAnchor, TShiftState Shift, TSelectionWay Way) {
    const TControlGuard Guard(this);
    TFlyNode* Node = GetNodeAtRow(ARow);
    if (!Guard) return;
    if (FShowImages) {
        // Their picture depends on being current.
        const TFlyNode* Current = GetNodeAtRow(GetRow());
        if (Current && Current->GetSelectedIndex() != -1 && GetCol() != FStructureCol) {
            InvalidateCell(FStructureCol, GetRow());
        }
        if (Node && Node->GetSelectedIndex() != -1 && ACol != FStructureCol)
            InvalidateCell(FStructureCol, ARow);
    }
    TFocusMarks Marks = std::exchange(FSelectingAlone, false) ? TFocusMarks::Alone : TFocusMarks::Keep;
    if (ARow != GetRow()) {
        if (IsRangeSelect() && !(Way != swNone && MoveAnchor)) {
            // A range keeps the anchor from which it extends; the first one begins at the current node.
            if (Way != swNone && !Shift.Contains(ssShift)) Marks = TFocusMarks::Anchor;
            if (Way != swNone && Shift.Contains(ssShift) && !FAnchorNode) Marks = TFocusMarks::AnchorHere;
        } else if (Node && Way == swByMouse && Node->GetSelected() && CanDragNodes()) {
            // The press may begin a drag of all marked nodes; if it does not, the release unmarks the others.
        } else if (Node && (IsRangeSelect() || !Node->GetSelected())) {
            // A plain click or arrow key leaves no other node marked.
            Marks = TFocusMarks::Alone;
        }
    } else if (Node && !Node->GetSelected() && Marks == TFocusMarks::Keep) {
        const bool ByLeft = Shift == TShiftState(ssLeft);
        const bool ByRight = Shift == TShiftState(ssRight) && FRightClickSelect;
        if (ByLeft || ByRight) Marks = IsRangeSelect() ? TFocusMarks::Add : TFocusMarks::Alone;
    }
    // SelectCell takes both, once it knows whether the move is allowed.
    FFocusing = true;
    FFocusMarks = Marks;
    TCustomExGrid::FocusCell(ACol, ARow, MoveAnchor, Shift, Way);
    if (!Guard) return;
    FFocusing = false;
    FFocusMarks = TFocusMarks::Keep;
}

// --- events ------------------------------------------------------------------------------------------------------
// Handlers are copied before the call: one that destroys the tree must not destroy the function it runs in.

bool TCustomQuillTree::CanChange(TFlyNode* Node) {
    bool Allow = true;
    if (Node) FireEvent(OnChanging, this, Node, Allow);
    return Allow;
}

void TCustomQuillTree::Change(TFlyNode* Node) {
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    FireEvent(OnChange, this, Node);
    if (Guard && (!Node || Watch)) Q_EMIT changed(Node);
}

bool TCustomQuillTree::CanExpand(TFlyNode* Node) {
    bool Allow = true;
    FireEvent(OnExpanding, this, Node, Allow);
    return Allow;
}

bool TCustomQuillTree::CanCollapse(TFlyNode* Node) {
    bool Allow = true;
    FireEvent(OnCollapsing, this, Node, Allow);
    return Allow;
}

void TCustomQuillTree::Expand(TFlyNode* Node) {
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    FireEvent(OnExpanded, this, Node);
    if (Guard && Watch) Q_EMIT expanded(Node);
}

void TCustomQuillTree::Collapse(TFlyNode* Node) {
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    FireEvent(OnCollapsed, this, Node);
    if (Guard && Watch) Q_EMIT collapsed(Node);
}

void TCustomQuillTree::Delete(TFlyNode* Node) {
    if (HasState(csDestroying)) return;
    const TControlGuard Guard(this);
    FireEvent(OnDeletion, this, Node);
    if (Guard) Q_EMIT deletion(Node);
}

void TCustomQuillTree::ExpandItem(TFlyNode*, bool) {}

void TCustomQuillTree::FullExpand() {
    const TControlGuard Guard(this);
    {
        const TUpdateBracket Bracket(FItems.get());
        for (int Index = 0; Guard && Index < FItems->GetCount(); ++Index) {
            if (!FItems->NVMeta(Index)) FItems->GetNodeFromIndex(Index)->Expand(true);
        }
    }
    if (Guard) Invalidate();
}

void TCustomQuillTree::FullCollapse() {
    const TControlGuard Guard(this);
    {
        const TUpdateBracket Bracket(FItems.get());
        for (int Index = 0; Guard && Index < FItems->GetCount(); ++Index) {
            if (!FItems->NVMeta(Index)) FItems->GetNodeFromIndex(Index)->Collapse(true);
        }
    }
    if (Guard) Invalidate();
}

// --- keys --------------------------------------------------------------------------------------------------------

void TCustomQuillTree::KeyDown(std::uint16_t& Key, TShiftState Shift) {
    const TControlGuard Guard(this);
    HideToolTip(); // keys move, expand and edit what it lies over
    if (!Guard) return;
    TFlyNode* Node = (GetCol() == FStructureCol || IsRowSelect()) ? GetNodeAtRow(GetRow()) : nullptr;
    if (!Guard) return;
    // Arrow keys that move along the tree mark as those do that move along the rows.
    const auto MoveTo = [&](const TFlyNode* Target) {
        const int Row = Target ? Target->GetRow() : -1;
        const bool NoModifiers = !Shift.Contains(ssShift) && !Shift.Contains(ssCtrl);
        if (Row >= 0) FocusCell(GetCol(), Row, NoModifiers, Shift, swByKeyBoard);
    };
    if (Node) {
        switch (Key) {
        case VK_ADD:
            Node->Expand(false);
            Key = 0;
            return;
        case VK_SUBTRACT:
            Node->Collapse(false);
            Key = 0;
            return;
        case VK_RIGHT:
            if (GetColCount() == 1 && Node->GetChildren()) {
                if (!Node->GetExpanded()) {
                    Node->Expand(false);
                } else {
                    MoveTo(FirstListedChild(Node));
                }
            }
            break;
        case VK_LEFT:
            if (GetColCount() == 1) {
                if (Node->GetExpanded()) {
                    Node->Collapse(false);
                } else {
                    MoveTo(Node->GetParent());
                }
            }
            break;
        case VK_RETURN:
            if (!IsEditorShowing()) Node->SetExpanded(!Node->GetExpanded());
            break;
        case VK_SPACE:
            if (const int State = FShowLogic ? ToggledState(Node->GetStateIndex()) : -1; State >= 0) {
                Node->SetStateIndex(State);
                Key = 0;
                return;
            }
            break;
        default:
            break;
        }
    }
    if (Guard) TCustomExGrid::KeyDown(Key, Shift);
}

// Enter opens and closes a node that has children; a dialog gets it from the others.
void TCustomQuillTree::CMWantSpecialKey(TWMKey& Message) {
    TCustomExGrid::CMWantSpecialKey(Message);
    if (Message.CharCode != VK_RETURN || (GetCol() != FStructureCol && !IsRowSelect())) return;
    const TFlyNode* Node = GetNodeAtRow(GetRow());
    if (Node && Node->GetChildren()) Message.Result = 1;
}

void TCustomQuillTree::WMChar(TWMKey& Message) {
    const char32_t Char = Message.CharCode;
    if (GetCol() != FStructureCol && !IsRowSelect()) {
        TCustomExGrid::WMChar(Message);
        return;
    }
    // Keys of the outline; composed text is text.
    if (Char == U'\r') return;
    if ((Char == U'+' || Char == U'-' || (Char == U' ' && FShowLogic)) && !IsComposedText()) return;
    if (GetOptions().Contains(goEditing)) {
        TCustomExGrid::WMChar(Message);
        return;
    }
    if (Char < 32 || Char == 127) return; // no text

    const TControlGuard Guard(this);
    TFlyNode* Start = GetNodeAtRow(GetRow());
    const std::uint32_t Now = GetTickCount();
    if (Now - FSearchTick > SearchWindow) FSearchText.clear();
    AppendUtf8(FSearchText, Char);
    FSearchTick = Now;
    if (!SelectFound(Start)) return;
    if (GetSelection() == Start && Utf8Length(FSearchText) > 1) {
        FSearchText.clear();
        AppendUtf8(FSearchText, Char);
        if (!SelectFound(Start)) return;
    }
    Message.CharCode = 0;
    Message.Result = 1;
}

// Selects what the search from Start finds; false when a handler took Start or the tree away.
bool TCustomQuillTree::SelectFound(TFlyNode* Start) {
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Start);
    TFlyNode* Found = IncSearch(Start);
    if (!Guard || (Start && !Watch)) return false;
    // Finding nothing changes nothing.
    if (Found != Start || !HasSelection()) SetSelection(Found);
    return Guard && (!Start || Watch);
}

TFlyNode* TCustomQuillTree::IncSearch(TFlyNode* Start) {
    if (!Start || !FItems) return nullptr;
    const TControlGuard Guard(this);
    const TNodeWatch StartWatch(Start);
    TFlyNode* const Next = GetNextVisible(Start);
    if (!Guard || !StartWatch) return nullptr;
    int Index = Next ? FItems->RowList.IndexOf(Next) : 0;
    int Creates = SearchCreates;
    // Once around is enough, also when Start has no row of its own.
    for (int Left = FItems->RowList.GetCount(); Left > 0; --Left, ++Index) {
        if (Index >= FItems->RowList.GetCount()) Index = 0;
        if (!OnGetEditText) {
            // Nothing of a node's own text is asked of anybody, so that a whole run of rows is compared at once.
            int Passed = 0;
            for (TTreeSlot* const Slot : FItems->RowList.ChunkAt(Index)) {
                if (Passed == Left || Slot->IsPlaceholder()) break;
                auto* const Node = static_cast<TFlyNode*>(static_cast<TTreeCollection*>(Slot));
                if (Node == Start) return Start;
                if (StartsTextIgnoringCase(Node->GetTextView(), FSearchText)) return Node;
                ++Passed;
            }
            if (Passed > 0) {
                Left -= Passed - 1;
                Index += Passed - 1;
                continue;
            }
        }
        TNodeWatch Node(FItems->RowList.NodeAt(Index));
        if (!Node && Creates-- > 0) Node.Reset(FItems->MaterialiseRow(Index));
        if (!Guard || !StartWatch) return nullptr;
        if (Node.Get() == Start) break;
        if (!Node) continue;
        std::string Shown;
        if (OnGetEditText) {
            FireEvent(OnGetEditText, this, FStructureCol, Node->GetRow(), Shown);
            if (!Guard || !StartWatch) return nullptr;
            if (!Node) continue;
        }
        if (StartsTextIgnoringCase(OnGetEditText ? Shown : Node->GetTextView(), FSearchText)) return Node;
    }
    return Start;
}

} // namespace quill
