// Rows and nodes: the row list, placeholders, heights, and rows that slide in and out.
#include "host/graphics/Canvas.h"
#include "host/windows/Application.h"
#include "host/windows/FlagScope.h"
#include "htmldraw/HTMLDraw.h"
#include "quilltree/QuillTree.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <thread>
#include <vector>

namespace quill {

void TCustomQuillTree::RefreshNodeList(TTreeCollection* Node) {
    if (FItems) FItems->RebuildRowList(Node);
}

void TCustomQuillTree::FixupRows() {
    if (HasState(csLoading) && HasState(csReading)) return;
    if (HasState(csDestroying) || !FItems) return;
    const TControlGuard Guard(this);
    const int Count = FItems->RowList.GetCount();
    if (GetRowCount() != GetFixedRows() + Count) {
        SetRowCount(GetFixedRows() + Count);
    } else if (FItems->GetHasStoredHeights()) {
        UpdateScrollRange(); // other nodes have other heights
    }
    if (!Guard) return;
    if (Count == 0) SetTopRow(GetFixedRows());
    if (!Guard) return;
    if (!FItems->GetSorted() && FSortType != stNone) FItems->AlphaSort();
    if (!Guard) return;
    FollowEdit();
    InvalidateTouched();
    ReAim();
}

// Everything, unless the nodes know which rows changed.
void TCustomQuillTree::InvalidateTouched() {
    const int First = FItems->TakeFirstTouched();
    if (First <= 0) {
        InvalidateGrid();
    } else if (HandleAllocated() && First < FItems->RowList.GetCount()) {
        TExGridDI DI;
        CalcDI(DI);
        const int Row = GetFixedRows() + First;
        if (Row > DI.Vert.LastFullVisibleCell + 1) return;
        // Lines reach a little way into the row above.
        const int Top = Row > GetTopRow() ? LinePos(DI.Vert, Row) - 1 : DI.Vert.FixedBoundary;
        InvalidatePixels({0, Top, GetClientWidth(), GetClientHeight()});
    }
}

TFlyNode* TCustomQuillTree::GetNodeAtRow(int Row) {
    if (!FItems || Row < GetFixedRows()) return nullptr;
    const int Index = Row - GetFixedRows();
    TFlyNode* Node = FItems->RowList.NodeAt(Index);
    return Node || Index >= FItems->RowList.GetCount() ? Node : FItems->MaterialiseRow(Index);
}

TFlyNode* TCustomQuillTree::ExtractNodeFromMetaNode(int Index, TMetaNode* Meta) {
    if (!FItems || !Meta) return nullptr;
    // The owning collection makes the item and puts it into the row list in place of the placeholder.
    return FItems->MaterialiseRow(Index);
}

TFlyNode* TCustomQuillTree::GetNextVisible(TFlyNode* Node) {
    if (!Node || !FItems) return nullptr;
    const int Index = FItems->RowList.IndexOf(Node);
    if (Index >= 0 && Index + 1 < FItems->RowList.GetCount()) return GetNodeAtRow(GetFixedRows() + Index + 1);
    TFlyNode* Next = Node->GetNext();
    while (Next && !Next->IsNodeVisible()) Next = Next->GetNext();
    return Next;
}

TFlyNode* TCustomQuillTree::GetPrevVisible(TFlyNode* Node) {
    if (!Node || !FItems) return nullptr;
    const int Index = FItems->RowList.IndexOf(Node);
    if (Index > 0) return GetNodeAtRow(GetFixedRows() + Index - 1);
    TFlyNode* Prev = Node->GetPrev();
    while (Prev && !Prev->IsNodeVisible()) Prev = Prev->GetPrev();
    return Prev;
}

TFlyNode* TCustomQuillTree::GetLastVisibleNode() {
    const int Count = FItems ? FItems->RowList.GetCount() : 0;
    return Count == 0 ? nullptr : GetNodeAtRow(GetFixedRows() + Count - 1);
}

bool TCustomQuillTree::IsNodeVisible(TFlyNode* Node) const { return Node && Node->IsNodeVisible(); }

void TCustomQuillTree::MakeVisible(TFlyNode* Node) {
    if (Node) Node->MakeVisible();
}

void TCustomQuillTree::SetTopItem(TFlyNode* Node) {
    if (!Node || Node->GetOwner() != FItems.get()) return;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    Node->MakeVisible();
    if (!Guard || !Watch) return;
    const int Row = Node->GetRow();
    if (Row >= 0) SetTopRow(Row);
}

void TCustomQuillTree::SetFixedRows(int Value) {
    // In a form the number of rows comes before; it counts the heights that follow, and Loaded fits it to the nodes.
    if (HasState(csReading)) {
        const int Rows = GetRowCount();
        if (Value >= Rows && Value != GetFixedRows()) SetRowCount(Value + 1);
        TCustomExGrid::SetFixedRows(Value);
        SetRowCount(std::max(Rows, Value));
        return;
    }
    const TControlGuard Guard(this);
    // More rows are needed first, since the grid refuses fixed rows that leave no other row. Hidden nodes have none.
    const int Count = FItems ? FItems->GetCount() : 0;
    constexpr std::int64_t Most = std::numeric_limits<int>::max();
    std::int64_t Rows = GetRowCount();
    if (Count == 0 || Value >= GetRowCount()) Rows = std::int64_t{Value} + 1;
    if (Count > 0 && Value >= Count) Rows = std::int64_t{Count} + Value;
    Rows = std::min(Most, Rows);
    if (Rows >= GetFixedRows()) SetRowCount(static_cast<int>(Rows));
    if (!Guard) return;
    // A handler that was told of it may have decided otherwise.
    if (Value >= GetRowCount() && GetRowCount() != Rows) return;
    TCustomExGrid::SetFixedRows(Value);
    if (Guard) FixupRows();
}

// --- inserting and deleting rows -------------------------------------------------------------------------------

namespace {

// The whole slide takes about this long at most; a frame is shown for FrameTime unless that would exceed it.
constexpr std::chrono::milliseconds SlideTime{160};
constexpr std::chrono::milliseconds FrameTime{8};

} // namespace

// Nobody sees a hidden window slide, and a half changed tree must not be drawn.
bool TCustomQuillTree::CanSlide() const {
    return FSmoothExpandCollapse && HandleAllocated() && isVisible() && GetRedraw();
}

// Pixels that Count rows from Index take, cut at Limit.
int TCustomQuillTree::SlideExtent(int Index, int Count, int Limit) {
    std::int64_t Total = 0;
    for (int Row = Index; Row < Index + Count; ++Row) {
        Total += GetRowHeights(Row);
        if (Total > Limit) return Limit;
    }
    return static_cast<int>(Total);
}

// Puts the frame just drawn on the screen and leaves it there for a moment.
void TCustomQuillTree::ShowFrame(int Frame) {
    Flush();
    if (isVisible() && Frame * FrameTime < SlideTime) std::this_thread::sleep_for(FrameTime);
}

void TCustomQuillTree::SlideRowsDown(int Index, int Count) {
    const TControlGuard Guard(this);
    Update(); // the picture that slides must be the current one
    if (!Guard) return;
    const TRect Rows = BoxRect(GetLeftCol(), Index, GetLeftCol() + GetVisibleColCount(), Index + Count);
    TRect Area = GetClientRect();
    Area.Top = Rows.Top + GetRowHeights(Index);
    if (!IntersectRect(Area, Area, GetClientRect())) return;
    int Total = SlideExtent(Index, Count, Area.Height());

    TCanvas& Canvas = *GetCanvas();
    Canvas.GetBrush()->SetColor(GetColor());
    const auto Picture = TBitmap::CreateCompatible(Canvas, Area.Width(), Area.Height());
    Picture->GetCanvas()->BitBlt(0, 0, Area.Width(), Area.Height(), Canvas, Area.Left, Area.Top, SRCCOPY);
    for (int Step = 1; Total > 0; ++Step) {
        Canvas.BitBlt(Area.Left, Area.Top, Area.Right, Area.Bottom, *Picture->GetCanvas(), 0, 0, SRCCOPY);
        Canvas.FillRect({Area.Left, Area.Top, Area.Right, Area.Top + Step});
        Area.Top += Step;
        Total -= Step;
        ShowFrame(Step);
        if (!Guard) return;
    }
}

void TCustomQuillTree::SlideRowsUp(int Index, int Count) {
    const TControlGuard Guard(this);
    Update();
    if (!Guard) return;
    TRect Area = BoxRect(GetLeftCol(), Index + 1, GetLeftCol(), Index + 1);
    Area.Right = GetClientWidth();
    Area.Bottom = GetClientHeight();
    if (!IntersectRect(Area, Area, GetClientRect())) return;
    int Total = SlideExtent(Index, Count, Area.Height());

    TCanvas& Canvas = *GetCanvas();
    Canvas.GetBrush()->SetColor(GetColor());
    const auto Picture = TBitmap::CreateCompatible(Canvas, Area.Width(), Area.Height());
    Picture->GetCanvas()->BitBlt(0, 0, Area.Width(), Area.Height(), Canvas, Area.Left, Area.Top, SRCCOPY);
    int Offset = 0;
    for (int Step = 1; Total > 0; ++Step) {
        Canvas.BitBlt(Area.Left, Area.Top, Area.Right, Area.Bottom, *Picture->GetCanvas(), 0, Offset,
                      SRCCOPY);
        Total -= Step;
        if (Total > 0) {
            Offset += Step;
            Canvas.FillRect({Area.Left, Area.Bottom - Offset, Area.Right, Area.Bottom});
        }
        ShowFrame(Step);
        if (!Guard) return;
    }
}

void TCustomQuillTree::InsertRows(int Index, int Count) {
    if (Count <= 0) return;
    const TControlGuard Guard(this);
    if (CanSlide()) SlideRowsDown(Index, Count);
    if (!Guard) return;
    SetRowCount(GetRowCount() + Count);
    if (!Guard || FFitToHeight || IsLoading() || !HeightsMatter()) return;
    ShiftHeights(Index + 1 + Count, GetRowCount() - 1, -Count);
    if (Guard) StoreOwnHeights(Index + 1, Index + Count);
}

void TCustomQuillTree::DeleteRows(int Index, int Count) {
    if (Count <= 0) return;
    const TControlGuard Guard(this);
    if (CanSlide()) SlideRowsUp(Index, Count);
    if (!Guard) return;
    if (!IsLoading() && HeightsMatter()) {
        // The last Count rows go away.
        ShiftHeights(Index + 1, GetRowCount() - Count - 1, Count);
    }
    if (Guard) SetRowCount(GetRowCount() - Count);
}

void TCustomQuillTree::FixupRowHeights(int FromRow) {
    const TControlGuard Guard(this);
    FromRow = std::max(FromRow, 0);
    if (HeightsMatter()) StoreOwnHeights(FromRow, GetRowCount() - 1);
    if (Guard) InvalidateBox(0, FromRow, GetColCount() - 1, GetRowCount() - 1, false);
}

// --- heights -----------------------------------------------------------------------------------------------------

// Whether every node's row has the default height, so that no node need be asked.
bool TCustomQuillTree::HasUniformHeights() const {
    return IsLoading() || (!FFitToHeight && FItems && !FItems->GetHasStoredHeights());
}

// Whether moving stored heights from row to row could change anything that can be seen or noticed.
bool TCustomQuillTree::HeightsMatter() const {
    return (FItems && FItems->GetHasStoredHeights()) || OnRowHeightChanging || OnRowHeightChanged ||
           HasListener("rowHeightChanged(int,int)");
}

// Whether storing a height may run other code than ours.
bool TCustomQuillTree::HasHeightWatchers() const {
    return !StoresPlainTexts() || OnRowHeightChanging || OnRowHeightChanged ||
           HasListener("rowHeightChanged(int,int)");
}

// Calls Visit with the node of each of the rows First .. Last, null for placeholders. It must not change the rows.
template <class TVisit>
void TCustomQuillTree::VisitRows(int First, int Last, TVisit Visit) {
    int Row = std::max(First, GetFixedRows());
    Last = std::min(Last, GetFixedRows() + FItems->RowList.GetCount() - 1);
    while (Row <= Last) {
        for (TTreeSlot* const Slot : FItems->RowList.ChunkAt(Row - GetFixedRows())) {
            if (Row > Last) return;
            auto* const Item = Slot->IsPlaceholder() ? nullptr : static_cast<TTreeCollection*>(Slot);
            Visit(Row++, static_cast<TFlyNode*>(Item));
        }
    }
}

// Stores HeightOf(Row, the node's own height) in the nodes of the rows First .. Last, from the last row up when Down.
// Placeholders are passed over, and the scroll range follows once.
template <class THeight>
void TCustomQuillTree::StoreHeights(int First, int Last, bool Down, THeight HeightOf) {
    if (!FItems) return;
    const TControlGuard Guard(this);
    bool Changed = false;
    if (!HasHeightWatchers()) {
        VisitRows(First, Last, [&](int Row, TFlyNode* Node) {
            if (!Node) return;
            const int Height = HeightOf(Row, Node->GetHeightField());
            if (Height == Node->GetHeightField()) return;
            Node->SetHeightField(FFitToHeight ? -1 : Height);
            Changed = true;
        });
    } else {
        const TFlagScope Shifting(this, FShiftingHeights);
        const int Low = std::max(First, GetFixedRows());
        for (int Row = Down ? Last : Low; Guard && (Down ? Row >= Low : Row <= Last); Row += Down ? -1 : 1) {
            const TFlyNode* const Node = FItems->RowList.NodeAt(Row - GetFixedRows());
            if (!Node) continue;
            const int Height = HeightOf(Row, Node->GetHeightField());
            if (Height == Node->GetHeightField()) continue;
            Changed = true;
            SetRowHeights(Row, Height);
        }
    }
    if (!Guard || !Changed) return;
    InvalidateGrid();
    RowHeightsChanged();
}

// Each of the rows First .. Last takes the height that the row Offset further on has. Under FitToHeight storing only
// forgets measured heights, so nothing is measured to be moved.
void TCustomQuillTree::ShiftHeights(int First, int Last, int Offset) {
    if (First > Last) return;
    std::vector<int> Heights(static_cast<std::size_t>(Last - First + 1),
                             FFitToHeight ? -1 : GetDefaultRowHeight());
    const auto At = [&](int Row) -> int& { return Heights[static_cast<std::size_t>(Row - First)]; };
    const TControlGuard Guard(this);
    if (HasHeightWatchers() && !FFitToHeight) {
        for (int Row = First; Guard && Row <= Last; ++Row) At(Row) = GetRowHeights(Row + Offset);
    } else if (!FFitToHeight) {
        VisitRows(First + Offset, Last + Offset, [&](int Row, const TFlyNode* Node) {
            if (Node && Node->GetHeightField() != -1) At(Row - Offset) = Node->GetHeightField();
        });
    }
    if (Guard) StoreHeights(First, Last, Offset < 0, [&](int Row, int) { return At(Row); });
}

// Rows whose nodes have no height of their own get the default one.
void TCustomQuillTree::StoreOwnHeights(int First, int Last) {
    const int Default = GetDefaultRowHeight();
    StoreHeights(First, Last, false, [Default](int, int Height) { return Height < 1 ? Default : Height; });
}

int TCustomQuillTree::GetRowHeights(int Row) {
    if (HasUniformHeights() && Row >= GetFixedRows() && Row - GetFixedRows() < FItems->RowList.GetCount()) {
        return GetDefaultRowHeight();
    }
    // A placeholder is made real only to be measured.
    const int Index = Row - GetFixedRows();
    const bool HasEntry = FItems && Index >= 0 && Index < FItems->RowList.GetCount();
    if (HasEntry && !FFitToHeight && !FItems->RowList.NodeAt(Index)) return GetDefaultRowHeight();
    if (TFlyNode* Node = GetNodeAtRow(Row)) return RecalcNodeHeight(Node);
    return TCustomExGrid::GetRowHeights(Row);
}

void TCustomQuillTree::SetRowHeights(int Row, int Height) {
    TFlyNode* Node = GetNodeAtRow(Row);
    if (!Node) {
        TCustomExGrid::SetRowHeights(Row, Height);
        return;
    }
    if (FFitToHeight) {
        Node->SetHeightField(-1);
        return;
    }
    if (Height == Node->GetHeightField()) return;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    RowHeightChanging(Row, Height);
    if (!Guard || !Watch) return;
    Node->SetHeightField(Height);
    if (!FShiftingHeights) {
        InvalidateGrid();
        RowHeightsChanged();
    }
    if (Guard) RowHeightChanged(Row, Height);
}

int TCustomQuillTree::RecalcNodeHeight(TFlyNode* Node) {
    if (!Node || IsLoading()) return GetDefaultRowHeight();
    const int Stored = Node->GetHeightField();
    if (Stored != -1) return Stored;
    if (!FFitToHeight) return GetDefaultRowHeight();

    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    int Height = 1;
    for (int Col = 0; Col < GetColCount(); ++Col) {
        Node->SetHeightField(-1);
        Height = std::max(Height, CalcNodeHeight(Node, Col));
        if (!Guard || !Watch) return 1;
    }
    Node->SetHeightField(Height);
    return Height;
}

int TCustomQuillTree::CalcNodeHeight(TFlyNode* Node, int Col) {
    if (!Node || !FFitToHeight) return GetDefaultRowHeight();
    if (Node->GetHeightField() != -1 && !Node->GetHidden()) return Node->GetHeightField();

    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    const unsigned Flags = DrawTextBiDiModeFlags(TextFlags());
    TRect R{0, 0, FWordWrap ? GetColWidths(Col) : 0, 1};
    const std::string Text = GetNodeData(Node, Col);
    if (!Guard || !Watch) return 1;
    if (Col == FStructureCol) {
        // What the outline takes away from the text. A room for the image is kept even when the node has none.
        const int Level = Node->GetLevel();
        R.Right -= Level * FIndent;
        if ((FShowButtons || FShowlines) && (FShowRoot || Level >= 1)) R.Right -= FIndent;
        if (FShowLogic && Node->GetStateIndex() != 0) R.Right -= FIndent;
        if (FShowImages) R.Right -= FIndent;
    }
    R.Right -= TreeMetrics::TextMargin;
    if (Text.empty()) return 1;

    TCanvas& Canvas = *GetCanvas();
    Canvas.SetFont(GetFont());
    if (FHTMLDrawing) {
        DrawHTML(R, Canvas, Text, FWordWrap, true, HTMLLeft, HTMLTop);
    } else if (FWordWrap) {
        DrawRTLText(Canvas, Text, R, Flags | DT_CALCRECT, 0);
    } else {
        R.Bottom = Canvas.TextHeight(Text);
    }
    R.Bottom += TreeMetrics::RowTextPadding;
    if (FShowImages && FImages) R.Bottom = std::max(R.Bottom, FImages->GetHeight());
    Node->SetHeightField(R.Bottom);
    return R.Bottom;
}

void TCustomQuillTree::RefreshRowHeights() {
    if (FItems) FItems->ResetStoredHeights();
    InvalidateGrid();
}

int TCustomQuillTree::DisplayWidth(TFlyNode* Node) {
    if (!Node) return 0;
    GetCanvas()->SetFont(GetFont());
    return GetCanvas()->TextWidth(Node->GetText()) + 1;
}

} // namespace quill
