// The rules of text and comma text, on views. These loops see every byte of a nodes file.
#include "host/base/Strings.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace quill {

namespace {

enum : std::uint8_t { Ordinary = 0, Blank = 1, Comma = 2, Quote = 4 };

constexpr std::array<std::uint8_t, 256> ByteClasses = [] {
    std::array<std::uint8_t, 256> Classes{};
    for (std::size_t C = 0; C <= ' '; ++C) Classes[C] = Blank;
    Classes[','] = Comma;
    Classes['"'] = Quote;
    return Classes;
}();

std::uint8_t ClassOf(char C) { return ByteClasses[static_cast<unsigned char>(C)]; }

std::size_t FindQuote(std::string_view Text, std::size_t Pos) {
    const void* Found = std::memchr(Text.data() + Pos, '"', Text.size() - Pos);
    return Found ? static_cast<std::size_t>(static_cast<const char*>(Found) - Text.data()) : Text.size();
}

// Reads the quoted item whose text starts at Pos and moves Pos behind its closing quote; without one the item
// reaches to the end of the text and false is returned.
bool QuotedItem(std::string_view Text, std::size_t& Pos, std::string& Buffer, std::string_view& Item) {
    const std::size_t Start = Pos;
    std::size_t End = FindQuote(Text, Start);
    const auto Doubled = [&] { return End + 1 < Text.size() && Text[End + 1] == '"'; };
    if (!Doubled()) {
        Item = Text.substr(Start, End - Start);
        Pos = End + 1;
        return End < Text.size();
    }
    Buffer.assign(Text.substr(Start, End + 1 - Start));
    for (;;) {
        const std::size_t Next = End + 2;
        End = FindQuote(Text, Next);
        if (!Doubled()) {
            Buffer.append(Text.substr(Next, End - Next));
            Item = Buffer;
            Pos = End + 1;
            return End < Text.size();
        }
        Buffer.append(Text.substr(Next, End + 1 - Next));
    }
}

std::size_t SkipBlanks(std::string_view Text, std::size_t Pos) {
    while (Pos < Text.size() && ClassOf(Text[Pos]) == Blank) ++Pos;
    return Pos;
}

constexpr std::uint64_t EachByte(unsigned char Byte) { return 0x0101010101010101u * Byte; }

// A word whose lowest set bit is the top bit of the first byte of Word (in memory order) that equals Byte.
constexpr std::uint64_t Matches(std::uint64_t Word, unsigned char Byte) {
    const std::uint64_t Difference = Word ^ EachByte(Byte);
    return (Difference - EachByte(0x01)) & ~Difference & EachByte(0x80);
}

// Position of the first carriage return or line feed from Pos on. One search for both: looking for one of them
// alone would read to the end of a file that ends its lines with the other.
std::size_t FindLineEnd(std::string_view Text, std::size_t Pos) {
    if constexpr (std::endian::native == std::endian::little) {
        while (Text.size() - Pos >= sizeof(std::uint64_t)) {
            std::uint64_t Word;
            std::memcpy(&Word, Text.data() + Pos, sizeof Word);
            if (const std::uint64_t Found = Matches(Word, '\n') | Matches(Word, '\r'))
                return Pos + static_cast<std::size_t>(std::countr_zero(Found)) / 8;
            Pos += sizeof Word;
        }
    }
    while (Pos < Text.size() && Text[Pos] != '\n' && Text[Pos] != '\r') ++Pos;
    return Pos;
}

} // namespace

void AppendCommaTextItem(std::string& Out, std::string_view Item, bool IsOnly) {
    bool Quoted = Item.empty() && IsOnly;
    for (const char C : Item) {
        if (ClassOf(C) == Ordinary) continue;
        Quoted = true;
        break;
    }
    if (!Quoted) {
        Out += Item;
        return;
    }
    Out += '"';
    for (std::size_t Pos = 0; Pos < Item.size();) {
        const std::size_t End = FindQuote(Item, Pos);
        Out += Item.substr(Pos, End - Pos);
        if (End < Item.size()) Out += "\"\"";
        Pos = End + 1;
    }
    Out += '"';
}

bool NextCommaTextItem(std::string_view Text, std::size_t& Pos, std::string& Buffer, std::string_view& Item) {
    const std::size_t Size = Text.size();
    if (Pos >= Size) {
        // A comma at the very end is followed by one more, empty item. The position past the end tells that it,
        // or a quoted item that was never closed, has been read.
        if (Pos > Size || Size == 0 || Text.back() != ',') return false;
        Item = {};
        Pos = Size + 1;
        return true;
    }
    Pos = SkipBlanks(Text, Pos);
    if (Pos == Size) return false;
    if (Text[Pos] == '"') {
        ++Pos;
        if (!QuotedItem(Text, Pos, Buffer, Item)) {
            Pos = Size + 1;
            return true;
        }
    } else {
        const std::size_t Start = Pos;
        while (Pos < Size && (ClassOf(Text[Pos]) & (Blank | Comma)) == 0) ++Pos;
        Item = Text.substr(Start, Pos - Start);
    }
    Pos = SkipBlanks(Text, Pos);
    if (Pos < Size && Text[Pos] == ',') ++Pos;
    return true;
}

bool NextTextLine(std::string_view Text, std::size_t& Pos, std::string_view& Line) {
    if (Pos >= Text.size()) return false;
    const std::size_t End = FindLineEnd(Text, Pos);
    Line = Text.substr(Pos, End - Pos);
    Pos = End + 1;
    if (End + 1 < Text.size() && Text[End] == '\r' && Text[End + 1] == '\n') ++Pos;
    return true;
}

} // namespace quill
