#include "host/events/read_events.h"

#include "host/events/bounds.h"
#include "host/events/parse_document.h"
#include "host/events/read_value.h"

#include <zarn/chrono/error.h>
#include <zarn/chrono/iso8601.h>
#include <zarn/meta/data/channel.h>
#include <zarn/meta/data/classification/confidence.h>
#include <zarn/meta/data/classification/name.h>
#include <zarn/meta/data/count/value.h>
#include <zarn/meta/data/object.h>
#include <zarn/meta/data/zone.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace zarn::host::events {
namespace {

namespace data = meta::data;
namespace json = boost::json;
using Time = std::chrono::system_clock::time_point;

/// What has been read of an event, whose fields may come in any order.
struct EventDraft {
    std::string type;
    std::string name;
    std::optional<Time> start;
    std::vector<std::shared_ptr<object::Object const>> parts;
};

struct ObjectDraft {
    std::optional<std::uint32_t> id;
    std::vector<std::shared_ptr<object::Object const>> parts;
};

struct ZoneDraft {
    std::optional<std::uint32_t> type;
};

/// One row of a table of fields.
template <class Draft>
struct Field {
    std::string_view name;
    void (*read)(json::value const& value, Place const& place, Draft& draft);
};

/// Reads an object whose fields are those of a table.
template <class Draft>
Draft ReadFields(std::span<Field<Draft> const> fields, json::value const& value, Place const& place) {
    Draft draft;
    for (auto const& member : ReadObject(value, place)) {
        std::string_view const key(member.key().data(), member.key().size());
        auto const field = std::find_if(fields.begin(), fields.end(), [&](auto const& row) { return row.name == key; });
        auto const here = place.Field(key);
        if (field == fields.end()) here.Refuse("there is no such field");
        field->read(member.value(), here, draft);
    }
    return draft;
}

std::uint32_t ReadZoneType(json::value const& value, Place const& place) {
    if (value.is_string() && value.get_string() == "field") return data::Zone::Field;
    if (value.is_string() && value.get_string() == "line") return data::Zone::Line;
    if (value.is_int64()) return ReadNumber<std::uint32_t>(value, place);
    place.Refuse(Quote(value) + R"( is not "field", "line" or )" + DescribeRange<std::uint32_t>());
}

constexpr std::array ZoneFields{
    Field<ZoneDraft>{
        "type", [](auto const& value, auto const& place, auto& draft) { draft.type = ReadZoneType(value, place); }},
};

constexpr std::array ObjectFields{
    Field<ObjectDraft>{"id", [](auto const& value, auto const& place,
                                auto& draft) { draft.id = ReadNumber<std::uint32_t>(value, place); }},
    Field<ObjectDraft>{"class",
                       [](auto const& value, auto const& place, auto& draft) {
                           draft.parts.push_back(
                               std::make_shared<data::classification::Confidence>(ReadText(value, place)));
                       }},
    Field<ObjectDraft>{"name",
                       [](auto const& value, auto const& place, auto& draft) {
                           draft.parts.push_back(std::make_shared<data::classification::Name>(ReadText(value, place)));
                       }},
};

void ReadType(json::value const& value, Place const& place, EventDraft& draft) {
    draft.type = ReadText(value, place);
    if (draft.type.empty()) place.Refuse("is empty");
}

void ReadName(json::value const& value, Place const& place, EventDraft& draft) { draft.name = ReadText(value, place); }

void ReadStart(json::value const& value, Place const& place, EventDraft& draft) {
    auto const text = ReadText(value, place);
    try {
        draft.start = chrono::FromIso8601(text);
    } catch (chrono::Error const& error) {
        place.Refuse(error.what());
    }
}

void ReadChannel(json::value const& value, Place const& place, EventDraft& draft) {
    draft.parts.push_back(std::make_shared<data::Channel>(ReadNumber<std::uint32_t>(value, place)));
}

void ReadZone(json::value const& value, Place const& place, EventDraft& draft) {
    auto const zone = ReadFields<ZoneDraft>(ZoneFields, value, place);
    if (!zone.type) place.Field("type").Refuse("is missing");
    draft.parts.push_back(std::make_shared<data::Zone>(*zone.type));
}

void ReadCount(json::value const& value, Place const& place, EventDraft& draft) {
    draft.parts.push_back(std::make_shared<data::count::Value>(ReadNumber<std::int32_t>(value, place)));
}

void ReadTrackedObject(json::value const& value, Place const& place, EventDraft& draft) {
    auto const read = ReadFields<ObjectDraft>(ObjectFields, value, place);
    if (!read.id) place.Field("id").Refuse("is missing");
    auto const object = std::make_shared<data::Object>(*read.id);
    for (auto const& part : read.parts) object->Add(part);
    draft.parts.push_back(object);
}

/// A field that holds several of what another function reads.
template <auto ReadOne, std::size_t Most>
void ReadSeveral(json::value const& value, Place const& place, EventDraft& draft) {
    std::size_t index = 0;
    for (auto const& element : ReadList(value, place, Most)) ReadOne(element, place.Element(index++), draft);
}

constexpr std::array EventFields{
    Field<EventDraft>{"type", ReadType},
    Field<EventDraft>{"name", ReadName},
    Field<EventDraft>{"start", ReadStart},
    Field<EventDraft>{"channel", ReadChannel},
    Field<EventDraft>{"channels", ReadSeveral<ReadChannel, MaximumValues>},
    Field<EventDraft>{"zone", ReadZone},
    Field<EventDraft>{"zones", ReadSeveral<ReadZone, MaximumValues>},
    Field<EventDraft>{"objects", ReadSeveral<ReadTrackedObject, MaximumObjects>},
    Field<EventDraft>{"count", ReadCount},
    Field<EventDraft>{"counts", ReadSeveral<ReadCount, MaximumValues>},
};

/// What may be given once or as a list, but not both ways.
constexpr std::array Alternatives{
    std::pair<char const*, char const*>{"channel", "channels"},
    std::pair<char const*, char const*>{"zone", "zones"},
    std::pair<char const*, char const*>{"count", "counts"},
};

std::shared_ptr<data::Event> ReadEvent(json::value const& value, Place const& place, Time now) {
    auto draft = ReadFields<EventDraft>(EventFields, value, place);
    if (draft.type.empty()) place.Field("type").Refuse("is missing");
    for (auto const& [one, several] : Alternatives) {
        auto const& fields = value.get_object();
        if (fields.contains(one) && fields.contains(several))
            place.Field(several).Refuse(std::string("there is also ") + one + "; give one of the two");
    }
    auto event = std::make_shared<data::Event>(std::move(draft.type), std::move(draft.name), draft.start.value_or(now));
    for (auto& part : draft.parts) event->Add(std::move(part));
    return event;
}

} // namespace

Events ReadEvents(std::string_view text, Time now) {
    auto const document = ParseDocument(text);
    auto const* const list = document.if_array();
    if (!list) return {ReadEvent(document, Place::Event(0), now)};
    Events events;
    events.reserve(list->size());
    for (auto const& element : *list) events.push_back(ReadEvent(element, Place::Event(events.size()), now));
    return events;
}

std::size_t DeliverEvents(std::string_view text, EventSink const& sink) {
    auto const events = ReadEvents(text, std::chrono::system_clock::now());
    for (auto const& event : events) sink(event);
    return events.size();
}

} // namespace zarn::host::events
