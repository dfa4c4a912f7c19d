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

std::string SplitCommaText(std::string_view Text) {
    TStringList List;
    List.SetCommaText(Text);
    return Dump(List);
}

std::string CommaTextOf(std::initializer_list<std::string> Items) {
    TStringList List;
    for (const std::string& Item : Items) List.Add(Item);
    return List.GetCommaText();
}

TEST(Strings, TextSplitsAtEveryKindOfLineEnd) {
    EXPECT_EQ(SplitLines(""), "");
    EXPECT_EQ(SplitLines("one"), "[one]");
    EXPECT_EQ(SplitLines("a\nb\r\nc\rd"), "[a][b][c][d]");
    EXPECT_EQ(SplitLines("\n\r\r\n\n"), "[][][][]");
    EXPECT_EQ(SplitLines("a\n"), "[a]");
    EXPECT_EQ(SplitLines("a\r"), "[a]");
    EXPECT_EQ(SplitLines("with\0nul\nand \xE2\x82\xAC"s), "[with\0nul][and \xE2\x82\xAC]"s);
    // Longer than a machine word, with neighbours of the line ends' codes.
    EXPECT_EQ(SplitLines("\x09\x0B\x0C\x0E\x0A\x8A\x8D abcdefghijk\rlmnopqrstuvwxyz"),
              "[\x09\x0B\x0C\x0E][\x8A\x8D abcdefghijk][lmnopqrstuvwxyz]");
}

TEST(Strings, LineSplittingAgreesWithAPlainLoop) {
    std::mt19937 Random(7);
    constexpr std::string_view Alphabet = "\r\n\n\rab\t\x8D";
    for (int Round = 0; Round < 2000; ++Round) {
        std::string Text;
        for (std::size_t I = Random() % 40; I > 0; --I) Text += Alphabet[Random() % Alphabet.size()];
        std::string Expected, Line;
        bool Open = false;
        for (std::size_t I = 0; I < Text.size(); ++I) {
            if (Text[I] != '\r' && Text[I] != '\n') {
                Line += Text[I];
                Open = true;
                continue;
            }
            if (Text[I] == '\r' && I + 1 < Text.size() && Text[I + 1] == '\n') ++I;
            Expected += "[" + Line + "]";
            Line.clear();
            Open = false;
        }
        if (Open) Expected += "[" + Line + "]";
        ASSERT_EQ(SplitLines(Text), Expected) << "round " << Round;
    }
}

TEST(Strings, TextJoinsWithCarriageReturnAndLineFeed) {
    TStringList List;
    EXPECT_EQ(List.GetText(), "");
    List.Add("a");
    List.Add("");
    EXPECT_EQ(List.GetText(), "a\r\n\r\n");
}

TEST(Strings, CommaTextQuotesWhatWouldSeparate) {
    EXPECT_EQ(CommaTextOf({}), "");
    EXPECT_EQ(CommaTextOf({""}), "\"\"");
    EXPECT_EQ(CommaTextOf({"", ""}), ",");
    EXPECT_EQ(CommaTextOf({"0", "1", "Fruit", "Sweet and red"}), "0,1,Fruit,\"Sweet and red\"");
    EXPECT_EQ(CommaTextOf({"say \"hi\"", "\"", "a,b"}), "\"say \"\"hi\"\"\",\"\"\"\",\"a,b\"");
    EXPECT_EQ(CommaTextOf({"\t", "\0"s, "\x1F", "!", "\x7F", "\xC3\xA4'"}),
              "\"\t\",\"\0\",\"\x1F\",!,\x7F,\xC3\xA4'"s);
}

TEST(Strings, CommaTextSeparatesAtCommasAndBlanksOutsideQuotes) {
    EXPECT_EQ(SplitCommaText(""), "");
    EXPECT_EQ(SplitCommaText("  \t "), "");
    EXPECT_EQ(SplitCommaText("a b\tc\0d"s), "[a][b][c][d]");
    EXPECT_EQ(SplitCommaText(" a , b ,c"), "[a][b][c]");
    EXPECT_EQ(SplitCommaText(","), "[][]");
    EXPECT_EQ(SplitCommaText("a,,b"), "[a][][b]");
    EXPECT_EQ(SplitCommaText("a,"), "[a][]");
    EXPECT_EQ(SplitCommaText("a ,"), "[a][]");
    EXPECT_EQ(SplitCommaText(",,,"), "[][][][]");
    EXPECT_EQ(SplitCommaText("\"a b\",\"c,\"\"d\"\"\",\"\""), "[a b][c,\"d\"][]");
    EXPECT_EQ(SplitCommaText("\"a\"b"), "[a][b]");
    EXPECT_EQ(SplitCommaText("\"a\"  ,  \"b\""), "[a][b]");
    EXPECT_EQ(SplitCommaText("a\"b c"), "[a\"b][c]") << "a quote inside an item is a character";
    EXPECT_EQ(SplitCommaText("\"open, "), "[open, ]") << "an unclosed quote reaches to the end";
    EXPECT_EQ(SplitCommaText("\"open \"\"x,"), "[open \"x,]");
    EXPECT_EQ(SplitCommaText("\""), "[]");
    EXPECT_EQ(SplitCommaText("\"\"\""), "[\"]");
    EXPECT_EQ(SplitCommaText("\"a\","), "[a][]");
}

TEST(Strings, CommaTextItemsCanBeReadBehindAnIndentation) {
    const std::string_view Line = "\t\tApple,\"x \"\"y\"\"\",";
    std::size_t Pos = 2;
    std::string Buffer, Result;
    for (std::string_view Item; NextCommaTextItem(Line, Pos, Buffer, Item);)
        Result += "[" + std::string(Item) + "]";
    EXPECT_EQ(Result, "[Apple][x \"y\"][]");
    Pos = 2;
    std::string_view Item;
    EXPECT_FALSE(NextCommaTextItem("\t\t", Pos, Buffer, Item));
}

TEST(Strings, CommaTextRoundTripsEveryContent) {
    std::mt19937 Random(11);
    constexpr std::string_view Alphabet("\"\", \t\r\n\0a\xC3\xFFz", 12);
    int Steps = 0;
    for (int Round = 0; Round < 3000; ++Round) {
        TStringList List, Back;
        for (std::size_t Count = 1 + Random() % 4; Count > 0; --Count) {
            std::string Item;
            for (std::size_t I = Random() % 6; I > 0; --I) Item += Alphabet[Random() % Alphabet.size()];
            List.Add(Item);
        }
        Back.SetCommaText(List.GetCommaText());
        ASSERT_EQ(Dump(Back), Dump(List)) << "round " << Round;
        ++Steps;
    }
    EXPECT_EQ(Steps, 3000);
}

TEST(Strings, ListOperationsKeepTextsAndObjectsTogether) {
    TStringList List;
    int X = 0, Y = 0;
    List.AddObject("x", &X);
    List.AddObject("y", &Y);
    List.Insert(1, "m");
    EXPECT_EQ(Dump(List), "[x][m][y]");
    List.Exchange(0, 2);
    EXPECT_EQ(List.GetObjects(0), &Y);
    List.Move(0, 2);
    EXPECT_EQ(Dump(List), "[m][x][y]");
    EXPECT_EQ(List.GetObjects(2), &Y);
    List.Put(2, "z");
    EXPECT_EQ(List.GetObjects(2), &Y);
    List.Add("b");
    List.Sort();
    EXPECT_EQ(Dump(List), "[b][m][x][z]");
    EXPECT_EQ(List.IndexOf("x"), 2);
    EXPECT_EQ(List.IndexOf("X"), -1);
    List.Delete(0);
    EXPECT_EQ(List.GetObjects(2), &Y);
    TStringList Copy;
    Copy.Assign(&List);
    EXPECT_TRUE(Copy.Equals(List));
    EXPECT_EQ(Copy.GetObjects(2), &Y);
    Copy.Assign(&Copy);
    EXPECT_EQ(Copy.GetCount(), 3);
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
    EXPECT_THROW(List.Insert(2, ""), EStringListError);
    EXPECT_THROW(List.Insert(-1, ""), EStringListError);
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
    const TStringList Copy(List);
    List.Add("c");
    List.EndUpdate();
    List.EndUpdate(); // one too many changes nothing
    List.SetText("1\n2\n3\n4");
    List.PutObject(0, nullptr);
    EXPECT_EQ(Log, "<1><3><4>");

    TStringList Other(Copy);
    int Changes = 0;
    Other.OnChange = [&](TObject*) { ++Changes; };
    Other.Add("x");
    EXPECT_EQ(Changes, 1) << "a copy made inside a bracket has no open bracket";
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
