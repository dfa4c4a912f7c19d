// An outliner: opens, shows and saves outlines in the nodes text format.
#include "OutlinerWindow.h"
#include "OutlineTree.h"
#include "OutlineView.h"
#include "RoundTrip.h"

#include "../common/Look.h"
#include "../common/ProgramOptions.h"

#include <QApplication>

#include <map>
#include <optional>

using namespace quill;
using namespace quill::examples;

namespace {

const char* const Description =
    "Opens, shows and saves outlines in the nodes text format.\n\n"
    "Captions of the columns are read from a file beside the outline whose name ends in .columns instead of\n"
    ".nodes, one line of comma text.";

struct TArguments {
    TProgramOptions Common;
    std::string File;
    std::vector<std::string> RoundTrip;
    std::optional<TOutlineStyle> Style; // as the last time
    bool ExpandAll = false;
    bool Markup = false;
};

TArguments ReadArguments() {
    QCommandLineParser Parser;
    Parser.setApplicationDescription(Description);
    AddCommonOptions(Parser);
    Parser.addOptions({
        {"file", "Open FILE.", "FILE"},
        {"expand-all", "Open all nodes first."},
        {"markup", "Show texts as markup."},
        {"outline-style", "Draw the outline as NAME: standard, explorer or solid.", "NAME"},
        {"roundtrip",
         "Load and save the FILES with all options that keep their fields, compare the bytes, and end."},
    });
    Parser.addPositionalArgument("FILE", "The outline to open.", "[FILE...]");
    Parser.process(*QCoreApplication::instance());

    TArguments Arguments;
    Arguments.Common = ReadCommonOptions(Parser);
    Arguments.ExpandAll = Parser.isSet("expand-all");
    Arguments.Markup = Parser.isSet("markup");
    QStringList Files = Parser.values("file") + Parser.positionalArguments();
    if (Parser.isSet("roundtrip")) {
        if (Files.isEmpty()) std::exit(ReportError("--roundtrip needs files"));
        for (const QString& Name : Files) Arguments.RoundTrip.push_back(Name.toStdString());
    } else if (Files.size() > 1) {
        std::exit(ReportError("only one outline can be open"));
    } else if (!Files.isEmpty()) {
        Arguments.File = Files.first().toStdString();
    }

    if (!Parser.isSet("outline-style")) return Arguments;
    const std::map<QString, TOutlineStyle> Styles{
        {"standard", olsStandardTree}, {"explorer", olsExplorer}, {"solid", olsExcel}};
    const auto Style = Styles.find(Parser.value("outline-style"));
    if (Style == Styles.end()) {
        std::exit(
            ReportError("there is no outline style \"" + Parser.value("outline-style").toStdString() + "\""));
    }
    Arguments.Style = Style->second;
    return Arguments;
}

} // namespace

int main(int ArgCount, char** Args) {
    ChoosePlatform(ArgCount, Args);
    QApplication Program(ArgCount, Args);
    QApplication::setApplicationName("outliner");
    QApplication::setApplicationDisplayName("Outliner");
    const TArguments Arguments = ReadArguments();
    SetUpLook(Arguments.Common.Dark, Arguments.Common.RightToLeft);
    if (!Arguments.RoundTrip.empty()) return RoundTrip(Arguments.RoundTrip) ? EXIT_SUCCESS : EXIT_FAILURE;

    TOutlinerWindow Window;
    // Work without a user gives the same result for everybody.
    if (!Arguments.Common.IsBatch()) Window.KeepView(ViewFileName());
    if (Arguments.Style) Window.GetTree()->SetOutlineStyle(*Arguments.Style);
    if (Arguments.Markup) Window.GetTree()->SetHTMLDrawing(true);
    return Window.Run(Arguments.Common, QObject::tr("Open an Outline"), [&] {
        if (!Arguments.File.empty()) Window.OpenFile(Arguments.File);
        if (Arguments.ExpandAll) Window.ExpandAll();
    });
}
