#include "host/base/Collation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <random>

namespace quill {
namespace {

using namespace std::string_literals;

constexpr const char* RealLocale = "en_US.UTF-8";

class TLocale {
public:
    explicit TLocale(const char* Name) : FBefore(std::setlocale(LC_COLLATE, nullptr)) {
        FFound = std::setlocale(LC_COLLATE, Name) != nullptr;
    }
    ~TLocale() { std::setlocale(LC_COLLATE, FBefore.c_str()); }
    bool IsFound() const { return FFound; }

private:
    std::string FBefore;
    bool FFound = false;
};

using TCompare = int (*)(const std::string&, const std::string&);

std::string Sorted(std::vector<std::string> Texts, TCompare Compare) {
    std::sort(Texts.begin(), Texts.end(),
              [&](const std::string& A, const std::string& B) { return Compare(A, B) < 0; });
    std::string Result;
    for (const std::string& Text : Texts) Result += Text + "|";
    return Result;
}

int Sign(int Value) { return (Value > 0) - (Value < 0); }

std::vector<std::string> RandomTexts(unsigned Seed, std::size_t Count) {
    const std::string Pieces[] = {"a", "A", "b", "\xC3\xA4", "-",   " ",   "0",
                                  "0", "1", "9", "12",       "\0"s, "\1"s, "\xFF"};
    std::mt19937 Random(Seed);
    std::vector<std::string> Texts;
    for (std::size_t I = 0; I < Count; ++I) {
        std::string Text;
        for (std::size_t Length = Random() % 7; Length > 0; --Length)
            Text += Pieces[Random() % std::size(Pieces)];
        Texts.push_back(Text);
    }
    return Texts;
}

// The keys order as the functions do, and the order is total: only equal texts compare equal.
void CheckKeys(unsigned Seed) {
    const auto Texts = RandomTexts(Seed, 300);
    for (const std::string& A : Texts) {
        for (const std::string& B : Texts) {
            const int Locale = Sign(CompareTextLocale(A, B));
            ASSERT_EQ(Locale, Sign(CollationKey(A).compare(CollationKey(B))))
                << testing::PrintToString(A) << testing::PrintToString(B);
            const int Natural = Sign(CompareTextNatural(A, B));
            ASSERT_EQ(Natural, Sign(NaturalCollationKey(A).compare(NaturalCollationKey(B))))
                << testing::PrintToString(A) << testing::PrintToString(B);
            ASSERT_EQ(Locale == 0, A == B);
            ASSERT_EQ(Natural == 0, A == B);
            ASSERT_EQ(Natural, -Sign(CompareTextNatural(B, A)));
        }
    }
}

TEST(Collation, TheCLocaleOrdersByBytes) {
    const TLocale Locale("C");
    EXPECT_TRUE(CollationIsBytewise());
    EXPECT_EQ(Sorted({"b", "a", "B", "\xC3\xA4", "ab", ""}, CompareTextLocale), "|B|a|ab|b|\xC3\xA4|");
    EXPECT_LT(CompareTextLocale("a", "a\0"s), 0);
    EXPECT_EQ(CollationKey("a\0b"s), "a\0b"s);
    CheckKeys(1);
}

TEST(Collation, NaturalOrderComparesDigitsByValue) {
    const TLocale Locale("C");
    EXPECT_EQ(
        Sorted({"item 10", "item 9", "item 1", "item", "item -1", "item b", "item 100"}, CompareTextNatural),
        "item|item -1|item 1|item 9|item 10|item 100|item b|");
    EXPECT_EQ(Sorted({"a01", "a1", "a001", "a0", "a00", "a2"}, CompareTextNatural), "a0|a00|a1|a001|a01|a2|");
    EXPECT_EQ(Sorted({"1.10.2", "1.9.30", "1.9.4"}, CompareTextNatural), "1.9.4|1.9.30|1.10.2|");
    const std::string Nines(300, '9');
    EXPECT_EQ(Sorted({"1" + std::string(300, '0'), Nines, "x", "12345678901"}, CompareTextNatural),
              "12345678901|" + Nines + "|1" + std::string(300, '0') + "|x|");
}

TEST(Collation, ARealLocaleLetsCaseDecideLast) {
    const TLocale Locale(RealLocale);
    if (!Locale.IsFound()) GTEST_SKIP() << "the locale cannot be made here (package locales)";
    EXPECT_FALSE(CollationIsBytewise());
    EXPECT_EQ(Sorted({"b", "A", "a", "B", "ab", "\xC3\xA4"}, CompareTextLocale), "a|A|\xC3\xA4|ab|b|B|");
    EXPECT_EQ(Sorted({"item 10", "Item 9", "item 9", "Item 10", "item 2"}, CompareTextNatural),
              "item 2|item 9|Item 9|item 10|Item 10|");
    EXPECT_LT(CompareTextLocale("a\0b"s, "a\0c"s), 0);
    EXPECT_LT(CompareTextLocale("a", "a\0"s), 0);
    CheckKeys(2);
}

TEST(Collation, PrefixesFoldCaseInEveryScript) {
    const std::tuple<const char*, const char*, bool> Cases[] = {
        {"abc", "", true},
        {"Apple", "aPP", true},
        {"\xC3\x84pfel", "\xC3\xA4P", true},                    // Ä, ä
        {"\xCE\xA3\xCE\xBF\xCF\x86", "\xCF\x82\xCE\x9F", true}, // capital and final sigma
        {"\xD0\x96\xD1\x83\xD0\xBA", "\xD0\xB6\xD0\xA3", true}, // Cyrillic
        {"\xE1\xBA\x9E", "\xC3\x9F", true},                     // capital and small sharp s
        {"\xC3\x9F", "ss", false},                              // no full folding
        {"\xF0\x90\x90\x80", "\xF0\x90\x90\xA8", true},         // Deseret, above 16 bits
        {"[", "{", false},
        {"\xC3\x97", "\xC3\xB7", false}, // the signs between the letters
    };
    for (const auto& [Text, Prefix, Expected] : Cases)
        EXPECT_EQ(StartsTextIgnoringCase(Text, Prefix), Expected) << Text << " / " << Prefix;
}

} // namespace
} // namespace quill
