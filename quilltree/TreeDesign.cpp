// What the tree tells the platform's form designer beyond its published properties.
#include "host/base/Errors.h"
#include "host/base/Numbers.h"
#include "host/base/Streams.h"
#include "host/base/Texts.h"
#include "host/forms/FormText.h"
#include "quilltree/FaithfulText.h"
#include "quilltree/QuillTree.h"

#include <algorithm>

namespace quill {

namespace {

// Before the bytes of the collection's own format.
constexpr std::string_view BinaryMark = "base64:";

// Whether forms, which are XML, bring the text back as it is (but for the carriage returns of its line ends).
bool IsPlain(const std::string& Text) {
    const auto Fits = [](char C) {
        return static_cast<unsigned char>(C) >= ' ' || C == '\t' || C == '\r' || C == '\n';
    };
    return std::all_of(Text.begin(), Text.end(), Fits) && QString::fromStdString(Text).toStdString() == Text;
}

// Raises what reading raises.
void ReadNodes(TFlyNodes& Nodes, const std::string& Text) {
    if (!Text.starts_with(BinaryMark)) {
        TMemoryStream Stream(Text);
        Nodes.LoadNodesFromStream(Stream);
        return;
    }
    std::string Bytes;
    if (!DecodeBase64(std::string_view(Text).substr(BinaryMark.size()), Bytes))
        throw EReadError(std::string(SFormBase64));
    TMemoryStream Stream(Bytes);
    Nodes.LoadFromStream(Stream);
}

} // namespace

QString TQuillTree::GetNodesProperty() const {
    TFlyNodes& Nodes = *GetItems();
    if (const auto Text = FaithfulNodesText(Nodes); Text && IsPlain(*Text))
        return QString::fromStdString(*Text).remove('\r');
    TMemoryStream Stream;
    Nodes.SaveToStream(Stream);
    return QString::fromLatin1(QByteArray(BinaryMark.data()) +
                               QByteArray::fromStdString(Stream.GetMemory()).toBase64());
}

void TQuillTree::SetNodesProperty(const QString& Value) {
    const std::string Text = Value.toStdString();
    try {
        {
            // Away from the tree first: what cannot be read changes nothing.
            TFlyNodes Trial;
            ReadNodes(Trial, Text);
        }
        ReadNodes(*GetItems(), Text);
    } catch (const Exception& Error) {
        qWarning("Nodes: %s", Error.what());
    }
}

QStringList TQuillTree::GetColWidthsProperty() const {
    QStringList Widths;
    auto& Self = const_cast<TQuillTree&>(*this); // asking for a width is no change
    for (int Col = 0; HasColWidths() && Col < GetColCount(); ++Col)
        Widths += QString::number(Self.TCustomExGrid::GetColWidths(Col));
    return Widths;
}

void TQuillTree::SetColWidthsProperty(const QStringList& Value) {
    for (int Col = 0; Col < std::min(GetColCount(), static_cast<int>(Value.size())); ++Col)
        SetColWidths(Col, StrToIntDef(Value[Col].toStdString(), GetDefaultColWidth()));
}

QStringList TQuillTree::GetCaptionsProperty() const {
    QStringList Captions;
    for (int Col = 0; Col < GetColCount(); ++Col) Captions += QString::fromStdString(GetCaptions(Col));
    while (!Captions.isEmpty() && Captions.last().isEmpty()) Captions.removeLast();
    return Captions;
}

void TQuillTree::SetCaptionsProperty(const QStringList& Value) {
    for (int Col = 0; Col < std::max(GetColCount(), static_cast<int>(Value.size())); ++Col)
        SetCaptions(Col, Col < Value.size() ? Value[Col].toStdString() : std::string());
}

} // namespace quill
