// Reading markup: the tags, the stacks that they work on, and where a tag begins that is one. For the renderer only.
#pragma once

#include "host/graphics/Graphics.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quill::markup {

// A font state that a tag saved; styles are not part of it.
struct TFontAttrib {
    std::string Name;
    TColor Color = clNone;
    int Height = 0;
};

// How text looks at one place.
struct TLook {
    std::string Name;
    int Height = 0;
    TFontStyles Style;
    TColor Color = clNone;
    TColor Background = clNone;

    bool operator==(const TLook&) const = default;
};

// The look where reading has come to, changed by tags.
class TTagReader {
public:
    // Fallback is the colour of text whose colour tag makes no sense.
    TTagReader(std::string_view Text, const TLook& Start, TColor Fallback)
        : FText(Text), FLook(Start), FFallback(Fallback) {}

    const TLook& GetLook() const { return FLook; }
    // Reads the tag whose "<" is at Pos, moves Pos behind it and applies it; false, and Pos stays, when it is no tag.
    bool Read(std::size_t& Pos);

private:
    static constexpr std::size_t NoWord = static_cast<std::size_t>(-1);

    bool StandsAt(std::size_t Pos, std::string_view Word) const;
    void FindEnd(std::size_t From);
    bool Apply(const std::string& Tag);
    void ApplyFont(const std::string& Tag);
    TColor ParseColor(std::string_view From) const;
    void PushFont();
    void PopFont();
    void PopBackground();

    std::string_view FText;
    TLook FLook;
    TColor FFallback;
    std::vector<TFontAttrib> FFonts;  // the last saved comes back first
    std::vector<TColor> FBackgrounds; // the first saved comes back first: required so
    std::size_t FFirstBackground = 0; // of those that have not come back
    // The end of the tag that was looked at last and where in it the last word stands that makes a tag of any text.
    std::size_t FEnd = 0;
    std::size_t FLastWord = NoWord;
    bool FEndKnown = false;
};

} // namespace quill::markup
