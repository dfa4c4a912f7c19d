// The data that every contender shows: unique texts, three columns, about 49 bytes a node.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

namespace quill::bench {

inline constexpr int Columns = 3;

// The texts of node Number, by column. The first letters run through the alphabet, so that a typed letter always has
// a match among the next 26 nodes in order of their numbers.
using TTexts = std::array<std::string, Columns>;

inline constexpr std::array<const char*, 26> Words{
    "Alder",   "Birch",    "Cedar", "Dogwood", "Elm",    "Fir",   "Ginkgo", "Hazel",  "Ironwood",
    "Juniper", "Kapok",    "Larch", "Maple",   "Nutmeg", "Oak",   "Pine",   "Quince", "Rowan",
    "Spruce",  "Tamarisk", "Ulmus", "Vine",    "Willow", "Xylia", "Yew",    "Zelkova"};

inline TTexts TextsOf(int Number) {
    const auto N = static_cast<unsigned>(Number);
    return {std::string(Words[N % Words.size()]) + " tree " + std::to_string(N),
            "planted " + std::to_string(1000000U + N * 7919U % 9000000U),
            "bed " + std::to_string(N % 97U) + " of " + std::to_string(N)};
}

// The texts of siblings in no order, by their first column.
inline TTexts ShuffledTextsOf(int Number) {
    // A bijection of the 32-bit numbers (a bit mixer), so that texts stay unique.
    auto N = static_cast<std::uint32_t>(Number) + 1U;
    N ^= N >> 16U;
    N *= 0x7FEB352DU;
    N ^= N >> 15U;
    N *= 0x846CA68BU;
    N ^= N >> 16U;
    TTexts Texts = TextsOf(Number);
    // Of equal length, so that orders that compare digits by value agree with those by bytes.
    std::string Digits = std::to_string(N);
    Digits.insert(0, 10 - Digits.size(), '0');
    Texts[0] = "item " + Digits;
    return Texts;
}

// 100 groups at the top, in them Groups groups of 99 leaves; fewer groups at the top in trees below 10,000 nodes.
struct TShape {
    static constexpr int Leaves = 99;
    int Tops = 100;
    int Groups = 100;
    int Nodes() const { return Tops * (1 + Groups * (1 + Leaves)); }
    // The shape that comes nearest to a number of nodes.
    static TShape Of(int Nodes) {
        const int Branches = std::max(1, Nodes / (1 + Leaves));
        const int Tops = std::min(100, Branches);
        return {Tops, Branches / Tops};
    }
};

} // namespace quill::bench
