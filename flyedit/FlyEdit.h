// The "FlyNodes Editor": a dialog in which a user edits the nodes of a tree by hand, on a private copy.
#pragma once

#include "host/base/Strings.h"
#include "quilltree/FlyNodes.h"
#include "treecoll/LifeWatch.h"

#include <QDialog>
#include <QPointer>
#include <QSize>

#include <functional>
#include <optional>
#include <string>

class QAbstractButton;
class QBoxLayout;
class QButtonGroup;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace quill {

class TEditorTree;

// Called after each change in the editor, before it reaches the edited nodes.
using TModifiedProc = std::function<void()>;

// Opens the editor on Nodes, with the columns of their tree when they have one, and returns when it is closed. With OK
// the nodes are replaced by what was edited, their branches open as before; the result tells whether there was a change
// that is not applied yet. The nodes or their tree may go meanwhile: the dialog then only closes. May raise what reading
// nodes raises.
bool EditNodes(TFlyNodes* Nodes, TModifiedProc ModifiedProc = {}, QWidget* Parent = nullptr);

// The same for nodes that are shown in columns of the caller's. Widths has the width of each column in pixels, Aligns
// its alignment (0 left, 1 right, 2 centre); missing entries are added, and both lists follow what the user does at
// once, also when the dialog is cancelled. Aligns may be null. A width that is no number raises EConvertError before
// anything is shown.
bool EditSectionNodes(TFlyNodes* Nodes, int ColCount, int StructureCol, TStringList* Widths,
                      TModifiedProc ModifiedProc = {}, TStringList* Aligns = nullptr,
                      QWidget* Parent = nullptr);

// The columns of EditSectionNodes.
struct TEditorSection {
    int ColCount = 1;
    int StructureCol = 0;
    TStringList* Widths = nullptr;
    TStringList* Aligns = nullptr;
};

// The dialog itself. Its controls carry object names: "DeptsTree", "ImageText", "StateText", "SelectedText",
// "UniqueTag", "Aligns", and each button that of its caption without blanks.
class TFlyEditor : public QDialog {
    Q_OBJECT

public:
    explicit TFlyEditor(QWidget* Parent = nullptr);

    // Copies Nodes into the editor.
    void Edit(TFlyNodes* Nodes, TModifiedProc ModifiedProc,
              const std::optional<TEditorSection>& Section = {});
    // Gives the edited nodes what the editor has, if they are still there.
    void Store();

    TEditorTree* GetTree() const { return FTree; }
    // Whether there is a change that has not been applied.
    bool GetModified() const { return FModified; }
    // Sets the flag and tells the caller of the editor.
    void Modified();

    void AddNode();
    void AddChildNode();
    void DeleteNode();
    void ClearNodes();
    void ClearCells();
    // Exchange the node with a sibling.
    void MoveUp() { MoveNode(false); }
    void MoveDown() { MoveNode(true); }
    void AddCell();
    // Numbers all nodes in order: 0, 1, 2 ...
    void Enumerate(bool ImageIndexes, bool SelectedIndexes);
    void SetDefaults();
    void Apply();
    // Both tell the user when the file cannot be used; the nodes are then as they were.
    void LoadFrom(const QString& FileName);
    void SaveTo(const QString& FileName);

    void done(int Result) override;

protected:
    bool event(QEvent* Event) override;
    void changeEvent(QEvent* Event) override;
    void showEvent(QShowEvent* Event) override;

private:
    void MakeTree();
    void MoveNode(bool Down);
    QLayout* MakeNodeFields();
    QGroupBox* MakeAligns();
    QLayout* MakeEditButtons();
    QLayout* MakeSideButtons();
    void MakeTreeMenu();
    QPushButton* MakeButton(const QString& Caption, void (TFlyEditor::*Handler)());
    void SetTabOrder();
    void ScaleToFont();
    void FitToContents();

    void TakeColumnsOf(TCustomQuillTree& Tree);
    void TakeSection();
    void SetModified();
    void TellModified();
    // Tells the caller once the control at work has finished, which would not survive the end of the
    // dialog; at the latest when the dialog closes.
    void ModifiedSoon();
    void TellUntold();
    // Shows the selected node in the controls.
    void FillControls();
    void FillAligns();
    void ApplyFields();
    void ApplyAlign(int Code);
    void ColumnMoved(int From, int To);
    void ColumnSized(int Col, int Width);
    void AskLoad();
    void AskSave();
    void Tell(const QString& Message);
    // Runs Work and tells the user about an exception; False then.
    bool Attempt(const std::function<void()>& Work);
    TFlyNode* GetSelectedNode() const;
    void SelectNode(TFlyNode* Node);
    void SelectFirstRow();

    TEditorTree* FTree = nullptr;
    QLineEdit* FImageText = nullptr;
    QComboBox* FStateText = nullptr;
    QLineEdit* FSelectedText = nullptr;
    QLabel* FUniqueTag = nullptr;
    QGroupBox* FAligns = nullptr;
    QButtonGroup* FAlignButtons = nullptr;
    QPushButton* FOk = nullptr;
    QPushButton* FCancel = nullptr;
    QPushButton* FApply = nullptr;

    TWatch<TFlyNodes> FNodes{nullptr};
    TModifiedProc FModifiedProc;
    std::optional<TEditorSection> FSection;
    int FStructureCol = 0; // of the edited tree
    bool FFilling = false; // controls change because a node is shown in them
    bool FReady = false;
    bool FModified = false;
    int FUntold = 0; // changes that the caller has yet to be told of
    QSize FLeastSize;
};

} // namespace quill
