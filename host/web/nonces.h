#pragma once

#include <array>
#include <chrono>
#include <string>
#include <string_view>

namespace zarn::host::web {

/// Makes the nonces of digest challenges and recognises them again without keeping any: a nonce is its time and a keyed
/// hash of it. The key is random and lives as long as the object. Thread: any.
class Nonces {
public:
    using Clock = std::chrono::steady_clock;

    /// Throws std::runtime_error when the system gives no random bytes.
    Nonces();

    /// A nonce made at `now`, 48 hexadecimal characters.
    std::string Make(Clock::time_point now = Clock::now()) const;

    /// Whether `nonce` was made here and within Lifetime before `now`.
    bool IsFresh(std::string_view nonce, Clock::time_point now = Clock::now()) const;

    static constexpr std::chrono::minutes Lifetime{5};

private:
    std::string Sign(std::string_view time) const;

    std::array<unsigned char, 32> key;
};

} // namespace zarn::host::web
