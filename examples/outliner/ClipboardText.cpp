#include "ClipboardText.h"

#include "host/base/Strings.h"
#include "quilltree/FlyNodes.h"

#include <algorithm>
#include <vector>

namespace quill::examples {

namespace {

constexpr std::string_view NodesTextHeader = "SaveOptions:";
constexpr std::string_view CellsHeader = "SaveOptions:8\r\n"; // texts and cells only
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t TabWidth = 4; // of an indentation that mixes tabs and spaces
constexpr std::size_t IndentWidth = 2;

// --- writing -------------------------------------------------------------------------------------------------------

void AppendCell(std::string& Out, std::string_view Cell) {
    if (!Cell.starts_with('"') && Cell.find_first_of("\t\r\n") == std::string_view::npos) {
        Out += Cell;
        return;
    }
    Out += '"';
    for (const char Char : Cell) Out.append(Char == '"' ? 2 : 1, Char);
    Out += '"';
}

void AppendLine(std::string& Out, TFlyNode& Node, std::size_t Level, std::vector<std::string_view>& Cells) {
    Cells.clear();
    const std::string_view Text = Node.GetAllTexts(Cells);
    Out.append(Level * IndentWidth, ' ');
    AppendCell(Out, Text);
    std::size_t Count = Cells.size();
    while (Count > 1 && Cells[Count - 1].empty()) --Count;
    // The cell of the structure column is the text.
    for (std::size_t Index = 1; Index < Count; ++Index) {
        Out += '\t';
        AppendCell(Out, Cells[Index]);
    }
    Out += '\n';
}

// --- reading -------------------------------------------------------------------------------------------------------

bool EndsCell(std::string_view Text, std::size_t Pos) {
    return Pos == Text.size() || Text[Pos] == '\t' || Text[Pos] == '\r' || Text[Pos] == '\n';
}

struct TRow {
    std::string_view Indent; // tabs and spaces before the text
    std::vector<std::string> Cells;
};

class TRowReader {
public:
    explicit TRowReader(std::string_view Text) : FText(Text) {
        if (FText.starts_with(ByteOrderMark)) FPos = ByteOrderMark.size();
    }

    bool Next(TRow& Row) {
        if (FPos >= FText.size()) return false;
        const std::size_t Start = FPos;
        FPos = std::min(FText.find_first_not_of(" \t", FPos), FText.size());
        Row.Indent = FText.substr(Start, FPos - Start);
        Row.Cells.clear();
        for (;;) {
            Row.Cells.push_back(ReadCell());
            if (FPos == FText.size()) return true;
            const char End = FText[FPos++];
            if (End == '\t') continue;
            if (End == '\r' && FPos < FText.size() && FText[FPos] == '\n') ++FPos;
            return true;
        }
    }

private:
    std::string ReadCell() {
        std::string Cell;
        if (FPos < FText.size() && FText[FPos] == '"' && ReadQuoted(Cell)) return OneLine(Cell);
        const std::size_t End = std::min(FText.find_first_of("\t\r\n", FPos), FText.size());
        Cell = OneLine(FText.substr(FPos, End - FPos));
        FPos = End;
        return Cell;
    }

    // False, and nothing read, when the quote at FPos has no partner at the end of a cell: then it is only a
    // character.
    bool ReadQuoted(std::string& Cell) {
        std::size_t Pos = FPos + 1;
        for (;;) {
            const std::size_t Quote = FText.find('"', Pos);
            if (Quote == std::string_view::npos) return false;
            Cell += FText.substr(Pos, Quote - Pos);
            Pos = Quote + 1;
            if (Pos < FText.size() && FText[Pos] == '"') {
                Cell += '"';
                ++Pos;
                continue;
            }
            if (!EndsCell(FText, Pos)) return false;
            FPos = Pos;
            return true;
        }
    }

    std::string_view FText;
    std::size_t FPos = 0;
};

std::size_t TabsOf(const TRow& Row) {
    return Row.Cells.size() - 1 +
           static_cast<std::size_t>(std::count(Row.Indent.begin(), Row.Indent.end(), '\t'));
}

bool IsTable(const std::vector<TRow>& Rows) {
    bool HasInner = false;
    for (const TRow& Row : Rows) {
        if (TabsOf(Row) != TabsOf(Rows.front())) return false;
        HasInner = HasInner || Row.Cells.size() > 1;
    }
    return HasInner;
}

// In a table, tabs before the text separate empty cells.
void TakeEmptyCells(TRow& Row) {
    const std::size_t Tab = Row.Indent.find('\t');
    if (Tab == std::string_view::npos) return;
    Row.Cells.insert(Row.Cells.begin(), TabsOf(Row) - Row.Cells.size() + 1, std::string());
    Row.Indent = {};
}

std::size_t WidthOf(std::string_view Indent) {
    std::size_t Width = 0;
    for (const char Char : Indent) Width = Char == '\t' ? (Width / TabWidth + 1) * TabWidth : Width + 1;
    return Width;
}

} // namespace

std::string PlainTextOf(TFlyNodes& Nodes) {
    std::string Text;
    std::vector<std::string_view> Cells;
    std::size_t Level = 0;
    for (TFlyNode* Node = Nodes.GetFirstNode(); Node;) {
        AppendLine(Text, *Node, Level, Cells);
        if (TFlyNode* Child = Node->getFirstChild()) {
            Node = Child;
            ++Level;
            continue;
        }
        TFlyNode* Next = nullptr;
        while (Node && !(Next = Node->GetNextSibling())) {
            Node = Node->GetParent();
            --Level;
        }
        Node = Next;
    }
    return Text;
}

TTextAsNodes NodesTextOfPlain(std::string_view Text) {
    std::vector<TRow> Rows;
    TRowReader Reader(Text);
    for (TRow Row; Reader.Next(Row);) {
        const bool IsBlank = std::all_of(Row.Cells.begin(), Row.Cells.end(),
                                         [](const std::string& Cell) { return Cell.empty(); });
        if (!IsBlank) Rows.push_back(std::move(Row));
    }

    TTextAsNodes Result;
    if (Rows.empty()) return Result;
    const bool Table = IsTable(Rows);
    Result.NodesText = CellsHeader;
    std::vector<std::size_t> Widths; // of the indentation of each level down to this line
    for (TRow& Row : Rows) {
        if (Table) TakeEmptyCells(Row);
        const std::size_t Width = WidthOf(Row.Indent);
        while (!Widths.empty() && Widths.back() >= Width) Widths.pop_back();
        Result.NodesText.append(Widths.size(), '\t');
        Widths.push_back(Width);

        while (Row.Cells.size() > 1 && Row.Cells.back().empty()) Row.Cells.pop_back();
        if (Row.Cells.size() > MaxPastedColumns) {
            Result.CellsLeftOut += static_cast<int>(Row.Cells.size()) - MaxPastedColumns;
            Row.Cells.resize(MaxPastedColumns);
        }
        for (std::size_t Index = 0; Index < Row.Cells.size(); ++Index) {
            if (Index > 0) Result.NodesText += ',';
            AppendCommaTextItem(Result.NodesText, Row.Cells[Index], Row.Cells.size() == 1);
        }
        Result.NodesText += "\r\n";
    }
    return Result;
}

bool LooksLikeNodesText(std::string_view Text) {
    if (Text.starts_with(ByteOrderMark)) Text.remove_prefix(ByteOrderMark.size());
    return Text.starts_with(NodesTextHeader);
}

std::string OneLine(std::string_view Text) {
    std::string Line;
    Line.reserve(Text.size());
    for (std::size_t Pos = 0; Pos < Text.size(); ++Pos) {
        const char Char = Text[Pos];
        if (Char == '\0') continue;
        if (Char == '\r' && Pos + 1 < Text.size() && Text[Pos + 1] == '\n') continue;
        Line += Char == '\r' || Char == '\n' ? ' ' : Char;
    }
    return Line;
}

} // namespace quill::examples
