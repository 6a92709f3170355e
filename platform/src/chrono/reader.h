#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::chrono {

/// Reads a time or duration from left to right. What is not as it should be ends in an Error that quotes the text.
class Reader {
public:
    /// kind  what the text should be, for errors, such as "ISO 8601 time"
    /// text  white space around it is ignored, as XML Schema does (whiteSpace="collapse")
    Reader(std::string_view kind, std::string_view text);

    /// Whether nothing is left.
    bool AtEnd() const noexcept { return rest.empty(); }

    /// The next character; empty at the end.
    std::optional<char> Peek() const noexcept;

    /// Skips a character; returns false, and does nothing, when another one is next.
    bool Skip(char character) noexcept;

    /// Skips a character; fails when another one is next.
    void Expect(char character);

    /// Reads the decimal digits that are next; there may be none.
    std::string_view ReadDigits() noexcept;

    /// Reads a number of exactly two digits.
    /// name  what it is, for errors
    unsigned ReadTwoDigits(std::string_view name, unsigned minimum, unsigned maximum);

    /// Reads a "." and the digits behind it, if a "." is next. Returns nanoseconds, further digits dropped; empty when
    /// there is no fraction.
    std::optional<std::int64_t> ReadFraction();

    /// What is left as errors quote it: cut short, on one line.
    std::string QuoteRest() const;

    /// Throws an Error that quotes the text and gives the reason.
    [[noreturn]] void Fail(std::string const& reason) const;

private:
    std::string_view kind;
    std::string_view text;
    std::string_view rest;
};

} // namespace zarn::chrono
