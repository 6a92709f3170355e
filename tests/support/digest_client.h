#pragma once

#include "support/raw_connection.h"

#include <map>
#include <string>
#include <string_view>

namespace zarn::test {

/// A hash as lower-case hexadecimal digits, computed by OpenSSL directly so that expected values do not come from the
/// code under test.
/// name  "MD5", "SHA256"
std::string Hash(char const* name, std::string const& text);

/// A client's answer to a digest challenge. Tests may change every member before writing it; the response is computed
/// from the current values. Source: RFC 7616, 3.4.
struct DigestCredentials {
    std::string password;
    std::string nonce;
    std::string method = "POST";
    std::string uri = "/onvif/device_service";
    std::string user = "admin";
    std::string realm = "zarnsuite.example";
    std::string algorithm = "MD5"; ///< also "MD5-sess", "SHA-256", "SHA-256-sess"; empty: MD5 without saying so
    std::string qop = "auth";      ///< also "auth-int"; empty: the form of RFC 2069
    std::string count = "00000001";
    std::string cnonce = "0a4f113b";
    std::string body = {}; ///< for "auth-int"

    /// The response that proves knowledge of the password.
    std::string MakeResponse() const;

    /// The Authorization value in the usual form: every value quoted except algorithm, qop and nc.
    std::string Write() const;
};

/// The parameters of the response's digest challenge, unquoted. Throws std::runtime_error when there is no challenge.
std::map<std::string, std::string> ReadChallenge(RawResponse const& response);

} // namespace zarn::test
