// Fills a tree with the directories that its user opens.
#pragma once

#include "Directory.h"

#include "quilltree/QuillTree.h"

#include <string>
#include <unordered_map>

namespace quill::examples {

enum TExplorerColumn { ecName, ecSize, ecModified, ecKind, ecCount };

// The captions of those columns.
const std::vector<std::string>& ExplorerCaptions();

// Attaches itself to a tree's events. A directory is read when its node is expanded for the first time; until then the
// node only claims to have children. Nodes know their paths by their texts. The few names that cannot be shown as
// they are (they hold line breaks, for example) are kept beside the tree.
class TDirectoryFiller {
public:
    explicit TDirectoryFiller(TCustomQuillTree* Tree);
    TDirectoryFiller(const TDirectoryFiller&) = delete;
    TDirectoryFiller& operator=(const TDirectoryFiller&) = delete;

    // Shows a directory as the only top-level node, expanded. Raises EDirectoryError when there is none or it cannot
    // be read; the tree then stays as it is.
    void OpenRoot(const std::string& Path);
    // Reads the directories on the first levels, the root included.
    void ExpandLevels(int Levels);
    // Reads the directory of a node again; of another entry, the directory that it stands in.
    void Refresh(TFlyNode* Node);
    // Shows what has come into a directory, if it is in the tree, and opens it.
    void ShowNewEntries(const std::string& Path);
    // Null gives an empty path.
    std::string PathOf(TFlyNode* Node) const;
    static bool IsDirectory(TFlyNode* Node);
    int GetNodeCount() const { return FNodeCount; }

private:
    void Fill(TFlyNode* Node);
    void Reread(TFlyNode* Node, bool Expand);
    void Describe(TFlyNode* Node, const TDirectoryEntry& Entry);
    bool IsFilled(TFlyNode* Node) const { return Node->GetCount() > 0; }
    void Expanding(TFlyNode* Node);
    void Forget(TFlyNode* Node);

    TCustomQuillTree* FTree;
    std::unordered_map<const TFlyNode*, std::string> FRealNames;
    int FNodeCount = 0;
};

} // namespace quill::examples
