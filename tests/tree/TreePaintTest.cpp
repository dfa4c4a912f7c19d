// What the tree paints: outlines by geometry, drawing order, colours, and mirrored pictures.
#include "host/graphics/RecordingCanvas.h"
#include "tests/tree/TreeTestSupport.h"

#include <QImage>

#include <algorithm>

namespace quill {
namespace {

constexpr int RowHeight = 20;

// Draws all rows of the structure column on a canvas of their own, cell left at 0.
class TPaintTree : public TTestTree {
public:
    TPaintTree() {
        SetOptions({});
        SetFont(GetFont());
        SetOutlineColor(clRed);
        SetDefaultRowHeight(RowHeight);
    }
    TRecordingCanvas& Draw(TExGridDrawState State = {}) {
        Canvas.ClearLog();
        for (int Row = 0; Row < GetRowCount(); ++Row) {
            bool Continue = true;
            DrawCell(Canvas, 0, Row, {0, Row * RowHeight, 200, (Row + 1) * RowHeight}, State, Continue);
        }
        return Canvas;
    }
    // The outline's pixels as runs: "|11:13-21" is a vertical from y 13 to 21 at x 11, "-11:11-19" a horizontal at y.
    std::string Lines() {
        Draw();
        const QImage& Image = Canvas.GetImage();
        const auto IsLine = [&](int X, int Y) {
            return X >= 0 && Y >= 0 && X < Image.width() && Y < Image.height() &&
                   (Image.pixel(X, Y) & 0xFFFFFF) == 0xFF0000;
        };
        std::string Out;
        const int Gap = GetOutlineStyle() == olsExcel ? 1 : 2;
        const auto Scan = [&](char Kind, int Fixed, int Limit, auto At) {
            for (int From = 0; From < Limit; ++From) {
                if (!At(Fixed, From) || At(Fixed, From - Gap)) continue;
                int To = From;
                while (At(Fixed, To + Gap)) To += Gap;
                if (To - From >= 2 * Gap) {
                    Out += std::string(Out.empty() ? "" : " ") + Kind + std::to_string(Fixed) + ":" +
                           std::to_string(From) + "-" + std::to_string(To);
                }
            }
        };
        for (int X = 0; X < 120; ++X)
            Scan('|', X, Image.height(), [&](int Px, int Py) { return IsLine(Px, Py); });
        for (int Y = 0; Y < GetRowCount() * RowHeight; ++Y) {
            Scan('-', Y, 120, [&](int Py, int Px) { return IsLine(Px, Py); });
        }
        return Out;
    }
    TRecordingCanvas Canvas{200, 200};
};

TEST(TreePaint, OutlinesJoinTheLevelsInEachStyle) {
    TPaintTree Tree;
    Tree.SetShowButtons(false);
    Tree.Build("A+\n B+\n  C\n D\nE\n");
    // Rows: A 0, B 20, C 40, D 60, E 80; centres 11, 31, 51; middles 11, 31, 51, 71, 91.
    EXPECT_EQ(Tree.Lines(), "|11:11-91 |31:19-71 |51:39-51 "
                            "-11:11-19 -31:31-39 -51:51-59 -71:31-39 -91:11-19");
    Tree.SetOutlineStyle(olsExplorer);
    EXPECT_EQ(Tree.Lines(), "|11:19-71 |31:39-51 -51:31-39 -71:11-19");
    Tree.SetOutlineStyle(olsExcel);
    const std::string Marks = Tree.Draw().GetLog("PatBlt");
    EXPECT_NE(Marks.find("(19,31)"), std::string::npos) << Marks;
    EXPECT_EQ(std::count(Marks.begin(), Marks.end(), '\n'), 1) << "only B goes on: " << Marks;
    EXPECT_EQ(Tree.Lines().find("|51"), std::string::npos);
}

TEST(TreePaint, ButtonsShowOnlyWhereChildrenCanBeSeen) {
    TPaintTree Tree;
    Tree.SetShowlines(false);
    Tree.Build("Open+\n x\nClosed\n x\nLeaf\nHiding\n x\nForced\n");
    Tree.Find("Hiding")->getFirstChild()->Hide();
    Tree.Find("Forced")->SetChildren(true);
    const std::string Frames = Tree.Draw().GetLog("Rectangle");
    for (const char* Frame : {"(6,5,17,16)", "(6,45,17,56)", "(6,105,17,116)"})
        EXPECT_NE(Frames.find(Frame), std::string::npos) << Frames;
    EXPECT_EQ(std::count(Frames.begin(), Frames.end(), '\n'), 3) << Frames;
    Tree.SetShowRoot(false);
    EXPECT_EQ(Tree.Draw().GetLog("Rectangle"), "") << "top-level nodes have no slot";
}

TEST(TreePaint, StateGlyphsTakeRoomOnlyWhenTheyAreKnown) {
    TPaintTree Tree;
    Tree.SetShowButtons(false);
    Tree.SetShowlines(false);
    Tree.SetShowLogic(true);
    Tree.Build("A\n");
    TFlyNode* Node = Tree.Find("A");
    const auto TextLeft = [&](int State) {
        Node->SetStateIndexField(State);
        const std::string Line = Tree.Draw().GetLog("Text");
        return Line.substr(6, Line.find(',') - 6);
    };
    EXPECT_EQ(TextLeft(-1), "4");
    EXPECT_EQ(TextLeft(2), "24");
    EXPECT_EQ(TextLeft(11), "4") << "drawn states above 10 leave no gap";
    for (int State = 0; State <= 10; ++State) {
        for (const bool Drawn : {true, false}) {
            Tree.SetStatesDrawed(Drawn);
            Node->SetStateIndexField(State);
            const QImage Before = Tree.Draw().GetImage().copy();
            Node->SetStateIndexField(-1);
            EXPECT_NE(Before, Tree.Draw().GetImage()) << State << (Drawn ? " drawn" : " bitmap");
        }
    }
}

TEST(TreePaint, SelectionColoursFollowFocusStyleAndOptions) {
    TTestTree Tree;
    Tree.Build("Apple\nPear\n");
    Tree.SetSelection(Tree.Find("Apple"));
    const auto Colours = [&](int Row, TExGridDrawState State = {}) -> std::string {
        TColor Brush = clNone;
        TColor Font = clNone;
        bool Changed = false;
        Tree.GetColor(Tree.GetNodeAtRow(Row), 0, Row, State, Brush, Font, Changed);
        return !Changed ? "plain" : Brush == clHighlight ? "focused" : "unfocused";
    };
    EXPECT_EQ(Colours(0) + " " + Colours(1) + " " + Colours(0, gdNoUseSelColor), "unfocused plain plain");
    Tree.SetHideSelection(true);
    EXPECT_EQ(Colours(0), "plain");
}

TEST(TreePaint, TextsOfAllColumnsStandOnOneLineInTallRows) {
    TTestTree Tree;
    Tree.SetColCount(2);
    Tree.Build("Apple\n");
    Tree.Find("Apple")->SetCell(1, "Apple");
    Tree.HandleNeeded();
    TRecordingCanvas Canvas(400, 90);
    bool Continue = true;
    for (const int Col : {0, 1})
        Tree.DrawCell(Canvas, Col, 0, {Col * 200, 0, Col * 200 + 200, 90}, {}, Continue);
    Canvas.SetFont(Tree.GetFont());
    const int Width = Canvas.TextWidth("Apple");
    const auto Top = [&](int Left) {
        for (int Pixel = 0; Pixel < 90 * Width; ++Pixel)
            if (qGray(Canvas.GetImage().pixel(Left + Pixel % Width, Pixel / Width)) < 160)
                return Pixel / Width;
        return -1;
    };
    EXPECT_GT(Top(204), 0);
    EXPECT_EQ(Top(24), Top(204));
}

TEST(TreePaint, ASelectedRowIsColouredInOnePiece) {
    TTestTree Tree;
    Tree.SetColCount(2);
    Tree.SetOptions({goRowSelect, goRangeSelect});
    Tree.Build("Apple\nPear\n");
    Tree.SetSelection(Tree.Find("Pear"));
    Tree.HandleNeeded();
    Tree.Repaint();
    const QImage Image = Tree.GetSurfaceImage();
    const int Y = Tree.GetDefaultRowHeight() + 3;
    EXPECT_EQ(Image.pixel(2, Y), Image.pixel(190, Y)) << "the outline is coloured like the text";
    EXPECT_EQ(Image.pixel(2, Y), Image.pixel(210, Y));
    EXPECT_NE(Image.pixel(2, Y), Image.pixel(2, 3));
}

// Everything but glyphs and pictures is the mirror image of the left-to-right painting.
TEST(TreePaint, RightToLeftIsTheMirrorImage) {
    for (const TOutlineStyle Style : {olsStandardTree, olsExplorer, olsExcel}) {
        QImage Images[2];
        for (const TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
            TTestTree Tree;
            Tree.SetScrollBars(ssNone);
            Tree.SetColCount(3);
            Tree.SetFixedRows(1);
            Tree.SetOutlineStyle(Style);
            TFlyNode* Top = Tree.GetItems()->Add(nullptr, "");
            Tree.GetItems()->AddChild(Tree.GetItems()->AddChild(Top, ""), "");
            Tree.GetItems()->AddChild(Top, "");
            Top->Expand(true);
            Tree.SetBiDiMode(Mode);
            Tree.HandleNeeded();
            Tree.Repaint();
            Images[Mode] = Tree.GetSurfaceImage();
        }
        const QImage Mirrored = Images[bdLeftToRight].mirrored(true, false);
        const QRect Below(0, 30, Mirrored.width(), Mirrored.height() - 30);
        EXPECT_EQ(Mirrored.copy(Below), Images[bdRightToLeft].copy(Below)) << "style " << Style;
    }
}

TEST(TreePaint, AMillionLevelsPaintWithoutWalkingThemForEveryRow) {
    TTestTree Tree;
    TFlyNodes& Items = *Tree.GetItems();
    Items.BeginUpdate();
    TFlyNode* Node = nullptr;
    for (int Level = 0; Level < 1000000; ++Level) {
        Node = Items.AddChild(Node, "x");
        if (Node->GetParent()) Node->GetParent()->SetExpandedField(true);
    }
    Items.EndUpdate();
    ASSERT_EQ(Tree.GetRowCount(), 1000000);
    Tree.HandleNeeded();
    for (const int Row : {0, 500000, 999990}) {
        Tree.SetTopRow(Row);
        Tree.Repaint();
    }
    EXPECT_EQ(Tree.GetNodeAtRow(999999), Node);
}

// Rows of the default height are an odd number of pixels apart, and dots and boxes keep to every second line.
TEST(TreePaint, MovedPixelsAreWhatARepaintWouldShow) {
    struct TCountingTree : TTestTree {
        void DrawStructureNode(TCanvas& Canvas, TFlyNode* Node, const TRect& Rect, int ARow, int ACol,
                               TExGridDrawState State) override {
            ++Drawn;
            TTestTree::DrawStructureNode(Canvas, Node, Rect, ARow, ACol, State);
        }
        int Drawn = 0;
    };
    for (const int Height : {24, 19}) {
        for (const bool OwnHeight : {false, true}) {
            TCountingTree Tree;
            Tree.SetShowLogic(true);
            Tree.SetDefaultRowHeight(Height);
            std::string Text;
            for (int I = 0; I < 40; ++I) Text += "Node+\n Child+\n  Leaf\n";
            Tree.Build(Text);
            for (int Row = 0; Row < Tree.GetRowCount(); ++Row) Tree.GetNodeAtRow(Row)->SetStateIndex(1);
            if (OwnHeight) Tree.SetRowHeights(3, 41);
            Tree.HandleNeeded();
            Tree.Update();
            for (const int Top : {1, 2, 4, 5, 2, 3, 60, 61, 63}) {
                const bool Near = std::abs(Top - Tree.GetTopRow()) < 5;
                Tree.Drawn = 0;
                Tree.SetTopRow(Top);
                const QImage Moved = Tree.GetSurfaceImage();
                EXPECT_LT(Near && !OwnHeight ? Tree.Drawn : 0, 8) << "no full paint at row " << Top;
                Tree.Invalidate();
                EXPECT_EQ(Moved, Tree.GetSurfaceImage()) << Height << " at row " << Top;
            }
        }
    }
}

} // namespace
} // namespace quill
