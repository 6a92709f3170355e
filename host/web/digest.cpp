#include "host/web/digest.h"

#include "host/web/digest_answer.h"
#include "host/web/digest_parameters.h"
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

/// Whether the answer is made for this request: a client may leave out the query, as many do.
bool IsFor(std::string const& uri, std::string_view target) {
    auto const origin = ToOriginForm(uri);
    return origin && (*origin == target || *origin == GetPath(target));
}

/// Takes the challenge out of the fields of a refusal, and returns its realm.
std::string TakeRealm(std::map<std::string, std::string>& fields) {
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
    auto const answer = DigestAnswer::Read(request);
    if (answer && IsFor(answer->GetUri(), request.GetTarget())) {
        std::string const method(protocol::network::http::ToString(request.GetMethod()));
        if (answer->LogsIn(*engine, method, answer->GetUri())) return nullptr;
        stale = answer->IsRight(*engine, method, answer->GetUri());
    }
    return MakeTextResponse(Reply::Status::Unauthorized, "Log in first.",
                            {{FieldName, MakeChallenge(authentication::Realm, stale)}});
}

Digest::Data Digest::Challenge(Data const& refusal, zarn::web::Request const& request) const {
    // Right for the targets that the module tries: all else that it could mind was the nonce.
    auto const answer = DigestAnswer::Read(request);
    auto const target = request.GetTarget();
    bool const stale =
        answer && (answer->IsRight(*engine, "POST", target) || answer->IsRight(*engine, "POST", GetPath(target)));
    auto fields = refusal.GetFields();
    auto const realm = TakeRealm(fields);
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
