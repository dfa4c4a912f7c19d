#include "FileCopy.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace quill::examples {

namespace {

// The trailing slash that a path may have says nothing.
fs::path Plain(const std::string& Path) {
    fs::path Result = fs::path(Path).lexically_normal();
    return Result.has_filename() || !Result.has_parent_path() ? Result : Result.parent_path();
}

bool Exists(const fs::path& Path) {
    std::error_code Ignored;
    return fs::exists(fs::symlink_status(Path, Ignored));
}

std::string Reason(const std::error_code& Error) { return Error.message(); }
std::string Reason(int Error) { return std::generic_category().message(Error); }

// A folder beside the target in which the copy is made; it goes with what is left in it.
class TWorkshop {
public:
    explicit TWorkshop(const fs::path& Folder) : FName((Folder / ".copying-XXXXXX").string()) {
        FMade = ::mkdtemp(FName.data()) != nullptr;
        if (!FMade) FProblem = Reason(errno);
    }
    ~TWorkshop() {
        std::error_code Ignored;
        if (FMade) fs::remove_all(FName, Ignored);
    }
    TWorkshop(const TWorkshop&) = delete;
    TWorkshop& operator=(const TWorkshop&) = delete;
    const std::string& GetProblem() const { return FProblem; }
    fs::path GetPlace() const { return fs::path(FName) / "copy"; }

private:
    std::string FName;
    std::string FProblem;
    bool FMade = false;
};

std::string CopyOne(const fs::path& From, const fs::path& To) {
    std::error_code Error;
    const fs::file_status Status = fs::symlink_status(From, Error);
    if (Error) return Reason(Error);
    switch (Status.type()) {
    case fs::file_type::regular:
        fs::copy_file(From, To, Error);
        break;
    case fs::file_type::symlink:
        fs::copy_symlink(From, To, Error);
        break;
    case fs::file_type::directory:
        // Its rights come last: what is put into it needs that it can be written to.
        fs::create_directory(To, Error);
        break;
    default:
        return "it is a device, pipe or socket";
    }
    return Error ? Reason(Error) : std::string();
}

std::string CopyAll(const fs::path& From, const fs::path& To, const std::atomic<bool>& Stop) {
    if (std::string Problem = CopyOne(From, To); !Problem.empty()) return Problem;
    std::error_code Error;
    if (!fs::is_directory(fs::symlink_status(From, Error))) return {};
    std::vector<std::pair<fs::path, fs::perms>> Folders;
    fs::recursive_directory_iterator Entry(From, Error);
    for (; !Error && Entry != fs::recursive_directory_iterator(); Entry.increment(Error)) {
        if (Stop) return "stopped";
        const fs::path Target = To / Entry->path().lexically_relative(From);
        if (std::string Problem = CopyOne(Entry->path(), Target); !Problem.empty())
            return "\"" + Entry->path().string() + "\": " + Problem;
        std::error_code Ignored;
        if (const fs::file_status Status = Entry->symlink_status(Ignored); fs::is_directory(Status))
            Folders.emplace_back(Target, Status.permissions());
    }
    if (Error) return Reason(Error);
    for (auto Folder = Folders.rbegin(); Folder != Folders.rend(); ++Folder)
        fs::permissions(Folder->first, Folder->second, Error);
    return {};
}

// The copy takes the name of the target.
std::string PutInPlace(const fs::path& Copy, const TCopyTask& Task) {
    if (Task.Replaces) return std::rename(Copy.c_str(), Task.To.c_str()) == 0 ? std::string() : Reason(errno);
    if (::renameat2(AT_FDCWD, Copy.c_str(), AT_FDCWD, Task.To.c_str(), RENAME_NOREPLACE) == 0) return {};
    // Some file systems cannot do it in one step.
    if (errno != EINVAL && errno != ENOSYS) return Reason(errno);
    if (Exists(Task.To)) return Reason(EEXIST);
    return std::rename(Copy.c_str(), Task.To.c_str()) == 0 ? std::string() : Reason(errno);
}

} // namespace

bool IsInside(const std::string& Path, const std::string& Folder) {
    std::error_code Error;
    const fs::path Inner = fs::weakly_canonical(Path, Error);
    if (Error) return false;
    const fs::path Outer = fs::weakly_canonical(Plain(Folder), Error);
    if (Error) return false;
    fs::path Up = Inner;
    while (Up != Outer && Up != Up.parent_path()) Up = Up.parent_path();
    return Up == Outer;
}

std::string FileNameOf(const std::string& Path) { return Plain(Path).filename().string(); }

std::vector<TCopyTask> PlanCopy(const std::vector<std::string>& Paths, const std::string& Folder) {
    std::vector<TCopyTask> Tasks;
    for (const std::string& Path : Paths) {
        const fs::path From = Plain(Path);
        const fs::path To = fs::path(Folder) / From.filename();
        std::error_code Ignored;
        if (From.filename().empty() || fs::equivalent(From.parent_path(), Folder, Ignored)) continue;
        Tasks.push_back({From.string(), To.string(), Exists(To), false});
    }
    return Tasks;
}

std::string Copy(const TCopyTask& Task, const std::atomic<bool>& Stop) {
    std::error_code Ignored;
    const fs::path To = Task.To;
    const bool IsFolder = fs::is_directory(fs::symlink_status(Task.From, Ignored));
    if (IsFolder && IsInside(To.parent_path(), Task.From)) return "a folder cannot be copied into itself";
    if (Exists(To)) {
        if (!Task.Replaces) return Reason(EEXIST);
        if (IsFolder || fs::is_directory(fs::symlink_status(To, Ignored)))
            return "there is a folder of that name, or a file where a folder is to go";
        if (fs::equivalent(Task.From, To, Ignored)) return "it is the same file";
    }
    const TWorkshop Workshop(To.parent_path());
    if (!Workshop.GetProblem().empty()) return Workshop.GetProblem();
    if (std::string Problem = CopyAll(Task.From, Workshop.GetPlace(), Stop); !Problem.empty()) return Problem;
    if (Stop) return "stopped";
    std::string Problem = PutInPlace(Workshop.GetPlace(), Task);
    // Only now: a folder that cannot be written to cannot be put in place either.
    if (Problem.empty() && IsFolder)
        fs::permissions(To, fs::status(Task.From, Ignored).permissions(), Ignored);
    return Problem;
}

} // namespace quill::examples
