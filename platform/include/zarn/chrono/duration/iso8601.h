#pragma once

#include <zarn/chrono/iso8601.h>

#include <chrono>
#include <string_view>

namespace zarn::chrono::duration {

/// Reads a duration, an `xsd:duration`: `[-]PnYnMnDTnHnMn[.fraction]S` with at least one of its parts;
/// weeks (`nW`, between months and days) are read too.
/// Years and months are those of the calendar (UTC) from `now` on: one month from January 31 ends on the last day of
/// February. Digits of the fraction beyond nanoseconds are dropped; white space around the text is ignored.
/// now  where the duration starts; without years and months it plays no part
/// Returns how far the end of the duration is from now, in nanoseconds; negative for `-P…`. A span that does not fit in
/// nanoseconds (it is longer than about 292 years) becomes the longest that does.
/// Throws Error when the text is not such a duration.
/// Thread: any.
/// Source: ISO 8601; W3C XML Schema 1.1 Part 2, 3.3.6 duration; XML Schema 1.0 Part 2, appendix E.
std::chrono::nanoseconds FromIso8601(std::string_view text,
                                     std::chrono::system_clock::time_point now = std::chrono::system_clock::now());

} // namespace zarn::chrono::duration
