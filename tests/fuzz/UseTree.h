// What must work in a tree whatever was read into it.
#pragma once

#include "quilltree/QuillTree.h"
#include "tests/fuzz/Fuzz.h"

namespace quill::fuzz {

inline void UseTree(TQuillTree& Tree) {
    Check(!Tree.HasState(csLoading) && !Tree.HasState(csReading), "the tree still believes that it is read");
    Tree.GetItems()->Add(nullptr, "new");
    Tree.GetItems()->CheckInvariants();
    Check(Tree.GetItems()->GetUpdateCount() == 0, "an update bracket is open");
    Check(Tree.GetRowCount() == Tree.GetFixedRows() + Tree.GetItems()->RowList.GetCount(),
          "the rows are not those of the nodes");
    // A surface of any size is the program's own wish.
    if (Tree.GetWidth() > 2000 || Tree.GetHeight() > 2000) return;
    Tree.HandleNeeded();
    Tree.GetSurfaceImage();
    Tree.SetTopRow(Tree.GetRowCount() - 1);
    Tree.GetSurfaceImage();
}

} // namespace quill::fuzz
