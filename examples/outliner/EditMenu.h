// The menu with what the user can do to an outline.
#pragma once

#include <QObject>

class QAction;
class QMenu;

namespace quill::examples {

class TOutlineEditor;
class TOutlineTree;

// Fills a menu with the commands of an editor. Keys that mean something to a cell's editor too reach the commands
// only while the tree itself has the focus.
class TEditMenu : public QObject {
    Q_OBJECT

public:
    TEditMenu(QMenu* Menu, TOutlineTree* Tree, TOutlineEditor* Editor);

    QAction* GetUndo() const { return FUndo; }
    QAction* GetNewNode() const { return FNewNode; }

private:
    void AddClipboard(QMenu* Menu);
    void AddNodes(QMenu* Menu);
    void AddMoves(QMenu* Menu);
    void AddRows(QMenu* Menu);
    void ShowUndo();

    TOutlineTree* FTree;
    TOutlineEditor* FEditor;
    QAction* FUndo;
    QAction* FRedo;
    QAction* FNewNode = nullptr;
};

} // namespace quill::examples
