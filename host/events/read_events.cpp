#include "host/events/read_events.h"

#include "host/events/value_reader.h"

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
using Time = std::chrono::system_clock::time_point;

/// What has been read of an event, whose fields may be in any order.
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
    void (*read)(boost::json::value const& value, ValuePath const& path, Draft& draft);
};

/// Reads an object whose fields are those of a table.
template <class Draft>
Draft ReadFields(std::span<Field<Draft> const> fields, boost::json::value const& value, ValuePath const& path) {
    Draft draft;
    for (auto const& member : ReadObject(value, path)) {
        std::string_view const key(member.key().data(), member.key().size());
        auto const field = std::find_if(fields.begin(), fields.end(), [&](auto const& row) { return row.name == key; });
        auto const here = path.Field(key);
        if (field == fields.end()) here.Refuse("there is no such field");
        field->read(member.value(), here, draft);
    }
    return draft;
}

std::uint32_t ReadZoneType(boost::json::value const& value, ValuePath const& path) {
    if (value.is_string() && value.get_string() == "field") return data::Zone::Field;
    if (value.is_string() && value.get_string() == "line") return data::Zone::Line;
    if (value.is_int64()) return ReadNumber<std::uint32_t>(value, path);
    path.Refuse(Quote(value) + R"( is not "field", "line" or )" + DescribeRange<std::uint32_t>());
}

constexpr std::array ZoneFields{
    Field<ZoneDraft>{"type",
                     [](auto const& value, auto const& path, auto& draft) { draft.type = ReadZoneType(value, path); }},
};

constexpr std::array ObjectFields{
    Field<ObjectDraft>{"id", [](auto const& value, auto const& path,
                                auto& draft) { draft.id = ReadNumber<std::uint32_t>(value, path); }},
    Field<ObjectDraft>{"class",
                       [](auto const& value, auto const& path, auto& draft) {
                           draft.parts.push_back(
                               std::make_shared<data::classification::Confidence>(ReadText(value, path)));
                       }},
    Field<ObjectDraft>{"name",
                       [](auto const& value, auto const& path, auto& draft) {
                           draft.parts.push_back(std::make_shared<data::classification::Name>(ReadText(value, path)));
                       }},
};

void ReadType(boost::json::value const& value, ValuePath const& path, EventDraft& draft) {
    draft.type = ReadText(value, path);
    if (draft.type.empty()) path.Refuse("is empty");
}

void ReadName(boost::json::value const& value, ValuePath const& path, EventDraft& draft) {
    draft.name = ReadText(value, path);
}

void ReadStart(boost::json::value const& value, ValuePath const& path, EventDraft& draft) {
    auto const text = ReadText(value, path);
    try {
        draft.start = chrono::FromIso8601(text);
    } catch (chrono::Error const& error) {
        path.Refuse(error.what());
    }
}

void ReadChannel(boost::json::value const& value, ValuePath const& path, EventDraft& draft) {
    draft.parts.push_back(std::make_shared<data::Channel>(ReadNumber<std::uint32_t>(value, path)));
}

void ReadZone(boost::json::value const& value, ValuePath const& path, EventDraft& draft) {
    auto const zone = ReadFields<ZoneDraft>(ZoneFields, value, path);
    if (!zone.type) path.Field("type").Refuse("is missing");
    draft.parts.push_back(std::make_shared<data::Zone>(*zone.type));
}

void ReadCount(boost::json::value const& value, ValuePath const& path, EventDraft& draft) {
    draft.parts.push_back(std::make_shared<data::count::Value>(ReadNumber<std::int32_t>(value, path)));
}

void ReadTrackedObject(boost::json::value const& value, ValuePath const& path, EventDraft& draft) {
    auto const read = ReadFields<ObjectDraft>(ObjectFields, value, path);
    if (!read.id) path.Field("id").Refuse("is missing");
    auto const object = std::make_shared<data::Object>(*read.id);
    for (auto const& part : read.parts) object->Add(part);
    draft.parts.push_back(object);
}

/// A field that holds several of what another function reads.
template <auto ReadOne, std::size_t Most>
void ReadSeveral(boost::json::value const& value, ValuePath const& path, EventDraft& draft) {
    std::size_t index = 0;
    for (auto const& element : ReadList(value, path, Most)) ReadOne(element, path.Element(index++), draft);
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

/// Fields that may be given once or as a list, but not both.
constexpr std::array Alternatives{
    std::pair<char const*, char const*>{"channel", "channels"},
    std::pair<char const*, char const*>{"zone", "zones"},
    std::pair<char const*, char const*>{"count", "counts"},
};

std::shared_ptr<data::Event> ReadEvent(boost::json::value const& value, ValuePath const& path, Time now) {
    auto draft = ReadFields<EventDraft>(EventFields, value, path);
    if (draft.type.empty()) path.Field("type").Refuse("is missing");
    for (auto const& [one, several] : Alternatives) {
        auto const& fields = value.get_object();
        if (fields.contains(one) && fields.contains(several))
            path.Field(several).Refuse(std::string("there is also ") + one + "; give one of the two");
    }
    auto event = std::make_shared<data::Event>(std::move(draft.type), std::move(draft.name), draft.start.value_or(now));
    for (auto& part : draft.parts) event->Add(std::move(part));
    return event;
}

} // namespace

Events ReadEvents(std::string_view text, Time now) {
    auto const document = ParseDocument(text);
    auto const* const list = document.if_array();
    if (!list) return {ReadEvent(document, ValuePath::Event(0), now)};
    Events events;
    events.reserve(list->size());
    for (auto const& element : *list) events.push_back(ReadEvent(element, ValuePath::Event(events.size()), now));
    return events;
}

std::size_t DeliverEvents(std::string_view text, EventSink const& sink) {
    auto const events = ReadEvents(text, std::chrono::system_clock::now());
    for (auto const& event : events) sink(event);
    return events.size();
}

} // namespace zarn::host::events
