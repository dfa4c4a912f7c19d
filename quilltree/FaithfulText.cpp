#include "quilltree/FaithfulText.h"

#include "host/base/Errors.h"
#include "host/base/Streams.h"
#include "quilltree/HeadlessHost.h"

namespace quill {

std::optional<std::string> FaithfulNodesText(TFlyNodes& Nodes) {
    const INodeHost* const Host = Nodes.GetHost();
    const bool Tagged = Host && Host->GetEnumerateNodes();
    TSaveNodesOptions Options{tsnIncludeImageIndex, tsnIncludeSelectedIndex, tsnIncludeStateIndex,
                              tsnIncludeCells,      tsnIncludeExpands,       tsnIncludeHiddens};
    // -1 everywhere is no numbering.
    if (Tagged) Options.Include(tsnIncludeUniqueTags);
    TMemoryStream Stream;
    Nodes.SaveNodesToStream(Stream, Options);
    std::string Text = Stream.GetMemory();
    THeadlessHost Copy;
    Copy.SetStructureCol(Host ? Host->GetStructureCol() : 0);
    Copy.SetEnumerateNodes(Tagged);
    try {
        Stream.SetPosition(0);
        Copy.GetItems()->LoadNodesFromStream(Stream);
    } catch (const Exception&) {
        return {};
    }
    TMemoryStream Own;
    TMemoryStream Loaded;
    Nodes.SaveToStream(Own);
    Copy.GetItems()->SaveToStream(Loaded);
    if (Own.GetMemory() != Loaded.GetMemory()) return {};
    return Text;
}

} // namespace quill
