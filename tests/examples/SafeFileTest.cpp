#include "examples/common/SafeFile.h"

#include "tests/examples/ChildProcess.h"
#include "tests/support/QtTest.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace quill::examples;
using quill::testing::BecomeNobody;
using quill::testing::ExpectInChild;
using quill::testing::TTempFolder;
using ::testing::HasSubstr;

namespace {

std::string Content(const std::string& Name) {
    std::ifstream File(Name, std::ios::binary);
    std::ostringstream Text;
    Text << File.rdbuf();
    return Text.str();
}

void Put(const std::string& Name, const std::string& Text) { std::ofstream(Name, std::ios::binary) << Text; }

int ModeOf(const std::string& Name) {
    struct stat Status {};
    return ::stat(Name.c_str(), &Status) == 0 ? static_cast<int>(Status.st_mode & 07777) : -1;
}

int CountEntries(const std::string& Folder) {
    return static_cast<int>(std::distance(fs::directory_iterator(Folder), fs::directory_iterator()));
}

// The message of a save that is refused; empty when it went through.
std::string Refusal(const std::string& Name, const std::string& Text) {
    try {
        WriteFileSafely(Name, Text);
        return {};
    } catch (const ESaveError& Error) {
        return Error.GetMessage();
    }
}

TEST(SafeFile, WritesNewFilesAndReplacesOldOnesWithTheirPermissions) {
    const TTempFolder Folder;
    const std::string Name = Folder.File("a.nodes");
    const mode_t Mask = ::umask(027);
    WriteFileSafely(Name, "new");
    ::umask(Mask);
    EXPECT_EQ(Content(Name), "new");
    EXPECT_EQ(ModeOf(Name), 0640);

    for (const mode_t Mode : {0600, 0604, 0664, 0755}) {
        ASSERT_EQ(::chmod(Name.c_str(), Mode), 0);
        WriteFileSafely(Name, std::string(100000, 'x'));
        EXPECT_EQ(ModeOf(Name), static_cast<int>(Mode));
        EXPECT_EQ(Content(Name).size(), 100000U);
    }
    WriteFileSafely(Name, "");
    EXPECT_EQ(Content(Name), "");
    EXPECT_EQ(CountEntries(Folder.File("")), 1) << "a temporary file was left";
}

TEST(SafeFile, KeepsTheOwner) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    const TTempFolder Folder;
    const std::string Name = Folder.File("a.nodes");
    Put(Name, "old");
    ASSERT_EQ(::chown(Name.c_str(), 12345, 23456), 0);
    WriteFileSafely(Name, "new");
    struct stat Status {};
    ASSERT_EQ(::stat(Name.c_str(), &Status), 0);
    EXPECT_EQ(Status.st_uid, 12345U);
    EXPECT_EQ(Status.st_gid, 23456U);
}

TEST(SafeFile, FollowsSymbolicLinksAndLeavesThem) {
    const TTempFolder Folder;
    fs::create_directory(Folder.File("real"));
    fs::create_directory(Folder.File("links"));
    Put(Folder.File("real/a.nodes"), "old");
    fs::create_symlink("../real/a.nodes", Folder.File("links/one"));
    fs::create_symlink("one", Folder.File("links/two"));
    WriteFileSafely(Folder.File("links/two"), "new");
    EXPECT_EQ(Content(Folder.File("real/a.nodes")), "new");
    EXPECT_EQ(fs::read_symlink(Folder.File("links/one")), "../real/a.nodes");
    EXPECT_EQ(fs::read_symlink(Folder.File("links/two")), "one");

    // A link to nothing gets its target.
    fs::create_symlink("../real/b.nodes", Folder.File("links/three"));
    WriteFileSafely(Folder.File("links/three"), "born");
    EXPECT_TRUE(fs::is_symlink(Folder.File("links/three")));
    EXPECT_EQ(Content(Folder.File("real/b.nodes")), "born");

    fs::create_symlink("loop", Folder.File("links/loop"));
    EXPECT_THAT(Refusal(Folder.File("links/loop"), "new"), HasSubstr("links/loop"));
    EXPECT_EQ(CountEntries(Folder.File("links")), 4);
    EXPECT_EQ(CountEntries(Folder.File("real")), 2);
}

TEST(SafeFile, KeepsAllNamesOfAFile) {
    const TTempFolder Folder;
    Put(Folder.File("a"), "old");
    fs::create_hard_link(Folder.File("a"), Folder.File("b"));
    for (const std::string& Text : {std::string(50000, 'l'), std::string("short"), std::string()}) {
        WriteFileSafely(Folder.File("a"), Text);
        EXPECT_EQ(Content(Folder.File("b")), Text);
    }
    EXPECT_EQ(fs::hard_link_count(Folder.File("a")), 2U);
    EXPECT_EQ(CountEntries(Folder.File("")), 2) << "a temporary file was left";
}

TEST(SafeFile, RefusesWhatIsNoOrdinaryFile) {
    const TTempFolder Folder;
    fs::create_directory(Folder.File("sub"));
    ASSERT_EQ(::mkfifo(Folder.File("pipe").c_str(), 0666), 0);
    EXPECT_THAT(Refusal(Folder.File("sub"), "x"), HasSubstr("it is a folder"));
    EXPECT_THAT(Refusal(Folder.File("pipe"), "x"), HasSubstr("not an ordinary file"));
    EXPECT_THAT(Refusal("/dev/full", "x"), HasSubstr("\"/dev/full\": it is not an ordinary file"));
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    EXPECT_THAT(Refusal(Folder.File("missing/a.nodes"), "x"), HasSubstr("No such file"));
    EXPECT_NE(Refusal(Folder.File("sub/a\xFF.nodes"), "x"), "");
    EXPECT_NE(Refusal("", "x"), "");
    EXPECT_EQ(CountEntries(Folder.File("sub")), 0);
}

TEST(SafeFile, LeavesTheOldFileWhenWritingIsForbidden) {
    const TTempFolder Folder;
    const std::string Name = Folder.File("a.nodes");
    Put(Name, "old");
    fs::permissions(Folder.File(""), fs::perms{0755});
    fs::permissions(Name, fs::perms{0666});
    // The file could be written, but not replaced.
    fs::permissions(Folder.File(""), fs::perms{0555});
    ExpectInChild([&] { return BecomeNobody(), Refusal(Name, "new"); }, "Permission denied");
    ExpectInChild([&] { return BecomeNobody(), Refusal(Folder.File("b.nodes"), "new"); },
                  "Permission denied");
    // The file could be replaced, but its owner wants it kept.
    fs::permissions(Folder.File(""), fs::perms{0777});
    fs::permissions(Name, fs::perms{0444});
    ExpectInChild([&] { return BecomeNobody(), Refusal(Name, "new"); }, "Permission denied");
    EXPECT_EQ(Content(Name), "old");
    EXPECT_EQ(CountEntries(Folder.File("")), 1);
}

// A limit on the size of files fails in the middle of writing, as a full disk does.
TEST(SafeFile, LeavesTheOldFileWhenTheDiskIsFull) {
    const TTempFolder Folder;
    Put(Folder.File("a"), "old");
    Put(Folder.File("b"), "old");
    fs::create_hard_link(Folder.File("b"), Folder.File("c"));
    for (const char* Name : {"a", "b"}) {
        ExpectInChild(
            [&] {
                const struct rlimit Limit { 65536, 65536 };
                if (::setrlimit(RLIMIT_FSIZE, &Limit) != 0) return std::string("no limit");
                std::signal(SIGXFSZ, SIG_IGN);
                return Refusal(Folder.File(Name), std::string(1000000, 'x'));
            },
            "File too large");
        EXPECT_EQ(Content(Folder.File(Name)), "old");
    }
    EXPECT_EQ(CountEntries(Folder.File("")), 3) << "a temporary file was left";
}

} // namespace
