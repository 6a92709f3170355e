#pragma once

#include "support/raw_connection.h"

#include <map>
#include <string>
#include <string_view>

namespace zarn::test {

/// A hash as lower-case hexadecimal digits, by OpenSSL alone: what the tests expect does not come from what they test.
/// name  "MD5", "SHA256"
std::string Hash(char const* name, std::string const& text);

/// What a client answers to a digest challenge. Everything may be changed before it is written down; the response is
/// made of what is here. Source: RFC 7616, 3.4.
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

    /// The value of the Authorization field as most clients write it: all texts in quotes but algorithm, qop and nc.
    std::string Write() const;
};

/// The parameters of the digest challenge of a response, without their quotes. Throws std::runtime_error when it has
/// none.
std::map<std::string, std::string> ReadChallenge(RawResponse const& response);

} // namespace zarn::test
