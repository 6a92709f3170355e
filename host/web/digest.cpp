#include "host/web/digest.h"

#include "host/web/digest_credentials.h"
#include "host/web/reply.h"
#include "host/web/request_target.h"

#include <zarn/authentication/engine.h>
#include <zarn/authentication/realm.h>

#include <boost/beast/core/string.hpp>

#include <map>
#include <utility>

namespace zarn::host::web {
namespace {

constexpr char FieldName[] = "WWW-Authenticate";

/// Whether credentials with this uri are made for a request; many clients leave out the query.
bool IsFor(std::string const& uri, std::string_view target) {
    auto const origin = ToOriginForm(uri);
    return origin && (*origin == target || *origin == GetPath(target));
}

/// Removes the challenge from the fields of a refusal and returns its realm.
std::string RemoveChallenge(std::map<std::string, std::string>& fields) {
    std::string realm = authentication::Realm;
    std::erase_if(fields, [&](auto const& field) {
        if (!boost::beast::iequals(field.first, FieldName)) return false;
        if (auto const challenge = ParseDigestParameters(field.second)) {
            if (auto const named = challenge->find("realm"); named != challenge->end()) realm = named->second;
        }
        return true;
    });
    return realm;
}

} // namespace

Digest::Digest(ZarnAuthenticationEngine const& engine, Challenges& challenges)
    : engine(&engine), challenges(&challenges) {}

zarn::web::Service::Response Digest::Refuse(zarn::web::Request const& request) const {
    if (!ZarnAuthenticationIsEnabled(engine)) return nullptr;
    bool stale = false;
    auto const credentials = DigestCredentials::Find(request);
    if (credentials && IsFor(credentials->GetUri(), request.GetTarget())) {
        std::string const method(protocol::network::http::ToString(request.GetMethod()));
        if (credentials->LogIn(*engine, method, credentials->GetUri())) return nullptr;
        stale = credentials->HasRightResponse(*engine, method, credentials->GetUri());
    }
    return MakeTextResponse(Status::Unauthorized, "Log in first.",
                            {{FieldName, MakeChallenge(authentication::Realm, stale)}});
}

Digest::Data Digest::ReplaceChallenge(Data const& refusal, zarn::web::Request const& request) const {
    // With a right response to one of the targets that the module tries, only the nonce can be the reason.
    auto const credentials = DigestCredentials::Find(request);
    auto const target = request.GetTarget();
    bool const stale = credentials && (credentials->HasRightResponse(*engine, "POST", target) ||
                                       credentials->HasRightResponse(*engine, "POST", GetPath(target)));
    auto fields = refusal.GetFields();
    auto const realm = RemoveChallenge(fields);
    fields.emplace(FieldName, MakeChallenge(realm, stale));
    return {refusal.GetStatus(), std::move(fields), {refusal.GetState(), refusal.GetBody()}};
}

std::string Digest::MakeChallenge(std::string_view realm, bool stale) const {
    std::string challenge = "Digest realm=\"";
    challenge.append(realm).append(R"(", qop="auth", nonce=")").append(challenges->MakeNonce());
    challenge.append("\", algorithm=MD5");
    if (stale) challenge.append(", stale=true");
    return challenge;
}

} // namespace zarn::host::web
