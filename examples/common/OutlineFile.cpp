#include "OutlineFile.h"

#include "host/base/Numbers.h"
#include "host/base/Strings.h"
#include "quilltree/HeadlessHost.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace quill::examples {

namespace {

constexpr std::string_view Header = "SaveOptions:";
constexpr std::uint32_t AllOptions = 0x7F;

[[noreturn]] void Fail(const std::string& FileName, const std::string& Reason) {
    throw EOutlineError("Cannot open \"" + FileName + "\": " + Reason);
}

// Opening a pipe would wait for its other end, and a device may never end.
void RequireOrdinaryFile(const std::string& FileName) {
    std::error_code Error;
    const auto Type = std::filesystem::status(FileName, Error).type();
    if (Type == std::filesystem::file_type::directory) Fail(FileName, "it is a folder");
    if (Type == std::filesystem::file_type::not_found) Fail(FileName, "there is no such file");
    if (Type == std::filesystem::file_type::none) Fail(FileName, Error.message());
    if (Type != std::filesystem::file_type::regular) Fail(FileName, "it is not an ordinary file");
}

int CountNodes(TFlyNodes& Nodes) {
    int Count = 0;
    for (TFlyNode* Node = Nodes.GetFirstNode(); Node; Node = Node->GetNext()) ++Count;
    return Count;
}

// The options in the first line, which has been loaded already and is therefore well-formed.
TSaveNodesOptions HeaderOptions(const std::string& Text) {
    std::size_t Pos = 0;
    std::string_view Line;
    if (!NextTextLine(Text, Pos, Line)) return DefaultOptions();
    if (Line.find(Header) == std::string_view::npos) return {tsnIncludeCells};
    Line.remove_prefix(std::min(Line.size(), Header.size()));
    return Line.empty() ? TSaveNodesOptions{} : OptionsOf(StrToInt(Line));
}

} // namespace

TSaveNodesOptions DefaultOptions() {
    return TSaveNodesOptions::FromBits(AllOptions) - TSaveNodesOptions{tsnIncludeUniqueTags};
}

TSaveNodesOptions FieldsInUse(TFlyNodes& Nodes) {
    TSaveNodesOptions Fields;
    const auto Use = [&Fields](bool Used, TSaveNodesOption Field) {
        if (Used) Fields.Include(Field);
    };
    for (TFlyNode* Node = Nodes.GetFirstNode(); Node; Node = Node->GetNext()) {
        Use(Node->GetImageIndex() != -1, tsnIncludeImageIndex);
        Use(Node->GetSelectedIndex() != -1, tsnIncludeSelectedIndex);
        Use(Node->GetStateIndex() != -1, tsnIncludeStateIndex);
        Use(Node->GetCellCount() > 1, tsnIncludeCells);
        Use(Node->GetHidden(), tsnIncludeHiddens);
    }
    return Fields;
}

int MaskOf(TSaveNodesOptions Options) { return static_cast<int>(Options.Bits() & AllOptions); }

TSaveNodesOptions OptionsOf(int Mask) {
    return TSaveNodesOptions::FromBits(static_cast<std::uint32_t>(Mask) & AllOptions);
}

TOutline ReadOutline(const std::string& FileName) {
    RequireOrdinaryFile(FileName);
    auto Bytes = std::make_unique<TMemoryStream>();
    try {
        Bytes->LoadFromFile(FileName);
    } catch (const Exception& Error) {
        throw EOutlineError(Error.GetMessage());
    }
    return ReadOutline(std::move(Bytes), FileName);
}

TOutline ReadOutline(std::unique_ptr<TMemoryStream> Bytes, const std::string& FileName) {
    TOutline Outline;
    Outline.Bytes = std::move(Bytes);
    THeadlessHost Host;
    TFlyNodes& Nodes = *Host.GetItems();
    try {
        LoadOutline(Outline, Nodes);
    } catch (const EQuillTreeError& Error) {
        // The message counts lines of nodes; editors count lines of the file. The nodes above the fault stand.
        const bool HasHeader =
            Outline.Bytes->GetMemory().find(Header) < Outline.Bytes->GetMemory().find('\n');
        Fail(FileName,
             "line " + IntToStr(CountNodes(Nodes) + (HasHeader ? 2 : 1)) + ": " + Error.GetMessage());
    } catch (const Exception& Error) {
        Fail(FileName, Error.GetMessage());
    } catch (const std::bad_alloc&) {
        Fail(FileName, "there is not enough memory");
    }

    Outline.Options = HeaderOptions(Outline.Bytes->GetMemory());
    for (TFlyNode* Node = Nodes.GetFirstNode(); Node; Node = Node->GetNext()) {
        ++Outline.NodeCount;
        Outline.ColumnCount = std::max(Outline.ColumnCount, Node->GetCellCount());
        Outline.HasTags = Outline.HasTags || Node->GetUniqueTagField() != -1;
    }
    Outline.HasTags = Outline.HasTags && Outline.Options.Contains(tsnIncludeUniqueTags);
    // Loading takes cells from any line; a save without the option would drop them.
    if (Outline.ColumnCount > 1) Outline.Options.Include(tsnIncludeCells);
    return Outline;
}

void LoadOutline(const TOutline& Outline, TFlyNodes& Nodes) {
    // A node for which the file names no picture or state has none.
    Nodes.SetDefaultImageIndex(-1);
    Nodes.SetDefaultSelectedIndex(-1);
    Nodes.SetDefaultStateIndex(-1);
    Outline.Bytes->SetPosition(0);
    Nodes.LoadNodesFromStream(*Outline.Bytes);
}

std::string OutlineText(TFlyNodes& Nodes, TSaveNodesOptions Options) {
    TMemoryStream Stream;
    Nodes.SaveNodesToStream(Stream, Options);
    return Stream.GetMemory();
}

void SaveOutline(const std::string& FileName, TFlyNodes& Nodes, TSaveNodesOptions Options) {
    TMemoryStream Stream;
    Nodes.SaveNodesToStream(Stream, Options);
    Stream.SaveToFile(FileName);
}

// --- captions ----------------------------------------------------------------------------------------------------

std::string CaptionsFileName(const std::string& FileName) {
    return std::filesystem::path(FileName).replace_extension(".columns").string();
}

std::vector<std::string> ReadCaptions(const std::string& FileName) {
    std::vector<std::string> Captions;
    const std::string Name = CaptionsFileName(FileName);
    std::error_code Ignored;
    if (Name == FileName || !std::filesystem::is_regular_file(Name, Ignored)) return Captions;
    try {
        TStringList Lines;
        Lines.LoadFromFile(Name);
        TStringList Items;
        if (Lines.GetCount() > 0) Items.SetCommaText(Lines[0]);
        for (int Index = 0; Index < Items.GetCount(); ++Index) Captions.push_back(Items[Index]);
    } catch (const Exception&) {
        // Captions are a convenience: an outline opens without them.
    }
    return Captions;
}

std::string CaptionOf(const std::vector<std::string>& Captions, int Column) {
    const auto Index = static_cast<std::size_t>(Column);
    if (Index < Captions.size() && !Captions[Index].empty()) return Captions[Index];
    return Column == 0 ? "Text" : "Column " + IntToStr(Column + 1);
}

void SaveCaptions(const std::string& FileName, const std::vector<std::string>& Captions) {
    const std::string Name = CaptionsFileName(FileName);
    std::error_code Ignored;
    if (Captions.empty() || Name == FileName || std::filesystem::exists(Name, Ignored)) return;
    TStringList Items;
    for (const std::string& Caption : Captions) Items.Add(Caption);
    TMemoryStream(Items.GetCommaText() + "\n").SaveToFile(Name);
}

} // namespace quill::examples
