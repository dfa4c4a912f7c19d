#include "host/base/Streams.h"
#include "host/base/Errors.h"
#include "host/base/Strings.h"

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace quill {
namespace {

class Files : public ::testing::Test {
protected:
    std::string Path(const std::string& Name) const { return Folder.File(Name); }

    const testing::TTempFolder Folder;
};

TEST(MemoryStream, ReadsWritesAndSeeks) {
    TMemoryStream Stream("hello");
    char Buffer[8] = {};
    EXPECT_EQ(Stream.Read(Buffer, 8), 5);
    EXPECT_EQ(Stream.Seek(-4, soEnd), 1);
    EXPECT_EQ(Stream.Write("EY", 2), 2);
    EXPECT_EQ(Stream.Seek(4, soCurrent), 7);
    EXPECT_EQ(Stream.Read(Buffer, 1), 0);
    Stream.WriteBuffer("!", 1);
    EXPECT_EQ(Stream.GetMemory(), std::string("hEYlo\0\0!", 8));
    EXPECT_THROW(Stream.Seek(-9, soEnd), EStreamError);
    EXPECT_EQ(Stream.GetPosition(), 8);
    Stream.SetSize(2);
    EXPECT_EQ(Stream.GetPosition(), 2);
    EXPECT_EQ(Stream.Read(Buffer, -1) + Stream.Write(Buffer, -1), 0);
    Stream.SetPosition(0);
    EXPECT_THROW(Stream.ReadBuffer(Buffer, 3), EReadError);
}

TEST(MemoryStream, CopiesFromOtherStreams) {
    TMemoryStream Source(std::string(200'000, 'x') + "end");
    TMemoryStream Target("start ");
    Source.SetPosition(7);
    Target.Seek(0, soEnd);
    EXPECT_EQ(Target.CopyFrom(Source, 0), 200'003) << "0 means all of it";
    Source.SetPosition(200'000);
    EXPECT_EQ(Target.CopyFrom(Source, 2), 2);
    EXPECT_TRUE(Target.GetMemory().ends_with("xendxen") || Target.GetMemory().ends_with("xenden"));
    EXPECT_THROW(Target.CopyFrom(Source, 2), EReadError);
    EXPECT_EQ(Target.CopyFrom(Target, 0), 0);
}

TEST_F(Files, CreateTruncatesAndReadsBack) {
    {
        TFileStream Stream(Path("a"), fmCreate);
        Stream.WriteBuffer("0123456789", 10);
        Stream.SetPosition(5);
        EXPECT_EQ(Stream.ReadRest(), "56789");
        Stream.SetSize(3);
        EXPECT_EQ(Stream.GetPosition(), 3);
    }
    TFileStream Reader(Path("a"), fmOpenRead);
    EXPECT_EQ(Reader.ReadRest(), "012");
    EXPECT_THROW(Reader.Write("x", 1), EWriteError);
    EXPECT_EQ(TFileStream(Path("a"), fmCreate).GetSize(), 0);
}

TEST_F(Files, ErrorsNameTheFileAndTheReason) {
    TFileStream(Path("a"), fmCreate);
    const std::string LongName = Path(std::string(200, 'n'));
    const std::string Cut = Path("a") + std::string("\0b", 2);
    const std::tuple<std::string, std::uint16_t, std::string> Cases[] = {
        {LongName, fmOpenRead, "Cannot open file \"" + LongName + "\": No such file or directory"},
        {Path("no/x"), fmCreate, "Cannot create file \"" + Path("no/x") + "\": No such file or directory"},
        {Path(""), fmOpenRead, "Cannot open file \"" + Path("") + "\": Is a directory"},
        {Path(""), fmCreate, "Cannot create file \"" + Path("") + "\": Is a directory"},
        {Cut, fmCreate, "Cannot create file \"" + Path("a") + "\xEF\xBF\xBD" + "b\": Invalid argument"},
    };
    for (const auto& [Name, Mode, Message] : Cases) {
        try {
            TFileStream(Name, Mode);
            ADD_FAILURE() << Message;
        } catch (const EStreamError& Error) {
            EXPECT_EQ(Error.GetMessage(), Message);
            EXPECT_EQ(dynamic_cast<const EFCreateError*>(&Error) != nullptr, Mode == fmCreate);
        }
    }
}

TEST_F(Files, PipesAndFilesWithoutASizeAreReadToTheEnd) {
    EXPECT_FALSE(TFileStream("/proc/self/status", fmOpenRead).ReadRest().empty());
    int Ends[2];
    ASSERT_EQ(pipe(Ends), 0);
    ASSERT_EQ(write(Ends[1], "piped", 5), 5);
    close(Ends[1]);
    TFileStream Pipe("/dev/fd/" + std::to_string(Ends[0]), fmOpenRead);
    close(Ends[0]);
    EXPECT_EQ(Pipe.ReadRest(), "piped");
    EXPECT_THROW(Pipe.GetSize(), EStreamError);
}

TEST_F(Files, PositionsBeyondFourGigabytes) {
    constexpr std::int64_t Far = 5'000'000'000;
    TFileStream Stream(Path("sparse"), fmCreate);
    Stream.SetPosition(Far);
    Stream.WriteBuffer("end", 3);
    EXPECT_EQ(Stream.GetSize(), Far + 3);
    Stream.SetPosition(Far);
    EXPECT_EQ(Stream.ReadRest(), "end");
}

TEST_F(Files, HandlesAreNotInheritedByChildProcesses) {
    const TFileStream Stream(Path("a"), fmCreate);
    EXPECT_NE(fcntl(Stream.GetHandle(), F_GETFD) & FD_CLOEXEC, 0);
}

} // namespace
} // namespace quill
