// An explorer: a folder and what is below it, read as it is opened.
#include "ExplorerWindow.h"

#include "../common/Look.h"
#include "../common/ProgramOptions.h"

#include <QApplication>
#include <QDir>

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

} // namespace

int main(int ArgCount, char** Args) {
    ChoosePlatform(ArgCount, Args);
    QApplication Program(ArgCount, Args);
    QApplication::setApplicationName("explorer");
    QApplication::setApplicationDisplayName("Explorer");
    const TArguments Arguments = ReadArguments();
    SetUpLook(Arguments.Common.Dark, Arguments.Common.RightToLeft);

    TExplorerWindow Window;
    return Window.Run(Arguments.Common, QObject::tr("Open a Folder"), [&] {
        Window.OpenRoot(Arguments.Root);
        Window.ExpandLevels(Arguments.ExpandLevels);
    });
}
