#include "is_authenticated.h"

#include <zarn/authentication/engine.h>
#include <zarn/authentication/realm.h>
#include <zarn/text/character.h>

#include <boost/algorithm/string/predicate.hpp>
#include <httpda.h>
#include <soapH.h>

#include <string>
#include <string_view>

namespace zarn::service::onvif {

namespace {

constexpr int DigestBytes = 16;

constexpr std::size_t LongestRealm = 128;

bool IsEmpty(char const* text) { return !text || !*text; }

/// What a client has left out, or an empty text; the engine takes texts only.
char const* OrEmptyText(char const* text) { return text ? text : ""; }

/// Whether a digest is said to be of the algorithm that the challenge asks for, which a client may leave unsaid. The
/// engine cannot check any other.
bool IsMd5(char const* algorithm) { return IsEmpty(algorithm) || boost::iequals(algorithm, "MD5"); }

/// Whether the digest plugin can write the realm into a header field as it is. gSOAP has decoded what the client sent,
/// so that it may hold anything: the end of the quoted text, and of the line.
bool IsWritable(std::string_view realm) {
    return realm.size() <= LongestRealm && text::IsLine(realm) && realm.find_first_of("\"\\") == realm.npos;
}

} // namespace

bool IsAuthenticated(soap* soap, ZarnAuthenticationEngine const* engine) {
    if (!ZarnAuthenticationIsEnabled(engine)) return true;
    // The challenge to wrong credentials repeats the client's realm, if that can be done.
    if (IsEmpty(soap->userid) || IsEmpty(soap->authrealm) || !IsWritable(soap->authrealm)) {
        soap->authrealm = authentication::Realm;
        return false;
    }
    auto const* digest = static_cast<http_da_data const*>(soap_lookup_plugin(soap, http_da_id));
    if (!digest || !IsMd5(digest->alg)) return false;

    std::string path = soap->path;
    char const* response =
        soap_s2hex(soap, reinterpret_cast<unsigned char const*>(digest->response), nullptr, DigestBytes);
    auto const isRight = [&] {
        // The one account of the host is asked for whatever user the client names: a digest made for another name is
        // simply wrong. ONVIF is served by POST alone, so the method is not read from the request line.
        return ZarnAuthenticationCheckDigest(engine, "zarn.service.onvif", "", "admin", response, "POST", path.c_str(),
                                             OrEmptyText(digest->nonce), OrEmptyText(digest->ncount),
                                             OrEmptyText(digest->cnonce), OrEmptyText(digest->qop));
    };
    if (isRight()) return true;
    // Some clients leave the query out of the digest's URI, others keep it.
    auto const query = path.find('?');
    if (query == std::string::npos) return false;
    path.resize(query);
    return isRight();
}

} // namespace zarn::service::onvif
