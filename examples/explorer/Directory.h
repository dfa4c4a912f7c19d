// Reading one directory of the file system, without any toolkit.
#pragma once

#include "host/base/Errors.h"

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace quill::examples {

// A directory that cannot be read; the text is the system's reason.
class EDirectoryError : public Exception {
    using Exception::Exception;
};

enum TEntryKind { ekDirectory, ekFile, ekLink, ekSpecial };

// What stands in a directory under one name. Names are bytes: file systems promise no encoding.
struct TDirectoryEntry {
    std::string Name;
    TEntryKind Kind = ekFile;
    std::int64_t Size = 0; // bytes, of ordinary files
    std::time_t Modified = 0;
    bool HasEntries = false; // of directories: whether there is something to show below
    std::string LinkTarget;
    std::string Problem; // why a directory cannot be read; empty when it can
};

// The entries of a directory: directories first, then by name in the order of the user's language, numbers in names
// by their value. Links are entries of their own and are not followed, so that no loop of links can be entered.
// Entries that vanish meanwhile are left out. Raises EDirectoryError.
std::vector<TDirectoryEntry> ReadDirectory(const std::string& Path);

// The entry for a path that is given from outside; here links are followed.
TDirectoryEntry ReadEntry(const std::string& Path);

// Path and Name with one slash between them.
std::string JoinPath(const std::string& Path, const std::string& Name);

} // namespace quill::examples
