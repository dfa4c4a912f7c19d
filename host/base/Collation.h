// The two text orders of the system, in the user's locale.
#pragma once

#include <string>
#include <string_view>

namespace quill {

// Locale collation with case deciding between texts that are otherwise equal; in the C locale by bytes.
// Returns a negative, zero or positive number.
int CompareTextLocale(const std::string& A, const std::string& B);

// A key whose byte order is the order of CompareTextLocale; made once per text when many are sorted.
std::string CollationKey(std::string_view Text);
// The same with runs of decimal digits compared by value, so that "item 9" comes before "item 10".
std::string NaturalCollationKey(std::string_view Text);
int CompareTextNatural(const std::string& A, const std::string& B);

// True when Text starts with Prefix, without regard to case (simple case folding of all scripts, by code points).
bool StartsTextIgnoringCase(std::string_view Text, std::string_view Prefix);

} // namespace quill
