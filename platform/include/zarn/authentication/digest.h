#pragma once

#include <string>
#include <string_view>

namespace zarn::authentication {

/// What the `response` of digest credentials is made of. Source: RFC 7616, 3.4.
struct DigestInput {
    std::string_view ha1;    ///< 32 lower-case hexadecimal characters
    std::string_view method; ///< of the request, such as "POST"
    std::string_view uri;    ///< the request target as the client wrote it
    std::string_view nonce;  ///< of the challenge
    std::string_view nc;     ///< as the client wrote it
    std::string_view cnonce; ///< of the client
    std::string_view qop;    ///< empty: the form of RFC 2069, without nc and cnonce
};

/// The response that proves knowledge of HA1, as 32 lower-case hexadecimal characters.
/// Throws std::runtime_error when OpenSSL has no MD5. Thread: any. Source: RFC 7616, 3.4.1.
std::string MakeDigestResponse(DigestInput const& input);

/// Whether `response` is that response, 32 lower-case hexadecimal characters; compared in constant time.
/// Throws std::runtime_error when OpenSSL has no MD5. Thread: any.
bool IsDigestResponse(DigestInput const& input, std::string_view response);

} // namespace zarn::authentication
