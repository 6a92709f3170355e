#pragma once

#include "host/access/nonces.h"
#include "host/access/used_responses.h"

#include <zarn/authentication/engine.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

namespace zarn::host::web {

/// The nonces of the web server's challenges, and which responses to them may be used: a response whose nonce was made
/// here and is younger than its life; with a nonce count or a client nonce, only once. Thread: any.
class Challenges final : public authentication::ReplayCheck {
public:
    using Clock = Nonces::Clock;

    static constexpr std::chrono::seconds LongestLife = UsedResponses::LongestLife;

    /// clock  what time it is
    /// Throws std::runtime_error when the system gives no random bytes.
    explicit Challenges(std::function<Clock::time_point()> clock = Clock::now);

    /// Sets how long nonces are valid, also those made before: 1 second to LongestLife.
    /// Throws std::invalid_argument for anything else.
    void SetLife(std::chrono::seconds value);

    /// A nonce for a new challenge.
    std::string MakeNonce();

    /// A response with neither nc nor cnonce cannot be told from another one of the same client, so that
    /// it may be used as long as its nonce is valid.
    bool Accept(authentication::DigestUse const& response) override;

private:
    std::function<Clock::time_point()> clock;
    std::atomic<std::chrono::seconds> life = LongestLife;
    Nonces nonces;
    UsedResponses used;
};

} // namespace zarn::host::web
