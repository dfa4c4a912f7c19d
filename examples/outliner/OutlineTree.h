// The tree of the outliner: shows an outline with captions, edits its texts, and ticks what the user clicks.
#pragma once

#include "Subtrees.h"

#include "../common/OutlineFile.h"

#include "quilltree/QuillTree.h"

#include <functional>
#include <string>
#include <vector>

namespace quill::examples {

class TOutlineTree : public TQuillTree {
    Q_OBJECT

public:
    // The state indexes of open and done tasks and of choices; those that are fixed, like all others, are only shown.
    enum TState {
        stOpen = 1,
        stDone = 2,
        stChosen = 4,
        stNotChosen = 5,
        stFixedChosen = 7,
        stFixedNotChosen = 8
    };

    explicit TOutlineTree(QWidget* AParent);

    // Replaces nodes, columns and captions. Pictures and check marks are shown when the outline has any.
    void ShowOutline(const TOutline& Outline, std::vector<std::string> Captions);
    void ShowNothing();
    // As the file has them.
    const std::vector<std::string>& FileCaptions() const { return FCaptions; }

    int GetNodeCount() const { return FNodeCount; }
    // Makes room for so many columns, or takes away those beyond them. Columns are in their own order afterwards.
    void SetColumns(int Count);
    // Whole rows are selected, and letters search; or cells, and letters start to edit them.
    void SetSelectsRows(bool Value);

    // Puts the children of every node into the order of a data column's texts, numbers in them by value.
    void SortBy(int DataCol, TSortDirection Direction);
    // A click on a caption sorts by its column, a second one the other way round.
    void CaptionClick(int DataCol) override;

    // Whether one of the children of Parent (null: of the top-level nodes), a group of radio buttons, is chosen.
    bool HasChoice(TFlyNode* Parent);
    // The state index of a new node beside one with this index: nothing of it is done or chosen.
    static int FreshState(int StateIndex);

    // Where nodes go that are dropped there; Target is null for below the last node.
    TNodePlace PlaceOfDrop(TFlyNode* Target, TDropPlace Place);
    // Nodes of this program were dropped here, to be moved or copied.
    std::function<void(const std::vector<TFlyNode*>& Nodes, const TNodePlace& Place, bool Copy)> OnDropNodes;
    // The selected nodes were moved elsewhere by a drag, and are to go here.
    std::function<void()> OnNodesTaken;

    // This class does nothing of its own with cells, so that files load and save by whole records.
    bool StoresPlainTexts() const override { return true; }
    void DrawFixedFrame(TCanvas& Canvas, const TRect& Rect, int ACol, int ARow, bool Clicked) override;
    void GetColor(TFlyNode* Node, int ACol, int ARow, TExGridDrawState State, TColor& BrushColor,
                  TColor& FontColor, bool& Changed) override;
    void Change(TFlyNode* Node) override;
    void SetEditText(int ACol, int ARow, const std::string& Value) override;
    bool ChangeState(TFlyNode* Node, int NewState) override;
    TFlyNode* CreateNode(TTreeCollection* Owner) override;
    void Delete(TFlyNode* Node) override;
    // By its text; other columns are for ranges of cells.
    bool DragsFromColumn(TFlyNode* Node, int DataCol) override;
    std::unique_ptr<TOLEDropSource> CreateDropSource() override;
    std::unique_ptr<TOLEDropTarget> CreateDropTarget() override;
    void DropNodes(const std::vector<TFlyNode*>& Nodes, TFlyNode* Target, TDropPlace Place,
                   bool Copy) override;
    void NodesDragged(TDragResult Result, bool Inside) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) override;

Q_SIGNALS:
    // The user ticked a node.
    void stateEdited();
    void textEdited();
    // Before and after.
    void sorting();
    void sorted();

private:
    void ClearChoices(TFlyNode* Chosen);

    std::vector<std::string> FCaptions;
    int FNodeCount = 0;
    bool FReading = false;
};

} // namespace quill::examples
