#include "ExplorerWindow.h"

#include "../common/Look.h"
#include "../common/OutlineFile.h"
#include "../common/ToolIcons.h"
#include "../common/TreeStatus.h"
#include "../common/ViewMenu.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressDialog>
#include <QStatusBar>
#include <QToolBar>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <future>

namespace quill::examples {

namespace {

// All that a directory tree has: pictures, cells, what is expanded.
constexpr TSaveNodesOptions SavedFields{tsnIncludeImageIndex, tsnIncludeSelectedIndex, tsnIncludeCells,
                                        tsnIncludeExpands};

constexpr int HoverExpandTime = 700; // milliseconds over a closed folder until it opens
constexpr int ProgressDelay = 500;   // milliseconds until a copy shows how far it is
constexpr auto ProgressStep = std::chrono::milliseconds(50);

std::string AbsolutePath(const std::string& Path) {
    std::error_code Ignored;
    return std::filesystem::absolute(Path, Ignored).lexically_normal().string();
}

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

bool TExplorerTree::DragsFromColumn(TFlyNode*, int DataCol) { return DataCol == GetStructureDataColumn(); }

std::unique_ptr<TOLEDropSource> TExplorerTree::CreateDropSource() {
    TPaths Paths;
    for (TFlyNode* Node : GetDraggedNodes()) {
        if (OnGetPath) Paths.push_back(OnGetPath(Node));
    }
    return std::make_unique<TFilesDropSource>(Paths);
}

std::unique_ptr<TOLEDropTarget> TExplorerTree::CreateDropTarget() {
    auto Target = std::make_unique<TFilesDropTarget>();
    Target->OnAllow = [this](const TPaths& Paths, TPoint Point) {
        return OnAllowFiles && OnAllowFiles(Paths, GetNodeAt(Point.X, Point.Y));
    };
    Target->OnFiles = [this](const TPaths& Paths, TPoint Point) {
        if (OnDropFiles) OnDropFiles(Paths, GetNodeAt(Point.X, Point.Y));
    };
    return Target;
}

TExplorerWindow::TExplorerWindow() : FTree(new TExplorerTree(this)) {
    SetUpTree(*FTree);
    SetTree(FTree, WideTexts);
    for (int Col = 0; Col < static_cast<int>(ExplorerCaptions().size()); ++Col) {
        FTree->SetCaptions(Col, CaptionOf(ExplorerCaptions(), Col));
    }
    FFiller = std::make_unique<TDirectoryFiller>(FTree);

    AcceptFiles();
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

// --- files that are dragged --------------------------------------------------------------------------------------

void TExplorerWindow::AcceptFiles() {
    FTree->SetDragType(dtOLE);
    FTree->SetHoverExpandTime(HoverExpandTime);
    FTree->SetDropScroll(true);
    FTree->OnGetPath = [this](TFlyNode* Node) { return AbsolutePath(FFiller->PathOf(Node)); };
    // Told from the names alone, since it is asked with every move of the mouse.
    FTree->OnAllowFiles = [this](const TPaths& Paths, TFlyNode* Node) {
        const std::string Folder = FolderAt(Node);
        if (Folder.empty()) return false;
        const std::string Below = JoinPath(AbsolutePath(Folder), {});
        const auto IsAround = [&](const std::string& Path) { return Below.starts_with(JoinPath(Path, {})); };
        const auto IsThere = [&](const std::string& Path) { return Path == Below + FileNameOf(Path); };
        return std::none_of(Paths.begin(), Paths.end(), IsAround) &&
               !std::all_of(Paths.begin(), Paths.end(), IsThere);
    };
    // When the drop is over: the program on the other side does not wait until questions are answered.
    FTree->OnDropFiles = [this](const TPaths& Paths, TFlyNode* Node) {
        QMetaObject::invokeMethod(
            this, [this, Paths, Folder = FolderAt(Node)] { CopyInto(Paths, Folder); }, Qt::QueuedConnection);
    };
}

std::string TExplorerWindow::FolderAt(TFlyNode* Node) const {
    if (!Node) return FFiller->PathOf(FTree->GetItems()->GetFirstNode());
    if (!TDirectoryFiller::IsDirectory(Node)) Node = Node->GetParent();
    return FFiller->PathOf(Node);
}

void TExplorerWindow::CopyInto(const TPaths& Paths, const std::string& Folder) {
    std::vector<TCopyTask> Tasks = PlanCopy(Paths, Folder);
    if (Tasks.empty() || !AskForCopy(Tasks, Folder)) return;
    const std::string Problems = RunCopy(Tasks);
    FFiller->ShowNewEntries(Folder);
    FStatus->Touch();
    if (!Problems.empty()) QMessageBox::warning(this, tr("Copy Files"), QString::fromStdString(Problems));
}

// Those that are not to be copied are taken out. False when nothing is to be done.
bool TExplorerWindow::AskForCopy(std::vector<TCopyTask>& Tasks, const std::string& Folder) {
    const QString Title = tr("Copy Files");
    const QString Where = QString::fromStdString(Folder);
    const QString What = Tasks.size() == 1
                             ? tr("Copy \"%1\" to \"%2\"?").arg(QString::fromStdString(Tasks[0].From), Where)
                             : tr("Copy %1 files to \"%2\"?").arg(Tasks.size()).arg(Where);
    if (QMessageBox::question(this, Title, What, QMessageBox::Ok | QMessageBox::Cancel) != QMessageBox::Ok)
        return false;

    auto Answer = QMessageBox::NoButton;
    for (TCopyTask& Task : Tasks) {
        if (!Task.Exists) continue;
        if (Answer != QMessageBox::YesToAll && Answer != QMessageBox::NoToAll) {
            const QString Question = tr("There is \"%1\" already. Replace it?");
            Answer = QMessageBox::question(this, Title, Question.arg(QString::fromStdString(Task.To)),
                                           QMessageBox::Yes | QMessageBox::YesToAll | QMessageBox::No |
                                               QMessageBox::NoToAll | QMessageBox::Cancel,
                                           QMessageBox::No);
        }
        if (Answer == QMessageBox::Cancel) return false;
        Task.Replaces = Answer == QMessageBox::Yes || Answer == QMessageBox::YesToAll;
    }
    std::erase_if(Tasks, [](const TCopyTask& Task) { return Task.Exists && !Task.Replaces; });
    return !Tasks.empty();
}

// Works beside the window, which shows how far it is and can stop it. Returns what went wrong, a line for each.
std::string TExplorerWindow::RunCopy(const std::vector<TCopyTask>& Tasks) {
    std::atomic<bool> Stop = false;
    std::atomic<int> Done = 0;
    auto Work = std::async(std::launch::async, [&] {
        std::string Problems;
        for (const TCopyTask& Task : Tasks) {
            if (Stop) break;
            const std::string Problem = Copy(Task, Stop);
            if (!Problem.empty() && !Stop) Problems += "\"" + Task.From + "\": " + Problem + "\n";
            ++Done;
        }
        return Problems;
    });
    QProgressDialog Progress(tr("Copying..."), tr("Stop"), 0, static_cast<int>(Tasks.size()), this);
    Progress.setWindowModality(Qt::ApplicationModal);
    Progress.setMinimumDuration(ProgressDelay);
    Progress.setAutoReset(false);
    while (Work.wait_for(ProgressStep) != std::future_status::ready) {
        Progress.setValue(Done);
        // Nothing else can be clicked meanwhile.
        QApplication::processEvents(Progress.isVisible() ? QEventLoop::AllEvents
                                                         : QEventLoop::ExcludeUserInputEvents);
        if (Progress.wasCanceled()) Stop = true;
    }
    return Work.get();
}

void TExplorerWindow::About() {
    ShowAbout("Explorer", tr("Shows a folder and what is below it, read as it is opened."));
}

} // namespace quill::examples
