#include "host/base/Files.h"

#include "host/base/Errors.h"
#include "host/base/Streams.h"
#include "host/base/Texts.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quill {

namespace {

// The file that a chain of symbolic links leads to; the name itself when there is none yet.
std::string ResolveLinks(const std::string& FileName) {
    char Resolved[PATH_MAX];
    return ::realpath(FileName.c_str(), Resolved) ? std::string(Resolved) : FileName;
}

// Gives the new file what the old one had; without one, what the user's mask leaves.
void CopyPermissions(int Handle, const struct stat* Old) {
    if (Old) {
        // Only root may give files away; a new owner without the right to do so is not an error.
        if (::fchown(Handle, Old->st_uid, Old->st_gid) == -1) errno = 0;
        if (::fchmod(Handle, Old->st_mode & 07777) == -1) errno = 0;
        return;
    }
    const mode_t Mask = ::umask(0);
    ::umask(Mask);
    if (::fchmod(Handle, 0666 & ~Mask) == -1) errno = 0;
}

void WriteInPlace(const std::string& FileName, const std::function<void(TStream&)>& Write) {
    TFileStream Stream(FileName, fmCreate);
    Write(Stream);
}

} // namespace

void ReplaceFile(const std::string& FileName, const std::function<void(TStream&)>& Write) {
    const std::string Target = ResolveLinks(FileName);
    struct stat Old {};
    const bool Exists = ::stat(Target.c_str(), &Old) == 0;
    if (FileName.find('\0') != std::string::npos || (Exists && (!S_ISREG(Old.st_mode) || Old.st_nlink > 1)) ||
        (Exists && ::access(Target.c_str(), W_OK) != 0)) {
        WriteInPlace(FileName, Write);
        return;
    }
    // A short name of its own: a long file name has no room for more letters.
    std::string Temporary = Target.substr(0, Target.rfind('/') + 1) + ".quill-XXXXXX";
    const int Handle = ::mkostemp(Temporary.data(), O_CLOEXEC);
    // Without room beside it the old content would be gone before the new one is safe.
    if (Handle == -1)
        throw EFCreateError(
            FormatTextInFull(SFCreateError, {FileName, std::generic_category().message(errno)}));
    try {
        TFileStream Stream(Handle, Temporary);
        CopyPermissions(Handle, Exists ? &Old : nullptr);
        Write(Stream);
        Stream.Flush();
        if (::rename(Temporary.c_str(), Target.c_str()) == -1)
            throw EFCreateError(
                FormatTextInFull(SFCreateError, {FileName, std::generic_category().message(errno)}));
    } catch (...) {
        ::unlink(Temporary.c_str());
        throw;
    }
}

} // namespace quill
