// What is painted is what is hit: every pixel of the visible structure cells of random layouts is compared with the hit
// test. Where the two differ on purpose stands in one table.
#include "host/graphics/RecordingCanvas.h"
#include "tests/tree/TreeTestSupport.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <set>

namespace quill {
namespace {

// A structure cell as it was painted, in the direction before mirroring.
struct TPaintedCell {
    TRect Rect;
    TExGridDrawState State;
    std::optional<TRect> Button;
    std::optional<TRect> Glyph;
    std::optional<TRect> Picture;
    std::optional<TRect> Label; // the text with its margins
};

// Takes the places of the parts from the calls that draw them.
class THitTree : public TTestTree {
public:
    void DrawCell(TCanvas&, int ACol, int ARow, const TRect& Rect, TExGridDrawState State,
                  bool& ContinueRow) override {
        if (ACol != GetStructureCol() || ARow < GetFixedRows()) return;
        FCell = {Rect, State, {}, {}, {}, {}};
        FCanvas.ClearLog();
        FCanvas.SetFont(GetFont());
        TTestTree::DrawCell(FCanvas, ACol, ARow, Rect, State, ContinueRow);
        int X = 0;
        int Y = 0;
        int Width = 0;
        int Height = 0;
        for (const std::string& Line : FCanvas.GetLines()) {
            if (std::sscanf(Line.c_str(), "Draw (%d,%d) %dx%d", &X, &Y, &Width, &Height) == 4)
                FCell.Picture = Bounds(X, Y, Width, Height);
            if (auto Text = RectIn(Line, "Text")) {
                // Texts are drawn unmapped.
                if (UseRightToLeftAlignment())
                    *Text = {GetClientWidth() - Text->Right, 0, GetClientWidth() - Text->Left, 0};
                FCell.Label = {Text->Left - TreeMetrics::TextMargin, Rect.Top,
                               Text->Right + GetGridLineWidth(), Rect.Bottom};
            }
        }
        Cells[ARow] = FCell;
    }
    void DrawButton(TCanvas& Canvas, TFlyNode* Node, TQuillBitmap Kind, TRect Rect) override {
        TTestTree::DrawButton(Canvas, Node, Kind, Rect);
        TakePart(Kind);
    }
    void DrawImagelistPic(TCanvas& Canvas, TFlyNode* Node, TQuillBitmap Kind, const TRect& Rect) override {
        TTestTree::DrawImagelistPic(Canvas, Node, Kind, Rect);
        TakePart(Kind);
    }

    std::map<int, TPaintedCell> Cells;

private:
    static std::optional<TRect> RectIn(const std::string& Line, const std::string& Operation) {
        TRect R;
        const std::string Format = Operation + " (%d,%d,%d,%d)";
        if (std::sscanf(Line.c_str(), Format.c_str(), &R.Left, &R.Top, &R.Right, &R.Bottom) != 4) return {};
        return R;
    }
    void TakePart(TQuillBitmap Kind) {
        for (const std::string& Line : FCanvas.GetLines()) {
            for (const char* Operation : {"Rectangle", "Check", "Radio", "StretchDraw"}) {
                if (const auto R = RectIn(Line, Operation)) (Kind < obOpen ? FCell.Button : FCell.Glyph) = R;
            }
        }
        FCanvas.ClearLog();
    }

    TRecordingCanvas FCanvas{400, 400};
    TPaintedCell FCell;
};

// One pixel of a cell and what a difference may depend on. X and Y are positions before mirroring.
struct TPixel {
    THitTree& Tree;
    TFlyNode* Node;
    const TPaintedCell& Cell;
    TOutlineSlots Slots;
    int X = 0;
    int Y = 0;
    THitTests Painted{};
    THitTests Hit{};

    bool Mirrored() const { return Tree.UseRightToLeftAlignment(); }
    bool IsPlain(THitTest H) const { return Painted == THitTests(htOnItem) && Hit.Contains(H); }
    bool Indented() const { return Tree.GetShowRoot() || Slots.Level > 0; }
    bool IsFixed() const { return Cell.State.Contains(gdFixed); }
    int State() const { return Tree.GetShowLogic() ? Node->GetStateIndex() : -1; }
    bool HasImage() const {
        return Tree.GetShowImages() &&
               ((Node->GetSelected() && Node->GetSelectedIndex() >= 0) || Node->GetImageIndex() >= 0);
    }
    int Behind(int SlotStart) const { return SlotStart + Tree.GetIndent(); }
    // The rows of pixels in which states and images are hit.
    bool InBand() const {
        const int Glyph = Tree.GetGlyphs()->GetHeight();
        const int Side = Tree.GetStatesDrawed() ? Tree.GetButtonSize() : Glyph;
        const int Top = Indented() ? Cell.Rect.Top + (Cell.Rect.Height() - Side) / 2 : 0;
        return Y >= Top && Y <= Top + Glyph;
    }
    bool Near(const TRect& R, int Before) const {
        return X >= R.Left - Before && X <= R.Right && Y >= R.Top - 1 && Y <= R.Bottom;
    }
};

// Every difference between picture and hit test: the first rule that holds explains a pixel.
const char* const Differences[] = {"the last pixel", "fixed columns", "text only",      "fixed cells",
                                   "labels",         "state 0",       "unknown states", "which image",
                                   "wide parts",     "button zone",   "no button",      "odd box",
                                   "state zone",     "image zone",    "rows of a glyph"};

std::string DifferenceAt(const TPixel& P) {
    const int Label = P.Cell.Label->Left;
    // Points are mirrored one pixel further than cells.
    if (P.Mirrored() && P.Hit.IsEmpty() && !P.Tree.HasOption(goVertLine) && P.X == P.Cell.Rect.Right - 1)
        return "the last pixel";
    // Mirrored, every point among them belongs to column 0.
    if (P.Mirrored() && P.Hit.IsEmpty() && P.Tree.GetStructureCol() > 0 && P.IsFixed())
        return "fixed columns";
    // The label is hit to the end of the cell, not of its text.
    if (P.Tree.GetNodeSelectionStyle() == tnsTextOnly && P.IsPlain(htOnLabel) && P.X >= P.Cell.Label->Right)
        return "text only";
    // Their texts keep a pixel from the edges.
    if (P.IsFixed() && P.IsPlain(htOnLabel) && (P.X == Label - 1 || P.X == P.Cell.Rect.Right - 1))
        return "fixed cells";
    // Mirrored, states and images always have room, buttons without lines only where they are.
    const int Painted = Label - (P.IsFixed() ? 1 : 0);
    const int Hit = P.Tree.GetClientWidth() - P.Tree.DisplayRect(P.Node, true).Right;
    if (P.Mirrored() && (Hit - Painted) % P.Tree.GetIndent() == 0 && P.X >= std::min(Hit, Painted) &&
        P.X < std::max(Hit, Painted) + (P.IsFixed() ? 1 : 0))
        return "labels";
    // Painted as an empty glyph, and no state to the hit test.
    if (P.State() == 0 && P.X >= P.Slots.State && P.X < Label) return "state 0";
    // Not drawn and without room, but hit.
    if (P.State() > 10 && P.Tree.GetStatesDrawed() && P.X >= P.Slots.State &&
        P.X < P.Slots.State + 2 * P.Tree.GetIndent())
        return "unknown states";
    // The current node's is painted as selected, a missing picture takes no room.
    if (P.Cell.Picture.has_value() != P.HasImage() && P.X >= P.Slots.Rest && P.X <= P.Behind(P.Slots.Rest))
        return "which image";
    // What reaches out of its slot is hit as what lies there.
    const auto Out = [&](THitTest Part, int Slot) {
        return (P.Painted.Contains(Part) || (Part == htOnButton && P.Hit.Contains(Part))) &&
               (P.X < Slot || P.X >= P.Behind(Slot));
    };
    if (Out(htOnButton, P.Slots.Button) || Out(htOnStateIcon, P.Slots.State) || Out(htOnIcon, P.Slots.Rest))
        return "wide parts";
    // A pixel larger, and without the step to odd pixels of the drawn box.
    if (P.IsPlain(htOnButton) && P.Cell.Button && P.Near(*P.Cell.Button, P.Tree.GetStatesDrawed() ? 2 : 0))
        return "button zone";
    // The zone is there without children, too.
    if (P.IsPlain(htOnButton) && !P.Cell.Button && P.Tree.GetShowButtons() && P.Indented())
        return "no button";
    // Its last pixels lie outside the zone where the slot's middle is even.
    if (P.Painted.Contains(htOnButton) && P.Tree.GetStatesDrawed() && P.X == P.Cell.Button->Right - 1)
        return "odd box";
    // All that lies before the slot's end, beside the button too, in the rows of a glyph.
    if (P.IsPlain(htOnStateIcon) && P.State() > 0 && P.InBand() && P.X < P.Behind(P.Slots.State))
        return "state zone";
    if (P.IsPlain(htOnIcon) && P.HasImage() && P.InBand() && P.X < P.Behind(P.Slots.Rest))
        return "image zone";
    // Counted from a button's top, or the client's where the node has no slot for one.
    if ((P.Painted.Contains(htOnStateIcon) || P.Painted.Contains(htOnIcon)) && !P.InBand() &&
        P.Hit == THitTests(htOnItem))
        return "rows of a glyph";
    return {};
}

class TComparison {
public:
    explicit TComparison(unsigned Seed) : FRandom(Seed) {}

    void Step() {
        THitTree Tree;
        TImageList Images(nullptr, Pick({8, 16, 16, 30}), Pick({8, 16, 24}));
        Configure(Tree, Images);
        Tree.HandleNeeded();
        if (Tree.GetColCount() == 1) Tree.ModifyScrollBar(SB_HORZ, SB_THUMBPOSITION, Below(60), false);
        if (Tree.GetColCount() > Tree.GetFixedCols() + 1 && Tree.GetStructureCol() > Tree.GetFixedCols() &&
            Chance(3))
            Tree.SetLeftCol(Tree.GetFixedCols() + 1);
        Tree.SetTopRow(Tree.GetFixedRows() + static_cast<int>(Below(3)));
        Tree.Update();
        Tree.Cells.clear();
        Tree.Invalidate();
        Tree.Update();
        for (const auto& [Row, Cell] : Tree.Cells) Compare(Tree, Row, Cell);
    }

    int Pixels = 0;
    std::set<std::string> Needed; // differences
    std::map<std::pair<unsigned, unsigned>, int> Failures;

private:
    unsigned Below(unsigned Limit) { return static_cast<unsigned>(FRandom()) % Limit; }
    bool Chance(unsigned OneIn) { return Below(OneIn) == 0; }
    int Pick(std::initializer_list<int> Values) {
        return *std::next(Values.begin(),
                          static_cast<std::ptrdiff_t>(Below(static_cast<unsigned>(Values.size()))));
    }

    void Configure(THitTree& Tree, TImageList& Images) {
        Tree.SetBounds(0, 0, Pick({100, 150, 200}), Pick({61, 75, 90}));
        Tree.SetBiDiMode(Chance(2) ? bdLeftToRight : bdRightToLeft);
        TBitmap Picture;
        Picture.SetSize(Images.GetWidth(), Images.GetHeight());
        Images.Add(Picture);
        if (!Chance(4)) Tree.SetImages(&Images);
        Tree.SetButtonSize(5);
        Tree.SetIndent(Pick({12, 13, 15, 16, 19, 20, 25}));
        Tree.SetButtonSize(Pick({7, 9, 11}));
        Tree.SetShowlines(!Chance(3));
        Tree.SetShowButtons(!Chance(3));
        Tree.SetShowRoot(!Chance(3));
        Tree.SetShowLogic(!Chance(3));
        Tree.SetShowImages(!Chance(3));
        Tree.SetStatesDrawed(Chance(2));
        Tree.SetCtl3D(Chance(2));
        if (Chance(4)) Tree.SetNodeSelectionStyle(tnsTextOnly);
        TGridOptions Options;
        if (Chance(2)) Options += TGridOptions{goVertLine, goHorzLine, goFixedVertLine, goFixedHorzLine};
        if (Chance(2)) Options.Include(goRangeSelect);
        if (Chance(3)) Options.Include(goRowSelect);
        Tree.SetOptions(Options);
        Tree.SetGridLineWidth(Options.Contains(goVertLine) ? Pick({1, 1, 3}) : 0);
        Tree.SetDefaultRowHeight(Pick({16, 17, 20, 25, 32}));
        Tree.SetColCount(Pick({1, 3, 3, 4}));
        Tree.SetFixedRows(Chance(2) ? 1 : 0);
        if (Tree.GetColCount() > 1) Tree.SetFixedCols(Pick({0, 0, 1, 2}));
        Tree.SetStructureCol(static_cast<int>(Below(static_cast<unsigned>(Tree.GetColCount()))));
        for (int Col = 0; Col < Tree.GetColCount(); ++Col) Tree.SetColWidths(Col, Pick({20, 35, 70}));
        Tree.SetColWidths(Tree.GetStructureCol(), Pick({60, 90, 120, 240}));
        Tree.Build("A+\n B+\n  C\n  D+\n   E\nF\n G\n H\nI+\n J\n");
        for (TFlyNode* Node = Tree.GetItems()->GetFirstNode(); Node; Node = Node->GetNext()) {
            Node->SetStateIndex(static_cast<int>(Below(13)) - 1);
            Node->SetImageIndex(Pick({-1, 0, 0}));
            Node->SetSelectedIndex(Pick({-1, 0, 0}));
            if (Chance(3)) Node->SetSelected(true);
            if (Node->GetRow() >= 0 && Chance(4)) Tree.SetRowHeights(Node->GetRow(), Pick({12, 19, 28}));
        }
    }

    void Compare(THitTree& Tree, int Row, const TPaintedCell& Cell) {
        TFlyNode* Node = Tree.GetNodeAtRow(Row);
        ASSERT_TRUE(Node && Cell.Label) << "row " << Row << " shows no text";
        TPixel P{Tree, Node, Cell, Tree.GetOutlineSlots(Node, Cell.Rect.Left)};
        const int Width = Tree.GetClientWidth();
        const int Leading = Tree.GetStructureCol() < Tree.GetFixedCols() ? 0 : FixedWidth(Tree);
        for (P.Y = Cell.Rect.Top; P.Y < std::min(Cell.Rect.Bottom, Tree.GetClientHeight()); ++P.Y) {
            for (P.X = std::max(Cell.Rect.Left, Leading); P.X < std::min(Cell.Rect.Right, Width); ++P.X) {
                P.Painted = PaintedAt(P);
                P.Hit = Tree.GetHitTestInfoAt(P.Mirrored() ? Width - 1 - P.X : P.X, P.Y);
                ++Pixels;
                if (P.Hit != P.Painted) Explain(P);
            }
        }
    }

    static int FixedWidth(THitTree& Tree) {
        TExGridDI DI;
        Tree.CalcDI(DI);
        return DI.Horz.FixedBoundary;
    }

    // What was painted last is on top.
    static THitTests PaintedAt(const TPixel& P) {
        const auto In = [&](const std::optional<TRect>& R) { return R && R->Contains({P.X, P.Y}); };
        if (In(P.Cell.Label)) return {htOnItem, htOnLabel};
        if (In(P.Cell.Picture)) return {htOnItem, htOnIcon};
        if (In(P.Cell.Glyph)) return {htOnItem, htOnStateIcon};
        if (In(P.Cell.Button)) return {htOnItem, htOnButton};
        if (P.X < P.Slots.Button) return {htOnItem, htOnIndent};
        return htOnItem;
    }

    void Explain(const TPixel& P) {
        if (const std::string Name = DifferenceAt(P); !Name.empty()) {
            Needed.insert(Name);
            return;
        }
        if (Failures[{P.Painted.Bits(), P.Hit.Bits()}]++ > 0) return; // each kind once
        ADD_FAILURE() << P.X << "," << P.Y << " of " << P.Node->GetText() << " shows " << P.Painted.Bits()
                      << " but hits " << P.Hit.Bits() << ", cell " << P.Cell.Rect.Left << ","
                      << P.Cell.Rect.Top << " slots " << P.Slots.Button << " " << P.Slots.State << " "
                      << P.Slots.Rest << " label " << P.Cell.Label->Left << (P.Mirrored() ? " mirrored" : "");
    }

    std::mt19937 FRandom;
};

TEST(TreeHit, WhatIsPaintedIsWhatIsHit) {
    constexpr int Steps = 40;
    constexpr unsigned Seed = 20240229;
    SCOPED_TRACE("seed " + std::to_string(Seed));
    TComparison Comparison(Seed);
    for (int Step = 0; Step < Steps; ++Step) {
        SCOPED_TRACE("step " + std::to_string(Step));
        Comparison.Step();
    }
    EXPECT_GT(Comparison.Pixels, 100000);
    for (const char* Name : Differences) EXPECT_TRUE(Comparison.Needed.contains(Name)) << Name;
    EXPECT_EQ(Comparison.Needed.size(), std::size(Differences));
}

} // namespace
} // namespace quill
