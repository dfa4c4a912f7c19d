// Editing in place, and the clipboard commands.
#include "host/base/Events.h"
#include "quilltree/QuillTree.h"

namespace quill {

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
    TFlyNode* Node = GetNodeAtRow(ARow);
    if (!Node) return;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    std::string S = Value;
    Edited(Node, S);
    if (!Guard || !Watch) return;
    if (ACol == FStructureCol) {
        Node->SetText(S);
    } else {
        SetNodeData(Node, ACol, S);
    }
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
    // In the structure column the editor covers the text, right of the outline.
    TFlyNode* Node = ACol == FStructureCol ? GetNodeAtRow(ARow) : nullptr;
    TCustomExGrid::MoveEditor(ACol, ARow, Node ? DisplayRect(Node, true) : Rect, Show);
}

bool TCustomQuillTree::NeedToShowEditor() { return TCustomExGrid::NeedToShowEditor(); }

// --- from the node's side -----------------------------------------------------------------------------------------

bool TCustomQuillTree::EditNodeText(TFlyNode* Node) {
    if (FStructureCol == -1 || FStructureCol < GetFixedCols() || FStructureCol >= GetColCount()) return false;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    Node->MakeVisible();
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
    if (Guard) SetEditorMode(false);
}

// --- the clipboard ------------------------------------------------------------------------------------------------

void TCustomQuillTree::WMCut(TMessage&) {
    if (!IsEditorShowing()) CutSelection();
}

void TCustomQuillTree::WMCopy(TMessage&) {
    if (!IsEditorShowing()) CopySelection();
}

void TCustomQuillTree::WMPaste(TMessage&) {
    if (!IsEditorShowing()) PasteSelection();
}

void TCustomQuillTree::CutSelection() { FireEvent(OnCutSelection, this); }
void TCustomQuillTree::CopySelection() { FireEvent(OnCopySelection, this); }
void TCustomQuillTree::PasteSelection() { FireEvent(OnPasteSelection, this); }

void TCustomQuillTree::cutSelection() { SendClipboard(WM_CUT); }
void TCustomQuillTree::copySelection() { SendClipboard(WM_COPY); }
void TCustomQuillTree::pasteSelection() { SendClipboard(WM_PASTE); }

void TCustomQuillTree::SendClipboard(unsigned Msg) { Perform(Msg, 0, 0); }

// The tree that has the focus goes before a menu that serves another one, but only where it has something to do.
TCustomControl::TClipboardKey TCustomQuillTree::GetClipboardKey(unsigned Msg) const {
    const TNotifyEvent& Event = Msg == WM_CUT    ? OnCutSelection
                                : Msg == WM_COPY ? OnCopySelection
                                                 : OnPasteSelection;
    return Event ? TClipboardKey::BeforeMenus : TClipboardKey::AfterMenus;
}

} // namespace quill
