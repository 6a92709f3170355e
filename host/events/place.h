#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zarn::host::events {

/// Where in a text of events a value stands. Costs nothing until it is written. A place refers to the one that it is
/// in, and to the key, which must both outlive it.
class Place {
public:
    /// event  the index of the event, from 0
    static Place Event(std::size_t event) { return {nullptr, {}, event}; }

    /// A field of the object that stands here.
    Place Field(std::string_view key) const { return {this, key, 0}; }

    /// An element of the list that stands here.
    Place Element(std::size_t index) const { return {this, {}, index}; }

    /// The place for a person: `event 2: objects[1].id`. Keys that are no plain words are quoted.
    std::string ToString() const;

    /// Throws ReadError for this place.
    [[noreturn]] void Refuse(std::string const& why) const;

private:
    Place(Place const* outer, std::string_view name, std::size_t number) : outer(outer), key(name), index(number) {}

    Place const* outer;
    std::string_view key; ///< null: an event, or an element of a list
    std::size_t index;
};

} // namespace zarn::host::events
