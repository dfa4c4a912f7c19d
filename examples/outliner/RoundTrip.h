// Proves that files survive being loaded and saved.
#pragma once

#include <string>
#include <vector>

namespace quill::examples {

// Loads and saves every file with its own options, which must give the same bytes, and with all options that keep
// its fields, where a second load and save must give what the first one gave. Prints a line for each file; true when
// all are the same.
bool RoundTrip(const std::vector<std::string>& FileNames);

} // namespace quill::examples
