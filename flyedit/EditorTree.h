// The tree inside the nodes editor.
#pragma once

#include "quilltree/QuillTree.h"

namespace quill {

// Tells what the user does to the nodes, and keeps displayed columns and data columns the same: when a column is moved,
// the texts of all nodes move with it.
class TEditorTree : public TQuillTree {
    Q_OBJECT

public:
    explicit TEditorTree(QWidget* AParent);

    // Tells columns apart, gives them widths of their own and lets them be sized and moved in the fixed rows. Before, the
    // only column is as wide as the tree.
    void ShowColumns();

    void KeyDown(std::uint16_t& Key, TShiftState Shift) override;
    void FocusCell(int ACol, int ARow, bool MoveAnchor, TShiftState Shift, TSelectionWay Way) override;
    void Change(TFlyNode* Node) override;
    bool ChangeState(TFlyNode* Node, int NewState) override;
    void SetEditText(int ACol, int ARow, const std::string& Value) override;
    void ColumnMoved(int FromIndex, int ToIndex) override;
    void ColumnWidthChanged(int Index, int Value) override;
    void DropNodes(const std::vector<TFlyNode*>& Nodes, TFlyNode* Target, TDropPlace Place,
                   bool Copy) override;

Q_SIGNALS:
    void cellSelected();
    void nodesModified();
    void columnMoved(int From, int To);
    void columnSized(int Col, int Width);
    // Keys with a node selected.
    void addPressed();
    void addChildPressed();
    void deletePressed();
    // Where on the screen the menu is to open.
    void menuRequested(QPoint Place);

protected:
    void contextMenuEvent(QContextMenuEvent* Event) override;

private:
    void MoveCells(int From, int To);
};

} // namespace quill
