#include "host/base/Texts.h"

#include "host/base/Utf8.h"

namespace quill {

namespace {

// What stays of a value that is too long: the end matters too, it often says where in a file the value stood.
constexpr int KeptEnd = 20;
constexpr int KeptStart = MaxMessageValue - KeptEnd - 1;
constexpr std::string_view Ellipsis = "\xE2\x80\xA6";
constexpr std::size_t MaxBytesPerCharacter = 4;

void AppendReadable(std::string& Out, std::string_view Value) {
    for (std::size_t Pos = 0; Pos < Value.size();) {
        const char32_t C = DecodeUtf8(Value, Pos);
        AppendUtf8(Out, C == 0 ? ReplacementCharacter : C);
    }
}

// The first byte of the last Count characters. Looks at a bounded stretch of the value only.
std::size_t TailStart(std::string_view Value, int Count) {
    std::size_t Pos = Value.size();
    while (Pos > 0 && Count > 0) {
        const std::size_t Lowest = Pos > MaxBytesPerCharacter ? Pos - MaxBytesPerCharacter : 0;
        std::size_t Start = Pos - 1;
        for (std::size_t Candidate = Lowest; Candidate < Pos; ++Candidate) {
            std::size_t End = Candidate;
            DecodeUtf8(Value.substr(0, Pos), End);
            if (End == Pos) {
                Start = Candidate;
                break;
            }
        }
        Pos = Start;
        --Count;
    }
    return Pos;
}

void AppendShortened(std::string& Out, std::string_view Value) {
    const std::size_t Limit = Utf8Offset(Value, MaxMessageValue);
    if (Limit == Value.size()) {
        AppendReadable(Out, Value);
        return;
    }
    AppendReadable(Out, Value.substr(0, Utf8Offset(Value, KeptStart)));
    Out += Ellipsis;
    AppendReadable(Out, Value.substr(TailStart(Value, KeptEnd)));
}

template <class TAppend>
std::string Format(std::string_view Pattern, std::initializer_list<std::string_view> Values, TAppend Append) {
    std::string Result;
    auto Value = Values.begin();
    for (std::size_t Pos = 0; Pos < Pattern.size();) {
        const std::size_t Place = Value == Values.end() ? std::string_view::npos : Pattern.find("%s", Pos);
        Result += Pattern.substr(Pos, Place == std::string_view::npos ? Place : Place - Pos);
        if (Place == std::string_view::npos) break;
        Append(Result, *Value++);
        Pos = Place + 2;
    }
    return Result;
}

} // namespace

std::string FormatText(std::string_view Pattern, std::initializer_list<std::string_view> Values) {
    return Format(Pattern, Values, AppendShortened);
}

std::string FormatTextInFull(std::string_view Pattern, std::initializer_list<std::string_view> Values) {
    return Format(Pattern, Values, AppendReadable);
}

} // namespace quill
