#pragma once

#include "host/events/read_error.h"

#include <zarn/meta/data/event.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace zarn::host::events {

/// Analytics events, in their order.
using Events = std::vector<std::shared_ptr<meta::data::Event>>;

/// Takes events one by one. Thread: any, several at once; the events of one thread stay in their order.
using EventSink = std::function<void(std::shared_ptr<meta::data::Event>)>;

/// Reads a text that holds one event as a JSON object, or a list of them. The fields stand in docs/events.md, the
/// bounds in bounds.h. All or nothing.
/// now  the start of events that do not tell theirs
/// Throws ReadError for the first thing that is wrong. Thread: any.
Events ReadEvents(std::string_view text, std::chrono::system_clock::time_point now);

/// Calls the sink with each event of a text, as ReadEvents reads it now. Returns their number.
std::size_t DeliverEvents(std::string_view text, EventSink const& sink);

} // namespace zarn::host::events
