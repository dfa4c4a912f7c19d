// Lists of files as they travel: DROPFILES blocks between objects, uri-lists between programs. Both readers take any
// bytes. Names are absolute paths, bytes as the file system has them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quill {

using TFileNames = std::vector<std::string>;

// A DROPFILES block: a header of DropFilesHeaderSize bytes (offset of the names, a point, a flag of the client area,
// the wide-character flag; 32 bits each, little-endian), then each name with a NUL, then one more NUL.
inline constexpr std::size_t DropFilesHeaderSize = 20;
// The block with the names as bytes; header fields other than the offset are 0. A name ends at a NUL inside it; an
// empty one ends the list for every reader.
std::string BuildDropFiles(const TFileNames& Names);
// The names of a block of bytes or UTF-16 (malformed units become U+FFFD). The list ends at an empty name or with the
// block; a name whose terminator is missing counts, a wild offset or a truncated header means no names.
TFileNames ReadDropFiles(std::string_view Block);

// The local files of a uri-list (text/uri-list); other lines are comments and addresses elsewhere.
TFileNames ReadUriList(std::string_view Text);
// A uri-list of absolute paths.
std::string BuildUriList(const TFileNames& Names);
// Whether there is at least one name and all are absolute paths without control characters.
bool AreFilePaths(const TFileNames& Names);

} // namespace quill
