// Clocks, medians and memory, shared by the workloads.
#pragma once

#include "bench/Contender.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include <malloc.h>
#include <time.h>
#include <unistd.h>

namespace quill::bench {

// A time in milliseconds (or another quantity, which then stands in both). The processor's time is the figure: other
// programs of the machine do not count, nor do waits for a frame clock. The wall clock is kept for those who want it.
struct TFigure {
    double Cpu = 0;
    double Wall = 0;
    int Runs = 1;
    double Paints = 0; // paint events of one run
    TFigure Times(double Factor) const { return {Cpu * Factor, Wall * Factor, Runs, Paints}; }
    static TFigure Of(double Value) { return {Value, Value, 1, 0}; }
};

// A workload did not do what it is measured for.
class EFailure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

inline void Require(bool Condition, const char* Message) {
    if (!Condition) throw EFailure(Message);
}

class TStopwatch {
public:
    TFigure Get() const { return {Now(CLOCK_PROCESS_CPUTIME_ID) - FCpu, Now(CLOCK_MONOTONIC) - FWall, 1, 0}; }

private:
    static double Now(clockid_t Clock) {
        timespec Time{};
        clock_gettime(Clock, &Time);
        return static_cast<double>(Time.tv_sec) * 1e3 + static_cast<double>(Time.tv_nsec) / 1e6;
    }
    double FCpu = Now(CLOCK_PROCESS_CPUTIME_ID);
    double FWall = Now(CLOCK_MONOTONIC);
};

inline double MedianOf(std::vector<double> Values) {
    const auto Middle = Values.begin() + static_cast<std::ptrdiff_t>(Values.size() / 2);
    std::nth_element(Values.begin(), Middle, Values.end());
    return *Middle;
}

// The median of several timings of Work; Prepare runs before each, untimed. Short work is repeated more often.
template <class TPrepare, class TWork>
TFigure Median(TPrepare Prepare, TWork Work, int MostRuns = 101) {
    constexpr int LeastRuns = 5;
    constexpr double Enough = 250;   // milliseconds of the wall clock after LeastRuns
    constexpr double TooLong = 1500; // and after any run
    std::vector<double> Cpu;
    std::vector<double> Wall;
    const TStopwatch Whole;
    while (static_cast<int>(Cpu.size()) < MostRuns) {
        Prepare();
        const TStopwatch Watch;
        Work();
        const TFigure Time = Watch.Get();
        Cpu.push_back(Time.Cpu);
        Wall.push_back(Time.Wall);
        const double Elapsed = Whole.Get().Wall;
        if (Elapsed > TooLong || (Elapsed > Enough && static_cast<int>(Cpu.size()) >= LeastRuns)) break;
    }
    return {MedianOf(Cpu), MedianOf(Wall), static_cast<int>(Cpu.size()), 0};
}

// The same with what the user sees of Work: layout and at least one paint event.
template <class TPrepare, class TWork>
TFigure Painted(TContender& Contender, TPrepare Prepare, TWork Work, int MostRuns = 101) {
    std::vector<long> Paints;
    TFigure Figure = Median(
        [&] {
            if (!Paints.empty()) Paints.back() += Contender.GetPaintCount();
            Prepare();
            Contender.Show();
            Paints.push_back(-Contender.GetPaintCount());
        },
        [&] {
            Work();
            Contender.Show();
        },
        MostRuns);
    Paints.back() += Contender.GetPaintCount();
    Require(std::ranges::min(Paints) > 0, "no paint event");
    Figure.Paints = MedianOf({Paints.begin(), Paints.end()});
    return Figure;
}

template <class TWork>
TFigure Painted(TContender& Contender, TWork Work, int MostRuns = 101) {
    return Painted(
        Contender, [] {}, Work, MostRuns);
}

// The time of one call of Work(i) for i = 0, 1, ...: too short to be timed by itself.
template <class TWork>
TFigure PerCall(TWork Work) {
    constexpr double Enough = 100;
    int Index = 0;
    for (int Count = 1;; Count *= 2) {
        const TStopwatch Watch;
        for (const int End = Index + Count; Index < End; ++Index) Work(Index);
        TFigure Time = Watch.Get();
        if (Time.Wall < Enough && Count < (1 << 22)) continue;
        Time.Runs = Count;
        return Time.Times(1.0 / Count);
    }
}

// Bytes of resident memory of this process, without what the allocator holds free.
inline double ResidentBytes() {
    malloc_trim(0);
    std::FILE* File = std::fopen("/proc/self/statm", "r");
    if (!File) return 0;
    long Size = 0;
    long Resident = 0;
    const int Fields = std::fscanf(File, "%ld %ld", &Size, &Resident);
    std::fclose(File);
    return Fields == 2 ? static_cast<double>(Resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) : 0;
}

} // namespace quill::bench
