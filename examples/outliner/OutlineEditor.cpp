#include "OutlineEditor.h"

#include "ClipboardText.h"
#include "OutlineTree.h"

#include "../common/OutlineFile.h"

#include "flyedit/FlyEdit.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QScopedValueRollback>

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace quill::examples {

TOutlineEditor::TOutlineEditor(TOutlineTree* Tree) : QObject(Tree), FTree(Tree) {
    Tree->OnCutSelection = [this](TObject*) { Cut(); };
    Tree->OnCopySelection = [this](TObject*) { Copy(); };
    Tree->OnPasteSelection = [this](TObject*) { Paste(); };
    Tree->OnDropNodes = [this](const std::vector<TFlyNode*>& Roots, const TNodePlace& Place, bool Copy) {
        DropNodes(Roots, Place, Copy);
    };
    Tree->OnNodesTaken = [this] { CutOut(tr("Move")); };
    Tree->OnOLEDragDrop = [this](TObject*, NV_IDataObject* Data, TShiftState, TPoint Pt, int& Effect) {
        // Nodes of this program are not read from their data.
        if (!Data || dynamic_cast<TNodesDropSource*>(Data)) return;
        TFlyNode* const Target = FTree->GetNodeAt(Pt.X, Pt.Y);
        if (!DropData(*Data, FTree->PlaceOfDrop(Target, FTree->GetDropPlace()))) Effect = DROPEFFECT_NONE;
    };
    connect(Tree, &TOutlineTree::sorting, this, [this] {
        FUndo.Remember(tr("Sort"), std::make_unique<TOrderStep>(*FTree));
        Q_EMIT undoChanged();
    });
    // What can be undone is remembered by the addresses of nodes.
    connect(Tree, &TOutlineTree::deletion, this, [this] {
        if (!FWorking) Forget();
    });
}

void TOutlineEditor::Forget() {
    if (UndoName().isEmpty() && RedoName().isEmpty()) return;
    FUndo.Forget();
    Q_EMIT undoChanged();
}

void TOutlineEditor::EditCell() {
    if (!FTree->GetSelection()) {
        Q_EMIT said(tr("No node is selected"));
        return;
    }
    // Only cells can be edited, not whole rows.
    FTree->SetSelectsRows(false);
    FTree->setFocus();
    FTree->SetEditorMode(true);
}

// --- adding and deleting -------------------------------------------------------------------------------------------

TNodePlace TOutlineEditor::PlaceBehindCurrent() const {
    TFlyNode* const Current = FTree->GetSelection();
    if (!Current) return {nullptr, FTree->GetItems()->GetCount()};
    return {Current->GetParent(), Current->GetIndex() + 1};
}

void TOutlineEditor::AddNode() {
    FTree->HideEditor();
    AddNodeAt(PlaceBehindCurrent(), FTree->GetSelection());
}

void TOutlineEditor::AddChild() {
    FTree->HideEditor();
    TFlyNode* const Current = FTree->GetSelection();
    if (!Current) {
        AddNode();
        return;
    }
    const TFlyNode* const Last = Current->GetLastChild();
    AddNodeAt({Current, Current->GetCount()}, Last);
}

// The new node looks like Model (null: has no picture and no mark), but nothing is done or chosen yet.
void TOutlineEditor::AddNodeAt(const TNodePlace& Place, const TFlyNode* Model) {
    const QScopedValueRollback<bool> Working(FWorking, true);
    TSubtrees Subtrees;
    TFlyNode* const New = Subtrees.GetNodes().Add(nullptr, {});
    if (Model) {
        New->SetImageIndexField(Model->GetImageIndex());
        New->SetSelectedIndexField(Model->GetSelectedIndex());
        New->SetStateIndexField(TOutlineTree::FreshState(Model->GetStateIndex()));
    }
    const std::vector<TFlyNode*> Nodes = Subtrees.PutInto(*FTree->GetItems(), {&Place, 1}, false);
    Changed(tr("New Node"), std::make_unique<TContentStep>(Nodes, FTree->GetColCount()), Nodes);
    FTree->SetSelectsRows(false);
    Nodes.front()->EditText();
}

std::vector<TFlyNode*> TOutlineEditor::Selected() {
    FTree->HideEditor();
    std::vector<TFlyNode*> Roots = SelectedRoots(*FTree);
    if (Roots.empty()) Q_EMIT said(tr("No node is selected"));
    return Roots;
}

void TOutlineEditor::DeleteSelected() { CutOut(tr("Delete")); }

void TOutlineEditor::CutOut(const QString& Name) {
    std::vector<TFlyNode*> Roots = Selected();
    if (Roots.empty()) return;
    const QScopedValueRollback<bool> Working(FWorking, true);
    auto Step = std::make_unique<TContentStep>(std::move(Roots), FTree->GetColCount());
    const std::vector<TFlyNode*> Next = Step->Revert(*FTree);
    Changed(Name, std::move(Step), Next);
}

// The dialog gives all nodes back as new ones.
void TOutlineEditor::EditNodes() {
    FTree->HideEditor();
    const QScopedValueRollback<bool> Working(FWorking, true);
    TFlyNodes& Nodes = *FTree->GetItems();
    auto Step = std::make_unique<TReplaceStep>(*FTree);
    quill::EditNodes(&Nodes, {}, FTree->window());
    if (!Step->IsNeeded(*FTree)) return;
    MakeRoomFor(Nodes);
    TFlyNode* const First = Nodes.GetFirstNode();
    Changed(tr("Edit Nodes"), std::move(Step), First ? std::vector{First} : std::vector<TFlyNode*>());
}

// --- moving --------------------------------------------------------------------------------------------------------

std::vector<TFlyNode*> TOutlineEditor::SelectedBlock() {
    std::vector<TFlyNode*> Block = Selected();
    for (std::size_t Index = 1; Index < Block.size(); ++Index) {
        if (Block[Index - 1]->GetNextSibling() == Block[Index]) continue;
        Q_EMIT said(tr("Only nodes that stand side by side can be moved together"));
        return {};
    }
    return Block;
}

// The neighbour goes past the nodes, which costs one move however many they are.
void TOutlineEditor::MoveAlong(int Step) {
    const std::vector<TFlyNode*> Block = SelectedBlock();
    if (Block.empty()) return;
    TFlyNode* const Neighbour = Step < 0 ? Block.front()->getPrevSibling() : Block.back()->GetNextSibling();
    if (!Neighbour) return;
    const int Index = Neighbour->GetIndex() - Step * static_cast<int>(Block.size());
    auto Move = std::make_unique<TMoveStep>();
    Move->Move(*Neighbour, {Neighbour->GetParent(), Index}, *FTree->GetItems());
    Changed(tr("Move"), std::move(Move), Block);
}

void TOutlineEditor::Indent() {
    const std::vector<TFlyNode*> Block = SelectedBlock();
    if (Block.empty()) return;
    TFlyNode* const Above = Block.front()->getPrevSibling();
    if (!Above) return;
    auto Move = std::make_unique<TMoveStep>();
    for (TFlyNode* Node : Block) Move->Move(*Node, {Above, Above->GetCount()}, *FTree->GetItems());
    Changed(tr("Move"), std::move(Move), Block);
}

void TOutlineEditor::Outdent() {
    const std::vector<TFlyNode*> Block = SelectedBlock();
    if (Block.empty()) return;
    const TFlyNode* const Parent = Block.front()->GetParent();
    if (!Parent) return;
    auto Move = std::make_unique<TMoveStep>();
    TNodePlace Place = PlaceOf(*Parent);
    for (TFlyNode* Node : Block) {
        ++Place.Index;
        Move->Move(*Node, Place, *FTree->GetItems());
    }
    Changed(tr("Move"), std::move(Move), Block);
}

// --- the clipboard -------------------------------------------------------------------------------------------------

void TOutlineEditor::Cut() {
    const std::vector<TFlyNode*> Roots = Selected();
    if (Roots.empty()) return;
    Copy(Roots);
    CutOut(tr("Cut"));
}

void TOutlineEditor::Copy() {
    const std::vector<TFlyNode*> Roots = Selected();
    if (!Roots.empty()) Copy(Roots);
}

void TOutlineEditor::Copy(const std::vector<TFlyNode*>& Roots) {
    const TNodesOut Nodes = NodesOut(Roots);
    auto* const Data = new QMimeData; // the clipboard takes it
    Data->setData(NodesMimeType, QByteArray::fromStdString(Nodes.NodesText));
    Data->setText(QString::fromStdString(Nodes.PlainText));
    QApplication::clipboard()->setMimeData(Data);
}

void TOutlineEditor::Paste() {
    FTree->HideEditor();
    const QMimeData* const Data = QApplication::clipboard()->mimeData();
    TNodesIn Nodes;
    if (Data) Nodes = NodesOfTexts(Data->data(NodesMimeType).toStdString(), Data->text().toStdString());
    if (Nodes.Subtrees) {
        Insert(tr("Paste"), std::move(Nodes), PlaceBehindCurrent());
    } else {
        Q_EMIT said(tr("The clipboard holds no nodes and no text"));
    }
}

// Puts nodes that are none of this outline yet at a place, the others behind the first, and makes room for their
// fields.
void TOutlineEditor::Insert(const QString& Name, TNodesIn In, TNodePlace Place) {
    const QScopedValueRollback<bool> Working(FWorking, true);
    TFlyNodes& New = In.Subtrees->GetNodes();
    KeepOneChoice(*In.Subtrees, Place.Parent);
    const int OldColumns = FTree->GetColCount();
    MakeRoomFor(New);
    std::vector<TNodePlace> Places(static_cast<std::size_t>(New.GetCount()), Place);
    for (std::size_t Index = 0; Index < Places.size(); ++Index)
        Places[Index].Index += static_cast<int>(Index);
    const std::vector<TFlyNode*> Nodes = In.Subtrees->PutInto(*FTree->GetItems(), Places, false);
    if (FTree->GetColCount() > OldColumns) Q_EMIT columnsChanged();
    if (Place.Parent) Place.Parent->Expand(false);
    Changed(Name, std::make_unique<TContentStep>(Nodes, OldColumns), Nodes);
    if (In.CellsLeftOut > 0) {
        Q_EMIT said(
            tr("%n cell(s) beyond column %1 were left out", nullptr, In.CellsLeftOut).arg(MaxPastedColumns));
    }
}

void TOutlineEditor::MakeRoomFor(TFlyNodes& Nodes) {
    int Columns = FTree->GetColCount();
    for (TFlyNode* Node = Nodes.GetFirstNode(); Node; Node = Node->GetNext()) {
        Columns = std::max(Columns, std::min(Node->GetCellCount(), MaxPastedColumns));
    }
    FTree->SetColumns(Columns);
    const TSaveNodesOptions Fields = FieldsInUse(Nodes);
    if (Fields.Contains(tsnIncludeImageIndex)) FTree->SetShowImages(true);
    if (Fields.Contains(tsnIncludeStateIndex)) FTree->SetShowLogic(true);
}

// Among radio buttons of which one is chosen, those that come to them are not.
void TOutlineEditor::KeepOneChoice(TSubtrees& Pasted, TFlyNode* Parent) {
    bool Chosen = false;
    for (TFlyNode* Node = Pasted.GetNodes().GetFirstNode(); Node; Node = Node->GetNextSibling()) {
        if (Node->GetStateIndex() != TOutlineTree::stChosen) continue;
        if (!Chosen) Chosen = FTree->HasChoice(Parent);
        if (Chosen) Node->SetStateIndexField(TOutlineTree::stNotChosen);
        Chosen = true;
    }
}

// --- drags ---------------------------------------------------------------------------------------------------------

void TOutlineEditor::DropNodes(const std::vector<TFlyNode*>& Roots, const TNodePlace& Place, bool Copy) {
    FTree->HideEditor();
    auto* const From = dynamic_cast<TOutlineTree*>(Roots.front()->GetTree());
    if (From == FTree && !Copy) {
        MoveNodes(Roots, Place);
        return;
    }
    TNodesIn Nodes{std::make_unique<TSubtrees>(), 0};
    for (TFlyNode* Root : Roots) Nodes.Subtrees->Add(*Root);
    Insert(Copy ? tr("Copy") : tr("Move"), std::move(Nodes), Place);
    if (!Copy && From && From->OnNodesTaken) From->OnNodesTaken();
}

void TOutlineEditor::MoveNodes(const std::vector<TFlyNode*>& Roots, const TNodePlace& Place) {
    TFlyNodes& Nodes = *FTree->GetItems();
    // The first node from there on that stays marks the place while others come and go before it.
    const std::unordered_set<const TFlyNode*> Moving(Roots.begin(), Roots.end());
    TFlyNode* Next = NodeAt(Place, Nodes);
    while (Next && Moving.count(Next) > 0) Next = Next->GetNextSibling();
    auto Move = std::make_unique<TMoveStep>();
    {
        std::optional<TUpdateBracket> Bracket;
        OpenFor(Roots.size(), Nodes, Bracket);
        for (TFlyNode* Node : Roots) {
            const TNodePlace From = PlaceOf(*Node);
            TNodePlace To = Next ? PlaceOf(*Next) : PlaceBehindLast(Place.Parent, Nodes);
            if (From.Parent == To.Parent && From.Index < To.Index) --To.Index;
            if (From != To) Move->Move(*Node, To, Nodes);
        }
    }
    if (Place.Parent) Place.Parent->Expand(false);
    if (Move->IsEmpty()) {
        Show(Roots);
    } else {
        Changed(tr("Move"), std::move(Move), Roots);
    }
}

bool TOutlineEditor::DropData(NV_IDataObject& Data, const TNodePlace& Place) {
    FTree->HideEditor();
    const std::vector<std::string>& Captions = FTree->FileCaptions();
    const auto ColumnOf = [&](const char* Caption) {
        const auto Found = std::find(Captions.begin(), Captions.end(), Caption);
        return Found == Captions.end() ? 0 : static_cast<int>(Found - Captions.begin());
    };
    // Sizes and dates go where the outline has such columns, as a saved folder does.
    TNodesIn Nodes = NodesOfDrop(Data, {FTree->GetShowImages(), ColumnOf("Size"), ColumnOf("Modified")});
    if (!Nodes.Subtrees) {
        Q_EMIT said(tr("What was dropped holds no nodes, no files and no text"));
        return false;
    }
    Insert(tr("Drop"), std::move(Nodes), Place);
    return true;
}

// --- undo ----------------------------------------------------------------------------------------------------------

void TOutlineEditor::Undo() {
    if (!UndoName().isEmpty()) Revert();
}

void TOutlineEditor::Redo() {
    if (!RedoName().isEmpty()) Revert();
}

void TOutlineEditor::Revert() {
    const QScopedValueRollback<bool> Working(FWorking, true);
    FTree->HideEditor();
    const int Columns = FTree->GetColCount();
    const std::vector<TFlyNode*> Nodes = FUndo.Revert(*FTree);
    if (FTree->GetColCount() != Columns) Q_EMIT columnsChanged();
    Show(Nodes);
    Q_EMIT undoChanged();
    Q_EMIT edited();
}

void TOutlineEditor::Changed(const QString& Name, std::unique_ptr<TStructureStep> Step,
                             const std::vector<TFlyNode*>& Nodes) {
    FUndo.Remember(Name, std::move(Step));
    Show(Nodes);
    Q_EMIT undoChanged();
    Q_EMIT edited();
}

// Selects the nodes, the first of them as the current one.
void TOutlineEditor::Show(const std::vector<TFlyNode*>& Nodes) {
    FTree->SetSelection(Nodes.empty() ? nullptr : Nodes.front());
    for (TFlyNode* Node : Nodes) Node->SetSelectedField(true);
    if (FTree->GetFitToHeight()) FTree->RefreshRowHeights();
    FTree->Invalidate();
}

} // namespace quill::examples
