// Saving files without risk to what they hold.
#pragma once

#include <functional>
#include <string>

namespace quill {

class TStream;

// Saves a file so that a failure (a full disk, an exception of Write, a crash) leaves the old content: Write fills a
// new file beside the old one, which then takes its place, with the old one's permissions. Symbolic links are
// followed. What cannot be replaced (a device, a file with several names, a folder without write permission) is
// written in place.
// Raises EFCreateError or EWriteError, or passes on what Write raises.
void ReplaceFile(const std::string& FileName, const std::function<void(TStream& Stream)>& Write);

} // namespace quill
