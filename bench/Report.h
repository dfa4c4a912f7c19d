// Timing and one-line figures, shared by the benchmark programs.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace quill::bench {

class TStopwatch {
public:
    double Milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - FStart).count();
    }

private:
    std::chrono::steady_clock::time_point FStart = std::chrono::steady_clock::now();
};

// The median of Runs timings of Work, in milliseconds; Prepare runs before each, untimed.
template <class TPrepare, class TWork>
double Median(int Runs, TPrepare Prepare, TWork Work) {
    std::vector<double> Times;
    for (int Run = 0; Run < Runs; ++Run) {
        Prepare();
        const TStopwatch Watch;
        Work();
        Times.push_back(Watch.Milliseconds());
    }
    std::nth_element(Times.begin(), Times.begin() + Runs / 2, Times.end());
    return Times[static_cast<std::size_t>(Runs / 2)];
}

template <class TWork>
double Median(int Runs, TWork Work) {
    return Median(
        Runs, [] {}, Work);
}

// One figure beside what it is measured against: the ratio of both and the ratio allowed. Fields are separated by
// tabs: workload, figure, unit, reference's name, reference's figure, ratio, allowed ratio, verdict.
inline void Report(const std::string& Workload, double Figure, const std::string& Unit,
                   const std::string& Reference, double ReferenceFigure, double Allowed) {
    const double Ratio = ReferenceFigure > 0 ? Figure / ReferenceFigure : 0;
    std::printf("%s\t%.4g\t%s\t%s\t%.4g\t%.2f\t%.2f\t%s\n", Workload.c_str(), Figure, Unit.c_str(),
                Reference.c_str(), ReferenceFigure, Ratio, Allowed, Ratio <= Allowed ? "ok" : "MISSED");
    std::fflush(stdout);
}

// Bytes of resident memory of this process.
inline double ResidentBytes() {
    std::FILE* File = std::fopen("/proc/self/statm", "r");
    if (!File) return 0;
    long Size = 0;
    long Resident = 0;
    const int Fields = std::fscanf(File, "%ld %ld", &Size, &Resident);
    std::fclose(File);
    return Fields == 2 ? static_cast<double>(Resident) * 4096.0 : 0;
}

} // namespace quill::bench
