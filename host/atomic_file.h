#pragma once

#include <string>
#include <string_view>

namespace zarn::host {

/// Replaces the content of the file at `path`. Whatever happens, the file holds either its old or its new content: the
/// text is written to a new file beside it, synchronised with the disk and renamed. A symbolic link is followed. An
/// existing file keeps its mode; only the owner can read and write a new one. Throws std::system_error that names the
/// path. Thread: any, one at a time per path.
void WriteFileAtomically(std::string const& path, std::string_view text);

/// The content of the file at `path`.
/// Throws std::system_error that names the path when it cannot be read, is no regular file, or is longer than 16 MiB.
std::string ReadWholeFile(std::string const& path);

} // namespace zarn::host
