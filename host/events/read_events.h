#pragma once

#include <zarn/meta/data/event.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace zarn::host::events {

/// The bounds of a text of events from any source. They are far above what a well-meaning program sends, and keep the
/// memory that a text can cost in proportion to its length.
inline constexpr std::size_t MaximumDocumentBytes = std::size_t{16} * 1024 * 1024;
inline constexpr std::size_t MaximumDepth = 8;      ///< levels of lists and objects within each other; events need four
inline constexpr std::size_t MaximumEvents = 10000; ///< elements of a list, which for the outermost one are events
inline constexpr std::size_t MaximumFields = 32;    ///< of one object
inline constexpr std::size_t MaximumObjects = 1000; ///< tracked objects of one event
inline constexpr std::size_t MaximumValues = 64;    ///< channels of one event, and likewise zones and counts
inline constexpr std::size_t MaximumTextBytes = 256; ///< of a type, name or class, in UTF-8

/// A text does not hold events. The message names the event (counted from 1), the field (elements of lists counted from
/// 0) and the rule, such as `event 2: objects[1].id: "x" is not a number from 0 to 4294967295`. It is one line of UTF-8
/// without control characters, a few hundred bytes at most, whatever the text was.
class ReadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Analytics events, in their order.
using Events = std::vector<std::shared_ptr<meta::data::Event>>;

/// Takes events one by one. Thread: any, several at once; the events of one thread stay in their order.
using EventSink = std::function<void(std::shared_ptr<meta::data::Event>)>;

/// Reads a text that holds one event as a JSON object, or a list of them. docs/events.md lists the fields.
/// now  the start of events that have none
/// Throws ReadError for the first error; then no event is read. Thread: any.
Events ReadEvents(std::string_view text, std::chrono::system_clock::time_point now);

/// Calls the sink with each event of a text, as ReadEvents reads it now. Returns their number.
std::size_t DeliverEvents(std::string_view text, EventSink const& sink);

} // namespace zarn::host::events
