#include <zarn/authentication/digest.h>
#include <zarn/authentication/ha1.h>

#include <boost/algorithm/hex.hpp>
#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <array>
#include <initializer_list>
#include <iterator>
#include <stdexcept>

namespace zarn::authentication {

namespace {

/// MD5 of the parts joined with ":", as 32 lower-case hexadecimal characters: how every hash of the digest scheme is
/// made. Throws std::runtime_error when OpenSSL has no MD5. Source: RFC 7616, 3.4.
std::string Md5(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (auto const part : parts) text.append(part).append(":");
    text.pop_back();
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    if (EVP_Digest(text.data(), text.size(), digest.data(), &size, EVP_md5(), nullptr) != 1) {
        throw std::runtime_error("This OpenSSL has no MD5, which HTTP digest authentication needs");
    }
    std::string hex;
    boost::algorithm::hex_lower(digest.begin(), digest.begin() + size, std::back_inserter(hex));
    return hex;
}

} // namespace

std::string MakeHa1(std::string_view user, std::string_view realm, std::string_view password) {
    return Md5({user, realm, password});
}

std::string MakeDigestResponse(DigestInput const& input) {
    auto const ha2 = Md5({input.method, input.uri});
    if (input.qop.empty()) return Md5({input.ha1, input.nonce, ha2});
    return Md5({input.ha1, input.nonce, input.nc, input.cnonce, input.qop, ha2});
}

bool IsDigestResponse(DigestInput const& input, std::string_view response) {
    auto const expected = MakeDigestResponse(input);
    // The length of a response is not secret.
    return response.size() == expected.size() && CRYPTO_memcmp(response.data(), expected.data(), expected.size()) == 0;
}

} // namespace zarn::authentication
