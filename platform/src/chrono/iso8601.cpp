#include "chrono/reader.h"

#include <zarn/chrono/iso8601.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zarn::chrono {

namespace {

using Clock = std::chrono::system_clock;
static_assert(std::is_same_v<Clock::duration, std::chrono::nanoseconds>);

constexpr std::int64_t Second = 1'000'000'000;
constexpr std::chrono::hours FurthestZone(14);

struct Date {
    /// The day, when the year has four digits. A longer year is read as its last four digits: the calendar repeats
    /// every 400 years, so they tell whether the day exists.
    std::chrono::year_month_day day;
    /// Whether the year has more than four digits; no clock reaches there.
    bool remote;
    bool beforeChrist;
};

Date ReadDate(Reader& reader) {
    bool const negative = reader.Skip('-');
    auto const place = reader.QuoteRest();
    auto const digits = reader.ReadDigits();
    if (digits.size() < 4) reader.Fail("at least four digits of the year expected at " + place);
    if (digits.size() > 4 && digits.front() == '0') reader.Fail("a year of more than four digits begins with 0");
    int year = 0;
    for (char const digit : digits.substr(digits.size() - 4)) year = year * 10 + (digit - '0');

    reader.Expect('-');
    unsigned const month = reader.ReadTwoDigits("month", 1, 12);
    reader.Expect('-');
    unsigned const day = reader.ReadTwoDigits("day", 1, 31);
    std::chrono::year_month_day const date{std::chrono::year(negative ? -year : year), std::chrono::month(month),
                                           std::chrono::day(day)};
    if (!date.ok()) reader.Fail("the month has no day " + std::to_string(day));
    return {date, digits.size() > 4, negative};
}

/// The time of the day in nanoseconds from its start.
std::chrono::nanoseconds ReadTimeOfDay(Reader& reader) {
    std::chrono::hours const hour(reader.ReadTwoDigits("hour", 0, 24));
    reader.Expect(':');
    std::chrono::minutes const minute(reader.ReadTwoDigits("minute", 0, 59));
    reader.Expect(':');
    std::chrono::seconds const second(reader.ReadTwoDigits("second", 0, 59));
    std::chrono::nanoseconds const fraction(reader.ReadFraction().value_or(0));
    std::chrono::nanoseconds const time = hour + minute + second + fraction;
    if (time > std::chrono::hours(24)) reader.Fail("the day ends at 24:00:00");
    return time;
}

TimeZone ReadZone(Reader& reader) {
    if (reader.AtEnd() || reader.Skip('Z')) return TimeZone(0);
    bool const negative = reader.Skip('-');
    if (!negative && !reader.Skip('+')) reader.Fail(reader.QuoteRest() + " is not a time zone (Z, +hh:mm or -hh:mm)");
    std::chrono::hours const hour(reader.ReadTwoDigits("hour of the time zone", 0, 14));
    reader.Expect(':');
    std::chrono::minutes const minute(reader.ReadTwoDigits("minute of the time zone", 0, 59));
    TimeZone const zone = hour + minute;
    if (zone > FurthestZone) reader.Fail("the time zone is more than 14 hours from UTC");
    return negative ? -zone : zone;
}

/// The time of the clock, or its end or beginning when it lies beyond.
Clock::time_point OnTheClock(std::chrono::sys_seconds time, std::chrono::nanoseconds fraction) {
    auto const most = std::chrono::floor<std::chrono::seconds>(Clock::duration::max());
    std::chrono::seconds const seconds = time.time_since_epoch();
    // The first and the last second are part of the clock only in part: they are counted from the second beside them.
    if (seconds > most || (seconds == most && fraction > Clock::duration::max() - most))
        return Clock::time_point::max();
    if (seconds >= std::chrono::seconds(0)) return Clock::time_point(seconds + fraction);
    std::chrono::nanoseconds const back = fraction - std::chrono::seconds(1);
    std::chrono::seconds const next = seconds + std::chrono::seconds(1);
    if (next < -most || (next == -most && back < Clock::duration::min() + most)) return Clock::time_point::min();
    return Clock::time_point(next + back);
}

void AppendNumber(std::string& text, int number, std::size_t width) {
    auto const digits = std::to_string(number);
    text.append(width - std::min(width, digits.size()), '0').append(digits);
}

void AppendFraction(std::string& text, std::int64_t nanoseconds) {
    if (nanoseconds == 0) return;
    text += '.';
    AppendNumber(text, static_cast<int>(nanoseconds), 9);
    text.erase(text.find_last_not_of('0') + 1);
}

void AppendZone(std::string& text, TimeZone zone) {
    if (zone == TimeZone(0)) {
        text += 'Z';
        return;
    }
    text += zone < TimeZone(0) ? '-' : '+';
    auto const minutes = static_cast<int>(std::chrono::abs(zone).count());
    AppendNumber(text, minutes / 60, 2);
    text += ':';
    AppendNumber(text, minutes % 60, 2);
}

} // namespace

Clock::time_point FromIso8601(std::string_view text) {
    Reader reader("ISO 8601 time", text);
    Date const date = ReadDate(reader);
    reader.Expect('T');
    auto const timeOfDay = ReadTimeOfDay(reader);
    TimeZone const zone = ReadZone(reader);
    if (!reader.AtEnd()) reader.Fail(reader.QuoteRest() + " stands behind the time");

    if (date.remote) return date.beforeChrist ? Clock::time_point::min() : Clock::time_point::max();
    auto const seconds = std::chrono::floor<std::chrono::seconds>(timeOfDay);
    return OnTheClock(std::chrono::sys_days(date.day) + seconds - zone, timeOfDay - seconds);
}

std::string ToIso8601(Clock::time_point time, TimeZone zone) {
    if (std::chrono::abs(zone) > FurthestZone) throw Error("a time zone is at most 14 hours from UTC");
    std::int64_t const count = time.time_since_epoch().count();
    // Not std::chrono::floor: the second in which the clock begins cannot be told in nanoseconds.
    std::int64_t const fraction = (count % Second + Second) % Second;
    std::int64_t const seconds = count / Second - (count % Second < 0 ? 1 : 0);
    std::chrono::sys_seconds const local(std::chrono::seconds(seconds) + zone);
    auto const days = std::chrono::floor<std::chrono::days>(local);
    std::chrono::year_month_day const date(days);
    std::chrono::hh_mm_ss const clock(local - days);

    std::string text;
    AppendNumber(text, static_cast<int>(date.year()), 4);
    text += '-';
    AppendNumber(text, static_cast<int>(static_cast<unsigned>(date.month())), 2);
    text += '-';
    AppendNumber(text, static_cast<int>(static_cast<unsigned>(date.day())), 2);
    text += 'T';
    AppendNumber(text, static_cast<int>(clock.hours().count()), 2);
    text += ':';
    AppendNumber(text, static_cast<int>(clock.minutes().count()), 2);
    text += ':';
    AppendNumber(text, static_cast<int>(clock.seconds().count()), 2);
    AppendFraction(text, fraction);
    AppendZone(text, zone);
    return text;
}

} // namespace zarn::chrono
