#pragma once

#include <string>
#include <string_view>

namespace zarn::host {

/// Makes `text` the content of the file at `path`, so that whatever happens the file holds either its old content or
/// the new one, whole: writes a new file beside it, brings it to the disk, renames it. A symbolic link is followed. A
/// file that is there keeps its mode; a new one is readable and writable by its owner only. Throws std::system_error
/// that names the path. Thread: any, one at a time per path.
void WriteFileAtomically(std::string const& path, std::string_view text);

/// The content of the file at `path`.
/// Throws std::system_error that names the path when it cannot be read, is no regular file, or is longer than 16 MiB.
std::string ReadWholeFile(std::string const& path);

} // namespace zarn::host
