// Editing in place, and the clipboard commands.
#include "exgrid/InplaceEdit.h"
#include "host/base/Events.h"
#include "host/windows/FlagScope.h"
#include "quilltree/QuillTree.h"

#include <utility>

namespace quill {

namespace {

// The node that is being edited has lost its cell.
constexpr unsigned CM_ENDEDIT = 0xB100;
// Rows have moved under an editor that is always shown.
constexpr unsigned CM_REOPENEDIT = 0xB101;

} // namespace

// --- texts --------------------------------------------------------------------------------------------------------

std::string TCustomQuillTree::GetEditText(int ACol, int ARow) {
    const TControlGuard Guard(this);
    std::string Text = TCustomExGrid::GetEditText(ACol, ARow);
    if (!Guard || !Text.empty()) return Text;
    if (IsCaption(ACol, ARow)) return GetCaptions(GetColumnOrder(ACol));
    TFlyNode* Node = GetNodeAtRow(ARow);
    if (!Node || Node->GetDeleting()) return {};
    return GetNodeData(Node, ACol);
}

void TCustomQuillTree::SetEditText(int ACol, int ARow, const std::string& Value) {
    if (TFlyNode* Node = GetNodeAtRow(ARow)) StoreNodeText(Node, GetColumnOrder(ACol), Value);
}

void TCustomQuillTree::Edited(TFlyNode* Node, std::string& S) {
    if (Node) FireEvent(OnEdited, this, Node, S);
}

bool TCustomQuillTree::CanEditShow() {
    const TControlGuard Guard(this);
    bool Allow = TCustomExGrid::CanEditShow();
    if (!Guard || !HandleAllocated() || HasState(csDestroying) || !Allow || !OnEditing) return Allow;
    if (TFlyNode* Node = GetNodeAtRow(GetRow())) FireEvent(OnEditing, this, Node, Allow);
    return Guard && Allow;
}

void TCustomQuillTree::MoveEditor(int ACol, int ARow, const TRect& Rect, bool Show) {
    TRect Place = Rect;
    // In the structure column the editor covers the text, right of the outline, where that leaves anything.
    if (TFlyNode* Node = ACol == FStructureCol ? GetNodeAtRow(ARow) : nullptr) {
        const TRect Text = DisplayRect(Node, true);
        TRect Room{};
        if (IntersectRect(Room, Text, Rect)) Place = Text;
    }
    TCustomExGrid::MoveEditor(ACol, ARow, Place, Show);
}

bool TCustomQuillTree::NeedToShowEditor() { return !IsDragging() && TCustomExGrid::NeedToShowEditor(); }

// --- the edited node ----------------------------------------------------------------------------------------------

// Rows move while the user types, so the editor belongs to a node and a data column.
void TCustomQuillTree::EditStarted(int ACol, int ARow) {
    FEditNode = GetNodeAtRow(ARow);
    FEditCol = !FEditNode ? NoEdit : ACol == FStructureCol ? EditsText : GetColumnOrder(ACol);
}

void TCustomQuillTree::StoreEdit(int ACol, int ARow, const std::string& Text) {
    if (!FEditNode) return; // there was none, or it is gone
    FindEditedCell(ACol, ARow);
    if (ACol >= 0 && ARow >= 0) {
        TCustomExGrid::StoreEdit(ACol, ARow, Text);
        return;
    }
    // Hidden by now, or its column is.
    StoreNodeText(FEditNode, FEditCol == EditsText ? GetColumnOrder(FStructureCol) : FEditCol, Text);
}

// Where the edited text is shown now; -1 for nowhere.
void TCustomQuillTree::FindEditedCell(int& ACol, int& ARow) const {
    ARow = FEditNode ? FEditNode->GetRow() : -1;
    ACol = FEditCol == EditsText ? FStructureCol : GetDisplayColumn(FEditCol);
}

void TCustomQuillTree::StoreNodeText(TFlyNode* Node, int DataCol, const std::string& Value) {
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    std::string S = Value;
    Edited(Node, S);
    if (!Guard || !Watch) return;
    if (DataCol == GetColumnOrder(FStructureCol)) {
        Node->SetText(S);
    } else if (const int Col = GetDisplayColumn(DataCol); Col >= 0) {
        SetNodeData(Node, Col, S);
    } else {
        SetNodeCells(Node, DataCol, S);
    }
    if (Guard && Watch) Q_EMIT edited(Node, DataCol);
}

// After rows or columns may have moved: the editor and the current cell stay on the edited node.
void TCustomQuillTree::FollowEdit() {
    if (!IsEditorShowing() || GetEditorCell() == NoGridCoord || FEditCol == NoEdit) return;
    int Col = -1;
    int Row = -1;
    FindEditedCell(Col, Row);
    if (Row >= 0 && Col >= 0) {
        MoveEditedCell(Col, Row);
    } else {
        PostMessage(CM_ENDEDIT, 0, 0); // not from the middle of what is going on
    }
}

void TCustomQuillTree::UpdateEdit() {
    FollowEdit();
    TCustomExGrid::UpdateEdit();
}

void TCustomQuillTree::SetEditorMode(bool Value) {
    FReopensEditor = false;
    TCustomExGrid::SetEditorMode(Value);
}

// Nodes close the editor when rows come or go. One that is always shown comes back once they have their places.
void TCustomQuillTree::HideEditor() {
    const TControlGuard Guard(this);
    const bool Reopens = GetEditorMode() && HasOption(goAlwaysShowEditor) && HasOption(goEditing);
    TCustomExGrid::HideEditor();
    if (!Guard || !Reopens) return;
    FReopensEditor = true;
    PostMessage(CM_REOPENEDIT, 0, 0);
}

// Editor mode may be on although no editor covers the current cell, which then is a cell like others.
void TCustomQuillTree::InvalidateCell(int ACol, int ARow) {
    const bool Inside = ACol >= 0 && ARow >= 0 && ACol < GetColCount() && ARow < GetRowCount();
    if (Inside && GetEditorMode() && !IsEditorShown()) {
        InvalidateRect({ACol, ARow, ACol, ARow});
    } else {
        TCustomExGrid::InvalidateCell(ACol, ARow);
    }
}

void TCustomQuillTree::WndProc(TMessage& Message) {
    if (Message.Msg == CM_REOPENEDIT) {
        const bool Wanted = HasOption(goAlwaysShowEditor) && HasOption(goEditing) && !GetEditorMode();
        if (std::exchange(FReopensEditor, false) && Wanted) ShowEditor();
        return;
    }
    if (Message.Msg != CM_ENDEDIT) {
        const bool Action = Message.Msg >= WM_KEYDOWN && Message.Msg <= WM_MOUSEWHEEL;
        const TValueScope InAction(this, FInAction, FInAction || Action);
        TCustomExGrid::WndProc(Message);
        return;
    }
    // The editor may have gone on to another cell meanwhile.
    int Col = -1;
    int Row = -1;
    FindEditedCell(Col, Row);
    if (FEditCol != NoEdit && (Row < 0 || Col < 0)) HideEditor();
}

// --- from the node's side -----------------------------------------------------------------------------------------

bool TCustomQuillTree::EditNodeText(TFlyNode* Node) {
    if (FStructureCol == -1 || FStructureCol < GetFixedCols() || FStructureCol >= GetColCount()) return false;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    // A node inside a collapsed one is shown first, so that there is something to edit.
    if (Node->GetRow() < 0) Node->MakeVisible();
    if (!Guard || !Watch || Node->GetRow() < 0) return false;
    SetCol(FStructureCol);
    if (!Guard || !Watch) return false;
    SetRow(Node->GetRow());
    // A refused move leaves another node current, whose text must not be edited instead.
    if (!Guard || !Watch || GetRow() != Node->GetRow()) return false;
    SetFocus();
    if (Guard) SetEditorMode(true);
    return Guard && IsEditorShowing();
}

void TCustomQuillTree::EndNodeEdit(TFlyNode* Node, bool Cancel) {
    // The strict lower bound differs from starting an edit; kept so.
    const bool HasColumn =
        FStructureCol != -1 && FStructureCol > GetFixedCols() && FStructureCol < GetColCount();
    if (!HasColumn || GetRow() != Node->GetRow() || !IsEditorShowing()) return;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    if (!Cancel) {
        const std::string Text = GetEditText(GetCol(), GetRow());
        if (Guard && Watch) Node->SetText(Text);
    }
    if (!Guard) return;
    if (Cancel) {
        DiscardEdit();
    } else {
        SetEditorMode(false);
    }
}

// --- the clipboard ------------------------------------------------------------------------------------------------

void TCustomQuillTree::WMCut(TMessage& Message) { DoClipboard(Message, &TCustomQuillTree::CutSelection); }

void TCustomQuillTree::WMCopy(TMessage& Message) { DoClipboard(Message, &TCustomQuillTree::CopySelection); }

void TCustomQuillTree::WMPaste(TMessage& Message) { DoClipboard(Message, &TCustomQuillTree::PasteSelection); }

// The result tells whether there was somebody to do it: a handler, or an override of the operation.
void TCustomQuillTree::DoClipboard(TMessage& Message, void (TCustomQuillTree::*Operation)()) {
    if (IsEditorShowing()) return;
    const TControlGuard Guard(this);
    FClipboardUnused = false;
    (this->*Operation)();
    Message.Result = Guard && FClipboardUnused ? 0 : 1;
}

void TCustomQuillTree::FireClipboard(const TNotifyEvent& Event) {
    FClipboardUnused = !Event;
    FireEvent(Event, this);
}

void TCustomQuillTree::CutSelection() { FireClipboard(OnCutSelection); }
void TCustomQuillTree::CopySelection() { FireClipboard(OnCopySelection); }
void TCustomQuillTree::PasteSelection() { FireClipboard(OnPasteSelection); }

void TCustomQuillTree::cutSelection() { SendClipboard(WM_CUT); }
void TCustomQuillTree::copySelection() { SendClipboard(WM_COPY); }
void TCustomQuillTree::pasteSelection() { SendClipboard(WM_PASTE); }

void TCustomQuillTree::SendClipboard(unsigned Msg) {
    TCustomControl* Target = this;
    if (IsEditorShowing()) Target = GetInplaceEditor();
    Target->Perform(Msg, 0, 0);
}

// The tree that has the focus goes before a menu that serves another one, but only where it has something to do.
TCustomControl::TClipboardKey TCustomQuillTree::GetClipboardKey(unsigned Msg) const {
    const TNotifyEvent& Event = Msg == WM_CUT    ? OnCutSelection
                                : Msg == WM_COPY ? OnCopySelection
                                                 : OnPasteSelection;
    return Event ? TClipboardKey::BeforeMenus : TClipboardKey::AfterMenus;
}

} // namespace quill
