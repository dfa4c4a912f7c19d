// The text of forms: what a form stream looks like before anybody asks what it means.
//
//   form     = "quill" "form" 1 object
//   object   = ("object" | "inherited") [Name ":"] Class { property } { object } "end"
//   property = Name "=" value
//   value    = integer | text | identifier | set | list | binary
//   integer  = decimal digits with an optional "-", or "$" and hexadecimal digits
//   text     = quoted { quoted }              pieces that follow each other are one text
//   quoted   = '"' characters and escapes (\\ \" \t \r \n \xHH) '"'
//   set      = "[" [identifier { "," identifier }] "]"
//   list     = "(" { integer | text | identifier } ")"
//   binary   = "{" base64 "}"
//
// Names and identifiers are letters, digits and "_", in parts joined by ".". Bytes that are no UTF-8 stand as \xHH.
#pragma once

#include "host/base/Errors.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quill {

// How deep components may be nested in a form, and how many it may have. Far more than any window; they keep a damaged
// form from using up the stack or the memory.
inline constexpr int MaxFormDepth = 100;
inline constexpr int MaxFormComponents = 10'000;

// A fault in a form. The message says where it is; line, component and property stand apart as well.
class EFormError : public EReadError {
public:
    EFormError(int ALine, const std::string& AComponent, const std::string& AProperty,
               const std::string& AReason);
    // From 1.
    int GetLine() const { return FLine; }
    // Empty when the fault concerns no certain one.
    const std::string& GetComponent() const { return FComponent; }
    const std::string& GetProperty() const { return FProperty; }
    const std::string& GetReason() const { return FReason; }

private:
    int FLine;
    std::string FComponent;
    std::string FProperty;
    std::string FReason;
};

struct TFormToken {
    // Symbol: one of = : , [ ] ( ). Binary: what stands between braces.
    enum TKind { End, Identifier, Integer, String, Symbol, Binary };
    TKind Kind = End;
    std::string_view Text; // as it stands, a string with its quotes
    int Line = 1;
    bool IsSymbol(char C) const { return Kind == Symbol && Text[0] == C; }
    // For messages: a "word", or what it is.
    std::string Describe() const;
};

// Cuts a text into tokens; raises EFormError. The text must outlive it.
class TFormLexer {
public:
    explicit TFormLexer(std::string_view Text, int Line = 1) : FText(Text), FLine(Line) {}
    TFormToken Next();
    TFormToken Peek();

private:
    void SkipSpace();

    std::string_view FText;
    std::size_t FPos = 0;
    int FLine;
};

// A value as a view of the form's text, decoded when it is asked for.
struct TFormValue {
    enum TKind { Integer, Text, Identifier, Set, List, Binary };
    TKind Kind = Integer;
    std::string_view Raw; // sets, lists and binary data without their brackets
    int Line = 1;         // of its first character
    std::string Describe() const;
};

struct TFormProperty {
    std::string_view Name;
    TFormValue Value;
    int Line = 1;
};

struct TFormObject {
    std::string_view Name; // may be empty
    std::string_view ClassName;
    int Line = 1;
    // Properties that are not named keep their values instead of getting their defaults.
    bool Inherited = false;
    std::vector<TFormProperty> Properties;
    std::vector<TFormObject> Children;
};

// Reads a whole form; every fault of its shape is found here. The result refers to Text.
TFormObject ParseForm(std::string_view Text);

// Decoding. Faults are told by false, or by a text in Error.
bool DecodeFormInteger(std::string_view Raw, std::int64_t& Value);
// Raw is one quoted piece or several; Line is that of the first.
std::string DecodeFormString(std::string_view Raw);
bool DecodeBase64(std::string_view Raw, std::string& Bytes);

// Encoding.
void AppendBase64(std::string& Out, std::string_view Bytes, std::string_view Indent);
// A text in quotes; one with line breaks becomes a piece for each line, each on a line of its own after Indent.
void AppendFormString(std::string& Out, std::string_view Text, std::string_view Indent);
// Whether Name can stand in a form as it is.
bool IsFormIdentifier(std::string_view Name);

} // namespace quill
