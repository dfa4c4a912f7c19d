// The commands of the outliner, as the user gives them.
#include "examples/outliner/OutlineEditor.h"
#include "examples/outliner/EditMenu.h"
#include "examples/outliner/OutlinerWindow.h"
#include "examples/outliner/OutlineTree.h"

#include "tests/examples/OutlineDump.h"
#include "tests/support/QtTest.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenuBar>
#include <QMimeData>
#include <QStatusBar>
#include <QTest>
#include <QTimer>

using namespace quill;
using namespace quill::examples;
using quill::testing::DumpOutline;
using quill::testing::TTempFolder;

namespace {

const char* const Plan = "SaveOptions:127\r\n"
                         "1,2,-1,1,0,5,Work,mine\r\n"
                         "\t-1,-1,1,0,0,9,Write,long\r\n"
                         "\t-1,-1,2,1,0,7,Read,\"a, b\"\r\n"
                         "\t\t-1,-1,4,0,1,4,Hidden\r\n"
                         "\t\t-1,-1,5,0,0,3,Shown\r\n"
                         "2,2,-1,0,0,2,Play\r\n"
                         "\t-1,-1,-1,0,0,1,Below\r\n";

class OutlineEditor : public ::testing::Test {
protected:
    OutlineEditor() { Open(Plan); }

    void Open(const std::string& Text) {
        Folder.Put("plan.nodes", Text);
        Tree->SetSmoothExpandCollapse(false);
        Window.OpenFile(Folder.File("plan.nodes"));
        Window.show();
        Tree->setFocus();
        QApplication::processEvents();
    }
    std::string Dump() { return DumpOutline(*Tree->GetItems()); }
    // Every field of every node that the options name.
    std::string Saved(int Options = 127) { return OutlineText(*Tree->GetItems(), OptionsOf(Options)); }
    TFlyNode* Node(const std::string& Text) {
        TFlyNode* Found = Tree->GetItems()->GetFirstNode();
        while (Found && Found->GetText() != Text) Found = Found->GetNext();
        return Found;
    }
    void Select(const std::vector<std::string>& Texts) {
        Tree->SetSelection(Node(Texts.front()));
        for (const std::string& Text : Texts) Node(Text)->SetSelected(true);
    }
    // Keys go where the focus is.
    void Press(Qt::Key Key, Qt::KeyboardModifiers Modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), Key, Modifiers);
    }
    void Type(const char* Text) { QTest::keyClicks(QApplication::focusWidget(), Text); }
    void PutText(const QString& Text) { QApplication::clipboard()->setText(Text); }
    void PutBytes(const char* Type, const QByteArray& Bytes) {
        auto* const Data = new QMimeData;
        Data->setData(Type, Bytes);
        QApplication::clipboard()->setMimeData(Data);
    }
    QString UndoText() {
        const QMenu* const Menu = Window.menuBar()->actions()[1]->menu();
        return Menu->actions()[0]->text().remove('&');
    }

    TTempFolder Folder;
    TOutlinerWindow Window;
    TOutlineTree* Tree = Window.GetTree();
};

TEST_F(OutlineEditor, UndoesAndRedoesTheLastChange) {
    const struct {
        const char* Name;
        std::vector<std::string> Selected;
        const char* Keys; // null: sort
        const char* Result;
    } Cases[] = {
        {"Delete", {"Read"}, "Del", "Work|mine[Write*|long], Play[Below]"},
        {"Delete", {"Write", "Read", "Shown", "Play"}, "Del", "Work*|mine"},
        {"Delete", {"Work", "Play"}, "Del", ""},
        {"Cut", {"Write"}, "Ctrl+X", "Work|mine[Read*|a, b[Hidden, Shown]], Play[Below]"},
        {"Move", {"Read"}, "Alt+Up", "Work|mine[Read*|a, b[Hidden, Shown], Write|long], Play[Below]"},
        {"Move", {"Work"}, "Alt+Down", "Play[Below], Work*|mine[Write|long, Read|a, b[Hidden, Shown]]"},
        {"Move", {"Read"}, "Alt+Right", "Work|mine[Write|long[Read*|a, b[Hidden, Shown]]], Play[Below]"},
        {"Move",
         {"Write", "Read"},
         "Alt+Left",
         "Work|mine, Write*|long, Read*|a, b[Hidden, Shown], Play[Below]"},
        {"Sort", {"Write"}, nullptr, "Play[Below], Work|mine[Read|a, b[Hidden, Shown], Write*|long]"},
    };
    for (const auto& Case : Cases) {
        SCOPED_TRACE(::testing::Message() << Case.Name << " " << Case.Result);
        Open(Plan);
        Select(Case.Selected);
        const std::string Before = Saved();
        if (Case.Keys) {
            QTest::keySequence(Tree, QKeySequence(Case.Keys));
        } else {
            Tree->SortBy(0, srtAscending);
        }
        EXPECT_EQ(Dump(), Case.Result);
        EXPECT_TRUE(Window.isWindowModified());
        EXPECT_EQ(UndoText(), "Undo " + QString(Case.Name));
        const std::string After = Saved();
        for (int Round = 0; Round < 2; ++Round) {
            Press(Qt::Key_Z, Qt::ControlModifier);
            EXPECT_EQ(Saved(), Before);
            EXPECT_EQ(UndoText(), "Undo");
            Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
            EXPECT_EQ(Saved(), After);
        }
        Tree->GetItems()->CheckInvariants();
        Window.OpenFile(Folder.File("plan.nodes"));
        EXPECT_EQ(UndoText(), "Undo") << "of another outline";
        EXPECT_EQ(Saved(), Plan);
    }
}

TEST_F(OutlineEditor, EditsAndAddsByKeys) {
    Select({"Write"});
    Press(Qt::Key_F2);
    Press(Qt::Key_Escape);
    EXPECT_FALSE(Window.isWindowModified()) << "nothing was changed";
    Press(Qt::Key_F2);
    Type("Send");
    // One node after the other, without leaving the keyboard.
    Press(Qt::Key_Return, Qt::ControlModifier);
    Type("Print");
    Press(Qt::Key_Return, Qt::ControlModifier | Qt::ShiftModifier);
    Type("Twice");
    Press(Qt::Key_Escape);
    EXPECT_EQ(Dump(), "Work|mine[Send|long, Print[Twice*], Read|a, b[Hidden, Shown]], Play[Below]");
    EXPECT_EQ(Node("Print")->GetStateIndex(), 1) << "open, as its neighbour";
    EXPECT_TRUE(Window.isWindowModified());
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Dump(), "Work|mine[Send|long, Print*, Read|a, b[Hidden, Shown]], Play[Below]");
    Press(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(Node("Twice")->GetParent(), Node("Print")) << "with its text";

    // Keys of the cell's editor stay there.
    Press(Qt::Key_F2);
    Press(Qt::Key_Home);
    Press(Qt::Key_Delete);
    Press(Qt::Key_Escape);
    EXPECT_EQ(Node("Print")->GetLastChild()->GetText(), "wice");
    Window.NewOutline();
    Press(Qt::Key_Insert);
    Type("First");
    Window.SaveFile(Folder.File("new.nodes"));
    EXPECT_NE(Folder.Content("new.nodes").find("First"), std::string::npos)
        << "what is being typed is saved too";
}

TEST_F(OutlineEditor, CopiesNodesWithAllFieldsAndAsText) {
    Select({"Work", "Shown", "Below"});
    Press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
              "Work\tmine\n  Write\tlong\n  Read\ta, b\n    Hidden\n    Shown\nBelow\n");
    // Pasted into an outline of texts alone, all fields come along and are saved.
    Open("SaveOptions:0\r\nA\r\nB\r\n");
    Select({"A"});
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Dump(), "A, Work*|mine[Write|long, Read|a, b[Hidden, Shown]], Below*, B");
    EXPECT_EQ(Tree->GetColCount(), 2);
    EXPECT_TRUE(Tree->GetShowLogic());
    EXPECT_EQ(Tree->GetNodeCount(), 8);
    Window.SaveFile(Folder.File("pasted.nodes"));
    EXPECT_NE(Folder.Content("pasted.nodes").find("4,1,Hidden"), std::string::npos);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Dump(), "A, B*");
    EXPECT_EQ(Tree->GetColCount(), 1);
    EXPECT_EQ(Tree->GetNodeCount(), 2);
}

TEST_F(OutlineEditor, PastesWhateverIsOnTheClipboard) {
    const auto Paste = [&] {
        Open("SaveOptions:8\r\nA,1\r\n");
        Window.statusBar()->clearMessage();
        Press(Qt::Key_V, Qt::ControlModifier);
        return Dump();
    };
    PutText("Row\t2\t3\r\n\"Two\nlines\"\t\t\r\n");
    EXPECT_EQ(Paste(), "A|1, Row*|2|3, Two lines*");
    PutText("SaveOptions:4\r\n2,Done\r\n");
    EXPECT_EQ(Paste(), "A|1, Done*");
    EXPECT_EQ(Node("Done")->GetStateIndex(), 2);
    PutText("SaveOptions:4\r\nno number\r\n");
    EXPECT_EQ(Paste(), "A|1, SaveOptions:4*, no number*") << "no nodes text after all";
    PutBytes("text/plain", QByteArray("a\0b\xFF", 4));
    EXPECT_EQ(Paste(), "A|1, ab\xEF\xBF\xBD*");
    PutText(QString(2000, QChar('x')) + "\n" + QString("y\n").repeated(2000));
    Paste();
    EXPECT_EQ(Tree->GetNodeCount(), 2002);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Dump(), "A*|1");

    const auto ExpectNothing = [&] {
        EXPECT_EQ(Paste(), "A*|1");
        EXPECT_NE(Window.statusBar()->currentMessage(), "");
        EXPECT_FALSE(Window.isWindowModified());
    };
    QApplication::clipboard()->clear();
    ExpectNothing();
    PutText("\n \t\n");
    ExpectNothing();
    PutBytes("image/png", "no picture");
    ExpectNothing();
    PutBytes(NodesMimeType, "SaveOptions:127\r\n\xFF,\0");
    ExpectNothing();
}

TEST_F(OutlineEditor, EditsAllNodesInTheNodesEditor) {
    Tree->FullExpand();
    Node("Read")->Collapse(false);
    Node("Work")->Collapse(false);
    Node("Read")->SetExpandedField(true); // open in a closed branch
    const std::string Before = Saved();
    // Works with the dialog as a user does, and closes it.
    const auto Edit = [&](const std::vector<const char*>& Buttons) {
        QTimer Poll;
        QObject::connect(&Poll, &QTimer::timeout, [&] {
            const QWidget* const Dialog = QApplication::activeModalWidget();
            if (!Dialog) return;
            Poll.stop();
            for (const char* Name : Buttons) Dialog->findChild<QAbstractButton*>(Name)->click();
        });
        Poll.start(1);
        Window.findChild<QAction*>("editNodes")->trigger();
        Window.activateWindow();
        QApplication::processEvents();
    };
    Edit({"OK"});
    EXPECT_FALSE(Window.isWindowModified());
    Edit({"AddChild", "Cancel"});
    EXPECT_EQ(Saved(), Before);
    EXPECT_EQ(UndoText(), "Undo");

    Edit({"AddChild", "AddCell", "Apply", "OK"});
    EXPECT_TRUE(Window.isWindowModified());
    EXPECT_EQ(Dump(), "Work*|mine[Write|long, Read|a, b[Hidden, Shown], New Node], Play[Below]");
    EXPECT_FALSE(Node("Work")->GetExpanded());
    EXPECT_TRUE(Node("Read")->GetExpanded());
    EXPECT_EQ(Tree->GetRowCount(), 4);
    EXPECT_EQ(Tree->GetNodeCount(), 8);
    EXPECT_EQ(UndoText(), "Undo Edit Nodes");
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Saved(), Before);
    EXPECT_EQ(Tree->GetNodeCount(), 7);
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Tree->GetNodeCount(), 8);

    Edit({"Clear", "OK"});
    EXPECT_EQ(Dump(), "");
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Tree->GetNodeCount(), 8);
}

TEST_F(OutlineEditor, KeepsOneChoiceOfAGroupThatIsPastedInto) {
    Open("SaveOptions:4\r\n4,This\r\n5,That\r\n");
    Select({"This"});
    Press(Qt::Key_C, Qt::ControlModifier);
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Saved(4), "SaveOptions:4\r\n4,This\r\n5,This\r\n5,That\r\n");
    Select({"This"});
    Press(Qt::Key_X, Qt::ControlModifier);
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Saved(4), "SaveOptions:4\r\n5,This\r\n4,This\r\n5,That\r\n") << "the choice moves along";
}

TEST_F(OutlineEditor, ForgetsWhatItCannotUndo) {
    Select({"Play"});
    Press(Qt::Key_Delete);
    Tree->GetItems()->Delete(Node("Work"));
    EXPECT_EQ(UndoText(), "Undo");
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Dump(), "");
    // Nothing to work on: nothing happens.
    for (const auto Key : {Qt::Key_Delete, Qt::Key_F2}) Press(Key);
    for (const auto Key : {Qt::Key_Up, Qt::Key_Right, Qt::Key_Left}) Press(Key, Qt::AltModifier);
    for (const auto Key : {Qt::Key_X, Qt::Key_C}) Press(Key, Qt::ControlModifier);
    EXPECT_EQ(Dump(), "");
}

} // namespace
