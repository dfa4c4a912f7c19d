#include "Directory.h"

#include "host/base/Collation.h"
#include "host/base/Errors.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <numeric>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quill::examples {

namespace {

// Looking into a directory costs a few system calls. In a directory with more directories than this, the rest are
// taken to have entries.
constexpr int MostLookedInto = 4000;

struct TDirCloser {
    void operator()(DIR* Dir) const { ::closedir(Dir); }
};
using TDir = std::unique_ptr<DIR, TDirCloser>;

std::string Reason(int Error) { return std::generic_category().message(Error); }

bool IsSelfOrParent(std::string_view Name) { return Name == "." || Name == ".."; }

TDir OpenAt(int Parent, const char* Name) {
    const int Handle = ::openat(Parent, Name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK);
    if (Handle == -1) return nullptr;
    TDir Dir(::fdopendir(Handle));
    if (!Dir) ::close(Handle);
    return Dir;
}

void LookInto(int Parent, const char* Name, TDirectoryEntry& Entry) {
    const TDir Dir = OpenAt(Parent, Name);
    if (!Dir) {
        Entry.Problem = Reason(errno);
        return;
    }
    while (const dirent* Item = ::readdir(Dir.get())) {
        Entry.HasEntries = !IsSelfOrParent(Item->d_name);
        if (Entry.HasEntries) return;
    }
}

std::string LinkTargetOf(int Parent, const char* Name) {
    char Target[PATH_MAX];
    const ssize_t Size = ::readlinkat(Parent, Name, Target, sizeof Target);
    return Size > 0 ? std::string(Target, static_cast<std::size_t>(Size)) : std::string();
}

void TakeStatus(const struct stat& Status, TDirectoryEntry& Entry) {
    Entry.Modified = Status.st_mtime;
    if (S_ISDIR(Status.st_mode)) {
        Entry.Kind = ekDirectory;
    } else if (S_ISLNK(Status.st_mode)) {
        Entry.Kind = ekLink;
    } else if (S_ISREG(Status.st_mode)) {
        Entry.Kind = ekFile;
        Entry.Size = Status.st_size;
    } else {
        Entry.Kind = ekSpecial;
    }
}

void Sort(std::vector<TDirectoryEntry>& Entries) {
    std::vector<std::string> Keys(Entries.size());
    std::transform(Entries.begin(), Entries.end(), Keys.begin(),
                   [](const TDirectoryEntry& Entry) { return NaturalCollationKey(Entry.Name); });
    std::vector<std::size_t> Order(Entries.size());
    std::iota(Order.begin(), Order.end(), std::size_t{0});
    std::sort(Order.begin(), Order.end(), [&](std::size_t A, std::size_t B) {
        const bool FirstIsDirectory = Entries[A].Kind == ekDirectory;
        if (FirstIsDirectory != (Entries[B].Kind == ekDirectory)) return FirstIsDirectory;
        if (const int Result = Keys[A].compare(Keys[B])) return Result < 0;
        return Entries[A].Name < Entries[B].Name;
    });
    std::vector<TDirectoryEntry> Sorted;
    Sorted.reserve(Entries.size());
    for (const std::size_t Index : Order) Sorted.push_back(std::move(Entries[Index]));
    Entries = std::move(Sorted);
}

} // namespace

std::vector<TDirectoryEntry> ReadDirectory(const std::string& Path) {
    const TDir Dir = OpenAt(AT_FDCWD, Path.c_str());
    if (!Dir) throw EDirectoryError(Reason(errno));
    const int Handle = ::dirfd(Dir.get());
    std::vector<TDirectoryEntry> Entries;
    int Directories = 0;
    while (const dirent* Item = ::readdir(Dir.get())) {
        struct stat Status {};
        if (IsSelfOrParent(Item->d_name)) continue;
        if (::fstatat(Handle, Item->d_name, &Status, AT_SYMLINK_NOFOLLOW) != 0) continue;
        TDirectoryEntry& Entry = Entries.emplace_back();
        Entry.Name = Item->d_name;
        TakeStatus(Status, Entry);
        if (Entry.Kind == ekLink) Entry.LinkTarget = LinkTargetOf(Handle, Item->d_name);
        if (Entry.Kind != ekDirectory) continue;
        if (++Directories <= MostLookedInto) {
            LookInto(Handle, Item->d_name, Entry);
        } else {
            Entry.HasEntries = true;
        }
    }
    Sort(Entries);
    return Entries;
}

TDirectoryEntry ReadEntry(const std::string& Path) {
    TDirectoryEntry Entry;
    Entry.Name = Path;
    struct stat Status {};
    if (::stat(Path.c_str(), &Status) != 0) throw EDirectoryError(Reason(errno));
    TakeStatus(Status, Entry);
    if (Entry.Kind == ekDirectory) LookInto(AT_FDCWD, Path.c_str(), Entry);
    return Entry;
}

std::string JoinPath(const std::string& Path, const std::string& Name) {
    return Path.empty() || Path.back() == '/' ? Path + Name : Path + '/' + Name;
}

} // namespace quill::examples
