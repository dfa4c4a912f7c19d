// The node model without a window: memory, bulk work, single changes, sorting and files, each beside a plain
// reference that is measured in the same run.
#include "Report.h"

#include "host/base/Streams.h"
#include "quilltree/HeadlessHost.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace quill::bench {
namespace {

constexpr int Million = 1000000;

// The texts of node number N: about 49 bytes over three columns.
struct TTexts {
    explicit TTexts(int N)
        : Text("Node number " + std::to_string(N)), Cell1("first cell " + std::to_string(N % 1000)),
          Cell2("second " + std::to_string(N)) {}
    std::string Text, Cell1, Cell2;
};

void Fill(TFlyNode* Node, const TTexts& T) {
    const std::string_view Cells[] = {{}, T.Cell1, T.Cell2};
    Node->StoreTexts(T.Text, Cells);
}

// 100 groups of 100 groups of 100 leaves.
void BuildMillion(TFlyNodes& Nodes) {
    const TUpdateBracket Bracket(&Nodes);
    int N = 0;
    for (int i = 0; i < 100; ++i) {
        TFlyNode* const Top = Nodes.AddChild(nullptr, {});
        Fill(Top, TTexts(N++));
        for (int k = 0; k < 100; ++k) {
            TFlyNode* const Group = Nodes.AddChild(Top, {});
            Fill(Group, TTexts(N++));
            for (int m = 0; m < 99; ++m) Fill(Nodes.AddChild(Group, {}), TTexts(N++));
        }
    }
}

void BuildFlat(TFlyNodes& Nodes, TFlyNode* Parent, int Count) {
    const TUpdateBracket Bracket(&Nodes);
    for (int i = 0; i < Count; ++i) Fill(Nodes.AddChild(Parent, {}), TTexts(i));
}

// Runs Work in a process of its own, so that memory counts from nothing.
template <class TWork>
void Apart(TWork Work) {
    std::fflush(stdout);
    const pid_t Child = fork();
    if (Child == 0) {
        Work();
        std::fflush(stdout);
        std::_Exit(0);
    }
    int Status = 0;
    waitpid(Child, &Status, 0);
}

// Processor time of this process in milliseconds: everything here runs in one thread, and other programs on the
// machine shall not count.
double ProcessorTime() {
    timespec Now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &Now);
    return static_cast<double>(Now.tv_sec) * 1e3 + static_cast<double>(Now.tv_nsec) / 1e6;
}

template <class TWork>
double Time(TWork Work) {
    const double Start = ProcessorTime();
    Work();
    return ProcessorTime() - Start;
}

// The median of Runs timings of Work; Prepare runs before each, untimed.
template <class TPrepare, class TWork>
double MedianOf(int Runs, TPrepare Prepare, TWork Work) {
    std::vector<double> Times;
    for (int Run = 0; Run < Runs; ++Run) {
        Prepare();
        Times.push_back(Time(Work));
    }
    std::nth_element(Times.begin(), Times.begin() + Runs / 2, Times.end());
    return Times[static_cast<std::size_t>(Runs / 2)];
}

template <class TWork>
double MedianOf(int Runs, TWork Work) {
    return MedianOf(
        Runs, [] {}, Work);
}

void Memory() {
    Apart([] {
        THeadlessHost Host;
        const double Before = ResidentBytes();
        BuildMillion(*Host.GetItems());
        const double Nodes = Million + 100 + 100;
        Report("bytes a node, a million, collapsed", (ResidentBytes() - Before) / Nodes, "B", "allowed", 180,
               1);
        for (TFlyNode* Top = Host.GetItems()->GetFirstNode(); Top; Top = Top->GetNextSibling())
            Top->Expand(true);
        Report("bytes a node, a million, expanded", (ResidentBytes() - Before) / Nodes, "B", "allowed", 200,
               1);
    });
    Apart([] {
        THeadlessHost Host;
        const double Before = ResidentBytes();
        const double Opened = Time([&] { Host.GetItems()->AddPlaceholders(10 * Million); });
        Report("open ten million placeholders", Opened, "ms", "allowed", 500, 1);
        Report("bytes a placeholder", (ResidentBytes() - Before) / (10.0 * Million), "B", "allowed", 40, 1);
    });
}

void BulkWork() {
    std::vector<TTexts> Plain;
    const double Reference = MedianOf(
        3,
        [&] {
            Plain.clear();
            Plain.shrink_to_fit();
        },
        [&] {
            for (int i = 0; i < Million; ++i) Plain.emplace_back(i);
        });
    Plain = {};
    std::unique_ptr<THeadlessHost> Host;
    const double Build = MedianOf(
        3, [&] { Host = std::make_unique<THeadlessHost>(); }, [&] { BuildMillion(*Host->GetItems()); });
    Report("build a million nodes", Build, "ms", "a vector of the texts", Reference, 3);
    TFlyNodes& Nodes = *Host->GetItems();
    const auto All = [&](bool Expand) {
        const TUpdateBracket Bracket(&Nodes);
        for (TFlyNode* Top = Nodes.GetFirstNode(); Top; Top = Top->GetNextSibling())
            Top->ExpandItem(Expand, true);
    };
    Report("expand all, a million",
           MedianOf(
               5, [&] { All(false); }, [&] { All(true); }),
           "ms", "allowed", 80, 1);
    Report("collapse all, a million",
           MedianOf(
               5, [&] { All(true); }, [&] { All(false); }),
           "ms", "allowed", 20, 1);
    All(true);
    int First = 0;
    int Last = 0;
    Report("select a million rows",
           MedianOf(
               5, [&] { Nodes.ClearSelectedRows(First, Last); },
               [&] { Nodes.SelectRows(0, 2 * Million, true); }),
           "ms", "allowed", 30, 1);
    Report("clear a million selected rows",
           MedianOf(
               5, [&] { Nodes.SelectRows(0, 2 * Million, true); },
               [&] { Nodes.ClearSelectedRows(First, Last); }),
           "ms", "allowed", 15, 1);
    // A single look-up waits for memory. So that none hides behind the next, the result of each goes into the place
    // of the next (as a zero, in truth); the reference does the same with an array of pointers.
    std::mt19937 Random(1);
    std::vector<const TFlyNode*> Flat;
    for (int i = 0; i < Nodes.RowList.GetCount(); ++i) Flat.push_back(Nodes.RowList.NodeAt(i));
    std::vector<int> Order;
    for (int i = 0; i <= Million; ++i) Order.push_back(static_cast<int>(Random() % Flat.size()));
    int Zero = 0;
    const auto EachNext = [&](const auto& LookUp) {
        for (int i = 0; i < Million; ++i) Zero = LookUp(Order[static_cast<std::size_t>(i + Zero)]) ? 1 : 0;
    };
    const double Bare =
        Time([&] { EachNext([&](int i) { return Flat[static_cast<std::size_t>(i)]->IsPlaceholder(); }); });
    const double ToNode =
        Time([&] { EachNext([&](int i) { return Nodes.RowList.NodeAt(i)->IsPlaceholder(); }); });
    const double ToRow =
        Time([&] { EachNext([&](int i) { return Flat[static_cast<std::size_t>(i)]->GetRow() < 0; }); });
    if (Zero > 0) std::puts("");
    Report("row to node, at random", ToNode, "ns", "an array of pointers", Bare, 2);
    Report("node to row, at random", ToRow, "ns", "an array of pointers", Bare, 2);
    Report("destroy a million nodes", Time([&] { Nodes.Clear(); }), "ms", "allowed", 250, 1);
}

void OneBigNode() {
    THeadlessHost Host;
    TFlyNodes& Nodes = *Host.GetItems();
    TFlyNode* const Big = Nodes.Add(nullptr, "big");
    BuildFlat(Nodes, Big, Million);
    Big->Expand(false);
    Report("expand a node with a million children",
           MedianOf(
               5, [&] { Big->Collapse(false); }, [&] { Big->Expand(false); }),
           "ms", "allowed", 20, 1);
    Report("collapse it",
           MedianOf(
               5, [&] { Big->Expand(false); }, [&] { Big->Collapse(false); }),
           "ms", "allowed", 0.5, 1);
    Big->Expand(false);
    Report("insert and delete beside it, 1000 times", Time([&] {
               for (int i = 0; i < 1000; ++i) Nodes.Insert(Big->GetItem(i * 997 % Million), "new")->Delete();
           }),
           "us", "allowed", 10, 1);
}

void SingleChanges() {
    const auto Add = [](int Count) {
        THeadlessHost Host;
        TFlyNodes& Nodes = *Host.GetItems();
        TFlyNode* const Parent = Nodes.Add(nullptr, "parent");
        Nodes.AddChild(Parent, "first");
        Parent->Expand(false);
        return Time([&] {
                   for (int i = 0; i < Count; ++i) Nodes.AddChild(Parent, "one more");
               }) *
               1000 / Count;
    };
    const double Small = Add(100000);
    Report("add 100,000 nodes one by one, each", Small, "us", "allowed", 2, 1);
    Report("each of 200,000", Add(200000), "us", "each of 100,000", Small, 1.5);
    // Nodes that take their place by text among those that are there.
    const auto AddSorted = [](int Count, bool Below) {
        THeadlessHost Host;
        TFlyNodes& Nodes = *Host.GetItems();
        TFlyNode* const Parent = Below ? Nodes.Add(nullptr, "parent") : nullptr;
        if (Below) {
            Nodes.AddChild(Parent, "first");
            Parent->Expand(false);
        }
        Host.SetSortType(stBoth);
        std::mt19937 Random(9);
        return Time([&] {
                   for (int i = 0; i < Count; ++i) Nodes.AddChild(Parent, "item " + std::to_string(Random()));
               }) *
               1000 / Count;
    };
    Report("add 50,000 one by one in order, each", AddSorted(50000, false), "us", "allowed", 30, 1);
    Report("the same below a node", AddSorted(50000, true), "us", "allowed", 30, 1);
}

void DeepAndFlat() {
    Report("a chain of a million: build, expand, destroy", Time([] {
               THeadlessHost Host;
               TFlyNode* Last = nullptr;
               {
                   const TUpdateBracket Bracket(Host.GetItems());
                   for (int i = 0; i < Million; ++i) Last = Host.GetItems()->AddChild(Last, "n");
               }
               Last->MakeVisible();
               Host.GetItems()->GetFirstNode()->Collapse(true);
               Host.GetItems()->GetFirstNode()->Expand(true);
           }),
           "ms", "allowed", 3000, 1);
    const auto Stream = [](int Count) {
        THeadlessHost Host;
        BuildFlat(*Host.GetItems(), nullptr, Count);
        TMemoryStream Memory;
        const double Write = Time([&] { WriteCollectionToStream(Memory, Host.GetItems()); });
        Memory.SetPosition(0);
        Host.GetItems()->Clear();
        return Write + Time([&] { ReadCollectionFromStream(Memory, Host.GetItems()); });
    };
    const double One = Stream(Million);
    Report("write and read a flat stream of ten million", Stream(10 * Million), "ms", "of a million", One,
           14);
}

void Sorting() {
    for (const int Count : {100000, Million}) {
        THeadlessHost Host;
        std::mt19937 Random(7);
        std::vector<std::string> Names;
        for (int i = 0; i < Count; ++i) Names.push_back("item " + std::to_string(Random()));
        {
            const TUpdateBracket Bracket(Host.GetItems());
            for (const std::string& Name : Names) Host.GetItems()->Add(nullptr, Name);
        }
        const double Bare = Time([&] { std::sort(Names.begin(), Names.end()); });
        const double Ours = Time([&] { Host.GetItems()->AlphaSort(); });
        Report("sort " + std::to_string(Count) + " siblings by text", Ours, "ms", "std::sort of the strings",
               Bare, 2);
    }
}

void Files() {
    const auto Name = std::filesystem::temp_directory_path() / ("quill-bench-" + std::to_string(getpid()));
    THeadlessHost Host;
    BuildMillion(*Host.GetItems());
    const auto Options = TSaveNodesOptions{tsnIncludeCells, tsnIncludeExpands};
    Host.GetItems()->SaveNodesToFile(Name.string(), Options);
    const double Lines = MedianOf(5, [&] {
        std::ifstream File(Name);
        std::string Line;
        std::size_t Sum = 0;
        while (std::getline(File, Line)) Sum += Line.size();
        if (Sum == 1) std::puts("");
    });
    Report("save a million lines",
           MedianOf(5, [&] { Host.GetItems()->SaveNodesToFile(Name.string(), Options); }), "ms",
           "std::getline", Lines, 4);
    Report(
        "load a million lines",
        MedianOf(
            5, [&] { Host.GetItems()->Clear(); }, [&] { Host.GetItems()->LoadNodesFromFile(Name.string()); }),
        "ms", "std::getline", Lines, 6.5);
    std::filesystem::remove(Name);
}

} // namespace
} // namespace quill::bench

// With arguments, only the parts named: memory bulk big single deep sort files.
int main(int Count, char** Arguments) {
    using namespace quill::bench;
    const auto Wanted = [&](const char* Part) {
        return Count < 2 ||
               std::find(Arguments + 1, Arguments + Count, std::string_view(Part)) != Arguments + Count;
    };
    if (Wanted("memory")) Memory();
    if (Wanted("bulk")) BulkWork();
    if (Wanted("big")) OneBigNode();
    if (Wanted("single")) SingleChanges();
    if (Wanted("deep")) DeepAndFlat();
    if (Wanted("sort")) Sorting();
    if (Wanted("files")) Files();
}
