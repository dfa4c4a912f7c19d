#include "DirectoryFiller.h"

#include "../common/Look.h"

#include "host/base/Utf8.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <vector>

namespace quill::examples {

namespace {

struct TFileType {
    const char* Name;
    TPicture Picture;
};

constexpr TFileType PlainFile{"File", picDocument};

// The types that have a picture, by the ending of the name.
const std::unordered_map<std::string_view, TFileType>& FileTypes() {
    static const auto Types = [] {
        std::unordered_map<std::string_view, TFileType> Map;
        const auto Add = [&Map](TFileType Type, std::initializer_list<std::string_view> Endings) {
            for (const std::string_view Ending : Endings) Map.emplace(Ending, Type);
        };
        Add({"Picture", picPicture}, {"png", "jpg", "jpeg", "gif", "bmp", "svg", "svgz", "xpm", "ico", "webp",
                                      "tif", "tiff", "pcx", "ppm", "avif", "heic"});
        Add({"Archive", picArchive}, {"zip", "gz", "bz2", "xz", "zst", "tar", "tgz", "7z", "rar", "deb",
                                      "rpm", "jar", "lz", "lzma", "iso"});
        Add({"Program text", picCode},
            {"c",    "cc",  "cpp", "cxx", "h",    "hpp",   "py",   "js",  "ts",  "java", "rs",  "go",
             "rb",   "pl",  "pm",  "sh",  "bash", "cmake", "html", "css", "xml", "json", "yml", "yaml",
             "toml", "sql", "lua", "tcl", "el",   "vim",   "awk",  "m4",  "php", "qml"});
        Add({"Sound", picMusic}, {"mp3", "ogg", "oga", "wav", "flac", "m4a", "opus", "mid", "midi"});
        Add({"Text", picNote}, {"txt", "md", "rst", "log", "readme", "nodes", "csv", "tex", "ini", "conf"});
        return Map;
    }();
    return Types;
}

TFileType TypeOf(const std::string& Name) {
    const std::size_t Dot = Name.rfind('.');
    if (Dot == std::string::npos || Dot == 0) return PlainFile;
    std::string Ending = Name.substr(Dot + 1);
    std::transform(Ending.begin(), Ending.end(), Ending.begin(),
                   [](unsigned char Char) { return static_cast<char>(std::tolower(Char)); });
    const auto Found = FileTypes().find(Ending);
    return Found == FileTypes().end() ? PlainFile : Found->second;
}

// Control characters as the signs that stand for them: a line break would not survive in a nodes file.
std::string ShownName(const std::string& Name) {
    constexpr char32_t ControlPictures = 0x2400;
    constexpr char32_t PictureOfDelete = 0x2421;
    if (std::none_of(Name.begin(), Name.end(), [](unsigned char Char) { return Char < 32 || Char == 127; })) {
        return Name;
    }
    std::string Shown;
    for (const char Char : Name) {
        const auto Code = static_cast<unsigned char>(Char);
        if (Code < 32) {
            AppendUtf8(Shown, ControlPictures + Code);
        } else if (Code == 127) {
            AppendUtf8(Shown, PictureOfDelete);
        } else {
            Shown += Char;
        }
    }
    return Shown;
}

std::string SizeText(std::int64_t Bytes) {
    static const QLocale Locale;
    return Locale.formattedDataSize(Bytes, Bytes < 1024 ? 0 : 1, QLocale::DataSizeTraditionalFormat)
        .toStdString();
}

// ISO 8601 to the minute, in local time.
std::string DateText(std::time_t Time) {
    std::tm Parts{};
    std::array<char, 40> Text{};
    if (!::localtime_r(&Time, &Parts)) return {};
    return std::string(Text.data(), std::strftime(Text.data(), Text.size(), "%Y-%m-%d %H:%M", &Parts));
}

std::string KindText(const TDirectoryEntry& Entry, const TFileType& Type) {
    switch (Entry.Kind) {
    case ekDirectory:
        return Entry.Problem.empty() ? "Folder" : "Folder, cannot be read: " + Entry.Problem;
    case ekLink:
        return "Link to " + ShownName(Entry.LinkTarget);
    case ekSpecial:
        return "Device, pipe or socket";
    case ekFile:
        break;
    }
    return Type.Name;
}

} // namespace

const std::vector<std::string>& ExplorerCaptions() {
    static const std::vector<std::string> Captions{"Name", "Size", "Modified", "Kind"};
    return Captions;
}

TDirectoryFiller::TDirectoryFiller(TCustomQuillTree* Tree) : FTree(Tree) {
    Tree->SetColCount(ecCount);
    Tree->SetColAlignMent(ecSize, taRightJustify);
    Tree->SetShowImages(true);
    Tree->GetItems()->SetDefaultStateIndex(-1);
    Tree->GetItems()->Clear();
    Tree->OnExpanding = [this](TObject*, TFlyNode* Node, bool&) { Expanding(Node); };
    Tree->OnExpanded = [](TObject*, TFlyNode* Node) { Node->SetImageIndex(picFolderOpen); };
    Tree->OnCollapsed = [](TObject*, TFlyNode* Node) { Node->SetImageIndex(picFolder); };
    Tree->OnDeletion = [this](TObject*, TFlyNode* Node) { Forget(Node); };
}

void TDirectoryFiller::OpenRoot(const std::string& Path) {
    TDirectoryEntry Entry = ReadEntry(Path);
    if (Entry.Kind != ekDirectory) throw EDirectoryError("it is no folder");
    if (!Entry.Problem.empty()) throw EDirectoryError(Entry.Problem);
    FTree->GetItems()->Clear();
    TFlyNode* Root = FTree->GetItems()->Add(nullptr, std::string());
    Describe(Root, Entry);
    Root->Expand(false);
    FTree->SetSelection(Root);
}

void TDirectoryFiller::ExpandLevels(int Levels) {
    std::vector<TFlyNode*> Nodes;
    if (TFlyNode* Root = FTree->GetItems()->GetFirstNode()) Nodes.push_back(Root);
    FTree->GetItems()->BeginUpdate();
    for (; Levels > 0 && !Nodes.empty(); --Levels) {
        std::vector<TFlyNode*> Next;
        for (TFlyNode* Node : Nodes) {
            Node->Expand(false);
            for (TFlyNode* Child = Node->GetFirstChild(); Child; Child = Child->GetNextSibling()) {
                if (Child->GetHasChildren()) Next.push_back(Child);
            }
        }
        Nodes = std::move(Next);
    }
    FTree->GetItems()->EndUpdate();
    // Each expansion scrolls.
    FTree->SetTopRow(FTree->GetFixedRows());
}

void TDirectoryFiller::Refresh(TFlyNode* Node) {
    if (Node && !Node->GetHasChildren() && !IsFilled(Node)) Node = Node->GetParent();
    if (!Node) return;
    const bool WasExpanded = Node->GetExpanded();
    FTree->GetItems()->BeginUpdate();
    Node->Collapse(false);
    Node->DeleteChildren();
    Node->SetHasChildren(true);
    if (WasExpanded) Node->Expand(false);
    FTree->GetItems()->EndUpdate();
    FTree->SetSelection(Node);
}

std::string TDirectoryFiller::PathOf(TFlyNode* Node) const {
    std::vector<TFlyNode*> Way;
    for (; Node; Node = Node->GetParent()) Way.push_back(Node);
    std::string Path;
    for (auto Step = Way.rbegin(); Step != Way.rend(); ++Step) {
        const auto Real = FRealNames.find(*Step);
        Path = JoinPath(Path, Real == FRealNames.end() ? (*Step)->GetText() : Real->second);
    }
    return Path;
}

// Reads the directory of a node, which has no children yet.
void TDirectoryFiller::Fill(TFlyNode* Node) {
    std::vector<TDirectoryEntry> Entries;
    try {
        Entries = ReadDirectory(PathOf(Node));
    } catch (const EDirectoryError& Error) {
        Node->SetHasChildren(false);
        Node->SetCell(ecKind, "Folder, cannot be read: " + Error.GetMessage());
        return;
    }
    TFlyNodes& Items = *FTree->GetItems();
    Items.BeginUpdate();
    for (const TDirectoryEntry& Entry : Entries) Describe(Items.AddChild(Node, std::string()), Entry);
    // It may have been emptied since it was looked into.
    Node->SetHasChildren(!Entries.empty());
    Items.EndUpdate();
}

void TDirectoryFiller::Describe(TFlyNode* Node, const TDirectoryEntry& Entry) {
    ++FNodeCount;
    const bool IsDirectory = Entry.Kind == ekDirectory;
    const TFileType Type = TypeOf(Entry.Name);
    const std::string Name = ShownName(Entry.Name);
    if (Name != Entry.Name) FRealNames.emplace(Node, Entry.Name);
    const std::string Size = Entry.Kind == ekFile ? SizeText(Entry.Size) : std::string();
    const std::string Modified = DateText(Entry.Modified);
    const std::string Kind = KindText(Entry, Type);
    // The cell of the structure column stays empty: the node's text is shown there.
    const std::array<std::string_view, ecCount> Cells{std::string_view(), Size, Modified, Kind};
    Node->StoreTexts(Name, Cells);

    const TPicture Picture = IsDirectory ? picFolder : Entry.Kind == ekLink ? picLink : Type.Picture;
    Node->SetImageIndexField(Picture);
    Node->SetSelectedIndexField(IsDirectory ? picFolderOpen : Picture);
    if (Entry.HasEntries) Node->SetHasChildren(true);
}

void TDirectoryFiller::Expanding(TFlyNode* Node) {
    if (!IsFilled(Node)) Fill(Node);
}

void TDirectoryFiller::Forget(TFlyNode* Node) {
    --FNodeCount;
    FRealNames.erase(Node);
}

} // namespace quill::examples
