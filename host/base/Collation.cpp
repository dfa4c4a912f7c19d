#include "host/base/Collation.h"

#include "host/base/CaseFold.inc"
#include "host/base/Utf8.h"

#include <algorithm>
#include <clocale>
#include <cstring>

namespace quill {

namespace {

bool IsDigit(char C) { return C >= '0' && C <= '9'; }

// The end of the run of digits at Pos.
std::size_t DigitsEnd(std::string_view Text, std::size_t Pos) {
    while (Pos < Text.size() && IsDigit(Text[Pos])) ++Pos;
    return Pos;
}

// The first digit of [Pos, End) that counts: leading zeros do not, the last digit always does.
std::size_t SignificantDigit(std::string_view Text, std::size_t Pos, std::size_t End) {
    while (Pos + 1 < End && Text[Pos] == '0') ++Pos;
    return Pos;
}

// Copies Text with each run of digits preceded by its length, so that any collation that orders the ten digits
// orders the runs by value. The length is written with a digit that counts its own digits before it: "7" becomes
// "117", a run of twelve digits starts with "212". Leading zeros are left out; tells whether there were any.
// EscapeNul makes room for a mark below NUL (see NaturalBytes).
bool AppendCountedDigits(std::string& Out, std::string_view Text, bool EscapeNul) {
    bool LeadingZeros = false;
    for (std::size_t Pos = 0; Pos < Text.size();) {
        const char C = Text[Pos];
        if (!IsDigit(C)) {
            Out += C;
            if (C == '\0' && EscapeNul) Out += '\1';
            ++Pos;
            continue;
        }
        const std::size_t End = DigitsEnd(Text, Pos);
        const std::size_t First = SignificantDigit(Text, Pos, End);
        LeadingZeros |= First > Pos;
        const std::size_t Length = End - First;
        if (Length < 10) {
            Out += '1';
            Out += static_cast<char>('0' + Length);
        } else {
            const std::string LengthText = std::to_string(Length);
            Out += static_cast<char>('0' + LengthText.size());
            Out += LengthText;
        }
        Out.append(Text, First, Length);
        Pos = End;
    }
    return LeadingZeros;
}

// The natural key of the C locale. Texts that differ in leading zeros only are told apart at the very end, behind
// two NULs, a sequence that NULs of the text cannot form because they are escaped.
void AppendNaturalBytes(std::string& Out, std::string_view Text) {
    if (!AppendCountedDigits(Out, Text, true)) return;
    Out.append(2, '\0');
    Out += Text;
}

// The locale's sort key of Piece, which holds no NUL; the key holds none either.
void AppendTransformed(std::string& Out, const char* Piece, std::size_t Length) {
    // strxfrm works a second time when the room does not suffice; four levels of weights rarely take more.
    std::size_t Room = 8 * Length + 32;
    const std::size_t Start = Out.size();
    for (;;) {
        Out.resize(Start + Room);
        const std::size_t Needed = std::strxfrm(Out.data() + Start, Piece, Room);
        if (Needed < Room) {
            Out.resize(Start + Needed);
            return;
        }
        Room = Needed + 1;
    }
}

// The keys of the pieces between NULs, each with a mark that sorts below any continuation: a text that ends first
// comes first.
void AppendTransformedPieces(std::string& Out, const std::string& Text) {
    for (std::size_t Pos = 0;;) {
        const std::size_t Length = std::strlen(Text.c_str() + Pos);
        AppendTransformed(Out, Text.c_str() + Pos, Length);
        Pos += Length;
        Out += '\0';
        if (Pos == Text.size()) break;
        Out += '\1';
        ++Pos;
    }
    Out += '\0';
}

// The locale's order of texts that may hold NULs. It compares keys: strcoll and strxfrm are not of one mind about
// characters without weight, such as control characters, and one order must hold for sorting and searching.
int ComparePieces(const std::string& A, const std::string& B) {
    thread_local std::string KeyA, KeyB;
    KeyA.clear();
    KeyB.clear();
    AppendTransformedPieces(KeyA, A);
    AppendTransformedPieces(KeyB, B);
    return KeyA.compare(KeyB);
}

int CompareNaturalBytes(std::string_view A, std::string_view B) {
    bool ZerosA = false, ZerosB = false;
    std::size_t PosA = 0, PosB = 0;
    while (PosA < A.size() && PosB < B.size()) {
        if (IsDigit(A[PosA]) && IsDigit(B[PosB])) {
            const std::size_t EndA = DigitsEnd(A, PosA);
            const std::size_t EndB = DigitsEnd(B, PosB);
            const std::size_t FirstA = SignificantDigit(A, PosA, EndA);
            const std::size_t FirstB = SignificantDigit(B, PosB, EndB);
            if (EndA - FirstA != EndB - FirstB) return EndA - FirstA < EndB - FirstB ? -1 : 1;
            if (const int Order = A.substr(FirstA, EndA - FirstA).compare(B.substr(FirstB, EndB - FirstB)))
                return Order;
            ZerosA |= FirstA > PosA;
            ZerosB |= FirstB > PosB;
            PosA = EndA;
            PosB = EndB;
        } else {
            if (A[PosA] != B[PosB])
                return static_cast<unsigned char>(A[PosA]) < static_cast<unsigned char>(B[PosB]) ? -1 : 1;
            ++PosA;
            ++PosB;
        }
    }
    if (PosA < A.size() || PosB < B.size()) return PosA < A.size() ? 1 : -1;
    if (ZerosA != ZerosB) return ZerosA ? 1 : -1;
    return A.compare(B);
}

char32_t FoldCase(char32_t C) {
    if (C < 0x80) return C >= 'A' && C <= 'Z' ? C + ('a' - 'A') : C;
    const auto* Range =
        std::upper_bound(std::begin(CaseFoldRanges), std::end(CaseFoldRanges), C,
                         [](char32_t Value, const TCaseFoldRange& R) { return Value <= R.Last; });
    if (Range == std::end(CaseFoldRanges) || C < Range->First || (C - Range->First) % Range->Step != 0)
        return C;
    return static_cast<char32_t>(static_cast<std::int32_t>(C) + Range->Delta);
}

} // namespace

bool CollationIsBytewise() {
    const char* Name = std::setlocale(LC_COLLATE, nullptr);
    // "C.UTF-8" and its spellings order by code points, which is the order of the bytes.
    return !Name || std::strcmp(Name, "POSIX") == 0 ||
           (Name[0] == 'C' && (Name[1] == '\0' || Name[1] == '.'));
}

int CompareTextLocale(const std::string& A, const std::string& B) {
    if (!CollationIsBytewise())
        if (const int Order = ComparePieces(A, B)) return Order;
    return A.compare(B);
}

void AppendCollationKey(std::string& Out, std::string_view Text) {
    if (!CollationIsBytewise()) AppendTransformedPieces(Out, std::string(Text));
    Out += Text;
}

std::string CollationKey(std::string_view Text) {
    std::string Key;
    AppendCollationKey(Key, Text);
    return Key;
}

void AppendNaturalCollationKey(std::string& Out, std::string_view Text) {
    if (!CollationIsBytewise()) {
        std::string Counted;
        AppendCountedDigits(Counted, Text, false);
        AppendTransformedPieces(Out, Counted);
    }
    AppendNaturalBytes(Out, Text);
}

std::string NaturalCollationKey(std::string_view Text) {
    std::string Key;
    Key.reserve(Text.size() + 4);
    AppendNaturalCollationKey(Key, Text);
    return Key;
}

int CompareTextNatural(const std::string& A, const std::string& B) {
    if (!CollationIsBytewise()) {
        std::string CountedA, CountedB;
        AppendCountedDigits(CountedA, A, false);
        AppendCountedDigits(CountedB, B, false);
        if (const int Order = ComparePieces(CountedA, CountedB)) return Order;
    }
    return CompareNaturalBytes(A, B);
}

bool StartsTextIgnoringCase(std::string_view Text, std::string_view Prefix) {
    std::size_t TextPos = 0;
    for (std::size_t PrefixPos = 0; PrefixPos < Prefix.size();) {
        if (TextPos == Text.size()) return false;
        if (FoldCase(DecodeUtf8(Prefix, PrefixPos)) != FoldCase(DecodeUtf8(Text, TextPos))) return false;
    }
    return true;
}

} // namespace quill
