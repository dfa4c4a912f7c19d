// The collection base on its own, and its streams: round trips, damage, depth.
#include "ModelTestTools.h"

#include "host/base/Errors.h"
#include "host/base/Reflection.h"
#include "host/base/Streams.h"

#include <filesystem>
#include <fstream>
#include <random>

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

class TreeStream : public testing::Test {
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
    (new TTask(Task))->Priority = 5;
    Root.AddPlaceholders(100000);
    new TTask(&Root);
    const std::string Before = DumpItems(Root);
    for (const bool AsText : {false, true}) {
        TTreeCollection Copy;
        new TTask(&Copy);
        if (AsText) {
            LoadTreeCollectionFromText(&Copy, SaveTreeCollectionToText(&Root, true));
        } else {
            Load(Copy, Save(Root));
        }
        EXPECT_EQ(DumpItems(Copy), Before);
        EXPECT_EQ(Copy.GetCaption(), "root");
        auto* const First = dynamic_cast<TTask*>(Copy.GetItem(0));
        ASSERT_NE(First, nullptr);
        EXPECT_EQ(First->Priority, -3);
        EXPECT_EQ(dynamic_cast<TTask*>(First->GetItem(0)), nullptr);
        EXPECT_NO_THROW(Copy.CheckInvariants());
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
    for (const bool AsText : {false, true}) {
        THeadlessHost OtherHost;
        TFlyNodes& Other = *OtherHost.GetItems();
        if (AsText) {
            Other.LoadFromText(Nodes.SaveToText(true));
        } else {
            Load(Other, Save(Nodes));
        }
        EXPECT_EQ(Dump(Other), "a [b(h)], c | a c");
        EXPECT_EQ(Find(Other, "a")->GetCellView(2), "two\r\nlines");
        EXPECT_EQ(Find(Other, "a")->GetCellCount(), 3);
        EXPECT_EQ(Find(Other, "c")->GetImageIndex(), -1);
        EXPECT_EQ(Find(Other, "b")->GetImageIndex(), 0);
        EXPECT_EQ(Find(Other, "c")->GetStateIndex(), 9);
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
    const auto Folder = std::filesystem::temp_directory_path() / "quill-tree-stream";
    std::filesystem::create_directories(Folder);
    const std::string Name = (Folder / "tree").string();
    TTreeCollection Root;
    (new TTask(&Root))->SetCaption("one");
    SaveTreeCollectionToFile(&Root, Name);
    std::filesystem::create_symlink(Name, Name + "-link");
    SaveTreeCollectionToFile(&Root, Name + "-link");
    EXPECT_TRUE(std::filesystem::is_symlink(Name + "-link"));
    TTreeCollection Copy;
    LoadTreeCollectionFromFile(&Copy, Name + "-link");
    EXPECT_EQ(DumpItems(Copy), "one");
    std::ofstream(Name, std::ios::binary) << SaveTreeCollectionToText(&Root, true);
    LoadTreeCollectionFromFile(&Copy, Name);
    EXPECT_EQ(DumpItems(Copy), "one");
    std::ofstream(Name) << "something else";
    try {
        LoadTreeCollectionFromFile(&Copy, Name);
        ADD_FAILURE();
    } catch (const EReadError& Error) {
        EXPECT_EQ(Error.GetMessage(), "\"" + Name + "\": Stream read error: this is no saved tree");
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Folder), {}), 2) << "nothing is left beside";
    std::filesystem::remove_all(Folder);
}

TEST_F(TreeStream, DamageIsToldWithItsPlace) {
    const auto ErrorOf = [](const std::string& Data) -> std::string {
        TTreeCollection Root;
        try {
            Load(Root, Data);
        } catch (const EReadError& Error) {
            EXPECT_EQ(Root.GetUpdateCount(), 0);
            return Error.GetMessage().substr(std::string_view("Stream read error: ").size());
        }
        return {};
    };
    // A body in one block, with its end mark.
    const auto Stream = [](std::string Body) {
        const auto Size = static_cast<unsigned>(Body.size());
        std::string Head = "QTREE\x01";
        Head += static_cast<char>(Size & 0xFF);
        Head += static_cast<char>(Size >> 8);
        return Head + Body + std::string(2, '\0');
    };
    using namespace std::string_literals;
    const std::string Class = "\x01\x01X"s; // class 1, new, named X
    EXPECT_EQ(ErrorOf(Stream(Class + "\0\0"s)), "");
    EXPECT_EQ(ErrorOf(""), "this is no saved tree");
    EXPECT_EQ(ErrorOf("QTREE\x02"), "the tree was saved in version 2 of the format; only version 1 is known");
    EXPECT_EQ(ErrorOf("QTREE\x01"), "damaged tree data at byte 6, item 1: the stream ends too early");
    EXPECT_EQ(ErrorOf(Stream(Class + "\0\x09"s)),
              "damaged tree data at byte 13, item 1: an unknown record (9)");
    EXPECT_EQ(ErrorOf(Stream(Class + "\0\x01\x01\0\0\0"s)),
              "damaged tree data at byte 14, item 2: the class \"X\" is not registered");
    EXPECT_EQ(ErrorOf(Stream(Class + "\0\x01\x07"s)),
              "damaged tree data at byte 14, item 2: an unknown name (7)");
    EXPECT_EQ(ErrorOf(Stream(Class + "\0\x02\xFF\xFF\xFF\x7F\0"s)),
              "damaged tree data at byte 17, item 1: a run of 268435455 placeholders");
    EXPECT_EQ(ErrorOf(Stream(Class + "\x05\xFF\xFF\xFF\xFF\x7FName"s)),
              "damaged tree data at byte 23, item 1: the data end inside a text");
    EXPECT_EQ(ErrorOf(Stream(std::string(12, '\xFF'))),
              "damaged tree data at byte 18, item 1: a number of too many digits");
    EXPECT_EQ(ErrorOf(Stream(Class + "\0\0more"s)),
              "damaged tree data at byte 13, item 1: more data behind the end of the tree");
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
    const auto ErrorOf = [](const std::string& Text) -> std::string {
        TTreeCollection Root;
        try {
            LoadTreeCollectionFromText(&Root, Text);
        } catch (const EReadError& Error) {
            return Error.GetMessage().substr(std::string_view("Stream read error: ").size());
        }
        return {};
    };
    const std::string Head = "TreeCollection:1\n";
    EXPECT_EQ(ErrorOf("x"), "this is no saved tree");
    EXPECT_EQ(ErrorOf(Head), "line 2: the tree is missing");
    EXPECT_EQ(ErrorOf(Head + "TTask\nTTask\n"), "line 3: level 0 does not fit here");
    EXPECT_EQ(ErrorOf(Head + "TTask\n\t\tTTask\n"), "line 3: level 2 does not fit here");
    EXPECT_EQ(ErrorOf(Head + "TTask\n\tTUnknown\n"), "line 3: the class \"TUnknown\" is not registered");
    EXPECT_EQ(ErrorOf(Head + "TTask\n\t\n"), "line 3: the class is missing");
    EXPECT_EQ(ErrorOf(Head + "TTask\n\tTTask,Priority=many\n"),
              "line 3: 'many' is not a valid integer value (Priority)");
    EXPECT_EQ(ErrorOf(Head + "TTask\n\tTTask,Priority\n"), "line 3: \"Priority\" is no property");
    EXPECT_EQ(ErrorOf(Head + "TTask\n\t*0\n"), "line 3: \"0\" is no number of placeholders");
    EXPECT_EQ(ErrorOf(Head + "TTask\n\tTTask,Cost=3\n"), "")
        << "properties of other versions are passed over";
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
    EXPECT_EQ(Root.Log, "all ");
    Root.CustomSort(nullptr, true);
    Root.CustomSort(nullptr, true);
    EXPECT_EQ(Root.Log, "all all ") << "an order that does not change is no change";
    Root.BeginUpdate();
    A->SetIndex(1);
    A->SetIndex(0);
    Root.EndUpdate();
    EXPECT_EQ(Root.Log, "all all all ");
    B->Changed(false);
    A->SetTreeCollection(B);
    EXPECT_EQ(Root.Log, "all all all item all ");
    EXPECT_THROW(B->SetTreeCollection(A), EInvalidOperation);
    EXPECT_THROW(B->SetTreeCollection(B), EInvalidOperation);
    Root.AddPlaceholders(5);
    Root.Clear();
    EXPECT_EQ(Root.Log, "all all all item all all all ");
    int Fired = 0;
    Root.SetOnCollectionChange([&](TObject*) { ++Fired; });
    (new TTreeCollection(&Root))->Free();
    EXPECT_EQ(Fired, 1);
    EXPECT_EQ(Root.GetDisplayName(), "TTreeCollection");
}

TEST(TreeCollection, AssignCopiesCaptionAndItems) {
    TTreeCollection Source;
    Source.SetCaption("source");
    (new TTreeCollection(new TTreeCollection(&Source)))->SetCaption("inner");
    Source.AddPlaceholders(2);
    TTreeCollection Copy;
    new TTreeCollection(&Copy);
    Copy.Assign(&Source);
    EXPECT_EQ(Copy.GetCaption(), "source");
    EXPECT_EQ(DumpItems(Copy), DumpItems(Source));
    EXPECT_THROW(Copy.Assign(nullptr), EConvertError);
    EXPECT_THROW(Copy.Assign(Copy.GetItem(0)), EInvalidOperation);
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
    EXPECT_EQ(Last->GetLevel(), Depth - 1);
    Last->MakeVisible();
    EXPECT_EQ(Nodes.RowList.GetCount(), Depth);
    EXPECT_EQ(Last->GetRow(), Depth - 1);
    Nodes.GetFirstNode()->Collapse(true);
    EXPECT_EQ(Nodes.RowList.GetCount(), 1);
    Nodes.GetFirstNode()->Expand(true);
    EXPECT_EQ(Nodes.RowList.GetCount(), Depth);
    Last->SetHidden(true);
    EXPECT_EQ(Nodes.RowList.GetCount(), Depth - 1);
    Nodes.ShowAll();
    Nodes.AlphaSort();
    EXPECT_EQ(Nodes.GetFirstNode()->GetExpandedCount(), Depth - 1);
    EXPECT_EQ(Nodes.GetLastNode(), Last);
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
    Nodes.CheckInvariants();
    Nodes.Clear();
    EXPECT_EQ(Nodes.RowList.GetCount(), 0);
}

} // namespace
} // namespace quill
