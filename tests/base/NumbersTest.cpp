#include "host/base/Numbers.h"
#include "host/base/Errors.h"
#include "host/base/Types.h"

#include <gtest/gtest.h>

#include <limits>

namespace quill {
namespace {

constexpr int Lowest = std::numeric_limits<int>::min();
constexpr int Highest = std::numeric_limits<int>::max();

TEST(Numbers, IntegersAreReadInTheirDocumentedForms) {
    const std::pair<const char*, int> Good[] = {{"  42", 42},
                                                {"-42", -42},
                                                {"+42", 42},
                                                {"007", 7},
                                                {"2147483647", Highest},
                                                {"-2147483648", Lowest},
                                                {"$1F", 31},
                                                {"0x1f", 31},
                                                {"0XFF", 255},
                                                {"-$10", -16},
                                                {"$FFFFFFFF", -1},
                                                {"$80000000", Lowest}};
    for (const auto& [Text, Value] : Good) {
        EXPECT_EQ(StrToInt(Text), Value) << Text;
        EXPECT_EQ(StrToIntDef(Text, 99), Value) << Text;
    }
}

TEST(Numbers, EverythingElseIsAConversionErrorWithTheTextInIt) {
    for (const char* Text :
         {"",    " ",       "x",          "4 2",         "42 ",        "4.2",
          "--4", "+",       "-",          "- 4",         "$",          "0x",
          "$G",  "1e3",     "2147483648", "-2147483649", "$100000000", "99999999999999999999",
          "\t1", "\xD9\xA3"}) {
        EXPECT_EQ(StrToIntDef(Text, 99), 99) << Text;
        try {
            StrToInt(Text);
            ADD_FAILURE() << Text;
        } catch (const EConvertError& Error) {
            EXPECT_EQ(Error.GetMessage(), "'" + std::string(Text) + "' is not a valid integer value");
        }
    }
}

TEST(Numbers, PlainDecimalsOfOwnFiles) {
    int Value = 5;
    for (const char* Text : {"", "+1", " 1", "1 ", "$1", "2147483648", "-"})
        EXPECT_FALSE(TryDecimal(Text, Value)) << Text;
    EXPECT_EQ(Value, 5);
    EXPECT_TRUE(TryDecimal("-2147483648", Value));
    EXPECT_EQ(Value, Lowest);
    std::string Out = "n=";
    AppendInt(Out, Lowest);
    EXPECT_EQ(Out, "n=-2147483648");
    EXPECT_EQ(IntToStr(std::numeric_limits<long long>::min()), "-9223372036854775808");
}

TEST(Numbers, MulDivRoundsHalvesAwayFromZeroWithAnExactProduct) {
    EXPECT_EQ(MulDiv(7, 1, 2), 4);
    EXPECT_EQ(MulDiv(-7, 1, 2), -4);
    EXPECT_EQ(MulDiv(7, 1, -2), -4);
    EXPECT_EQ(MulDiv(Highest, Highest, Highest), Highest);
    EXPECT_EQ(MulDiv(1, 1, 0), -1);
}

} // namespace
} // namespace quill
