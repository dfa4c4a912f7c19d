// Markup in cells, and tooltips.
#include "tests/tree/TreeTestSupport.h"

#include "host/graphics/RecordingCanvas.h"
#include "htmldraw/NVHTMLHintWindow.h"

#include <QApplication>
#include <QTest>

namespace quill {
namespace {

class TMarkupTree : public TTestTree {
public:
    TMarkupTree() {
        SetColCount(2);
        SetFixedRows(1);
        Build("<B>Bold</B> name+\n leaf");
        GetItems()->GetFirstNode()->SetCell(1, "<COLOR=#FF0000>red</COLOR> and black");
        SetCaptions(1, "<I>Caption</I>");
        SetHTMLDrawing(true);
        SetColWidths(0, 200);
        SetColWidths(1, 200);
        HandleNeeded();
    }
    // The pieces of text of a cell with their looks.
    std::string Drawn(int Col, int Row) {
        TRecordingCanvas Canvas;
        Canvas.SetFont(GetFont());
        Canvas.GetFont()->SetColor(clBlack);
        bool More = true;
        DrawCell(Canvas, Col, Row, Rect(0, 0, 200, 24), Row == 0 ? gdFixed : TExGridDrawState(), More);
        std::string Result;
        for (const std::string& Line : Canvas.GetLines()) {
            if (!Line.starts_with("TextOut")) continue;
            Result += Line.substr(Line.find('"')) + "; ";
        }
        return Result;
    }
};

TEST(TreeMarkup, IsDrawnInAllKindsOfCells) {
    TMarkupTree Tree;
    EXPECT_EQ(Tree.Drawn(0, 1), "\"Bold\", clWindowText bold; \" name\", clWindowText; ");
    EXPECT_EQ(Tree.Drawn(1, 1), "\"red\", clRed; \" and black\", clWindowText; ");
    EXPECT_EQ(Tree.Drawn(1, 0), "\"Caption\", clWindowText italic; ");
    Tree.SetHTMLDrawing(false);
    EXPECT_EQ(Tree.Drawn(0, 1), "");
}

TEST(TreeMarkup, CellsLieAsPlainTextsDo) {
    // In both directions and all alignments the text is where the plain one is.
    for (const TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
        for (const TAlignment Align : {taLeftJustify, taRightJustify, taCenter}) {
            TMarkupTree Tree;
            Tree.Find("leaf")->SetCell(1, "text");
            Tree.SetBiDiMode(Mode);
            Tree.SetColAlignMent(1, Align);
            // The first and the last column of pixels with ink.
            const auto Extent = [&] {
                Tree.Invalidate();
                const QImage Image = Tree.GetSurfaceImage();
                const TRect R = Tree.CellRect(1, 2);
                std::pair Ink(R.Right, R.Left);
                for (int X = R.Left; X < R.Right; ++X)
                    for (int Y = R.Top; Y < R.Bottom; ++Y)
                        if (qGray(Image.pixel(X, Y)) <= 100) Ink = {std::min(Ink.first, X), X};
                return Ink;
            };
            const auto Markup = Extent();
            Tree.SetHTMLDrawing(false);
            const auto Plain = Extent();
            EXPECT_NEAR(Markup.first, Plain.first, 1) << Mode << Align;
            EXPECT_NEAR(Markup.second, Plain.second, 1) << Mode << Align;
        }
    }
}

TEST(TreeMarkup, RowsAndColumnsAreMeasuredWithoutTheTags) {
    TMarkupTree Tree;
    const int Line = Tree.GetCanvas()->TextHeight("Ag");
    Tree.SetFitToHeight(true);
    EXPECT_EQ(Tree.GetRowHeights(1), Line + 2);
    Tree.Find("leaf")->SetCell(1, "one\ntwo");
    EXPECT_EQ(Tree.GetRowHeights(2), 2 * Line + 2);
    Tree.FitColumn(1);
    EXPECT_LT(Tree.GetColWidths(1), Tree.GetCanvas()->TextWidth("<COLOR=#FF0000>red</COLOR> and black"));
}

class TreeToolTips : public ::testing::Test {
protected:
    TreeToolTips() {
        Tree.SetColCount(2);
        Tree.SetFixedRows(1);
        Tree.Build("Short\nA node with a text that is much longer than its column\nEmpty");
        Tree.GetItems()->GetFirstNode()->SetCell(1, "A cell with a text that is much longer than its column");
        Tree.SetColWidths(0, 120);
        Tree.SetColWidths(1, 120);
        Tree.SetToolTips(true);
        Tree.SetToolTipPause(5000);
        Tree.show();
        QApplication::processEvents();
    }
    // Moves the mouse over a cell; what the tooltip shows then.
    std::string Over(int Col, int Row) {
        const TRect R = Tree.CellRect(Col, Row);
        const TPoint Pos{R.Left + 60, R.Top + 5};
        Tree.Perform(WM_MOUSEMOVE, 0, MakePointParam(Pos.X, Pos.Y));
        return Shown();
    }
    std::string Shown() {
        const TNVHTMLHintWindow* Hint = Tree.GetHintWindow();
        return Hint && Hint->IsHintVisible() ? Hint->GetCaption().substr(0, 6) : "";
    }
    TTestTree Tree;
};

TEST_F(TreeToolTips, ShowWhatDoesNotFitWhereItStands) {
    EXPECT_EQ(Over(0, 1), "") << "fits";
    EXPECT_EQ(Over(1, 1), "A cell");
    const TRect Room = Tree.CellRect(1, 1);
    const TPoint Corner = Tree.ClientToScreen({Room.Left, Room.Top});
    const QRect Hint = Tree.GetHintWindow()->geometry();
    EXPECT_NEAR(Hint.x(), Corner.X, 2);
    EXPECT_NEAR(Hint.y(), Corner.Y, 2);
    EXPECT_EQ(Over(0, 2), "A node");
    EXPECT_EQ(Over(1, 3), "A node") << "nothing to show there; the pause ends what is shown";
    Tree.HideToolTip();
    EXPECT_EQ(Over(1, 3), "") << "an empty cell";
    EXPECT_EQ(Over(1, 0), "") << "a caption";
}

TEST_F(TreeToolTips, ComeBackOnlyAfterAnotherCell) {
    EXPECT_EQ(Over(1, 1), "A cell");
    Tree.HideToolTip();
    EXPECT_EQ(Over(1, 1), "");
    Over(0, 1); // of the same row, and needs none
    EXPECT_EQ(Over(1, 1), "A cell");
    Tree.Perform(CM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(Shown(), "");
    EXPECT_EQ(Over(1, 1), "A cell");
}

TEST_F(TreeToolTips, GoAtTheEndOfThePauseAndWhenTheUserActs) {
    Tree.SetToolTipPause(30);
    EXPECT_EQ(Over(1, 1), "A cell");
    EXPECT_TRUE(QTest::qWaitFor([&] { return Shown().empty(); }, 3000));
    Tree.SetToolTipPause(5000);
    const std::function<void()> Ways[] = {
        [&] { Tree.Send(WM_LBUTTONDOWN, 30, 30); },
        [&] { Tree.DoMouseWheelDown({}, {}); },
        [&] { Tree.MoveColumn(0, 1), Tree.MoveColumn(1, 0); },
        [&] { Tree.Find("Short")->Delete(); },
    };
    for (const auto& Way : Ways) {
        Over(0, 1);
        ASSERT_EQ(Over(1, 1), "A cell");
        Way();
        EXPECT_EQ(Shown(), "");
        Tree.Perform(WM_LBUTTONUP, 0, MakePointParam(30, 30));
    }
    EXPECT_EQ(Over(0, 1), "A node");
    Tree.SetToolTips(false);
    EXPECT_EQ(Tree.GetHintWindow(), nullptr);
}

TEST_F(TreeToolTips, AreNotNeededWhereTheCellBreaksItsLines) {
    Tree.SetWordWrap(true);
    for (const bool Markup : {false, true}) {
        Tree.SetHTMLDrawing(Markup);
        // Lines of nearly any width: those that fill the cell leave no room for the hint's margins.
        for (int Width = 60; Width < 200; Width += 3) {
            Tree.SetColWidths(1, Width);
            Tree.Find("Empty")->SetCell(1, "some short words that are broken and all fit in");
            Over(0, 1);
            EXPECT_EQ(Over(1, 3), "") << Width << Markup;
            Tree.HideToolTip();
        }
        Tree.Find("Empty")->SetCell(1, "Averylongwordthatcannotbebrokenandisfartoowide for a cell");
        Over(0, 1);
        EXPECT_EQ(Over(1, 3), "Averyl") << Markup;
        Tree.HideToolTip();
    }
}

TEST_F(TreeToolTips, OfLongMarkupAreBrokenIntoLinesOnTheScreen) {
    Tree.SetHTMLDrawing(true);
    std::string Long = "A cell";
    for (int I = 0; I < 300; ++I) Long += " and <B>more</B>";
    Tree.Find("Short")->SetCell(1, Long);
    EXPECT_EQ(Over(1, 1), "A cell");
    const TNVHTMLHintWindow& Hint = *Tree.GetHintWindow();
    EXPECT_LE(Hint.width(), THintWindow::MaxHintWidth({Hint.x(), Hint.y()}) + 10);
    EXPECT_GT(Hint.height(), 3 * Tree.GetCanvas()->TextHeight("Ag"));
    EXPECT_EQ(Over(0, 2), "A node");
    EXPECT_FALSE(Hint.GetWordwrap()) << "as the tree is set";
}

TEST_F(TreeToolTips, DoNotStayOverCellsThatScrolledAway) {
    Tree.SetBounds(0, 0, 400, 60);
    ASSERT_EQ(Over(1, 1), "A cell");
    Tree.SetTopRow(2);
    EXPECT_EQ(Shown(), "");
    ASSERT_EQ(Over(0, 2), "A node");
    std::uint16_t Key = VK_DOWN;
    Tree.KeyDown(Key, {});
    EXPECT_EQ(Shown(), "");
}

TEST_F(TreeToolTips, ATreeMayGoWhileOneIsShown) {
    auto* Doomed = new TTestTree;
    Doomed->Build("A node with a text that is much longer than its column");
    Doomed->SetColWidths(0, 60);
    Doomed->SetToolTips(true);
    Doomed->show();
    EXPECT_TRUE(Doomed->ActivateToolTips(40, 5));
    delete Doomed;
    QApplication::processEvents();
}

} // namespace
} // namespace quill
