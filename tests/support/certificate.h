#pragma once

#include "support/temporary_folder.h"

#include <string>

namespace zarn::test {

/// A self-signed certificate for "localhost" and its key, created with openssl as `NAME.pem` and `NAME.key`.
struct Certificate {
    /// Throws std::runtime_error when openssl fails.
    explicit Certificate(TemporaryFolder const& folder, std::string const& name = "server");

    /// Replaces the certificate with one that expired yesterday. Throws std::runtime_error when openssl fails.
    void Expire() const;

    std::string certificate; ///< path
    std::string key;         ///< path
};

} // namespace zarn::test
