#pragma once

#include <string>
#include <string_view>

namespace zarn::authentication {

/// What the client's answer to a digest challenge is made of. Source: RFC 2617, 3.2.2.
struct DigestInput {
    std::string_view ha1; ///< 32 lower-case hexadecimal characters
    std::string_view method;
    std::string_view uri;
    std::string_view nonce;
    std::string_view nonceCount;
    std::string_view clientNonce;
    std::string_view qop; ///< empty: the older form, without nonce count and client nonce
};

/// The answer that proves knowledge of HA1, as 32 lower-case hexadecimal characters.
/// Throws std::runtime_error when OpenSSL has no MD5. Thread: any. Source: RFC 2617, 3.2.2.1.
std::string MakeDigestResponse(DigestInput const& input);

/// Whether `response` is that answer, 32 lower-case hexadecimal characters; compared in constant time.
/// Throws std::runtime_error when OpenSSL has no MD5. Thread: any.
bool IsDigestResponse(DigestInput const& input, std::string_view response);

} // namespace zarn::authentication
