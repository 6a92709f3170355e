#include "host/web/digest_credentials.h"

#include <zarn/authentication/digest.h>
#include <zarn/authentication/engine.h>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zarn::host::web {
namespace {

constexpr std::string_view Blanks = " \t";
constexpr char Account[] = "admin";

constexpr std::string_view OtherAlgorithms[]{"MD5-sess", "SHA-256", "SHA-256-sess", "SHA-512-256", "SHA-512-256-sess"};

/// What the SOAP engine reads in another way than ParseDigestParameters: other separators and escapes, and parameters
/// that its buffer cannot hold.
constexpr std::string_view ReadDifferently = ";\\%";
constexpr std::size_t LongestReadAlike = 2000;

bool IsMd5(std::string const& algorithm) { return algorithm.empty() || boost::beast::iequals(algorithm, "MD5"); }

} // namespace

std::string RemoveBlanksBeforeSeparators(std::string_view authorization) {
    std::string text;
    text.reserve(authorization.size());
    bool quoted = false;
    for (std::size_t i = 0; i < authorization.size(); ++i) {
        char const character = authorization[i];
        if (!quoted && (character == ',' || character == '=')) text.resize(text.find_last_not_of(Blanks) + 1);
        if (character == '"') quoted = !quoted;
        text += character;
        if (quoted && character == '\\' && i + 1 < authorization.size()) text += authorization[++i];
    }
    return text;
}

bool IsOfUnofferedForm(std::string_view authorization, std::optional<DigestParameters> const& parameters) {
    if (authorization.size() > LongestReadAlike ||
        authorization.find_first_of(ReadDifferently) != std::string_view::npos) {
        return false;
    }
    if (!parameters) return false;
    return Find(*parameters, "qop") == "auth-int" || std::ranges::any_of(OtherAlgorithms, [&](auto other) {
               return boost::beast::iequals(Find(*parameters, "algorithm"), other);
           });
}

std::optional<DigestCredentials> DigestCredentials::Make(std::optional<DigestParameters> parameters) {
    if (!parameters) return std::nullopt;
    DigestCredentials credentials(*std::move(parameters));
    bool const isChecked = !credentials.Get("username").empty() && !credentials.Get("realm").empty();
    if (!isChecked || !IsMd5(credentials.Get("algorithm"))) return std::nullopt;
    return credentials;
}

DigestCredentials::DigestCredentials(DigestParameters read) : parameters(std::move(read)) {
    boost::to_lower(parameters["response"]);
}

bool DigestCredentials::LogIn(ZarnAuthenticationEngine const& engine, std::string const& method,
                              std::string const& uri) const {
    return ZarnAuthenticationCheckDigest(&engine, "zarn.host", "", Account, Get("response").c_str(), method.c_str(),
                                         uri.c_str(), Get("nonce").c_str(), Get("nc").c_str(), Get("cnonce").c_str(),
                                         Get("qop").c_str());
}

bool DigestCredentials::HasRightResponse(ZarnAuthenticationEngine const& engine, std::string_view method,
                                         std::string_view uri) const {
    auto const ha1 = engine.GetHa1(Account);
    auto const& qop = Get("qop");
    if (ha1.empty() || !(qop.empty() || qop == "auth")) return false;
    return authentication::IsDigestResponse({.ha1 = ha1,
                                             .method = method,
                                             .uri = uri,
                                             .nonce = Get("nonce"),
                                             .nc = Get("nc"),
                                             .cnonce = Get("cnonce"),
                                             .qop = qop},
                                            Get("response"));
}

std::string const& DigestCredentials::Get(std::string const& name) const { return Find(parameters, name); }

} // namespace zarn::host::web
