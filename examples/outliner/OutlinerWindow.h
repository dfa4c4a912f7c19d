// The window of the outliner: one outline, its menus and its file.
#pragma once

#include "../common/OutlineFile.h"
#include "../common/ProgramWindow.h"

#include <memory>
#include <string>

class QDockWidget;

namespace quill {
class TNVHTMLText;
}

namespace quill::examples {

class TOutlineEditor;
class TOutlineTree;
class TOutlineView;
class TTreeStatus;

class TOutlinerWindow : public TProgramWindow {
    Q_OBJECT

public:
    TOutlinerWindow();
    ~TOutlinerWindow() override;

    TOutlineTree* GetTree() const { return FTree; }
    // Shows a file. Raises EOutlineError and leaves the open outline as it is when the file is not good.
    void OpenFile(const std::string& FileName);
    // Raises EStreamError and leaves the old file as it is.
    void SaveFile(const std::string& FileName) override;
    // Shows an outline without nodes.
    void NewOutline();

    // Gives the tree the view that a file has, and writes it there when the window closes.
    void KeepView(const std::string& FileName);

    void ExpandAll();
    void CollapseAll();

protected:
    void closeEvent(QCloseEvent* Event) override;

private:
    void MakeFileMenu(QToolBar* Tools);
    void MakeEditMenu(QToolBar* Tools);
    void MakeViewMenu(QToolBar* Tools);
    QDockWidget* MakePreview();
    void ShowPreview();
    void MakeHelpMenu();

    void AskAndOpen();
    bool Save();
    bool AskAndSave();
    // Saves under that name and tells the user when it fails.
    bool TrySave(const std::string& FileName);
    // Whether the open outline may go: it has no unsaved changes, or the user does not want them.
    bool MayClose();
    void About();

    void FitColumns() override;
    void StoreView();
    void ViewChanged();
    void SetModified(bool Value);
    void DocumentChanged();
    QString DocumentName() const;
    QString StatusText() const;

    TOutlineTree* FTree;
    TOutlineEditor* FEditor;
    TNVHTMLText* FPreview = nullptr;
    TTreeStatus* FStatus;
    std::unique_ptr<TOutlineView> FView; // null unless it is kept
    std::string FViewFileName;
    std::string FFileName; // empty for an outline that has none yet
    TSaveNodesOptions FOptions = DefaultOptions();
    // Nodes are open or closed otherwise than in the file. Said in the status bar, but nothing to ask about.
    bool FViewChanged = false;
};

} // namespace quill::examples
