// Saving a user's document without ever risking the copy on disk.
#pragma once

#include "host/base/Errors.h"

#include <string>
#include <string_view>

namespace quill::examples {

// A file that could not be saved; the text names the file and the reason. The old file is as it was.
class ESaveError : public Exception {
    using Exception::Exception;
};

// Gives a file a new content, or leaves it as it was. The content is written to a new file in the same folder,
// flushed to the disk and put in place of the old one, with the old one's owner and permissions. A symbolic link
// stays, and what it leads to is replaced; a file with several names keeps them all. What cannot be saved like that
// is refused: a directory, a device, a file or a folder without write permission, a full disk.
// FileName is UTF-8. Raises ESaveError.
void WriteFileSafely(const std::string& FileName, std::string_view Content);

} // namespace quill::examples
