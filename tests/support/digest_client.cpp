#include "support/digest_client.h"

#include <openssl/evp.h>

#include <array>
#include <regex>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zarn::test {

std::string Hash(char const* name, std::string const& text) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    EVP_Digest(text.data(), text.size(), digest.data(), &length, EVP_get_digestbyname(name), nullptr);
    constexpr std::string_view Digits = "0123456789abcdef";
    std::string hex;
    for (unsigned i = 0; i < length; ++i) {
        hex += Digits[digest.at(i) >> 4U];
        hex += Digits[digest.at(i) & 15U];
    }
    return hex;
}

std::string DigestCredentials::MakeResponse() const {
    auto const hash = [this](std::string const& text) {
        return Hash(algorithm.starts_with("SHA-256") ? "SHA256" : "MD5", text);
    };
    auto ha1 = hash(user + ":" + realm + ":" + password);
    if (algorithm.ends_with("-sess")) ha1 = hash(ha1 + ":" + nonce + ":" + cnonce);
    auto const ha2 = hash(method + ":" + uri + (qop == "auth-int" ? ":" + hash(body) : std::string()));
    if (qop.empty()) return hash(ha1 + ":" + nonce + ":" + ha2);
    return hash(ha1 + ":" + nonce + ":" + count + ":" + cnonce + ":" + qop + ":" + ha2);
}

std::string DigestCredentials::Write() const {
    std::string text =
        "Digest username=\"" + user + "\", realm=\"" + realm + "\", nonce=\"" + nonce + "\", uri=\"" + uri + "\"";
    if (!algorithm.empty()) text += ", algorithm=" + algorithm;
    if (!qop.empty()) text += ", qop=" + qop;
    if (!qop.empty() && !count.empty()) text += ", nc=" + count;
    if (!qop.empty() && !cnonce.empty()) text += ", cnonce=\"" + cnonce + "\"";
    return text + ", response=\"" + MakeResponse() + "\"";
}

std::map<std::string, std::string> ReadChallenge(RawResponse const& response) {
    auto const field = response.fields.find("www-authenticate");
    if (field == response.fields.end() || !field->second.starts_with("Digest ")) {
        throw std::runtime_error("no digest challenge in a response with status " + std::to_string(response.status));
    }
    std::map<std::string, std::string> parameters;
    std::regex const parameter(R"re((\w+)=(?:"([^"]*)"|([^ ,]+)))re");
    for (std::sregex_iterator match(field->second.begin(), field->second.end(), parameter), end; match != end; ++match)
        parameters[(*match)[1]] = (*match)[2].matched ? (*match)[2] : (*match)[3];
    return parameters;
}

} // namespace zarn::test
