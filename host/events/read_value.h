#pragma once

#include "host/events/place.h"
#include "host/events/quote.h"

#include <boost/json/fwd.hpp>
#include <boost/json/value.hpp>

#include <cstddef>
#include <limits>
#include <string>
#include <utility>

namespace zarn::host::events {

/// "a number from 0 to 255": what a number of this type may be.
template <class T>
std::string DescribeRange() {
    return "a number from " + std::to_string(std::numeric_limits<T>::min()) + " to " +
           std::to_string(std::numeric_limits<T>::max());
}

/// A whole number that a T can hold. Throws ReadError for anything else, also for 1.0.
template <class T>
T ReadNumber(boost::json::value const& value, Place const& place) {
    if (auto const* number = value.if_int64(); number && std::in_range<T>(*number)) return static_cast<T>(*number);
    place.Refuse(Quote(value) + " is not " + DescribeRange<T>());
}

/// A text of at most MaximumTextBytes without characters that XML 1.0 cannot carry (C0 without tab, line feed and
/// carriage return; U+FFFE; U+FFFF), since it becomes part of messages. Throws ReadError for anything else.
std::string ReadText(boost::json::value const& value, Place const& place);

/// A list of at most `most` elements. Throws ReadError for anything else.
boost::json::array const& ReadList(boost::json::value const& value, Place const& place, std::size_t most);

/// An object. Throws ReadError for anything else.
boost::json::object const& ReadObject(boost::json::value const& value, Place const& place);

} // namespace zarn::host::events
