#include "htmldraw/Markup.h"

#include "host/base/Errors.h"
#include "host/base/Numbers.h"
#include "host/graphics/Colors.h"

#include <algorithm>

namespace quill::markup {

namespace {

// ASCII only: tags are ASCII, and a face name in other letters keeps them.
char Upper(char C) { return C >= 'a' && C <= 'z' ? static_cast<char>(C - 'a' + 'A') : C; }

bool IsLineEnd(char C) { return C == '\n' || C == '\r'; }

// The longest tag that is compared as a whole.
constexpr std::size_t LongestExact = 5; // "/FONT"

// No font has a longer name; every tag that saves the font copies it.
constexpr std::size_t LongestFace = 255;

struct TStyleTag {
    std::string_view Name;
    TFontStyle Style;
};
constexpr TStyleTag StyleTags[] = {{"B", fsBold}, {"I", fsItalic}, {"U", fsUnderline}, {"S", fsStrikeOut}};

// "RRGGBB" after a "#".
TColor ColorFromRGB(std::string_view Digits) {
    const auto Value = static_cast<std::uint32_t>(StrToInt("$" + std::string(Digits)));
    return static_cast<TColor>((Value >> 16 & 0xFF) | (Value & 0xFF00) | (Value & 0xFF) << 16);
}

// What an attribute is set to: up to a space or a quotation mark, so that no value can hold a space.
std::string_view AttributeValue(std::string_view From) {
    From.remove_prefix(std::min(From.find('='), From.size()));
    if (!From.empty()) From.remove_prefix(1);
    while (From.starts_with(' ')) From.remove_prefix(1);
    if (From.starts_with('"')) From.remove_prefix(1);
    return From.substr(0, From.find_first_of(" \""));
}

} // namespace

// Whether Word stands at Pos, line ends inside it left out.
bool TTagReader::StandsAt(std::size_t Pos, std::string_view Word) const {
    for (; Pos < FEnd && !Word.empty(); ++Pos) {
        if (IsLineEnd(FText[Pos])) continue;
        if (Upper(FText[Pos]) != Word.front()) return false;
        Word.remove_prefix(1);
    }
    return Word.empty();
}

// Finds the ">" that ends a tag beginning at From, and the last place where one of the words begins that a tag may hold
// anywhere. All tags that begin before the same ">" share the result, so a text full of "<" is read once.
void TTagReader::FindEnd(std::size_t From) {
    if (FEndKnown && From <= FEnd) return;
    FEndKnown = true;
    FEnd = std::min(FText.find('>', From), FText.size());
    FLastWord = FEnd;
    while (FLastWord > From) {
        // Only letters begin a word, or runs of line ends would be passed over again from each of them.
        const char First = Upper(FText[--FLastWord]);
        if ((First == 'F' && StandsAt(FLastWord, "FONT ")) || (First == 'C' && StandsAt(FLastWord, "COLOR")))
            return;
    }
    FLastWord = NoWord;
}

bool TTagReader::Read(std::size_t& Pos) {
    const std::size_t Start = Pos + 1;
    FindEnd(Start);
    const bool HasWord = FLastWord != NoWord && FLastWord >= Start;
    std::string Tag;
    for (std::size_t I = Start; I < FEnd; ++I) {
        if (IsLineEnd(FText[I])) continue;
        Tag += Upper(FText[I]);
        if (!HasWord && Tag.size() > LongestExact) return false;
    }
    if (!Apply(Tag)) return false;
    Pos = std::min(FEnd + 1, FText.size());
    return true;
}

bool TTagReader::Apply(const std::string& Tag) {
    const auto Holds = [&Tag](std::string_view Word) { return Tag.find(Word) != std::string::npos; };
    if (Holds("FONT ")) {
        ApplyFont(Tag);
        return true;
    }
    for (const TStyleTag& Style : StyleTags) {
        if (Tag == Style.Name) {
            FLook.Style.Include(Style.Style);
            return true;
        }
        if (Tag.size() == 2 && Tag[0] == '/' && Tag[1] == Style.Name[0]) {
            FLook.Style.Exclude(Style.Style);
            return true;
        }
    }
    const auto After = [&Tag](std::string_view Word) {
        return std::string_view(Tag).substr(Tag.find(Word) + Word.size());
    };
    if (Tag == "/FONT") {
        PopFont();
    } else if (Holds("/BGCOLOR")) {
        PopBackground();
    } else if (Holds("BGCOLOR")) {
        FBackgrounds.push_back(FLook.Background);
        FLook.Background = ParseColor(After("BGCOLOR"));
    } else if (Holds("/COLOR")) {
        PopFont();
    } else if (Holds("COLOR")) {
        PushFont();
        FLook.Color = ParseColor(After("COLOR"));
    } else {
        return false;
    }
    return true;
}

void TTagReader::ApplyFont(const std::string& Tag) {
    const auto Find = [&Tag](std::string_view Attribute) { return Tag.find(Attribute); };
    const std::size_t Face = Find(" FACE");
    const std::size_t Size = Find(" SIZE");
    const std::size_t Color = Find(" COLOR");
    constexpr std::size_t None = std::string::npos;
    if (Face == None && Size == None && Color == None) return; // nothing is saved either
    const auto ValueAt = [&Tag](std::size_t At) { return AttributeValue(std::string_view(Tag).substr(At)); };
    PushFont();
    try {
        if (Face != None) FLook.Name = ValueAt(Face).substr(0, LongestFace);
        if (Size != None) FLook.Height = StrToInt(ValueAt(Size));
        if (Color == None) return;
        const std::string_view Value = ValueAt(Color);
        if (Value.starts_with('#')) {
            FLook.Color = ColorFromRGB(Value.substr(1));
        } else if (Value.starts_with('$') || Value.starts_with('C')) {
            FLook.Color = StringToColor(Value);
        }
    } catch (const EConvertError&) {
        // What came before the bad number stays.
    }
}

// The colour in what follows a colour tag's name, which is taken whole.
TColor TTagReader::ParseColor(std::string_view From) const {
    From.remove_prefix(std::min(From.find('='), From.size()));
    if (!From.empty()) From.remove_prefix(1);
    while (From.starts_with(' ')) From.remove_prefix(1);
    if (From.empty()) return clNone;
    try {
        if (From.starts_with('#')) return ColorFromRGB(From.substr(1));
        if (From.starts_with('$') || From.starts_with('C')) return StringToColor(From);
    } catch (const EConvertError&) {
        return FFallback;
    }
    return FFallback;
}

void TTagReader::PushFont() { FFonts.push_back({FLook.Name, FLook.Color, FLook.Height}); }

void TTagReader::PopFont() {
    if (FFonts.empty()) return;
    TFontAttrib& Saved = FFonts.back();
    FLook.Name = std::move(Saved.Name);
    FLook.Color = Saved.Color;
    FLook.Height = Saved.Height;
    FFonts.pop_back();
}

void TTagReader::PopBackground() {
    if (FFirstBackground < FBackgrounds.size()) FLook.Background = FBackgrounds[FFirstBackground++];
}

} // namespace quill::markup
