#include "FilesDrag.h"

#include "host/base/Errors.h"
#include "host/transfer/FileLists.h"

namespace quill::examples {

TFilesDropSource::TFilesDropSource(const TPaths& Paths) {
    std::string Lines;
    for (const std::string& Path : Paths) {
        if (AreFilePaths({Path})) Lines += Path + '\n';
    }
    FPaths.SetString(Lines);
}

// Not what the tree has put into the source, the texts of its cells.
HResult TFilesDropSource::DoGetData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium) {
    return FPaths.GetInternalData(FormatEtc, Medium);
}

TFilesDropTarget::TFilesDropTarget() { SetDragTypes({dtCopy}); }

bool TFilesDropTarget::HasValidFormats() { return !GetFiles().empty(); }

TPaths TFilesDropTarget::GetFiles() const {
    TPaths Paths;
    if (!GetDataWrapper()) return Paths;
    try {
        // Read from the other program once.
        if (const TStrings* Files = GetDataWrapper()->GetFileList()) {
            for (int Index = 0; Index < Files->GetCount(); ++Index) Paths.push_back(Files->Get(Index));
        }
    } catch (const Exception&) {
        // It offers files that it does not give.
    }
    return Paths;
}

void TFilesDropTarget::AskForLeave(TPoint Point, std::uint32_t& Effect) {
    if (Effect != DROPEFFECT_NONE && OnAllow && !OnAllow(GetFiles(), Point)) Effect = DROPEFFECT_NONE;
}

void TFilesDropTarget::DoDragOver(NV_IDataObject* Data, TShiftState ShiftState, TPoint Point,
                                  std::uint32_t& Effect) {
    const TComponentGuard Self(this);
    TOLEDropTarget::DoDragOver(Data, ShiftState, Point, Effect);
    if (!Self.IsGone()) AskForLeave(Point, Effect);
}

void TFilesDropTarget::DoDrop(NV_IDataObject* Data, TShiftState ShiftState, TPoint Point,
                              std::uint32_t& Effect) {
    const TComponentGuard Self(this);
    const TPaths Files = GetFiles();
    AskForLeave(Point, Effect);
    TOLEDropTarget::DoDrop(Data, ShiftState, Point, Effect);
    if (!Self.IsGone() && Effect != DROPEFFECT_NONE && OnFiles) OnFiles(Files, Point);
}

} // namespace quill::examples
