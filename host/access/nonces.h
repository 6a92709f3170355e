#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::host {

/// Makes nonces and recognises its own without keeping any, so that no number of challenges takes memory or pushes
/// others out: a nonce is its time, its number and a keyed hash of both. The random key lives as long as the object.
/// Thread: any.
class Nonces {
public:
    using Clock = std::chrono::steady_clock;

    /// Throws std::runtime_error when the system gives no random bytes.
    Nonces();

    /// A nonce made at `now`, 64 hexadecimal characters; no two are the same.
    std::string Make(Clock::time_point now);

    /// When `nonce` was made, rounded down to a millisecond; none when another object made it.
    std::optional<Clock::time_point> GetTime(std::string_view nonce) const;

private:
    std::string Sign(std::string_view text) const;

    std::array<unsigned char, 32> key;
    std::atomic<std::uint64_t> count = 0;
};

} // namespace zarn::host
