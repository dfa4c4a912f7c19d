// The two text orders of the system, in the user's locale.
#pragma once

#include <string>
#include <string_view>

namespace quill {

// Locale collation with case deciding between texts that are otherwise equal; in the C locale by bytes.
// Returns a negative, zero or positive number.
int CompareTextLocale(const std::string& A, const std::string& B);

// True when the current locale orders texts by their bytes, so that a text is its own collation key.
bool CollationIsBytewise();

// A key whose byte order is the order of CompareTextLocale; made once per text when many are sorted.
std::string CollationKey(std::string_view Text);
// The same with runs of decimal digits compared by value, so that "item 9" comes before "item 10". Texts that
// differ in leading zeros only come with those without first.
std::string NaturalCollationKey(std::string_view Text);
// The same keys added to Out, for callers that keep many keys in one buffer.
void AppendCollationKey(std::string& Out, std::string_view Text);
void AppendNaturalCollationKey(std::string& Out, std::string_view Text);
int CompareTextNatural(const std::string& A, const std::string& B);

// True when Text starts with Prefix, without regard to case (simple case folding of all scripts, by code points).
bool StartsTextIgnoringCase(std::string_view Text, std::string_view Prefix);

} // namespace quill
