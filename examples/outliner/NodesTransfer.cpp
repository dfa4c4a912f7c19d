#include "NodesTransfer.h"

#include "ClipboardText.h"

#include "../common/FileLook.h"
#include "../common/OutlineFile.h"

#include "host/base/Errors.h"

#include <array>
#include <string_view>
#include <sys/stat.h>

namespace quill::examples {

namespace {

std::uint16_t NodesFormat() {
    static const std::uint16_t Format = RegisterClipboardFormatA(NodesMimeType);
    return Format;
}

HResult Serve(const std::string& Bytes, TNVStgMedium& Medium) {
    Medium = {};
    Medium.hGlobal = CopyToGlobal(Bytes);
    if (!Medium.hGlobal) return E_OUTOFMEMORY;
    Medium.tymed = TYMED_HGLOBAL;
    return S_OK;
}

TNVFormatEtc RequestFor(std::uint16_t Format) {
    TNVFormatEtc Request;
    Request.cfFormat = Format;
    Request.tymed = TYMED_HGLOBAL;
    return Request;
}

std::string BytesOf(NV_IDataObject& Data, std::uint16_t Format) {
    TScopedMedium Medium;
    if (!Succeeded(Data.GetData(RequestFor(Format), Medium)) || Medium.tymed != TYMED_HGLOBAL) return {};
    return std::string(GlobalBytes(Medium.hGlobal));
}

// Null for nodes text that is malformed or holds no nodes.
std::unique_ptr<TSubtrees> Read(const std::string& NodesText) {
    try {
        auto Subtrees = std::make_unique<TSubtrees>(NodesText);
        if (Subtrees->GetNodes().GetCount() > 0) return Subtrees;
    } catch (const Exception&) {
    }
    return nullptr;
}

void DescribeFile(TFlyNode& Node, const std::string& Path, const TFileFields& Fields) {
    const std::size_t End = Path.find_last_not_of('/');
    const std::string Full = Path.substr(0, End == std::string::npos ? Path.size() : End + 1);
    const std::size_t Slash = Full.rfind('/');
    const std::string Name = Slash + 1 < Full.size() ? Full.substr(Slash + 1) : Full;
    struct stat Status {};
    const bool Known = ::stat(Full.c_str(), &Status) == 0;
    const bool IsFolder = Known && S_ISDIR(Status.st_mode);

    const std::string Size = Known && S_ISREG(Status.st_mode) ? SizeText(Status.st_size) : std::string();
    const std::string Date = Known ? DateText(Status.st_mtime) : std::string();
    // The cell of the structure column stays empty: the node's text is shown there.
    std::vector<std::string_view> Cells(
        static_cast<std::size_t>(std::max(Fields.SizeColumn, Fields.DateColumn)) + 1);
    if (Fields.SizeColumn > 0) Cells[static_cast<std::size_t>(Fields.SizeColumn)] = Size;
    if (Fields.DateColumn > 0) Cells[static_cast<std::size_t>(Fields.DateColumn)] = Date;
    Node.StoreTexts(ShownName(Name), Cells, Cells.size() > 1);
    if (!Fields.Pictures) return;
    const TPicture Picture = IsFolder ? picFolder : FileTypeOf(Name).Picture;
    Node.SetImageIndexField(Picture);
    Node.SetSelectedIndexField(Picture);
}

} // namespace

// --- out ---------------------------------------------------------------------------------------------------------

TNodesOut NodesOut(std::span<TFlyNode* const> Roots) {
    TSubtrees Subtrees;
    for (TFlyNode* Root : Roots) Subtrees.Add(*Root);
    return {Subtrees.NodesText(DefaultOptions()), PlainTextOf(Subtrees.GetNodes())};
}

TNodesDropSource::TNodesDropSource(TNodesOut Nodes) : FNodes(std::move(Nodes)) {
    AddFormatEtc(NodesFormat(), nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL);
}

HResult TNodesDropSource::DoGetData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium) {
    if (FormatEtc.cfFormat == NodesFormat()) return Serve(FNodes.NodesText, Medium);
    if (FormatEtc.cfFormat == CF_TEXT) return Serve(FNodes.PlainText, Medium);
    if (FormatEtc.cfFormat == CF_HDROP) return DV_E_FORMATETC;
    return TOLEDropSource::DoGetData(FormatEtc, Medium);
}

// --- in ----------------------------------------------------------------------------------------------------------

TNodesIn NodesOfTexts(const std::string& NodesText, const std::string& Text) {
    for (const std::string* Candidate : {&NodesText, &Text}) {
        if (!LooksLikeNodesText(*Candidate)) continue;
        if (auto Subtrees = Read(*Candidate)) return {std::move(Subtrees), 0};
    }
    const TTextAsNodes Plain = NodesTextOfPlain(Text);
    if (Plain.NodesText.empty()) return {};
    return {Read(Plain.NodesText), Plain.CellsLeftOut};
}

std::unique_ptr<TSubtrees> NodesOfFiles(const std::vector<std::string>& Paths, const TFileFields& Fields) {
    auto Subtrees = std::make_unique<TSubtrees>();
    for (const std::string& Path : Paths) {
        if (!Path.empty()) DescribeFile(*Subtrees->GetNodes().Add(nullptr, {}), Path, Fields);
    }
    return Subtrees->GetNodes().GetCount() > 0 ? std::move(Subtrees) : nullptr;
}

TNodesIn NodesOfDrop(NV_IDataObject& Data, const TFileFields& Fields) {
    const std::string NodesText = BytesOf(Data, NodesFormat());
    if (LooksLikeNodesText(NodesText)) {
        if (auto Subtrees = Read(NodesText)) return {std::move(Subtrees), 0};
    }
    TOleObjectWrapper Wrapper(&Data);
    try {
        std::vector<std::string> Paths;
        if (const TStrings* Files = Wrapper.GetFileList()) {
            for (int Index = 0; Index < Files->GetCount(); ++Index) Paths.push_back(Files->Get(Index));
        }
        if (auto Subtrees = NodesOfFiles(Paths, Fields)) return {std::move(Subtrees), 0};
    } catch (const Exception&) {
        // It offers files that it does not give; there may be text.
    }
    return NodesOfTexts({}, Wrapper.GetString());
}

bool TNodesDropTarget::HasValidFormats() {
    NV_IDataObject* const Data = GetDataObject();
    if (!Data) return false;
    const bool HasNodes = Data->QueryGetData(RequestFor(NodesFormat())) == S_OK;
    const bool HasFiles = !HasNodes && Data->QueryGetData(RequestFor(CF_HDROP)) == S_OK;
    SetDragTypes(HasFiles ? TDragTypes{dtCopy, dtLink} : TDragTypes{dtCopy, dtMove});
    return HasNodes || TOLEDropTarget::HasValidFormats();
}

} // namespace quill::examples
