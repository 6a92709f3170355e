#pragma once

#include "host/access/digest_parameters.h"
#include "host/access/nonces.h"
#include "host/access/used_responses.h"

#include <string>
#include <string_view>

namespace zarn::host::video::rtsp {

/// The check of RTSP requests: digest with MD5 and without `qop`, user `admin`, realm zarn::authentication::Realm.
/// A connection may use its nonce as long as it lasts, because players answer one challenge for all their requests;
/// no other connection may use that nonce. Thread: any. Source: RFC 2326, D.1; RFC 2617.
class Authentication {
public:
    using Clock = Nonces::Clock;

    enum class Verdict {
        Right,
        Stale, ///< right, but for a nonce that is old, or not for this connection
        Wrong,
        Unchecked, ///< of a scheme, algorithm or `qop` that is not offered: refused, but no guess at the password
    };

    /// ha1  32 lower-case hexadecimal digits; with anything else every login fails
    /// Throws std::runtime_error when the system gives no random bytes.
    explicit Authentication(std::string ha1);

    /// The HA1 that it was made with.
    std::string const& GetHa1() const { return ha1; }

    /// The value of a WWW-Authenticate field with a new nonce.
    std::string MakeChallenge(bool isStale, Clock::time_point now = Clock::now());

    /// Checks the value of an Authorization field.
    /// method  of the request
    /// nonce   the one that the connection uses; empty at first
    Verdict Check(std::string_view credentials, std::string_view method, std::string& nonce,
                  Clock::time_point now = Clock::now());

private:
    bool IsRight(DigestParameters const& parameters, std::string_view method) const;

    std::string const ha1;
    Nonces nonces;
    UsedResponses used; ///< one entry for each nonce that a connection uses
};

} // namespace zarn::host::video::rtsp
