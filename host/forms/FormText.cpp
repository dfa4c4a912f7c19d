#include "host/forms/FormText.h"

#include "host/base/Texts.h"
#include "host/base/Utf8.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace quill {

namespace {

constexpr std::string_view Letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t Base64Line = 96;

bool IsDigit(char C) { return C >= '0' && C <= '9'; }
bool IsLetter(char C) { return (C >= 'A' && C <= 'Z') || (C >= 'a' && C <= 'z') || C == '_'; }
bool IsSpace(char C) { return C == ' ' || C == '\t' || C == '\r' || C == '\n'; }
int HexDigit(char C) {
    if (IsDigit(C)) return C - '0';
    if (C >= 'A' && C <= 'F') return C - 'A' + 10;
    return C >= 'a' && C <= 'f' ? C - 'a' + 10 : -1;
}

[[noreturn]] void Fail(int Line, const std::string& Reason, std::string_view Component = {},
                       std::string_view Property = {}) {
    throw EFormError(Line, std::string(Component), std::string(Property), Reason);
}

std::string Place(const std::string& Component, const std::string& Property) {
    return Component.empty() || Property.empty() ? Component + Property : Component + "." + Property;
}

} // namespace

EFormError::EFormError(int ALine, const std::string& AComponent, const std::string& AProperty,
                       const std::string& AReason)
    : EReadError(
          Place(AComponent, AProperty).empty()
              ? FormatTextInFull(SFormLine, {std::to_string(ALine), AReason})
              : FormatTextInFull(SFormPlace, {std::to_string(ALine), Place(AComponent, AProperty), AReason})),
      FLine(ALine), FComponent(AComponent), FProperty(AProperty), FReason(AReason) {}

// --- tokens -------------------------------------------------------------------------------------------------------

std::string TFormToken::Describe() const {
    if (Kind == End) return "the end of the form";
    if (Kind == Binary) return "binary data";
    return FormatText("\"%s\"", {Text});
}

void TFormLexer::SkipSpace() {
    for (; FPos < FText.size() && IsSpace(FText[FPos]); ++FPos)
        if (FText[FPos] == '\n') ++FLine;
}

TFormToken TFormLexer::Next() {
    SkipSpace();
    TFormToken Token;
    Token.Line = FLine;
    if (FPos == FText.size()) return Token;
    const std::size_t Start = FPos;
    const char First = FText[FPos++];
    const auto Skip = [this](auto Wanted) {
        while (FPos < FText.size() && Wanted(FText[FPos])) ++FPos;
    };
    if (IsLetter(First)) {
        Token.Kind = TFormToken::Identifier;
        const auto IsPart = [](char C) { return IsLetter(C) || IsDigit(C); };
        Skip(IsPart);
        while (FPos + 1 < FText.size() && FText[FPos] == '.' && IsPart(FText[FPos + 1])) {
            ++FPos;
            Skip(IsPart);
        }
    } else if (IsDigit(First) || First == '-' || First == '$') {
        Token.Kind = TFormToken::Integer;
        Skip([](char C) { return IsDigit(C) || IsLetter(C); });
    } else if (First == '"') {
        Token.Kind = TFormToken::String;
        for (;; ++FPos) {
            if (FPos >= FText.size() || FText[FPos] == '\n') Fail(FLine, std::string(SFormOpenString));
            if (FText[FPos] == '"') break;
            if (FText[FPos] == '\\' && FPos + 1 < FText.size() && FText[FPos + 1] != '\n') ++FPos;
        }
        ++FPos;
    } else if (First == '{') {
        Token.Kind = TFormToken::Binary;
        const std::size_t Close = FText.find('}', FPos);
        if (Close == std::string_view::npos) Fail(FLine, std::string(SFormOpenBinary));
        FLine += static_cast<int>(std::count(FText.begin() + static_cast<std::ptrdiff_t>(FPos),
                                             FText.begin() + static_cast<std::ptrdiff_t>(Close), '\n'));
        Token.Text = FText.substr(FPos, Close - FPos);
        FPos = Close + 1;
        return Token;
    } else {
        // A whole character, so that the message about it is one, too.
        Token.Kind = TFormToken::Symbol;
        FPos = Start;
        DecodeUtf8(FText, FPos);
    }
    Token.Text = FText.substr(Start, FPos - Start);
    return Token;
}

TFormToken TFormLexer::Peek() {
    const std::size_t Pos = FPos;
    const int Line = FLine;
    const TFormToken Token = Next();
    FPos = Pos;
    FLine = Line;
    return Token;
}

// --- the shape ----------------------------------------------------------------------------------------------------

namespace {

class TParser {
public:
    explicit TParser(std::string_view Text) : FText(Text), FLexer(Text) {}

    TFormObject Parse() {
        if (Word() != "quill" || Word() != "form") Fail(1, std::string(SFormNoForm));
        const TFormToken Version = FLexer.Next();
        if (Version.Kind != TFormToken::Integer) Fail(1, std::string(SFormNoForm));
        if (Version.Text != "1") Fail(Version.Line, FormatText(SFormVersion, {Version.Text}));
        TFormObject Root;
        const TFormToken Head = FLexer.Next();
        if (!IsObject(Head)) Unexpected("\"object\"", Head);
        ParseObject(Head, Root, 1);
        const TFormToken Rest = FLexer.Next();
        if (Rest.Kind != TFormToken::End) Fail(Rest.Line, std::string(SFormBehindEnd));
        return Root;
    }

private:
    static bool IsObject(const TFormToken& Token) {
        return Token.Kind == TFormToken::Identifier && (Token.Text == "object" || Token.Text == "inherited");
    }
    std::string_view Word() {
        const TFormToken Token = FLexer.Next();
        return Token.Kind == TFormToken::Identifier ? Token.Text : std::string_view();
    }
    [[noreturn]] void Unexpected(std::string_view Wanted, const TFormToken& Found,
                                 std::string_view Property = {}) const {
        Fail(Found.Line, FormatTextInFull(SFormUnexpected, {Wanted, Found.Describe()}), FComponent, Property);
    }
    TFormToken Identifier(std::string_view Wanted) {
        const TFormToken Token = FLexer.Next();
        if (Token.Kind != TFormToken::Identifier) Unexpected(Wanted, Token);
        return Token;
    }

    void ParseObject(const TFormToken& Head, TFormObject& Object, int Depth) {
        if (Depth > MaxFormDepth) Fail(Head.Line, FormatText(SFormTooDeep, {std::to_string(MaxFormDepth)}));
        if (++FCount > MaxFormComponents)
            Fail(Head.Line, FormatText(SFormTooMany, {std::to_string(MaxFormComponents)}));
        Object.Line = Head.Line;
        Object.Inherited = Head.Text == "inherited";
        Object.ClassName = Identifier("a name").Text;
        if (FLexer.Peek().IsSymbol(':')) {
            FLexer.Next();
            Object.Name = Object.ClassName;
            Object.ClassName = Identifier("a class").Text;
        }
        FComponent = Object.Name;
        for (;;) {
            const TFormToken Token = Identifier("a property, \"object\" or \"end\"");
            const bool IsProperty = FLexer.Peek().IsSymbol('=');
            if (!IsProperty && Token.Text == "end") return;
            if (!IsProperty && IsObject(Token)) {
                ParseObject(Token, Object.Children.emplace_back(), Depth + 1);
                FComponent = Object.Name;
                continue;
            }
            const TFormToken Equals = FLexer.Next();
            if (!Equals.IsSymbol('=')) Unexpected("\"=\"", Equals, Token.Text);
            if (!Object.Children.empty()) Unexpected("\"object\" or \"end\"", Token);
            Object.Properties.push_back({Token.Text, ParseValue(Token.Text), Token.Line});
        }
    }

    TFormValue ParseValue(std::string_view Property) {
        const TFormToken Token = FLexer.Next();
        TFormValue Value;
        Value.Line = Token.Line;
        Value.Raw = Token.Text;
        switch (Token.Kind) {
        case TFormToken::Integer:
            Value.Kind = TFormValue::Integer;
            return Value;
        case TFormToken::Identifier:
            Value.Kind = TFormValue::Identifier;
            return Value;
        case TFormToken::Binary:
            Value.Kind = TFormValue::Binary;
            return Value;
        case TFormToken::String: {
            Value.Kind = TFormValue::Text;
            const char* End = Token.Text.data() + Token.Text.size();
            while (FLexer.Peek().Kind == TFormToken::String) {
                const TFormToken Piece = FLexer.Next();
                End = Piece.Text.data() + Piece.Text.size();
            }
            Value.Raw = Between(Token.Text.data(), End);
            return Value;
        }
        default:
            break;
        }
        if (Token.IsSymbol('[') || Token.IsSymbol('(')) {
            const char Close = Token.IsSymbol('[') ? ']' : ')';
            Value.Kind = Close == ']' ? TFormValue::Set : TFormValue::List;
            const char* const Start = Token.Text.data() + 1;
            for (;;) {
                const TFormToken Item = FLexer.Next();
                if (Item.IsSymbol(Close)) {
                    Value.Raw = Between(Start, Item.Text.data());
                    return Value;
                }
                const bool Fits = Close == ']'
                                      ? Item.Kind == TFormToken::Identifier || Item.IsSymbol(',')
                                      : Item.Kind == TFormToken::Integer || Item.Kind == TFormToken::String ||
                                            Item.Kind == TFormToken::Identifier;
                if (!Fits) Unexpected(Close == ']' ? "\"]\"" : "\")\"", Item, Property);
            }
        }
        Unexpected("a value", Token, Property);
    }

    std::string_view Between(const char* Start, const char* End) const {
        return FText.substr(static_cast<std::size_t>(Start - FText.data()),
                            static_cast<std::size_t>(End - Start));
    }

    std::string_view FText;
    TFormLexer FLexer;
    std::string_view FComponent;
    int FCount = 0;
};

} // namespace

std::string TFormValue::Describe() const {
    switch (Kind) {
    case Set:
        return "a set";
    case List:
        return "a list";
    case Binary:
        return "binary data";
    case Text:
        return "a text";
    default:
        return FormatText("\"%s\"", {Raw});
    }
}

TFormObject ParseForm(std::string_view Text) {
    constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF"; // some text editors put it there
    if (Text.starts_with(ByteOrderMark)) Text.remove_prefix(ByteOrderMark.size());
    return TParser(Text).Parse();
}

// --- values -------------------------------------------------------------------------------------------------------

bool DecodeFormInteger(std::string_view Raw, std::int64_t& Value) {
    const int Base = Raw.starts_with('$') ? 16 : 10;
    if (Base == 16) Raw.remove_prefix(1);
    if (Base == 16 && Raw.starts_with('-')) return false;
    const auto Result = std::from_chars(Raw.data(), Raw.data() + Raw.size(), Value, Base);
    return Result.ec == std::errc() && Result.ptr == Raw.data() + Raw.size();
}

std::string DecodeFormString(std::string_view Raw) {
    std::string Text;
    TFormLexer Lexer(Raw);
    for (TFormToken Token = Lexer.Next(); Token.Kind == TFormToken::String; Token = Lexer.Next()) {
        const std::string_view Piece = Token.Text.substr(1, Token.Text.size() - 2);
        for (std::size_t I = 0; I < Piece.size(); ++I) {
            if (Piece[I] != '\\') {
                Text += Piece[I];
                continue;
            }
            const char Code = ++I < Piece.size() ? Piece[I] : '\0';
            const int High = Code == 'x' && I + 2 < Piece.size() ? HexDigit(Piece[I + 1]) : -1;
            const int Low = High >= 0 ? HexDigit(Piece[I + 2]) : -1;
            if (Code == '\\' || Code == '"') {
                Text += Code;
            } else if (Code == 't') {
                Text += '\t';
            } else if (Code == 'r') {
                Text += '\r';
            } else if (Code == 'n') {
                Text += '\n';
            } else if (Low >= 0) {
                Text += static_cast<char>(High * 16 + Low);
                I += 2;
            } else {
                throw EConvertError(FormatText(SFormEscape, {Piece.substr(I - 1, 2)}));
            }
        }
    }
    return Text;
}

void AppendFormString(std::string& Out, std::string_view Text, std::string_view Indent) {
    const bool Lines = Text.find('\n') != std::string_view::npos;
    const auto Open = [&] {
        if (Lines) Out.append("\n").append(Indent);
        Out += '"';
    };
    Open();
    for (std::size_t Pos = 0; Pos < Text.size();) {
        const std::size_t Start = Pos;
        const char32_t C = DecodeUtf8(Text, Pos);
        const std::string_view Bytes = Text.substr(Start, Pos - Start);
        if (C == '\\' || C == '"') {
            Out.append("\\").append(Bytes);
        } else if (C == '\t') {
            Out += "\\t";
        } else if (C == '\r') {
            Out += "\\r";
        } else if (C == '\n') {
            Out += "\\n";
            if (Pos == Text.size()) break;
            Out += '"';
            Open();
        } else if (C < 0x20 || C == 0x7F || (C == ReplacementCharacter && Bytes != "\xEF\xBF\xBD")) {
            for (const char Byte : Bytes) {
                constexpr std::string_view Digits = "0123456789ABCDEF";
                Out += "\\x";
                Out += Digits[static_cast<unsigned char>(Byte) >> 4];
                Out += Digits[static_cast<unsigned char>(Byte) & 15];
            }
        } else {
            Out += Bytes;
        }
    }
    Out += '"';
}

bool IsFormIdentifier(std::string_view Name) {
    TFormLexer Lexer(Name);
    try {
        const TFormToken Token = Lexer.Next();
        return Token.Kind == TFormToken::Identifier && Token.Text == Name;
    } catch (const EFormError&) {
        return false;
    }
}

bool DecodeBase64(std::string_view Raw, std::string& Bytes) {
    static const std::array<signed char, 256> Values = [] {
        std::array<signed char, 256> Table;
        Table.fill(-1);
        for (std::size_t I = 0; I < Letters.size(); ++I)
            Table[static_cast<unsigned char>(Letters[I])] = static_cast<signed char>(I);
        return Table;
    }();
    Bytes.clear();
    Bytes.reserve(Raw.size() / 4 * 3);
    unsigned Bits = 0;
    int Count = 0; // letters of the group
    int Padding = 0;
    for (const char C : Raw) {
        if (IsSpace(C)) continue;
        const int Value = Values[static_cast<unsigned char>(C)];
        if (C == '=') {
            ++Padding;
        } else if (Value < 0 || Padding > 0) {
            return false;
        }
        Bits = Bits << 6 | static_cast<unsigned>(C == '=' ? 0 : Value);
        if (++Count < 4) continue;
        if (Padding > 2) return false;
        for (int I = 0; I < 3 - Padding; ++I) Bytes += static_cast<char>(Bits >> (16 - 8 * I) & 0xFF);
        Bits = 0;
        Count = 0;
    }
    return Count == 0;
}

void AppendBase64(std::string& Out, std::string_view Bytes, std::string_view Indent) {
    std::size_t Column = Base64Line;
    for (std::size_t Pos = 0; Pos < Bytes.size(); Pos += 3) {
        if (Column >= Base64Line) {
            Out.append("\n").append(Indent);
            Column = 0;
        }
        unsigned Bits = 0;
        const std::size_t Count = std::min<std::size_t>(3, Bytes.size() - Pos);
        for (std::size_t I = 0; I < 3; ++I)
            Bits = Bits << 8 | (I < Count ? static_cast<unsigned char>(Bytes[Pos + I]) : 0u);
        for (std::size_t I = 0; I < 4; ++I) Out += I <= Count ? Letters[Bits >> (18 - 6 * I) & 63] : '=';
        Column += 4;
    }
}

} // namespace quill
