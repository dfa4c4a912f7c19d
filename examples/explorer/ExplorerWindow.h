// The window of the explorer: a directory tree and its menus.
#pragma once

#include "DirectoryFiller.h"
#include "FileCopy.h"
#include "FilesDrag.h"

#include "../common/ProgramWindow.h"

#include <functional>
#include <memory>
#include <string>

namespace quill::examples {

class TTreeStatus;

// Names, paths and dates read from left to right also where everything else runs from right to left.
class TExplorerTree : public TQuillTree {
    Q_OBJECT

public:
    using TQuillTree::TQuillTree;
    std::string GetEditText(int ACol, int ARow) override;
    // Only what is shown differs, not what is stored: files are saved by whole records.
    bool StoresPlainTexts() const override { return true; }
    void DrawFixedFrame(TCanvas& Canvas, const TRect& Rect, int ACol, int ARow, bool Clicked) override;

    // Files are dragged by their names; other columns are for ranges of rows.
    bool DragsFromColumn(TFlyNode* Node, int DataCol) override;
    std::unique_ptr<TOLEDropSource> CreateDropSource() override;
    std::unique_ptr<TOLEDropTarget> CreateDropTarget() override;
    // The absolute path of a node.
    std::function<std::string(TFlyNode* Node)> OnGetPath;
    // Files that are dragged here, and the node under the mouse (null for none).
    std::function<bool(const TPaths& Paths, TFlyNode* Node)> OnAllowFiles;
    std::function<void(const TPaths& Paths, TFlyNode* Node)> OnDropFiles;
};

class TExplorerWindow : public TProgramWindow {
    Q_OBJECT

public:
    TExplorerWindow();

    TExplorerTree* GetTree() const { return FTree; }
    // Raises EDirectoryError and leaves what is shown when the directory cannot be read.
    void OpenRoot(const std::string& Path);
    // Copies files and folders into a folder: asks first, and again for each that would replace one, and tells what
    // went wrong. Nothing is replaced without being asked for.
    void CopyInto(const TPaths& Paths, const std::string& Folder);
    void ExpandLevels(int Levels) { FFiller->ExpandLevels(Levels); }
    // Writes what has been read so far as a nodes file. Raises EStreamError.
    void SaveFile(const std::string& FileName) override;

private:
    void MakeMenus(QToolBar* Tools);
    void AcceptFiles();
    // The folder that files are dropped into there: the node itself, the one that it stands in, or the root.
    std::string FolderAt(TFlyNode* Node) const;
    bool AskForCopy(std::vector<TCopyTask>& Tasks, const std::string& Folder);
    std::string RunCopy(const std::vector<TCopyTask>& Tasks);
    void AskAndOpen();
    void AskAndSave();
    void About();

    TExplorerTree* FTree;
    std::unique_ptr<TDirectoryFiller> FFiller;
    TTreeStatus* FStatus;
};

} // namespace quill::examples
