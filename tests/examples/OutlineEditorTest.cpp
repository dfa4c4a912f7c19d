// The commands of the outliner, as the user gives them.
#include "examples/outliner/EditMenu.h"
#include "tests/examples/OutlinerTest.h"

#include <QAbstractButton>
#include <QAction>
#include <QClipboard>
#include <QMimeData>
#include <QTimer>

using namespace quill;
using namespace quill::examples;

namespace {

const char* const Plan = "SaveOptions:127\r\n"
                         "1,2,-1,1,0,5,Work,mine\r\n"
                         "\t-1,-1,1,0,0,9,Write,long\r\n"
                         "\t-1,-1,2,1,0,7,Read,\"a, b\"\r\n"
                         "\t\t-1,-1,4,0,1,4,Hidden\r\n"
                         "\t\t-1,-1,5,0,0,3,Shown\r\n"
                         "2,2,-1,0,0,2,Play\r\n"
                         "\t-1,-1,-1,0,0,1,Below\r\n";

class OutlineEditor : public TOutlinerTest {
protected:
    OutlineEditor() : TOutlinerTest(Plan) {}
};

TEST_F(OutlineEditor, UndoesAndRedoesTheLastChange) {
    // Null for keys: sort.
    const std::tuple<const char*, std::vector<std::string>, const char*, const char*> Cases[] = {
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
    for (const auto& [Name, Selected, Keys, Result] : Cases) {
        SCOPED_TRACE(Result);
        Open(Plan);
        Select(Selected);
        const std::string Before = Saved();
        Keys ? Press(Keys) : Tree->SortBy(0, srtAscending);
        EXPECT_EQ(Dump(), Result);
        EXPECT_TRUE(Window.isWindowModified());
        EXPECT_EQ(UndoText(), std::string("Undo ") + Name);
        const std::string After = Saved();
        for (int Round = 0; Round < 2; ++Round) {
            Press("Ctrl+Z");
            EXPECT_EQ(Saved(), Before);
            EXPECT_EQ(UndoText(), "Undo");
            Press("Ctrl+Shift+Z");
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
    Press("F2 Esc");
    EXPECT_FALSE(Window.isWindowModified()) << "nothing was changed";
    // One node after the other, without leaving the keyboard.
    Press("F2 'Send' Ctrl+Return 'Print' Ctrl+Shift+Return 'Twice' Esc");
    EXPECT_EQ(Dump(), "Work|mine[Send|long, Print[Twice*], Read|a, b[Hidden, Shown]], Play[Below]");
    EXPECT_EQ(Node("Print")->GetStateIndex(), 1) << "open, as its neighbour";
    EXPECT_TRUE(Window.isWindowModified());
    Press("Ctrl+Z");
    EXPECT_EQ(Dump(), "Work|mine[Send|long, Print*, Read|a, b[Hidden, Shown]], Play[Below]");
    Press("Ctrl+Y");
    EXPECT_EQ(Node("Twice")->GetParent(), Node("Print")) << "with its text";

    // Keys of the cell's editor stay there.
    Press("F2 Home Del Esc");
    EXPECT_EQ(Node("Print")->GetLastChild()->GetText(), "wice");
    Window.NewOutline();
    Press("Ins 'First'");
    Window.SaveFile(Folder.File("new.nodes"));
    EXPECT_NE(Folder.Content("new.nodes").find("First"), std::string::npos)
        << "what is being typed is saved too";
}

TEST_F(OutlineEditor, CopiesNodesWithAllFieldsAndAsText) {
    Select({"Work", "Shown", "Below"});
    Press("Ctrl+C");
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
              "Work\tmine\n  Write\tlong\n  Read\ta, b\n    Hidden\n    Shown\nBelow\n");
    // Pasted into an outline of texts alone, all fields come along and are saved.
    Open("SaveOptions:0\r\nA\r\nB\r\n");
    Select({"A"});
    Press("Ctrl+V");
    EXPECT_EQ(Dump(), "A, Work*|mine[Write|long, Read|a, b[Hidden, Shown]], Below*, B");
    EXPECT_EQ(Tree->GetColCount(), 2);
    EXPECT_TRUE(Tree->GetShowLogic());
    EXPECT_EQ(Tree->GetNodeCount(), 8);
    Window.SaveFile(Folder.File("pasted.nodes"));
    EXPECT_NE(Folder.Content("pasted.nodes").find("4,1,Hidden"), std::string::npos);
    Press("Ctrl+Z");
    EXPECT_EQ(Dump(), "A, B*");
    EXPECT_EQ(Tree->GetColCount(), 1);
    EXPECT_EQ(Tree->GetNodeCount(), 2);
}

TEST_F(OutlineEditor, PastesWhateverIsOnTheClipboard) {
    const auto Paste = [&](const char* Type, const QByteArray& Bytes) {
        auto* const Data = new QMimeData;
        Data->setData(Type, Bytes);
        QApplication::clipboard()->setMimeData(Data);
        Open("SaveOptions:8\r\nA,1\r\n");
        Window.statusBar()->clearMessage();
        Press("Ctrl+V");
        return Dump();
    };
    const std::tuple<const char*, QByteArray, const char*> Cases[] = {
        {"text/plain", "Row\t2\t3\r\n\"Two\nlines\"\t\t\r\n", "A|1, Row*|2|3, Two lines*"},
        {"text/plain", "SaveOptions:4\r\n2,Done\r\n", "A|1, Done*"},
        {"text/plain", "SaveOptions:4\r\nno number\r\n", "A|1, SaveOptions:4*, no number*"},
        {"text/plain", QByteArray("a\0b\xFF", 4), "A|1, ab\xEF\xBF\xBD*"},
        {"text/plain", "", "A*|1"},
        {"text/plain", "\n \t\n", "A*|1"},
        {"image/png", "no picture", "A*|1"},
        {NodesMimeType, QByteArray("SaveOptions:127\r\n\xFF,\0", 20), "A*|1"},
    };
    for (const auto& [Type, Bytes, Result] : Cases) {
        EXPECT_EQ(Paste(Type, Bytes), Result);
        const bool Taken = Result != std::string("A*|1");
        EXPECT_EQ(Window.isWindowModified(), Taken) << Result;
        EXPECT_TRUE(Taken || !Window.statusBar()->currentMessage().isEmpty());
    }
    Paste("text/plain", QByteArray(2000, 'x') + "\n" + QByteArray("y\n").repeated(2000));
    EXPECT_EQ(Tree->GetNodeCount(), 2002);
    Press("Ctrl+Z");
    EXPECT_EQ(Dump(), "A*|1");
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
    Press("Ctrl+Z");
    EXPECT_EQ(Saved(), Before);
    EXPECT_EQ(Tree->GetNodeCount(), 7);
    Press("Ctrl+Shift+Z");
    EXPECT_EQ(Tree->GetNodeCount(), 8);

    Edit({"Clear", "OK"});
    EXPECT_EQ(Dump(), "");
    Press("Ctrl+Z");
    EXPECT_EQ(Tree->GetNodeCount(), 8);
}

TEST_F(OutlineEditor, KeepsOneChoiceOfAGroupThatIsPastedInto) {
    Open("SaveOptions:4\r\n4,This\r\n5,That\r\n");
    Select({"This"});
    Press("Ctrl+C");
    Press("Ctrl+V");
    EXPECT_EQ(Saved(4), "SaveOptions:4\r\n4,This\r\n5,This\r\n5,That\r\n");
    Select({"This"});
    Press("Ctrl+X");
    Press("Ctrl+V");
    EXPECT_EQ(Saved(4), "SaveOptions:4\r\n5,This\r\n4,This\r\n5,That\r\n") << "the choice moves along";
}

TEST_F(OutlineEditor, ForgetsWhatItCannotUndo) {
    Select({"Play"});
    Press("Del");
    Tree->GetItems()->Delete(Node("Work"));
    EXPECT_EQ(UndoText(), "Undo");
    Press("Ctrl+Z");
    EXPECT_EQ(Dump(), "");
    // Nothing to work on: nothing happens.
    for (const char* Keys : {"Del", "F2", "Alt+Up", "Alt+Right", "Alt+Left", "Ctrl+X", "Ctrl+C"}) Press(Keys);
    EXPECT_EQ(Dump(), "");
}

} // namespace
