#include "OutlineEditor.h"

#include "ClipboardText.h"
#include "OutlineTree.h"

#include "../common/OutlineFile.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QScopedValueRollback>

#include <algorithm>

namespace quill::examples {

TOutlineEditor::TOutlineEditor(TOutlineTree* Tree) : QObject(Tree), FTree(Tree) {
    Tree->OnCutSelection = [this](TObject*) { Cut(); };
    Tree->OnCopySelection = [this](TObject*) { Copy(); };
    Tree->OnPasteSelection = [this](TObject*) { Paste(); };
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
    TSubtrees Subtrees;
    for (TFlyNode* Root : Roots) Subtrees.Add(*Root);
    auto* const Data = new QMimeData; // the clipboard takes it
    // Tags are those of one outline only.
    Data->setData(MimeType, QByteArray::fromStdString(Subtrees.NodesText(DefaultOptions())));
    Data->setText(QString::fromStdString(PlainTextOf(Subtrees.GetNodes())));
    QApplication::clipboard()->setMimeData(Data);
}

// Null when there are no nodes in it. What calls itself nodes text and is malformed is taken for any other text.
std::unique_ptr<TSubtrees> TOutlineEditor::ReadClipboard(const QMimeData& Data, int& CellsLeftOut) {
    const auto Read = [](const std::string& NodesText) -> std::unique_ptr<TSubtrees> {
        try {
            auto Subtrees = std::make_unique<TSubtrees>(NodesText);
            if (Subtrees->GetNodes().GetCount() > 0) return Subtrees;
        } catch (const Exception&) {
        }
        return nullptr;
    };
    const std::string Own = Data.data(MimeType).toStdString();
    if (LooksLikeNodesText(Own)) {
        if (auto Subtrees = Read(Own)) return Subtrees;
    }
    const std::string Text = Data.text().toStdString();
    if (LooksLikeNodesText(Text)) {
        if (auto Subtrees = Read(Text)) return Subtrees;
    }
    const TTextAsNodes Plain = NodesTextOfPlain(Text);
    CellsLeftOut = Plain.CellsLeftOut;
    return Plain.NodesText.empty() ? nullptr : Read(Plain.NodesText);
}

void TOutlineEditor::Paste() {
    FTree->HideEditor();
    const QMimeData* const Data = QApplication::clipboard()->mimeData();
    int CellsLeftOut = 0;
    const std::unique_ptr<TSubtrees> Subtrees = Data ? ReadClipboard(*Data, CellsLeftOut) : nullptr;
    if (!Subtrees) {
        Q_EMIT said(tr("The clipboard holds no nodes and no text"));
        return;
    }
    const QScopedValueRollback<bool> Working(FWorking, true);
    TFlyNodes& Pasted = Subtrees->GetNodes();
    int Columns = 1;
    for (TFlyNode* Node = Pasted.GetFirstNode(); Node; Node = Node->GetNext()) {
        Columns = std::max(Columns, std::min(Node->GetCellCount(), MaxPastedColumns));
    }
    KeepOneChoice(*Subtrees);
    const int OldColumns = FTree->GetColCount();
    if (Columns > OldColumns) FTree->SetColumns(Columns);
    const TSaveNodesOptions Fields = FieldsInUse(Pasted);
    if (Fields.Contains(tsnIncludeImageIndex)) FTree->SetShowImages(true);
    if (Fields.Contains(tsnIncludeStateIndex)) FTree->SetShowLogic(true);

    std::vector<TNodePlace> Places(static_cast<std::size_t>(Pasted.GetCount()), PlaceBehindCurrent());
    for (std::size_t Index = 0; Index < Places.size(); ++Index)
        Places[Index].Index += static_cast<int>(Index);
    const std::vector<TFlyNode*> Nodes = Subtrees->PutInto(*FTree->GetItems(), Places, false);
    if (Columns > OldColumns) Q_EMIT columnsChanged();
    Changed(tr("Paste"), std::make_unique<TContentStep>(Nodes, OldColumns), Nodes);
    if (CellsLeftOut > 0) {
        Q_EMIT said(
            tr("%n cell(s) beyond column %1 were left out", nullptr, CellsLeftOut).arg(MaxPastedColumns));
    }
}

// Among radio buttons of which one is chosen, pasted ones are not.
void TOutlineEditor::KeepOneChoice(TSubtrees& Pasted) {
    bool Chosen = false;
    for (TFlyNode* Node = Pasted.GetNodes().GetFirstNode(); Node; Node = Node->GetNextSibling()) {
        if (Node->GetStateIndex() != TOutlineTree::stChosen) continue;
        if (!Chosen) Chosen = FTree->HasChoice(PlaceBehindCurrent().Parent);
        if (Chosen) Node->SetStateIndexField(TOutlineTree::stNotChosen);
        Chosen = true;
    }
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
