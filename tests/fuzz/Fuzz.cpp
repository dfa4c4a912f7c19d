#include "tests/fuzz/Fuzz.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>

namespace quill::fuzz {

namespace {

using TRandom = std::mt19937_64;

std::size_t Below(TRandom& Random, std::size_t Limit) { return Limit == 0 ? 0 : Random() % Limit; }

// One change: a word put in or over, bytes flipped, cut, doubled or moved.
void Mutate(std::string& Input, const TTarget& Target, TRandom& Random) {
    const std::size_t At = Below(Random, Input.size() + 1);
    const std::size_t Length = std::min(Below(Random, 12), Input.size() - At);
    switch (Below(Random, 6)) {
    case 0:
    case 1:
        Input.insert(At, Target.Words[Below(Random, Target.Words.size())]);
        break;
    case 2:
        Input.replace(At, Length, Target.Words[Below(Random, Target.Words.size())]);
        break;
    case 3:
        if (At < Input.size()) Input[At] = static_cast<char>(Random());
        break;
    case 4:
        Input.erase(At, Length);
        break;
    default:
        Input.insert(Below(Random, Input.size() + 1), Input.substr(At, Length));
        break;
    }
    if (Input.size() > Target.Longest) Input.resize(Target.Longest);
}

// Written before the run, so that it is there when the run does not come back.
void Keep(const std::string& Input) {
    std::FILE* File = std::fopen("fuzz-input", "wb");
    if (!File) return;
    std::fwrite(Input.data(), 1, Input.size(), File);
    std::fclose(File);
}

std::string Current; // the input that is running

void KeepCurrent() { Keep(Current); }

} // namespace

void Check(bool Condition, const char* Message) {
    if (Condition) return;
    std::fprintf(stderr, "finding: %s\n", Message);
    KeepCurrent();
    std::abort();
}

int Main(int Count, char** Values, const TTarget& Target) {
    double Seconds = 10;
    std::uint64_t Seed = std::random_device()();
    std::vector<std::string> Seeds;
    for (int I = 1; I < Count; ++I) {
        if (std::strcmp(Values[I], "--seconds") == 0 && I + 1 < Count) {
            Seconds = std::atof(Values[++I]);
        } else if (std::strcmp(Values[I], "--seed") == 0 && I + 1 < Count) {
            Seed = std::strtoull(Values[++I], nullptr, 10);
        } else {
            std::ifstream File(Values[I], std::ios::binary);
            if (!File) {
                std::fprintf(stderr, "cannot read %s\n", Values[I]);
                return EXIT_FAILURE;
            }
            Seeds.emplace_back(std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>());
        }
    }
    std::printf("%s: seed %llu\n", Target.Name, static_cast<unsigned long long>(Seed));
    std::fflush(stdout);
    TRandom Random(Seed);
    std::uint64_t Runs = 0;
    const auto Run = [&](const std::string& Input) {
        Current = Input;
        Target.Run(Current);
        ++Runs;
    };
#if defined(__SANITIZE_ADDRESS__)
    // A report ends the program without a way back; the input must be there before.
    constexpr bool KeepsEach = true;
#else
    constexpr bool KeepsEach = false;
#endif
    for (const std::string& Input : Seeds) Run(Input);
    if (Seeds.empty()) Seeds.emplace_back();
    constexpr std::size_t MostSeeds = 4000;
    const auto End = std::chrono::steady_clock::now() + std::chrono::duration<double>(Seconds);
    while (std::chrono::steady_clock::now() < End) {
        std::string Input = Seeds[Below(Random, Seeds.size())];
        for (std::size_t Changes = 1 + Below(Random, 6); Changes > 0; --Changes)
            Mutate(Input, Target, Random);
        if (KeepsEach) Keep(Input);
        Run(Input);
        // Inputs grow into one another.
        if (Seeds.size() < MostSeeds) {
            Seeds.push_back(std::move(Input));
        } else {
            Seeds[Below(Random, Seeds.size())] = std::move(Input);
        }
    }
    if (KeepsEach) std::remove("fuzz-input");
    std::printf("%s: %llu executions, no finding\n", Target.Name, static_cast<unsigned long long>(Runs));
    return EXIT_SUCCESS;
}

} // namespace quill::fuzz
