// The example programs as a user starts them.
#include "tests/support/QtTest.h"

#include <gmock/gmock.h>

#include <QImage>
#include <QProcess>
#include <QSet>

namespace fs = std::filesystem;
using quill::testing::TTempFolder;
using ::testing::HasSubstr;

namespace {

struct TResult {
    int ExitCode = -1;
    std::string Output;
    std::string Errors;
};

using TArgs = std::vector<std::string>;

TResult RunProgram(const char* Program, const TArgs& Args, const QString& Scale = "1") {
    QProcess Process;
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
    Environment.insert("QT_QPA_PLATFORM", "offscreen");
    Environment.insert("QT_SCALE_FACTOR", Scale);
    Process.setProcessEnvironment(Environment);
    QStringList Texts;
    for (const std::string& Arg : Args) Texts << QString::fromStdString(Arg);
    Process.start(Program, Texts);
    if (!Process.waitForFinished(120000)) return {};
    const bool Ended = Process.exitStatus() == QProcess::NormalExit;
    return {Ended ? Process.exitCode() : -1, Process.readAllStandardOutput().toStdString(),
            Process.readAllStandardError().toStdString()};
}

class Programs : public ::testing::Test {
protected:
    // The program goes through, with a picture of that size that shows more than empty windows do.
    void ExpectPicture(const char* Program, TArgs Args, const QSize& Size, const QString& Scale = "1") {
        const std::string Name = Folder.File("picture.png");
        Args.insert(Args.end(), {"--screenshot", Name});
        EXPECT_EQ(RunProgram(Program, Args, Scale).ExitCode, 0) << Args[0];
        const QImage Picture(QString::fromStdString(Name));
        ASSERT_EQ(Picture.size(), Size) << Args[0];
        QSet<QRgb> Colors;
        for (int Y = 0; Y < Picture.height(); Y += 3) {
            for (int X = 0; X < Picture.width(); X += 3) Colors.insert(Picture.pixel(X, Y));
        }
        EXPECT_GT(Colors.size(), 60) << Args[0];
    }
    // A directory saved as an outline must come out of the outliner as it went in.
    void ExpectIdentity(const std::string& Root, const std::string& Levels) {
        const std::string Saved = Folder.File("explored.nodes");
        TResult Result =
            RunProgram(EXPLORER_PROGRAM, {"--root", Root, "--expand-levels", Levels, "--save-as", Saved});
        ASSERT_EQ(Result.ExitCode, 0) << Result.Errors;
        Result = RunProgram(OUTLINER_PROGRAM, {"--file", Saved, "--save-as", Folder.File("again.nodes")});
        ASSERT_EQ(Result.ExitCode, 0) << Result.Errors;
        EXPECT_GT(Folder.Content("explored.nodes").size(), 100U);
        EXPECT_TRUE(Folder.Content("explored.nodes") == Folder.Content("again.nodes")) << Root;
        EXPECT_EQ(Folder.Content("again.columns"), "Name,Size,Modified,Kind\n");
    }

    const TTempFolder Folder;
};

TEST_F(Programs, KeepAllBytesOfTheSamplesAndShowThem) {
    TArgs RoundTrip{"--roundtrip"};
    for (const auto& Entry : fs::directory_iterator(SAMPLE_FOLDER)) {
        if (Entry.path().extension() != ".nodes") continue;
        RoundTrip.push_back(Entry.path());
        ExpectPicture(OUTLINER_PROGRAM, {Entry.path(), "--size", "700x400", "--expand-all"}, {700, 400});
    }
    ASSERT_GE(RoundTrip.size(), 4U);
    const TResult Result = RunProgram(OUTLINER_PROGRAM, RoundTrip);
    EXPECT_EQ(Result.ExitCode, 0) << Result.Output << Result.Errors;
    EXPECT_EQ(std::count(Result.Output.begin(), Result.Output.end(), '\n'), std::ssize(RoundTrip) - 1);
    ExpectPicture(OUTLINER_PROGRAM, {RoundTrip[1], "--dark", "--rtl", "--size", "700x400"}, {1400, 800}, "2");
    ExpectPicture(EXPLORER_PROGRAM, {"--root", SAMPLE_FOLDER, "--expand-levels", "2", "--size", "600x500"},
                  {600, 500});
}

TEST_F(Programs, ShowEveryPageOfTheGallery) {
    for (const char* Page : {"label", "hint"}) {
        ExpectPicture(GALLERY_PROGRAM, {"--page", Page, "--size", "800x560"}, {800, 560});
        ExpectPicture(GALLERY_PROGRAM, {"--page", Page, "--size", "800x560", "--dark", "--rtl"}, {1600, 1120},
                      "2");
    }
}

TEST_F(Programs, SaveExpandedNodesWhenAsked) {
    Folder.Put("a.nodes", "SaveOptions:16\r\n0,A\r\n\t0,B\r\n\t\t0,C\r\n0,D\r\n");
    const TResult Result = RunProgram(OUTLINER_PROGRAM, {"--file", Folder.File("a.nodes"), "--expand-all",
                                                         "--save-as", Folder.File("b.nodes")});
    ASSERT_EQ(Result.ExitCode, 0) << Result.Errors;
    EXPECT_EQ(Folder.Content("b.nodes"), "SaveOptions:16\r\n1,A\r\n\t1,B\r\n\t\t0,C\r\n0,D\r\n");
}

TEST_F(Programs, ReportWhatTheyCannotDo) {
    Folder.Put("good.nodes", "SaveOptions:0\r\nA\r\n");
    Folder.Put("broken.nodes", "SaveOptions:1\r\n0,A\r\nblue,B\r\n");
    Folder.Put("plain.nodes", "SaveOptions:8\n\"needless quotes\"\n");
    const std::string Out = Folder.File("out");
    // The last: parts of what is said.
    const std::tuple<const char*, TArgs, std::vector<std::string>> Cases[] = {
        {OUTLINER_PROGRAM, {Folder.File("broken.nodes"), "--save-as", Out}, {"broken.nodes", "blue"}},
        {OUTLINER_PROGRAM, {Folder.File("missing.nodes"), "--screenshot", Out}, {"missing.nodes"}},
        {OUTLINER_PROGRAM, {Folder.File("good.nodes"), "--save-as", "/dev/full"}, {"/dev/full", "No space"}},
        {OUTLINER_PROGRAM, {"--size", "huge"}, {"huge"}},
        {GALLERY_PROGRAM, {"--page", "nowhere"}, {"nowhere", "label, hint"}},
        {OUTLINER_PROGRAM, {"--roundtrip", Folder.File("plain.nodes")}, {"options 8: differs from byte"}},
        {EXPLORER_PROGRAM, {"--root", "/no/such", "--screenshot", Out}, {"\"/no/such\": No such file"}},
    };
    for (const auto& [Program, Args, Parts] : Cases) {
        const TResult Result = RunProgram(Program, Args);
        EXPECT_EQ(Result.ExitCode, 1) << Args[0];
        for (const std::string& Part : Parts) EXPECT_THAT(Result.Output + Result.Errors, HasSubstr(Part));
    }
    EXPECT_FALSE(fs::exists(Out));
    EXPECT_EQ(RunProgram(OUTLINER_PROGRAM, {"--help"}).ExitCode, 0);
}

TEST_F(Programs, SaveDirectoriesThatTheOutlinerSavesAgain) {
    for (const char* Name :
         {"a, b/c.png", "a, b/d/\"quoted\".tar.gz", "  leading spaces", "trailing space ",
          "line\nbreak\tand tab", "not\xFFutf8", "SaveOptions:8", "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D.txt"}) {
        Folder.Put(std::string("root/") + Name, "x");
    }
    fs::create_symlink(Folder.File("root"), Folder.File("root/loop"));
    for (const char* Levels : {"1", "2", "9"}) ExpectIdentity(Folder.File("root"), Levels);
    EXPECT_THAT(Folder.Content("explored.nodes"), HasSubstr("\"a, b\""));
    if (fs::is_directory("/usr/share")) ExpectIdentity("/usr/share", "2");
}

} // namespace
