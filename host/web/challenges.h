#pragma once

#include "host/web/nonces.h"
#include "host/web/used_answers.h"

#include <zarn/authentication/replay_check.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

namespace zarn::host::web {

/// The nonces of all digest challenges that the web server sends, and whether an answer to one may be used: it may when
/// its nonce comes from here and is younger than its life, and with a count or a nonce of the client's only once.
/// Thread: any.
class Challenges final : public authentication::ReplayCheck {
public:
    using Clock = std::chrono::steady_clock;

    /// clock  what time it is
    /// Throws std::runtime_error when the system gives no random bytes.
    explicit Challenges(std::function<Clock::time_point()> clock = Clock::now);

    /// From now on nonces, older ones too, count for this long: 1 second to LongestLife.
    /// Throws std::invalid_argument for anything else.
    void SetLife(std::chrono::seconds value);

    /// A nonce for a new challenge.
    std::string MakeNonce();

    /// An answer with neither count nor client nonce cannot be told from another of the same client, so that it may be
    /// used as long as its nonce counts.
    bool Take(authentication::AnswerIdentity const& answer) override;

    static constexpr std::chrono::seconds LongestLife = UsedAnswers::LongestLife;

private:
    std::function<Clock::time_point()> clock;
    std::atomic<std::chrono::seconds> life = LongestLife;
    Nonces nonces;
    UsedAnswers used;
};

} // namespace zarn::host::web
