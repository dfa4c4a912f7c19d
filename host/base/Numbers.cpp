#include "host/base/Numbers.h"

#include "host/base/Errors.h"
#include "host/base/Texts.h"

#include <charconv>
#include <cstdint>
#include <limits>

namespace quill {

namespace {

bool ParseInteger(std::string_view S, int& Value) {
    while (!S.empty() && S.front() == ' ') S.remove_prefix(1);
    bool Negative = false;
    if (!S.empty() && (S.front() == '-' || S.front() == '+')) {
        Negative = S.front() == '-';
        S.remove_prefix(1);
    }
    int Base = 10;
    if (S.starts_with('$')) {
        Base = 16;
        S.remove_prefix(1);
    } else if (S.starts_with("0x") || S.starts_with("0X")) {
        Base = 16;
        S.remove_prefix(2);
    }
    std::uint32_t Magnitude = 0;
    const char* End = S.data() + S.size();
    const auto [Stop, Error] = std::from_chars(S.data(), End, Magnitude, Base);
    if (Error != std::errc() || Stop != End) return false;
    // Hexadecimal digits spell the 32 bits themselves ("$FFFFFFFF" is -1); decimal ones a value.
    const std::uint32_t Limit =
        Base == 16 ? std::numeric_limits<std::uint32_t>::max() : 0x7FFFFFFFu + (Negative ? 1u : 0u);
    if (Magnitude > Limit) return false;
    Value = static_cast<int>(Negative ? 0u - Magnitude : Magnitude);
    return true;
}

} // namespace

int StrToInt(std::string_view S) {
    int Value = 0;
    if (!ParseInteger(S, Value)) throw EConvertError(FormatText(SInvalidInteger, {S}));
    return Value;
}

int StrToIntDef(std::string_view S, int Default) {
    int Value = Default;
    return ParseInteger(S, Value) ? Value : Default;
}

bool TryDecimal(std::string_view S, int& Value) {
    int Parsed = 0;
    const char* End = S.data() + S.size();
    const auto [Stop, Error] = std::from_chars(S.data(), End, Parsed);
    if (Error != std::errc() || Stop != End) return false;
    Value = Parsed;
    return true;
}

std::string IntToStr(long long Value) { return std::to_string(Value); }

void AppendInt(std::string& Out, int Value) {
    char Buffer[std::numeric_limits<int>::digits10 + 2];
    const auto Result = std::to_chars(Buffer, Buffer + sizeof Buffer, Value);
    Out.append(Buffer, Result.ptr);
}

} // namespace quill
