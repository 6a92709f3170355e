#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::web {

/// Makes the nonces of digest challenges and recognises them again without keeping any, so that no number of challenges
/// takes memory or drives out others: a nonce is its time, its number and a keyed hash of both. The key is random and
/// lives as long as the object. Thread: any.
class Nonces {
public:
    using Clock = std::chrono::steady_clock;

    /// Throws std::runtime_error when the system gives no random bytes.
    Nonces();

    /// A nonce made at `now`, 64 hexadecimal characters; no two are the same.
    std::string Make(Clock::time_point now);

    /// When `nonce` was made, rounded down to a millisecond; none when it was not made here.
    std::optional<Clock::time_point> GetTime(std::string_view nonce) const;

private:
    std::string Sign(std::string_view text) const;

    std::array<unsigned char, 32> key;
    std::atomic<std::uint64_t> count = 0;
};

} // namespace zarn::host::web
