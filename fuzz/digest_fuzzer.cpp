// Authorization fields, of whoever has not logged in and of who has.
#include "host/web/challenges.h"
#include "host/web/digest.h"
#include "host/web/digest_parameters.h"
#include "require.h"

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

using host::web::Challenges;
using host::web::Digest;
using host::web::ParseDigestParameters;
using Parameters = std::map<std::string, std::string>;
using Method = protocol::network::http::Method;

constexpr std::size_t MaximumLength = 8192;
constexpr std::string_view Target = "/snapshot/1/latest.jpeg?width=640";
constexpr std::string_view Path = "/snapshot/1/latest.jpeg";

/// A request for the target, with one field.
class Request final : public web::Request {
public:
    explicit Request(std::string authorization) : authorization(std::move(authorization)) {}

    Method GetMethod() const override { return Method::Get; }

    std::string_view GetTarget() const override { return Target; }

    std::string_view GetBody() const override { return {}; }

    std::map<std::string_view, std::string_view> GetFields() const override {
        return {{"Authorization", authorization}};
    }

private:
    std::string authorization;
};

/// What the host makes of an Authorization field.
struct Verdict {
    bool served = false;
    bool stale = false;
    std::string nonce; ///< of the new challenge
};

/// A password that no other party knows, and what asks for it.
struct Door {
    Door() : ha1(authentication::MakeHa1("admin", authentication::Realm, "secret")) { engine.SetHa1(ha1); }

    Verdict Ask(std::string authorization) {
        auto const refusal = digest.Refuse(Request(std::move(authorization)));
        if (!refusal) return {.served = true};
        auto const data = refusal->GetData();
        Require(static_cast<int>(data.GetStatus()) == 401, "who has not logged in is answered 401");
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

/// Makes the answer right for what else it says.
void Sign(Parameters& answer, std::string const& ha1) {
    answer["response"] = authentication::MakeDigestResponse({.ha1 = ha1,
                                                             .method = "GET",
                                                             .uri = answer["uri"],
                                                             .nonce = answer["nonce"],
                                                             .nonceCount = answer["nc"],
                                                             .clientNonce = answer["cnonce"],
                                                             .qop = answer["qop"]});
}

/// Whether a right answer of this form lets in.
bool IsTaken(Parameters& answer) {
    auto const& algorithm = answer["algorithm"];
    auto const& qop = answer["qop"];
    return !answer["username"].empty() && !answer["realm"].empty() && (qop.empty() || qop == "auth") &&
           (algorithm.empty() || boost::iequals(algorithm, "MD5"));
}

/// Whether an answer can be told from the next one to the same challenge.
bool IsCounted(Parameters& answer) {
    return !answer["qop"].empty() && !(answer["nc"].empty() && answer["cnonce"].empty());
}

void Check(Door& door, Parameters answer) {
    Require(ParseDigestParameters(Write(answer)) == answer, "what was read is read again when written out");
    bool const isForTarget = answer["uri"] == Target || answer["uri"] == Path;
    Sign(answer, door.ha1);
    auto const old = door.Ask(Write(answer));
    Require(!old.served, "a right answer to somebody else's challenge does not let in");
    if (isForTarget) Require(old.stale == IsTaken(answer), "a right answer to an old challenge gets a new one");

    answer["nonce"] = old.nonce;
    Sign(answer, door.ha1);
    auto const served = door.Ask(Write(answer)).served;
    if (isForTarget) Require(served == IsTaken(answer), "a right answer to a new challenge lets in");
    if (!IsTaken(answer)) Require(!served, "an answer of a form that is not offered does not let in");
    if (!served) return;

    auto const again = door.Ask(Write(answer));
    Require(again.served != IsCounted(answer), "an answer lets in once, unless it has neither count nor client nonce");
    Require(again.served || again.stale, "a right answer that has been used gets a new challenge");
}

} // namespace
} // namespace zarn::fuzz

/// A field lets nobody in who does not know the password, whatever it says, and lets in who answers the challenge
/// rightly, in whatever form; what is read of it is the same once it is written out again.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace zarn::fuzz;
    std::string const field(reinterpret_cast<char const*>(data), size);
    // The web server lets no such fields through.
    if (size > MaximumLength || field.find_first_of(std::string("\0\r\n", 3)) != std::string::npos) return 0;
    Door door;
    auto const verdict = door.Ask(field);
    Require(!verdict.served && !verdict.stale, "who does not know the password is not let in");
    if (auto parameters = ParseDigestParameters(field)) Check(door, *std::move(parameters));
    return 0;
}
