#include "host/web/digest.h"

#include "host/web/digest_credentials.h"
#include "host/web/reply.h"
#include "host/web/request_target.h"

#include <zarn/authentication/engine.h>
#include <zarn/authentication/realm.h>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/beast/core/string.hpp>

#include <map>
#include <utility>

namespace zarn::host::web {
namespace {

constexpr char FieldName[] = "WWW-Authenticate";

struct Attempt {
    std::optional<DigestCredentials> credentials;
    bool isOfferedForm; ///< digest credentials of a form that the challenge offers: when they are wrong, a guess

    /// What a refusal says of it.
    Login Judge(bool isStale) const { return isOfferedForm && !isStale ? Login::Wrong : Login::Irrelevant; }
};

Attempt ReadAttempt(zarn::web::Request const& request) {
    auto const field = request.FindField("Authorization");
    auto parameters = ParseDigestParameters(field);
    bool const isOfferedForm = boost::istarts_with(field, "Digest") && !IsOfUnofferedForm(field, parameters);
    return {DigestCredentials::Make(std::move(parameters)), isOfferedForm};
}

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

std::optional<Answer> Digest::Refuse(zarn::web::Request const& request) const {
    if (!ZarnAuthenticationIsEnabled(engine)) return std::nullopt;
    bool stale = false;
    auto const attempt = ReadAttempt(request);
    if (auto const& credentials = attempt.credentials;
        credentials && IsFor(credentials->GetUri(), request.GetTarget())) {
        std::string const method(protocol::network::http::ToString(request.GetMethod()));
        if (credentials->LogIn(*engine, method, credentials->GetUri())) return std::nullopt;
        stale = credentials->HasRightResponse(*engine, method, credentials->GetUri());
    }
    return Answer(MakeTextReply(Status::Unauthorized, "Log in first.",
                                {{FieldName, MakeChallenge(authentication::Realm, stale)}}),
                  attempt.Judge(stale));
}

Answer Digest::ReplaceChallenge(Reply const& refusal, zarn::web::Request const& request) const {
    // With a right response to one of the targets that the module tries, only the nonce can be the reason.
    auto const attempt = ReadAttempt(request);
    auto const& credentials = attempt.credentials;
    auto const target = request.GetTarget();
    bool const stale = credentials && (credentials->HasRightResponse(*engine, "POST", target) ||
                                       credentials->HasRightResponse(*engine, "POST", GetPath(target)));
    auto fields = refusal.GetFields();
    auto const realm = RemoveChallenge(fields);
    fields.emplace(FieldName, MakeChallenge(realm, stale));
    return {Reply(refusal.GetStatus(), std::move(fields), {refusal.GetState(), refusal.GetBody()}),
            attempt.Judge(stale)};
}

std::string Digest::MakeChallenge(std::string_view realm, bool stale) const {
    std::string challenge = "Digest realm=\"";
    challenge.append(realm).append(R"(", qop="auth", nonce=")").append(challenges->MakeNonce());
    challenge.append("\", algorithm=MD5");
    if (stale) challenge.append(", stale=true");
    return challenge;
}

} // namespace zarn::host::web
