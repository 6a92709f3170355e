#pragma once

#include "host/web/challenges.h"
#include "host/web/handler.h"

#include <zarn/web/request.h>

#include <optional>
#include <string>
#include <string_view>

class ZarnAuthenticationEngine;

namespace zarn::host::web {

/// HTTP digest authentication of the web server: protects the host's own routes, and replaces the ONVIF module's
/// challenges by the host's. A challenge contains "stale=true" when the response was right and only the nonce or its
/// count was not accepted: the client then tries again without asking its user. Copies share what they refer to.
/// Thread: any. Source: RFC 2617, RFC 7616.
class Digest {
public:
    /// engine      knows the password and whether clients must log in, and asks `challenges` whether a response may be
    ///             used
    /// challenges  makes the nonces
    /// Both must outlive this object and its copies.
    Digest(ZarnAuthenticationEngine const& engine, Challenges& challenges);

    /// The refusal of a request, 401 with a challenge; none when the request may be served, because authentication is
    /// off or its credentials are right. There is one account: the user name is ignored.
    std::optional<Answer> Refuse(zarn::web::Request const& request) const;

    /// The module's refusal of a request (401) with the host's challenge instead of its own, in the same realm.
    Answer ReplaceChallenge(Reply const& refusal, zarn::web::Request const& request) const;

private:
    std::string MakeChallenge(std::string_view realm, bool stale) const;

    ZarnAuthenticationEngine const* engine;
    Challenges* challenges;
};

} // namespace zarn::host::web
