#pragma once

#include "host/web/challenges.h"

#include <zarn/web/request.h>
#include <zarn/web/response/pending.h>
#include <zarn/web/service.h>

#include <string>
#include <string_view>

class ZarnAuthenticationEngine;

namespace zarn::host::web {

/// HTTP digest authentication of the web server: protects the services of the host itself, and puts the host's
/// challenges in the place of those that the ONVIF module makes. A challenge says "stale=true" when it refuses an
/// answer that was right, and only its nonce or count was not good: the client then goes on without asking its user.
/// Copies share what they refer to. Thread: any. Source: RFC 2617, RFC 7616.
class Digest {
public:
    using Data = zarn::web::response::Pending::Data;

    /// engine      knows the password and whether any is needed, and asks `challenges` whether an answer may be used
    /// challenges  makes the nonces
    /// Both must outlive this object.
    Digest(ZarnAuthenticationEngine const& engine, Challenges& challenges);

    /// Null when the request may be served: authentication is off, or the request answers a challenge rightly. The
    /// account is the one that there is, whatever name the client gives. Otherwise the refusal: 401 with a challenge.
    zarn::web::Service::Response Refuse(zarn::web::Request const& request) const;

    /// The module's refusal of a request (401) with a challenge of the host, for the realm that the module names.
    Data Challenge(Data const& refusal, zarn::web::Request const& request) const;

private:
    std::string MakeChallenge(std::string_view realm, bool stale) const;

    ZarnAuthenticationEngine const* engine;
    Challenges* challenges;
};

} // namespace zarn::host::web
