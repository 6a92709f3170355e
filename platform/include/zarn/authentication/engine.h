#pragma once

#include <zarn/authentication/replay_check.h>

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>

/// The accounts of the host: one, "admin", known by its HA1. Until SetHa1 nobody can log in.
/// In the global namespace, with plain functions, because modules are built against these names. Thread: any.
class ZarnAuthenticationEngine {
public:
    /// Authentication is required, no password is set.
    /// replays  decides whether a right answer may be used; must outlive the engine. Null: every right answer may, as
    /// often as it comes, whoever made its nonce
    explicit ZarnAuthenticationEngine(zarn::authentication::ReplayCheck* replays = nullptr);

    ZarnAuthenticationEngine(ZarnAuthenticationEngine const&) = delete;
    ZarnAuthenticationEngine& operator=(ZarnAuthenticationEngine const&) = delete;

    /// Whether requests have to authenticate.
    void SetEnabled(bool enabled) noexcept;

    bool IsEnabled() const noexcept;

    /// Sets the HA1 of "admin" (see zarn::authentication::MakeHa1): 32 hexadecimal characters of any case, or empty so
    /// that nobody can log in. Throws std::invalid_argument for anything else; the text does not repeat the value.
    void SetHa1(std::string ha1);

    /// The HA1 of a user in lower case; empty when there is no such user or no password is set.
    std::string GetHa1(std::string_view user) const;

    /// What decides whether a right answer may be used; may be null.
    zarn::authentication::ReplayCheck* GetReplayCheck() const noexcept { return replays; }

private:
    zarn::authentication::ReplayCheck* const replays;
    std::atomic<bool> enabled;
    mutable std::mutex mutex; ///< guards ha1
    std::string ha1;
};

/// True when requests have to authenticate; also without an engine, which then refuses everybody.
bool ZarnAuthenticationIsEnabled(ZarnAuthenticationEngine const* engine);

/// True when `response` is the digest answer of `user` to the challenge with `nonce`, in the realm of the stored HA1.
/// component  who asks, for example "zarn.service.onvif"; does not change the answer
/// empty      not used
/// user       only "admin" exists
/// response   32 lower-case hexadecimal characters; compared in constant time
/// qop        "auth", or empty for the older form of RFC 2069; anything else is refused
/// A null text counts as empty; a null engine refuses.
/// A right answer is then shown to the engine's replay check, if it has one: false when that refuses it. An answer for
/// a user that does not exist takes as long as one for "admin". Throws std::runtime_error when OpenSSL has no MD5.
/// Thread: any. Source: RFC 2617, 3.2.2.
bool ZarnAuthenticationCheckDigest(ZarnAuthenticationEngine const* engine, char const* component, char const* empty,
                                   char const* user, char const* response, char const* method, char const* uri,
                                   char const* nonce, char const* nc, char const* cnonce, char const* qop);
