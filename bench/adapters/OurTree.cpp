// Our tree.
#include "bench/adapters/Adapters.h"
#include "bench/QtContender.h"
#include "exgrid/InplaceEdit.h"
#include "quilltree/QuillTree.h"

namespace quill::bench {
namespace {

class TOurTree : public TQtContender {
public:
    void UseChecks() override {
        FTree.SetShowLogic(true);
        // What a click on the mark means is the program's business.
        FTree.OnMouseUp = [this](TObject*, TMouseButton, TShiftState, int X, int Y) {
            TFlyNode* const Node = FTree.GetNodeAt(X, Y);
            if (!Node || !FTree.GetHitTestInfoAt(X, Y).Contains(htOnStateIcon)) return;
            Node->SetStateIndex(Node->GetStateIndex() == Unchecked ? Checked : Unchecked);
        };
    }
    void UseEditing() override { FTree.SetOptions({goRangeSelect, goEditing}); }
    void UseHotTracking() override { FTree.SetHotTrack(true); }
    void UseCollation() override {}
    void Open() override {
        FTree.GetItems()->Clear(); // a new tree has a node to show its look
        FTree.SetSmoothExpandCollapse(false);
        FTree.SetColCount(Columns);
        FTree.SetFixedCols(0);
        FTree.SetFixedRows(0);
        if (!FTree.HasOption(goEditing)) FTree.SetOptions({goRangeSelect, goRowSelect});
        FTree.SetDefaultRowHeight(RowHeight);
        for (int Col = 0; Col < Columns; ++Col) FTree.SetColWidths(Col, ColumnWidths[Col]);
        OpenWindow();
    }
    void RepaintAll() override { FTree.Invalidate(); }

    void Fill(const TShape& Shape) override {
        const TUpdateBracket Bracket(&Items());
        int Number = 0;
        for (int T = 0; T < Shape.Tops; ++T) {
            TFlyNode* const Top = Add(nullptr, TextsOf(Number++));
            for (int G = 0; G < Shape.Groups; ++G) {
                TFlyNode* const Group = Add(Top, TextsOf(Number++));
                for (int L = 0; L < TShape::Leaves; ++L) Add(Group, TextsOf(Number++));
            }
        }
    }
    void FillList(int Count, TTextsOf TextsOf, bool BelowOne) override {
        const TUpdateBracket Bracket(&Items());
        TFlyNode* const Parent = BelowOne ? Add(nullptr, TextsOf(0)) : nullptr;
        for (int Index = 0; Index < Count; ++Index) Add(Parent, TextsOf(Index));
    }
    void Load(const std::string& FileName) override { Items().LoadNodesFromFile(FileName); }
    void Clear() override { Items().Clear(); }
    TNode GetChild(TNode Parent, int Index) override {
        return AsNode(Parent ? AsItem(Parent)->GetItem(Index) : Items().GetItem(Index));
    }
    void Append(const TTexts& Texts) override { SetCells(Items().Add(nullptr, Texts[0]), Texts); }
    void InsertBefore(TNode Sibling, const TTexts& Texts) override {
        SetCells(Items().Insert(AsItem(Sibling), Texts[0]), Texts);
    }
    void Delete(TNode Node) override { AsItem(Node)->Delete(); }
    void Sort() override { Items().AlphaSort(); }
    std::string GetText(TNode Node) override { return AsItem(Node)->GetText(); }
    int GetCheckState(TNode Node) override { return AsItem(Node)->GetStateIndex(); }

    void ExpandAll() override { FTree.FullExpand(); }
    void CollapseAll() override { FTree.FullCollapse(); }
    void SetExpanded(TNode Node, bool Value) override { AsItem(Node)->SetExpanded(Value); }
    void ScrollTo(TNode Node) override { FTree.SetTopItem(AsItem(Node)); }
    void ScrollToEnd() override {
        FTree.SetTopRow(std::max(0, FTree.GetRowCount() - FTree.GetVisibleRowCount()));
    }
    void ScrollRow() override { FTree.Perform(WM_VSCROLL, SB_LINEDOWN, 0); }
    void ScrollPage() override { FTree.Perform(WM_VSCROLL, SB_PAGEDOWN, 0); }
    void SelectAll() override { FTree.SelectAll(); }
    void ClearSelection() override { FTree.FlushSelection(); }
    void SetCurrent(TNode Node) override { FTree.SetSelection(AsItem(Node)); }
    TNode GetNodeAt(TSpot Spot) override { return AsNode(FTree.GetNodeAt(Spot.X, Spot.Y)); }
    long GetRowOf(TNode Node) override { return AsItem(Node)->GetRow(); }
    TSpot GetTextSpot(TNode Node) override {
        const TRect Rect = FTree.DisplayRect(AsItem(Node), true);
        return {Rect.Left + 10, (Rect.Top + Rect.Bottom) / 2};
    }
    TSpot GetCheckSpot(TNode Node) override {
        const TRect Cell = FTree.CellRect(FTree.GetStructureCol(), AsItem(Node)->GetRow());
        const TOutlineSlots Slots = FTree.GetOutlineSlots(AsItem(Node), Cell.Left);
        return {Slots.State + FTree.GetIndent() / 2, (Cell.Top + Cell.Bottom) / 2};
    }
    bool IsEditing() override { return FTree.IsEditorShown(); }

protected:
    QAbstractScrollArea& GetArea() override { return FTree; }

private:
    TFlyNodes& Items() { return *FTree.GetItems(); }
    static TFlyNode* AsItem(TNode Node) { return reinterpret_cast<TFlyNode*>(Node); }
    static TNode AsNode(TFlyNode* Node) { return reinterpret_cast<TNode>(Node); }
    TFlyNode* Add(TFlyNode* Parent, const TTexts& Texts) {
        TFlyNode* const Node = Items().AddChild(Parent, {});
        const std::string_view Cells[] = {{}, Texts[1], Texts[2]};
        Node->StoreTexts(Texts[0], Cells);
        if (FTree.GetShowLogic()) Node->SetStateIndexField(Unchecked);
        return Node;
    }
    static void SetCells(TFlyNode* Node, const TTexts& Texts) {
        for (int Col = 1; Col < Columns; ++Col) Node->SetCell(Col, Texts[static_cast<std::size_t>(Col)]);
    }
    // State indexes of the two check-box glyphs.
    static constexpr int Unchecked = 1;
    static constexpr int Checked = 2;

    TQuillTree FTree;
};

} // namespace

std::unique_ptr<TContender> MakeOurTree() { return std::make_unique<TOurTree>(); }

} // namespace quill::bench
