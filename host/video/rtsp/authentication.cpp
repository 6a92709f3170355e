#include "host/video/rtsp/authentication.h"

#include <zarn/authentication/digest.h>
#include <zarn/authentication/realm.h>
#include <zarn/text/character.h>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include <utility>

namespace zarn::host::video::rtsp {
namespace {

constexpr std::string_view Account = "admin";

bool IsHash(std::string_view text) {
    constexpr std::string_view Digits = "0123456789abcdef";
    return text.size() == 32 && text.find_first_not_of(Digits) == std::string_view::npos;
}

/// Whether credentials are of this scheme, well-formed or not.
bool IsDigest(std::string_view credentials) {
    auto const trimmed = text::Trim(credentials);
    return boost::iequals(trimmed.substr(0, trimmed.find_first_of(text::WhiteSpace)), "Digest");
}

/// Whether they use an algorithm and a `qop` that can be checked.
bool IsOffered(DigestParameters const& parameters) {
    auto const& algorithm = Find(parameters, "algorithm");
    auto const& qop = Find(parameters, "qop");
    return (algorithm.empty() || boost::iequals(algorithm, "MD5")) && (qop.empty() || qop == "auth");
}

} // namespace

Authentication::Authentication(std::string ha1) : ha1(std::move(ha1)) {}

std::string Authentication::MakeChallenge(bool isStale, Clock::time_point now) {
    auto challenge = std::string("Digest realm=\"") + authentication::Realm + "\", nonce=\"" + nonces.Make(now) + "\"";
    if (isStale) challenge += ", stale=true";
    return challenge;
}

Authentication::Verdict Authentication::Check(std::string_view credentials, std::string_view method, std::string& nonce,
                                              Clock::time_point now) {
    auto const parameters = ParseDigestParameters(credentials);
    if (!parameters) return IsDigest(credentials) ? Verdict::Wrong : Verdict::Unchecked;
    if (!IsOffered(*parameters)) return Verdict::Unchecked;
    if (!IsRight(*parameters, method)) return Verdict::Wrong;
    auto const& presented = Find(*parameters, "nonce");
    if (!presented.empty() && presented == nonce) return Verdict::Right;
    auto const made = nonces.GetTime(presented);
    if (!made || now - *made >= UsedResponses::LongestLife) return Verdict::Stale;
    if (!used.Add({.nonce = presented, .nc = {}, .cnonce = {}}, *made, now)) return Verdict::Stale;
    nonce = presented;
    return Verdict::Right;
}

bool Authentication::IsRight(DigestParameters const& parameters, std::string_view method) const {
    if (!IsHash(ha1) || Find(parameters, "username") != Account) return false;
    return authentication::IsDigestResponse({.ha1 = ha1,
                                             .method = method,
                                             .uri = Find(parameters, "uri"),
                                             .nonce = Find(parameters, "nonce"),
                                             .nc = Find(parameters, "nc"),
                                             .cnonce = Find(parameters, "cnonce"),
                                             .qop = Find(parameters, "qop")},
                                            boost::to_lower_copy(Find(parameters, "response")));
}

} // namespace zarn::host::video::rtsp
