#include "authentication/md5.h"

#include <zarn/authentication/digest.h>

#include <openssl/crypto.h>

namespace zarn::authentication {

std::string MakeDigestResponse(DigestInput const& input) {
    auto const ha2 = Md5({input.method, input.uri});
    if (input.qop.empty()) return Md5({input.ha1, input.nonce, ha2});
    return Md5({input.ha1, input.nonce, input.nonceCount, input.clientNonce, input.qop, ha2});
}

bool IsDigestResponse(DigestInput const& input, std::string_view response) {
    auto const expected = MakeDigestResponse(input);
    // The length of an answer is no secret.
    return response.size() == expected.size() && CRYPTO_memcmp(response.data(), expected.data(), expected.size()) == 0;
}

} // namespace zarn::authentication
