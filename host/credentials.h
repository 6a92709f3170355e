#pragma once

#include <optional>
#include <string>

namespace zarn::host {

/// What the host knows of the password of `admin`.
struct Credentials {
    /// HA1 of user, realm and password (RFC 2617): all that is stored.
    std::string ha1;

    /// A password that was just generated, to be shown once: it is not stored.
    std::optional<std::string> generated;
};

/// The credentials of `password`, else of the file at `path`, else of a new random password. New ones are written to
/// the file, which only its owner can read; the mode of a file that others can read is corrected. The file is one line
/// in the form of htdigest: `admin:REALM:HA1`. Throws std::runtime_error that names the file when it cannot be read or
/// written or holds something else.
Credentials LoadCredentials(std::string const& path, std::optional<std::string> const& password);

} // namespace zarn::host
