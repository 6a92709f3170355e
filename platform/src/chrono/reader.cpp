#include "chrono/reader.h"

#include <zarn/chrono/iso8601.h>
#include <zarn/logging/format.h>
#include <zarn/text/character.h>

#include <cstddef>

namespace zarn::chrono {

namespace {

constexpr std::string_view Digits = "0123456789";

/// Enough to recognise what was meant; a client may send anything.
constexpr std::size_t QuoteLimit = 64;

std::string Quote(std::string_view text) { return '"' + logging::ToLine(text, QuoteLimit) + '"'; }

} // namespace

Reader::Reader(std::string_view textKind, std::string_view whole)
    : kind(textKind), text(text::Trim(whole)), rest(text) {}

std::optional<char> Reader::Peek() const noexcept {
    if (rest.empty()) return std::nullopt;
    return rest.front();
}

bool Reader::Skip(char character) noexcept {
    if (Peek() != character) return false;
    rest.remove_prefix(1);
    return true;
}

void Reader::Expect(char character) {
    if (!Skip(character)) Fail(Quote({&character, 1}) + " expected at " + QuoteRest());
}

std::string_view Reader::ReadDigits() noexcept {
    auto const digits = rest.substr(0, rest.find_first_not_of(Digits));
    rest.remove_prefix(digits.size());
    return digits;
}

unsigned Reader::ReadTwoDigits(std::string_view name, unsigned minimum, unsigned maximum) {
    auto const place = QuoteRest();
    auto const digits = ReadDigits();
    if (digits.size() != 2) Fail("two digits of the " + std::string(name) + " expected at " + place);
    auto const number = static_cast<unsigned>((digits[0] - '0') * 10 + (digits[1] - '0'));
    if (number < minimum || number > maximum) {
        Fail("the " + std::string(name) + " " + std::string(digits) + " is not from " + std::to_string(minimum) +
             " to " + std::to_string(maximum));
    }
    return number;
}

std::optional<std::int64_t> Reader::ReadFraction() {
    if (!Skip('.')) return std::nullopt;
    auto const digits = ReadDigits();
    if (digits.empty()) Fail("digits expected behind the decimal point at " + QuoteRest());
    std::int64_t nanoseconds = 0;
    for (std::size_t place = 0; place < 9; ++place) {
        nanoseconds = nanoseconds * 10 + (place < digits.size() ? digits[place] - '0' : 0);
    }
    return nanoseconds;
}

std::string Reader::QuoteRest() const { return rest.empty() ? "the end" : Quote(rest); }

void Reader::Fail(std::string const& reason) const {
    throw Error(std::string(kind) + " " + Quote(text) + ": " + reason);
}

} // namespace zarn::chrono
