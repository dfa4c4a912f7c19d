// Nodes data: any bytes are read or refused with a reason, by themselves and inside a form; the tree can be used
// afterwards, and what was read is written as data that read the same.
#include "tests/fuzz/UseTree.h"

#include "host/base/Streams.h"
#include "host/forms/Forms.h"

#include <QApplication>

using namespace quill;

namespace {

constexpr std::size_t HeadSize = 8;   // mark, version, size of the only block
constexpr char AsItIs = '\xFF';       // the input is the whole stream
constexpr unsigned char InForm = 128; // added to the number of good bytes

// As the data hold a name.
std::string Name(std::string_view Text) {
    return std::string(1, static_cast<char>(Text.size())).append(Text);
}

std::string Written(TQuillTree& Tree) {
    TMemoryStream Stream;
    Tree.WriteData(Stream);
    return Stream.GetMemory();
}

const std::string& Good() {
    static const std::string Bytes = [] {
        TQuillTree Tree;
        TFlyNode* const First = Tree.GetItems()->GetFirstNode();
        for (int I = 0; I < 3; ++I) Tree.GetItems()->AddChild(First, "node")->SetCell(1, "cell");
        First->SetHeight(40);
        return Written(Tree);
    }();
    return Bytes;
}

// In one block with the right size, so that the reader gets to see the input.
std::string Framed(std::string_view Body) {
    std::string Bytes = Good().substr(0, HeadSize - 2);
    Bytes += static_cast<char>(Body.size() & 0xFF);
    Bytes += static_cast<char>(Body.size() >> 8);
    return Bytes.append(Body).append(2, '\0');
}

void ReadBack(TQuillTree& Tree) {
    const std::string Bytes = Written(Tree);
    TQuillTree Copy;
    TMemoryStream Stream(Bytes);
    Copy.ReadData(Stream);
    fuzz::Check(Written(Copy) == Bytes, "the data do not read back");
}

// The first byte says how much of a good body stands before the rest.
void Run(std::string_view Input) {
    const char First = Input.empty() ? AsItIs : Input[0];
    const std::string_view Rest = Input.substr(Input.empty() ? 0 : 1);
    const auto Code = static_cast<unsigned char>(First);
    const std::string Bytes =
        First == AsItIs ? std::string(Rest) : Framed(Good().substr(HeadSize, Code % InForm).append(Rest));
    TQuillTree Tree;
    try {
        if (First != AsItIs && Code >= InForm) {
            std::string Form = "quill form 1 object Tree: TQuillTree FitToHeight = True Data = {";
            AppendBase64(Form, Bytes, {});
            LoadFormFromText(Form + "} end", &Tree);
        } else {
            TMemoryStream Stream(Bytes);
            Tree.ReadData(Stream);
        }
        ReadBack(Tree);
    } catch (const EFormError& Error) {
        fuzz::Check(Error.GetProperty() == "Data", "a fault in another property");
    } catch (const EReadError& Error) {
        fuzz::Check(!Error.GetMessage().empty(), "refused without a reason");
    }
    fuzz::UseTree(Tree);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication Application(argc, argv);
    using namespace std::string_literals;
    return fuzz::Main(argc, argv,
                      {"data",
                       Run,
                       {"\xFFQTREE\x01"s,
                        "\x7F"s,
                        "\xFE"s,
                        "\x10"s,
                        "\x28"s,
                        "\x40"s,
                        "\xB0"s,
                        "\0"s,
                        "\0\0"s,
                        "\0\0\0"s,
                        "\x01"s,
                        "\x01\x02"s,
                        "\x01\x02\0\0"s,
                        "\x02\x05"s,
                        "\x02\x80\x08"s,
                        "\x05"s,
                        "\x06"s,
                        "\xFF\xFF\xFF\xFF\x0F"s,
                        "\xFE\xFF\xFF\xFF\x0F"s,
                        "\x80\x80\x80\x80\x80\x80\x80\x80\x80\x01"s,
                        Name("TFlyNode"),
                        Name("TFlyNodes"),
                        Name("TTreeCollection"),
                        Name("Text"),
                        Name("CellsText"),
                        Name("Hidden"),
                        Name("Height"),
                        Name("UniqueTag"),
                        Name("ImageIndex"),
                        Name("SelectedIndex"),
                        Name("StateIndex"),
                        Name("Caption")}});
}
