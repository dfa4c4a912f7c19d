// Form streams, and nodes data inside them: any bytes are read or refused with a place, and the tree can be used
// afterwards; what was read is written as a form that reads back the same.
#include "tests/fuzz/Fuzz.h"

#include "host/base/Streams.h"
#include "host/forms/Forms.h"
#include "quilltree/QuillTree.h"

#include <QApplication>

using namespace quill;

namespace {

void Use(TQuillTree& Tree) {
    fuzz::Check(!Tree.HasState(csLoading) && !Tree.HasState(csReading),
                "the tree still believes that it is read");
    Tree.GetItems()->Add(nullptr, "new");
    Tree.GetItems()->CheckInvariants();
    fuzz::Check(Tree.GetRowCount() == Tree.GetFixedRows() + Tree.GetItems()->RowList.GetCount(),
                "the rows are not those of the nodes");
    // A surface of any size is the program's own wish.
    if (Tree.GetWidth() > 2000 || Tree.GetHeight() > 2000) return;
    Tree.HandleNeeded();
    Tree.GetSurfaceImage();
}

void RunForm(std::string_view Input) {
    TQuillTree Tree;
    try {
        LoadFormFromText("quill form 1 object Tree: TQuillTree " + std::string(Input), &Tree);
    } catch (const EFormError& Error) {
        fuzz::Check(Error.GetLine() >= 1, "a fault without a line");
        Use(Tree);
        return;
    }
    const std::string Text = SaveFormToText(&Tree);
    TQuillTree Copy;
    LoadFormFromText(Text, &Copy);
    fuzz::Check(SaveFormToText(&Copy) == Text, "the form does not read back");
    Use(Tree);
}

// The first byte says how much of a good stream stands before the input.
void RunData(std::string_view Input) {
    TQuillTree Tree;
    TMemoryStream Good;
    for (int I = 0; I < 4; ++I)
        Tree.GetItems()->AddChild(Tree.GetItems()->GetFirstNode(), "node")->SetCell(1, "cell");
    Tree.WriteData(Good);
    std::string Bytes = Good.GetMemory();
    if (!Input.empty()) {
        const auto Kept = static_cast<unsigned char>(Input[0]);
        const std::size_t Cut = std::min<std::size_t>(Kept, Bytes.size());
        // The size of the block fits what follows, so that the input is looked at.
        Bytes = Bytes.substr(0, Cut) + std::string(Input.substr(1));
        if (Bytes.size() > 8 && Cut > 8) {
            Bytes[6] = static_cast<char>((Bytes.size() - 8) & 0xFF);
            Bytes[7] = static_cast<char>((Bytes.size() - 8) >> 8);
            Bytes += std::string(2, '\0');
        }
    }
    TMemoryStream Stream(Bytes);
    try {
        Tree.ReadData(Stream);
    } catch (const EReadError&) {
        // refused
    }
    Use(Tree);
}

void Run(std::string_view Input) {
    if (Input.starts_with('\1'))
        RunData(Input.substr(1));
    else
        RunForm(Input);
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
                        "\xFF",
                        "\1",
                        "\1\x20",
                        "\1\x40",
                        std::string("\1\x30\0", 3)}});
}
