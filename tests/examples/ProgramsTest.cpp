// The example programs as a user starts them.
#include "tests/support/QtTest.h"

#include <gmock/gmock.h>

#include <QImage>
#include <QProcess>
#include <QSet>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;
using quill::testing::TTempFolder;
using ::testing::HasSubstr;

namespace {

struct TResult {
    int ExitCode = -1;
    std::string Output;
    std::string Errors;
};

TResult RunProgram(const char* Program, const QStringList& Args, const QString& Scale = "1") {
    QProcess Process;
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
    Environment.insert("QT_QPA_PLATFORM", "offscreen");
    Environment.insert("QT_SCALE_FACTOR", Scale);
    Process.setProcessEnvironment(Environment);
    Process.start(Program, Args);
    if (!Process.waitForFinished(120000)) return {};
    const bool Ended = Process.exitStatus() == QProcess::NormalExit;
    return {Ended ? Process.exitCode() : -1, Process.readAllStandardOutput().toStdString(),
            Process.readAllStandardError().toStdString()};
}

QString Q(const std::string& Text) { return QString::fromStdString(Text); }

std::string Content(const std::string& Name) {
    std::ifstream File(Name, std::ios::binary);
    std::ostringstream Text;
    Text << File.rdbuf();
    return Text.str();
}

void Put(const std::string& Name, const std::string& Text) {
    fs::create_directories(fs::path(Name).parent_path());
    std::ofstream(Name, std::ios::binary) << Text;
}

std::vector<std::string> Samples() {
    std::vector<std::string> Names;
    for (const auto& Entry : fs::directory_iterator(SAMPLE_FOLDER)) {
        if (Entry.path().extension() == ".nodes") Names.push_back(Entry.path());
    }
    std::sort(Names.begin(), Names.end());
    return Names;
}

TEST(Outliner, LoadsAndSavesTheSamplesWithAllOptions) {
    QStringList Args{"--roundtrip"};
    for (const std::string& Name : Samples()) Args << Q(Name);
    ASSERT_GE(Args.size(), 4);
    const TResult Result = RunProgram(OUTLINER_PROGRAM, Args);
    EXPECT_EQ(Result.ExitCode, 0) << Result.Output << Result.Errors;
    EXPECT_EQ(std::count(Result.Output.begin(), Result.Output.end(), '\n'), Args.size() - 1);
}

TEST(Outliner, NoticesARoundTripThatFails) {
    const TTempFolder Folder;
    Put(Folder.File("plain.nodes"), "SaveOptions:8\n\"needless quotes\"\n");
    const TResult Result = RunProgram(OUTLINER_PROGRAM, {"--roundtrip", Q(Folder.File("plain.nodes"))});
    EXPECT_NE(Result.ExitCode, 0);
    EXPECT_THAT(Result.Output, HasSubstr("options 8: differs from byte"));
}

TEST(Outliner, SavesExpandedNodesWhenAsked) {
    const TTempFolder Folder;
    const std::string Name = Folder.File("a.nodes");
    Put(Name, "SaveOptions:16\r\n0,A\r\n\t0,B\r\n\t\t0,C\r\n0,D\r\n");
    const std::string Saved = Folder.File("b.nodes");
    const TResult Result =
        RunProgram(OUTLINER_PROGRAM, {"--file", Q(Name), "--expand-all", "--save-as", Q(Saved)});
    ASSERT_EQ(Result.ExitCode, 0) << Result.Errors;
    EXPECT_EQ(Content(Saved), "SaveOptions:16\r\n1,A\r\n\t1,B\r\n\t\t0,C\r\n0,D\r\n");
}

TEST(Outliner, ReportsWhatItCannotOpenOrSave) {
    const TTempFolder Folder;
    const std::string Good = Folder.File("good.nodes");
    Put(Good, "SaveOptions:0\r\nA\r\n");
    const std::string Broken = Folder.File("broken.nodes");
    Put(Broken, "SaveOptions:1\r\n0,A\r\nblue,B\r\n");
    const std::string Out = Folder.File("out.nodes");

    TResult Result = RunProgram(OUTLINER_PROGRAM, {"--file", Q(Broken), "--save-as", Q(Out)});
    EXPECT_EQ(Result.ExitCode, 1);
    EXPECT_THAT(Result.Errors, HasSubstr(Broken));
    EXPECT_THAT(Result.Errors, HasSubstr("blue"));
    EXPECT_FALSE(fs::exists(Out));

    Result = RunProgram(OUTLINER_PROGRAM, {Q(Good), "--save-as", "/dev/full"});
    EXPECT_EQ(Result.ExitCode, 1);
    EXPECT_THAT(Result.Errors, HasSubstr("/dev/full"));
    Result = RunProgram(OUTLINER_PROGRAM,
                        {Q(Folder.File("missing.nodes")), "--screenshot", Q(Folder.File("x.png"))});
    EXPECT_EQ(Result.ExitCode, 1);
    EXPECT_THAT(Result.Errors, HasSubstr("missing.nodes"));
    EXPECT_EQ(RunProgram(OUTLINER_PROGRAM, {"--size", "huge"}).ExitCode, 1);
    EXPECT_EQ(RunProgram(OUTLINER_PROGRAM, {"--help"}).ExitCode, 0);
}

// A picture of that size that shows more than empty windows do.
void ExpectPicture(const std::string& Name, const QSize& Size) {
    const QImage Picture(Q(Name));
    ASSERT_EQ(Picture.size(), Size) << Name;
    QSet<QRgb> Colors;
    for (int Y = 0; Y < Picture.height(); Y += 3) {
        for (int X = 0; X < Picture.width(); X += 3) Colors.insert(Picture.pixel(X, Y));
    }
    EXPECT_GT(Colors.size(), 60) << Name;
}

TEST(Outliner, TakesPicturesOfTheSamples) {
    const TTempFolder Folder;
    const std::string Name = Folder.File("picture.png");
    const QStringList Common{"--screenshot", Q(Name), "--size", "700x400", "--expand-all"};
    for (const std::string& Sample : Samples()) {
        ASSERT_EQ(RunProgram(OUTLINER_PROGRAM, QStringList{Q(Sample)} + Common).ExitCode, 0);
        ExpectPicture(Name, {700, 400});
    }
    const QString Sample = Q(Samples().front());
    ASSERT_EQ(RunProgram(OUTLINER_PROGRAM, QStringList{Sample, "--dark", "--rtl"} + Common, "2").ExitCode, 0);
    ExpectPicture(Name, {1400, 800});
}

class Explorer : public ::testing::Test {
protected:
    // A directory saved as an outline must come out of the outliner as it went in.
    void ExpectIdentity(const std::string& Root, const QString& Levels) {
        const std::string Saved = Folder.File("explored.nodes");
        const std::string Again = Folder.File("again.nodes");
        TResult Result = RunProgram(EXPLORER_PROGRAM,
                                    {"--root", Q(Root), "--expand-levels", Levels, "--save-as", Q(Saved)});
        ASSERT_EQ(Result.ExitCode, 0) << Result.Errors;
        Result = RunProgram(OUTLINER_PROGRAM, {"--file", Q(Saved), "--save-as", Q(Again)});
        ASSERT_EQ(Result.ExitCode, 0) << Result.Errors;
        EXPECT_GT(Content(Saved).size(), 100U);
        EXPECT_TRUE(Content(Saved) == Content(Again)) << "saved again, " << Root << " is another file";
        EXPECT_EQ(Content(Folder.File("again.columns")), "Name,Size,Modified,Kind\n");
    }

    TTempFolder Folder;
};

TEST_F(Explorer, SavesWhatTheOutlinerSavesAgain) {
    const std::string Root = Folder.File("root");
    Put(Root + "/a, b/c.png", "x");
    Put(Root + "/a, b/d/\"quoted\".tar.gz", std::string(5000, 'x'));
    Put(Root + "/  leading spaces", "x");
    Put(Root + "/trailing space ", "x");
    Put(Root + "/line\nbreak\tand tab", "x");
    Put(Root + "/not\xFFutf8", "x");
    Put(Root + "/SaveOptions:8", "x");
    Put(Root + "/\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D.txt", "x");
    fs::create_symlink(Root, Root + "/loop");
    for (const char* Levels : {"1", "2", "9"}) ExpectIdentity(Root, Levels);
    EXPECT_THAT(Content(Folder.File("explored.nodes")), HasSubstr("\"a, b\""));
}

TEST_F(Explorer, SavesARealDirectoryThatTheOutlinerSavesAgain) {
    if (!fs::is_directory("/usr/share")) GTEST_SKIP() << "there is no /usr/share here";
    ExpectIdentity("/usr/share", "2");
}

TEST_F(Explorer, TakesAPicture) {
    const std::string Name = Folder.File("picture.png");
    const QStringList Args{"--root",       SAMPLE_FOLDER, "--expand-levels", "2",
                           "--screenshot", Q(Name),       "--size",          "600x500"};
    ASSERT_EQ(RunProgram(EXPLORER_PROGRAM, Args).ExitCode, 0);
    ExpectPicture(Name, {600, 500});
}

TEST_F(Explorer, ReportsWhatItCannotOpen) {
    const TResult Result =
        RunProgram(EXPLORER_PROGRAM, {"--root", "/no/such", "--screenshot", Q(Folder.File("x.png"))});
    EXPECT_EQ(Result.ExitCode, 1);
    EXPECT_THAT(Result.Errors, HasSubstr("\"/no/such\": No such file"));
    EXPECT_FALSE(fs::exists(Folder.File("x.png")));
}

} // namespace
