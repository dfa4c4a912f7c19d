// The window of the explorer: a directory tree and its menus.
#pragma once

#include "DirectoryFiller.h"

#include "host/graphics/ImageLists.h"

#include <QMainWindow>

#include <memory>
#include <string>

class QToolBar;

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
};

class TExplorerWindow : public QMainWindow {
    Q_OBJECT

public:
    TExplorerWindow();

    TExplorerTree* GetTree() const { return FTree; }
    // Raises EDirectoryError and leaves what is shown when the directory cannot be read.
    void OpenRoot(const std::string& Path);
    void ExpandLevels(int Levels) { FFiller->ExpandLevels(Levels); }
    // Writes what has been read so far as a nodes file. Raises ESaveError.
    void SaveOutlineFile(const std::string& FileName);

protected:
    void showEvent(QShowEvent* Event) override;

private:
    void MakeMenus(QToolBar* Tools);
    void AskAndOpen();
    void AskAndSave();
    void About();

    std::unique_ptr<TImageList> FPictures;
    TExplorerTree* FTree;
    std::unique_ptr<TDirectoryFiller> FFiller;
    TTreeStatus* FStatus;
    bool FFitPending = true;
};

} // namespace quill::examples
