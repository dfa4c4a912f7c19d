// A gallery of the controls: one page for each feature, with switches for what it can do.
#include "GalleryPages.h"
#include "GalleryWindow.h"

#include "../common/Look.h"
#include "../common/ProgramOptions.h"

#include "host/base/Errors.h"

#include <QApplication>

using namespace quill;
using namespace quill::examples;

namespace {

struct TArguments {
    TProgramOptions Window;
    int Page = 0;
};

TArguments ReadArguments() {
    QString Names;
    for (const TPageInfo& Info : GalleryPages()) Names += (Names.isEmpty() ? "" : ", ") + QString(Info.Name);
    QCommandLineParser Parser;
    Parser.setApplicationDescription("Shows what the controls can do, one page for each feature.");
    AddWindowOptions(Parser);
    Parser.addOption({"page", "Show the page NAME first: " + Names + ".", "NAME"});
    Parser.process(*QCoreApplication::instance());

    TArguments Arguments{.Window = ReadWindowOptions(Parser)};
    if (!Parser.positionalArguments().isEmpty())
        std::exit(ReportError("there is nothing to open; pages are chosen with --page"));
    if (!Parser.isSet("page")) return Arguments;
    Arguments.Page = FindPage(Parser.value("page"));
    if (Arguments.Page < 0) {
        std::exit(ReportError("there is no page \"" + Parser.value("page").toStdString() +
                              "\", only: " + Names.toStdString()));
    }
    return Arguments;
}

} // namespace

int main(int ArgCount, char** Args) {
    ChoosePlatform(ArgCount, Args);
    QApplication Program(ArgCount, Args);
    QApplication::setApplicationName("gallery");
    QApplication::setApplicationDisplayName("Gallery");
    const TArguments Arguments = ReadArguments();
    SetUpLook(Arguments.Window.Dark, Arguments.Window.RightToLeft);

    TGalleryWindow Window;
    Window.resize(Arguments.Window.Size);
    Window.ShowPage(Arguments.Page);
    Window.show();
    if (Arguments.Window.Screenshot.empty()) return QApplication::exec();
    try {
        QApplication::processEvents(); // the layout gives the page its place
        Window.GetPage()->Pose();
        SaveScreenshot(*Window.GetPage()->GetPicture(), Arguments.Window.Screenshot);
        return EXIT_SUCCESS;
    } catch (const Exception& Error) {
        return ReportError(Error.GetMessage());
    }
}
