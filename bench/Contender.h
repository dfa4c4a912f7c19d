// What a benchmark asks of every contender: one adapter for each of them does it as its users would.
#pragma once

#include "bench/Data.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace quill::bench {

// A node as its contender knows it; 0 stands for none, or for the top level. Changes of the tree may end it.
using TNode = std::uintptr_t;

// A place in the client area, pixels.
struct TSpot {
    int X = 0;
    int Y = 0;
};

enum class TKey { Down, PageDown, Edit, Accept };

// The contender does not offer what a workload needs.
class ENotOffered : public std::runtime_error {
public:
    ENotOffered() : std::runtime_error("not offered") {}
};

// A window of 1000 x 700 pixels with rows of RowHeight and columns of ColumnWidths, lines between the nodes, whole
// rows selected, several at a time. Operations change the tree; Show lets the user see it.
class TContender {
public:
    static constexpr int Width = 1000;
    static constexpr int Height = 700;
    static constexpr int RowHeight = 18;
    static constexpr int FontPixels = 13;
    static constexpr const char* FontName = "DejaVu Sans";
    static constexpr int ColumnWidths[Columns] = {400, 300, 250};
    using TTextsOf = TTexts (*)(int Number);

    virtual ~TContender() = default;

    // --- window -----------------------------------------------------------------------------------------------
    // Opens the window, empty; the options come before.
    virtual void Open() = 0;
    virtual void UseChecks() { throw ENotOffered(); }
    virtual void UseEditing() { throw ENotOffered(); }
    virtual void UseHotTracking() { throw ENotOffered(); }
    virtual void UseCollation() = 0;
    // Handles all events that wait, until nothing is left to paint.
    virtual void Show() = 0;
    // Paint events of the client area so far, as the toolkit delivered them.
    virtual long GetPaintCount() const = 0;
    virtual void RepaintAll() = 0;

    // --- contents ---------------------------------------------------------------------------------------------
    // In bulk, collapsed. The nodes are numbered in depth-first order.
    virtual void Fill(const TShape& Shape) = 0;
    // Count siblings below the top-level node Parent, or at the top level.
    virtual void FillList(int Count, TTextsOf TextsOf, bool BelowOne) = 0;
    // A file of lines: a tab for each level, then the texts with commas between, those with spaces quoted. The first
    // line is a header.
    virtual void Load(const std::string& FileName) = 0;
    virtual void Clear() = 0;
    virtual TNode GetChild(TNode Parent, int Index) = 0;
    // Behind the last top-level node.
    virtual void Append(const TTexts& Texts) = 0;
    virtual void InsertBefore(TNode Sibling, const TTexts& Texts) = 0;
    virtual void Delete(TNode Node) = 0;
    // All nodes of FillList by their first column: by bytes, or with UseCollation as the user's language has it.
    virtual void Sort() = 0;
    virtual std::string GetText(TNode Node) = 0;
    virtual int GetCheckState(TNode) { throw ENotOffered(); }

    // --- view -------------------------------------------------------------------------------------------------
    virtual void ExpandAll() = 0;
    virtual void CollapseAll() = 0;
    virtual void SetExpanded(TNode Node, bool Value) = 0;
    // To the top of the window.
    virtual void ScrollTo(TNode Node) = 0;
    virtual void ScrollToEnd() = 0;
    virtual void ScrollRow() = 0;
    virtual void ScrollPage() = 0;
    virtual void SelectAll() = 0;
    virtual void ClearSelection() = 0;
    virtual void SetCurrent(TNode Node) = 0;
    virtual TNode GetNodeAt(TSpot Spot) = 0;
    // A number that tells where Node is among the rows (or pixels) of all visible nodes.
    virtual long GetRowOf(TNode Node) = 0;
    virtual TSpot GetTextSpot(TNode Node) = 0;
    virtual TSpot GetCheckSpot(TNode) { throw ENotOffered(); }
    virtual bool IsEditing() { throw ENotOffered(); }

    // --- input, as the user gives it --------------------------------------------------------------------------
    virtual void Press(TKey Key) = 0;
    // A letter for the search by typing.
    virtual void Type(char) { throw ENotOffered(); }
    virtual void Click(TSpot Spot) = 0;
    virtual void MoveMouse(TSpot Spot) = 0;
    // One notch towards the user.
    virtual void TurnWheel() { throw ENotOffered(); }
};

struct TContenderEntry {
    const char* Name;
    std::function<std::unique_ptr<TContender>()> Make;
};

// Defined once in each program: starts its toolkit and names its contenders.
std::vector<TContenderEntry> StartToolkit(int& ArgCount, char** Args);

} // namespace quill::bench
