// Tells where the rows of an example program are, so that others can drive its mouse there: opens the same window,
// prints a line for each row in view (left, right, top and bottom of the text in pixels of the window, text; tabs
// between), and ends.
//
//   quill_row_places [--size WxH] [--rtl] [--expand-all] outliner|explorer FILE-OR-FOLDER
#include "examples/common/Look.h"
#include "examples/common/ProgramOptions.h"
#include "examples/explorer/ExplorerWindow.h"
#include "examples/outliner/OutlinerWindow.h"
#include "examples/outliner/OutlineTree.h"

#include <QApplication>
#include <QTest>

#include <cstdio>
#include <cstdlib>

using namespace quill;
using namespace quill::examples;

namespace {

void Print(QMainWindow& Window, TCustomQuillTree& Tree, const TProgramOptions& Options) {
    Window.resize(Options.Size);
    if (Options.RightToLeft) SetRightToLeft(Tree, true);
    Window.show();
    QTest::qWait(200);
    const QPoint Origin = Tree.viewport()->mapTo(&Window, QPoint());
    for (int Row = Tree.GetTopRow(); Row < Tree.GetRowCount(); ++Row) {
        TFlyNode* const Node = Tree.GetNodeAtRow(Row);
        const TRect Text = Tree.DisplayRect(Node, true);
        if (Text.IsEmpty()) break;
        std::printf("%d\t%d\t%d\t%d\t%s\n", Text.Left + Origin.x(), Text.Right + Origin.x(),
                    Text.Top + Origin.y(), Text.Bottom + Origin.y(), Node->GetText().c_str());
    }
}

} // namespace

int main(int Count, char** Values) {
    QApplication Program(Count, Values);
    QCommandLineParser Parser;
    AddWindowOptions(Parser);
    Parser.addOption({"expand-all", "Open all nodes first."});
    Parser.addPositionalArgument("PROGRAM", "outliner or explorer.");
    Parser.addPositionalArgument("PATH", "The outline or folder.");
    Parser.process(Program);
    const TProgramOptions Options = ReadWindowOptions(Parser);
    SetUpLook(Options.Dark, Options.RightToLeft);
    const std::string Path = Parser.positionalArguments().value(1).toStdString();
    try {
        if (Parser.positionalArguments().value(0) == "explorer") {
            TExplorerWindow Window;
            Window.OpenRoot(Path);
            Print(Window, *Window.GetTree(), Options);
        } else {
            TOutlinerWindow Window;
            Window.OpenFile(Path);
            if (Parser.isSet("expand-all")) Window.ExpandAll();
            Print(Window, *Window.GetTree(), Options);
        }
    } catch (const Exception& Error) {
        return ReportError(Error.GetMessage());
    }
    return EXIT_SUCCESS;
}
