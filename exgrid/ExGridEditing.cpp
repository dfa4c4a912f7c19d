// The grid's side of editing in place: editor mode, which cell is edited, and its text.
#include "exgrid/ExGrid.h"

namespace quill {

// The editor control is made here; without one the grid keeps its editor mode and shows nothing.
TInplaceEdit* TCustomExGrid::CreateEditor() { return nullptr; }

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

void TCustomExGrid::ShowEditorChar(char32_t) {
    ShowEditor();
    // The character then goes to the editor as WM_CHAR, so that it starts the text.
}

void TCustomExGrid::HideEditor() {
    FEditorMode = false;
    HideEdit();
}

void TCustomExGrid::HideEdit() {
    if (FInplaceEdit == nullptr) return;
    const TControlGuard Guard(this);
    UpdateText();
    if (!Guard) return;
    FInplaceCol = -1;
    FInplaceRow = -1;
    // The editor hides here.
}

void TCustomExGrid::UpdateEdit() {
    const TControlGuard Guard(this);
    if (!CanEditShow() || !Guard) return;
    if (FInplaceEdit == nullptr) {
        FInplaceEdit = CreateEditor();
        if (FInplaceEdit == nullptr) return;
        // A new editor is attached to the grid and becomes its child here.
    } else if (FInplaceCol != FCurrent.X || FInplaceRow != FCurrent.Y) {
        HideEdit();
        if (!Guard) return;
    }
    if (FInplaceCol != FCurrent.X || FInplaceRow != FCurrent.Y) {
        FInplaceCol = FCurrent.X;
        FInplaceRow = FCurrent.Y;
        // The editor takes the cell's text here and selects all of it.
    }
    if (CanEditShow() && Guard) MoveEditor(FCurrent.X, FCurrent.Y, CellRect(FCurrent.X, FCurrent.Y), true);
}

void TCustomExGrid::InvalidateEditor() {
    FInplaceCol = -1;
    FInplaceRow = -1;
    UpdateEdit();
}

void TCustomExGrid::UpdateText() {
    if (FInplaceCol == -1 || FInplaceRow == -1) return;
    // SetEditText(FInplaceCol, FInplaceRow, the editor's text) stands here once there is an editor.
}

// The editor goes to Rect here: shown when Show is set, else only placed.
void TCustomExGrid::MoveEditor(int, int, const TRect&, bool) {}

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

void TCustomExGrid::DoExit() {
    const TControlGuard Guard(this);
    TCustomControl::DoExit();
    if (Guard && !HasOption(goAlwaysShowEditor)) SetEditorMode(false);
}

} // namespace quill
