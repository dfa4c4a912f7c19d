// Captions, sort arrow, clicks on them, and sizing and moving in a tree.
#include "tests/tree/TreeTestSupport.h"

#include "host/graphics/RecordingCanvas.h"

#include <cstdio>
#include <stdexcept>

namespace quill {
namespace {

// Columns of 100 pixels with captions above them.
class TCaptionTree : public TTestTree {
public:
    TCaptionTree() {
        SetFixedRows(1);
        SetColCount(3);
        Build("Fruit+\n Apple\n Pear\nNuts");
        SetOptions({goFixedVertLine, goFixedHorzLine, goVertLine, goHorzLine, goRangeSelect, goColSizing,
                    goRowSizing, goColMoving});
        for (int Col = 0; Col < 3; ++Col) SetColWidths(Col, 100);
        for (const auto& [Col, Text] : {std::pair(0, "Name"), {1, "Size"}, {2, "Date"}})
            SetCaptions(Col, Text);
        HandleNeeded();
        Update();
    }
    void ColSized(int ACol, int OldWidth, int NewWidth) override { Tell("col", ACol, OldWidth, NewWidth); }
    void RowSized(int ARow, int OldHeight, int NewHeight) override {
        Tell("row", ARow, OldHeight, NewHeight);
    }
    void CaptionClick(int DataCol) override {
        Log += "click" + std::to_string(DataCol) + " ";
        TTestTree::CaptionClick(DataCol);
    }

    std::string TakeLog() { return std::exchange(Log, {}); }
    // Whether the text of any cell of a column is drawn into less than it needs.
    bool CutsTexts(int Col) {
        bool More = true;
        bool Cut = false;
        for (int Row = 0; Row < GetRowCount(); ++Row) {
            TRecordingCanvas Canvas;
            Canvas.SetFont(GetFont());
            DrawCell(Canvas, Col, Row, CellRect(Col, Row), Row == 0 ? gdFixed : TExGridDrawState(), More);
            TRect R;
            if (std::sscanf(Canvas.GetLog("Text").c_str(), "Text (%d,%d,%d,%d)", &R.Left, &R.Top, &R.Right,
                            &R.Bottom) == 4)
                Cut = Cut || R.Width() < Canvas.TextWidth(GetEditText(Col, Row));
        }
        return Cut;
    }

    // Whether the picture of a full paint is the one that is there.
    bool IsPaintedRight() {
        const QImage Seen = GetSurfaceImage().copy();
        Invalidate();
        return Seen == GetSurfaceImage();
    }

    std::string Log;

private:
    void Tell(const char* What, int Index, int Old, int New) {
        Log += What + std::to_string(Index) + ":" + std::to_string(Old) + ">" + std::to_string(New) + " ";
    }
};

TEST(TreeCaptions, StandWithTheirDataAndGiveWayToTheProgramsTexts) {
    TCaptionTree Tree;
    const auto Texts = [&] {
        std::string Result;
        for (int Col = 0; Col < 4; ++Col) Result += Tree.GetEditText(Col, 0) + "|";
        return Result;
    };
    EXPECT_EQ(Texts(), "Name|Size|Date||");
    Tree.MoveColumn(1, 2);
    EXPECT_EQ(Texts(), "Name|Date|Size||");
    Tree.OnGetEditText = [](TObject*, int Col, int Row, std::string& Value) {
        if (Col == 0 && Row == 0) Value = "Mine";
    };
    EXPECT_EQ(Texts(), "Mine|Date|Size||");
    Tree.SetFixedRows(0);
    EXPECT_EQ(Tree.GetEditText(1, 0), "") << "a caption is no text of a node";
}

TEST(TreeCaptions, AClickTellsTheDataColumn) {
    TCaptionTree Tree;
    Tree.OnCaptionClick = [&](TObject*, int DataCol) { Tree.Log += "event" + std::to_string(DataCol); };
    Tree.MoveColumn(1, 2);
    Tree.Drag(150, 10, 150, 10);
    EXPECT_EQ(Tree.TakeLog(), "click2 event2");
    Tree.Drag(150, 10, 150, 60); // released elsewhere
    Tree.Drag(150, 60, 150, 10);
    EXPECT_EQ(Tree.TakeLog(), "");
    auto* Doomed = new TCaptionTree;
    Doomed->OnCaptionClick = [&](TObject*, int) { delete std::exchange(Doomed, nullptr); };
    Doomed->Drag(50, 10, 50, 10);
    EXPECT_EQ(Doomed, nullptr);
}

TEST(TreeCaptions, TheArrowPointsInTheSortedDirection) {
    TCaptionTree Tree;
    // The lines of the arrow from top to bottom, by their width in pixels.
    const auto AtEnd = [&](int Col) {
        const TRect R = Tree.CellRect(Col, 0);
        const int Left = Tree.UseRightToLeftAlignment() ? R.Left + 3 : R.Right - 14;
        const QImage Image = Tree.GetSurfaceImage();
        const QColor Ink = Tree.palette().color(QPalette::ButtonText);
        std::string Result;
        for (int Y = 2; Y < 20; ++Y) {
            int Count = 0;
            for (int X = Left; X < Left + 11; ++X) Count += Image.pixelColor(X, Y) == Ink;
            if (Count > 0) Result += std::to_string(Count) + " ";
        }
        return Result;
    };
    EXPECT_EQ(AtEnd(1), "");
    Tree.SetSortColumn(1);
    EXPECT_EQ(AtEnd(1), "1 3 5 7 9 ");
    Tree.SetSortDirection(srtDescending);
    EXPECT_EQ(AtEnd(1), "9 7 5 3 1 ");
    Tree.MoveColumn(1, 2);
    EXPECT_EQ(AtEnd(1) + "/" + AtEnd(2), "/9 7 5 3 1 ");
    Tree.SetBiDiMode(bdRightToLeft);
    EXPECT_EQ(AtEnd(2), "9 7 5 3 1 ");
    Tree.SetSortColumn(-1);
    EXPECT_EQ(AtEnd(2), "");
}

TEST(TreeSizing, AFinishedSizingIsReportedOnce) {
    const std::tuple<const char*, int, int, int, int, const char*> Cases[] = {
        {"a column", 100, 10, 130, 10, "col0:100>130 "},
        {"from the far side of its line", 103, 10, 93, 10, "col0:100>90 "},
        {"a click on the border", 100, 10, 100, 10, "col0:100>100 "},
        {"a row", 5, 49, 5, 59, "row1:24>34 "},
    };
    for (const auto& [What, X, Y, ToX, ToY, Log] : Cases) {
        TCaptionTree Tree;
        const bool Row = Y > 24;
        if (Row) {
            Tree.SetColCount(4);
            Tree.SetFixedCols(1);
            Tree.SetStructureCol(1);
        }
        Tree.Drag(X, Y, ToX, ToY);
        EXPECT_EQ(Tree.TakeLog(), Log) << What;
        Tree.Drag(150, 60, 150, 60);
        EXPECT_EQ(Tree.TakeLog(), "") << What;
        EXPECT_TRUE(!Row || Tree.GetNodeAtRow(1)->GetHeightField() == 34);
    }
    // What was taken back was not sized, and another button meanwhile means nothing.
    TCaptionTree Tree;
    Tree.Send(WM_LBUTTONDOWN, 100, 10);
    Tree.Send(WM_MOUSEMOVE, 140, 10);
    Tree.Perform(WM_KEYDOWN, VK_ESCAPE, 0);
    Tree.Send(WM_LBUTTONUP, 140, 10, {});
    EXPECT_EQ(Tree.GetColWidths(0), 100);
    Tree.Send(WM_LBUTTONDOWN, 100, 10);
    Tree.Send(WM_MOUSEMOVE, 120, 10);
    Tree.Send(WM_RBUTTONDOWN, 250, 10, {ssLeft, ssRight});
    Tree.Send(WM_RBUTTONUP, 250, 10);
    EXPECT_EQ(Tree.TakeLog(), "");
    Tree.Send(WM_MOUSEMOVE, 130, 10);
    Tree.Send(WM_LBUTTONUP, 130, 10, {});
    EXPECT_EQ(Tree.TakeLog(), "col0:100>130 ");
}

TEST(TreeSizing, TheCursorPromisesWhatAPressKeeps) {
    TCaptionTree Tree;
    Tree.SetFixedCols(1); // the structure, whose buttons and indents take no other presses
    Tree.SetRowHeights(2, 16);
    int Promised = 0;
    for (int Y = 24; Y < 140; ++Y) {
        for (int X = 0; X < 100; X += 7) {
            Tree.Perform(WM_SETCURSOR, 0, MakePointParam(X, Y));
            const bool Promise = Tree.GetAppliedCursor() == TCustomExGrid::VertCursor;
            Tree.Send(WM_LBUTTONDOWN, X, Y);
            EXPECT_EQ(Tree.GetGridState() == gsRowSizing, Promise) << X << "," << Y;
            Tree.Send(WM_LBUTTONUP, X, Y, {});
            Promised += Promise;
        }
    }
    EXPECT_GT(Promised, 0);
}

TEST(TreeSizing, ADoubleClickShowsTheWholeTextOfEveryVisibleNode) {
    TCaptionTree Tree;
    Tree.Find("Pear")->SetText("A pear with a rather long name");
    Tree.Find("Apple")->SetCell(1, "a long text in the second column");
    Tree.SetSortColumn(2);
    Tree.SetBounds(0, 0, 900, 400);
    for (int Col = 0; Col < 3; ++Col) {
        Tree.FitColumn(Col);
        EXPECT_FALSE(Tree.CutsTexts(Col)) << Col;
        Tree.SetColWidths(Col, Tree.GetColWidths(Col) - 12);
        EXPECT_TRUE(Tree.CutsTexts(Col)) << Col << ": wider than needed";
    }
}

TEST(TreeSizing, TheLastColumnThatFillsTheClientHasNoBorder) {
    TCaptionTree Tree;
    const auto CursorAt = [&](int X) {
        Tree.Perform(WM_SETCURSOR, 0, MakePointParam(X, 10));
        return Tree.GetAppliedCursor();
    };
    EXPECT_EQ(CursorAt(302), TCustomExGrid::HorzCursor);
    Tree.SetFitColumnToClientWidth(true);
    EXPECT_EQ(CursorAt(398), crDefault);
    Tree.Drag(201, 10, 241, 10);
    EXPECT_EQ(Tree.GetColWidths(1), 140);
    EXPECT_EQ(Tree.GetColWidths(2), 400 - 101 - 141 - 1);
}

TEST(TreeCaptions, LinesOfTheRowBelowOutliveTheRepaintOfACell) {
    TCaptionTree Tree;
    Tree.SetBounds(0, 0, 300, 90);
    for (const int Top : {1, 2, 3}) {
        Tree.SetTopRow(Top); // captions stay as they are
        for (int Row = -1; Row < Tree.GetRowCount(); ++Row) {
            Tree.InvalidateCell(0, Row);
            EXPECT_TRUE(Tree.IsPaintedRight()) << "top " << Top << " row " << Row;
        }
    }
}

TEST(TreeSelecting, ARefusedClickKeepsAllMarksAndAThrowingOneLeavesNoFlagBehind) {
    TCaptionTree Tree;
    Tree.Send(WM_LBUTTONDOWN, 150, 30);
    Tree.Send(WM_MOUSEMOVE, 150, 60);
    Tree.Send(WM_LBUTTONUP, 150, 60, {});
    const std::string Marked = "Fruit(+)(sel)< Apple(sel) Pear Nuts";
    ASSERT_EQ(Tree.Rows(), Marked);
    Tree.OnChanging = [](TObject*, TFlyNode*, bool& Allow) { Allow = false; };
    const TRect Pear = Tree.DisplayRect(Tree.Find("Pear"), true);
    Tree.Drag(Pear.Left + 5, Pear.Top + 5, Pear.Left + 5, Pear.Top + 5);
    EXPECT_EQ(Tree.Rows(), Marked);
    Tree.OnChanging = nullptr;
    Tree.OnCollapsing = [](TObject*, TFlyNode*, bool&) { throw std::runtime_error("no"); };
    const TRect Fruit = Tree.CellRect(0, 1);
    EXPECT_THROW(Tree.MouseDown(mbLeft, ssLeft, Fruit.Left + 10, Fruit.Top + 12), std::runtime_error);
    EXPECT_FALSE(Tree.GetSkipPress());
}

TEST(TreeMoving, ADroppedColumnIsPaintedInItsNewPlaceAtOnce) {
    TCaptionTree Tree;
    Tree.Find("Apple")->SetCell(1, "one");
    Tree.Drag(150, 10, 280, 10);
    EXPECT_TRUE(Tree.IsPaintedRight());
    EXPECT_EQ(Tree.GetEditText(2, 2), "one");
    Tree.SetColCount(2); // which puts the columns back
    EXPECT_TRUE(Tree.IsPaintedRight());
}

TEST(TreeMoving, ADragMarksTheNodesBetweenPressAndMouse) {
    TCaptionTree Tree;
    Tree.Send(WM_LBUTTONDOWN, 150, 60);
    const std::pair<int, const char*> Moves[] = {{110, "Fruit(+) Apple(sel)< Pear(sel) Nuts(sel)"},
                                                 {85, "Fruit(+) Apple(sel)< Pear(sel) Nuts"},
                                                 {30, "Fruit(+)(sel) Apple(sel)< Pear Nuts"}};
    for (const auto& [Y, Expected] : Moves) {
        Tree.Send(WM_MOUSEMOVE, 150, Y);
        EXPECT_EQ(Tree.Rows(), Expected);
    }
    Tree.Send(WM_LBUTTONUP, 150, 30, {});
    EXPECT_EQ(Tree.Rows(), "Fruit(+)(sel) Apple(sel)< Pear Nuts");
}

} // namespace
} // namespace quill
