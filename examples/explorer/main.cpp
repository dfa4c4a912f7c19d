// An explorer: a folder and what is below it, read as it is opened.
#include "ExplorerWindow.h"

#include "../common/Look.h"
#include "../common/ProgramOptions.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QTimer>

using namespace quill;
using namespace quill::examples;

namespace {

struct TArguments {
    TProgramOptions Common;
    std::string Root;
    int ExpandLevels = 1;
};

TArguments ReadArguments() {
    QCommandLineParser Parser;
    Parser.setApplicationDescription("Shows a folder and what is below it, read as it is opened.");
    AddCommonOptions(Parser);
    Parser.addOptions({
        {"root", "Show PATH, the home folder if not given.", "PATH"},
        {"expand-levels", "Open the folders on the first N levels; 1 opens the one at the root.", "N", "1"},
    });
    Parser.addPositionalArgument("PATH", "The folder to show.", "[PATH]");
    Parser.process(*QCoreApplication::instance());

    TArguments Arguments;
    Arguments.Common = ReadCommonOptions(Parser);
    const QStringList Roots = Parser.values("root") + Parser.positionalArguments();
    if (Roots.size() > 1) std::exit(ReportError("only one folder can be shown"));
    Arguments.Root = (Roots.isEmpty() ? QDir::homePath() : Roots.first()).toStdString();
    bool IsNumber = false;
    Arguments.ExpandLevels = Parser.value("expand-levels").toInt(&IsNumber);
    if (!IsNumber || Arguments.ExpandLevels < 1) {
        std::exit(ReportError("--expand-levels needs a number above 0, not \"" +
                              Parser.value("expand-levels").toStdString() + "\""));
    }
    return Arguments;
}

// What needs no user. Raises what goes wrong.
void RunBatch(TExplorerWindow& Window, const TProgramOptions& Options) {
    if (!Options.SaveAs.empty()) Window.SaveOutlineFile(Options.SaveAs);
    if (Options.Screenshot.empty()) return;
    Window.show();
    SaveScreenshot(Window, Options.Screenshot);
}

} // namespace

int main(int ArgCount, char** Args) {
    ChoosePlatform(ArgCount, Args);
    QApplication Program(ArgCount, Args);
    QApplication::setApplicationName("explorer");
    QApplication::setApplicationDisplayName("Explorer");
    const TArguments Arguments = ReadArguments();
    SetUpLook(Arguments.Common.Dark, Arguments.Common.RightToLeft);

    TExplorerWindow Window;
    Window.resize(Arguments.Common.Size);
    if (Arguments.Common.RightToLeft) SetRightToLeft(*Window.GetTree(), true);
    std::string Fault;
    try {
        Window.OpenRoot(Arguments.Root);
        Window.ExpandLevels(Arguments.ExpandLevels);
        if (Arguments.Common.IsBatch()) {
            RunBatch(Window, Arguments.Common);
            return EXIT_SUCCESS;
        }
    } catch (const Exception& Error) {
        Fault = Error.GetMessage();
    }
    if (Arguments.Common.IsBatch()) return ReportError(Fault);

    Window.show();
    if (!Fault.empty()) {
        QTimer::singleShot(0, &Window, [&Window, Fault] {
            QMessageBox::critical(&Window, QObject::tr("Open a Folder"), QString::fromStdString(Fault));
        });
    }
    return QApplication::exec();
}
