// The binary form of a tree.
//
//   stream   = "QTREE" version(1 byte) { block } empty-block
//   block    = size(2 bytes, low first) bytes      the bytes of all blocks together are the body
//   body     = item                                the collection itself
//   item     = class { property } 0 { item-record } End
//   record   = Item item | Placeholders count(number, at most 65536)
//   class    = number of a class named before, or the next number and the name
//   property = number of a property name * 4 + kind (a new number is followed by the name), value
//   number   = seven bits a byte, low first; values of ordinals zigzag-coded
//   text     = size(number) bytes;  list = count(number) { text }
//
// Blocks let a reader stop exactly behind the tree, on streams that cannot seek. Sizes and counts are never trusted:
// memory grows with the bytes that are really there.
#include "host/base/Errors.h"
#include "host/base/Streams.h"
#include "host/base/Texts.h"
#include "treecoll/TreeProperties.h"

#include <algorithm>
#include <filesystem>

namespace quill {

namespace {

constexpr std::string_view Magic = "QTREE";
constexpr unsigned char Version = 1;
constexpr std::size_t BlockSize = 0xFFFF;
constexpr int MaxRun = 65536;
enum TRecord : unsigned char { EndOfItems = 0, AnItem = 1, SomePlaceholders = 2 };

// --- writing --------------------------------------------------------------------------------------------------------

class TTreeWriter {
public:
    explicit TTreeWriter(TStream& Stream) : FStream(Stream) {
        FBlock.reserve(BlockSize + 2);
        FBlock.assign(2, '\0');
    }

    void Write(const TTreeCollection& Root) {
        FStream.WriteBuffer(Magic.data(), static_cast<std::int64_t>(Magic.size()));
        FStream.WriteBuffer(&Version, 1);
        PutHead(Root);
        if (Root.IsList()) PutItems(Root);
        PutByte(EndOfItems);
        Flush();
        Flush(); // the empty block
    }

private:
    // Everything below Root, iteratively: deep trees have no room on the stack.
    void PutItems(const TTreeCollection& Root) {
        const TTreeCollection* Parent = &Root;
        TTreeSlot* Slot = Root.FirstSlot();
        int Run = 0;
        for (;;) {
            if (Slot && Slot->IsPlaceholder()) {
                ++Run;
                Slot = Parent->GetChildList()->Next(Slot);
                if (Slot && Slot->IsPlaceholder() && Run < MaxRun) continue;
                PutByte(SomePlaceholders);
                PutNumber(static_cast<std::uint64_t>(Run));
                Run = 0;
                continue;
            }
            if (!Slot) {
                if (Parent == &Root) return;
                PutByte(EndOfItems);
                Slot = Parent->NextSlot();
                Parent = Parent->GetCollection();
                continue;
            }
            const auto* const Item = static_cast<TTreeCollection*>(Slot);
            PutByte(AnItem);
            PutHead(*Item);
            Parent = Item;
            Slot = Item->IsList() ? Item->FirstSlot() : nullptr;
        }
    }
    void PutHead(const TTreeCollection& Item) {
        PutName(FClasses, Item.ClassName(), 0, 0);
        TTreePropertyAccess::VisitStored(Item, [this](std::string_view Name, const TStreamValue& Value) {
            PutName(FNames, Name, 2, static_cast<unsigned>(Value.Kind));
            switch (Value.Kind) {
            case TStreamValue::Ordinal:
                PutNumber(static_cast<std::uint64_t>(Value.Number) << 1 ^
                          static_cast<std::uint64_t>(Value.Number >> 63));
                break;
            case TStreamValue::Text:
                PutText(Value.String);
                break;
            case TStreamValue::List:
                PutNumber(Value.Items.size());
                for (const std::string& Text : Value.Items) PutText(Text);
            }
        });
        PutByte(0);
    }
    // Numbers start at 1, so that 0 can end a list of properties.
    void PutName(std::vector<std::string>& Known, std::string_view Name, unsigned Shift, unsigned Tag) {
        const auto Found = std::find(Known.begin(), Known.end(), Name);
        const auto Number = static_cast<std::uint64_t>(Found - Known.begin()) + 1;
        PutNumber(Number << Shift | Tag);
        if (Found != Known.end()) return;
        Known.emplace_back(Name);
        PutText(Name);
    }
    void PutNumber(std::uint64_t Value) {
        for (; Value >= 0x80; Value >>= 7) PutByte(static_cast<unsigned char>(Value | 0x80));
        PutByte(static_cast<unsigned char>(Value));
    }
    void PutText(std::string_view Text) {
        PutNumber(Text.size());
        while (!Text.empty()) {
            if (FBlock.size() == BlockSize + 2) Flush();
            const std::size_t Now = std::min(Text.size(), BlockSize + 2 - FBlock.size());
            FBlock.append(Text.substr(0, Now));
            Text.remove_prefix(Now);
        }
    }
    void PutByte(unsigned char Byte) {
        if (FBlock.size() == BlockSize + 2) Flush();
        FBlock += static_cast<char>(Byte);
    }
    void Flush() {
        const std::size_t Size = FBlock.size() - 2;
        FBlock[0] = static_cast<char>(Size & 0xFF);
        FBlock[1] = static_cast<char>(Size >> 8);
        FStream.WriteBuffer(FBlock.data(), static_cast<std::int64_t>(FBlock.size()));
        FBlock.assign(2, '\0');
    }

    TStream& FStream;
    std::string FBlock;
    std::vector<std::string> FClasses;
    std::vector<std::string> FNames;
};

// --- reading --------------------------------------------------------------------------------------------------------

class TTreeReader {
public:
    explicit TTreeReader(TStream& Stream) : FStream(Stream) {}

    void Read(TTreeCollection* Root) {
        ReadMagic();
        TTreeBuilder Builder(Root);
        ReadItemHead(Builder);
        while (Builder.GetDepth() > 0) {
            switch (const unsigned char Record = GetByte()) {
            case EndOfItems:
                Builder.Leave();
                break;
            case AnItem:
                ReadItemHead(Builder);
                break;
            case SomePlaceholders: {
                const std::uint64_t Count = GetNumber();
                if (Count == 0 || Count > MaxRun) Fail("a run of " + std::to_string(Count) + " placeholders");
                Builder.AddPlaceholders(static_cast<int>(Count));
                break;
            }
            default:
                Fail("an unknown record (" + std::to_string(Record) + ")");
            }
        }
        if (FPos != FBlock.size() || NextBlock()) Fail("more data behind the end of the tree");
        Builder.Close();
    }

private:
    [[noreturn]] void Fail(const std::string& Reason) const {
        throw EReadError(
            FormatTextInFull(SReadError, {"damaged tree data at byte " + std::to_string(FOffset + FPos) +
                                          ", item " + std::to_string(FItems) + ": " + Reason}));
    }
    void ReadMagic() {
        std::string Start(Magic.size() + 1, '\0');
        std::size_t Got = 0;
        while (Got < Start.size()) {
            const auto Now = FStream.Read(Start.data() + Got, static_cast<std::int64_t>(Start.size() - Got));
            if (Now <= 0) break;
            Got += static_cast<std::size_t>(Now);
        }
        FOffset = Got;
        if (Got < Start.size() || Start.substr(0, Magic.size()) != Magic) {
            throw EReadError(FormatTextInFull(SReadError, {"this is no saved tree"}));
        }
        if (static_cast<unsigned char>(Start.back()) != Version) {
            throw EReadError(
                FormatTextInFull(SReadError, {"the tree was saved in version " +
                                              std::to_string(static_cast<unsigned char>(Start.back())) +
                                              " of the format; only version 1 is known"}));
        }
    }
    void ReadItemHead(TTreeBuilder& Builder) {
        ++FItems;
        const std::string& ClassName = GetName(FClasses, GetNumber());
        if (!Builder.Enter(ClassName)) Fail(FormatText("the class \"%s\" is not registered", {ClassName}));
        TTreeItemReader Item(Builder.Current());
        for (;;) {
            const std::uint64_t Tagged = GetNumber();
            if (Tagged == 0) break;
            const std::string& Name = GetName(FNames, Tagged >> 2);
            switch (Tagged & 3) {
            case TStreamValue::Ordinal: {
                const std::uint64_t Coded = GetNumber();
                FValue.Number = static_cast<std::int64_t>(Coded >> 1 ^ (~(Coded & 1) + 1));
                break;
            }
            case TStreamValue::Text:
                GetText(FValue.String);
                break;
            case TStreamValue::List: {
                const std::uint64_t Count = GetNumber();
                FValue.Items.clear();
                for (std::uint64_t i = 0; i < Count; ++i) GetText(FValue.Items.emplace_back());
                break;
            }
            default:
                Fail("an unknown kind of property");
            }
            FValue.Kind = static_cast<TStreamValue::TKind>(Tagged & 3);
            if (!Item.Set(Name, FValue))
                Fail(FormatText("%s cannot be %s", {Name, std::to_string(FValue.Number)}));
        }
        Item.Finish();
    }
    const std::string& GetName(std::vector<std::string>& Known, std::uint64_t Number) {
        if (Number == 0 || Number > Known.size() + 1)
            Fail("an unknown name (" + std::to_string(Number) + ")");
        if (Number == Known.size() + 1) {
            std::string Name;
            GetText(Name);
            Known.push_back(std::move(Name));
        }
        return Known[Number - 1];
    }
    std::uint64_t GetNumber() {
        std::uint64_t Value = 0;
        for (unsigned Shift = 0; Shift < 64; Shift += 7) {
            const unsigned char Byte = GetByte();
            Value |= std::uint64_t{Byte & 0x7Fu} << Shift;
            if (Byte < 0x80) return Value;
        }
        Fail("a number of too many digits");
    }
    void GetText(std::string& Text) {
        Text.clear();
        for (std::uint64_t Left = GetNumber(); Left > 0;) {
            if (FPos == FBlock.size() && !NextBlock()) Fail("the data end inside a text");
            const std::size_t Now =
                static_cast<std::size_t>(std::min<std::uint64_t>(Left, FBlock.size() - FPos));
            Text.append(FBlock, FPos, Now);
            FPos += Now;
            Left -= Now;
        }
    }
    unsigned char GetByte() {
        if (FPos == FBlock.size() && !NextBlock()) Fail("the data end too early");
        return static_cast<unsigned char>(FBlock[FPos++]);
    }
    // False at the empty block that ends the tree.
    bool NextBlock() {
        if (FEnded) return false;
        FOffset += FPos;
        FPos = 0;
        FBlock.clear();
        unsigned char Size[2];
        ReadExactly(Size, 2);
        FOffset += 2;
        FBlock.resize(static_cast<std::size_t>(Size[0] | Size[1] << 8));
        ReadExactly(FBlock.data(), FBlock.size());
        FEnded = FBlock.empty();
        return !FEnded;
    }
    void ReadExactly(void* Buffer, std::size_t Size) {
        auto* At = static_cast<char*>(Buffer);
        while (Size > 0) {
            const auto Now = FStream.Read(At, static_cast<std::int64_t>(Size));
            if (Now <= 0) Fail("the stream ends too early");
            At += Now;
            Size -= static_cast<std::size_t>(Now);
        }
    }

    TStream& FStream;
    std::string FBlock;
    std::size_t FPos = 0;
    std::size_t FOffset = 0;
    std::size_t FItems = 0;
    bool FEnded = false;
    std::vector<std::string> FClasses;
    std::vector<std::string> FNames;
    TStreamValue FValue;
};

} // namespace

void WriteCollectionToStream(TStream& Stream, TTreeCollection* Collection) {
    TTreeWriter(Stream).Write(*Collection);
}

void ReadCollectionFromStream(TStream& Stream, TTreeCollection* Collection) {
    TTreeReader(Stream).Read(Collection);
}

void SaveTreeCollectionToStream(TTreeCollection* Collection, TStream& Stream) {
    WriteCollectionToStream(Stream, Collection);
}

void LoadTreeCollectionFromStream(TTreeCollection* Collection, TStream& Stream) {
    ReadCollectionFromStream(Stream, Collection);
}

// --- files ----------------------------------------------------------------------------------------------------------

void SaveTreeCollectionToFile(TTreeCollection* Collection, const std::string& FileName) {
    TMemoryStream Content;
    WriteCollectionToStream(Content, Collection);
    const std::string& Bytes = Content.GetMemory();
    const auto WriteTo = [&Bytes](const std::string& Name) {
        TFileStream File(Name, fmCreate);
        File.WriteBuffer(Bytes.data(), static_cast<std::int64_t>(Bytes.size()));
        File.Flush();
    };
    // A file that is there is replaced in one step, where it stands (behind a link, for example), so that a full
    // disk does not cost its content. What is no plain file is written directly.
    namespace fs = std::filesystem;
    std::error_code Error;
    const fs::path Target = fs::canonical(FileName, Error);
    const bool Replace =
        !Error && fs::is_regular_file(Target, Error) && fs::hard_link_count(Target, Error) == 1;
    const std::string Beside = Target.string() + ".new";
    if (!Replace || fs::exists(Beside, Error)) {
        WriteTo(FileName);
        return;
    }
    try {
        WriteTo(Beside);
    } catch (const EFCreateError&) {
        // The folder takes no new file; the file itself may still be written.
        WriteTo(FileName);
        return;
    } catch (...) {
        fs::remove(Beside, Error);
        throw;
    }
    fs::permissions(Beside, fs::status(Target, Error).permissions(), Error);
    fs::rename(Beside, Target, Error);
    if (!Error) return;
    fs::remove(Beside, Error);
    WriteTo(FileName);
}

bool IsSavedTreeCollection(std::string_view Bytes) {
    return Bytes.starts_with(Magic) || Bytes.starts_with("TreeCollection:");
}

void LoadTreeCollectionFromFile(TTreeCollection* Collection, const std::string& FileName) {
    TMemoryStream Content;
    Content.LoadFromFile(FileName);
    try {
        if (Content.GetMemory().starts_with(Magic)) {
            ReadCollectionFromStream(Content, Collection);
        } else {
            LoadTreeCollectionFromText(Collection, Content.GetMemory());
        }
    } catch (const EReadError& Error) {
        throw EReadError("\"" + FileName + "\": " + Error.GetMessage());
    }
}

} // namespace quill
