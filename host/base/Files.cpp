#include "host/base/Files.h"

#include "host/base/Errors.h"
#include "host/base/Streams.h"
#include "host/base/Texts.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <memory>
#include <random>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace quill {

namespace {

using TWriter = std::function<void(TStream&)>;

// The folder part of a name, with its slash.
std::string FolderOf(const std::string& FileName) { return FileName.substr(0, FileName.rfind('/') + 1); }

// What a chain of symbolic links leads to, also when that does not exist yet.
std::string ResolveLinks(std::string FileName) {
    constexpr int LongestChain = 40; // as in the system's own look-up
    char Target[PATH_MAX];
    for (int Link = 0; Link < LongestChain; ++Link) {
        const ssize_t Length = ::readlink(FileName.c_str(), Target, sizeof Target);
        if (Length <= 0) break;
        const std::string Name(Target, static_cast<std::size_t>(Length));
        FileName = Name.front() == '/' ? Name : FolderOf(FileName) + Name;
    }
    return FileName;
}

class TReplacement {
public:
    explicit TReplacement(const std::string& FileName) : FFileName(FileName) {}
    ~TReplacement() {
        if (!FTemporary.empty()) ::unlink(FTemporary.c_str());
    }
    TReplacement(const TReplacement&) = delete;
    TReplacement& operator=(const TReplacement&) = delete;

    void Save(const TWriter& Write) {
        if (FFileName.find('\0') != std::string::npos) Refuse(EINVAL);
        FExists = ::stat(FFileName.c_str(), &FOld) == 0;
        if (!FExists && errno != ENOENT) Refuse(errno);
        if (FExists && ::faccessat(AT_FDCWD, FFileName.c_str(), W_OK, AT_EACCESS) != 0) Refuse(errno);
        if (FExists && !S_ISREG(FOld.st_mode)) {
            TFileStream Device(FFileName, fmCreate);
            Write(Device);
            return;
        }
        FTarget = ResolveLinks(FFileName);
        const auto Stream = MakeTemporary();
        Write(*Stream);
        Stream->Flush();
        if (FExists && FOld.st_nlink > 1) {
            Overwrite(*Stream);
        } else {
            if (::rename(FTemporary.c_str(), FTarget.c_str()) == -1) Refuse(errno);
            FTemporary.clear();
            FlushFolder();
        }
    }

private:
    [[noreturn]] void Refuse(int Error) const {
        throw EFCreateError(
            FormatTextInFull(SFCreateError, {FFileName, std::generic_category().message(Error)}));
    }

    // An empty file in the folder of the old one, under a short name: a long file name has no room for more letters.
    std::unique_ptr<TFileStream> MakeTemporary() {
        std::random_device Random;
        for (;;) {
            const std::string Name = FolderOf(FTarget) + ".quill-" + std::to_string(Random());
            // Nobody else may look into the file before it has the permissions of the old one.
            const mode_t Mode = FExists ? 0600 : 0666;
            const int Handle = ::open(Name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, Mode);
            if (Handle == -1 && errno == EEXIST) continue;
            if (Handle == -1) Refuse(errno);
            FTemporary = Name;
            auto Stream = std::make_unique<TFileStream>(Handle, Name);
            if (FExists) KeepAccess(Handle);
            return Stream;
        }
    }

    void KeepAccess(int Handle) const {
        mode_t Mode = FOld.st_mode & 07777;
        // Only root may give files away. Where the group cannot be kept, the new one gets no more than others.
        if (::fchown(Handle, FOld.st_uid, FOld.st_gid) != 0 &&
            ::fchown(Handle, static_cast<uid_t>(-1), FOld.st_gid) != 0) {
            Mode = (Mode & ~mode_t{S_IRWXG}) | ((Mode & S_IRWXO) << 3);
        }
        if (::fchmod(Handle, Mode) != 0) Refuse(errno);
        constexpr const char* AccessList = "system.posix_acl_access";
        const ssize_t Size = ::getxattr(FTarget.c_str(), AccessList, nullptr, 0);
        if (Size <= 0) return;
        std::vector<char> List(static_cast<std::size_t>(Size));
        if (::getxattr(FTarget.c_str(), AccessList, List.data(), List.size()) != Size ||
            ::fsetxattr(Handle, AccessList, List.data(), List.size(), 0) != 0) {
            Refuse(errno);
        }
    }

    // There must be room for the new content before the first byte of the old one is touched.
    void Overwrite(TFileStream& Content) {
        TFileStream File(FTarget, fmOpenReadWrite);
        const off_t Size = Content.GetSize();
        if (Size > FOld.st_size) {
            if (const int Error = ::posix_fallocate(File.GetHandle(), 0, Size)) {
                File.SetSize(FOld.st_size);
                throw EWriteError(std::generic_category().message(Error));
            }
        }
        try {
            File.SetSize(Size);
            if (Size > 0) File.CopyFrom(Content, 0);
            File.Flush();
        } catch (const EStreamError& Error) {
            const std::string Copy = std::move(FTemporary);
            FTemporary.clear();
            throw EWriteError(FormatTextInFull(SContentKept, {Error.GetMessage(), Copy}));
        }
    }

    // Makes the new name survive a crash. The content is safe either way, so a folder that cannot be flushed is no
    // error.
    void FlushFolder() const {
        const std::string Folder = FolderOf(FTarget);
        const int Handle = ::open(Folder.empty() ? "." : Folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (Handle == -1) return;
        ::fsync(Handle);
        ::close(Handle);
    }

    const std::string& FFileName;
    std::string FTarget;
    std::string FTemporary; // empty when there is no file to remove
    struct stat FOld {};
    bool FExists = false;
};

} // namespace

void ReplaceFile(const std::string& FileName, const TWriter& Write) {
    try {
        TReplacement(FileName).Save(Write);
    } catch (const EWriteError& Error) {
        throw EWriteError(FormatTextInFull(SSaveError, {FileName, Error.GetMessage()}));
    }
}

} // namespace quill
