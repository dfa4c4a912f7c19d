// The grid's side of editing in place: editor mode, which cell is edited, and its text.
#include "exgrid/ExGrid.h"
#include "exgrid/InplaceEdit.h"
#include "host/windows/FlagScope.h"

#include <algorithm>

namespace quill {

TInplaceEdit* TCustomExGrid::CreateEditor() { return new TInplaceEdit(this); }

bool TCustomExGrid::IsEditorShown() const { return FInplaceEdit != nullptr && FInplaceEdit->Visible(); }

void TCustomExGrid::SetEditorMode(bool Value) {
    if (Value) {
        ShowEditor();
    } else {
        FEditorMode = false;
        HideEditor();
    }
}

bool TCustomExGrid::CanEditShow() {
    if (!HasOption(goEditing) || HasOption(goRowSelect) || !FEditorMode) return false;
    if (HasState(csDesigning) || HasState(csDestroying) || !HandleAllocated()) return false;
    return HasOption(goAlwaysShowEditor) || IsActiveControl();
}

void TCustomExGrid::ShowEditor() {
    const TControlGuard Guard(this);
    if (FEditorMode) {
        HideEditor();
        if (!Guard) return;
    }
    FEditorMode = true;
    UpdateEdit();
}

void TCustomExGrid::ShowEditorChar(char32_t Ch) {
    const TControlGuard Guard(this);
    ShowEditor();
    // A character that was typed for a cell that may not be edited goes nowhere.
    if (Guard && IsEditorShown()) FInplaceEdit->PostMessage(WM_CHAR, Ch, 0);
}

void TCustomExGrid::HideEditor() {
    FEditorMode = false;
    HideEdit();
}

void TCustomExGrid::HideEdit() {
    if (FInplaceEdit == nullptr) return;
    const TControlGuard Guard(this);
    const unsigned Session = FEditSession;
    UpdateText();
    // A handler may have taken the editor away, or opened it for another cell.
    if (!Guard || FInplaceEdit == nullptr || Session != FEditSession) return;
    FInplaceCol = -1;
    FInplaceRow = -1;
    const TFlagScope Hiding(this, FHidingEdit);
    FInplaceEdit->Hide();
}

void TCustomExGrid::UpdateEdit() {
    const TControlGuard Guard(this);
    if (!CanEditShow() || !Guard) return;
    if (FInplaceEdit == nullptr) {
        FInplaceEdit = CreateEditor();
        if (FInplaceEdit == nullptr) return;
        FInplaceEdit->SetGrid(this);
        FInplaceEdit->SetParent(this);
    } else if (FInplaceCol != FCurrent.X || FInplaceRow != FCurrent.Y) {
        HideEdit();
        if (!Guard || FInplaceEdit == nullptr) return;
    }
    if (FInplaceCol != FCurrent.X || FInplaceRow != FCurrent.Y) {
        FInplaceCol = FCurrent.X;
        FInplaceRow = FCurrent.Y;
        const unsigned Session = ++FEditSession;
        EditStarted(FInplaceCol, FInplaceRow);
        if (!Guard || FInplaceEdit == nullptr) return;
        FInplaceEdit->UpdateContents();
        if (!Guard || FInplaceEdit == nullptr || Session != FEditSession) return;
        FInplaceEdit->SelectAll();
    }
    if (!CanEditShow() || !Guard || FInplaceEdit == nullptr) return;
    // Application code may have moved on without the editor.
    if (FInplaceCol == FCurrent.X && FInplaceRow == FCurrent.Y)
        MoveEditor(FCurrent.X, FCurrent.Y, CellRect(FCurrent.X, FCurrent.Y), true);
}

void TCustomExGrid::InvalidateEditor() {
    FInplaceCol = -1;
    FInplaceRow = -1;
    UpdateEdit();
}

void TCustomExGrid::DiscardEdit() {
    FInplaceCol = -1;
    FInplaceRow = -1;
    HideEditor();
}

void TCustomExGrid::UpdateText() {
    // While the text is being stored a handler may end the edit once more.
    if (FInplaceEdit == nullptr || FStoringEdit || HasState(csDestroying)) return;
    if (FInplaceCol == -1 || FInplaceRow == -1) return;
    const TFlagScope Storing(this, FStoringEdit);
    StoreEdit(FInplaceCol, FInplaceRow, FInplaceEdit->GetText());
}

void TCustomExGrid::StoreEdit(int ACol, int ARow, const std::string& Text) {
    // A cell that went away with its row or column takes no text.
    if (ACol < FColCount && ARow < FRowCount) SetEditText(ACol, ARow, Text);
}

void TCustomExGrid::EditStarted(int, int) {}

void TCustomExGrid::MoveEditedCell(int ACol, int ARow) {
    if (FInplaceCol == -1 || FInplaceRow == -1 || TGridCoord{ACol, ARow} == GetEditorCell()) return;
    if (FCurrent == GetEditorCell()) {
        InvalidateGrid();
        FCurrent = {ACol, ARow};
        FAnchor = FCurrent;
        FOpposite = FCurrent;
    }
    FInplaceCol = ACol;
    FInplaceRow = ARow;
    if (IsEditorShown() && HandleAllocated()) MoveEditor(ACol, ARow, CellRect(ACol, ARow), false);
}

void TCustomExGrid::MoveEditor(int, int, const TRect& Rect, bool Show) {
    if (FInplaceEdit == nullptr) return;
    // The editor stays off the fixed cells and inside the window.
    TExGridDI DI;
    CalcFI(DI);
    TRect Area = GetClientRect();
    (UseRightToLeftAlignment() ? Area.Right : Area.Left) +=
        UseRightToLeftAlignment() ? -DI.Horz.FixedBoundary : DI.Horz.FixedBoundary;
    Area.Top += DI.Vert.FixedBoundary;
    TRect Place{};
    if (!IntersectRect(Place, Rect, Area)) Place = {};
    if (Show) {
        FInplaceEdit->Move(Place);
    } else {
        FInplaceEdit->UpdateLoc(Place);
    }
}

bool TCustomExGrid::NeedToShowEditor() { return true; }

bool TCustomExGrid::CanEditAcceptKey(char32_t) { return true; }

bool TCustomExGrid::CanEditModify() { return true; }

std::string TCustomExGrid::GetEditText(int ACol, int ARow) {
    std::string Result;
    FireEvent(OnGetEditText, this, ACol, ARow, Result);
    return Result;
}

void TCustomExGrid::SetEditText(int ACol, int ARow, const std::string& Value) {
    const TControlGuard Guard(this);
    FireEvent(OnSetEditText, this, ACol, ARow, Value);
    if (Guard) Q_EMIT cellEdited(ACol, ARow, Value);
}

std::string TCustomExGrid::GetEditMask(int ACol, int ARow) {
    std::string Result;
    FireEvent(OnGetEditMask, this, ACol, ARow, Result);
    return Result;
}

int TCustomExGrid::GetEditLimit() { return 0; }

// The editor is being destroyed.
void TCustomExGrid::EditorGone(const TInplaceEdit* Editor) {
    if (Editor != FInplaceEdit) return;
    const bool HadFocus = FInplaceEdit->ContainsFocus();
    FInplaceEdit = nullptr;
    FInplaceCol = -1;
    FInplaceRow = -1;
    FEditorMode = false;
    if (HadFocus && !HasState(csDestroying)) SetFocus();
}

void TCustomExGrid::DoExit() {
    const TControlGuard Guard(this);
    TCustomControl::DoExit();
    if (Guard && !HasOption(goAlwaysShowEditor)) SetEditorMode(false);
}

} // namespace quill
