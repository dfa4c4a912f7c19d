#include "quilltree/NodesText.h"

#include "host/base/Errors.h"
#include "host/base/Numbers.h"
#include "host/base/Streams.h"
#include "host/base/Strings.h"
#include "host/base/Texts.h"
#include "quilltree/FlyNodes.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace quill {

namespace {

constexpr std::string_view HeaderText = "SaveOptions:";
constexpr std::uint32_t AllOptions = 0x7F;

// Whether the node's texts may be read and stored directly: neither its class nor its control does more with them.
bool HasPlainTexts(const TFlyNode& Node, const INodeHost* Host) {
    return typeid(Node) == typeid(TFlyNode) && (!Host || Host->StoresPlainTexts());
}

// --- saving -----------------------------------------------------------------------------------------------------------

// Collects the many small writes of one save.
class TBufferedOutput : public TStream {
public:
    explicit TBufferedOutput(TStream& Target) : FTarget(Target) { FBuffer.reserve(Capacity); }

    std::int64_t Write(const void* Buffer, std::int64_t Count) override {
        if (FBuffer.size() + static_cast<std::size_t>(Count) > Capacity) Flush();
        if (static_cast<std::size_t>(Count) > Capacity) {
            FTarget.WriteBuffer(Buffer, Count);
        } else {
            FBuffer.append(static_cast<const char*>(Buffer), static_cast<std::size_t>(Count));
        }
        return Count;
    }
    void Flush() {
        FTarget.WriteBuffer(FBuffer.data(), static_cast<std::int64_t>(FBuffer.size()));
        FBuffer.clear();
    }
    std::int64_t Read(void*, std::int64_t) override { return 0; }
    std::int64_t Seek(std::int64_t, TSeekOrigin) override { return 0; }

private:
    static constexpr std::size_t Capacity = std::size_t{256} * 1024;
    TStream& FTarget;
    std::string FBuffer;
};

class TNodesWriter {
public:
    TNodesWriter(TStream& Stream, TSaveNodesOptions Options, INodeHost* Host)
        : FStream(Stream), FOptions(Options), FHost(Host),
          FStructureCol(Host ? Host->GetStructureDataColumn() : -1) {}

    void WriteHeader() {
        FLine.assign(HeaderText);
        AppendInt(FLine, static_cast<int>(FOptions.Bits() & AllOptions));
        WriteLine();
    }

    void WriteNode(TFlyNode& Node, int Level) {
        FLine.assign(static_cast<std::size_t>(Level), '\t');
        FRecordStart = FLine.size();
        if (Has(tsnIncludeImageIndex)) PutNumber(Node.GetImageIndex());
        if (Has(tsnIncludeSelectedIndex)) PutNumber(Node.GetSelectedIndex());
        if (Has(tsnIncludeStateIndex)) PutNumber(Node.GetStateIndex());
        if (Has(tsnIncludeExpands)) PutNumber(Node.GetExpanded() ? 1 : 0);
        if (Has(tsnIncludeHiddens)) PutNumber(Node.GetHidden() ? 1 : 0);
        if (Has(tsnIncludeUniqueTags)) PutNumber(Node.GetUniqueTag());
        if (!Has(tsnIncludeCells) || !Node.HasCells()) {
            PutText(Node.GetTextView(), true);
        } else {
            PutCells(Node);
        }
        WriteLine();
    }

private:
    bool Has(TSaveNodesOption Option) const { return FOptions.Contains(Option); }
    void PutNumber(int Value) {
        Separate();
        AppendInt(FLine, Value);
    }
    void PutText(std::string_view Text, bool IsLast) {
        const bool IsOnly = IsLast && FLine.size() == FRecordStart;
        Separate();
        AppendCommaTextItem(FLine, Text, IsOnly);
    }
    void Separate() {
        if (FSeparate) FLine += ',';
        FSeparate = true;
    }
    void PutCells(TFlyNode& Node) {
        if (!HasPlainTexts(Node, FHost)) {
            const int Count = Node.GetCellCount();
            for (int i = 0; i < Count; ++i) PutText(Node.GetCell(i), Count == 1);
            return;
        }
        FCells.clear();
        const std::string_view Text = Node.GetAllTexts(FCells);
        // Without a control the text goes where loading looks for it, unless a cell stands there.
        const std::size_t Own = FHost ? static_cast<std::size_t>(FStructureCol) : 0;
        if (Own < FCells.size() && (FHost || FCells[Own].empty())) FCells[Own] = Text;
        for (const std::string_view Cell : FCells) PutText(Cell, FCells.size() == 1);
    }
    void WriteLine() {
        FLine += "\r\n";
        FStream.WriteBuffer(FLine.data(), static_cast<std::int64_t>(FLine.size()));
        FSeparate = false;
    }

    TStream& FStream;
    TSaveNodesOptions FOptions;
    INodeHost* FHost;
    int FStructureCol;
    std::string FLine;
    std::vector<std::string_view> FCells;
    std::size_t FRecordStart = 0;
    bool FSeparate = false;
};

// --- loading ------------------------------------------------------------------------------------------------------------

// The lines of a stream, as NextTextLine splits a text. Only a part of the stream is in memory at a time: the pages of
// a big text cost more than all else that is done with them.
class TLineReader {
public:
    explicit TLineReader(TStream& Stream) : FStream(Stream), FCapacity(FirstCapacity) {
        FWindow = std::make_unique_for_overwrite<char[]>(FCapacity);
        // The mark that some editors put first is no part of the text.
        constexpr std::string_view Mark = "\xEF\xBB\xBF";
        while (!FAtEnd && FUsed < Mark.size()) Fill();
        if (std::string_view(FWindow.get(), FUsed).starts_with(Mark)) FPos = Mark.size();
    }

    // The line is valid until the next call.
    bool Next(std::string_view& Line) {
        while (FPos >= FComplete) {
            if (FAtEnd) return false;
            Fill();
        }
        return NextTextLine({FWindow.get(), FComplete}, FPos, Line);
    }

private:
    static constexpr std::size_t FirstCapacity = std::size_t{256} * 1024;

    // Moves the incomplete line to the front and reads behind it, more and more while it stays incomplete.
    void Fill() {
        std::size_t Kept = FUsed - FPos;
        if (Kept == FCapacity) {
            auto Larger = std::make_unique_for_overwrite<char[]>(FCapacity * 2);
            std::memcpy(Larger.get(), FWindow.get() + FPos, Kept);
            FWindow = std::move(Larger);
            FCapacity *= 2;
        } else if (FPos > 0) {
            std::memmove(FWindow.get(), FWindow.get() + FPos, Kept);
        }
        FPos = 0;
        const auto Got = FStream.Read(FWindow.get() + Kept, static_cast<std::int64_t>(FCapacity - Kept));
        FAtEnd = Got <= 0;
        FUsed = Kept + static_cast<std::size_t>(std::max<std::int64_t>(Got, 0));
        const std::string_view Text(FWindow.get(), FUsed);
        if (FAtEnd) {
            FComplete = FUsed;
        } else if (const std::size_t LineFeed = Text.rfind('\n'); LineFeed != std::string_view::npos) {
            FComplete = LineFeed + 1;
        } else {
            // A carriage return at the very end may be half of a pair.
            const std::size_t Return = Text.substr(0, FUsed - 1).rfind('\r');
            FComplete = Return == std::string_view::npos ? 0 : Return + 1;
        }
    }

    TStream& FStream;
    std::unique_ptr<char[]> FWindow;
    std::size_t FCapacity;
    std::size_t FUsed = 0;
    std::size_t FPos = 0;
    std::size_t FComplete = 0; // lines that end before it are whole
    bool FAtEnd = false;
};

// Reads the records of one stream; the container is inside its bracket. Nodes are made by the container's factory,
// and may be deleted by handlers at any time.
class TNodesReader {
public:
    TNodesReader(TFlyNodes& Nodes, TStream& Stream)
        : FNodes(Nodes), FNodesWatch(&Nodes), FHost(Nodes.GetHost()),
          FStructureCol(FHost ? FHost->GetStructureCol() : 0), FLines(Stream) {}

    void Read() {
        std::string_view Line;
        bool Have = FLines.Next(Line);
        if (Have && Line.find(HeaderText) != std::string_view::npos) {
            ReadHeader(Line);
            FHeaderLines = 1;
            Have = FLines.Next(Line);
        }
        for (; Have && FNodesWatch; Have = FLines.Next(Line), ++FLineNo) {
            if (Line.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
                throw EConvertError(Place() + "the line is too long");
            }
            ReadRecord(Line);
        }
    }

private:
    std::string Place() const { return "line " + std::to_string(FLineNo + FHeaderLines + 1) + ": "; }

    void ReadHeader(std::string_view Line) {
        Line.remove_prefix(std::min(Line.size(), HeaderText.size()));
        try {
            const int Mask = Line.empty() ? 0 : StrToInt(Line);
            FOptions = TSaveNodesOptions::FromBits(static_cast<std::uint32_t>(Mask) & AllOptions);
        } catch (const EConvertError& Error) {
            throw EConvertError(Place() + Error.GetMessage());
        }
    }

    void ReadRecord(std::string_view Line) {
        std::size_t Blanks = 0;
        while (Blanks < Line.size() && (Line[Blanks] == '\t' || Line[Blanks] == ' ')) ++Blanks;
        SplitRecord(Line.substr(Blanks));
        TFlyNode* const Node = PlaceNode(static_cast<int>(Blanks));
        if (!Node) return;
        FNext = 0;
        int Value = 0;
        if (TakeNumber(tsnIncludeImageIndex, Value)) Node->SetImageIndex(Value);
        if (TakeNumber(tsnIncludeSelectedIndex, Value)) Node->SetSelectedIndex(Value);
        if (TakeNumber(tsnIncludeStateIndex, Value)) Node->SetStateIndex(Value);
        if (FGone.IsGone(Node, FPath.back().Since)) return;
        if (TakeNumber(tsnIncludeExpands, Value) && Value != 0) Node->SetExpandedField(true);
        if (TakeNumber(tsnIncludeHiddens, Value) && Value != 0) Node->SetHiddenField(true);
        if (TakeNumber(tsnIncludeUniqueTags, Value)) Node->SetUniqueTag(Value);
        StoreTexts(*Node);
    }

    void SplitRecord(std::string_view Record) {
        FItems.clear();
        FUnfolded.clear();
        std::string_view Item;
        for (std::size_t Pos = 0; NextCommaTextItem(Record, Pos, FBuffer, Item);) {
            // Few items hold doubled quotes; each of those needs a text of its own.
            if (Item.data() == FBuffer.data()) Item = FUnfolded.emplace_back(Item);
            FItems.push_back(Item);
        }
    }

    // Makes the node for a line of this level; null when a handler deleted it at once, or its parent before.
    TFlyNode* PlaceNode(int Level) {
        const int PrevLevel = static_cast<int>(FPath.size()) - 1;
        if (PrevLevel < 0) Level = 0; // the level of the first line does not matter
        if (Level > PrevLevel + 1) {
            const std::string First(FItems.empty() ? std::string_view() : FItems.front());
            throw EQuillTreeError(FormatText(
                sInvalidLevelEx, {std::to_string(Level), First + "(Line:" + std::to_string(FLineNo) + ")"}));
        }
        FPath.resize(static_cast<std::size_t>(Level));
        TFlyNode* const Parent = FPath.empty() ? nullptr : FPath.back().Node;
        TFlyNode* Node = nullptr;
        if (FPath.empty() || (Parent && !FGone.IsGone(Parent, FPath.back().Since))) {
            const TBirthWatch Birth;
            Node = FNodes.CreateNode(Parent ? static_cast<TTreeCollection*>(Parent) : &FNodes);
            if (Birth.Died()) Node = nullptr;
        }
        FPath.push_back({Node, FGone.Now()});
        return Node;
    }

    // Takes the next item when the option is on; false when it is off. Raises what the toolkit raises for an item
    // that is missing or no number, with the place in front.
    bool TakeNumber(TSaveNodesOption Option, int& Value) {
        if (!FOptions.Contains(Option)) return false;
        if (FNext >= FItems.size()) {
            throw EStringListError(Place() + FormatText(SListIndexError, {"0"}) + ", where a number belongs");
        }
        const std::string_view Item = FItems[FNext++];
        if (TryDecimal(Item, Value)) return true;
        try {
            Value = StrToInt(Item);
        } catch (const EConvertError& Error) {
            throw EConvertError(Place() + Error.GetMessage());
        }
        return true;
    }

    // The items that are left: the one at the structure column is the text, the others are cells.
    void StoreTexts(TFlyNode& Node) {
        const int Count = static_cast<int>(FItems.size() - FNext);
        if (Count == 0) return;
        const auto Items = std::span<std::string_view>(FItems).subspan(FNext);
        if (!HasPlainTexts(Node, FHost)) {
            for (int i = 0; i < Count; ++i) {
                const std::string Item(Items[static_cast<std::size_t>(i)]);
                if (i == FStructureCol) {
                    Node.SetText(Item);
                } else {
                    Node.SetCell(i, Item);
                }
                if (FGone.IsGone(&Node, FPath.back().Since)) return;
            }
            return;
        }
        std::string_view Text;
        int CellCount = Count;
        if (FStructureCol >= 0 && FStructureCol < Count) {
            std::string_view& Own = Items[static_cast<std::size_t>(FStructureCol)];
            Text = Own;
            Own = {};
            if (FStructureCol == Count - 1) --CellCount;
        }
        Node.StoreTexts(Text, Items.first(static_cast<std::size_t>(CellCount)), CellCount > 0);
    }

    TFlyNodes& FNodes;
    TWatch<TFlyNodes> FNodesWatch;
    TGoneWatch FGone;
    INodeHost* FHost;
    int FStructureCol;
    TLineReader FLines;
    int FLineNo = 0; // the header is not counted
    int FHeaderLines = 0;
    TSaveNodesOptions FOptions = tsnIncludeCells;
    // The last node of each level down to that of the line before.
    struct TStep {
        TFlyNode* Node; // null when a handler deleted it at once
        unsigned Since;
    };
    std::vector<TStep> FPath;
    std::vector<std::string_view> FItems;
    std::string FBuffer;
    std::deque<std::string> FUnfolded;
    std::size_t FNext = 0;
};

// What SetText and SetData would have done for every single node: a tree that sorts by comparison is in order.
void SortLoaded(TFlyNodes& Nodes) {
    INodeHost* const Host = Nodes.GetHost();
    if (!Host || !Host->HasCompare() || Host->GetSortType() == stNone) return;
    const TGoneWatch Gone;
    for (TFlyNode* Node = Nodes.FirstExisting(); Node; Node = Node->GetNextExisting()) {
        const unsigned Since = Gone.Now();
        if (Node->GetCount() > 1) Node->AlphaSort();
        if (Gone.IsGone(&Nodes, Since) || Gone.IsGone(Node, Since)) return;
    }
}

} // namespace

void TFlyNodes::SaveNodesToStream(TStream& Stream, TSaveNodesOptions Options) {
    const TGoneWatch Gone;
    TFlyNode* Node = GetFirstNode();
    if (!Node) return;
    const unsigned Started = Gone.Now();
    TNodesWriter Writer(Stream, Options, FHost);
    Writer.WriteHeader();
    // The depth is counted along the way: asking each node for it would cost its depth.
    for (int Level = 0; Node;) {
        Writer.WriteNode(*Node, Level);
        TFlyNode* const Written = Node;
        const unsigned Since = Gone.Now();
        if (Node->GetCount() > 0) {
            Node = Node->getFirstChild();
            ++Level;
        } else {
            TTreeSlot* Next = Node->NextSlot();
            while (!Next && (Node = Node->GetParent())) {
                Next = Node->NextSlot();
                --Level;
            }
            if (Node) Node = TFlyNode::AsNode(Node->GetCollection()->ItemOfSlot(Next));
        }
        // Making a node of a placeholder may run a handler that deletes what is being saved.
        if (Gone.IsGone(this, Started) || Gone.IsGone(Written, Since)) return;
    }
}

void TFlyNodes::SaveNodesToFile(const std::string& FileName, TSaveNodesOptions Options) {
    TFileStream File(FileName, fmCreate);
    TBufferedOutput Output(File);
    SaveNodesToStream(Output, Options);
    Output.Flush();
}

void TFlyNodes::LoadNodesFromStream(TStream& Stream) {
    const TWatch<TFlyNodes> Self(this);
    const TUpdateBracket Bracket(this);
    if (Self) Clear();
    if (!Self) return;
    TNodesReader(*this, Stream).Read();
    if (Self) SortLoaded(*this);
    if (Self && FHost) FHost->RefreshRowHeights();
}

void TFlyNodes::LoadNodesFromFile(const std::string& FileName) {
    TFileStream File(FileName, fmOpenRead);
    const auto Named = [&FileName](const Exception& Error) {
        return "\"" + FileName + "\", " + Error.GetMessage();
    };
    try {
        LoadNodesFromStream(File);
    } catch (const EConvertError& Error) {
        throw EConvertError(Named(Error));
    } catch (const EStringListError& Error) {
        throw EStringListError(Named(Error));
    }
}

} // namespace quill
