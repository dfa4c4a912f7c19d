// The text form of a tree: a header, then one line per item, its depth as leading tabs. A line is a comma-text record:
// the class, then "Name=Value" for properties and "Name+=Text" for each text of a list ("Name+" declares the list).
// A run of placeholders is a line "*" and their number. With captions only, a line is the caption alone. Line breaks,
// NULs and backslashes in texts are written \n, \r, \0 and \\.
#include "host/base/Errors.h"
#include "host/base/Numbers.h"
#include "host/base/Strings.h"
#include "host/base/Texts.h"
#include "treecoll/TreeProperties.h"

#include <charconv>

namespace quill {

namespace {

constexpr std::string_view FullHeader = "TreeCollection:1";
constexpr std::string_view CaptionHeader = "TreeCollection:1,Captions";

std::string Escaped(std::string_view Text) {
    std::string Result;
    for (const char C : Text) {
        switch (C) {
        case '\\':
            Result += "\\\\";
            break;
        case '\n':
            Result += "\\n";
            break;
        case '\r':
            Result += "\\r";
            break;
        case '\0':
            Result += "\\0";
            break;
        default:
            Result += C;
        }
    }
    return Result;
}

std::string Unescaped(std::string_view Text) {
    std::string Result;
    for (std::size_t i = 0; i < Text.size(); ++i) {
        const bool Escape = Text[i] == '\\' && i + 1 < Text.size();
        const char C = Escape ? Text[++i] : Text[i];
        Result += !Escape ? C : C == 'n' ? '\n' : C == 'r' ? '\r' : C == '0' ? '\0' : C;
    }
    return Result;
}

void AppendRecord(std::string& Out, const TTreeCollection& Item, bool WithProperties) {
    if (!WithProperties) {
        AppendCommaTextItem(Out, Escaped(Item.GetCaptionView()), true);
        return;
    }
    AppendCommaTextItem(Out, Item.ClassName(), false);
    TTreePropertyAccess::VisitStored(Item, [&Out](std::string_view Name, const TStreamValue& Value) {
        const auto Append = [&Out, Name](std::string_view Between, std::string_view Text) {
            Out += ',';
            AppendCommaTextItem(Out, std::string(Name).append(Between).append(Escaped(Text)), false);
        };
        switch (Value.Kind) {
        case TStreamValue::Ordinal:
            Append("=", std::to_string(Value.Number));
            break;
        case TStreamValue::Text:
            Append("=", Value.String);
            break;
        case TStreamValue::List:
            Append("+", {});
            for (const std::string& Text : Value.Items) Append("+=", Text);
        }
    });
}

class TTextReader {
public:
    TTextReader(TTreeCollection* Root, std::string_view Text) : FText(Text), FRoot(Root) {}

    void Read() {
        std::string_view Line;
        if (!NextLine(Line) || (Line != FullHeader && Line != CaptionHeader)) {
            throw EReadError(FormatTextInFull(SReadError, {"this is no saved tree"}));
        }
        const bool WithProperties = Line == FullHeader;
        TTreeBuilder Builder(FRoot);
        while (NextLine(Line)) {
            const std::size_t Tabs = std::min(Line.find_first_not_of('\t'), Line.size());
            Line.remove_prefix(Tabs);
            const int Level = static_cast<int>(Tabs);
            if (Level > Builder.GetDepth() || (Level == 0 && Builder.GetDepth() > 0)) {
                Fail("level " + std::to_string(Level) + " does not fit here");
            }
            while (Builder.GetDepth() > Level) Builder.Leave();
            if (WithProperties && Line.starts_with('*') && Level > 0) {
                ReadPlaceholders(Builder, Line.substr(1));
            } else if (WithProperties) {
                ReadRecord(Builder, Line);
            } else {
                ReadCaption(Builder, Line);
            }
        }
        if (Builder.GetDepth() == 0) Fail("the tree is missing");
        Builder.Close();
    }

private:
    [[noreturn]] void Fail(const std::string& Reason) const {
        throw EReadError(FormatTextInFull(SReadError, {"line " + std::to_string(FLineNo) + ": " + Reason}));
    }
    bool NextLine(std::string_view& Line) {
        ++FLineNo;
        return NextTextLine(FText, FPos, Line);
    }
    void ReadPlaceholders(TTreeBuilder& Builder, std::string_view Number) const {
        int Count = 0;
        if (!TryDecimal(Number, Count) || Count <= 0 || Count > 65536) {
            Fail(FormatText("\"%s\" is no number of placeholders", {Number}));
        }
        Builder.AddPlaceholders(Count);
    }
    void ReadCaption(TTreeBuilder& Builder, std::string_view Line) const {
        std::string Buffer;
        std::string_view Item;
        std::size_t Pos = 0;
        if (!NextCommaTextItem(Line, Pos, Buffer, Item)) Item = {};
        const std::string Caption = Unescaped(Item);
        // The default class of the collection serves for all.
        if (!Builder.Enter({})) Fail("the collection has no default class");
        if (TTreeCollection* const Object = Builder.Current()) Object->SetCaption(Caption);
    }
    void ReadRecord(TTreeBuilder& Builder, std::string_view Line) const {
        std::string Buffer;
        std::string_view Field;
        std::size_t Pos = 0;
        if (!NextCommaTextItem(Line, Pos, Buffer, Field)) Fail("the class is missing");
        const std::string ClassName(Field);
        if (!Builder.Enter(ClassName)) Fail(FormatText("the class \"%s\" is not registered", {ClassName}));
        TTreeItemReader Item(Builder.Current());
        std::string ListName;
        TStreamValue List;
        List.Kind = TStreamValue::List;
        while (NextCommaTextItem(Line, Pos, Buffer, Field)) {
            const std::size_t Equal = Field.find('=');
            if (Equal == std::string_view::npos && Field.ends_with('+')) {
                SetList(Item, ListName, List);
                ListName = Field.substr(0, Field.size() - 1);
                List.Items.clear();
                continue;
            }
            if (Equal == std::string_view::npos) Fail(FormatText("\"%s\" is no property", {Field}));
            const std::string_view Name = Field.substr(0, Equal);
            if (Name.ends_with('+')) {
                if (Name.substr(0, Name.size() - 1) != ListName) Fail("a text of no list");
                List.Items.push_back(Unescaped(Field.substr(Equal + 1)));
                continue;
            }
            SetProperty(Item, Builder.Current(), Name, Field.substr(Equal + 1));
        }
        SetList(Item, ListName, List);
        Item.Finish();
    }
    static void SetList(TTreeItemReader& Item, const std::string& Name, const TStreamValue& List) {
        // A list is no number, which alone can be refused.
        if (!Name.empty()) static_cast<void>(Item.Set(Name, List));
    }
    void SetProperty(TTreeItemReader& Item, const TTreeCollection* Object, std::string_view Name,
                     std::string_view Text) const {
        if (!Object) return;
        const TPropertyInfo* const Property = TTreePropertyAccess::Find(*Object, Name);
        if (!Property) return;
        TStreamValue Value;
        if (Property->Kind == TPropertyKind::String) {
            Value.Kind = TStreamValue::Text;
            Value.String = Unescaped(Text);
        } else {
            const auto Parsed = std::from_chars(Text.data(), Text.data() + Text.size(), Value.Number);
            if (Text.empty() || Parsed.ec != std::errc() || Parsed.ptr != Text.data() + Text.size()) {
                Fail(FormatText(SInvalidInteger, {Text}) + " (" + std::string(Name) + ")");
            }
        }
        if (!Item.Set(Name, Value)) Fail(FormatText("%s cannot be %s", {Name, Text}));
    }

    std::string_view FText;
    std::size_t FPos = 0;
    int FLineNo = 0;
    TTreeCollection* FRoot;
};

} // namespace

std::string SaveTreeCollectionToText(TTreeCollection* Collection, bool WithProperties) {
    std::string Out(WithProperties ? FullHeader : CaptionHeader);
    Out += "\r\n";
    AppendRecord(Out, *Collection, WithProperties);
    Out += "\r\n";
    const TTreeCollection* Parent = Collection;
    TTreeSlot* Slot = Collection->IsList() ? Collection->FirstSlot() : nullptr;
    std::size_t Depth = 1;
    for (;;) {
        if (!Slot) {
            if (Parent == Collection) return Out;
            Slot = Parent->NextSlot();
            Parent = Parent->GetCollection();
            --Depth;
            continue;
        }
        Out.append(Depth, '\t');
        if (Slot->IsPlaceholder()) {
            int Run = 0;
            for (; Slot && Slot->IsPlaceholder() && Run < 65536; ++Run)
                Slot = Parent->GetChildList()->Next(Slot);
            if (WithProperties) {
                Out.append("*").append(std::to_string(Run)).append("\r\n");
            } else {
                Out.resize(Out.size() - Depth);
            }
            continue;
        }
        const auto* const Item = static_cast<TTreeCollection*>(Slot);
        AppendRecord(Out, *Item, WithProperties);
        Out += "\r\n";
        Parent = Item;
        Slot = Item->IsList() ? Item->FirstSlot() : nullptr;
        ++Depth;
    }
}

void LoadTreeCollectionFromText(TTreeCollection* Collection, const std::string& Text) {
    TTextReader(Collection, Text).Read();
}

} // namespace quill
