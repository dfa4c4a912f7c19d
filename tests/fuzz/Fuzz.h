// What the fuzz targets share. Each is a program that runs its target on mutated inputs for some time:
//
//   TARGET [--seconds N] [--seed N] [FILE...]
//
// FILEs are run as they are and become seeds of the mutation. It ends with the number of executions; whatever the
// sanitizers or the target's own checks find ends it at once, and the input is then in the file "fuzz-input".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quill::fuzz {

struct TTarget {
    const char* Name;
    void (*Run)(std::string_view Input);
    // Pieces of which inputs are made.
    std::vector<std::string> Words;
    // Longest input in bytes.
    std::size_t Longest = 400;
};

int Main(int Count, char** Values, const TTarget& Target);

// Ends the program with Message when Condition does not hold.
void Check(bool Condition, const char* Message);

} // namespace quill::fuzz
