#include "host/graphics/ReadingOrder.h"

#include "host/base/Utf8.h"

#include <QChar>

#include <algorithm>

namespace quill::text {

namespace {

enum class TClass : unsigned char { Left, Right, Number, Separator, Terminator, Neutral };

struct TCharacter {
    std::size_t Pos;
    TClass Class;
    unsigned char Level = 0;
};

TClass ClassOf(char32_t C, TClass Before) {
    switch (QChar::direction(C)) {
    case QChar::DirL:
        return TClass::Left;
    case QChar::DirR:
    case QChar::DirAL:
        return TClass::Right;
    case QChar::DirEN:
    case QChar::DirAN:
        return TClass::Number;
    case QChar::DirES:
    case QChar::DirCS:
        return TClass::Separator;
    case QChar::DirET:
        return TClass::Terminator;
    case QChar::DirNSM:
        return Before; // a mark belongs to its letter
    default:
        return TClass::Neutral;
    }
}

std::vector<TCharacter> Classify(std::string_view Line, TClass Base) {
    std::vector<TCharacter> Result;
    Result.reserve(Line.size());
    TClass Before = Base;
    for (std::size_t Pos = 0; Pos < Line.size();) {
        const std::size_t From = Pos;
        Before = ClassOf(DecodeUtf8(Line, Pos), Before);
        Result.push_back({From, Before});
    }
    return Result;
}

// Separators between numbers and terminators beside them are part of the number; a number among letters that are
// read from left to right is one of them.
void ResolveNumbers(std::vector<TCharacter>& Line, TClass Base) {
    const auto IsNumber = [&Line](std::size_t I) { return Line[I].Class == TClass::Number; };
    for (std::size_t I = 1; I + 1 < Line.size(); ++I)
        if (Line[I].Class == TClass::Separator && IsNumber(I - 1) && IsNumber(I + 1))
            Line[I].Class = TClass::Number;
    for (std::size_t I = 1; I < Line.size(); ++I)
        if (Line[I].Class == TClass::Terminator && IsNumber(I - 1)) Line[I].Class = TClass::Number;
    for (std::size_t I = Line.size(); I-- > 1;)
        if (Line[I - 1].Class == TClass::Terminator && IsNumber(I)) Line[I - 1].Class = TClass::Number;
    TClass Strong = Base;
    for (TCharacter& C : Line) {
        if (C.Class == TClass::Left || C.Class == TClass::Right) Strong = C.Class;
        if (C.Class == TClass::Number && Strong == TClass::Left) C.Class = TClass::Left;
        if (C.Class == TClass::Separator || C.Class == TClass::Terminator) C.Class = TClass::Neutral;
    }
}

// What stands between two of one direction has that direction, other neutrals have the line's.
void ResolveNeutrals(std::vector<TCharacter>& Line, TClass Base) {
    const auto Side = [](TClass Class) { return Class == TClass::Number ? TClass::Right : Class; };
    for (std::size_t From = 0; From < Line.size(); ++From) {
        if (Line[From].Class != TClass::Neutral) continue;
        std::size_t To = From;
        while (To < Line.size() && Line[To].Class == TClass::Neutral) ++To;
        const TClass Before = From > 0 ? Side(Line[From - 1].Class) : Base;
        const TClass Behind = To < Line.size() ? Side(Line[To].Class) : Base;
        for (; From < To; ++From) Line[From].Class = Before == Behind ? Before : Base;
    }
}

} // namespace

bool HasRightToLeft(std::string_view Line) {
    // Such letters begin with U+0590, whose first byte is this one.
    constexpr auto FirstByte = static_cast<unsigned char>(0xD6);
    for (std::size_t Pos = 0; Pos < Line.size();) {
        if (static_cast<unsigned char>(Line[Pos]) < FirstByte) {
            ++Pos;
        } else if (ClassOf(DecodeUtf8(Line, Pos), TClass::Left) == TClass::Right) {
            return true;
        }
    }
    return false;
}

std::vector<TVisualRun> VisualRuns(std::string_view Line, std::span<const std::size_t> Borders,
                                   bool RightToLeft) {
    const TClass Base = RightToLeft ? TClass::Right : TClass::Left;
    std::vector<TCharacter> Characters = Classify(Line, Base);
    ResolveNumbers(Characters, Base);
    ResolveNeutrals(Characters, Base);
    std::vector<TVisualRun> Runs;
    std::vector<unsigned char> Levels;
    std::size_t Border = 0;
    for (const TCharacter& C : Characters) {
        unsigned char Level = 1;
        if (C.Class == TClass::Left) Level = RightToLeft ? 2 : 0;
        if (C.Class == TClass::Number) Level = 2;
        bool Splits = Runs.empty() || Levels.back() != Level;
        while (Border < Borders.size() && Borders[Border] <= C.Pos) {
            Splits = true;
            ++Border;
        }
        if (!Splits) continue;
        if (!Runs.empty()) Runs.back().To = C.Pos;
        Runs.push_back({C.Pos, Line.size(), Level % 2 == 1});
        Levels.push_back(Level);
    }
    // From the highest level down, what is at least that high is turned around.
    for (unsigned char Level = 2; Level >= 1; --Level) {
        for (std::size_t From = 0; From < Runs.size(); ++From) {
            std::size_t To = From;
            while (To < Runs.size() && Levels[To] >= Level) ++To;
            if (To == From) continue;
            const auto First = static_cast<std::ptrdiff_t>(From);
            const auto Last = static_cast<std::ptrdiff_t>(To);
            std::reverse(Runs.begin() + First, Runs.begin() + Last);
            std::reverse(Levels.begin() + First, Levels.begin() + Last);
            From = To;
        }
    }
    return Runs;
}

} // namespace quill::text
