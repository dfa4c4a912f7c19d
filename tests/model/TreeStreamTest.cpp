// The collection base on its own, and its streams: round trips, damage, depth.
#include "ModelTestTools.h"

#include "host/base/Errors.h"
#include "host/base/Reflection.h"
#include "host/base/Streams.h"
#include "tests/support/TempFolder.h"

namespace quill {
namespace {

// A class of a program's own, with a property of its own.
class TTask : public TTreeCollection {
public:
    using TTreeCollection::TTreeCollection;
    std::string ClassName() const override { return "TTask"; }
    const TTreeCollectionClass* InternalGetClass(const std::string& Name) const override {
        return FindTreeCollectionClass(Name.empty() ? "TTask" : Name);
    }
    const TClassInfo* GetClassInfo() const override {
        static const TPropertyInfo Properties[] = {
            {.Name = "Priority",
             .GetOrdinal =
                 [](const TPersistent& O) { return std::int64_t{static_cast<const TTask&>(O).Priority}; },
             .SetOrdinal = [](TPersistent& O,
                              std::int64_t V) { static_cast<TTask&>(O).Priority = static_cast<int>(V); },
             .Default = 5}};
        static const TClassInfo Info{"TTask", TTreeCollection::GetClassInfo(), Properties};
        return &Info;
    }
    int Priority = 5;
};

std::string Save(TTreeCollection& Collection) {
    TMemoryStream Stream;
    WriteCollectionToStream(Stream, &Collection);
    return Stream.GetMemory();
}

void Load(TTreeCollection& Collection, const std::string& Data) {
    TMemoryStream Stream(Data);
    ReadCollectionFromStream(Stream, &Collection);
}

// What reading raises, behind "Stream read error: "; empty when it succeeds.
template <class TWork>
std::string ErrorOf(TWork Work) {
    try {
        Work();
    } catch (const EReadError& Error) {
        return Error.GetMessage().substr(std::string_view("Stream read error: ").size());
    }
    return {};
}

class TreeStream : public ::testing::Test {
protected:
    TreeStream() {
        RegisterTreeCollectionClass(
            {"TTask", [](TTreeCollection* Owner) -> TTreeCollection* { return new TTask(Owner); }});
    }
};

TEST_F(TreeStream, OwnClassesAndTheirPropertiesComeBack) {
    TTreeCollection Root;
    Root.SetCaption("root");
    auto* const Task = new TTask(&Root);
    Task->SetCaption("line\nbreak \\ \"quote\", comma");
    Task->Priority = -3;
    (new TTreeCollection(Task))->SetCaption("plain");
    new TTask(Task);
    Root.AddPlaceholders(100000);
    new TTask(&Root);
    const std::string Before = DumpItems(Root);
    for (const bool AsText : {false, true}) {
        TTreeCollection Copy;
        new TTask(&Copy);
        if (AsText) LoadTreeCollectionFromText(&Copy, SaveTreeCollectionToText(&Root, true));
        if (!AsText) Load(Copy, Save(Root));
        EXPECT_EQ(DumpItems(Copy), Before);
        EXPECT_EQ(Copy.GetCaption(), "root");
        EXPECT_EQ(dynamic_cast<TTask&>(*Copy.GetItem(0)).Priority, -3);
        EXPECT_EQ(dynamic_cast<TTask*>(Copy.GetItem(0)->GetItem(0)), nullptr);
    }
    TTask Outline;
    LoadTreeCollectionFromText(&Outline, SaveTreeCollectionToText(&Root, false));
    EXPECT_EQ(DumpItems(Outline), "line\nbreak \\ \"quote\", comma [plain, ], ") << "captions only";
}

TEST_F(TreeStream, NodesKeepTheirFieldsAndTheirOddDefault) {
    THeadlessHost Host;
    TFlyNodes& Nodes = *Host.GetItems();
    Plant(Nodes, "a[b] c");
    Find(Nodes, "a")->SetCell(2, "two\r\nlines");
    Find(Nodes, "b")->SetHidden(true);
    Find(Nodes, "c")->SetImageIndex(-1);
    Find(Nodes, "c")->SetStateIndexField(9);
    Find(Nodes, "c")->SetHeight(40);
    for (const bool AsText : {false, true}) {
        THeadlessHost OtherHost;
        TFlyNodes& Other = *OtherHost.GetItems();
        if (AsText) Other.LoadFromText(Nodes.SaveToText(true));
        if (!AsText) Load(Other, Save(Nodes));
        EXPECT_EQ(Dump(Other), "a [b(h)], c | a c");
        EXPECT_EQ(Find(Other, "a")->GetCellView(2), "two\r\nlines");
        EXPECT_EQ(Find(Other, "c")->GetImageIndex(), -1);
        EXPECT_EQ(Find(Other, "b")->GetImageIndex(), 0);
        EXPECT_EQ(Find(Other, "c")->GetStateIndex(), 9);
        EXPECT_EQ(Find(Other, "c")->GetHeightField(), 40);
        EXPECT_EQ(Find(Other, "a")->GetHeightField(), -1);
    }
    // A property that the stream does not name reads as its default, also the one that hides nodes.
    Nodes.LoadFromText("TreeCollection:1\r\nTFlyNodes\r\n\tTFlyNode,Text=x\r\n");
    EXPECT_EQ(Dump(Nodes), "x(h) | ");
    EXPECT_EQ(Find(Nodes, "x")->GetImageIndex(), -1);
}

TEST_F(TreeStream, ReadingStopsExactlyBehindTheTree) {
    TTreeCollection Root;
    for (int i = 0; i < 5000; ++i) (new TTreeCollection(&Root))->SetCaption(std::string(100, 'x'));
    const std::string Tree = Save(Root);
    TMemoryStream Stream(Tree + Tree + "rest");
    TTreeCollection Copy;
    ReadCollectionFromStream(Stream, &Copy);
    ReadCollectionFromStream(Stream, &Copy);
    EXPECT_EQ(Copy.GetCount(), 5000);
    EXPECT_EQ(Stream.ReadRest(), "rest");
}

TEST_F(TreeStream, FilesAreReplacedInOneStepAndReadInBothForms) {
    const testing::TTempFolder Folder;
    const std::string Name = Folder.File("tree");
    TTreeCollection Root;
    (new TTask(&Root))->SetCaption("one");
    SaveTreeCollectionToFile(&Root, Name);
    std::filesystem::create_symlink(Name, Name + "-link");
    SaveTreeCollectionToFile(&Root, Name + "-link");
    EXPECT_TRUE(std::filesystem::is_symlink(Name + "-link"));
    TTreeCollection Copy;
    LoadTreeCollectionFromFile(&Copy, Name + "-link");
    EXPECT_EQ(DumpItems(Copy), "one");
    Copy.Clear();
    Folder.Put("tree", SaveTreeCollectionToText(&Root, true));
    LoadTreeCollectionFromFile(&Copy, Name);
    EXPECT_EQ(DumpItems(Copy), "one");
    Folder.Put("tree", "something else");
    try {
        LoadTreeCollectionFromFile(&Copy, Name);
        ADD_FAILURE();
    } catch (const EReadError& Error) {
        EXPECT_EQ(Error.GetMessage(), "\"" + Name + "\": Stream read error: this is no saved tree");
    }
    EXPECT_EQ(Folder.Names(), "tree tree-link ") << "nothing is left beside";
}

TEST_F(TreeStream, DamageIsToldWithItsPlace) {
    // A body in one block, with its end mark.
    const auto Stream = [](std::string Body) {
        return "QTREE\x01" + std::string{static_cast<char>(Body.size()), '\0'} + Body + std::string(2, '\0');
    };
    using namespace std::string_literals;
    const std::string Class = "\x01\x01X"s; // class 1, new, named X
    const std::pair<std::string, const char*> Cases[] = {
        {Stream(Class + "\0\0"s), ""},
        {"", "this is no saved tree"},
        {"QTREE\x02", "the tree was saved in version 2 of the format; only version 1 is known"},
        {"QTREE\x01", "damaged tree data at byte 6, item 1: the stream ends too early"},
        {Stream(Class + "\0\x09"s), "damaged tree data at byte 13, item 1: an unknown record (9)"},
        {Stream(Class + "\0\x01\x01\0\0\0"s),
         "damaged tree data at byte 14, item 2: the class \"X\" is not registered"},
        {Stream(Class + "\0\x01\x07"s), "damaged tree data at byte 14, item 2: an unknown name (7)"},
        {Stream(Class + "\0\x02\xFF\xFF\xFF\x7F\0"s),
         "damaged tree data at byte 17, item 1: a run of 268435455 placeholders"},
        {Stream(Class + "\x05\xFF\xFF\xFF\xFF\x7FName"s),
         "damaged tree data at byte 23, item 1: the data end inside a text"},
        {Stream(std::string(12, '\xFF')),
         "damaged tree data at byte 18, item 1: a number of too many digits"},
        {Stream(Class + "\0\0more"s),
         "damaged tree data at byte 13, item 1: more data behind the end of the tree"},
    };
    for (const auto& [Data, Expected] : Cases) {
        TTreeCollection Root;
        EXPECT_EQ(ErrorOf([&] { Load(Root, Data); }), Expected);
        EXPECT_EQ(Root.GetUpdateCount(), 0);
    }
}

// Every single-byte change and every cut of a real stream: an error, or some tree, and never anything worse.
TEST_F(TreeStream, NoDamageGetsPastTheChecks) {
    THeadlessHost Host;
    Plant(*Host.GetItems(), "a[b c[d]] e");
    Find(*Host.GetItems(), "b")->SetCell(2, "cell");
    Host.GetItems()->InsertPlaceholders(1, 3);
    const std::string Good = Save(*Host.GetItems());
    int Failures = 0;
    int Tried = 0;
    const auto Try = [&](const std::string& Data) {
        THeadlessHost Other;
        ++Tried;
        try {
            Load(*Other.GetItems(), Data);
        } catch (const EReadError&) {
            ++Failures;
        }
        ASSERT_NO_THROW(Other.GetItems()->CheckInvariants());
        ASSERT_EQ(Other.GetItems()->GetUpdateCount(), 0);
    };
    for (std::size_t i = 0; i < Good.size(); ++i) {
        Try(Good.substr(0, i));
        for (const int Flip : {0x01, 0x04, 0x80, 0xFF}) {
            std::string Data = Good;
            Data[i] = static_cast<char>(Data[i] ^ Flip);
            Try(Data);
        }
    }
    EXPECT_EQ(Tried, static_cast<int>(Good.size()) * 5);
    EXPECT_GT(Failures, Tried / 3);
}

TEST_F(TreeStream, BrokenTextNamesTheLine) {
    const std::string Head = "TreeCollection:1\n";
    const std::pair<std::string, const char*> Cases[] = {
        {"x", "this is no saved tree"},
        {Head, "line 2: the tree is missing"},
        {Head + "TTask\nTTask\n", "line 3: level 0 does not fit here"},
        {Head + "TTask\n\t\tTTask\n", "line 3: level 2 does not fit here"},
        {Head + "TTask\n\tTUnknown\n", "line 3: the class \"TUnknown\" is not registered"},
        {Head + "TTask\n\t\n", "line 3: the class is missing"},
        {Head + "TTask\n\tTTask,Priority=many\n", "line 3: 'many' is not a valid integer value (Priority)"},
        {Head + "TTask\n\tTTask,Priority=3000000000\n", "line 3: Priority cannot be 3000000000"},
        {Head + "TTask\n\tTTask,Priority\n", "line 3: \"Priority\" is no property"},
        {Head + "TTask\n\t*0\n", "line 3: \"0\" is no number of placeholders"},
        {Head + "TTask\n\tTTask,PropertyOfAnotherVersion=3\n", ""},
    };
    for (const auto& [Text, Expected] : Cases) {
        TTreeCollection Root;
        EXPECT_EQ(ErrorOf([&] { LoadTreeCollectionFromText(&Root, Text); }), Expected);
    }
}

// --- the base -------------------------------------------------------------------------------------------------------

class TReporting : public TTreeCollection {
public:
    using TTreeCollection::TTreeCollection;
    void Update(TTreeCollection* Item) override { Log += Item ? "item " : "all "; }
    std::string Log;
};

TEST(TreeCollection, ReportsEachChangeOfItsItemsOnce) {
    TReporting Root;
    auto* const A = new TTreeCollection(&Root);
    auto* const B = new TTreeCollection(&Root);
    B->SetCaption("b");
    EXPECT_EQ(Root.Log, "") << "constructors and captions report nothing";
    B->SetIndex(0);
    Root.CustomSort(nullptr, true);
    Root.CustomSort(nullptr, true);
    EXPECT_EQ(Root.Log, "all all ") << "an order that does not change is no change";
    Root.BeginUpdate();
    A->SetIndex(1);
    A->SetIndex(0);
    Root.EndUpdate();
    B->Changed(false);
    A->SetTreeCollection(B);
    EXPECT_EQ(Root.Log, "all all all item all ");
    EXPECT_THROW(B->SetTreeCollection(A), EInvalidOperation);
    EXPECT_THROW(B->SetTreeCollection(B), EInvalidOperation);
    EXPECT_THROW(B->Assign(nullptr), EConvertError);
    EXPECT_THROW(B->Assign(A), EInvalidOperation);
}

// A chain is as deep as a tree can get; none of this may use the stack for it.
TEST(TreeCollection, ADeepChainIsOrdinary) {
    constexpr int Depth = 100000;
    THeadlessHost Host;
    TFlyNodes& Nodes = *Host.GetItems();
    TFlyNode* Last = nullptr;
    {
        const TUpdateBracket Bracket(&Nodes);
        for (int i = 0; i < Depth; ++i) Last = Nodes.AddChild(Last, "n");
    }
    Last->MakeVisible();
    EXPECT_EQ(Last->GetRow(), Depth - 1);
    Nodes.GetFirstNode()->Collapse(true);
    EXPECT_EQ(Nodes.RowList.GetCount(), 1);
    Nodes.GetFirstNode()->Expand(true);
    Nodes.ShowAll();
    Nodes.AlphaSort();
    EXPECT_EQ(Nodes.GetFirstNode()->GetExpandedCount(), Depth - 1);
    Host.SetEnumerateNodes(true);
    EXPECT_EQ(Last->GetUniqueTag(), Depth - 1);

    THeadlessHost OtherHost;
    TFlyNodes& Other = *OtherHost.GetItems();
    Other.Assign(&Nodes);
    EXPECT_EQ(Other.GetLastNode()->GetLevel(), Depth - 1);
    Other.Clear();
    Other.Add(nullptr, "copy")->Assign(Nodes.GetFirstNode());
    EXPECT_EQ(Other.GetLastNode()->GetLevel(), Depth - 1);
    Other.GetFirstNode()->MoveTo(Nodes.GetFirstNode(), naInsert);
    EXPECT_EQ(Nodes.GetCount(), 2);
    Nodes.GetFirstNode()->Delete();
    EXPECT_NO_THROW(Nodes.CheckInvariants());
    Nodes.Clear();
}

} // namespace
} // namespace quill
