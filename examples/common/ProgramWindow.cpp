#include "ProgramWindow.h"

#include "ColumnFit.h"
#include "Look.h"

#include "host/base/Errors.h"
#include "quilltree/QuillTree.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <QToolBar>

#include <cstdlib>

namespace quill::examples {

TProgramWindow::TProgramWindow() : FPictures(LoadPictures()) {}

TProgramWindow::~TProgramWindow() = default;

int TProgramWindow::Run(const TProgramOptions& Options, const QString& Title,
                        const std::function<void()>& Open) {
    resize(Options.Size);
    if (Options.RightToLeft) SetRightToLeft(*FTree, true);
    if (Options.IsBatch()) {
        try {
            Open();
            RunBatch(Options);
            return EXIT_SUCCESS;
        } catch (const Exception& Error) {
            return ReportError(Error.GetMessage());
        }
    }
    std::string Fault;
    try {
        Open();
    } catch (const Exception& Error) {
        Fault = Error.GetMessage();
    }
    show();
    if (!Fault.empty()) {
        // Above the window, which is there only when events run.
        QTimer::singleShot(0, this, [this, Title, Fault] {
            QMessageBox::critical(this, Title, QString::fromStdString(Fault));
        });
    }
    return QApplication::exec();
}

// What needs no user. Raises what goes wrong.
void TProgramWindow::RunBatch(const TProgramOptions& Options) {
    if (!Options.SaveAs.empty()) SaveFile(Options.SaveAs);
    if (Options.Screenshot.empty()) return;
    show();
    SaveScreenshot(*this, Options.Screenshot);
}

void TProgramWindow::SetTree(TCustomQuillTree* Tree, const std::vector<std::string>& Samples) {
    FTree = Tree;
    FSamples = Samples;
    FTree->SetImages(FPictures.get());
    setCentralWidget(FTree);
}

QToolBar* TProgramWindow::MakeToolBar() {
    QToolBar* Tools = addToolBar(tr("Tools"));
    Tools->setMovable(false);
    Tools->setIconSize(QSize(16, 16));
    return Tools;
}

void TProgramWindow::FitColumnsWhenShown() {
    FFitPending = !isVisible();
    if (!FFitPending) FitColumns();
}

void TProgramWindow::FitColumns() { examples::FitColumns(*FTree, FSamples); }

void TProgramWindow::showEvent(QShowEvent* Event) {
    QMainWindow::showEvent(Event);
    if (FFitPending) FitColumns();
    FFitPending = false;
}

bool TProgramWindow::Attempt(const QString& Title, const std::function<void()>& Work) {
    try {
        Work();
        return true;
    } catch (const Exception& Error) {
        QMessageBox::critical(this, Title, QString::fromStdString(Error.GetMessage()));
        return false;
    }
}

void TProgramWindow::ShowAbout(const QString& Name, const QString& Text) {
    QMessageBox Box(this);
    Box.setWindowTitle(tr("About the %1").arg(Name));
    Box.setIconPixmap(ProgramIcon().pixmap(64));
    Box.setText(tr("<h3>%1</h3>").arg(Name));
    Box.setInformativeText(tr("%1 An example program of the Quill controls.").arg(Text));
    Box.exec();
}

} // namespace quill::examples
