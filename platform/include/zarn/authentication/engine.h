#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>

namespace zarn::authentication {

/// What tells digest credentials from others for the same challenge. Source: RFC 7616, 3.4.
struct DigestUse {
    std::string_view nonce;  ///< of the challenge
    std::string_view nc;     ///< "nc" as the client wrote it; empty: the response covers none
    std::string_view cnonce; ///< "cnonce"; empty: the response covers none
};

/// Decides whether right digest credentials may be used, so that an eavesdropper cannot use them again. A host that
/// sends its own challenges gives one to its engine. Source: RFC 7616, 5.5.
class ReplayCheck {
public:
    ReplayCheck() = default;
    virtual ~ReplayCheck() = default;
    ReplayCheck(ReplayCheck const&) = delete;
    ReplayCheck& operator=(ReplayCheck const&) = delete;

    /// Called with right credentials only, before the request is served. True: it may be served, and the credentials
    /// are used up, if they can be. False: the nonce is not the host's or is stale, or the credentials have been used.
    /// Thread: any, several at once.
    virtual bool Accept(DigestUse const& credentials) = 0;
};

} // namespace zarn::authentication

/// The accounts of the host: one, "admin", known by its HA1. Until SetHa1 every login fails.
/// In the global namespace, with plain functions, because modules are built against these names. Thread: any.
class ZarnAuthenticationEngine {
public:
    /// Authentication is required, no password is set.
    /// replays  decides whether right credentials may be used; must outlive the engine. Null: any may, repeatedly and
    /// with any nonce
    explicit ZarnAuthenticationEngine(zarn::authentication::ReplayCheck* replays = nullptr);

    ZarnAuthenticationEngine(ZarnAuthenticationEngine const&) = delete;
    ZarnAuthenticationEngine& operator=(ZarnAuthenticationEngine const&) = delete;

    /// Whether requests have to authenticate.
    void SetEnabled(bool enabled) noexcept;

    /// Whether requests have to authenticate.
    bool IsEnabled() const noexcept;

    /// Sets the HA1 of "admin" (see zarn::authentication::MakeHa1): 32 hexadecimal characters of any case, or empty so
    /// that every login fails. Throws std::invalid_argument for anything else; the text does not repeat the value.
    void SetHa1(std::string ha1);

    /// The HA1 of a user in lower case; empty when there is no such user or no password is set.
    std::string GetHa1(std::string_view user) const;

    /// What decides whether right credentials may be used; may be null.
    zarn::authentication::ReplayCheck* GetReplayCheck() const noexcept { return replays; }

private:
    zarn::authentication::ReplayCheck* const replays;
    std::atomic<bool> enabled;
    mutable std::mutex mutex; ///< guards ha1
    std::string ha1;
};

/// True when requests have to authenticate; also without an engine, which then refuses every login.
bool ZarnAuthenticationIsEnabled(ZarnAuthenticationEngine const* engine);

/// True when `response` is the right one of `user` to the challenge with `nonce`, in the realm of the stored HA1.
/// component  the caller, for example "zarn.service.onvif"; does not change the result
/// empty      not used
/// user       only "admin" exists
/// response   32 lower-case hexadecimal characters; compared in constant time
/// qop        "auth", or empty for the older form of RFC 2069; anything else is refused
/// A null text counts as empty; a null engine refuses.
/// Right credentials are then shown to the engine's replay check, if it has one: false when that refuses them. A check
/// for a user that does not exist takes as long as one for "admin". Throws std::runtime_error when OpenSSL has no MD5.
/// Thread: any. Source: RFC 7616, 3.4.
bool ZarnAuthenticationCheckDigest(ZarnAuthenticationEngine const* engine, char const* component, char const* empty,
                                   char const* user, char const* response, char const* method, char const* uri,
                                   char const* nonce, char const* nc, char const* cnonce, char const* qop);
