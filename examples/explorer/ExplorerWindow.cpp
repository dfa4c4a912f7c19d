#include "ExplorerWindow.h"

#include "../common/Look.h"
#include "../common/OutlineFile.h"
#include "../common/ToolIcons.h"
#include "../common/TreeStatus.h"
#include "../common/ViewMenu.h"

#include <QAction>
#include <QFileDialog>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

namespace quill::examples {

namespace {

// All that a directory tree has: pictures, cells, what is expanded.
constexpr TSaveNodesOptions SavedFields{tsnIncludeImageIndex, tsnIncludeSelectedIndex, tsnIncludeCells,
                                        tsnIncludeExpands};

// What is to come when folders are opened; dates and kinds are there from the start.
const std::vector<std::string> WideTexts{"a_folder/a_folder/a file with a name.txt", "8,888.8 MB"};

} // namespace

// What the cells show; the search for typed letters asks the event alone.
std::string TExplorerTree::GetEditText(int ACol, int ARow) {
    constexpr const char* FirstStrongIsolate = "\u2068";
    constexpr const char* PopDirectionalIsolate = "\u2069";
    std::string Text = TQuillTree::GetEditText(ACol, ARow);
    if (!UseRightToLeftReading() || Text.empty() || ARow < GetFixedRows()) return Text;
    return FirstStrongIsolate + Text + PopDirectionalIsolate;
}

void TExplorerTree::DrawFixedFrame(TCanvas& Canvas, const TRect& Rect, int ACol, int ARow, bool Clicked) {
    TQuillTree::DrawFixedFrame(Canvas, Rect, ACol, ARow, Clicked);
    DrawCaptionEdge(*this, Canvas, Rect, ARow);
}

TExplorerWindow::TExplorerWindow() : FTree(new TExplorerTree(this)) {
    SetUpTree(*FTree);
    SetTree(FTree, WideTexts);
    for (int Col = 0; Col < static_cast<int>(ExplorerCaptions().size()); ++Col) {
        FTree->SetCaptions(Col, CaptionOf(ExplorerCaptions(), Col));
    }
    FFiller = std::make_unique<TDirectoryFiller>(FTree);

    MakeMenus(MakeToolBar());
    FStatus = new TTreeStatus(statusBar(), FTree);
    FStatus->NodeCount = [this] { return FFiller->GetNodeCount(); };
    FStatus->Text = [this] { return QString::fromStdString(FFiller->PathOf(FTree->GetSelection())); };
    FTree->setFocus();
}

void TExplorerWindow::MakeMenus(QToolBar* Tools) {
    const QColor Color = palette().color(QPalette::ButtonText);
    QMenu* File = menuBar()->addMenu(tr("&File"));
    QAction* Open = File->addAction(MakeToolIcon(tiOpen, Color), tr("&Open Folder..."), this,
                                    &TExplorerWindow::AskAndOpen);
    Open->setShortcut(QKeySequence::Open);
    QAction* Save = File->addAction(MakeToolIcon(tiSave, Color), tr("&Save as Outline..."), this,
                                    &TExplorerWindow::AskAndSave);
    Save->setShortcut(QKeySequence::Save);
    File->addSeparator();
    QAction* Quit = File->addAction(tr("&Quit"), this, &QWidget::close);
    Quit->setShortcut(QKeySequence::Quit);

    QMenu* View = menuBar()->addMenu(tr("&View"));
    QAction* Refresh = View->addAction(MakeToolIcon(tiRefresh, Color), tr("R&efresh Folder"), this, [this] {
        FFiller->Refresh(FTree->GetSelection());
        FStatus->Touch();
    });
    Refresh->setShortcut(QKeySequence::Refresh);
    // All that has been read: reading everything there is could take hours.
    QAction* Collapse = View->addAction(MakeToolIcon(tiCollapseAll, Color), tr("Colla&pse All"), this,
                                        [this] { FTree->FullCollapse(); });
    Collapse->setShortcut(tr("Ctrl+Shift+E"));
    View->addSeparator();
    new TViewMenu(View, FTree);

    menuBar()->addMenu(tr("&Help"))->addAction(tr("&About"), this, &TExplorerWindow::About);
    Tools->addActions({Open, Save});
    Tools->addSeparator();
    Tools->addActions({Refresh, Collapse});
}

void TExplorerWindow::OpenRoot(const std::string& Path) {
    try {
        FFiller->OpenRoot(Path);
    } catch (const EDirectoryError& Error) {
        throw EDirectoryError("Cannot open \"" + Path + "\": " + Error.GetMessage());
    }
    setWindowTitle(QString::fromStdString(Path));
    FStatus->Touch();
    FitColumnsWhenShown();
}

void TExplorerWindow::SaveFile(const std::string& FileName) {
    SaveOutline(FileName, *FTree->GetItems(), SavedFields);
    SaveCaptions(FileName, ExplorerCaptions());
}

void TExplorerWindow::AskAndOpen() {
    const QString Old = QString::fromStdString(FFiller->PathOf(FTree->GetSelection()));
    const QString Path = QFileDialog::getExistingDirectory(this, tr("Open a Folder"), Old);
    if (Path.isEmpty()) return;
    Attempt(tr("Open a Folder"), [&] { OpenRoot(Path.toStdString()); });
}

void TExplorerWindow::AskAndSave() {
    const QString Name = QFileDialog::getSaveFileName(
        this, tr("Save as Outline"), QStringLiteral("folder.nodes"), tr("Outlines (*.nodes);;All files (*)"));
    if (Name.isEmpty()) return;
    Attempt(tr("Save as Outline"), [&] { SaveFile(Name.toStdString()); });
}

void TExplorerWindow::About() {
    ShowAbout("Explorer", tr("Shows a folder and what is below it, read as it is opened."));
}

} // namespace quill::examples
