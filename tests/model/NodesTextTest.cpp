// The nodes text format: what is written byte for byte, what is read, and how broken files fail.
#include "ModelTestTools.h"

#include "host/base/Errors.h"
#include "host/base/Streams.h"
#include "tests/support/TempFolder.h"

namespace quill {
namespace {

constexpr auto AllOptions = TSaveNodesOptions::FromBits(127);

class NodesText : public ::testing::Test {
protected:
    std::string Save(TSaveNodesOptions Options) {
        TMemoryStream Stream;
        Nodes.SaveNodesToStream(Stream, Options);
        return Stream.GetMemory();
    }
    void Load(const std::string& Text) {
        TMemoryStream Stream(Text);
        Nodes.LoadNodesFromStream(Stream);
    }
    // What loading raises, as "type: message"; empty when it succeeds.
    std::string LoadError(const std::string& Text) {
        try {
            Load(Text);
        } catch (const EQuillTreeError& Error) {
            return "tree: " + Error.GetMessage();
        } catch (const EConvertError& Error) {
            return "convert: " + Error.GetMessage();
        } catch (const EStringListError& Error) {
            return "list: " + Error.GetMessage();
        }
        return {};
    }
    TFlyNode* At(std::string_view Text) { return Find(Nodes, Text); }
    THeadlessHost Host;
    TFlyNodes& Nodes = *Host.GetItems();
};

TEST_F(NodesText, IsWrittenAsTheFormatSays) {
    EXPECT_EQ(Save(AllOptions), "") << "an empty tree writes nothing at all";
    Plant(Nodes, "Fruit[Apple] Nuts");
    At("Fruit")->SetCell(0, "unused");
    At("Fruit")->SetCell(1, "Sweet and red");
    At("Apple")->SetImageIndex(2);
    At("Nuts")->SetImageIndex(3);
    At("Fruit")->Expand(false);
    const auto Options = TSaveNodesOptions{tsnIncludeImageIndex, tsnIncludeCells, tsnIncludeExpands};
    EXPECT_EQ(Save(Options), "SaveOptions:25\r\n0,1,Fruit,\"Sweet and red\"\r\n\t2,0,Apple\r\n3,0,Nuts\r\n");
    EXPECT_EQ(Save({}), "SaveOptions:0\r\nFruit\r\n\tApple\r\nNuts\r\n");
    Nodes.Clear();
    Nodes.Add(nullptr, "")->SetCell(1, "a\"b,c");
    EXPECT_EQ(Save({}), "SaveOptions:0\r\n\"\"\r\n");
    EXPECT_EQ(Save(tsnIncludeCells), "SaveOptions:8\r\n,\"a\"\"b,c\"\r\n");
}

TEST_F(NodesText, EverythingThatIsSavedComesBack) {
    Plant(Nodes, "a[b[c d]+ e]+ f");
    At("b")->SetCell(2, std::string("bytes \0\x01\xFF \xC3", 11));
    At("c")->SetText("tab\there, \"quoted\"");
    At("e")->SetHidden(true);
    At("f")->SetCell(1, "");
    At("d")->SetStateIndex(4);
    At("d")->SetSelectedIndex(-7);
    Host.SetEnumerateNodes(true);
    const std::string Rows = DumpRows(Nodes);
    const std::string First = Save(AllOptions);
    Load(First);
    EXPECT_EQ(Save(AllOptions), First);
    EXPECT_EQ(DumpRows(Nodes), Rows) << "expanded nodes show their children, hidden ones stay hidden";
    EXPECT_EQ(At("b")->GetCellView(2), std::string_view("bytes \0\x01\xFF \xC3", 11));
    EXPECT_EQ(At("d")->GetStateIndex(), 4);
}

TEST_F(NodesText, ReadsWhatOthersWrite) {
    const std::tuple<const char*, const char*, const char*> Cases[] = {
        {"nothing", "", ""},
        {"no header: text and cells", "a,1\n\tb\nc", "a [b], c"},
        {"an empty mask", "SaveOptions:\r\na\r\n", "a"},
        {"a hexadecimal mask", "SaveOptions:$10\r\n1,a\r\n\tb0\r\n", nullptr},
        {"higher bits are ignored", "SaveOptions:1024\r\na\r\n", "a"},
        {"the header anywhere in the first line", "#3456789012SaveOptions:\r\na\r\n", nullptr},
        {"spaces indent like tabs", "a\n b\n  c\n\td\n", "a [b [c], d]"},
        {"the level of the first line does not matter", "\t\t\ta\n\tb\n", "a [b]"},
        {"going back several levels", "a\n\tb\n\t\tc\nd\n\te\n", "a [b [c]], d [e]"},
        {"carriage returns alone", "a\r\tb\rc", "a [b], c"},
        {"an empty line is a node", "a\n\nb\n", "a, , b"},
        {"blanks separate items", "a b\n", "a"},
        {"a quoted item left open", "\"a,b\n", "a,b"},
        {"a number in quotes", "SaveOptions:1\n\"5\",a\n", "a"},
    };
    for (const auto& [What, Text, Expected] : Cases) {
        EXPECT_EQ(LoadError(Text).empty(), Expected != nullptr) << What;
        EXPECT_TRUE(!Expected || DumpItems(Nodes) == Expected) << What << ": " << DumpItems(Nodes);
    }
    Host.SetStructureCol(2);
    Load("SaveOptions:8\r\nx,y,z,w\r\nalone\r\n");
    EXPECT_EQ(DumpItems(Nodes), "z, ");
    EXPECT_EQ(Nodes.GetNodeFromIndex(0)->GetCellsText(), "x\r\ny\r\n\r\nw\r\n");
    EXPECT_EQ(Nodes.GetNodeFromIndex(1)->GetCellsText(), "alone\r\n")
        << "a single item becomes cell 0 when the structure column is another";
}

TEST_F(NodesText, BrokenFilesNameTheLineAndKeepWhatWasRead) {
    const std::tuple<const char*, const char*, const char*> Cases[] = {
        {"SaveOptions:0\r\na\r\n\t\tb,c\r\n", "tree: Invalid level (2) for item \"b(Line:1)\"", "a"},
        {"a\n\tb\n\t\t\t\t\n", "tree: Invalid level (4) for item \"(Line:2)\"", "a [b]"},
        {"SaveOptions:x1\r\na\r\n", "convert: line 1: 'x1' is not a valid integer value", ""},
        {"SaveOptions:1\r\n5,a\r\nfive,b\r\n", "convert: line 3: 'five' is not a valid integer value", "a, "},
        {"SaveOptions:3\r\n5,6,a\r\n7\r\n",
         "list: line 3: List index out of bounds (0), where a number belongs", "a, "},
        {"SaveOptions:64\r\n\r\n", "list: line 2: List index out of bounds (0), where a number belongs", ""},
        {"SaveOptions:4\r\n99999999999,a\r\n", "convert: line 2: '99999999999' is not a valid integer value",
         ""},
    };
    for (const auto& [Text, Error, Left] : Cases) {
        Nodes.Clear();
        Plant(Nodes, "old");
        EXPECT_EQ(LoadError(Text), Error);
        EXPECT_EQ(DumpItems(Nodes), Left) << Text;
        EXPECT_EQ(Nodes.GetUpdateCount(), 0);
        EXPECT_TRUE(Nodes.IsRowListCurrent());
        EXPECT_NO_THROW(Nodes.CheckInvariants());
    }
    const std::string Long = LoadError("SaveOptions:1\r\n" + std::string(1000, 'x') + "\r\n");
    EXPECT_LT(Long.size(), 200u) << "offending texts are shortened";
}

// A stream comes in pieces; wherever they are cut, the lines are the same.
TEST_F(NodesText, LinesMayBeLongerThanAnyBufferAndCutAnywhere) {
    struct TSlowStream : TMemoryStream {
        using TMemoryStream::TMemoryStream;
        std::int64_t Step = 1;
        std::int64_t Read(void* Buffer, std::int64_t Count) override {
            return TMemoryStream::Read(Buffer, std::min(Count, Step));
        }
    };
    const std::string Text = "SaveOptions:8\r\na,1\r\n\tb\r\r\n\tc\nd\r\te\r\n";
    for (std::int64_t Step = 1; Step < 40; ++Step) {
        TSlowStream Stream(Text);
        Stream.Step = Step;
        Nodes.LoadNodesFromStream(Stream);
        ASSERT_EQ(DumpItems(Nodes), "a [b],  [c], d [e]") << Step;
    }
    const std::string Long(5000000, 'x');
    Load("a\n\t" + Long + "\n\t\"" + Long + "\"\"\"");
    EXPECT_EQ(Nodes.GetFirstNode()->GetItem(0)->GetTextView(), Long);
    EXPECT_EQ(Nodes.GetFirstNode()->GetItem(1)->GetTextView(), Long + "\"");
    Load(std::string(300000, '\n'));
    EXPECT_EQ(Nodes.GetCount(), 300000);
}

TEST_F(NodesText, FilesAreNamedInErrors) {
    const testing::TTempFolder Folder;
    const std::string Name = Folder.File("nodes");
    Plant(Nodes, "a[b]");
    Nodes.SaveNodesToFile(Name, AllOptions);
    Nodes.Clear();
    Nodes.LoadNodesFromFile(Name);
    EXPECT_EQ(DumpItems(Nodes), "a [b]");
    EXPECT_THROW(Nodes.LoadNodesFromFile(Folder.File("none")), EFOpenError);
    EXPECT_EQ(DumpItems(Nodes), "a [b]") << "a file that cannot be opened costs nothing";
    EXPECT_THROW(Nodes.SaveNodesToFile("/nonexistent/folder/x", {}), EFCreateError);
    Folder.Put("nodes", "SaveOptions:1\n1,a\nx,b\n");
    try {
        Nodes.LoadNodesFromFile(Name);
        ADD_FAILURE();
    } catch (const EConvertError& Error) {
        EXPECT_EQ(Error.GetMessage(), "\"" + Name + "\", line 3: 'x' is not a valid integer value");
    }
}

TEST_F(NodesText, OverriddenTextOperationsAreUsed) {
    struct TShoutingNode : TFlyNode {
        using TFlyNode::TFlyNode;
        void SetCell(int Index, const std::string& Value) override { TFlyNode::SetCell(Index, Value + "!"); }
        std::string GetCell(int Index) override { return TFlyNode::GetCell(Index) + "?"; }
    };
    struct TShoutingHost : THeadlessHost {
        TFlyNode* CreateNode(TTreeCollection* Owner) override { return new TShoutingNode(Owner); }
    } Shouting;
    TMemoryStream In("a,b,c\n");
    Shouting.GetItems()->LoadNodesFromStream(In);
    TMemoryStream Out;
    Shouting.GetItems()->SaveNodesToStream(Out, tsnIncludeCells);
    EXPECT_EQ(Out.GetMemory(), "SaveOptions:8\r\na?,b!?,c!?\r\n");
}

TEST_F(NodesText, ATreeThatSortsByComparisonIsInOrderAfterLoading) {
    Host.SetRow(-1);
    Host.OnCompare = [](TFlyNode* A, TFlyNode* B, int& Compare) {
        Compare = B->GetText().compare(A->GetText());
    };
    Host.SetSortType(stBoth);
    Load("SaveOptions:16\n0,a\n1,b\n\t0,c\n\t0,e\n\t0,d\n0,z\n");
    EXPECT_EQ(Dump(Nodes), "z, b(+) [e, d, c], a | z b e d c a");
}

} // namespace
} // namespace quill
