#include "host/base/Strings.h"
#include "host/base/Errors.h"
#include "host/base/Streams.h"

#include <gtest/gtest.h>

#include <random>

namespace quill {
namespace {

using namespace std::string_literals;

std::string Dump(const TStrings& List) {
    std::string Result;
    for (int I = 0; I < List.GetCount(); ++I) Result += "[" + List.Get(I) + "]";
    return Result;
}

std::string SplitLines(std::string_view Text) {
    TStringList List;
    List.SetText(Text);
    return Dump(List);
}

std::string RandomText(std::mt19937& Random, std::string_view Alphabet, std::size_t MaxLength) {
    std::string Text;
    for (std::size_t I = Random() % MaxLength; I > 0; --I) Text += Alphabet[Random() % Alphabet.size()];
    return Text;
}

TEST(Strings, TextSplitsAtEveryKindOfLineEnd) {
    EXPECT_EQ(SplitLines("a\nb\r\nc\rd"), "[a][b][c][d]");
    EXPECT_EQ(SplitLines("\n\r\r\n\n"), "[][][][]");
    EXPECT_EQ(SplitLines("with\0nul\nand \xE2\x82\xAC\n"s), "[with\0nul][and \xE2\x82\xAC]"s);
    // Longer than a machine word, with neighbours of the line ends' codes.
    EXPECT_EQ(SplitLines("\x09\x0B\x0C\x0E\x0A\x8A\x8D abcdefghijk\rlmnopqrstuvwxyz"),
              "[\x09\x0B\x0C\x0E][\x8A\x8D abcdefghijk][lmnopqrstuvwxyz]");
}

TEST(Strings, LineSplittingAgreesWithAPlainLoop) {
    std::mt19937 Random(7);
    for (int Round = 0; Round < 2000; ++Round) {
        std::string Text = RandomText(Random, "\r\n\n\rab\t\x8D", 40);
        std::string Expected;
        for (std::size_t I = 0; I < Text.size(); ++I) {
            if (I == 0 || Text[I - 1] == '\n') Expected += '[';
            if (Text.compare(I, 2, "\r\n") == 0) ++I;
            if (Text[I] == '\r') Text[I] = '\n';
            Expected += Text[I] == '\n' ? ']' : Text[I];
        }
        if (!Text.empty() && Text.back() != '\n') Expected += ']';
        ASSERT_EQ(SplitLines(Text), Expected) << "round " << Round;
    }
}

TEST(Strings, CommaTextQuotesWhatWouldSeparate) {
    const std::pair<std::vector<std::string>, std::string> Cases[] = {
        {{}, ""},
        {{""}, "\"\""},
        {{"", ""}, ","},
        {{"0", "1", "Fruit", "Sweet and red"}, "0,1,Fruit,\"Sweet and red\""},
        {{"say \"hi\"", "\"", "a,b"}, "\"say \"\"hi\"\"\",\"\"\"\",\"a,b\""},
        {{"\t", "\0"s, "\x1F", "!", "\x7F", "\xC3\xA4'"}, "\"\t\",\"\0\",\"\x1F\",!,\x7F,\xC3\xA4'"s},
    };
    for (const auto& [Items, Expected] : Cases) {
        TStringList List;
        for (const std::string& Item : Items) List.Add(Item);
        EXPECT_EQ(List.GetCommaText(), Expected);
    }
}

TEST(Strings, CommaTextSeparatesAtCommasAndBlanksOutsideQuotes) {
    const std::pair<std::string, const char*> Cases[] = {
        {"", ""},
        {"a b\tc\0d"s, "[a][b][c][d]"},
        {" a , b ,c", "[a][b][c]"},
        {"a,,b", "[a][][b]"},
        {"a ,", "[a][]"},
        {"\"a b\",\"c,\"\"d\"\"\",\"\"", "[a b][c,\"d\"][]"},
        {"\"a\"b", "[a][b]"},
        {"a\"b c", "[a\"b][c]"},  // a quote inside an item is a character
        {"\"open, ", "[open, ]"}, // an unclosed one reaches to the end
        {"\"", "[]"},
        {"\"\"\"", "[\"]"},
    };
    for (const auto& [Text, Expected] : Cases) {
        TStringList List;
        List.SetCommaText(Text);
        EXPECT_EQ(Dump(List), Expected) << Text;
    }
}

TEST(Strings, CommaTextRoundTripsEveryContent) {
    std::mt19937 Random(11);
    for (int Round = 0; Round < 3000; ++Round) {
        TStringList List, Back;
        for (std::size_t Count = 1 + Random() % 4; Count > 0; --Count)
            List.Add(RandomText(Random, {"\"\", \t\r\n\0a\xC3\xFFz", 12}, 6));
        Back.SetCommaText(List.GetCommaText());
        ASSERT_EQ(Dump(Back), Dump(List)) << "round " << Round;
    }
}

TEST(Strings, ListOperationsKeepTextsAndObjectsTogether) {
    TStringList List;
    int X = 0, Y = 0;
    List.AddObject("x", &X);
    List.AddObject("y", &Y);
    List.Insert(1, "m");
    EXPECT_EQ(Dump(List), "[x][m][y]");
    List.Exchange(0, 2);
    List.Move(0, 2);
    EXPECT_EQ(Dump(List), "[m][x][y]");
    List.Put(2, "z");
    List.Add("b");
    List.Sort();
    List.Delete(1);
    EXPECT_EQ(Dump(List), "[b][x][z]");
    EXPECT_EQ(List.GetObjects(2), &Y);
    EXPECT_EQ(List.IndexOf("X"), -1);
    TStringList Copy;
    Copy.Assign(&List);
    Copy.Assign(&Copy);
    EXPECT_TRUE(Copy.Equals(List));
    EXPECT_EQ(Copy.GetObjects(2), &Y);
}

TEST(Strings, IndexesOutsideTheListAreNamedInTheError) {
    TStringList List;
    List.Add("a");
    const std::function<void()> Bad[] = {[&] { List.Get(1); },        [&] { List.Put(1, ""); },
                                         [&] { List.GetObjects(1); }, [&] { List.PutObject(1, nullptr); },
                                         [&] { List.Delete(1); },     [&] { List.Move(0, 1); },
                                         [&] { List.Exchange(0, 1); }};
    for (const auto& Call : Bad) {
        try {
            Call();
            ADD_FAILURE() << "no error";
        } catch (const EStringListError& Error) {
            EXPECT_EQ(Error.GetMessage(), "List index out of bounds (1)");
        }
    }
    for (const int Index : {2, -1}) EXPECT_THROW(List.Insert(Index, ""), EStringListError);
    EXPECT_EQ(Dump(List), "[a]");
}

TEST(Strings, AListMayBeFedFromItself) {
    TStringList List;
    List.Add("a,b a long text that does not fit into the string itself");
    List.SetCommaText(List.Get(0));
    EXPECT_EQ(List.GetCount(), 13);
    List.Insert(0, List.Get(12));
    List.Add(List.Get(1));
    EXPECT_EQ(List.Get(0), "itself");
    EXPECT_EQ(List.Get(14), "a");
    List.Clear();
    List.Add("x");
    List.AddStrings(List);
    EXPECT_EQ(Dump(List), "[x][x]");
}

TEST(Strings, ChangesAreReportedOnceAnUpdateBracket) {
    TStringList List;
    std::string Log;
    List.OnChanging = [&](TObject* Sender) { Log += Sender == &List ? "<" : "?"; };
    List.OnChange = [&](TObject*) { Log += std::to_string(List.GetCount()) + ">"; };
    List.Add("a");
    List.BeginUpdate();
    List.Add("b");
    TStringList Copy(List);
    List.Add("c");
    List.EndUpdate();
    List.EndUpdate(); // one too many changes nothing
    List.SetText("1\n2\n3\n4");
    EXPECT_EQ(Log, "<1><3><4>");
    Copy.OnChange = [&](TObject*) { Log = "changed"; };
    Copy.Add("x");
    EXPECT_EQ(Log, "changed") << "a copy made inside a bracket has no open bracket";
}

TEST(Strings, AChangeHandlerMayReplaceItself) {
    TStringList List;
    int Calls = 0;
    List.OnChange = [&, Padding = std::string(100, 'x')](TObject*) {
        List.OnChange = nullptr;
        Calls += static_cast<int>(Padding.size());
    };
    List.Add("a");
    List.Add("b");
    EXPECT_EQ(Calls, 100);
}

TEST(Strings, StreamsSkipAByteOrderMark) {
    TMemoryStream Stream("\xEF\xBB\xBF"
                         "first\r\nsecond");
    TStringList List;
    List.LoadFromStream(Stream);
    EXPECT_EQ(Dump(List), "[first][second]");
    TMemoryStream Out;
    List.SaveToStream(Out);
    EXPECT_EQ(Out.GetMemory(), "first\r\nsecond\r\n");
}

} // namespace
} // namespace quill
