// What the outliner makes of drags: its own nodes, and what other programs drag to it.
#include "tests/examples/OutlinerTest.h"
#include "tests/support/DesktopDrag.h"

#include <QUrl>

using namespace quill;
using namespace quill::examples;
using quill::testing::TDesktopDrag;

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

class OutlineDrag : public TOutlinerTest {
protected:
    OutlineDrag() : TOutlinerTest(Plan) {}

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
};

TEST_F(OutlineDrag, MovesAndCopiesNodesInOneStepThatCanBeUndone) {
    using TTexts = std::vector<std::string>;
    // Null: refused.
    const std::tuple<TTexts, const char*, TPart, bool, const char*> Cases[] = {
        {{"D"}, "A", Top, false, "D*, A|1[B|2, C], E[F], G"},
        {{"B"}, "D", Bottom, false, "A|1[C], D, B*|2, E[F], G"},
        {{"G"}, "B", Bottom, false, "A|1[B|2, G*, C], D, E[F]"},
        {{"G"}, "E", Middle, false, "A|1[B|2, C], D, E[F, G*]"}, // a closed branch
        {{"B"}, "", Middle, false, "A|1[C], D, E[F], G, B*|2"},
        {{"A", "D", "G"}, "E", Bottom, false, "E[F], A*|1[B|2, C], D*, G*"},
        {{"B", "G"}, "D", Top, false, "A|1[C], B*|2, G*, D, E[F]"},
        {{"D"}, "E", Top, false, "A|1[B|2, C], D*, E[F], G"}, // where it is
        {{"A"}, "B", Middle, false, nullptr},                 // below itself
        {{"A"}, "A", Bottom, false, nullptr},
        {{"A"}, "D", Top, true, "A|1[B|2, C], A*|1[B|2, C], D, E[F], G"},
        {{"A"}, "C", Middle, true, "A|1[B|2, C[A*|1[B|2, C]]], D, E[F], G"},
    };
    for (const auto& [Selected, Target, Part, Copy, Result] : Cases) {
        SCOPED_TRACE(Selected[0] + " to " + Target + " at " + std::to_string(Part));
        Open(Plan);
        Select(Selected);
        const std::string Before = Dump();
        const std::string SavedBefore = Saved(8);
        int Action = -1;
        Drag([&, Target = Target, Part = Part, Copy = Copy](NV_IDataObject* Data) {
            const std::unique_ptr<QMimeData> Mime(NewMimeData(Data));
            TDesktopDrag Desk(Tree->viewport(), Mime.get());
            Desk.Modifiers = Copy ? Qt::ControlModifier : Qt::NoModifier;
            Action = Desk.Drop(On(Target, Part));
        });
        EXPECT_EQ(Action, !Result ? 0 : Copy ? Qt::CopyAction : Qt::MoveAction);
        EXPECT_EQ(Dump(), Result ? Result : Before);
        Tree->GetItems()->CheckInvariants();
        const bool Changed = Dump() != Before;
        EXPECT_EQ(Window.isWindowModified(), Changed);
        EXPECT_EQ(UndoText(), !Changed ? "Undo" : Copy ? "Undo Copy" : "Undo Move");
        if (!Changed) continue;
        const std::string After = Saved(8);
        Press("Ctrl+Z");
        EXPECT_EQ(Saved(8), SavedBefore);
        Press("Ctrl+Shift+Z");
        EXPECT_EQ(Saved(8), After);
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

TEST_F(OutlineDrag, TakesWhatOtherProgramsDragToTheMark) {
    Folder.Put("a b.txt", "12345");
    const QUrl File = QUrl::fromLocalFile(QString::fromStdString(Folder.File("a b.txt")));
    const QByteArray Nodes = "SaveOptions:8\r\nN,cell\r\n\tM\r\n";
    const QByteArray NoNodes("SaveOptions:127\r\n\xFF,\0", 20);
    const char* const Unchanged = "A*|1[B|2, C], D, E[F], G";
    const struct {
        QString Text;
        QByteArray Nodes;
        bool HasFile;
        const char* Target;
        TPart Part;
        Qt::KeyboardModifiers Modifiers;
        int Action;
        const char* Result;
    } Cases[] = {
        {"x\n  y\tcell\nz", "", false, "D", Top, {}, 1, "A|1[B|2, C], x*[y|cell], z*, D, E[F], G"},
        {"x", "", false, "E", Middle, Qt::ShiftModifier, 2, "A|1[B|2, C], D, E[F, x*], G"},
        {"text", Nodes, false, "C", Bottom, Qt::ShiftModifier, 2, "A|1[B|2, C, N*|cell[M]], D, E[F], G"},
        {"", Nodes, false, "", Middle, {}, 1, "A|1[B|2, C], D, E[F], G, N*|cell[M]"},
        {"text", NoNodes, false, "G", Bottom, {}, 1, "A|1[B|2, C], D, E[F], G, text*"},
        {"text", "", true, "G", Bottom, Qt::ShiftModifier, 1, "A|1[B|2, C], D, E[F], G, a b.txt*"},
        {" \n", "", false, "G", Bottom, {}, 0, Unchanged},
    };
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.Result);
        Open(Plan);
        const std::string Before = Saved(8);
        TDesktopDrag Desk(Tree->viewport());
        if (!Case.Text.isEmpty()) Desk.Data.setText(Case.Text);
        if (!Case.Nodes.isEmpty()) Desk.Data.setData(NodesMimeType, Case.Nodes);
        if (Case.HasFile) Desk.Data.setUrls({File});
        Desk.Modifiers = Case.Modifiers;
        EXPECT_EQ(Desk.Drop(On(Case.Target, Case.Part)), Case.Action);
        EXPECT_EQ(Dump(), Case.Result);
        EXPECT_EQ(UndoText(), Case.Action == 0 ? "Undo" : "Undo Drop");
        Press("Ctrl+Z");
        EXPECT_EQ(Saved(8), Before);
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
    Select({"B", "D"});
    const std::string Before = Saved(8);
    Tree->NodesDragged(drDropCopy, false);
    Tree->NodesDragged(drCancel, false);
    Tree->NodesDragged(drDropMove, true);
    EXPECT_EQ(Saved(8), Before);
    Tree->NodesDragged(drDropMove, false);
    EXPECT_EQ(Dump() + " " + UndoText(), "A|1[C*], E[F], G Undo Move");
    Press("Ctrl+Z");
    EXPECT_EQ(Saved(8), Before);
}

} // namespace
