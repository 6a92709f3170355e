#pragma once

#include <boost/json/value.hpp>

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::host::events {

/// Where in a text of events a value is. Costs nothing until it is written. A path refers to the path of the value
/// around it, and to the key, which must both outlive it.
class ValuePath {
public:
    /// event  the index of the event, from 0
    static ValuePath Event(std::size_t event) { return {nullptr, {}, event}; }

    /// A field of the object at this path.
    ValuePath Field(std::string_view key) const { return {this, key, 0}; }

    /// An element of the list at this path.
    ValuePath Element(std::size_t index) const { return {this, {}, index}; }

    /// The path for a person: `event 2: objects[1].id`. Keys that are not plain words are quoted.
    std::string ToString() const;

    /// Throws ReadError for the value at this path.
    [[noreturn]] void Refuse(std::string const& why) const;

private:
    ValuePath(ValuePath const* outer, std::string_view name, std::size_t number)
        : outer(outer), key(name), index(number) {}

    ValuePath const* outer;
    std::string_view key; ///< null: an event, or an element of a list
    std::size_t index;
};

/// Parses a text of events: one object, or a list. Beside the grammar of JSON (RFC 8259) it enforces the bounds in
/// read_events.h and refuses a key that occurs twice in an object. The text must be UTF-8.
/// Throws ReadError that names the position or the path.
boost::json::value ParseDocument(std::string_view text);

/// A value as messages quote it: as JSON, cut short when it is long; "a list" or "an object" for those.
std::string Quote(boost::json::value const& value);

/// "a number from 0 to 255": the values that a number of this type may have.
template <class T>
std::string DescribeRange() {
    return "a number from " + std::to_string(std::numeric_limits<T>::min()) + " to " +
           std::to_string(std::numeric_limits<T>::max());
}

/// A whole number that a T can hold. Throws ReadError for anything else, also for 1.0.
template <class T>
T ReadNumber(boost::json::value const& value, ValuePath const& path) {
    if (auto const* number = value.if_int64(); number && std::in_range<T>(*number)) return static_cast<T>(*number);
    path.Refuse(Quote(value) + " is not " + DescribeRange<T>());
}

/// A text of at most MaximumTextBytes that XML 1.0 can carry, since it becomes part of messages. Throws ReadError for
/// anything else.
std::string ReadText(boost::json::value const& value, ValuePath const& path);

/// A list of at most `most` elements. Throws ReadError for anything else.
boost::json::array const& ReadList(boost::json::value const& value, ValuePath const& path, std::size_t most);

/// An object. Throws ReadError for anything else.
boost::json::object const& ReadObject(boost::json::value const& value, ValuePath const& path);

} // namespace zarn::host::events
