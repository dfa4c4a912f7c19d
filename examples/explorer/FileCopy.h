// Copying files and folders into a folder, without any toolkit.
#pragma once

#include <atomic>
#include <string>
#include <vector>

namespace quill::examples {

// Whether Path is Folder or stands somewhere below it; links on the way are followed.
bool IsInside(const std::string& Path, const std::string& Folder);
// The last part of a path.
std::string FileNameOf(const std::string& Path);

struct TCopyTask {
    std::string From;
    std::string To;
    bool Exists = false;   // something of that name is there already
    bool Replaces = false; // the user wants it replaced
};

// What copying Paths into Folder means. Of those that stand there already, none is copied onto itself: they are left
// out.
std::vector<TCopyTask> PlanCopy(const std::vector<std::string>& Paths, const std::string& Folder);

// Copies a file, a link as a link, or a folder with all that is in it. What is at the target stays as it was unless
// all went well: the copy is made beside it and then takes its name. A folder is never replaced, nor copied into
// itself, and devices and pipes are not copied. Where Stop becomes true it ends, with nothing copied.
// Returns why it went wrong, empty when it did not.
std::string Copy(const TCopyTask& Task, const std::atomic<bool>& Stop);

} // namespace quill::examples
