#include "DirectoryFiller.h"

#include "../common/FileLook.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace quill::examples {

namespace {

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
    if (Node) Reread(Node, Node->GetExpanded());
}

void TDirectoryFiller::Reread(TFlyNode* Node, bool Expand) {
    FTree->GetItems()->BeginUpdate();
    Node->Collapse(false);
    Node->DeleteChildren();
    Node->SetHasChildren(true);
    if (Expand) Node->Expand(false);
    FTree->GetItems()->EndUpdate();
    FTree->SetSelection(Node);
}

void TDirectoryFiller::ShowNewEntries(const std::string& Path) {
    TFlyNode* Node = FTree->GetItems()->GetFirstNode();
    while (Node) {
        const std::string Here = PathOf(Node);
        if (Here == Path) {
            Reread(Node, true);
            return;
        }
        Node = Path.starts_with(JoinPath(Here, {})) ? Node->GetFirstChild() : Node->GetNextSibling();
    }
}

// A folder that is open or closed has its own pictures.
bool TDirectoryFiller::IsDirectory(TFlyNode* Node) {
    return Node->GetImageIndex() == picFolder || Node->GetImageIndex() == picFolderOpen;
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
    const TFileType Type = FileTypeOf(Entry.Name);
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
