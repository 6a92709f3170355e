#pragma once

#include <optional>
#include <string>

namespace zarn::host {

/// The password of `admin`, as far as the host knows it.
struct Credentials {
    /// HA1 of user, realm and password (RFC 2617): all that is stored.
    std::string ha1;

    /// The password when it was made just now; to be shown once, since nobody will ever know it again.
    std::optional<std::string> generated;
};

/// Reads the credentials from the file at `path`, or makes them: from `password` when there is one, else from the file,
/// else from a new random password. What is new is written to the file, which only its owner can read; a file that
/// others could read is mended. The file is one line in the form of htdigest: `admin:REALM:HA1`. Throws
/// std::runtime_error that names the file when it cannot be read or written or holds something else.
Credentials LoadCredentials(std::string const& path, std::optional<std::string> const& password);

} // namespace zarn::host
