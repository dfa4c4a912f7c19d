#include "host/base/Texts.h"
#include "host/base/Utf8.h"

#include <gtest/gtest.h>

namespace quill {
namespace {

using namespace std::string_literals;

TEST(Texts, PlacesAreFilledInOrder) {
    EXPECT_EQ(FormatText("%s of %s", {"1", "%s"}), "1 of %s");
    EXPECT_EQ(FormatText("<%s>", {"a\xFF\0b"s}), "<a\xEF\xBF\xBD\xEF\xBF\xBD"s + "b>");
    EXPECT_EQ(FormatText("none %d %", {"1", "2"}), "none %d %");
}

TEST(Texts, LongValuesKeepTheirBeginningAndTheirEnd) {
    const std::string Exact(60, 'x');
    EXPECT_EQ(FormatText("'%s'", {Exact}), "'" + Exact + "'");
    const std::string Huge = "\xC3\xA4" + std::string(1'000'000, 'x') + "(Line:\xC3\xB6 12)";
    const std::string Shortened = FormatText("%s", {Huge});
    EXPECT_EQ(Shortened, "\xC3\xA4" + std::string(38, 'x') + "\xE2\x80\xA6" + std::string(9, 'x') +
                             "(Line:\xC3\xB6 12)");
    EXPECT_EQ(Utf8Length(Shortened), MaxMessageValue);
    EXPECT_EQ(FormatTextInFull("%s", {Huge}), Huge);
}

std::string CodePoints(std::string_view Text) {
    std::string Result;
    for (const char32_t C : Utf8ToUtf32(Text)) {
        char Buffer[16];
        std::snprintf(Buffer, sizeof Buffer, "%X ", static_cast<unsigned>(C));
        Result += Buffer;
    }
    return Result;
}

TEST(Utf8, EveryMalformedByteIsOneReplacement) {
    const std::pair<std::string, const char*> Cases[] = {
        {"", ""},
        {"a\0b"s, "61 0 62 "},
        {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", "E4 20AC 1F600 "},
        {"\xF4\x8F\xBF\xBF", "10FFFF "},
        {"\x80", "FFFD "},
        {"\xE2\x82z", "FFFD FFFD 7A "},
        {"\xC0\xAF", "FFFD FFFD "},                   // overlong
        {"\xE0\x80\x80", "FFFD FFFD FFFD "},          // overlong
        {"\xED\xA0\x80", "FFFD FFFD FFFD "},          // surrogate
        {"\xF4\x90\x80\x80", "FFFD FFFD FFFD FFFD "}, // above the last code point
        {"\xFF\xFE", "FFFD FFFD "},
    };
    for (const auto& [Text, Expected] : Cases) {
        EXPECT_EQ(CodePoints(Text), Expected);
        EXPECT_EQ(IsValidUtf8(Text), CodePoints(Text).find("FFFD") == std::string::npos);
        EXPECT_EQ(Utf8Length(Text), static_cast<int>(Utf8ToUtf32(Text).size()));
    }
}

TEST(Utf8, EncodesAllRangesAndReplacesWhatIsNoCharacter) {
    EXPECT_EQ(Utf32ToUtf8(U"a\u00E4\u20AC\U0001F600"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    std::string Out;
    AppendUtf8(Out, 0xD800);
    AppendUtf8(Out, 0x110000);
    EXPECT_EQ(Out, "\xEF\xBF\xBD\xEF\xBF\xBD");
    for (char32_t C = 1; C < 0x110000; C += 251) {
        if (C >= 0xD800 && C <= 0xDFFF) continue;
        Out.clear();
        AppendUtf8(Out, C);
        ASSERT_EQ(Utf8ToUtf32(Out), std::u32string(1, C));
    }
}

TEST(Utf8, LengthsAndOffsetsCountCodePoints) {
    const std::string Text = "0123456789abcdef\xC3\xA4xyz\xF0\x9F\x98\x80 and more ASCII\xFF";
    EXPECT_EQ(Utf8Length(Text), 37);
    EXPECT_EQ(Utf8Offset(Text, 17), 18u);
    EXPECT_EQ(Utf8Offset(Text, 0), 0u);
    EXPECT_EQ(Utf8Offset(Text, 1000), Text.size());
}

} // namespace
} // namespace quill
