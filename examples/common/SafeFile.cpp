#include "SafeFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace quill::examples {

namespace {

class TSaver {
public:
    explicit TSaver(const std::string& FileName)
        : FFileName(FileName), FName(QString::fromStdString(FileName)) {}

    void Save(std::string_view Content) {
        if (FName.toStdString() != FFileName || FFileName.find('\0') != std::string::npos) {
            Fail("its name is no valid text");
        }
        FExists = ::stat(FFileName.c_str(), &FOld) == 0;
        if (!FExists && errno == ELOOP) Fail(errno);
        if (FExists && S_ISDIR(FOld.st_mode)) Fail("it is a folder");
        // A device or a pipe must not be replaced by a file.
        if (FExists && !S_ISREG(FOld.st_mode)) Fail("it is not an ordinary file");
        if (FExists && ::faccessat(AT_FDCWD, FFileName.c_str(), W_OK, AT_EACCESS) != 0) Fail(errno);
        if (FExists && FOld.st_nlink > 1) {
            SaveInPlace(Content);
        } else {
            Replace(Content);
        }
    }

private:
    [[noreturn]] void Fail(const QString& Reason) const {
        throw ESaveError("Cannot save \"" + FFileName + "\": " + Reason.toStdString());
    }
    [[noreturn]] void Fail(const char* Reason) const { Fail(QString::fromUtf8(Reason)); }
    [[noreturn]] void Fail(int Error) const { Fail(qt_error_string(Error)); }

    void Write(QFileDevice& File, std::string_view Content) const {
        // A disk that runs full takes what has room and tells the reason with the next write.
        while (!Content.empty()) {
            const qint64 Taken = File.write(Content.data(), static_cast<qint64>(Content.size()));
            if (Taken <= 0) Fail(File.errorString());
            Content.remove_prefix(static_cast<std::size_t>(Taken));
        }
        if (!File.flush()) Fail(File.errorString());
        // Some file systems notice a full disk only here.
        if (::fsync(File.handle()) != 0) Fail(errno);
    }

    void Replace(std::string_view Content) const {
        QSaveFile File(FName);
        if (!File.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) Fail(File.errorString());
        if (FExists) KeepAccess(File.handle());
        Write(File, Content);
        if (!File.commit()) Fail(File.errorString());
        FlushFolder();
    }

    // Replacing would leave the other names with the old content. The new content is on the disk in a file of its
    // own, and there is room for it, before the first byte of the old one is touched.
    void SaveInPlace(std::string_view Content) const {
        QTemporaryFile Copy(QFileInfo(FName).canonicalFilePath() + ".XXXXXX");
        if (!Copy.open()) Fail(Copy.errorString());
        Write(Copy, Content);
        QFile File(FName);
        if (!File.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered))
            Fail(File.errorString());
        const auto Size = static_cast<off_t>(Content.size());
        if (Size > FOld.st_size) {
            if (const int Error = ::posix_fallocate(File.handle(), 0, Size)) {
                File.resize(FOld.st_size);
                Fail(Error);
            }
        }
        try {
            if (Size < FOld.st_size && !File.resize(Size)) Fail(File.errorString());
            Write(File, Content);
        } catch (const ESaveError& Error) {
            Copy.setAutoRemove(false);
            throw ESaveError(Error.GetMessage() + ". What was to be saved is in \"" +
                             Copy.fileName().toStdString() + "\"");
        }
    }

    // Owner, group, permissions and access control list of the old file.
    void KeepAccess(int Handle) const {
        mode_t Mode = FOld.st_mode & 07777;
        // Only root may give files away. Where the group cannot be kept, the new one gets no more than others.
        if (::fchown(Handle, FOld.st_uid, FOld.st_gid) != 0 &&
            ::fchown(Handle, static_cast<uid_t>(-1), FOld.st_gid) != 0) {
            Mode = (Mode & ~mode_t{S_IRWXG}) | ((Mode & S_IRWXO) << 3);
        }
        if (::fchmod(Handle, Mode) != 0) Fail(errno);
        constexpr const char* AccessList = "system.posix_acl_access";
        const ssize_t Size = ::getxattr(FFileName.c_str(), AccessList, nullptr, 0);
        if (Size <= 0) return;
        std::vector<char> List(static_cast<std::size_t>(Size));
        if (::getxattr(FFileName.c_str(), AccessList, List.data(), List.size()) != Size ||
            ::fsetxattr(Handle, AccessList, List.data(), List.size(), 0) != 0) {
            Fail(errno);
        }
    }

    // Makes the new name survive a crash. The content is safe either way, so a folder that cannot be flushed is
    // no error.
    void FlushFolder() const {
        const QByteArray Folder = QFile::encodeName(QFileInfo(QFileInfo(FName).canonicalFilePath()).path());
        const int Handle = ::open(Folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (Handle == -1) return;
        ::fsync(Handle);
        ::close(Handle);
    }

    std::string FFileName;
    QString FName;
    struct stat FOld {};
    bool FExists = false;
};

} // namespace

void WriteFileSafely(const std::string& FileName, std::string_view Content) {
    TSaver(FileName).Save(Content);
}

} // namespace quill::examples
