#include "host/base/Utf8.h"

#include <cstdint>
#include <cstring>

namespace quill {

namespace {

// Length of the well-formed sequence at Text[Pos] with its value in CodePoint; 0 when it is malformed.
std::size_t Sequence(std::string_view Text, std::size_t Pos, char32_t& CodePoint) {
    const auto Byte = [&](std::size_t I) { return static_cast<unsigned char>(Text[Pos + I]); };
    const unsigned Lead = Byte(0);
    std::size_t Length = 0;
    unsigned Low = 0x80, High = 0xBF; // bounds of the second byte keep out overlong forms and surrogates
    if (Lead < 0x80) {
        CodePoint = Lead;
        return 1;
    }
    if (Lead >= 0xC2 && Lead <= 0xDF) {
        Length = 2;
    } else if (Lead >= 0xE0 && Lead <= 0xEF) {
        Length = 3;
        if (Lead == 0xE0) Low = 0xA0;
        if (Lead == 0xED) High = 0x9F;
    } else if (Lead >= 0xF0 && Lead <= 0xF4) {
        Length = 4;
        if (Lead == 0xF0) Low = 0x90;
        if (Lead == 0xF4) High = 0x8F;
    } else {
        return 0;
    }
    if (Text.size() - Pos < Length || Byte(1) < Low || Byte(1) > High) return 0;
    std::uint32_t Value = Lead & (0x7Fu >> Length);
    for (std::size_t I = 1; I < Length; ++I) {
        if ((Byte(I) & 0xC0) != 0x80) return 0;
        Value = Value << 6 | (Byte(I) & 0x3Fu);
    }
    CodePoint = Value;
    return Length;
}

// Number of leading ASCII bytes from Pos on, counted eight at a time; may stop early.
std::size_t AsciiRun(std::string_view Text, std::size_t Pos) {
    std::size_t End = Pos;
    while (Text.size() - End >= sizeof(std::uint64_t)) {
        std::uint64_t Word;
        std::memcpy(&Word, Text.data() + End, sizeof Word);
        if (Word & 0x8080808080808080u) break;
        End += sizeof Word;
    }
    return End - Pos;
}

} // namespace

char32_t DecodeUtf8(std::string_view Text, std::size_t& Pos) {
    char32_t CodePoint = ReplacementCharacter;
    const std::size_t Length = Sequence(Text, Pos, CodePoint);
    Pos += Length ? Length : 1;
    return CodePoint;
}

void AppendUtf8(std::string& Out, char32_t CodePoint) {
    std::uint32_t C = CodePoint;
    if (C > 0x10FFFF || (C >= 0xD800 && C <= 0xDFFF)) C = ReplacementCharacter;
    const auto Put = [&](std::uint32_t Byte) { Out += static_cast<char>(Byte); };
    if (C < 0x80) {
        Put(C);
    } else if (C < 0x800) {
        Put(0xC0 | C >> 6);
        Put(0x80 | (C & 0x3F));
    } else if (C < 0x10000) {
        Put(0xE0 | C >> 12);
        Put(0x80 | (C >> 6 & 0x3F));
        Put(0x80 | (C & 0x3F));
    } else {
        Put(0xF0 | C >> 18);
        Put(0x80 | (C >> 12 & 0x3F));
        Put(0x80 | (C >> 6 & 0x3F));
        Put(0x80 | (C & 0x3F));
    }
}

int Utf8Length(std::string_view Text) {
    std::size_t Count = 0;
    for (std::size_t Pos = 0; Pos < Text.size();) {
        const std::size_t Run = AsciiRun(Text, Pos);
        Count += Run;
        Pos += Run;
        if (Pos == Text.size()) break;
        DecodeUtf8(Text, Pos);
        ++Count;
    }
    return static_cast<int>(Count);
}

std::size_t Utf8Offset(std::string_view Text, int Index) {
    std::size_t Pos = 0;
    for (; Index > 0 && Pos < Text.size(); --Index) DecodeUtf8(Text, Pos);
    return Pos;
}

std::u32string Utf8ToUtf32(std::string_view Text) {
    std::u32string Result;
    Result.reserve(Text.size());
    for (std::size_t Pos = 0; Pos < Text.size();) Result += DecodeUtf8(Text, Pos);
    return Result;
}

std::string Utf32ToUtf8(std::u32string_view Text) {
    std::string Result;
    Result.reserve(Text.size());
    for (const char32_t C : Text) AppendUtf8(Result, C);
    return Result;
}

bool IsValidUtf8(std::string_view Text) {
    for (std::size_t Pos = 0; Pos < Text.size();) {
        Pos += AsciiRun(Text, Pos);
        if (Pos == Text.size()) break;
        char32_t CodePoint = 0;
        const std::size_t Length = Sequence(Text, Pos, CodePoint);
        if (Length == 0) return false;
        Pos += Length;
    }
    return true;
}

} // namespace quill
