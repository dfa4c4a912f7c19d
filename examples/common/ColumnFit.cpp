#include "ColumnFit.h"

#include "quilltree/QuillTree.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace quill::examples {

namespace {

constexpr int SampleNodes = 400;
constexpr int Padding = 2 * TreeMetrics::TextMargin + 4;
// No column needs more than this many digits to begin with; the user can make it wider.
constexpr int WidestColumn = 44;
// The last column, which gets what is left, keeps at least this share of the client width.
constexpr int LastShare = 5;

// The largest width that every column may have so that all fit into Room.
int CommonLimit(const std::vector<int>& Widths, int Room) {
    int Low = 0;
    int High = *std::max_element(Widths.begin(), Widths.end());
    while (Low < High) {
        const int Middle = (Low + High + 1) / 2;
        const int Sum = std::accumulate(Widths.begin(), Widths.end(), 0, [Middle](int Total, int Width) {
            return Total + std::min(Width, Middle);
        });
        if (Sum <= Room) {
            Low = Middle;
        } else {
            High = Middle - 1;
        }
    }
    return Low;
}

} // namespace

void FitColumns(TCustomQuillTree& Tree, const std::vector<std::string>& Samples) {
    const int Count = Tree.GetColCount();
    if (Count < 2) return;
    TCanvas& Canvas = *Tree.GetCanvas();
    Canvas.SetFont(Tree.GetFont());
    const int Widest = WidestColumn * Canvas.TextWidth("0");

    std::vector<int> Widths(static_cast<std::size_t>(Count));
    const auto Measure = [&](int Col, const std::string& Text, int Extra) {
        int& Width = Widths[static_cast<std::size_t>(Col)];
        // A longer text than that is not worth measuring.
        const int TextWidth = Text.size() > 200 ? Widest : Canvas.TextWidth(Text);
        Width = std::max(Width, std::min(Widest, TextWidth + Extra + Padding));
    };
    for (int Col = 0; Col < Count; ++Col) {
        if (Tree.GetFixedRows() > 0) Measure(Col, Tree.GetEditText(Col, 0), 0);
        if (static_cast<std::size_t>(Col) < Samples.size())
            Measure(Col, Samples[static_cast<std::size_t>(Col)], 0);
    }
    TFlyNode* Node = Tree.GetItems()->GetFirstNode();
    for (int Index = 0; Node && Index < SampleNodes; ++Index, Node = Node->GetNext()) {
        int Outline = Tree.GetOutlineSlots(Node, 0).Rest;
        if (Tree.GetShowImages() && Node->GetImageIndex() >= 0) Outline += Tree.GetIndent();
        for (int Col = 0; Col < Count; ++Col) {
            Measure(Col, Tree.GetNodeData(Node, Col), Col == Tree.GetStructureCol() ? Outline : 0);
        }
    }

    const int Client = Tree.GetClientWidth();
    const int Last = std::min(Widths.back(), Client / LastShare);
    Widths.back() = Last;
    const int Limit = CommonLimit(Widths, Client - Count * Tree.GetGridLineWidth());
    for (int Col = 0; Col < Count; ++Col) {
        Tree.SetColWidths(Col, std::min(Widths[static_cast<std::size_t>(Col)], Limit));
    }
}

} // namespace quill::examples
