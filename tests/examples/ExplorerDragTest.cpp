// Files dragged out of the explorer and into it.
#include "examples/explorer/ExplorerWindow.h"
#include "examples/explorer/FileCopy.h"

#include "host/transfer/DataObjects.h"
#include "tests/support/DesktopDrag.h"
#include "tests/support/QtTest.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <sys/stat.h>

namespace fs = std::filesystem;
using namespace quill;
using namespace quill::examples;
using quill::testing::TDesktopDrag;
using quill::testing::TTempFolder;

namespace {

TEST(FileCopy, CopiesAllOrNothing) {
    const TTempFolder Folder;
    Folder.Put("from/file", "new");
    Folder.Put("from/dir/sub/deep", "x");
    Folder.Put("from/odd/inner", "x");
    fs::create_symlink("nowhere", Folder.File("from/link"));
    ASSERT_EQ(::mkfifo(Folder.File("from/odd/pipe").c_str(), 0600), 0);
    const fs::perms ReadOnly = fs::perms::owner_read | fs::perms::owner_exec;
    for (const char* Name : {"from/dir/sub", "from/dir"}) fs::permissions(Folder.File(Name), ReadOnly);
    Folder.Put("to/there", "old");
    fs::create_directory(Folder.File("to/folder"));
    // From, to, whether it may replace; the problem, and the names in the folder afterwards.
    const std::tuple<const char*, const char*, bool, const char*, const char*> Cases[] = {
        {"from/file", "to/there", false, "File exists", "folder there "},
        {"from/odd", "to/odd", false, "it is a device, pipe or socket", "folder there "},
        {"from/missing", "to/missing", false, "No such file or directory", "folder there "},
        {"from/file", "to/folder", true, "there is a folder of that name", "folder there "},
        {"from/dir", "to/there", true, "there is a folder of that name", "folder there "},
        {"from/file", "nowhere/file", false, "No such file or directory", "folder there "},
        {"from/file", "to/there", true, "", "folder there "},
        {"from/link", "to/link", false, "", "folder link there "},
        {"from/dir", "to/dir", false, "", "dir folder link there "},
        {"to", "to/folder/to", false, "a folder cannot be copied into itself", "dir folder link there "},
    };
    const std::atomic<bool> Stop = false;
    for (const auto& [From, To, Replaces, Expected, Names] : Cases) {
        const std::string Problem = Copy({Folder.File(From), Folder.File(To), false, Replaces}, Stop);
        EXPECT_NE(Problem.find(Expected), std::string::npos) << To << ": " << Problem;
        EXPECT_EQ(Problem.empty(), !*Expected) << To << ": " << Problem;
        EXPECT_EQ(Folder.Names("to"), Names) << To;
    }
    EXPECT_EQ(Folder.Content("to/there"), "new");
    EXPECT_EQ(Folder.Content("to/dir/sub/deep"), "x");
    EXPECT_TRUE(fs::is_symlink(Folder.File("to/link")));
    for (const char* Name : {"to/dir/sub", "to/dir"})
        EXPECT_EQ(fs::status(Folder.File(Name)).permissions(), ReadOnly) << Name;
    const std::atomic<bool> Stopped = true;
    EXPECT_EQ(Copy({Folder.File("from/dir"), Folder.File("to/again"), false, false}, Stopped), "stopped");
    EXPECT_FALSE(fs::exists(Folder.File("to/again")));
    for (const char* Name : {"from/dir", "from/dir/sub", "to/dir", "to/dir/sub"})
        fs::permissions(Folder.File(Name), fs::perms::owner_all);
}

class ExplorerDrag : public ::testing::Test {
protected:
    ExplorerDrag() {
        Folder.Put("root/dir/inside", "i");
        Folder.Put("root/file", "old");
        Folder.Put("other/file", "new");
        Folder.Put("other/extra", "e");
        Tree->SetSmoothExpandCollapse(false);
        Window.resize(600, 400);
        Window.OpenRoot(Folder.File("root"));
        Window.show();
        QApplication::processEvents();
    }
    TFlyNode* Node(const std::string& Text) {
        TFlyNode* Found = Tree->GetItems()->GetFirstNode();
        while (Found && Found->GetText() != Text) Found = Found->GetNext();
        return Found;
    }
    QPoint On(const std::string& Text) {
        if (Text.empty()) return {60, Tree->GetClientHeight() - 4};
        const TRect R = Tree->DisplayRect(Node(Text), true);
        return {R.Left + 6, (R.Top + R.Bottom) / 2};
    }
    // Drops files there, and answers what is asked in turn. Returns the action of the drop.
    int Drop(const std::vector<std::string>& Names, const std::string& Target,
             std::vector<QMessageBox::StandardButton> Answers) {
        TDesktopDrag Desk(Tree->viewport());
        QList<QUrl> Urls;
        for (const std::string& Name : Names)
            Urls.append(QUrl::fromLocalFile(QString::fromStdString(Folder.File(Name))));
        Desk.Data.setUrls(Urls);
        const int Action = Desk.Drop(On(Target));
        QTimer Timer;
        std::size_t Next = 0;
        Told.clear();
        QObject::connect(&Timer, &QTimer::timeout, [&] {
            auto* const Box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!Box) return;
            if (Next < Answers.size()) {
                Box->button(Answers[Next++])->click();
            } else {
                Told = Box->text().toStdString();
                Box->accept();
            }
        });
        Timer.start(5);
        QTest::qWait(50);
        EXPECT_EQ(Next, Answers.size()) << "questions";
        return Action;
    }

    TTempFolder Folder;
    TExplorerWindow Window;
    TExplorerTree* Tree = Window.GetTree();
    std::string Told; // what the last message said
};

TEST_F(ExplorerDrag, CopiesDroppedFilesWhenItMay) {
    using Box = QMessageBox;
    EXPECT_EQ(Drop({"other/extra"}, "dir", {Box::Cancel}), Qt::CopyAction);
    EXPECT_EQ(Folder.Names("root/dir"), "inside ");
    EXPECT_EQ(Drop({"other/extra"}, "dir", {Box::Ok}), Qt::CopyAction);
    EXPECT_EQ(Folder.Names("root/dir"), "extra inside ");
    EXPECT_EQ(Folder.Names("other"), "extra file ");
    ASSERT_TRUE(Node("extra")) << "it is shown";

    Drop({"other/file", "other/extra"}, "file", {Box::Ok, Box::No}); // beside the file
    EXPECT_EQ(Folder.Names("root"), "dir extra file ");
    EXPECT_EQ(Folder.Content("root/file"), "old");
    Drop({"other/file"}, "", {Box::Ok, Box::Cancel});
    EXPECT_EQ(Folder.Content("root/file"), "old");
    Drop({"other/file"}, "", {Box::Ok, Box::Yes});
    EXPECT_EQ(Folder.Content("root/file"), "new");
    EXPECT_EQ(Told, "");
    Drop({"other/missing"}, "", {Box::Ok});
    EXPECT_NE(Told.find("missing\": No such file"), std::string::npos) << Told;
}

TEST_F(ExplorerDrag, RefusesWhatMakesNoSense) {
    EXPECT_EQ(Drop({"root/dir"}, "dir", {}), 0) << "a folder into itself";
    EXPECT_EQ(Drop({"root"}, "dir", {}), 0) << "a folder into one below it";
    EXPECT_EQ(Drop({"root/file"}, "", {}), 0) << "to where it is";
    TDesktopDrag Desk(Tree->viewport());
    Desk.Data.setText("/etc/hosts");
    EXPECT_EQ(Desk.Drop(On("dir")), 0) << "text is no file";
}

TEST_F(ExplorerDrag, OffersTheSelectedFilesToBeCopied) {
    Folder.Put("root/two\nlines", "x");
    Window.OpenRoot(Folder.File("root"));
    Tree->SetSelection(Node("dir"));
    for (TFlyNode* Each = Node("dir"); Each; Each = Each->GetNextSibling()) Each->SetSelected(true);
    const std::unique_ptr<TOLEDropSource> Source = Tree->CreateDropSource();
    EXPECT_EQ(Source->GetDragTypes(), TDragTypes{dtCopy});
    const std::unique_ptr<QMimeData> Mime(NewMimeData(Source.get()));
    QString Paths;
    for (const QUrl& Url : Mime->urls()) Paths += Url.toLocalFile() + '\n';
    EXPECT_EQ(Paths.toStdString(), Folder.File("root/dir") + "\n" + Folder.File("root/file") + "\n");
    EXPECT_EQ(Mime->text(), Paths);
}

} // namespace
