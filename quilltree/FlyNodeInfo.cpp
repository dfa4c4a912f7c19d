// Published properties of a node, and the entry points into the collection's own streams.
#include "host/base/Errors.h"
#include "host/base/Reflection.h"
#include "host/base/Streams.h"
#include "host/base/Texts.h"
#include "quilltree/FlyNode.h"
#include "quilltree/FlyNodes.h"
#include "treecoll/TreeProperties.h"

#include <vector>

namespace quill {

namespace {

const TFlyNode& Node(const TPersistent& Object) { return static_cast<const TFlyNode&>(Object); }
TFlyNode& Node(TPersistent& Object) { return static_cast<TFlyNode&>(Object); }

template <int (TFlyNode::*Get)() const, void (TFlyNode::*Set)(int)>
constexpr TPropertyInfo IndexProperty(std::string_view Name) {
    return {.Name = Name,
            .Kind = TPropertyKind::Integer,
            .GetOrdinal = [](const TPersistent& O) { return std::int64_t{(Node(O).*Get)()}; },
            .SetOrdinal = [](TPersistent& O, std::int64_t V) { (Node(O).*Set)(static_cast<int>(V)); },
            .Default = -1};
}

} // namespace

const TClassInfo* TFlyNode::GetClassInfo() const {
    static const TPropertyInfo Properties[] = {
        IndexProperty<&TFlyNode::GetUniqueTag, &TFlyNode::SetUniqueTag>("UniqueTag"),
        // The default is required: it is the visible node that gets this property written.
        {.Name = "Hidden",
         .Kind = TPropertyKind::Boolean,
         .GetOrdinal = [](const TPersistent& O) { return std::int64_t{Node(O).GetHidden()}; },
         .SetOrdinal = [](TPersistent& O, std::int64_t V) { Node(O).SetHidden(V != 0); },
         .Default = 1},
        IndexProperty<&TFlyNode::GetImageIndex, &TFlyNode::SetImageIndex>("ImageIndex"),
        IndexProperty<&TFlyNode::GetSelectedIndex, &TFlyNode::SetSelectedIndex>("SelectedIndex"),
        IndexProperty<&TFlyNode::GetStateIndex, &TFlyNode::SetStateIndex>("StateIndex"),
        {.Name = "Text",
         .Kind = TPropertyKind::String,
         .GetString = [](const TPersistent& O) { return Node(O).GetText(); },
         .SetString = [](TPersistent& O, const std::string& S) { Node(O).SetText(S); }},
        {.Name = "CellsText",
         .Kind = TPropertyKind::String,
         .GetString = [](const TPersistent& O) { return Node(O).GetCellsText(); },
         .SetString = [](TPersistent& O, const std::string& S) { Node(O).SetCellsText(S); },
         .Stored = [](const TPersistent& O) { return Node(O).CellsStored(); }}};
    static const TClassInfo Info{"TFlyNode", nullptr, Properties};
    return &Info;
}

// Streams carry cells one by one, so that line breaks in them survive; CellsText cannot do that.
bool TFlyNode::GetStreamList(std::vector<std::string_view>& Cells) const {
    if (!HasCells()) return false;
    GetAllTexts(Cells);
    return true;
}

void TFlyNode::SetStreamList(std::span<const std::string_view> Cells) { StoreTexts(GetTextView(), Cells); }

// A height that the node was given. Measured ones (FitToHeight) belong to the font and the width of the moment.
std::span<const TPropertyInfo> TFlyNode::StreamOnlyProperties() const {
    static constexpr auto Measures = [](const TPersistent& O) {
        const INodeHost* const Host = Node(O).GetHost();
        return Host && Host->GetFitToHeight();
    };
    static const TPropertyInfo Properties[] = {
        {.Name = "Height",
         .Kind = TPropertyKind::Integer,
         .GetOrdinal = [](const TPersistent& O) { return std::int64_t{Node(O).GetHeightField()}; },
         .SetOrdinal =
             [](TPersistent& O, std::int64_t V) {
                 if (!Measures(O)) Node(O).SetHeightField(static_cast<int>(V));
             },
         .Default = -1,
         .Stored = [](const TPersistent& O) { return Node(O).GetHeightField() >= 0 && !Measures(O); },
         .Lowest = -1}};
    return Properties;
}

void TFlyNode::PropertyAbsent(const TPropertyInfo& Property) {
    // A new node has its tag already; -1 would ask for one more.
    if (Property.Name == "UniqueTag" && GetUniqueTag() != -1) return;
    if (Property.Name == "CellsText") {
        FreeCells();
        return;
    }
    TTreeCollection::PropertyAbsent(Property);
}

// --- streams --------------------------------------------------------------------------------------------------------

std::string TFlyNode::SaveToText(bool WithProperties) {
    return SaveTreeCollectionToText(this, WithProperties);
}
void TFlyNode::LoadFromText(const std::string& Text) { LoadTreeCollectionFromText(this, Text); }
void TFlyNode::SaveToStream(TStream& Stream) { SaveTreeCollectionToStream(this, Stream); }
void TFlyNode::LoadFromStream(TStream& Stream) { LoadTreeCollectionFromStream(this, Stream); }
void TFlyNode::SaveToFile(const std::string& FileName) { SaveTreeCollectionToFile(this, FileName); }
void TFlyNode::LoadFromFile(const std::string& FileName) { LoadTreeCollectionFromFile(this, FileName); }

std::string TFlyNodes::SaveToText(bool WithProperties) {
    return SaveTreeCollectionToText(this, WithProperties);
}
void TFlyNodes::LoadFromText(const std::string& Text) { LoadTreeCollectionFromText(this, Text); }
void TFlyNodes::SaveToStream(TStream& Stream) { SaveTreeCollectionToStream(this, Stream); }
void TFlyNodes::LoadFromStream(TStream& Stream) { LoadTreeCollectionFromStream(this, Stream); }
void TFlyNodes::SaveToFile(const std::string& FileName) { SaveTreeCollectionToFile(this, FileName); }

// The format of the collection, or nodes text, which may begin with anything but is text.
void TFlyNodes::LoadFromFile(const std::string& FileName) {
    constexpr std::int64_t Enough = 4096;
    std::string Start(Enough, '\0');
    Start.resize(static_cast<std::size_t>(TFileStream(FileName, fmOpenRead).Read(Start.data(), Enough)));
    if (IsSavedTreeCollection(Start)) {
        LoadTreeCollectionFromFile(this, FileName);
    } else if (Start.find('\0') == std::string::npos) {
        LoadNodesFromFile(FileName);
    } else {
        throw EReadError("\"" + FileName + "\": " + FormatText(SReadError, {"this is no saved tree"}));
    }
}

} // namespace quill
