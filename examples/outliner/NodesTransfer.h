// Nodes on their way to other programs and from them, by the clipboard or by a drag.
#pragma once

#include "Subtrees.h"

#include "oledragdrop/OLEDragDrop.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace quill::examples {

// What names nodes text with all fields: a clipboard format, and the desktop's type.
inline constexpr const char* NodesMimeType = "application/x-quill-nodes";

// --- out ---------------------------------------------------------------------------------------------------------

struct TNodesOut {
    std::string NodesText;
    std::string PlainText;
};
// The nodes with all that is below them. Tags are left out: they are those of one outline only.
TNodesOut NodesOut(std::span<TFlyNode* const> Roots);

// A drag of nodes, as nodes text and as plain text; never as a list of files, whatever the texts look like.
class TNodesDropSource : public TOLEDropSource {
public:
    explicit TNodesDropSource(TNodesOut Nodes);

protected:
    HResult DoGetData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium) override;

private:
    TNodesOut FNodes;
};

// --- in ----------------------------------------------------------------------------------------------------------

struct TNodesIn {
    std::unique_ptr<TSubtrees> Subtrees; // null when there are no nodes
    int CellsLeftOut = 0;                // which stood beyond MaxPastedColumns
};
// The nodes of nodes text, or else of any text. What calls itself nodes text and is malformed is taken for any other
// text.
TNodesIn NodesOfTexts(const std::string& NodesText, const std::string& Text);

// What an outline has room for when files become nodes.
struct TFileFields {
    bool Pictures = false;
    int SizeColumn = 0; // 0 for none
    int DateColumn = 0;
};
// One node for each file, with its name. What is gone or unreadable has no size and no date.
std::unique_ptr<TSubtrees> NodesOfFiles(const std::vector<std::string>& Paths, const TFileFields& Fields);

// What was dropped: nodes text before files before any other text.
TNodesIn NodesOfDrop(NV_IDataObject& Data, const TFileFields& Fields);

// Takes drags of nodes, files and text. Files stay where they are: they are never moved.
class TNodesDropTarget : public TOLEDropTarget {
public:
    bool HasValidFormats() override;
    // They are read by whoever handles the drop.
    bool DoGetData() override { return true; }
};

} // namespace quill::examples
