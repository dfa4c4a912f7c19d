// Nodes files as documents: read and checked before the tree on screen is touched, saved without risk.
#pragma once

#include "host/base/Errors.h"
#include "host/base/Streams.h"
#include "quilltree/FlyNodes.h"

#include <memory>
#include <string>
#include <vector>

namespace quill::examples {

// A file that cannot be opened or read; the text names file, line and offending text.
class EOutlineError : public Exception {
    using Exception::Exception;
};

// A nodes file that has been read and found good.
struct TOutline {
    std::unique_ptr<TMemoryStream> Bytes;
    // What a save has to write so that nothing of the file is lost.
    TSaveNodesOptions Options;
    // Whether the file numbers its nodes; -1 everywhere is no numbering.
    bool HasTags = false;
    int NodeCount = 0;
    int ColumnCount = 1;
};

// The fields of a document that did not come from a file: all but tags.
TSaveNodesOptions DefaultOptions();
// The fields without which a save would lose something of these nodes; how they are shown and numbered aside. O(n).
TSaveNodesOptions FieldsInUse(TFlyNodes& Nodes);
int MaskOf(TSaveNodesOptions Options);
TSaveNodesOptions OptionsOf(int Mask);

// Loads the file into nodes of its own, away from any tree. Raises EOutlineError.
TOutline ReadOutline(const std::string& FileName);
TOutline ReadOutline(std::unique_ptr<TMemoryStream> Bytes, const std::string& FileName);
// Replaces the nodes of a tree. The caller switches the tree's unique tags first.
void LoadOutline(const TOutline& Outline, TFlyNodes& Nodes);
std::string OutlineText(TFlyNodes& Nodes, TSaveNodesOptions Options);
// Raises EStreamError and leaves the old file as it is.
void SaveOutline(const std::string& FileName, TFlyNodes& Nodes, TSaveNodesOptions Options);

// The captions of the data columns stand beside an outline, in a file of the same name that ends in ".columns": one
// line of comma text. Columns without a caption are called "Text", "Column 2", "Column 3" ...
std::string CaptionsFileName(const std::string& FileName);
std::vector<std::string> ReadCaptions(const std::string& FileName);
std::string CaptionOf(const std::vector<std::string>& Captions, int Column);
// Writes the captions of an outline, unless there is such a file already or there are none.
void SaveCaptions(const std::string& FileName, const std::vector<std::string>& Captions);

} // namespace quill::examples
