#pragma once

#include <zarn/protocol/network/http/method.h>
#include <zarn/web/request.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

class ZarnAuthenticationEngine;

namespace zarn::host::web {

/// What a client answers to a digest challenge, in one of the forms that are offered. Thread: one at a time.
class DigestAnswer {
public:
    /// The answer in a request; none when it carries none, or one of another algorithm than MD5, or one without user
    /// name or realm, which nobody checks.
    static std::optional<DigestAnswer> Read(zarn::web::Request const& request);

    /// The target that the client says to have made the answer for; empty when it does not say.
    std::string const& GetUri() const { return Get("uri"); }

    /// Whether the engine takes it for a request of this method and target. Uses it up.
    bool LogsIn(ZarnAuthenticationEngine const& engine, std::string const& method, std::string const& uri) const;

    /// Whether it is right, so that its client knows the password, without a look at the nonce.
    bool IsRight(ZarnAuthenticationEngine const& engine, std::string_view method, std::string_view uri) const;

private:
    using Parameters = std::map<std::string, std::string>;

    explicit DigestAnswer(Parameters parameters);

    std::string const& Get(std::string const& name) const;

    Parameters parameters;
};

/// Whether an Authorization field says that it holds an answer of a form that is not offered (RFC 7616's other
/// algorithms, a digest over the body), which is therefore refused without being compared with anything. False in every
/// case of doubt: somebody else may read the same text otherwise.
bool IsOfOtherForm(std::string_view authorization);

} // namespace zarn::host::web
