#include "tests/examples/OutlinerTest.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMessageBox>
#include <QTimer>

using namespace quill;
using namespace quill::examples;

namespace {

const char* const Tasks = "SaveOptions:28\r\n"
                          "-1,1,Tasks\r\n"
                          "\t1,0,Open,late\r\n"
                          "\t2,0,Done\r\n"
                          "\t3,0,Settled\r\n"
                          "-1,1,Choice\r\n"
                          "\t4,0,This\r\n"
                          "\t5,0,That\r\n";

class OutlinerWindow : public TOutlinerTest {
protected:
    OutlinerWindow() : TOutlinerTest(Tasks) {}

    TFlyNode* NodeOf(int Row) { return Tree->GetNodeAtRow(Row); }
    // Clicks into the slot of the check mark of the node in a row.
    void ClickMark(int Row) {
        const TRect Cell = Tree->CellRect(0, Row);
        const int X = Tree->GetOutlineSlots(NodeOf(Row), Cell.Left).State + Tree->GetIndent() / 2;
        QTest::mouseClick(Tree->viewport(), Qt::LeftButton, {}, {X, (Cell.Top + Cell.Bottom) / 2});
    }
    std::string States() {
        std::string Text;
        for (TFlyNode* Each = Tree->GetItems()->GetFirstNode(); Each; Each = Each->GetNext())
            Text += std::to_string(Each->GetStateIndex()) + ' ';
        return Text;
    }
    // Texts of the status bar.
    std::string Status() {
        QApplication::processEvents();
        std::string Text;
        for (const QLabel* Label : Window.statusBar()->findChildren<QLabel*>()) {
            Text += Label->text().section('/', -1).toStdString() + "; ";
        }
        return Text;
    }
    // Closes the window and answers the question that comes up; false when none came.
    bool CloseAndAnswer(QMessageBox::StandardButton Button) {
        bool Asked = false;
        QTimer::singleShot(0, [&] {
            auto* Box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!Box) return;
            Asked = true;
            Box->button(Button)->click();
        });
        Window.close();
        QApplication::processEvents();
        return Asked;
    }
};

TEST_F(OutlinerWindow, ShowsCountsOfTheDocument) {
    EXPECT_EQ(Window.windowTitle(), "plan.nodes[*]");
    EXPECT_EQ(Status(), "plan.nodes; 7 nodes; 7 rows; 1 selected; ");
    Window.CollapseAll();
    EXPECT_EQ(Status(), "plan.nodes (view changed); 7 nodes; 2 rows; 1 selected; ");
    ClickMark(1);
    Window.NewOutline();
    EXPECT_EQ(Status(), "Untitled; 0 nodes; 0 rows; 0 selected; ");
}

TEST_F(OutlinerWindow, TicksWhatIsClicked) {
    ClickMark(2);
    ClickMark(3);
    ClickMark(4); // settled: shown, not changed
    EXPECT_EQ(States(), "-1 2 1 3 -1 4 5 ");
    EXPECT_TRUE(Window.isWindowModified());
    Window.SaveFile(Folder.File("plan.nodes"));
    EXPECT_FALSE(Window.isWindowModified());
    ClickMark(7);
    EXPECT_EQ(States(), "-1 2 1 3 -1 5 4 ") << "of a group, one is chosen";
    QTest::keyClick(Tree, Qt::Key_Space);
    Window.SaveFile(Folder.File("copy.nodes"));
    EXPECT_NE(Folder.Content("copy.nodes").find("\t1,0,Done"), std::string::npos);
}

TEST_F(OutlinerWindow, KeepsTheDocumentWhenAFileIsBroken) {
    ClickMark(2);
    Folder.Put("broken.nodes", "SaveOptions:0\r\nA\r\n\t\t\tB\r\n");
    EXPECT_THROW(Window.OpenFile(Folder.File("broken.nodes")), EOutlineError);
    EXPECT_THROW(Window.OpenFile(Folder.File("missing.nodes")), EOutlineError);
    EXPECT_THROW(Window.OpenFile(Folder.File("")), EOutlineError);
    EXPECT_EQ(States(), "-1 2 2 3 -1 4 5 ");
    EXPECT_TRUE(Window.isWindowModified());
    EXPECT_EQ(Window.windowTitle(), "plan.nodes[*]");
    Window.SaveFile(Folder.File("plan.nodes"));
    EXPECT_NE(Folder.Content("plan.nodes").find("2,0,Open"), std::string::npos);
}

TEST_F(OutlinerWindow, AsksBeforeChangesAreLost) {
    Window.CollapseAll();
    EXPECT_FALSE(CloseAndAnswer(QMessageBox::Cancel)) << "closed branches are nothing to ask about";
    Window.show();
    ClickMark(1);
    Window.ExpandAll();
    ClickMark(2);
    EXPECT_TRUE(CloseAndAnswer(QMessageBox::Cancel));
    EXPECT_TRUE(Window.isVisible());
    EXPECT_EQ(Folder.Content("plan.nodes"), Tasks);
    EXPECT_TRUE(CloseAndAnswer(QMessageBox::Save));
    EXPECT_FALSE(Window.isVisible());
    EXPECT_NE(Folder.Content("plan.nodes"), Tasks);
}

TEST_F(OutlinerWindow, SavesTheSameBytes) {
    Window.SaveFile(Folder.File("copy.nodes"));
    EXPECT_EQ(Folder.Content("copy.nodes"), Tasks);
    Folder.Put("tags.nodes", "SaveOptions:64\r\n7,A\r\n\t3,B\r\n");
    Window.OpenFile(Folder.File("tags.nodes"));
    Window.SaveFile(Folder.File("copy.nodes"));
    EXPECT_EQ(Folder.Content("copy.nodes"), Folder.Content("tags.nodes"));
    // The numbering of one outline is no business of the next.
    Window.OpenFile(Folder.File("plan.nodes"));
    Window.SaveFile(Folder.File("copy.nodes"));
    EXPECT_EQ(Folder.Content("copy.nodes"), Tasks);
}

TEST_F(OutlinerWindow, SortsByTheCaptionThatIsClicked) {
    Folder.Put("sizes.nodes", "SaveOptions:8\r\nBoxes,10\r\n\tb,2\r\n\ta,11\r\nArks,9\r\nCans\r\n");
    Window.OpenFile(Folder.File("sizes.nodes"));
    Window.ExpandAll();
    Tree->SetSelection(NodeOf(1));
    const auto Click = [&](int Col) {
        const TRect R = Tree->CellRect(Col, 0);
        QTest::mouseClick(Tree->viewport(), Qt::LeftButton, {}, {(R.Left + R.Right) / 2, R.Bottom / 2});
        std::string Texts;
        for (int Row = 1; Row < Tree->GetRowCount(); ++Row) {
            Texts += NodeOf(Row)->GetText() + (Row == Tree->GetRow() ? "< " : " ");
        }
        return Texts;
    };
    EXPECT_EQ(Click(0), "Arks Boxes< a b Cans ");
    EXPECT_TRUE(Window.isWindowModified());
    EXPECT_EQ(Click(1), "Cans Arks Boxes< b a ") << "numbers by value";
    EXPECT_EQ(Click(1), "Boxes< a b Arks Cans ");
    EXPECT_EQ(Tree->GetSortDirection(), srtDescending);
    QTest::keyClick(Tree, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Status(), "sizes.nodes (modified); 5 nodes; 5 rows; 5 selected; ");
}

TEST_F(OutlinerWindow, OpensWithTheColumnsInTheirPlacesAfterTheyWereMoved) {
    Folder.Put("cells.nodes", "SaveOptions:8\r\nA,1\r\nB,2\r\n");
    for (int Round = 0; Round < 2; ++Round) {
        Window.OpenFile(Folder.File("cells.nodes"));
        EXPECT_EQ(NodeOf(2)->GetText() + Tree->GetEditText(1, 2), "B2");
        Tree->MoveColumn(0, 1);
        Window.SaveFile(Folder.File("copy.nodes"));
        EXPECT_EQ(Folder.Content("copy.nodes"), Folder.Content("cells.nodes"));
    }
}

TEST_F(OutlinerWindow, ComesBackAsTheUserLeftIt) {
    Folder.Put("cells.nodes", "SaveOptions:8\r\nA,1,x\r\nB,2,y\r\n");
    Folder.Put("cells.columns", "Name,Count,Kind\r\n");
    const std::string View = Folder.File("settings/view.form");
    const auto Widths = [](TOutlinerWindow& Of) {
        TOutlineTree& Shown = *Of.GetTree();
        std::string Text;
        for (int Col = 0; Col + 1 < Shown.GetColCount(); ++Col)
            Text += Shown.GetEditText(Col, 0) + " " + std::to_string(Shown.GetColWidths(Col)) + ", ";
        return Text + (Shown.HasOption(goRowSelect) ? "rows, " : "cells, ") +
               std::to_string(Shown.GetOutlineStyle());
    };
    {
        TOutlinerWindow First;
        First.KeepView(View);
        First.resize(700, 300);
        First.OpenFile(Folder.File("cells.nodes"));
        First.show();
        TOutlineTree& Shown = *First.GetTree();
        Shown.MoveColumn(0, 1);
        Shown.SetColWidths(0, 111);
        Shown.SetColWidths(1, 222);
        Shown.SetSelectsRows(true);
        Shown.SetOutlineStyle(olsExcel);
        First.close();
    }
    const std::string Expected = "Count 111, Name 222, rows, 2";
    TOutlinerWindow Second;
    Second.KeepView(View);
    Second.resize(700, 300);
    Second.show();
    Second.OpenFile(Folder.File("cells.nodes"));
    EXPECT_EQ(Widths(Second), Expected);
    // Other columns get widths of their own.
    Second.OpenFile(Folder.File("plan.nodes"));
    EXPECT_EQ(Second.GetTree()->GetEditText(0, 0), "Text");

    // What is wrong in the file is passed over and told; what is no form changes nothing.
    std::string Text = Folder.Content("settings/view.form");
    EXPECT_EQ(Text.find("Data"), std::string::npos);
    Text.replace(Text.find("olsExcel"), 8, "olsSpiral");
    for (const std::string& File : {Text, Text.substr(0, Text.size() / 2)}) {
        Folder.Put("broken.form", File);
        TOutlinerWindow Third;
        Third.KeepView(Folder.File("broken.form"));
        EXPECT_EQ(Third.GetTree()->GetOutlineStyle(), olsStandardTree);
        EXPECT_EQ(Third.GetTree()->HasOption(goRowSelect), File == Text);
        EXPECT_NE(Third.statusBar()->currentMessage().indexOf("Form, line"), -1);
    }
}

} // namespace
