#include "OutlinerWindow.h"

#include "EditMenu.h"
#include "OutlineEditor.h"
#include "OutlineTree.h"
#include "OutlineView.h"

#include "../common/ToolIcons.h"
#include "../common/TreeStatus.h"
#include "../common/ViewMenu.h"

#include "htmldraw/HTMLText.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QToolBar>

namespace quill::examples {

namespace {

constexpr int MessageTime = 8000; // milliseconds that a message stays in the status bar

const char* const FileFilter = "Outlines (*.nodes);;All files (*)";

} // namespace

TOutlinerWindow::TOutlinerWindow() : FTree(new TOutlineTree(this)), FEditor(new TOutlineEditor(FTree)) {
    SetTree(FTree);

    QToolBar* Tools = MakeToolBar();
    MakeFileMenu(Tools);
    MakeEditMenu(Tools);
    MakeViewMenu(Tools);
    MakeHelpMenu();

    FStatus = new TTreeStatus(statusBar(), FTree);
    FStatus->NodeCount = [this] { return FTree->GetNodeCount(); };
    FStatus->Text = [this] { return StatusText(); };

    connect(FTree, &TOutlineTree::expanded, this, &TOutlinerWindow::ViewChanged);
    connect(FTree, &TOutlineTree::collapsed, this, &TOutlinerWindow::ViewChanged);
    connect(FTree, &TOutlineTree::stateEdited, this, [this] { SetModified(true); });
    connect(FTree, &TOutlineTree::sorted, this, [this] { SetModified(true); });
    connect(FTree, &TOutlineTree::textEdited, this, [this] {
        SetModified(true);
        ShowPreview();
    });
    connect(FEditor, &TOutlineEditor::edited, this, [this] { SetModified(true); });
    connect(FEditor, &TOutlineEditor::columnsChanged, this, &TOutlinerWindow::FitColumnsWhenShown);
    connect(FEditor, &TOutlineEditor::said, this,
            [this](const QString& Text) { statusBar()->showMessage(Text, MessageTime); });
    DocumentChanged();
    FTree->setFocus();
}

TOutlinerWindow::~TOutlinerWindow() = default;

// --- menus -------------------------------------------------------------------------------------------------------

void TOutlinerWindow::MakeFileMenu(QToolBar* Tools) {
    const QColor Color = palette().color(QPalette::ButtonText);
    QMenu* Menu = menuBar()->addMenu(tr("&File"));
    QAction* New = Menu->addAction(MakeToolIcon(tiNew, Color), tr("&New"), this, [this] {
        if (MayClose()) NewOutline();
    });
    New->setShortcut(QKeySequence::New);
    QAction* Open =
        Menu->addAction(MakeToolIcon(tiOpen, Color), tr("&Open..."), this, &TOutlinerWindow::AskAndOpen);
    Open->setShortcut(QKeySequence::Open);
    QAction* SaveIt = Menu->addAction(MakeToolIcon(tiSave, Color), tr("&Save"), this, &TOutlinerWindow::Save);
    SaveIt->setShortcut(QKeySequence::Save);
    QAction* SaveAs = Menu->addAction(tr("Save &As..."), this, &TOutlinerWindow::AskAndSave);
    SaveAs->setShortcut(QKeySequence::SaveAs);
    Menu->addSeparator();
    QAction* Quit = Menu->addAction(tr("&Quit"), this, &QWidget::close);
    Quit->setShortcut(QKeySequence::Quit);

    Tools->addActions({New, Open, SaveIt});
    Tools->addSeparator();
}

void TOutlinerWindow::MakeEditMenu(QToolBar* Tools) {
    auto* const Edit = new TEditMenu(menuBar()->addMenu(tr("&Edit")), FTree, FEditor);
    Tools->addActions({Edit->GetNewNode(), Edit->GetUndo()});
    Tools->addSeparator();
}

void TOutlinerWindow::MakeViewMenu(QToolBar* Tools) {
    const QColor Color = palette().color(QPalette::ButtonText);
    QMenu* Menu = menuBar()->addMenu(tr("&View"));
    QAction* Expand = Menu->addAction(MakeToolIcon(tiExpandAll, Color), tr("E&xpand All"), this,
                                      &TOutlinerWindow::ExpandAll);
    Expand->setShortcut(tr("Ctrl+E"));
    QAction* Collapse = Menu->addAction(MakeToolIcon(tiCollapseAll, Color), tr("Colla&pse All"), this,
                                        &TOutlinerWindow::CollapseAll);
    Collapse->setShortcut(tr("Ctrl+Shift+E"));
    Menu->addSeparator();
    auto* const View = new TViewMenu(Menu, FTree);
    // Whole rows cannot be edited.
    connect(View, &TViewMenu::switched, FTree,
            [this] { FTree->SetSelectsRows(FTree->HasOption(goRowSelect)); });
    Menu->addSeparator();
    Menu->addAction(MakePreview()->toggleViewAction());
    Tools->addActions({Expand, Collapse});
}

// The text of the selected node as markup, in a part of the window that the user can open.
QDockWidget* TOutlinerWindow::MakePreview() {
    auto* Dock = new QDockWidget(tr("Previe&w"), this);
    Dock->setObjectName("preview");
    FPreview = new TNVHTMLText(nullptr, Dock);
    FPreview->SetWordWrap(true);
    FPreview->SetParentColor(false);
    FPreview->SetColor(clWindow);
    FPreview->SetVertAlign(vaTop);
    FPreview->SetMargin(8);
    FPreview->setMinimumHeight(60);
    Dock->setWidget(FPreview);
    addDockWidget(Qt::BottomDockWidgetArea, Dock);
    Dock->hide();
    connect(FTree, &TOutlineTree::changed, this, &TOutlinerWindow::ShowPreview);
    connect(Dock, &QDockWidget::visibilityChanged, this, &TOutlinerWindow::ShowPreview);
    return Dock;
}

void TOutlinerWindow::ShowPreview() {
    TStringList Lines;
    TFlyNode* Node = FTree->GetNodeAtRow(FTree->GetRow());
    if (Node) Lines.SetText(Node->GetText());
    FPreview->SetStrings(&Lines);
}

void TOutlinerWindow::MakeHelpMenu() {
    QMenu* Menu = menuBar()->addMenu(tr("&Help"));
    Menu->addAction(tr("&About"), this, &TOutlinerWindow::About);
}

// --- the document ------------------------------------------------------------------------------------------------

void TOutlinerWindow::NewOutline() {
    FFileName.clear();
    FOptions = DefaultOptions();
    FTree->ShowNothing();
    DocumentChanged();
}

void TOutlinerWindow::OpenFile(const std::string& FileName) {
    TOutline Outline = ReadOutline(FileName);
    FTree->ShowOutline(Outline, ReadCaptions(FileName));
    FFileName = FileName;
    FOptions = Outline.Options;
    DocumentChanged();
}

void TOutlinerWindow::SaveFile(const std::string& FileName) {
    FTree->HideEditor();
    // What came in since then is kept too.
    if (isWindowModified()) FOptions = FOptions + FieldsInUse(*FTree->GetItems());
    SaveOutline(FileName, *FTree->GetItems(), FOptions);
    SaveCaptions(FileName, FTree->FileCaptions());
    FFileName = FileName;
    FViewChanged = false;
    SetModified(false);
}

void TOutlinerWindow::AskAndOpen() {
    if (!MayClose()) return;
    const QString Folder = QFileInfo(QString::fromStdString(FFileName)).path();
    const QString Name = QFileDialog::getOpenFileName(this, tr("Open an Outline"), Folder, tr(FileFilter));
    if (Name.isEmpty()) return;
    Attempt(tr("Open an Outline"), [&] { OpenFile(Name.toStdString()); });
}

bool TOutlinerWindow::Save() { return FFileName.empty() ? AskAndSave() : TrySave(FFileName); }

bool TOutlinerWindow::AskAndSave() {
    const QString Old =
        FFileName.empty() ? QStringLiteral("untitled.nodes") : QString::fromStdString(FFileName);
    const QString Name = QFileDialog::getSaveFileName(this, tr("Save the Outline"), Old, tr(FileFilter));
    return !Name.isEmpty() && TrySave(Name.toStdString());
}

bool TOutlinerWindow::TrySave(const std::string& FileName) {
    return Attempt(tr("Save the Outline"), [&] { SaveFile(FileName); });
}

bool TOutlinerWindow::MayClose() {
    FTree->HideEditor(); // what is being typed counts
    if (!isWindowModified()) return true;
    const auto Answer = QMessageBox::question(this, tr("Unsaved Changes"),
                                              tr("Save the changes to \"%1\"?").arg(DocumentName()),
                                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    return Answer == QMessageBox::Discard || (Answer == QMessageBox::Save && Save());
}

void TOutlinerWindow::closeEvent(QCloseEvent* Event) {
    Event->setAccepted(MayClose());
    if (Event->isAccepted()) StoreView();
}

// --- view and state ----------------------------------------------------------------------------------------------

void TOutlinerWindow::KeepView(const std::string& FileName) {
    FView = std::make_unique<TOutlineView>();
    FViewFileName = FileName;
    FView->Take(*FTree);
    const std::string Fault = FView->Load(FileName);
    if (!Fault.empty()) {
        statusBar()->showMessage(tr("The view is not as it was: %1").arg(QString::fromStdString(Fault)),
                                 MessageTime);
    }
    FView->GiveLook(*FTree);
    FitColumnsWhenShown();
}

void TOutlinerWindow::StoreView() {
    if (!FView) return;
    FView->Take(*FTree);
    Attempt(tr("Keep the View"), [this] { FView->Save(FViewFileName); });
}

// As the user left them, if these are the columns that were there.
void TOutlinerWindow::FitColumns() {
    if (!FView || !FView->GiveColumns(*FTree)) TProgramWindow::FitColumns();
}

// What the user looks at stays at the top: each expansion on the way scrolls.
void TOutlinerWindow::ExpandAll() {
    TFlyNode* Top = FTree->GetTopItem();
    FTree->FullExpand();
    FTree->SetTopItem(Top);
}

void TOutlinerWindow::CollapseAll() {
    TFlyNode* Top = FTree->GetTopItem();
    while (Top && Top->GetParent()) Top = Top->GetParent();
    FTree->FullCollapse();
    FTree->SetTopItem(Top);
}

void TOutlinerWindow::ViewChanged() { FViewChanged = FOptions.Contains(tsnIncludeExpands); }

void TOutlinerWindow::SetModified(bool Value) {
    setWindowModified(Value);
    setWindowTitle(DocumentName() + "[*]");
    FStatus->Touch();
}

void TOutlinerWindow::DocumentChanged() {
    FViewChanged = false;
    FEditor->Forget();
    SetModified(false);
    FitColumnsWhenShown();
}

QString TOutlinerWindow::DocumentName() const {
    return FFileName.empty() ? tr("Untitled") : QFileInfo(QString::fromStdString(FFileName)).fileName();
}

QString TOutlinerWindow::StatusText() const {
    const QString Name = FFileName.empty() ? tr("Untitled") : QString::fromStdString(FFileName);
    if (isWindowModified()) return tr("%1 (modified)").arg(Name);
    return FViewChanged ? tr("%1 (view changed)").arg(Name) : Name;
}

void TOutlinerWindow::About() {
    ShowAbout("Outliner", tr("Opens, edits and saves outlines in the nodes text format."));
}

} // namespace quill::examples
