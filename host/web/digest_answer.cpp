#include "host/web/digest_answer.h"

#include "host/web/digest_parameters.h"

#include <zarn/authentication/digest.h>
#include <zarn/authentication/engine.h>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace zarn::host::web {
namespace {

constexpr char Account[] = "admin";

constexpr std::array<std::string_view, 5> OtherAlgorithms{"MD5-sess", "SHA-256", "SHA-256-sess", "SHA-512-256",
                                                          "SHA-512-256-sess"};

/// What the SOAP engine reads in another way than ParseDigestParameters: other separators and escapes, and parameters
/// that its buffer cannot hold.
constexpr std::string_view ReadDifferently = ";\\%";
constexpr std::size_t LongestReadAlike = 2000;

bool IsMd5(std::string const& algorithm) { return algorithm.empty() || boost::beast::iequals(algorithm, "MD5"); }

} // namespace

std::optional<DigestAnswer> DigestAnswer::Read(zarn::web::Request const& request) {
    auto parameters = ParseDigestParameters(request.FindField("Authorization"));
    if (!parameters) return std::nullopt;
    DigestAnswer answer(*std::move(parameters));
    if (answer.Get("username").empty() || answer.Get("realm").empty() || !IsMd5(answer.Get("algorithm"))) {
        return std::nullopt;
    }
    return answer;
}

DigestAnswer::DigestAnswer(Parameters parameters) : parameters(std::move(parameters)) {
    boost::to_lower(this->parameters["response"]);
}

bool DigestAnswer::LogsIn(ZarnAuthenticationEngine const& engine, std::string const& method,
                          std::string const& uri) const {
    return ZarnAuthenticationCheckDigest(&engine, "zarn.host", "", Account, Get("response").c_str(), method.c_str(),
                                         uri.c_str(), Get("nonce").c_str(), Get("nc").c_str(), Get("cnonce").c_str(),
                                         Get("qop").c_str());
}

bool DigestAnswer::IsRight(ZarnAuthenticationEngine const& engine, std::string_view method,
                           std::string_view uri) const {
    auto const ha1 = engine.GetHa1(Account);
    auto const& qop = Get("qop");
    if (ha1.empty() || !(qop.empty() || qop == "auth")) return false;
    return authentication::IsDigestResponse({.ha1 = ha1,
                                             .method = method,
                                             .uri = uri,
                                             .nonce = Get("nonce"),
                                             .nonceCount = Get("nc"),
                                             .clientNonce = Get("cnonce"),
                                             .qop = qop},
                                            Get("response"));
}

std::string const& DigestAnswer::Get(std::string const& name) const {
    static std::string const none;
    auto const found = parameters.find(name);
    return found == parameters.end() ? none : found->second;
}

bool IsOfOtherForm(std::string_view authorization) {
    if (authorization.size() > LongestReadAlike ||
        authorization.find_first_of(ReadDifferently) != std::string_view::npos) {
        return false;
    }
    auto parameters = ParseDigestParameters(authorization);
    if (!parameters) return false;
    return (*parameters)["qop"] == "auth-int" ||
           std::any_of(OtherAlgorithms.begin(), OtherAlgorithms.end(),
                       [&](auto other) { return boost::beast::iequals((*parameters)["algorithm"], other); });
}

} // namespace zarn::host::web
