// Taking back the last change of an outline's structure.
#pragma once

#include "Subtrees.h"

#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace quill::examples {

class TOutlineTree;

// A change that can be taken back and made again. Only what it touched is remembered: nodes that are gone as nodes
// text with their places, moved nodes with their other places, the order of sorted nodes.
//
// Nodes are remembered by address: whoever keeps a step drops it when a node goes without it.
class TStructureStep {
public:
    virtual ~TStructureStep() = default;
    // Undoes the change, or makes it again when it is undone. Returns the nodes that the user should look at.
    virtual std::vector<TFlyNode*> Revert(TOutlineTree& Tree) = 0;
};

// Nodes, with all that is below them, are there or not.
class TContentStep : public TStructureStep {
public:
    // The nodes are there now: in document order, none below another. Columns is what the tree had without them.
    TContentStep(std::vector<TFlyNode*> Present, int Columns);
    std::vector<TFlyNode*> Revert(TOutlineTree& Tree) override;

private:
    std::vector<TFlyNode*> TakeOut(TOutlineTree& Tree);
    std::vector<TFlyNode*> PutBack(TOutlineTree& Tree);

    std::vector<TFlyNode*> FPresent;
    std::vector<TNodePlace> FPlaces; // of those that are gone
    std::string FNodesText;          // what is gone
    int FColumns;                    // of the tree in the other state
};

// Nodes are in one place or in another.
class TMoveStep : public TStructureStep {
public:
    // To be called instead of MoveToPlace.
    void Move(TFlyNode& Node, const TNodePlace& Place, TFlyNodes& Nodes);
    bool IsEmpty() const { return FMoved.empty(); }
    std::vector<TFlyNode*> Revert(TOutlineTree& Tree) override;

private:
    struct TMoved {
        TFlyNode* Node;
        TNodePlace From;
    };
    std::vector<TMoved> FMoved; // in the order of the moves
};

// All children of all nodes are in one order or in another.
class TOrderStep : public TStructureStep {
public:
    // To be made before the order changes.
    explicit TOrderStep(TOutlineTree& Tree);
    std::vector<TFlyNode*> Revert(TOutlineTree& Tree) override;

private:
    std::vector<TFlyNode*> FOrder; // of all nodes, depth first
    int FSortColumn;               // as the captions show it
    int FSortDirection;
};

// All nodes are those from before a change or those from after it.
class TReplaceStep : public TStructureStep {
public:
    // To be made before the change.
    explicit TReplaceStep(TOutlineTree& Tree);
    // Whether the nodes are others now.
    bool IsNeeded(TOutlineTree& Tree) const;
    std::vector<TFlyNode*> Revert(TOutlineTree& Tree) override;

private:
    std::string FNodesText; // of the other state
    int FColumns;
};

// Keeps the last step. There is one level: each new change takes the place of the one before.
class TStructureUndo {
public:
    // Name is what the menu calls the change, such as "Paste".
    void Remember(const QString& Name, std::unique_ptr<TStructureStep> Step);
    void Forget();

    // Null texts when there is nothing to undo (redo).
    QString UndoName() const { return FReverted ? QString() : FName; }
    QString RedoName() const { return FReverted ? FName : QString(); }
    // Undoes or makes again, whichever is next.
    std::vector<TFlyNode*> Revert(TOutlineTree& Tree);

private:
    QString FName;
    std::unique_ptr<TStructureStep> FStep;
    bool FReverted = false;
};

} // namespace quill::examples
