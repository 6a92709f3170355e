#include "authentication/md5.h"

#include <zarn/authentication/digest.h>

namespace zarn::authentication {

std::string MakeDigestResponse(DigestInput const& input) {
    auto const ha2 = Md5({input.method, input.uri});
    if (input.qop.empty()) return Md5({input.ha1, input.nonce, ha2});
    return Md5({input.ha1, input.nonce, input.nonceCount, input.clientNonce, input.qop, ha2});
}

} // namespace zarn::authentication
