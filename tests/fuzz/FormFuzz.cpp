// Form streams: any bytes are read or refused with a place, and the tree can be used afterwards; what was read is written
// as a form that reads back the same.
#include "tests/fuzz/UseTree.h"

#include "host/forms/Forms.h"

#include <QApplication>

using namespace quill;

namespace {

void Run(std::string_view Input) {
    TQuillTree Tree;
    try {
        LoadFormFromText("quill form 1 object Tree: TQuillTree " + std::string(Input), &Tree);
    } catch (const EFormError& Error) {
        fuzz::Check(Error.GetLine() >= 1, "a fault without a line");
        fuzz::UseTree(Tree);
        return;
    }
    const std::string Text = SaveFormToText(&Tree);
    TQuillTree Copy;
    LoadFormFromText(Text, &Copy);
    fuzz::Check(SaveFormToText(&Copy) == Text, "the form does not read back");
    fuzz::UseTree(Tree);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication Application(argc, argv);
    return fuzz::Main(argc, argv,
                      {"form",
                       Run,
                       {"end",
                        "object ",
                        "P: TImageList ",
                        "M: TPopupMenu ",
                        "L: TNVHTMLText ",
                        "inherited ",
                        " = ",
                        "\n",
                        "True",
                        "False",
                        "nil",
                        "-1",
                        "0",
                        "1",
                        "3",
                        "100",
                        "2147483647",
                        "$FF",
                        "\"",
                        "\\x41",
                        "\\n",
                        "[",
                        "]",
                        "(",
                        ")",
                        "{",
                        "}",
                        ",",
                        ":",
                        ".",
                        "UVRSRUUB",
                        "UVBJQ1MB",
                        "AAAA",
                        "=",
                        "Indent = ",
                        "ButtonSize = ",
                        "ColCount = ",
                        "RowCount = ",
                        "FixedRows = ",
                        "FixedCols = ",
                        "StructureCol = ",
                        "Options = [goRowSelect, goTabs]",
                        "Align = alClient",
                        "Images = P",
                        "PopupMenu = M",
                        "Font.Name = \"x\"",
                        "Font.Height = ",
                        "Constraints.MinWidth = ",
                        "ColWidths = (",
                        "RowHeights = (",
                        "ColumnOrder = (",
                        "Captions = (\"a\" \"b\")",
                        "Data = {",
                        "Pictures = {",
                        "Width = ",
                        "Height = ",
                        "SortType = stText",
                        "UniqueTags = True",
                        "FitToHeight = True",
                        "FitColumnToClientWidth = True",
                        "DefaultRowHeight = ",
                        "Lines = \"",
                        "AutoSize = True",
                        std::string(1, '\0'),
                        "\xFF"}});
}
