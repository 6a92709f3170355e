#include <zarn/authentication/digest.h>
#include <zarn/authentication/engine.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::string_view Administrator = "admin";
constexpr std::size_t Ha1Length = 32;

std::string_view View(char const* text) { return text == nullptr ? std::string_view() : std::string_view(text); }

char ToLower(char character) {
    return 'A' <= character && character <= 'F' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool IsLowerHex(char character) {
    return ('0' <= character && character <= '9') || ('a' <= character && character <= 'f');
}

/// Compared with when there is no account, so that the time taken does not reveal that.
constexpr std::string_view DummyHa1 = "00000000000000000000000000000000";

} // namespace

ZarnAuthenticationEngine::ZarnAuthenticationEngine(zarn::authentication::ReplayCheck* replays)
    : replays(replays), enabled(true) {}

void ZarnAuthenticationEngine::SetEnabled(bool value) noexcept { enabled = value; }

bool ZarnAuthenticationEngine::IsEnabled() const noexcept { return enabled; }

void ZarnAuthenticationEngine::SetHa1(std::string value) {
    std::ranges::transform(value, value.begin(), ToLower);
    if (!value.empty() && (value.size() != Ha1Length || !std::ranges::all_of(value, IsLowerHex))) {
        throw std::invalid_argument("HA1 of admin: not 32 hexadecimal characters");
    }
    std::lock_guard const lock(mutex);
    ha1 = std::move(value);
}

std::string ZarnAuthenticationEngine::GetHa1(std::string_view user) const {
    if (user != Administrator) return {};
    std::lock_guard const lock(mutex);
    return ha1;
}

bool ZarnAuthenticationIsEnabled(ZarnAuthenticationEngine const* engine) {
    return engine == nullptr || engine->IsEnabled();
}

bool ZarnAuthenticationCheckDigest(ZarnAuthenticationEngine const* engine, char const* /*component*/,
                                   char const* /*empty*/, char const* user, char const* response, char const* method,
                                   char const* uri, char const* nonce, char const* nc, char const* cnonce,
                                   char const* qop) {
    if (engine == nullptr) return false;
    if (!View(qop).empty() && View(qop) != "auth") return false;
    auto const ha1 = engine->GetHa1(View(user));
    bool const isRight = zarn::authentication::IsDigestResponse({.ha1 = ha1.empty() ? DummyHa1 : std::string_view(ha1),
                                                                 .method = View(method),
                                                                 .uri = View(uri),
                                                                 .nonce = View(nonce),
                                                                 .nc = View(nc),
                                                                 .cnonce = View(cnonce),
                                                                 .qop = View(qop)},
                                                                View(response));
    if (!isRight || ha1.empty()) return false;
    auto* const replays = engine->GetReplayCheck();
    if (replays == nullptr) return true;
    // Without qop the response covers neither nc nor cnonce: an attacker who repeats it may change both.
    if (View(qop).empty()) return replays->Accept({.nonce = View(nonce), .nc = {}, .cnonce = {}});
    return replays->Accept({.nonce = View(nonce), .nc = View(nc), .cnonce = View(cnonce)});
}
