// File streams over POSIX descriptors.
#include "host/base/Errors.h"
#include "host/base/Numbers.h"
#include "host/base/Streams.h"
#include "host/base/Texts.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quill {

namespace {

constexpr mode_t NewFileMode = 0666; // the user's mask narrows it
constexpr std::uint16_t AccessMask = 0x0003;

// Repeats a system call that a signal interrupted.
template <class TCall>
auto Retry(TCall Call) {
    for (;;) {
        const auto Result = Call();
        if (Result != -1 || errno != EINTR) return Result;
    }
}

std::string Reason(int Error) { return std::generic_category().message(Error); }

int OpenFlags(std::uint16_t Mode) {
    if (Mode == fmCreate) return O_RDWR | O_CREAT | O_TRUNC;
    switch (Mode & AccessMask) {
    case fmOpenWrite:
        return O_WRONLY;
    case fmOpenReadWrite:
        return O_RDWR;
    default:
        return O_RDONLY;
    }
}

[[noreturn]] void OpenError(const std::string& FileName, std::uint16_t Mode, int Error) {
    if (Mode == fmCreate) throw EFCreateError(FormatTextInFull(SFCreateError, {FileName, Reason(Error)}));
    throw EFOpenError(FormatTextInFull(SFOpenError, {FileName, Reason(Error)}));
}

} // namespace

TFileStream::TFileStream(const std::string& FileName, std::uint16_t Mode) : FFileName(FileName) {
    // A NUL would silently cut the name and open another file.
    if (FileName.find('\0') != std::string::npos) OpenError(FileName, Mode, EINVAL);
    FHandle = Retry([&] { return ::open(FileName.c_str(), OpenFlags(Mode) | O_CLOEXEC, NewFileMode); });
    if (FHandle == -1) OpenError(FileName, Mode, errno);
    struct stat Status {};
    if (::fstat(FHandle, &Status) == 0 && S_ISDIR(Status.st_mode)) {
        ::close(FHandle);
        OpenError(FileName, Mode, EISDIR);
    }
}

TFileStream::~TFileStream() { ::close(FHandle); }

std::int64_t TFileStream::Read(void* Buffer, std::int64_t Count) {
    std::int64_t Done = 0;
    while (Done < Count) {
        const ssize_t Part = Retry([&] {
            return ::read(FHandle, static_cast<char*>(Buffer) + Done, static_cast<std::size_t>(Count - Done));
        });
        if (Part == -1) throw EReadError(FormatText(SReadError, {Reason(errno)}));
        if (Part == 0) break;
        Done += Part;
    }
    return Done;
}

std::int64_t TFileStream::Write(const void* Buffer, std::int64_t Count) {
    std::int64_t Done = 0;
    while (Done < Count) {
        const ssize_t Part = Retry([&] {
            return ::write(FHandle, static_cast<const char*>(Buffer) + Done,
                           static_cast<std::size_t>(Count - Done));
        });
        if (Part == -1) throw EWriteError(FormatText(SWriteError, {Reason(errno)}));
        if (Part == 0) break;
        Done += Part;
    }
    return Done;
}

std::int64_t TFileStream::Seek(std::int64_t Offset, TSeekOrigin Origin) {
    const int Whence = Origin == soBeginning ? SEEK_SET : Origin == soCurrent ? SEEK_CUR : SEEK_END;
    const off_t Position = ::lseek(FHandle, Offset, Whence);
    if (Position == -1) throw EStreamError(FormatText(SSeekError, {Reason(errno)}));
    return Position;
}

void TFileStream::SetSize(std::int64_t NewSize) {
    if (Retry([&] { return ::ftruncate(FHandle, NewSize); }) == -1)
        throw EStreamError(FormatText(SSizeError, {Reason(errno)}));
    if (GetPosition() > NewSize) SetPosition(NewSize);
}

void TFileStream::Flush() {
    // Pipes and some devices have no disk to flush to (EINVAL).
    if (Retry([&] { return ::fsync(FHandle); }) == -1 && errno != EINVAL)
        throw EWriteError(FormatText(SWriteError, {Reason(errno)}));
}

} // namespace quill
