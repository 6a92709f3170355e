#pragma once

#include <chrono>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zarn::chrono {

/// A text is not a valid time or duration, or the value cannot be represented.
/// The text of the error quotes what was given, on one line and cut short, and names what is wrong with it, such as
/// `ISO 8601 duration "PT5X": one of the units H, M, S, in this order, expected at "X"`.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// How far the local time of a zone is ahead of UTC; 0 is UTC. At most 14 hours either way.
using TimeZone = std::chrono::minutes;

/// Reads an absolute time, an `xsd:dateTime`: `[-]YYYY-MM-DDThh:mm:ss[.fraction][Z|+hh:mm|-hh:mm]`.
/// A text without a zone is UTC. Years may have more than four digits; 24:00:00 is the start of the next day; digits
/// of the fraction beyond nanoseconds are dropped; white space around the text is ignored.
/// A time that the clock cannot represent (it ends in the year 2262 and begins in 1677) becomes the end or the
/// beginning of the clock, so that "for ever" and "long ago" keep their meaning; nothing wraps.
/// Throws Error when the text is not such a time. Thread: any.
/// Source: ISO 8601; W3C XML Schema 1.1 Part 2, 3.3.7 dateTime.
std::chrono::system_clock::time_point FromIso8601(std::string_view text);

/// Writes a time as an `xsd:dateTime`, such as "2026-01-31T12:00:00.25Z": the fraction without trailing zeros and only
/// when there is one, up to nanoseconds; the zone as "Z" or as "+01:00". FromIso8601 reads it back exactly.
/// zone  the zone whose local time is written
/// Throws Error when the zone is more than 14 hours from UTC. Thread: any.
/// Source: as FromIso8601.
std::string ToIso8601(std::chrono::system_clock::time_point time, TimeZone zone);

} // namespace zarn::chrono
