// The window of the explorer: a directory tree and its menus.
#pragma once

#include "DirectoryFiller.h"

#include "../common/ProgramWindow.h"

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
};

class TExplorerWindow : public TProgramWindow {
    Q_OBJECT

public:
    TExplorerWindow();

    TExplorerTree* GetTree() const { return FTree; }
    // Raises EDirectoryError and leaves what is shown when the directory cannot be read.
    void OpenRoot(const std::string& Path);
    void ExpandLevels(int Levels) { FFiller->ExpandLevels(Levels); }
    // Writes what has been read so far as a nodes file. Raises EStreamError.
    void SaveFile(const std::string& FileName) override;

private:
    void MakeMenus(QToolBar* Tools);
    void AskAndOpen();
    void AskAndSave();
    void About();

    TExplorerTree* FTree;
    std::unique_ptr<TDirectoryFiller> FFiller;
    TTreeStatus* FStatus;
};

} // namespace quill::examples
