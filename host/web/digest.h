#pragma once

#include "host/web/nonces.h"

#include <zarn/web/request.h>
#include <zarn/web/service.h>

class ZarnAuthenticationEngine;

namespace zarn::host::web {

/// Protects a service of the host itself with HTTP digest authentication. Thread: any. Source: RFC 2617, RFC 7616.
class Digest {
public:
    /// engine  knows the password and whether any is needed; must outlive this object
    explicit Digest(ZarnAuthenticationEngine const& engine);

    /// Null when the request may be served: authentication is off, or the request answers a challenge of ours, not
    /// older than Nonces::Lifetime, with the right password. Otherwise the refusal: 401 with a new challenge, which
    /// says "stale=true" when all that was wrong is the age or origin of the nonce.
    zarn::web::Service::Response Refuse(zarn::web::Request const& request) const;

private:
    ZarnAuthenticationEngine const& engine;
    Nonces nonces;
};

} // namespace zarn::host::web
