#include "examples/explorer/Directory.h"
#include "examples/explorer/DirectoryFiller.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/QtTest.h"

#include <sys/stat.h>

namespace fs = std::filesystem;
using namespace quill;
using namespace quill::examples;
using quill::testing::BecomeNobody;
using quill::testing::ExpectInChild;
using quill::testing::TTempFolder;

namespace {

// "name(kind marks)" of all entries, one after another.
std::string Dump(const std::string& Path) {
    std::string Text;
    for (const TDirectoryEntry& Entry : ReadDirectory(Path)) {
        Text += Entry.Name;
        if (Entry.Kind == ekDirectory) Text += Entry.HasEntries ? "(+)" : "(-)";
        if (Entry.Kind == ekLink) Text += "->" + Entry.LinkTarget;
        if (Entry.Kind == ekSpecial) Text += "(special)";
        if (Entry.Kind == ekFile) Text += ":" + std::to_string(Entry.Size);
        Text += ' ';
    }
    return Text;
}

// The names of a node's children, with "+" for a closed folder and what is below an open one in brackets.
std::string Children(TFlyNode* Node) {
    if (!Node->GetExpanded()) return Node->GetHasChildren() ? "+" : "";
    std::string Text;
    for (TFlyNode* Child = Node->GetFirstChild(); Child; Child = Child->GetNextSibling())
        Text += (Text.empty() ? "" : " ") + Child->GetText() + Children(Child);
    return "[" + Text + "]";
}

class Filler : public ::testing::Test {
protected:
    Filler() : Fill(&Tree) { Tree.SetSmoothExpandCollapse(false); }

    TFlyNode* Open() {
        Fill.OpenRoot(Folder.File("root"));
        return Tree.GetItems()->GetFirstNode();
    }
    void MakeFolder(const std::string& Name) { fs::create_directories(Folder.File("root/" + Name)); }
    TFlyNode* Child(TFlyNode* Node, int Index) { return Node->GetItem(Index); }

    TTempFolder Folder;
    TQuillTree Tree;
    TDirectoryFiller Fill;
};

TEST(Directory, PutsDirectoriesFirstAndNumbersByValue) {
    const TTempFolder Folder;
    for (const char* Name : {"file10", "file9", "file1"}) Folder.Put(Name, "123");
    for (const char* Name : {"dir10", "dir2"}) fs::create_directory(Folder.File(Name));
    Folder.Put("dir2/inside", "x");
    ASSERT_EQ(::mkfifo(Folder.File("pipe").c_str(), 0600), 0);
    EXPECT_EQ(Dump(Folder.File("")), "dir2(+) dir10(-) file1:3 file9:3 file10:3 pipe(special) ");
}

TEST(Directory, ShowsLinksAndDoesNotFollowThem) {
    const TTempFolder Folder;
    fs::create_directory(Folder.File("dir"));
    fs::create_directory_symlink("..", Folder.File("dir/up"));
    fs::create_symlink("nowhere", Folder.File("dangling"));
    EXPECT_EQ(Dump(Folder.File("")), "dir(+) dangling->nowhere ");
    EXPECT_EQ(Dump(Folder.File("dir")), "up->.. ");
    // A link from outside is meant to be opened.
    EXPECT_EQ(ReadEntry(Folder.File("dir/up")).Kind, ekDirectory);
}

TEST(Directory, SaysWhyADirectoryCannotBeRead) {
    const TTempFolder Folder;
    fs::permissions(Folder.File(""), fs::perms{0755});
    fs::create_directory(Folder.File("closed"));
    fs::permissions(Folder.File("closed"), fs::perms::none);
    ExpectInChild([&] { return BecomeNobody(), ReadDirectory(Folder.File("")).at(0).Problem; },
                  "Permission denied");
    const auto Opened = [&]() -> std::string {
        BecomeNobody();
        try {
            return "entries: " + std::to_string(ReadDirectory(Folder.File("closed")).size());
        } catch (const EDirectoryError& Error) {
            return Error.GetMessage();
        }
    };
    ExpectInChild(Opened, "Permission denied");
    fs::permissions(Folder.File("closed"), fs::perms::owner_all);
}

TEST_F(Filler, ReadsADirectoryWhenItIsOpened) {
    MakeFolder("a/b/c");
    MakeFolder("empty");
    Folder.Put("root/x.png", std::string(2048, 'x'));
    TFlyNode* Root = Open();
    EXPECT_EQ(Children(Root), "[a+ empty x.png]");
    EXPECT_EQ(Fill.GetNodeCount(), 4);
    Child(Root, 0)->Expand(false);
    EXPECT_EQ(Children(Root), "[a[b+] empty x.png]");
    EXPECT_EQ(Fill.PathOf(Child(Child(Root, 0), 0)), Folder.File("root/a/b"));
    EXPECT_EQ(Child(Root, 2)->GetCell(ecSize), "2.0 kB");
    EXPECT_EQ(Child(Root, 2)->GetCell(ecKind), "Picture");

    Fill.ExpandLevels(9);
    EXPECT_EQ(Children(Root), "[a[b[c]] empty x.png]");
    Folder.Put("root/empty/new", "x");
    Fill.Refresh(Root);
    EXPECT_EQ(Children(Root), "[a+ empty+ x.png]");
    EXPECT_EQ(Fill.GetNodeCount(), 4);
}

TEST_F(Filler, SurvivesDirectoriesThatVanish) {
    MakeFolder("gone/inside");
    TFlyNode* Root = Open();
    fs::remove_all(Folder.File("root/gone"));
    Child(Root, 0)->Expand(false);
    EXPECT_EQ(Fill.GetNodeCount(), 2);
    EXPECT_FALSE(Child(Root, 0)->GetHasChildren());
    EXPECT_EQ(Child(Root, 0)->GetCell(ecKind), "Folder, cannot be read: No such file or directory");
    EXPECT_THROW(Fill.OpenRoot(Folder.File("root/gone")), EDirectoryError);
    EXPECT_EQ(Fill.GetNodeCount(), 2) << "a root that cannot be read replaced the tree";
}

} // namespace
