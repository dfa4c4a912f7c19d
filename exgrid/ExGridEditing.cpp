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
    FAskedCell = NoGridCoord;
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
    ++FEditSession;
    const TFlagScope Hiding(this, FHidingEdit);
    FInplaceEdit->Hide();
}

// Whoever is asked may show a message, at whose end we get the focus again: not a reason to ask once more.
bool TCustomExGrid::MayEdit() {
    if (FAskingEdit) return false;
    const TFlagScope Asking(this, FAskingEdit);
    if (TCustomExGrid::CanEditShow()) FAskedCell = FCurrent;
    return CanEditShow();
}

void TCustomExGrid::UpdateEdit() {
    const TControlGuard Guard(this);
    if (!MayEdit() || !Guard) return;
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
    if (!MayEdit() || !Guard || FInplaceEdit == nullptr) return;
    // Application code may have moved on without the editor.
    if (GetEditorCell() == FCurrent)
        MoveEditor(FCurrent.X, FCurrent.Y, CellRect(FCurrent.X, FCurrent.Y), true);
}

// After the focus came, or the layout has changed. What was allowed or refused stays so.
void TCustomExGrid::RefreshEdit(bool Show) {
    if (!FEditorMode) return;
    if (GetEditorCell() != FCurrent) {
        if (FAskedCell != FCurrent) UpdateEdit();
    } else if (IsEditorShown()) {
        PlaceEditor(Show);
    } else if (TCustomExGrid::CanEditShow()) {
        MoveEditor(FCurrent.X, FCurrent.Y, CellRect(FCurrent.X, FCurrent.Y), true);
    }
}

// Brings the editor that is shown to where its cell is now.
void TCustomExGrid::PlaceEditor(bool Show) {
    if (IsEditorShown() && GetEditorCell() == FCurrent && HandleAllocated())
        MoveEditor(FCurrent.X, FCurrent.Y, CellRect(FCurrent.X, FCurrent.Y), Show);
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
    const auto Waits = [this] {
        // While a text is being stored a handler may end the edit once more, or another one.
        return FInplaceEdit != nullptr && !HasState(csDestroying) && FInplaceCol != -1 && FInplaceRow != -1 &&
               FStoringSession != FEditSession;
    };
    if (!Waits()) return;
    const TControlGuard Guard(this);
    FInplaceEdit->CommitComposition();
    if (!Guard || !Waits()) return;
    const TValueScope Storing(this, FStoringSession, FEditSession);
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

void TCustomExGrid::MoveEditor(int ACol, int ARow, const TRect& Rect, bool Show) {
    if (FInplaceEdit == nullptr) return;
    // The editor stays inside the window, and off the fixed cells unless its own is one.
    TExGridDI DI;
    CalcFI(DI);
    TRect Area = GetClientRect();
    if (ACol >= FFixedCols)
        (UseRightToLeftAlignment() ? Area.Right : Area.Left) +=
            UseRightToLeftAlignment() ? -DI.Horz.FixedBoundary : DI.Horz.FixedBoundary;
    if (ARow >= FFixedRows) Area.Top += DI.Vert.FixedBoundary;
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
    if (!Guard) return;
    if (HasOption(goAlwaysShowEditor)) {
        UpdateText();
    } else {
        SetEditorMode(false);
    }
}

} // namespace quill
