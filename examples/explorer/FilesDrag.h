// Dragging files out of a tree and into it.
#pragma once

#include "oledragdrop/OLEDragDrop.h"

#include <functional>
#include <string>
#include <vector>

namespace quill::examples {

using TPaths = std::vector<std::string>;

// A drag of files, to be copied: as a list of files, and as text with one path on each line.
class TFilesDropSource : public TOLEDropSource {
public:
    // Paths are absolute. Those with control characters are left out: programs cannot agree on how to write them.
    explicit TFilesDropSource(const TPaths& Paths);

protected:
    HResult DoGetData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium) override;

private:
    TOleObjectWrapper FPaths{nullptr};
};

// Takes lists of files, to be copied. Text is refused.
class TFilesDropTarget : public TOLEDropTarget {
public:
    TFilesDropTarget();
    bool HasValidFormats() override;
    bool DoGetData() override { return !GetFiles().empty(); }
    // Those of the drag that is over the control.
    TPaths GetFiles() const;

    // Whether these files may be dropped at a point of the control (client pixels).
    std::function<bool(const TPaths& Paths, TPoint Point)> OnAllow;
    std::function<void(const TPaths& Paths, TPoint Point)> OnFiles;

protected:
    void DoDragOver(NV_IDataObject* Data, TShiftState ShiftState, TPoint Point,
                    std::uint32_t& Effect) override;
    void DoDrop(NV_IDataObject* Data, TShiftState ShiftState, TPoint Point, std::uint32_t& Effect) override;

private:
    void AskForLeave(TPoint Point, std::uint32_t& Effect);
};

} // namespace quill::examples
