#pragma once

#include "host/access/digest_parameters.h"

#include <optional>
#include <string>
#include <string_view>

class ZarnAuthenticationEngine;

namespace zarn::host::web {

/// The value of an Authorization field without the white space before "," and "=", which means nothing but ends an
/// unquoted value or a name for the SOAP engine. Source: RFC 9110, 11.4.
std::string RemoveBlanksBeforeSeparators(std::string_view authorization);

/// Whether an Authorization field states that its credentials are of a form that the challenge does not offer
/// (RFC 7616's other algorithms, qop "auth-int"), so that they are refused without checking their response. False when
/// in doubt: the SOAP engine may read the same text in another way.
/// parameters  of the field, as ParseDigestParameters reads them
bool IsOfUnofferedForm(std::string_view authorization, std::optional<DigestParameters> const& parameters);

/// The digest credentials of a request, in one of the forms that the challenge offers. Thread: one at a time.
/// Source: RFC 7616, 3.4.
class DigestCredentials {
public:
    /// parameters  of the Authorization field, as ParseDigestParameters reads them
    /// Returns nothing when there are none, or when they have another algorithm than MD5 or no user name or realm: they
    /// are refused without checking their response.
    static std::optional<DigestCredentials> Make(std::optional<DigestParameters> parameters);

    /// The "uri" parameter; empty when there is none.
    std::string const& GetUri() const { return Get("uri"); }

    /// Whether the engine accepts them for a request of this method and target. Uses up the response.
    bool LogIn(ZarnAuthenticationEngine const& engine, std::string const& method, std::string const& uri) const;

    /// Whether the response is right for this method and target, whatever the nonce: its client knows the password.
    bool HasRightResponse(ZarnAuthenticationEngine const& engine, std::string_view method, std::string_view uri) const;

private:
    explicit DigestCredentials(DigestParameters parameters);

    std::string const& Get(std::string const& name) const;

    DigestParameters parameters;
};

} // namespace zarn::host::web
