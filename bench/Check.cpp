// Counts the instructions of common actions in our tree, under callgrind (scripts/bench-check starts it so). Each action
// is done a few times before, so that its texts and pictures are known, then CountedTurns times in one count.
#include "bench/Workloads.h"

#include <cstdio>

#include <valgrind/callgrind.h>

namespace quill::bench {
namespace {

constexpr int Nodes = 20000;
constexpr int WarmTurns = 4;
constexpr int CountedTurns = 8;

std::unique_ptr<TContender> MakeOurs(const std::vector<TContenderEntry>& Contenders) {
    for (const TContenderEntry& Entry : Contenders) {
        if (std::string_view(Entry.Name) == "ours") return Entry.Make();
    }
    throw EFailure("our tree is not among the contenders");
}

// Prepare is not counted. Callgrind writes one file for each action, which carries its name.
template <class TPrepare, class TWork>
void Count(const char* Name, TContender& Tree, TPrepare Prepare, TWork Work) {
    long Painted = 0;
    for (int Turn = 0; Turn < WarmTurns + CountedTurns; ++Turn) {
        Prepare();
        Tree.Show();
        const long Before = Tree.GetPaintCount();
        if (Turn >= WarmTurns) CALLGRIND_TOGGLE_COLLECT;
        Work();
        Tree.Show();
        if (Turn >= WarmTurns) CALLGRIND_TOGGLE_COLLECT;
        if (Tree.GetPaintCount() > Before) ++Painted;
    }
    Require(Painted == WarmTurns + CountedTurns, Name);
    CALLGRIND_DUMP_STATS_AT(Name);
}

template <class TWork>
void Count(const char* Name, TContender& Tree, TWork Work) {
    Count(
        Name, Tree, [] {}, Work);
}

void CountAll(const std::vector<TContenderEntry>& Contenders) {
    const auto Ours = MakeOurs(Contenders);
    TContender& Tree = *Ours;
    OpenExpanded(Tree, {Nodes, 1});
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_DUMP_STATS_AT("start");

    const TNode Group = Tree.GetNodeAt({150, TContender::RowHeight / 2});
    Count("full repaint", Tree, [&] { Tree.RepaintAll(); });
    Count(
        "expand node", Tree, [&] { Tree.SetExpanded(Group, false); }, [&] { Tree.SetExpanded(Group, true); });
    Count(
        "collapse node", Tree, [&] { Tree.SetExpanded(Group, true); },
        [&] { Tree.SetExpanded(Group, false); });
    Tree.SetExpanded(Group, true);
    Tree.Show();
    int Number = 0;
    Count("insert node", Tree, [&] { Tree.InsertBefore(GetMiddleNode(Tree), TextsOf(Number++)); });
    Count("delete node", Tree, [&] { Tree.Delete(GetMiddleNode(Tree)); });
    int Turn = 0;
    TSpot Spot;
    Count(
        "click select", Tree,
        [&] {
            const int Row = 5 + 7 * (++Turn % 4);
            Spot = Tree.GetTextSpot(
                Tree.GetNodeAt({150, Row * TContender::RowHeight + TContender::RowHeight / 2}));
        },
        [&] { Tree.Click(Spot); });
    Tree.SetCurrent(Tree.GetNodeAt({150, TContender::Height - 4 * TContender::RowHeight}));
    Count("key down", Tree, [&] { Tree.Press(TKey::Down); });
    Count("page down", Tree, [&] { Tree.Press(TKey::PageDown); });
    Count("wheel", Tree, [&] { Tree.TurnWheel(); });

    const auto Edited = MakeOurs(Contenders);
    Edited->UseEditing();
    OpenExpanded(*Edited, {Nodes, 1});
    Edited->SetCurrent(GetMiddleNode(*Edited));
    Edited->Press(TKey::Edit);
    Edited->Show();
    Require(Edited->IsEditing(), "the editor did not open");
    // The editor paints in a window of its own.
    const auto Type = [&] {
        Edited->Type('x');
        Edited->Show();
    };
    for (int Warm = 0; Warm < WarmTurns; ++Warm) Type();
    CALLGRIND_TOGGLE_COLLECT;
    for (int Counted = 0; Counted < CountedTurns; ++Counted) Type();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT("type in the editor");
}

} // namespace
} // namespace quill::bench

int main(int ArgCount, char** Args) {
    using namespace quill::bench;
    try {
        CountAll(StartToolkit(ArgCount, Args));
        std::printf("%d\n", CountedTurns);
    } catch (const std::exception& Error) {
        std::fprintf(stderr, "bench_check: %s\n", Error.what());
        return 1;
    }
    std::fflush(stdout);
    std::_Exit(0);
}
