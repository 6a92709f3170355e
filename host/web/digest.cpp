#include "host/web/digest.h"

#include "host/web/digest_parameters.h"
#include "host/web/find_field.h"
#include "host/web/reply.h"
#include "host/web/request_target.h"

#include <zarn/authentication/engine.h>
#include <zarn/authentication/realm.h>

#include <boost/algorithm/string/predicate.hpp>

#include <map>
#include <string>
#include <string_view>

namespace zarn::host::web {
namespace {

using Parameters = std::map<std::string, std::string>;

/// Whether the answer is made for this request: a client may leave out the query, as many do.
bool IsFor(std::string const& uri, std::string_view target) {
    auto const origin = ToOriginForm(uri);
    return origin && (*origin == target || *origin == GetPath(target));
}

bool IsRight(ZarnAuthenticationEngine const& engine, zarn::web::Request const& request, Parameters& answer) {
    if (!IsFor(answer["uri"], request.GetTarget())) return false;
    if (!answer["algorithm"].empty() && !boost::iequals(answer["algorithm"], "MD5")) return false;
    std::string const method(protocol::network::http::ToString(request.GetMethod()));
    return ZarnAuthenticationCheckDigest(&engine, "zarn.host", "", answer["username"].c_str(),
                                         answer["response"].c_str(), method.c_str(), answer["uri"].c_str(),
                                         answer["nonce"].c_str(), answer["nc"].c_str(), answer["cnonce"].c_str(),
                                         answer["qop"].c_str());
}

} // namespace

Digest::Digest(ZarnAuthenticationEngine const& engine) : engine(engine) {}

zarn::web::Service::Response Digest::Refuse(zarn::web::Request const& request) const {
    if (!ZarnAuthenticationIsEnabled(&engine)) return nullptr;
    bool stale = false;
    if (auto answer = ParseDigestParameters(FindField(request.GetFields(), "Authorization"))) {
        if (IsRight(engine, request, *answer)) {
            if (nonces.IsFresh((*answer)["nonce"])) return nullptr;
            stale = true;
        }
    }
    std::string challenge = std::string("Digest realm=\"") + authentication::Realm + "\", qop=\"auth\", nonce=\"" +
                            nonces.Make() + "\", algorithm=MD5";
    if (stale) challenge += ", stale=true";
    return MakeTextResponse(Reply::Status::Unauthorized, "Log in first.", {{"WWW-Authenticate", challenge}});
}

} // namespace zarn::host::web
