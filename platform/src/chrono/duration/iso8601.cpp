#include "chrono/reader.h"

#include <zarn/chrono/add.h>
#include <zarn/chrono/duration/iso8601.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <span>
#include <string>

namespace zarn::chrono::duration {

namespace {

using Clock = std::chrono::system_clock;

constexpr std::int64_t Second = 1'000'000'000;
constexpr std::int64_t Day = 86'400 * Second;

/// One letter of a duration and what it stands for.
struct Unit {
    char letter;
    std::int64_t months;
    std::int64_t nanoseconds;
};

constexpr std::array DateUnits{Unit{'Y', 12, 0}, Unit{'M', 1, 0}, Unit{'W', 0, 7 * Day}, Unit{'D', 0, Day}};
constexpr std::array TimeUnits{Unit{'H', 0, 3'600 * Second}, Unit{'M', 0, 60 * Second}, Unit{'S', 0, Second}};

std::string Letters(std::span<Unit const> units) {
    std::string letters;
    for (Unit const& unit : units) letters += (letters.empty() ? "" : ", ") + std::string(1, unit.letter);
    return letters;
}

/// Adds up the parts of a duration, all of one sign, so that a sum that does not fit never fits again.
class Sum {
public:
    explicit Sum(bool negative) : sign(negative ? -1 : 1) {}

    void Add(std::int64_t number, Unit const& unit) {
        AddProduct(months, number, unit.months);
        AddProduct(nanoseconds, number, unit.nanoseconds);
    }

    void AddNanoseconds(std::int64_t number) { AddProduct(nanoseconds, number, 1); }

    /// The whole span, with the months of the calendar from now on.
    std::chrono::nanoseconds Get(Clock::time_point now) {
        if (months != 0) AddProduct(nanoseconds, sign * GetDays(now), Day);
        return std::chrono::nanoseconds(nanoseconds);
    }

private:
    void AddProduct(std::int64_t& sum, std::int64_t number, std::int64_t factor) const {
        sum = AddSaturated(sum, MultiplySaturated(number, sign * factor));
    }

    std::int64_t GetDays(Clock::time_point now) const {
        // More than the clock is long in all; the calendar's own years end at 32767.
        constexpr std::int64_t LongestMonths = std::int64_t{12} * 600;
        constexpr std::int64_t LongestDays = std::int64_t{366} * 600;
        if (months > LongestMonths) return LongestDays;
        if (months < -LongestMonths) return -LongestDays;
        auto const today = std::chrono::floor<std::chrono::days>(now);
        std::chrono::year_month_day const from(today);
        std::chrono::year_month const month =
            std::chrono::year_month(from.year(), from.month()) + std::chrono::months(months);
        std::chrono::year_month_day_last const last(month.year(), std::chrono::month_day_last(month.month()));
        std::chrono::year_month_day const to(month.year(), month.month(), std::min(from.day(), last.day()));
        return (std::chrono::sys_days(to) - today).count();
    }

    std::int64_t sign;
    std::int64_t months = 0;
    std::int64_t nanoseconds = 0;
};

/// The number, or the largest one when it is larger.
std::int64_t ToNumber(std::string_view digits) {
    auto number = std::numeric_limits<std::int64_t>::max();
    std::from_chars(digits.data(), digits.data() + digits.size(), number); // leaves it when there are too many digits
    return number;
}

/// Reads numbers with their units, which come in the order of the list, each at most once. Returns whether there was
/// any.
bool ReadParts(Reader& reader, Sum& sum, std::span<Unit const> units) {
    auto next = units.begin();
    for (auto digits = reader.ReadDigits(); !digits.empty(); digits = reader.ReadDigits()) {
        auto const fraction = reader.ReadFraction();
        auto const unit =
            std::find_if(next, units.end(), [&](Unit const& candidate) { return reader.Skip(candidate.letter); });
        if (unit == units.end()) {
            reader.Fail("one of the units " + Letters(units) + ", in this order, expected at " + reader.QuoteRest());
        }
        if (fraction && unit->nanoseconds != Second) reader.Fail("only seconds can have a fraction");
        sum.Add(ToNumber(digits), *unit);
        sum.AddNanoseconds(fraction.value_or(0));
        next = unit + 1;
    }
    return next != units.begin();
}

} // namespace

std::chrono::nanoseconds FromIso8601(std::string_view text, Clock::time_point now) {
    Reader reader("ISO 8601 duration", text);
    Sum sum(reader.Skip('-'));
    reader.Expect('P');
    bool const hasDateParts = ReadParts(reader, sum, DateUnits);
    bool const hasTime = reader.Skip('T');
    bool const hasTimeParts = hasTime && ReadParts(reader, sum, TimeUnits);
    if (!reader.AtEnd() || hasTime != hasTimeParts || (!hasDateParts && !hasTimeParts)) {
        reader.Fail("a number with its unit expected at " + reader.QuoteRest());
    }
    return sum.Get(now);
}

} // namespace zarn::chrono::duration
