// What the user does to an outline: adding, deleting, moving, the clipboard, undo.
#pragma once

#include "NodesTransfer.h"
#include "StructureUndo.h"

#include <QObject>

namespace quill::examples {

class TOutlineTree;

// The commands of the outliner on one tree. Each stores first what is being typed in a cell.
class TOutlineEditor : public QObject {
    Q_OBJECT

public:
    explicit TOutlineEditor(TOutlineTree* Tree);

    // Edits the current cell in place.
    void EditCell();
    // A new node behind the current one, or last below it, with the editor open on its text.
    void AddNode();
    void AddChild();
    // The selected nodes with all that is below them.
    void DeleteSelected();
    // All nodes in the nodes editor.
    void EditNodes();

    // The selected nodes, which must be siblings side by side: past their neighbour, below the sibling before them,
    // or behind their parent.
    void MoveUp() { MoveAlong(-1); }
    void MoveDown() { MoveAlong(1); }
    void Indent();
    void Outdent();

    void Cut();
    void Copy();
    // Puts what is on the clipboard behind the current node and selects it.
    void Paste();

    // Nodes of this program or anything else was dropped by a drag.
    void DropNodes(const std::vector<TFlyNode*>& Roots, const TNodePlace& Place, bool Copy);
    // False when there is nothing in it that could become nodes.
    bool DropData(NV_IDataObject& Data, const TNodePlace& Place);

    void Undo();
    void Redo();
    // What can be undone, for a menu; empty when there is nothing.
    QString UndoName() const { return FUndo.UndoName(); }
    QString RedoName() const { return FUndo.RedoName(); }
    // The outline was replaced.
    void Forget();

Q_SIGNALS:
    // The outline changed.
    void edited();
    // What can be undone changed.
    void undoChanged();
    // Something to tell the user in passing.
    void said(const QString& Text);
    void columnsChanged();

private:
    void AddNodeAt(const TNodePlace& Place, const TFlyNode* Model);
    // Null, after telling the user, when nothing is selected; the same when the nodes are not side by side.
    std::vector<TFlyNode*> Selected();
    std::vector<TFlyNode*> SelectedBlock();
    void MoveAlong(int Step);
    void CutOut(const QString& Name);
    void Copy(const std::vector<TFlyNode*>& Roots);
    TNodePlace PlaceBehindCurrent() const;
    void MoveNodes(const std::vector<TFlyNode*>& Roots, const TNodePlace& Place);
    void Insert(const QString& Name, TNodesIn Nodes, TNodePlace Place);
    // Columns, pictures and marks that these nodes need are shown.
    void MakeRoomFor(TFlyNodes& Nodes);
    void KeepOneChoice(TSubtrees& Pasted, TFlyNode* Parent);
    void Revert();
    void Changed(const QString& Name, std::unique_ptr<TStructureStep> Step,
                 const std::vector<TFlyNode*>& Show);
    void Show(const std::vector<TFlyNode*>& Nodes);

    TOutlineTree* FTree;
    TStructureUndo FUndo;
    // A command is at work: nodes go, and it knows.
    bool FWorking = false;
};

} // namespace quill::examples
