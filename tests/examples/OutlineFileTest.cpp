#include "examples/common/OutlineFile.h"

#include "quilltree/HeadlessHost.h"
#include "tests/support/QtTest.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace fs = std::filesystem;
using namespace quill;
using namespace quill::examples;
using quill::testing::TTempFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

TOutline Read(const std::string& Text) {
    return ReadOutline(std::make_unique<TMemoryStream>(Text), "some.nodes");
}

std::string FaultOf(const std::function<void()>& Work) {
    try {
        Work();
        return "no fault";
    } catch (const EOutlineError& Error) {
        return Error.GetMessage();
    }
}

TEST(OutlineFile, SaysWhatIsWrongAndWhere) {
    const std::pair<std::string, std::vector<std::string>> Cases[] = {
        {"SaveOptions:many\nA\n", {"many"}},
        {"SaveOptions:99999999999\nA\n", {"99999999999"}},
        {"SaveOptions:0\nA\nB\n\t\tdeep\n", {"Line:2", "deep", "2"}},
        {"SaveOptions:1\n0,A\n1,B\nblue,C\n", {"blue", "4"}},
        {"SaveOptions:1\n0,A\n12345678901,B\n", {"12345678901", "3"}},
        {"SaveOptions:7\n0,0,0,A\n0,0\n", {"3"}},
        {"SaveOptions:1\n0,A\n\n0,B\n", {"3"}},
    };
    for (const auto& [Text, Parts] : Cases) {
        const std::string Message = FaultOf([&, &Nodes = Text] { Read(Nodes); });
        EXPECT_THAT(Message, HasSubstr("\"some.nodes\""));
        for (const std::string& Part : Parts) EXPECT_THAT(Message, HasSubstr(Part));
    }
}

TEST(OutlineFile, RefusesWhatIsNoOrdinaryFile) {
    const TTempFolder Folder;
    ASSERT_EQ(::mkfifo(Folder.File("pipe").c_str(), 0600), 0);
    const std::pair<std::string, std::string> Cases[] = {
        {Folder.File(""), "it is a folder"},
        {Folder.File("pipe"), "it is not an ordinary file"},
        {"/dev/zero", "it is not an ordinary file"},
        {Folder.File("missing.nodes"), "there is no such file"},
    };
    for (const auto& [Name, Reason] : Cases)
        EXPECT_EQ(FaultOf([&File = Name] { ReadOutline(File); }), "Cannot open \"" + Name + "\": " + Reason);
}

TEST(OutlineFile, KnowsWhatASaveMustKeep) {
    // What it must keep, its nodes, columns, and whether it has tags.
    const std::tuple<std::string, int, int, int, bool> Cases[] = {
        {"", MaskOf(DefaultOptions()), 0, 1, false},
        {"A\nB\n", 8, 2, 1, false},
        {"A,b,c\n", 8, 1, 3, false},
        {"SaveOptions:\nA\n\tB\n", 0, 2, 1, false},
        // Cells that are there although the options do not name them.
        {"SaveOptions:1\n3,A,b\n", 9, 1, 2, false},
        {"SaveOptions:64\n-1,A\n-1,B\n", 64, 2, 1, false},
        {"SaveOptions:64\n5,A\n7,B\n", 64, 2, 1, true},
        // Unknown bits say nothing.
        {"SaveOptions:1040\n0,A\n", 16, 1, 1, false},
    };
    for (const auto& [Text, Mask, Nodes, Columns, HasTags] : Cases) {
        const TOutline Outline = Read(Text);
        EXPECT_EQ(
            std::tuple(MaskOf(Outline.Options), Outline.NodeCount, Outline.ColumnCount, Outline.HasTags),
            std::tuple(Mask, Nodes, Columns, HasTags))
            << Text;
    }
    for (int Mask = 0; Mask < 128; ++Mask) EXPECT_EQ(MaskOf(OptionsOf(Mask)), Mask);
}

TEST(OutlineFile, ReadsCaptionsBesideTheOutline) {
    const TTempFolder Folder;
    const std::string Name = Folder.File("a.b.nodes");
    EXPECT_THAT(ReadCaptions(Name), ElementsAre());
    SaveCaptions(Name, {"Name", "", "Last, not least"});
    EXPECT_TRUE(fs::exists(Folder.File("a.b.columns")));
    const std::vector<std::string> Captions = ReadCaptions(Name);
    EXPECT_THAT(Captions, ElementsAre("Name", "", "Last, not least"));
    EXPECT_EQ(CaptionOf(Captions, 0), "Name");
    EXPECT_EQ(CaptionOf(Captions, 1), "Column 2");
    EXPECT_EQ(CaptionOf(Captions, 3), "Column 4");
    EXPECT_EQ(CaptionOf({}, 0), "Text");
    // Captions that are there are the user's.
    SaveCaptions(Name, {"Other"});
    EXPECT_EQ(ReadCaptions(Name), Captions);
}

} // namespace
