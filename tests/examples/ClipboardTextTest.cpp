#include "examples/outliner/ClipboardText.h"
#include "examples/outliner/Subtrees.h"

#include "tests/examples/OutlineDump.h"

#include <gtest/gtest.h>

using namespace quill;
using namespace quill::examples;
using quill::testing::DumpOutline;

namespace {

std::string Read(const std::string& Text) {
    TSubtrees Subtrees(NodesTextOfPlain(Text).NodesText);
    return DumpOutline(Subtrees.GetNodes());
}

TEST(ClipboardText, ReadsWhatOtherProgramsWrite) {
    using namespace std::string_literals;
    const std::pair<std::string, std::string> Cases[] = {
        {"", ""},
        {" \r\n\t\t\r\n\0\0\n"s, ""},
        // Line ends.
        {"A\nB", "A, B"},
        {"A\r\nB\r\n", "A, B"},
        {"A\rB\r\rC", "A, B, C"},
        {"\xEF\xBB\xBF"
         "A\n",
         "A"},
        // Indentation.
        {"A\n\tB\n\t\tC\nD", "A[B[C]], D"},
        {"  A\n     B\n  C\n", "A[B], C"},
        {"A\n        B\n    C\n  D", "A[B, C, D]"},
        {"    A\nB\n\n  C", "A, B[C]"},
        {"\tA\n\tB", "A, B"},
        // Rows of a spreadsheet, and an outline with cells.
        {"A\t1\nB\t2\n", "A|1, B|2"},
        {"A\t1\r\n\t2\r\n \t3\r\n", "A|1, |2, |3"},
        {"A\t1\t\n\tB\t\n", "A|1, |B"},
        {"A\t1\n\tB\t2\n", "A|1[B|2]"},
        {"A\t1\n  B\t2\n", "A|1[B|2]"},
        {"A, b\t\"\n", "A, b|\""},
        // Quotes.
        {"\"a\r\nb\"\t\"say \"\"hi\"\"\"\nC\tc", "a b|say \"hi\", C|c"},
        {"\"open\tB\n\"a\"b\n\"", "\"open|B, \"a\"b, \""},
        {"\"\"\tB\n", "|B"},
        // Damage.
        {"a\0b\t\xFF\xC3\n"s, "ab|\xFF\xC3"},
        {"\x01\x1B[0m", "\x01\x1B[0m"},
        {"SaveOptions: see the manual", "SaveOptions: see the manual"},
    };
    for (const auto& [Text, Outline] : Cases) EXPECT_EQ(Read(Text), Outline) << Text;
}

TEST(ClipboardText, ReadsItsOwnTextBack) {
    const char* const Outlines[] = {
        "SaveOptions:8\nFruit,sweet\n\tApple,\"red, green\",\"a \"\"b\"\"\"\n\t\tSeed\nNuts\n",
        "SaveOptions:8\n\"\"\"quoted\"\" text\",\"\"\"\"\n\t\"with\ttab\",,\"\t\"\n",
        "SaveOptions:8\nA,1\n\tB,2\n\t\tC,3\nD,4\n",
    };
    for (const char* Outline : Outlines) {
        TSubtrees Subtrees(Outline);
        EXPECT_EQ(Read(PlainTextOf(Subtrees.GetNodes())), DumpOutline(Subtrees.GetNodes()));
    }
}

TEST(ClipboardText, SaysHowManyCellsHaveNoColumn) {
    const std::string Wide = std::string(MaxPastedColumns + 1, '\t') + "x\n";
    const TTextAsNodes Nodes = NodesTextOfPlain("A" + Wide + "B" + Wide + "C\n");
    EXPECT_EQ(Nodes.CellsLeftOut, 4);
    TSubtrees Subtrees(Nodes.NodesText);
    EXPECT_EQ(Subtrees.GetNodes().GetFirstNode()->GetCellCount(), MaxPastedColumns);
}

TEST(ClipboardText, TakesMegabytesOfAnything) {
    const auto Times = [](int Count, std::string_view Part) {
        std::string Text;
        for (int Index = 0; Index < Count; ++Index) Text += Part;
        return Text;
    };
    std::string Stairs;
    for (int Step = 0; Step < 1400; ++Step)
        Stairs += std::string(static_cast<std::size_t>(Step), ' ') + "x\n";
    // Linear in each case, or the test does not end.
    EXPECT_EQ(Read(Times(1 << 20, "\"")).size(), (1U << 20) / 2 - 1);
    EXPECT_EQ(Read(Times(1 << 15, "\"a\"\"\n")).substr(0, 4), "\"a\"\"");
    EXPECT_EQ(Read(Times(1 << 20, "\t")), "");
    EXPECT_EQ(Read(Times(1 << 15, "a\tb\n")).size(), (1U << 15) * 5 - 2);
    EXPECT_EQ(Read(Stairs).size(), 1400U * 3 - 2);
}

} // namespace
