// Analytics events from other programs, over HTTP or MQTT.
#include "host/events/read_events.h"
#include "require.h"

#include <zarn/meta/data/object.h>

#include <cstdint>
#include <string_view>

namespace zarn::fuzz {
namespace {

using host::events::MaximumEvents;
using host::events::MaximumTextBytes;

constexpr std::size_t MaximumLength = std::size_t{256} * 1024;
constexpr std::size_t LongestError = 1024;
constexpr std::chrono::system_clock::time_point Now{std::chrono::seconds(1'770'000'000)};

void Check(meta::data::Event const& event) {
    Require(!event.GetType().empty(), "an event has a type");
    Require(event.GetType().size() <= MaximumTextBytes, "a type is short");
    Require(event.GetName().size() <= MaximumTextBytes, "a name is short");
}

} // namespace
} // namespace zarn::fuzz

/// A text is either refused with a one-line error or yields a bounded number of events with bounded texts; reading it
/// again yields the same number.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace zarn::fuzz;
    using zarn::host::events::ReadEvents;
    return CheckInput(data, size, MaximumLength, [](std::string_view text) {
        try {
            auto const events = ReadEvents(text, Now);
            Require(events.size() <= MaximumEvents, "a text holds a bounded number of events");
            for (auto const& event : events) Check(*event);
            Require(ReadEvents(text, Now).size() == events.size(), "reading depends on the text only");
        } catch (zarn::host::events::ReadError const& error) {
            Require(IsLine(error.what(), LongestError), "an error is one short line");
        }
    });
}
