#include "flyedit/EditorTree.h"

#include "flyedit/HourGlass.h"
#include "host/windows/Keys.h"

#include <QContextMenuEvent>
#include <QWidget>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace quill {

namespace {

constexpr int HoverExpandTime = 700; // milliseconds

} // namespace

TEditorTree::TEditorTree(QWidget* AParent) : TQuillTree(AParent) {
    SetOptions({goEditing, goRowMoving, goRangeSelect});
    SetFixedRows(0);
    SetShowlines(true);
    SetShowRoot(true);
    SetShowButtons(true);
    SetShowImages(false);
    SetToolTips(false);
    SetLineColor(clBtnFace);
    SetFixedLineColor(clBtnShadow);
    // What is dragged goes where the mark says.
    SetDropMarks(true);
    SetAutoDrop(true);
    SetHoverExpandTime(HoverExpandTime);
}

void TEditorTree::ShowColumns() {
    SetOptions(GetOptions() + TGridOptions{goFixedVertLine, goVertLine, goColSizing, goColMoving});
}

void TEditorTree::KeyDown(std::uint16_t& Key, TShiftState Shift) {
    const bool Selected = GetSelection() != nullptr;
    if (Key == VK_F3 && Selected && Shift == TShiftState{ssCtrl}) {
        Key = 0;
        Q_EMIT addChildPressed();
    } else if (Key == VK_F3 && Selected && Shift.IsEmpty()) {
        Key = 0;
        Q_EMIT addPressed();
    } else if (Key == VK_F4 && Selected && Shift.IsEmpty()) {
        Key = 0;
        Q_EMIT deletePressed();
    } else {
        TQuillTree::KeyDown(Key, Shift);
    }
}

void TEditorTree::contextMenuEvent(QContextMenuEvent* Event) {
    Event->accept();
    QPoint Place = Event->globalPos();
    if (Event->reason() == QContextMenuEvent::Keyboard && GetSelection()) {
        // Below what it is called for, not in the middle of the tree.
        const TRect Cell = CellRect(GetCol(), GetRow());
        const QPoint Below(layoutDirection() == Qt::RightToLeft ? Cell.Right : Cell.Left, Cell.Bottom);
        if (viewport()->rect().contains(Below)) Place = viewport()->mapToGlobal(Below);
    }
    Q_EMIT menuRequested(Place);
}

void TEditorTree::FocusCell(int ACol, int ARow, bool MoveAnchor, TShiftState Shift, TSelectionWay Way) {
    const TControlGuard Guard(this);
    TQuillTree::FocusCell(ACol, ARow, MoveAnchor, Shift, Way);
    if (Guard) Q_EMIT cellSelected();
}

// The current row may have another node now, or none.
void TEditorTree::Change(TFlyNode* Node) {
    const TControlGuard Guard(this);
    TQuillTree::Change(Node);
    if (Guard) Q_EMIT cellSelected();
}

bool TEditorTree::ChangeState(TFlyNode* Node, int NewState) {
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    const int Old = Node->GetStateIndex();
    const bool Result = TQuillTree::ChangeState(Node, NewState);
    if (Guard && Watch && Node->GetStateIndex() != Old) Q_EMIT nodesModified();
    return Result;
}

// An editor that closes stores its text whether it was changed or not.
void TEditorTree::SetEditText(int ACol, int ARow, const std::string& Value) {
    if (Value == GetEditText(ACol, ARow)) return;
    const TControlGuard Guard(this);
    TQuillTree::SetEditText(ACol, ARow, Value);
    if (Guard) Q_EMIT nodesModified();
}

void TEditorTree::ColumnMoved(int FromIndex, int ToIndex) {
    const TControlGuard Guard(this);
    HideEditor();
    if (!Guard) return;
    MoveCells(FromIndex, ToIndex);
    TQuillTree::ColumnMoved(FromIndex, ToIndex);
    if (!Guard) return;
    InitColumnsMap();
    Invalidate();
    Q_EMIT columnMoved(FromIndex, ToIndex);
}

void TEditorTree::MoveCells(int From, int To) {
    const THourGlass Wait;
    std::vector<std::string_view> Cells;
    std::vector<std::string> Texts;
    for (TFlyNode* Node = GetItems()->FirstExisting(); Node; Node = Node->GetNextExisting()) {
        const int Count = Node->GetCellCount();
        if (Count <= std::min(From, To)) continue;
        Texts.clear();
        for (int Index = 0; Index < std::max(Count, std::max(From, To) + 1); ++Index)
            Texts.emplace_back(Node->GetCellView(Index));
        const auto First = Texts.begin();
        if (From < To) {
            std::rotate(First + From, First + From + 1, First + To + 1);
        } else {
            std::rotate(First + To, First + From, First + From + 1);
        }
        Cells.assign(Texts.begin(), Texts.end());
        Node->StoreTexts(Node->GetText(), Cells);
    }
    std::vector<std::string> Captions;
    for (int Col = 0; Col < GetColCount(); ++Col) Captions.push_back(GetCaptions(Col));
    std::string Moved = Captions[static_cast<std::size_t>(From)];
    Captions.erase(Captions.begin() + From);
    Captions.insert(Captions.begin() + To, std::move(Moved));
    for (int Col = 0; Col < GetColCount(); ++Col) SetCaptions(Col, Captions[static_cast<std::size_t>(Col)]);
}

void TEditorTree::ColumnWidthChanged(int Index, int Value) {
    const TControlGuard Guard(this);
    TQuillTree::ColumnWidthChanged(Index, Value);
    if (Guard) Q_EMIT columnSized(Index, Value);
}

void TEditorTree::DropNodes(const std::vector<TFlyNode*>& Nodes, TFlyNode* Target, TDropPlace Place,
                            bool Copy) {
    const TControlGuard Guard(this);
    TQuillTree::DropNodes(Nodes, Target, Place, Copy);
    if (Guard) Q_EMIT nodesModified();
}

} // namespace quill
