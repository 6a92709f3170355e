#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>

namespace zarn::host::video::rtsp {

/// Slows down the guessing of passwords: an address that gave too many wrong answers within a minute is not heard for
/// the rest of that minute. Thread: any.
class GuessLimit {
public:
    using Clock = std::chrono::steady_clock;

    /// How many wrong answers an address may give within a minute.
    static constexpr std::size_t Maximum = 60;

    /// How many addresses are remembered; when there are more, the oldest is forgotten.
    static constexpr std::size_t MaximumAddresses = 4096;

    /// An address gave a wrong answer.
    void Count(std::string const& address, Clock::time_point now);

    /// True when an address is not to be heard.
    bool IsReached(std::string const& address, Clock::time_point now) const;

    /// How many addresses are remembered.
    std::size_t GetAddressCount() const;

private:
    struct Minute {
        Clock::time_point begin;
        std::size_t wrong = 0;
    };

    mutable std::mutex mutex; ///< guards the following
    std::map<std::string, Minute> minutes;
};

} // namespace zarn::host::video::rtsp
