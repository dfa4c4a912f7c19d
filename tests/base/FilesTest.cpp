// Saving over files that are there.
#include "host/base/Files.h"
#include "host/base/Errors.h"
#include "host/base/Streams.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace fs = std::filesystem;
using quill::testing::BecomeNobody;
using quill::testing::ExpectInChild;

namespace quill {
namespace {

class ReplacedFiles : public ::testing::Test {
protected:
    // The message of a save that is refused; empty when it went through.
    static std::string Refusal(const std::string& FileName, const std::string& Text) {
        try {
            ReplaceFile(FileName,
                        [&](TStream& Stream) { Stream.WriteBuffer(Text.data(), std::ssize(Text)); });
            return {};
        } catch (const EStreamError& Error) {
            return Error.GetMessage();
        }
    }
    void Save(const std::string& Name, const std::string& Text) {
        EXPECT_EQ(Refusal(Folder.File(Name), Text), "");
        EXPECT_TRUE(Folder.Content(Name) == Text) << Name;
    }
    struct stat StatusOf(const std::string& Name) {
        struct stat Status {};
        EXPECT_EQ(::stat(Folder.File(Name).c_str(), &Status), 0) << Name;
        return Status;
    }
    int ModeOf(const std::string& Name) { return static_cast<int>(StatusOf(Name).st_mode & 07777); }

    const testing::TTempFolder Folder;
};

TEST_F(ReplacedFiles, GetTheContentWithTheOldPermissions) {
    const mode_t Mask = ::umask(027);
    Save("a", "new");
    ::umask(Mask);
    EXPECT_EQ(ModeOf("a"), 0640);
    for (const mode_t Mode : {0600, 0604, 0664, 0755}) {
        ASSERT_EQ(::chmod(Folder.File("a").c_str(), Mode), 0);
        Save("a", std::string(100000, 'x'));
        EXPECT_EQ(ModeOf("a"), static_cast<int>(Mode));
    }
    Save("a", "");
    EXPECT_EQ(Folder.Names(), "a ") << "a temporary file was left";
    Save(std::string(255, 'n'), "the longest name that a file can have");
}

TEST_F(ReplacedFiles, KeepTheirOwner) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    Folder.Put("a", "old");
    ASSERT_EQ(::chown(Folder.File("a").c_str(), 12345, 23456), 0);
    Save("a", "new");
    EXPECT_EQ(StatusOf("a").st_uid, 12345U);
    EXPECT_EQ(StatusOf("a").st_gid, 23456U);
}

TEST_F(ReplacedFiles, KeepTheirSymbolicLinks) {
    Folder.Put("real/a", "old");
    fs::create_directory(Folder.File("links"));
    fs::create_symlink("../real/a", Folder.File("links/one"));
    fs::create_symlink("one", Folder.File("links/two"));
    fs::create_symlink("../real/b", Folder.File("links/dangling"));
    fs::create_symlink("loop", Folder.File("links/loop"));
    Save("links/two", "new");
    EXPECT_EQ(Folder.Content("real/a"), "new");
    Save("links/dangling", "born");
    EXPECT_EQ(Folder.Content("real/b"), "born");
    EXPECT_NE(Refusal(Folder.File("links/loop"), "x").find("links/loop"), std::string::npos);
    for (const char* Name : {"one", "two", "dangling"})
        EXPECT_TRUE(fs::is_symlink(Folder.File("links/") + Name)) << Name;
    EXPECT_EQ(Folder.Names("links"), "dangling loop one two ");
    EXPECT_EQ(Folder.Names("real"), "a b ");
}

TEST_F(ReplacedFiles, KeepAllTheirNames) {
    Folder.Put("a", "old");
    fs::create_hard_link(Folder.File("a"), Folder.File("b"));
    for (const std::string& Text : {std::string(50000, 'l'), std::string("short"), std::string()}) {
        Save("a", Text);
        EXPECT_TRUE(Folder.Content("b") == Text);
    }
    EXPECT_EQ(Folder.Names(), "a b ") << "a temporary file was left";
}

TEST_F(ReplacedFiles, AreNoFoldersDevicesOrPipes) {
    const std::string Sub = Folder.File("sub");
    fs::create_directory(Sub);
    EXPECT_EQ(Refusal(Sub, "x"), "Cannot create file \"" + Sub + "\": Is a directory");
    EXPECT_EQ(Refusal(Folder.File("none/a"), "x"),
              "Cannot create file \"" + Folder.File("none/a") + "\": No such file or directory");
    EXPECT_NE(Refusal("", "x"), "");
    EXPECT_NE(Refusal(Sub + std::string("/a\0b", 4), "x"), "") << "a cut name is another file";
    EXPECT_EQ(Refusal("/dev/full", "x"),
              "Cannot save file \"/dev/full\": Stream write error: No space left on device");
    EXPECT_EQ(Refusal("/dev/null", "x"), "");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(Folder.Names("sub"), "");
}

TEST_F(ReplacedFiles, KeepTheOldContentWhenSavingIsForbiddenOrFails) {
    Folder.Put("a", "old");
    const auto ExpectDenied = [&](const std::string& Name) {
        ExpectInChild([&] { return BecomeNobody(), Refusal(Folder.File(Name), "new"); }, "Permission denied");
    };
    // The file could be written, but not replaced.
    fs::permissions(Folder.File("a"), fs::perms{0666});
    fs::permissions(Folder.File(""), fs::perms{0555});
    ExpectDenied("a");
    ExpectDenied("b");
    // The file could be replaced, but its owner wants it kept.
    fs::permissions(Folder.File(""), fs::perms{0777});
    fs::permissions(Folder.File("a"), fs::perms{0444});
    ExpectDenied("a");
    EXPECT_THROW(ReplaceFile(Folder.File("a"),
                             [](TStream& Stream) {
                                 Stream.WriteBuffer("ne", 2);
                                 throw EConvertError("no number");
                             }),
                 EConvertError);
    EXPECT_EQ(Folder.Content("a"), "old");
    EXPECT_EQ(Folder.Names(), "a ") << "a temporary file was left";
}

// A limit on the size of files fails in the middle of writing, as a full disk does.
TEST_F(ReplacedFiles, KeepTheOldContentWhenTheDiskIsFull) {
    Folder.Put("a", "old");
    Folder.Put("b", "old");
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
        EXPECT_EQ(Folder.Content(Name), "old");
    }
    EXPECT_EQ(Folder.Names(), "a b c ") << "a temporary file was left";
}

} // namespace
} // namespace quill
