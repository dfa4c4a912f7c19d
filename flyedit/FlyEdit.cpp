// What the nodes editor does; how it looks stands in FlyEditForm.cpp.
#include "flyedit/FlyEdit.h"

#include "flyedit/EditorTree.h"
#include "flyedit/HourGlass.h"
#include "host/base/Errors.h"
#include "host/base/Numbers.h"
#include "host/base/Streams.h"
#include "quilltree/FaithfulText.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>

#include <algorithm>
#include <utility>
#include <vector>

namespace quill {

namespace {

const std::string NewNodeText = "New Node";
const std::string NewWidth = "75"; // of a column that is added to a section, pixels
const std::string NewAlign = "0";
constexpr int LastAlign = 2;

// What is no whole number counts as 0.
int NumberIn(const QLineEdit& Edit) { return StrToIntDef(Edit.text().toStdString(), 0); }

int AlignCode(const TStringList& Aligns, int Col) {
    const int Code = Col >= 0 && Col < Aligns.GetCount() ? StrToIntDef(Aligns[Col], 0) : 0;
    return std::clamp(Code, 0, LastAlign);
}

void FillUp(TStringList& List, int Count, const std::string& Text) {
    while (List.GetCount() < Count) List.Add(Text);
}

void CopyDefaults(const TFlyNodes& From, TFlyNodes& To) {
    To.SetDefaultImageIndex(From.GetDefaultImageIndex());
    To.SetDefaultSelectedIndex(From.GetDefaultSelectedIndex());
    To.SetDefaultStateIndex(From.GetDefaultStateIndex());
}

// The editor shows all branches open; which ones its caller had opened is kept as the data of its nodes.
void MarkOpenBranches(const TFlyNodes& Nodes, TFlyNodes& Copies, void* Mark) {
    TFlyNode* Copy = Copies.FirstExisting();
    for (const TFlyNode* Node = Nodes.FirstExisting(); Node && Copy;
         Node = Node->GetNextExisting(), Copy = Copy->GetNextExisting()) {
        if (Node->GetExpanded()) Copy->SetData(Mark);
    }
}

void OpenMarkedBranches(const TFlyNodes& Copies, TFlyNodes& Nodes, const void* Mark) {
    const TUpdateBracket Bracket(&Nodes);
    TFlyNode* Node = Nodes.FirstExisting();
    for (const TFlyNode* Copy = Copies.FirstExisting(); Node && Copy;
         Node = Node->GetNextExisting(), Copy = Copy->GetNextExisting()) {
        if (Copy->GetData() == Mark && Node->GetCount() > 0) Node->SetExpandedField(true);
    }
}

bool RunEditor(TFlyNodes* Nodes, TModifiedProc ModifiedProc, const std::optional<TEditorSection>& Section,
               QWidget* Parent) {
    // The parent may be destroyed while the dialog is open, and takes it along.
    const QPointer<TFlyEditor> Editor(new TFlyEditor(Parent));
    try {
        Editor->Edit(Nodes, std::move(ModifiedProc), Section);
        const bool Ok = Editor->exec() == QDialog::Accepted;
        if (!Editor) return false;
        const bool Result = Ok && Editor->GetModified();
        if (Result) Editor->Store();
        delete Editor.data();
        return Result;
    } catch (...) {
        delete Editor.data();
        throw;
    }
}

} // namespace

bool EditNodes(TFlyNodes* Nodes, TModifiedProc ModifiedProc, QWidget* Parent) {
    return Nodes && RunEditor(Nodes, std::move(ModifiedProc), {}, Parent);
}

bool EditSectionNodes(TFlyNodes* Nodes, int ColCount, int StructureCol, TStringList* Widths,
                      TModifiedProc ModifiedProc, TStringList* Aligns, QWidget* Parent) {
    if (!Nodes) return false;
    TStringList OwnWidths;
    TStringList OwnAligns;
    TEditorSection Section{.ColCount = std::max(ColCount, 1),
                           .StructureCol = std::max(StructureCol, 0),
                           .Widths = Widths ? Widths : &OwnWidths,
                           .Aligns = Aligns ? Aligns : &OwnAligns};
    Section.ColCount = std::max(Section.ColCount, Section.StructureCol + 1);
    return RunEditor(Nodes, std::move(ModifiedProc), Section, Parent);
}

// --- opening and closing ------------------------------------------------------------------------------------------

void TFlyEditor::Edit(TFlyNodes* Nodes, TModifiedProc ModifiedProc,
                      const std::optional<TEditorSection>& Section) {
    FReady = false;
    FNodes.Reset(Nodes);
    FModifiedProc = std::move(ModifiedProc);
    FSection = Section;
    TCustomQuillTree* const Tree = Nodes->GetTree();
    if (Tree) FTree->SetUniqueTags(Tree->GetUniqueTags());
    FTree->GetItems()->Assign(Nodes);
    CopyDefaults(*Nodes, *FTree->GetItems());
    MarkOpenBranches(*Nodes, *FTree->GetItems(), this);
    FTree->FullExpand();
    if (Tree) TakeColumnsOf(*Tree);
    if (FSection) TakeSection();
    FAligns->setVisible(FSection.has_value());
    FStructureCol = FTree->GetStructureCol();
    SelectFirstRow();
    FReady = true;
    FModified = false;
    FillControls();
    FTree->setFocus();
}

void TFlyEditor::TakeColumnsOf(TCustomQuillTree& Tree) {
    FTree->SetColCount(Tree.GetColCount());
    FTree->SetFixedCols(Tree.GetFixedCols());
    FTree->SetFixedRows(Tree.GetFixedRows());
    FTree->ShowColumns();
    // The tree's columns may have been moved; here they stand in the order of the data.
    for (int Col = 0; Col < Tree.GetColCount(); ++Col) {
        FTree->SetColWidths(Tree.GetColumnOrder(Col), Tree.GetColWidths(Col));
        FTree->SetCaptions(Col, Tree.GetCaptions(Col));
    }
    FTree->SetStructureCol(Tree.GetColumnOrder(Tree.GetStructureCol()));
    FTree->InitColumnsMap();
}

void TFlyEditor::TakeSection() {
    FTree->SetColCount(FSection->ColCount);
    FTree->SetStructureCol(FSection->StructureCol);
    // Without a tree there is no row of captions, which columns are sized and moved by.
    if (FTree->GetFixedRows() == 0) FTree->SetFixedRows(1);
    FTree->ShowColumns();
    FillUp(*FSection->Aligns, FSection->ColCount, NewAlign);
    for (int Col = 0; Col < FSection->ColCount; ++Col) {
        if (Col < FSection->Widths->GetCount()) FTree->SetColWidths(Col, StrToInt((*FSection->Widths)[Col]));
        FTree->SetColAlignMent(Col, static_cast<TAlignment>(AlignCode(*FSection->Aligns, Col)));
        // Something to tell them apart by when they are moved.
        if (FTree->GetCaptions(Col).empty()) FTree->SetCaptions(Col, IntToStr(Col + 1));
    }
    while (FSection->Widths->GetCount() < FSection->ColCount)
        FSection->Widths->Add(IntToStr(FTree->GetColWidths(FSection->Widths->GetCount())));
    FTree->InitColumnsMap();
}

void TFlyEditor::Store() {
    FTree->HideEditor();
    if (!FNodes) return;
    const QPointer<TFlyEditor> Self(this);
    TCustomQuillTree* const Tree = FNodes->GetTree();
    // Texts have moved with the columns, so the outline has to, too.
    if (const int Col = FTree->GetStructureCol(); Tree && Col != FStructureCol) {
        const int Shown = Tree->GetDisplayColumn(Col);
        Tree->SetStructureCol(Shown < 0 ? Col : Shown); // a tree with fewer columns gets more
    }
    if (!Self || !FNodes) return;
    FNodes->Assign(FTree->GetItems());
    if (!Self || !FNodes) return;
    CopyDefaults(*FTree->GetItems(), *FNodes);
    OpenMarkedBranches(*FTree->GetItems(), *FNodes, this);
}

void TFlyEditor::done(int Result) {
    if (Result == Accepted) FTree->HideEditor(); // stores what was typed
    const QPointer<TFlyEditor> Self(this);
    const bool Open = isVisible();
    while (Self && FUntold > 0) TellUntold();
    if (Self && isVisible() == Open) QDialog::done(Result);
}

void TFlyEditor::Apply() {
    const QPointer<TFlyEditor> Self(this);
    if (!Attempt([this] { Store(); }) || !Self) return;
    FStructureCol = FTree->GetStructureCol();
    if (FNodes && FNodes->GetTree()) FModified = false;
    // The focus would go to the next control in order, whatever that does.
    if (FApply->hasFocus() || FCancel->hasFocus()) FOk->setFocus();
    FCancel->setEnabled(false);
    FApply->setEnabled(false);
}

void TFlyEditor::SetModified() {
    FModified = true;
    FApply->setEnabled(true);
    FCancel->setEnabled(true);
}

void TFlyEditor::Modified() {
    SetModified();
    TellModified();
}

void TFlyEditor::TellModified() {
    const TModifiedProc Proc = FModifiedProc; // it may destroy the dialog
    if (Proc) Proc();
}

void TFlyEditor::ModifiedSoon() {
    SetModified();
    ++FUntold;
    QMetaObject::invokeMethod(this, &TFlyEditor::TellUntold, Qt::QueuedConnection);
}

void TFlyEditor::TellUntold() {
    if (FUntold == 0) return;
    --FUntold;
    TellModified();
}

// --- nodes --------------------------------------------------------------------------------------------------------

TFlyNode* TFlyEditor::GetSelectedNode() const { return FTree->GetSelection(); }

void TFlyEditor::SelectNode(TFlyNode* Node) {
    if (Node) FTree->SetSelection(Node);
    FillControls();
}

void TFlyEditor::SelectFirstRow() {
    if (TFlyNode* const First = FTree->GetNodeAtRow(FTree->GetFixedRows())) FTree->SetSelection(First);
}

void TFlyEditor::AddNode() {
    FTree->HideEditor();
    SelectNode(FTree->GetItems()->Add(GetSelectedNode(), NewNodeText));
    Modified();
}

void TFlyEditor::AddChildNode() {
    FTree->HideEditor();
    TFlyNode* const Node = FTree->GetItems()->AddChild(GetSelectedNode(), NewNodeText);
    if (Node) Node->MakeVisible();
    SelectNode(Node);
    Modified();
}

void TFlyEditor::DeleteNode() {
    FTree->HideEditor();
    TFlyNode* const Node = GetSelectedNode();
    if (!Node) return;
    // So that keys go on at this place: the node that comes next, or else before.
    TFlyNode* Sibling = Node->GetNextVisibleSibling();
    const TNodeWatch Next(Sibling ? Sibling : FTree->GetPrevVisible(Node));
    Node->Delete();
    SelectNode(Next);
    Modified();
}

void TFlyEditor::ClearNodes() {
    FTree->GetItems()->Clear();
    FillControls();
    Modified();
}

void TFlyEditor::ClearCells() {
    FTree->HideEditor();
    FTree->GetItems()->ClearCells();
    FTree->Invalidate();
    Modified();
}

void TFlyEditor::MoveNode(bool Down) {
    FTree->HideEditor();
    TFlyNode* const Node = GetSelectedNode();
    TFlyNode* const Other = !Node ? nullptr : Down ? Node->GetNextSibling() : Node->GetPrevSibling();
    if (!Other) return;
    Node->SetIndex(Other->GetIndex());
    SelectNode(Node);
    Modified();
}

void TFlyEditor::AddCell() {
    FTree->HideEditor();
    if (!Attempt([this] { FTree->SetColCount(FTree->GetColCount() + 1); })) return;
    FTree->ShowColumns();
    if (FSection) {
        FSection->Widths->Add(NewWidth);
        FSection->Aligns->Add(NewAlign);
    }
    Modified();
}

void TFlyEditor::Enumerate(bool ImageIndexes, bool SelectedIndexes) {
    {
        const THourGlass Wait;
        int Number = 0;
        for (TFlyNode* Node = FTree->GetItems()->GetFirstNode(); Node; Node = Node->GetNext(), ++Number) {
            if (ImageIndexes) Node->SetImageIndex(Number);
            if (SelectedIndexes) Node->SetSelectedIndex(Number);
        }
    }
    FillControls();
    ModifiedSoon(); // comes from the menu
}

// --- the fields of a node -----------------------------------------------------------------------------------------

void TFlyEditor::FillControls() {
    if (!FReady) return;
    const QScopedValueRollback<bool> Filling(FFilling, true);
    TFlyNode* const Node = GetSelectedNode();
    FImageText->setText(Node ? QString::number(Node->GetImageIndex()) : QString());
    FSelectedText->setText(Node ? QString::number(Node->GetSelectedIndex()) : QString());
    FUniqueTag->setText(Node ? QString::number(Node->GetUniqueTag()) : QString());
    const int State = Node ? Node->GetStateIndex() : -1;
    FStateText->setCurrentIndex(State < FStateText->count() ? State : -1);
    if (FSection) FillAligns();
}

void TFlyEditor::FillAligns() {
    const QScopedValueRollback<bool> Filling(FFilling, true);
    FAlignButtons->button(AlignCode(*FSection->Aligns, FTree->GetCol()))->setChecked(true);
}

// Each of the three values goes to all selected nodes, whichever was changed.
void TFlyEditor::ApplyFields() {
    if (FFilling || !FReady) return;
    std::vector<TFlyNode*> Nodes;
    FTree->FillSelectedList(Nodes);
    const int ImageIndex = NumberIn(*FImageText);
    const int SelectedIndex = NumberIn(*FSelectedText);
    const int StateIndex = FStateText->currentIndex();
    {
        // The tree tells of each state that it is given.
        const QScopedValueRollback<bool> Filling(FFilling, true);
        for (TFlyNode* Node : Nodes) {
            Node->SetImageIndex(ImageIndex);
            Node->SetSelectedIndex(SelectedIndex);
            // A state that is not in the list stays.
            if (StateIndex >= 0) Node->SetStateIndex(StateIndex);
        }
    }
    ModifiedSoon();
}

void TFlyEditor::SetDefaults() {
    TFlyNodes& Nodes = *FTree->GetItems();
    Nodes.SetDefaultImageIndex(NumberIn(*FImageText));
    Nodes.SetDefaultSelectedIndex(NumberIn(*FSelectedText));
    if (FStateText->currentIndex() >= 0) Nodes.SetDefaultStateIndex(FStateText->currentIndex());
    Modified();
}

// --- columns ------------------------------------------------------------------------------------------------------

void TFlyEditor::ApplyAlign(int Code) {
    if (FFilling || !FSection) return;
    const int Col = FTree->GetCol();
    FillUp(*FSection->Aligns, Col + 1, NewAlign);
    FSection->Aligns->Put(Col, IntToStr(Code));
    FTree->SetColAlignMent(Col, static_cast<TAlignment>(Code));
    FTree->Invalidate();
    ModifiedSoon();
}

void TFlyEditor::ColumnMoved(int From, int To) {
    if (FSection) {
        for (TStringList* List : {FSection->Widths, FSection->Aligns}) {
            FillUp(*List, std::max(From, To) + 1, List == FSection->Widths ? NewWidth : NewAlign);
            List->Move(From, To);
        }
        for (int Col = std::min(From, To); Col <= std::max(From, To); ++Col)
            FTree->SetColAlignMent(Col, static_cast<TAlignment>(AlignCode(*FSection->Aligns, Col)));
        FillAligns();
    }
    ModifiedSoon();
}

void TFlyEditor::ColumnSized(int Col, int Width) {
    if (!FReady || !FSection) return;
    FillUp(*FSection->Widths, Col + 1, NewWidth);
    FSection->Widths->Put(Col, IntToStr(Width));
    ModifiedSoon();
}

// --- files --------------------------------------------------------------------------------------------------------

void TFlyEditor::Tell(const QString& Message) {
    // On the heap, as the editor may go while it is open, and takes it along.
    auto* const Box = new QMessageBox(QMessageBox::Warning, windowTitle(), Message, QMessageBox::Ok, this);
    Box->setTextFormat(Qt::PlainText);
    Box->setAttribute(Qt::WA_DeleteOnClose);
    Box->exec();
}

bool TFlyEditor::Attempt(const std::function<void()>& Work) {
    try {
        Work();
        return true;
    } catch (const Exception& Error) {
        Tell(QString::fromStdString(Error.GetMessage()));
        return false;
    }
}

void TFlyEditor::AskLoad() {
    const QPointer<QFileDialog> Dialog(new QFileDialog(this, tr("Choose file for load nodes")));
    Dialog->setFileMode(QFileDialog::ExistingFile);
    Dialog->setNameFilters({tr("Nodes (*.nodes *.txt)"), tr("All files (*)")});
    const bool Chosen = Dialog->exec() == QDialog::Accepted;
    if (!Dialog) return; // gone with the editor
    const QStringList Files = Dialog->selectedFiles();
    delete Dialog.data();
    if (Chosen && !Files.isEmpty()) LoadFrom(Files.first());
}

void TFlyEditor::AskSave() {
    const QPointer<QFileDialog> Dialog(new QFileDialog(this, tr("Choose file for save nodes")));
    Dialog->setAcceptMode(QFileDialog::AcceptSave);
    Dialog->setNameFilters({tr("Nodes (*.nodes *.txt)"), tr("All files (*)")});
    Dialog->setDefaultSuffix("nodes");
    const bool Chosen = Dialog->exec() == QDialog::Accepted;
    if (!Dialog) return;
    const QStringList Files = Dialog->selectedFiles();
    delete Dialog.data();
    if (Chosen && !Files.isEmpty()) SaveTo(Files.first());
}

void TFlyEditor::LoadFrom(const QString& FileName) {
    const std::string Name = FileName.toStdString();
    const QPointer<TFlyEditor> Self(this);
    const bool Loaded = Attempt([this, &Name] {
        const THourGlass Wait;
        {
            // Away from the tree first, so that a broken file costs nothing.
            TFlyNodes Trial;
            Trial.LoadFromFile(Name);
        }
        FTree->HideEditor();
        FTree->GetItems()->LoadFromFile(Name);
        MarkOpenBranches(*FTree->GetItems(), *FTree->GetItems(), this);
    });
    if (!Self) return;
    if (Loaded) SelectFirstRow();
    FillControls();
    if (Loaded) Modified();
}

void TFlyEditor::SaveTo(const QString& FileName) {
    Attempt([this, &FileName] {
        const THourGlass Wait;
        FTree->HideEditor();
        TFlyNodes& Nodes = *FTree->GetItems();
        // Other programs can read the nodes text; where it would lose something, our own format is saved.
        TMemoryStream File;
        if (const auto Text = FaithfulNodesText(Nodes)) {
            File.WriteBuffer(Text->data(), static_cast<std::int64_t>(Text->size()));
        } else {
            Nodes.SaveToStream(File);
        }
        File.SaveToFile(FileName.toStdString());
    });
}

} // namespace quill
