// What the outliner makes of drags: its own nodes, and what other programs drag to it.
#include "examples/outliner/OutlineEditor.h"
#include "examples/outliner/OutlinerWindow.h"
#include "examples/outliner/OutlineTree.h"

#include "tests/examples/DesktopDrag.h"
#include "tests/examples/OutlineDump.h"
#include "tests/support/QtTest.h"

#include <QApplication>
#include <QMenuBar>
#include <QStatusBar>
#include <QTest>
#include <QUrl>

using namespace quill;
using namespace quill::examples;
using quill::testing::DumpOutline;
using quill::testing::TDesktopDrag;
using quill::testing::TTempFolder;

namespace {

const char* const Plan = "SaveOptions:24\r\n"
                         "1,A,1\r\n"
                         "\t0,B,2\r\n"
                         "\t0,C\r\n"
                         "0,D\r\n"
                         "0,E\r\n"
                         "\t0,F\r\n"
                         "0,G\r\n";

enum TPart { Top, Middle, Bottom };

class OutlineDrag : public ::testing::Test {
protected:
    OutlineDrag() { Open(Plan); }

    void Open(const std::string& Text) {
        Folder.Put("plan.nodes", Text);
        Tree->SetSmoothExpandCollapse(false);
        Window.resize(600, 500);
        Window.OpenFile(Folder.File("plan.nodes"));
        Window.show();
        QApplication::processEvents();
    }
    std::string Dump() { return DumpOutline(*Tree->GetItems()); }
    TFlyNode* Node(const std::string& Text) {
        TFlyNode* Found = Tree->GetItems()->GetFirstNode();
        while (Found && Found->GetText() != Text) Found = Found->GetNext();
        return Found;
    }
    void Select(const std::string& Texts) {
        Tree->SetSelection(Node(Texts.substr(0, 1)));
        for (const char Text : Texts) Node({Text})->SetSelected(true);
    }
    // In the row of a node; empty for below the last one.
    QPoint On(const std::string& Text, TPart Part) {
        if (Text.empty()) return {60, Tree->GetClientHeight() - 4};
        const TRect R = Tree->DisplayRect(Node(Text), true);
        return {R.Left + 6, Part == Top ? R.Top + 1 : Part == Middle ? (R.Top + R.Bottom) / 2 : R.Bottom - 2};
    }
    // Drags the node that has the focus with the mouse. What the desktop does meanwhile is Meanwhile's.
    void Drag(const std::function<void(NV_IDataObject*)>& Meanwhile) {
        Tree->OnOLEStartDrag = [&](NV_IDataObject* Data, int&) { Meanwhile(Data); };
        const QPoint From = On(Tree->GetSelection()->GetText(), Middle);
        const auto Mouse = [&](QPoint Pos) {
            QCursor::setPos(Tree->viewport()->mapToGlobal(Pos));
            return Tree->viewport()->mapTo(&Window, Pos);
        };
        QTest::mousePress(Window.windowHandle(), Qt::LeftButton, {}, Mouse(From));
        for (const int Step : {4, 14, 30})
            QTest::mouseMove(Window.windowHandle(), Mouse(From + QPoint(Step, 0)));
        QTest::mouseRelease(Window.windowHandle(), Qt::LeftButton, {}, Mouse(From));
        Tree->OnOLEStartDrag = nullptr;
    }
    QString UndoText() { return Window.menuBar()->actions()[1]->menu()->actions()[0]->text().remove('&'); }

    TTempFolder Folder;
    TOutlinerWindow Window;
    TOutlineTree* Tree = Window.GetTree();
};

TEST_F(OutlineDrag, MovesAndCopiesNodesInOneStepThatCanBeUndone) {
    const struct {
        const char* Selected;
        const char* Target;
        TPart Part;
        bool Copy;
        const char* Result; // null: refused
    } Cases[] = {
        {"D", "A", Top, false, "D*, A|1[B|2, C], E[F], G"},
        {"B", "D", Bottom, false, "A|1[C], D, B*|2, E[F], G"},
        {"G", "B", Bottom, false, "A|1[B|2, G*, C], D, E[F]"},
        {"G", "E", Middle, false, "A|1[B|2, C], D, E[F, G*]"}, // a closed branch
        {"B", "", Middle, false, "A|1[C], D, E[F], G, B*|2"},
        {"ADG", "E", Bottom, false, "E[F], A*|1[B|2, C], D*, G*"},
        {"BG", "D", Top, false, "A|1[C], B*|2, G*, D, E[F]"},
        {"D", "E", Top, false, "A|1[B|2, C], D*, E[F], G"}, // where it is
        {"A", "B", Middle, false, nullptr},                 // below itself
        {"A", "A", Bottom, false, nullptr},
        {"A", "D", Top, true, "A|1[B|2, C], A*|1[B|2, C], D, E[F], G"},
        {"A", "C", Middle, true, "A|1[B|2, C[A*|1[B|2, C]]], D, E[F], G"},
    };
    for (const auto& Case : Cases) {
        SCOPED_TRACE(::testing::Message() << Case.Selected << " to " << Case.Target << " at " << Case.Part);
        Open(Plan);
        Select(Case.Selected);
        const std::string Before = Dump();
        const std::string Saved = OutlineText(*Tree->GetItems(), OptionsOf(8));
        int Action = -1;
        Drag([&](NV_IDataObject* Data) {
            const std::unique_ptr<QMimeData> Mime(NewMimeData(Data));
            TDesktopDrag Desk(Tree->viewport(), Mime.get());
            Desk.Modifiers = Case.Copy ? Qt::ControlModifier : Qt::NoModifier;
            Action = Desk.Drop(On(Case.Target, Case.Part));
        });
        EXPECT_EQ(Action, !Case.Result ? 0 : Case.Copy ? Qt::CopyAction : Qt::MoveAction);
        EXPECT_EQ(Dump(), Case.Result ? Case.Result : Before);
        Tree->GetItems()->CheckInvariants();
        if (Dump() == Before) {
            EXPECT_EQ(UndoText(), "Undo");
            EXPECT_FALSE(Window.isWindowModified());
            continue;
        }
        const std::string After = OutlineText(*Tree->GetItems(), OptionsOf(8));
        EXPECT_EQ(UndoText(), Case.Copy ? "Undo Copy" : "Undo Move");
        QTest::keyClick(Tree, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(OutlineText(*Tree->GetItems(), OptionsOf(8)), Saved);
        QTest::keyClick(Tree, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(OutlineText(*Tree->GetItems(), OptionsOf(8)), After);
    }
}

TEST_F(OutlineDrag, OffersNodesAndTextButNoFiles) {
    Open("SaveOptions:8\r\n/etc/hosts,x\r\n\t/etc/passwd\r\n");
    QStringList Formats;
    std::string Text;
    Drag([&](NV_IDataObject* Data) {
        const std::unique_ptr<QMimeData> Mime(NewMimeData(Data));
        Formats = Mime->formats();
        Text = Mime->text().toStdString() + Mime->data(NodesMimeType).toStdString();
    });
    EXPECT_TRUE(Formats.contains(NodesMimeType));
    EXPECT_FALSE(Formats.contains("text/uri-list"));
    EXPECT_EQ(Text.substr(0, Text.find("SaveOptions")), "/etc/hosts\tx\n  /etc/passwd\n");
    EXPECT_NE(Text.find(",/etc/passwd\r\n"), std::string::npos);
}

TEST_F(OutlineDrag, StartsFromTextsOnly) {
    bool Started = false;
    Tree->OnOLEStartDrag = [&](NV_IDataObject*, int&) { Started = true; };
    const TRect Cell = Tree->CellRect(1, Tree->GetRow());
    const QPoint From((Cell.Left + Cell.Right) / 2, (Cell.Top + Cell.Bottom) / 2);
    QTest::mousePress(Tree->viewport(), Qt::LeftButton, {}, From);
    for (const int Step : {4, 14, 30}) QTest::mouseMove(Tree->viewport(), From + QPoint(Step, Step));
    QTest::mouseRelease(Tree->viewport(), Qt::LeftButton, {}, From);
    EXPECT_FALSE(Started) << "other columns are for ranges of cells";
}

TEST_F(OutlineDrag, TakesWhatOtherProgramsDragToTheMark) {
    Folder.Put("a b.txt", "12345");
    const QUrl File = QUrl::fromLocalFile(QString::fromStdString(Folder.File("a b.txt")));
    const auto WithFile = [&](QMimeData& Data) {
        Data.setUrls({File});
        Data.setText(File.toString());
    };
    const struct {
        std::function<void(QMimeData&)> Fill;
        const char* Target;
        TPart Part;
        Qt::KeyboardModifiers Modifiers;
        int Action;
        const char* Result;
    } Cases[] = {
        {[](QMimeData& Data) { Data.setText("x\n  y\tcell\nz"); },
         "D",
         Top,
         {},
         Qt::CopyAction,
         "A|1[B|2, C], x*[y|cell], z*, D, E[F], G"},
        {[](QMimeData& Data) { Data.setText("x"); }, "E", Middle, Qt::ShiftModifier, Qt::MoveAction,
         "A|1[B|2, C], D, E[F, x*], G"},
        {[](QMimeData& Data) {
             Data.setData(NodesMimeType, "SaveOptions:8\r\nN,cell\r\n\tM\r\n");
             Data.setText("as text");
         },
         "C", Bottom, Qt::ShiftModifier, Qt::MoveAction, "A|1[B|2, C, N*|cell[M]], D, E[F], G"},
        {[](QMimeData& Data) { Data.setData(NodesMimeType, "SaveOptions:8\r\nOnlyNodes\r\n"); },
         "",
         Middle,
         {},
         Qt::CopyAction,
         "A|1[B|2, C], D, E[F], G, OnlyNodes*"},
        {[](QMimeData& Data) {
             Data.setData(NodesMimeType, QByteArray("SaveOptions:127\r\n\xFF,\0", 20));
             Data.setText("as text");
         },
         "G",
         Bottom,
         {},
         Qt::CopyAction,
         "A|1[B|2, C], D, E[F], G, as text*"},
        {WithFile, "G", Bottom, Qt::ShiftModifier, Qt::CopyAction, "A|1[B|2, C], D, E[F], G, a b.txt*"},
        {[](QMimeData& Data) { Data.setText(" \n"); }, "G", Bottom, {}, 0, "A*|1[B|2, C], D, E[F], G"},
        {[](QMimeData& Data) { Data.setData("image/png", "x"); },
         "G",
         Bottom,
         {},
         0,
         "A*|1[B|2, C], D, E[F], G"},
    };
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.Result);
        Open(Plan);
        TDesktopDrag Desk(Tree->viewport());
        Case.Fill(Desk.Data);
        Desk.Modifiers = Case.Modifiers;
        EXPECT_EQ(Desk.Drop(On(Case.Target, Case.Part)), Case.Action);
        EXPECT_EQ(Dump(), Case.Result);
        if (Case.Action == 0) continue;
        EXPECT_EQ(UndoText(), "Undo Drop");
        QTest::keyClick(Tree, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(OutlineText(*Tree->GetItems(), OptionsOf(8)).find("as text"), std::string::npos);
    }
}

TEST_F(OutlineDrag, PutsSizesAndDatesOfFilesWhereTheOutlineHasSuchColumns) {
    Folder.Put("plan.columns", "Name,Size,Modified\r\n");
    Folder.Put("a.txt", "12345");
    Open(Plan);
    TDesktopDrag Desk(Tree->viewport());
    Desk.Data.setUrls({QUrl::fromLocalFile(QString::fromStdString(Folder.File("a.txt"))),
                       QUrl("file:///nowhere/gone.txt"), QUrl("https://example.org/x")});
    EXPECT_EQ(Desk.Drop(On("", Middle)), Qt::CopyAction);
    EXPECT_TRUE(Dump().find(", a.txt*|5 bytes|20") != std::string::npos) << Dump();
    EXPECT_TRUE(Dump().ends_with(", gone.txt*||")) << Dump();
}

TEST_F(OutlineDrag, LetsNodesGoThatAnotherProgramHasTaken) {
    Select("BD");
    const std::string Before = OutlineText(*Tree->GetItems(), OptionsOf(8));
    Tree->NodesDragged(drDropCopy, false);
    Tree->NodesDragged(drCancel, false);
    Tree->NodesDragged(drDropMove, true);
    EXPECT_EQ(OutlineText(*Tree->GetItems(), OptionsOf(8)), Before);
    Tree->NodesDragged(drDropMove, false);
    EXPECT_EQ(DumpOutline(*Tree->GetItems()), "A|1[C*], E[F], G");
    EXPECT_EQ(UndoText(), "Undo Move");
    QTest::keyClick(Tree, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(OutlineText(*Tree->GetItems(), OptionsOf(8)), Before);
}

} // namespace
