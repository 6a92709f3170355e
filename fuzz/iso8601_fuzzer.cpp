// Times and durations in requests from clients and in events from other programs.
#include "require.h"

#include <zarn/chrono/add.h>
#include <zarn/chrono/duration/iso8601.h>
#include <zarn/chrono/iso8601.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::fuzz {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::system_clock;

constexpr std::size_t MaximumLength = 4096;
constexpr std::size_t LongestError = 512;

constexpr std::array Zones{0min, 330min, -210min, 840min, -840min};

/// Start times for durations: the limits of the clock, and days for which calendar months matter.
constexpr std::array Starts{Clock::time_point::min(), Clock::time_point::max(),
                            Clock::time_point(std::chrono::sys_days{2028y / 1 / 31})};

template <class Read>
auto TryTo(Read const& read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (chrono::Error const& error) {
        Require(IsLine(error.what(), LongestError), "an error is one short line");
        return std::nullopt;
    }
}

std::string_view Trim(std::string_view text) {
    constexpr std::string_view WhiteSpace = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(WhiteSpace), text.size()));
    return text.substr(0, text.find_last_not_of(WhiteSpace) + 1);
}

void CheckTime(std::string_view text) {
    auto const time = TryTo([&] { return chrono::FromIso8601(text); });
    if (!time) return;
    for (auto const zone : Zones) {
        auto const written = chrono::ToIso8601(*time, zone);
        auto const read = TryTo([&] { return chrono::FromIso8601(written); });
        Require(read == time, "a time that was written is read back exactly, whatever the zone");
        Require(chrono::ToIso8601(*read, zone) == written, "the same time is written the same way");
    }
}

void CheckSpanFrom(Clock::time_point start, std::chrono::nanoseconds span) {
    auto const end = chrono::Add(start, span);
    Require(span < 0ns || end >= start, "a span that is not negative leads nowhere before its start");
    Require(span > 0ns || end <= start, "a span that is not positive leads nowhere behind its start");
}

/// Checks a duration without years and months, whose lengths depend on the calendar.
void CheckExactSpan(std::string_view text, std::optional<std::chrono::nanoseconds> span) {
    for (auto const start : Starts) {
        Require(TryTo([&] { return chrono::duration::FromIso8601(text, start); }) == span,
                "without years and months the start plays no part");
    }
    if (!span || *span == std::chrono::nanoseconds::max() || !text.starts_with('P')) return;
    auto const opposite = TryTo([&] { return chrono::duration::FromIso8601('-' + std::string(text), Starts.back()); });
    Require(opposite == -*span, "a sign turns the span round");
}

void CheckSpan(std::string_view text) {
    for (auto const start : Starts) {
        auto const span = TryTo([&] { return chrono::duration::FromIso8601(text, start); });
        if (span) CheckSpanFrom(start, *span);
    }
    auto const trimmed = Trim(text);
    bool const isExact = trimmed.substr(0, trimmed.find('T')).find_first_of("YM") == std::string_view::npos;
    if (isExact) CheckExactSpan(trimmed, TryTo([&] { return chrono::duration::FromIso8601(text, Starts.back()); }));
}

} // namespace
} // namespace zarn::fuzz

/// A text is either refused with a one-line error or is a time that survives writing and reading in every zone. The
/// same holds for durations, which stay within the clock's range.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace zarn::fuzz;
    return CheckInput(data, size, MaximumLength, [](std::string_view text) {
        CheckTime(text);
        CheckSpan(text);
    });
}
