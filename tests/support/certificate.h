#pragma once

#include "support/temporary_folder.h"

#include <string>

namespace zarn::test {

/// A self-signed certificate for "localhost" and its key, made by the openssl program, as `NAME.pem` and `NAME.key` in
/// a folder.
struct Certificate {
    /// Throws std::runtime_error when openssl does not make it.
    explicit Certificate(TemporaryFolder const& folder, std::string const& name = "server");

    /// Makes it one whose time was over yesterday. Throws std::runtime_error when openssl does not do that.
    void Expire() const;

    std::string certificate; ///< path
    std::string key;         ///< path
};

} // namespace zarn::test
