// Counts, extents, moving and deleting, and component streams.
#include "tests/exgrid/GridTestSupport.h"

#include "host/base/Filers.h"

#include <functional>
#include <map>
#include <vector>

namespace quill::testing {
namespace {

std::string Numbers(int Count, const std::function<int(int)>& NumberOf) {
    std::string Result;
    for (int I = 0; I < Count; ++I) Result += (I > 0 ? " " : "") + std::to_string(NumberOf(I));
    return Result;
}
std::string Widths(TCustomExGrid& Grid) {
    return Numbers(Grid.GetColCount(), [&](int I) { return Grid.GetColWidths(I); });
}
std::string Heights(TCustomExGrid& Grid) {
    return Numbers(Grid.GetRowCount(), [&](int I) { return Grid.GetRowHeights(I); });
}

template <class TAction>
std::string MessageOf(TAction Action) {
    try {
        Action();
    } catch (const EInvalidGridOperation& E) {
        return E.GetMessage();
    }
    return "nothing raised";
}

TEST(GridSize, CountsStayAboveTheirLimits) {
    TTestGrid Grid(400, 300, 3, 5);
    Grid.SetColCount(0);
    EXPECT_EQ(Grid.GetColCount(), 1);
    Grid.SetRowCount(0);
    EXPECT_EQ(MessageOf([&] { Grid.SetFixedRows(2); }), "Fixed row count must be less than row count (2)");
    EXPECT_EQ(Grid.GetFixedRows(), 1);
    Grid.SetFixedCols(3); // raises the column count
    EXPECT_EQ(Grid.GetColCount(), 4);
    EXPECT_EQ(MessageOf([&] { Grid.SetFixedCols(-1); }), "Grid index out of range (-1)");
    Grid.SetColCount(2); // lowers the fixed columns
    EXPECT_EQ(Grid.GetFixedCols(), 1);
}

TEST(GridSize, TooManyAndTooFewAreRefusedBeforeAnythingChanges) {
    TTestGrid Grid(400, 300, 3, 5);
    Grid.SetColWidths(1, 10);
    const std::pair<const char*, void (*)(TTestGrid&)> Cases[] = {
        {"Grid too large for operation (134217726)", [](TTestGrid& G) { G.SetColCount(0x7FFFFFE); }},
        {"Too many rows or columns deleted (-1)", [](TTestGrid& G) { G.ChangeSize(-1, 5); }},
        {"Too many rows or columns deleted (-2)", [](TTestGrid& G) { G.AdjustSize(2, -2, false); }},
        {"Too many rows or columns deleted (-6)", [](TTestGrid& G) { G.AdjustSize(0, -6, true); }},
        {"Grid index out of range (4)", [](TTestGrid& G) { G.AdjustSize(4, 1, false); }},
        {"Grid index out of range (3)", [](TTestGrid& G) { G.SetColWidths(3, 10); }},
        {"Grid index out of range (5)", [](TTestGrid& G) { G.SetColAlignMent(5, taCenter); }},
        {"Grid index out of range (3)", [](TTestGrid& G) { G.MoveColumn(0, 3); }},
        {"Grid index out of range (5)", [](TTestGrid& G) { G.DeleteRow(5); }},
    };
    for (const auto& [Message, Act] : Cases) {
        EXPECT_EQ(MessageOf([&] { Act(Grid); }), Message);
        EXPECT_EQ(Widths(Grid), "75 10 75") << Message;
        EXPECT_EQ(Grid.GetRowCount(), 5) << Message;
    }
    // Rows without stored heights have no such limit; with them they have.
    Grid.SetRowCount(0x7FFFFFE);
    EXPECT_EQ(MessageOf([&] { Grid.SetRowHeights(1, 10); }), "Grid too large for operation (134217726)");
    Grid.SetRowCount(5);
    Grid.SetRowHeights(1, 10);
    EXPECT_EQ(MessageOf([&] { Grid.SetRowCount(0x7FFFFFE); }), "Grid too large for operation (134217726)");
    EXPECT_EQ(Heights(Grid), "24 10 24 24 24");
}

TEST(GridSize, ExtentsAreReadWithDefaultsAndKeptAcrossSizes) {
    TTestGrid Grid(400, 300, 3, 5);
    Grid.SetColWidths(1, 40);
    Grid.SetDefaultColWidth(60); // columns of their own width keep it
    Grid.SetColCount(2);
    Grid.SetColCount(5);
    EXPECT_EQ(Widths(Grid), "60 40 60 60 60");
    Grid.AdjustSize(1, 2, false);
    EXPECT_EQ(Widths(Grid), "60 60 60 40 60 60 60");
    Grid.AdjustSize(0, -2, false);
    EXPECT_EQ(Widths(Grid), "60 40 60 60 60");
    Grid.SetTabStops(1, false);
    Grid.SetColAlignMent(2, taRightJustify);
    Grid.SetColCount(2);
    Grid.SetColCount(4);
    EXPECT_FALSE(Grid.GetTabStops(1));
    EXPECT_EQ(Grid.GetColAlignMent(2), taLeftJustify);
}

TEST(GridSize, ChangesAreAnnounced) {
    TTestGrid Grid(400, 300, 3, 5);
    std::string Log;
    const auto Note = [&](const char* What, int Index, int Value) {
        Log += What + std::to_string(Index) + " " + std::to_string(Value) + ", ";
    };
    Grid.OnColumnWidthChanging = [&](int Index, int& Value) {
        Note("changing ", Index, Value);
        Value = std::min(Value, 50);
    };
    Grid.OnColumnWidthChanged = [&](int Index, int Value) { Note("width ", Index, Value); };
    Grid.OnRowHeightChanging = [&](int, int& Value) { Value *= 2; };
    Grid.OnRowHeightChanged = [&](int Index, int Value) { Note("height ", Index, Value); };
    Grid.SetColWidths(1, 90);
    Grid.SetColWidths(1, 50); // nothing new
    Grid.SetRowHeights(2, 8);
    EXPECT_EQ(Log, "changing 1 90, width 1 50, height 2 16, ");
    Grid.Calls.clear();
    Grid.SetColCount(4);
    Grid.SetRowCount(6);
    EXPECT_EQ(Grid.Calls, "Updatewidths ColCountChanged Updatewidths ");
}

TEST(GridSize, TheCurrentCellStaysInside) {
    TTestGrid Grid(400, 300, 5, 10);
    Grid.Focus(4, 9);
    Grid.SetRowCount(6);
    EXPECT_EQ(Grid.State(), "4,5 [4,5..4,5] @0,1");
    Grid.SetColCount(3);
    EXPECT_EQ(Grid.State(), "2,5 [2,5..2,5] @0,1");
    // A handler that refuses every cell cannot keep it outside.
    Grid.OnSelectCell = [](TObject*, int, int, bool& CanSelect) { CanSelect = false; };
    Grid.SetRowCount(1);
    EXPECT_EQ(Grid.State(), "2,0 [2,0..2,0] @0,1");
    Grid.OnSelectCell = nullptr;
    Grid.SetRowCount(20);
    EXPECT_EQ(Grid.GetRow(), 19);
    Grid.SetFixedCols(2); // starts over
    EXPECT_EQ(Grid.State(), "2,1 [2,1..2,1] @2,1");
}

TEST(GridSize, DeletingTakesTheExtentsAlong) {
    TTestGrid Grid(400, 300, 4, 5);
    for (int I = 0; I < 4; ++I) Grid.SetColWidths(I, 10 * (I + 1));
    for (int I = 0; I < 5; ++I) Grid.SetRowHeights(I, I + 11);
    std::string Moves;
    Grid.OnColumnMoved = [&](TObject*, int From, int To) { Moves += Show(TGridCoord{From, To}) + " "; };
    Grid.OnRowMoved = Grid.OnColumnMoved;
    Grid.Focus(1, 2);
    Grid.DeleteColumn(1);
    EXPECT_EQ(Widths(Grid), "10 30 40");
    EXPECT_EQ(Grid.GetCol(), 1); // on what has taken its place
    Grid.DeleteColumn(0);
    EXPECT_EQ(Widths(Grid), "30 40");
    EXPECT_EQ(Grid.GetCol(), 0); // along with its column
    Grid.DeleteRow(2);
    EXPECT_EQ(Heights(Grid), "11 12 14 15");
    EXPECT_EQ(Grid.GetRow(), 2);
    Grid.Focus(0, 3);
    Grid.DeleteRow(3); // the last one
    EXPECT_EQ(Heights(Grid), "11 12 14");
    EXPECT_EQ(Grid.GetRow(), 2);
    EXPECT_EQ(Moves, "1,3 0,2 2,4 ");
}

TEST(GridSize, MovingKeepsTheCurrentCellOnItsColumn) {
    TTestGrid Grid(400, 300, 4, 6);
    for (int I = 0; I < 4; ++I) Grid.SetColWidths(I, 10 * (I + 1));
    Grid.SetColAlignMent(1, taCenter);
    Grid.Focus(1, 2);
    Grid.MoveColumn(1, 3);
    EXPECT_EQ(Widths(Grid), "10 30 40 20");
    EXPECT_EQ(Grid.GetColAlignMent(3), taCenter);
    EXPECT_EQ(Grid.State(), "3,2 [3,2..3,2] @0,1");
    Grid.MoveColumn(3, 0);
    EXPECT_EQ(Grid.GetCol(), 0);
    Grid.MoveRow(5, 1);
    EXPECT_EQ(Grid.GetRow(), 3);
}

// --- streams ---------------------------------------------------------------------------------------------------

using TLists = std::map<std::string, std::vector<int>>;

// The defined properties of one component, in memory.
class TMemoryWriter : public TWriter {
public:
    TLists Lists;
    void DefineProperty(const std::string& Name, std::function<void(TReader&)>,
                        std::function<void(TWriter&)> WriteData, bool HasData) override {
        FCurrent = &Name;
        if (HasData) WriteData(*this);
    }
    void DefineBinaryProperty(const std::string&, std::function<void(TStream&)>,
                              std::function<void(TStream&)>, bool) override {}
    void WriteListBegin() override { ++FDepth; }
    void WriteListEnd() override { --FDepth; }
    void WriteInteger(int Value) override {
        EXPECT_EQ(FDepth, 1);
        Lists[*FCurrent].push_back(Value);
    }
    void WriteBoolean(bool) override { ADD_FAILURE(); }
    void WriteString(const std::string&) override { ADD_FAILURE(); }

private:
    const std::string* FCurrent = nullptr;
    int FDepth = 0;
};

TLists Write(TTestGrid& Grid, TCustomExGrid* Ancestor = nullptr) {
    TMemoryWriter Writer;
    Writer.SetAncestor(Ancestor);
    Grid.DefineProperties(Writer);
    return Writer.Lists;
}

class TMemoryReader : public TReader {
public:
    explicit TMemoryReader(TLists ALists) : FLists(std::move(ALists)) {}
    void DefineProperty(const std::string& Name, std::function<void(TReader&)> ReadData,
                        std::function<void(TWriter&)>, bool) override {
        if (!FLists.contains(Name)) return;
        FCurrent = FLists[Name];
        ReadData(*this);
    }
    void DefineBinaryProperty(const std::string&, std::function<void(TStream&)>,
                              std::function<void(TStream&)>, bool) override {}
    void ReadListBegin() override {}
    void ReadListEnd() override {
        if (!EndOfList()) throw EReadError("The list goes on");
    }
    bool EndOfList() override { return FCurrent.empty(); }
    int ReadInteger() override {
        if (EndOfList()) throw EReadError("The list has ended");
        const int Value = FCurrent.front();
        FCurrent.erase(FCurrent.begin());
        return Value;
    }
    bool ReadBoolean() override { throw EReadError("No Boolean here"); }
    std::string ReadString() override { throw EReadError("No string here"); }

private:
    TLists FLists;
    std::vector<int> FCurrent;
};

TEST(GridStream, ExtentsTravelWithTheComponent) {
    TTestGrid Grid(400, 300, 3, 4);
    EXPECT_EQ(Write(Grid), TLists());
    Grid.SetColWidths(0, 10);
    Grid.SetColWidths(2, 30);
    Grid.SetRowHeights(1, 5);
    const TLists Written = Write(Grid);
    EXPECT_EQ(Written, (TLists{{"ColWidths", {10, 75, 30}}, {"RowHeights", {24, 5, 24, 24}}}));
    TMemoryReader Short({{"ColWidths", {10, 20}}});
    EXPECT_THROW(TTestGrid(400, 300, 3, 4).DefineProperties(Short), EReadError);

    TTestGrid Copy(400, 300, 1, 2);
    int Announced = 0;
    Copy.OnColumnWidthChanged = [&](int, int) { ++Announced; };
    Copy.Focus(0, 1);
    Copy.BeginLoading();
    Copy.SetFixedCols(0);
    Copy.SetColCount(3);
    Copy.SetRowCount(4);
    TMemoryReader Reader(Written);
    Copy.DefineProperties(Reader);
    Copy.EndReading();
    Copy.EndLoading();
    EXPECT_EQ(Widths(Copy), "10 75 30");
    EXPECT_EQ(Heights(Copy), "24 5 24 24");
    EXPECT_EQ(Announced, 0);
    EXPECT_EQ(Copy.State(), "0,1 [0,1..0,1] @0,1");

    EXPECT_EQ(Write(Grid, &Copy), TLists()) << "against an ancestor only differences are written";
    Copy.SetRowHeights(1, 6);
    EXPECT_EQ(Write(Grid, &Copy), (TLists{{"RowHeights", {24, 5, 24, 24}}}));
    Grid.SetSaveExtents(false);
    EXPECT_EQ(Write(Grid), TLists());
}

TEST(GridStream, LoadingTakesCountsInAnyOrder) {
    TTestGrid Grid(400, 300, 6, 10);
    Grid.SetFixedCols(3);
    Grid.Focus(5, 9);
    Grid.BeginLoading();
    Grid.SetColCount(2);
    EXPECT_EQ(Grid.GetFixedCols(), 3); // lowered neither now
    Grid.SetColCount(5);
    Grid.SetRowCount(4);
    Grid.EndReading();
    Grid.EndLoading();
    EXPECT_EQ(Grid.State(), "3,1 [3,1..3,1] @3,1");
    Grid.BeginLoading();
    Grid.SetColCount(2);
    Grid.EndLoading();
    EXPECT_EQ(Grid.State(), "1,1 [1,1..1,1] @1,1") << "a scrollable column remains";
}

} // namespace
} // namespace quill::testing
