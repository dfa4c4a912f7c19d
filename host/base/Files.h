// Saving files without risk to what they hold.
#pragma once

#include <functional>
#include <string>

namespace quill {

class TStream;

// Saves a file so that a failure (a full disk, an exception of Write, a crash) leaves the old content: Write fills a
// new file beside the old one, which is flushed to the disk and then takes the old one's place, with its owner,
// permissions and access control list. Symbolic links stay, and what they lead to is replaced or made. A file with
// several names keeps them all: it is overwritten, once the new content is safe beside it; should that fail half-way,
// the message tells where the new content is. Devices and pipes are written to.
// What cannot be saved like that is refused: a directory, a file or a folder without write permission.
// Raises EFCreateError or, with the name and the reason, EWriteError; passes on what else Write raises.
void ReplaceFile(const std::string& FileName, const std::function<void(TStream& Stream)>& Write);

} // namespace quill
