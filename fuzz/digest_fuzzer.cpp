// Authorization fields from clients with and without the password.
#include "host/web/challenges.h"
#include "host/web/digest.h"
#include "host/web/digest_credentials.h"
#include "require.h"
#include "support/test_request.h"

#include <zarn/authentication/digest.h>
#include <zarn/authentication/engine.h>
#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <boost/algorithm/string/predicate.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::fuzz {
namespace {

using host::ParseDigestParameters;
using host::web::Challenges;
using host::web::Digest;
using Parameters = host::DigestParameters;

constexpr std::size_t MaximumLength = 8192;
constexpr std::string_view Target = "/snapshot/1/latest.jpeg?width=640";
constexpr std::string_view Path = "/snapshot/1/latest.jpeg";

/// The host's answer to an Authorization field.
struct Verdict {
    bool served = false;
    bool stale = false;
    std::string nonce; ///< of the new challenge
};

/// A protected path whose password the client does not know.
struct ProtectedPath {
    ProtectedPath() : ha1(authentication::MakeHa1("admin", authentication::Realm, "secret")) { engine.SetHa1(ha1); }

    Verdict Ask(std::string authorization) {
        auto const refusal = digest.Refuse(test::TestRequest(test::TestRequest::Method::Get, std::string(Target),
                                                             {{"Authorization", std::move(authorization)}}));
        if (!refusal) return {.served = true};
        auto const& data = refusal->reply;
        Require(static_cast<int>(data.GetStatus()) == 401, "a refusal is a 401");
        std::string_view const challenge = data.GetFields().at("WWW-Authenticate");
        constexpr std::string_view Name = "nonce=\"";
        auto const begin = challenge.find(Name);
        Require(begin != std::string_view::npos, "a challenge has a nonce");
        auto const nonce = challenge.substr(begin + Name.size());
        return {false, challenge.find("stale=true") != std::string_view::npos,
                std::string(nonce.substr(0, nonce.find('"')))};
    }

    std::string ha1;
    Challenges challenges;
    ZarnAuthenticationEngine engine{&challenges};
    Digest digest{engine, challenges};
};

std::string Write(Parameters const& parameters) {
    std::string text;
    for (auto const& [name, value] : parameters) {
        text += (text.empty() ? "Digest " : ", ") + name + "=\"";
        for (char const character : value) {
            if (character == '"' || character == '\\') text += '\\';
            text += character;
        }
        text += '"';
    }
    return text;
}

/// Recomputes the response for the current parameters.
void Sign(Parameters& credentials, std::string const& ha1) {
    credentials["response"] = authentication::MakeDigestResponse({.ha1 = ha1,
                                                                  .method = "GET",
                                                                  .uri = credentials["uri"],
                                                                  .nonce = credentials["nonce"],
                                                                  .nc = credentials["nc"],
                                                                  .cnonce = credentials["cnonce"],
                                                                  .qop = credentials["qop"]});
}

/// True if the host accepts a correct response in this form.
bool IsOffered(Parameters& credentials) {
    auto const& algorithm = credentials["algorithm"];
    auto const& qop = credentials["qop"];
    return !credentials["username"].empty() && !credentials["realm"].empty() && (qop.empty() || qop == "auth") &&
           (algorithm.empty() || boost::iequals(algorithm, "MD5"));
}

/// True if nc or cnonce distinguishes the response from the next one to the same challenge.
bool IsCounted(Parameters& credentials) {
    return !credentials["qop"].empty() && !(credentials["nc"].empty() && credentials["cnonce"].empty());
}

void Check(ProtectedPath& path, Parameters credentials) {
    Require(ParseDigestParameters(Write(credentials)) == credentials, "what was read is read again when written out");
    bool const isForTarget = credentials["uri"] == Target || credentials["uri"] == Path;
    Sign(credentials, path.ha1);
    auto const old = path.Ask(Write(credentials));
    Require(!old.served, "a right response to a foreign challenge is refused");
    if (isForTarget)
        Require(old.stale == IsOffered(credentials), "a right response to an old challenge gets a new one");

    credentials["nonce"] = old.nonce;
    Sign(credentials, path.ha1);
    auto const served = path.Ask(Write(credentials)).served;
    if (isForTarget) Require(served == IsOffered(credentials), "a right response to a new challenge is accepted");
    if (!IsOffered(credentials)) Require(!served, "a form that is not offered is refused");
    if (!served) return;

    auto const again = path.Ask(Write(credentials));
    Require(again.served != IsCounted(credentials), "a response counts once, unless it has neither nc nor cnonce");
    Require(again.served || again.stale, "a used response gets a new challenge");
}

} // namespace
} // namespace zarn::fuzz

/// Without the password, no field is accepted; with it, a correct response to the challenge is accepted in every
/// supported form. Writing and parsing the parameters again does not change them.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace zarn::fuzz;
    return CheckInput(data, size, MaximumLength, [](std::string_view text) {
        std::string const field(text);
        // The web server rejects such fields earlier.
        if (field.find_first_of(std::string("\0\r\n", 3)) != std::string::npos) return;
        ProtectedPath path;
        auto const verdict = path.Ask(field);
        Require(!verdict.served && !verdict.stale, "a client without the password is not served");
        if (auto parameters = ParseDigestParameters(field)) Check(path, *std::move(parameters));
    });
}
