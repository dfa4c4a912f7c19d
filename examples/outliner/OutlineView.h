// How the user looks at outlines, kept between two runs of the program.
#pragma once

#include "quilltree/QuillTree.h"

#include <string>

namespace quill::examples {

class TOutlineTree;

// A form in the user's configuration folder.
std::string ViewFileName();

// The view of an outline as a form: outline style, switches, options, and the captions, widths and order of the
// columns. A tree of its own, without nodes, carries it, so that a damaged file never reaches the tree on screen.
class TOutlineView : public TQuillTree {
public:
    TOutlineView() = default;

    // Takes over what the user made of a tree.
    void Take(TOutlineTree& Tree);
    void GiveLook(TOutlineTree& Tree);
    // Gives widths and order to a tree with the same captions; False when there are others.
    bool GiveColumns(TOutlineTree& Tree);

    // Passes over what is wrong in the file and returns a message about it, which is empty when nothing is. A file that
    // is no form, or none at all, changes nothing.
    std::string Load(const std::string& FileName);
    // Makes the folder too. Raises EStreamError.
    void Save(const std::string& FileName);

    bool SaveNodes() override { return false; }
};

} // namespace quill::examples
