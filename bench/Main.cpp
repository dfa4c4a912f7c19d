// Runs one workload on one contender and prints its figure; scripts/bench-run makes the table of them.
//
//   bench_NAME --list                                    contenders and workloads, a line each
//   bench_NAME WORKLOAD CONTENDER [--nodes N] [--scale S]
//
// The figure: processor time, wall clock, runs, paint events of a run, separated by tabs; or "-" and the reason when the contender does not
// offer it. Exits with 1 when the workload did not do what it is measured for.
#include "bench/Workloads.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace quill::bench {

namespace {

std::vector<TWorkload> AllWorkloads() {
    std::vector<TWorkload> All;
    for (const auto& Part : {BulkWorkloads(), ChangeWorkloads(), PaintWorkloads(), SortWorkloads(),
                             InputWorkloads(), OwnWorkloads()}) {
        All.insert(All.end(), Part.begin(), Part.end());
    }
    return All;
}

const char* NameOf(TKind Kind) {
    switch (Kind) {
    case TKind::Action:
        return "action";
    case TKind::Bulk:
        return "bulk";
    default:
        return "fixed";
    }
}

void List(const std::vector<TContenderEntry>& Contenders) {
    for (const TContenderEntry& Entry : Contenders) std::printf("contender\t%s\n", Entry.Name);
    for (const TWorkload& Work : AllWorkloads()) {
        std::printf("workload\t%s\t%s\t%s\t%g\t%s\t%s\t%s\n", Work.Name, Work.Title, Work.Unit, Work.Budget,
                    NameOf(Work.Kind), Work.NeedsLocale ? "locale" : "", Work.OnlyOurs ? "ours" : "");
    }
}

int Run(const TWorkload& Work, TContender& Contender, const TSize& Size) {
    try {
        const TFigure Figure = Work.Run(Contender, Size);
        std::printf("%.6g\t%.6g\t%d\t%g\n", Figure.Cpu, Figure.Wall, Figure.Runs, Figure.Paints);
        return 0;
    } catch (const ENotOffered& Reason) {
        std::printf("-\t%s\n", Reason.what());
        return 0;
    } catch (const std::exception& Error) {
        std::fprintf(stderr, "%s: %s\n", Work.Name, Error.what());
        return 1;
    }
}

int Main(int ArgCount, char** Args) {
    const std::vector<TContenderEntry> Contenders = StartToolkit(ArgCount, Args);
    if (ArgCount >= 2 && std::strcmp(Args[1], "--list") == 0) {
        List(Contenders);
        return 0;
    }
    TSize Size;
    for (int Index = 3; Index + 1 < ArgCount; Index += 2) {
        if (std::strcmp(Args[Index], "--nodes") == 0) Size.Nodes = std::atoi(Args[Index + 1]);
        if (std::strcmp(Args[Index], "--scale") == 0) Size.Scale = std::atof(Args[Index + 1]);
    }
    for (const TWorkload& Work : AllWorkloads()) {
        if (ArgCount < 3 || std::string_view(Args[1]) != Work.Name) continue;
        for (const TContenderEntry& Entry : Contenders) {
            if (std::string_view(Args[2]) != Entry.Name) continue;
            const std::unique_ptr<TContender> Contender = Entry.Make();
            const int Status = Run(Work, *Contender, Size);
            std::fflush(stdout);
            std::_Exit(Status); // without taking a million nodes apart
        }
    }
    std::fprintf(stderr, "usage: %s --list | WORKLOAD CONTENDER [--nodes N] [--scale S]\n", Args[0]);
    return 2;
}

} // namespace
} // namespace quill::bench

int main(int ArgCount, char** Args) { return quill::bench::Main(ArgCount, Args); }
