#include "host/events/read_events.h"

#include <zarn/meta/data/channel.h>
#include <zarn/meta/data/classification/confidence.h>
#include <zarn/meta/data/classification/name.h>
#include <zarn/meta/data/count/value.h>
#include <zarn/meta/data/object.h>
#include <zarn/meta/data/zone.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zarn::host::events {
namespace {

using namespace std::chrono_literals;
using meta::data::Channel;
using meta::data::Event;
using meta::data::Object;
using meta::data::Zone;
using meta::data::classification::Confidence;
using meta::data::classification::Name;
using meta::data::count::Value;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr std::chrono::system_clock::time_point Now(std::chrono::seconds(1000));

std::shared_ptr<Event> ReadOne(std::string const& text) { return ReadEvents(text, Now).at(0); }

/// An event of a type, with additional fields.
std::string With(std::string const& fields) { return R"({"type": "presence", )" + fields + "}"; }

/// The error for a text; empty when it is accepted.
std::string GetRefusal(std::string const& text) {
    try {
        ReadEvents(text, Now);
        return {};
    } catch (ReadError const& error) {
        return error.what();
    }
}

/// A list with `count` elements.
std::string Repeat(std::string const& element, std::size_t count) {
    std::string list = "[";
    for (std::size_t i = 0; i < count; ++i) list += (i > 0 ? "," : "") + element;
    return list + "]";
}

template <class T, class Get>
auto Collect(meta::data::Container const& container, Get get) {
    std::vector<std::decay_t<decltype((std::declval<T const&>().*get)())>> values;
    for (auto const& part : container.OfType<T>()) values.push_back((part.*get)());
    return values;
}

TEST(ReadEvents, ReadsEveryFieldOfAnEvent) {
    auto const event = ReadOne(R"({"type": "presence", "name": "Gate rule", "start": "2026-01-31T12:00:00.250Z",
        "channel": 1, "zone": {"type": "field"},
        "objects": [{"id": 12, "class": "person", "name": "visitor"}], "count": 3})");
    EXPECT_EQ(event->GetType(), "presence");
    EXPECT_EQ(event->GetName(), "Gate rule");
    EXPECT_EQ(event->GetStart(), std::chrono::sys_days(std::chrono::January / 31 / 2026) + 12h + 250ms);
    EXPECT_THAT(Collect<Channel>(*event, &Channel::GetId), ElementsAre(1U));
    EXPECT_THAT(Collect<Zone>(*event, &Zone::GetType), ElementsAre(Zone::Field));
    EXPECT_THAT(Collect<Value>(*event, &Value::GetValue), ElementsAre(3));
    EXPECT_THAT(Collect<Object>(*event, &Object::GetId), ElementsAre(12U));
    auto const* const object = event->First<Object>();
    EXPECT_EQ(object->First<Confidence>()->GetClass(), "person");
    EXPECT_EQ(object->First<Name>()->GetValue(), "visitor");
}

TEST(ReadEvents, NeedsNothingButTheType) {
    auto const event = ReadOne(R"({"type": "count"})");
    EXPECT_EQ(event->GetName(), "");
    EXPECT_EQ(event->GetStart(), Now);
    EXPECT_EQ(event->GetCount(), 0U);
}

TEST(ReadEvents, ReadsTheStartToTheNanosecond) {
    EXPECT_EQ(ReadOne(With(R"("start": "1970-01-01T00:00:01.123456789Z")"))->GetStart().time_since_epoch(),
              1123456789ns);
    EXPECT_EQ(ReadOne(With(R"("start": "1970-01-01T01:00:01+01:00")"))->GetStart().time_since_epoch(), 1s);
}

TEST(ReadEvents, ReadsSeveralChannelsZonesAndCountsInOrder) {
    auto const event = ReadOne(With(R"("channels": [4294967295, 0], "counts": [2147483647, -2147483648],
        "zones": [{"type": "line"}, {"type": 7}, {"type": "field"}, {"type": 4294967295}])"));
    EXPECT_THAT(Collect<Channel>(*event, &Channel::GetId), ElementsAre(4294967295U, 0U));
    EXPECT_THAT(Collect<Value>(*event, &Value::GetValue), ElementsAre(2147483647, -2147483648LL));
    EXPECT_THAT(Collect<Zone>(*event, &Zone::GetType), ElementsAre(Zone::Line, 7U, Zone::Field, 4294967295U));
}

TEST(ReadEvents, AcceptsEmptyLists) {
    EXPECT_EQ(ReadOne(With(R"("channels": [], "counts": [], "zones": [], "objects": [])"))->GetCount(), 0U);
    EXPECT_THAT(ReadEvents("[]", Now), IsEmpty());
}

TEST(ReadEvents, AcceptsObjectsWithoutClassAndName) {
    auto const event = ReadOne(With(R"("objects": [{"id": 1}, {"name": "n", "id": 1}, {"id": 0, "class": ""}])"));
    EXPECT_THAT(Collect<Object>(*event, &Object::GetId), ElementsAre(1U, 1U, 0U));
    std::vector<std::pair<bool, bool>> carried;
    for (auto const& object : event->OfType<Object>()) {
        carried.emplace_back(object.First<Confidence>() != nullptr, object.First<Name>() != nullptr);
    }
    EXPECT_THAT(carried, ElementsAre(std::pair(false, false), std::pair(false, true), std::pair(true, false)));
}

TEST(ReadEvents, ReadsAListInOrder) {
    auto const events = ReadEvents(R"( [{"type": "a"}, {"type": "b"}, {"type": "a"}] )", Now);
    ASSERT_THAT(events, SizeIs(3));
    EXPECT_EQ(events[0]->GetType() + events[1]->GetType() + events[2]->GetType(), "aba");
}

TEST(ReadEvents, AcceptsTextInAnyLanguage) {
    EXPECT_EQ(ReadOne(With(R"("name": "Grün 門 \ud83d\ude00\t\n\r")"))->GetName(), "Grün 門 😀\t\n\r");
}

TEST(ReadEvents, AcceptsDocumentsUpToTheBounds) {
    auto const text = "\"" + std::string(MaximumTextBytes, 'n') + "\"";
    EXPECT_EQ(ReadOne(R"({"type": )" + text + "}")->GetType().size(), MaximumTextBytes);
    EXPECT_EQ(ReadOne(With("\"objects\": " + Repeat(R"({"id": 1})", MaximumObjects)))->GetCount(), MaximumObjects);
    EXPECT_EQ(ReadOne(With("\"channels\": " + Repeat("1", MaximumValues)))->GetCount(), MaximumValues);
    EXPECT_THAT(ReadEvents(Repeat(R"({"type": "a"})", MaximumEvents), Now), SizeIs(MaximumEvents));
    auto const padded = R"({"type": "a"})" + std::string(MaximumDocumentBytes - 13, ' ');
    EXPECT_THAT(ReadEvents(padded, Now), SizeIs(1));
}

struct Refused {
    std::string text;
    std::string message;
};

class RefusedEvents : public testing::TestWithParam<Refused> {};

TEST_P(RefusedEvents, NameElementFieldAndRule) { EXPECT_EQ(GetRefusal(GetParam().text), GetParam().message); }

INSTANTIATE_TEST_SUITE_P(Types, RefusedEvents,
                         testing::Values(Refused{"{}", "event 1: type: is missing"},
                                         Refused{R"({"type": ""})", "event 1: type: is empty"},
                                         Refused{R"({"type": 5})", "event 1: type: 5 is not a text"},
                                         Refused{R"({"type": null})", "event 1: type: null is not a text"},
                                         Refused{R"({"type": ["a"]})", "event 1: type: a list is not a text"},
                                         Refused{R"([{"type": "a"}, {"name": "a"}])", "event 2: type: is missing"}));

INSTANTIATE_TEST_SUITE_P(
    Shapes, RefusedEvents,
    testing::Values(Refused{"5", "event 1: 5 is not an object"}, Refused{"null", "event 1: null is not an object"},
                    Refused{"[[]]", "event 1: a list is not an object"},
                    Refused{R"([{"type": "a"}, "b"])", "event 2: \"b\" is not an object"},
                    Refused{With(R"("objects": {"id": 1})"), "event 1: objects: an object is not a list"},
                    Refused{With(R"("objects": [1])"), "event 1: objects[0]: 1 is not an object"},
                    Refused{With(R"("zone": "field")"), "event 1: zone: \"field\" is not an object"},
                    Refused{With(R"("zones": {"type": "field"})"), "event 1: zones: an object is not a list"},
                    Refused{With(R"("channels": 1)"), "event 1: channels: 1 is not a list"},
                    Refused{With(R"("channel": [1])"), "event 1: channel: a list is not a number from 0 to 4294967295"},
                    Refused{With(R"("name": {})"), "event 1: name: an object is not a text"}));

INSTANTIATE_TEST_SUITE_P(
    Numbers, RefusedEvents,
    testing::Values(
        Refused{R"([{"type": "a"}, {"type": "a", "objects": [{"id": 1}, {"id": "x"}]}])",
                "event 2: objects[1].id: \"x\" is not a number from 0 to 4294967295"},
        Refused{With(R"("objects": [{"class": "person"}])"), "event 1: objects[0].id: is missing"},
        Refused{With(R"("objects": [{"id": -1}])"), "event 1: objects[0].id: -1 is not a number from 0 to 4294967295"},
        Refused{With(R"("channel": 4294967296)"), "event 1: channel: 4294967296 is not a number from 0 to 4294967295"},
        Refused{With(R"("channel": 18446744073709551615)"),
                "event 1: channel: 18446744073709551615 is not a number from 0 to 4294967295"},
        Refused{With(R"("channel": 1.5)"), "event 1: channel: 1.5E0 is not a number from 0 to 4294967295"},
        Refused{With(R"("channels": [1, true])"), "event 1: channels[1]: true is not a number from 0 to 4294967295"},
        Refused{With(R"("count": 2147483648)"),
                "event 1: count: 2147483648 is not a number from -2147483648 to 2147483647"},
        Refused{With(R"("counts": [0, -2147483649])"),
                "event 1: counts[1]: -2147483649 is not a number from -2147483648 to 2147483647"},
        Refused{With(R"("count": "3")"), "event 1: count: \"3\" is not a number from -2147483648 to 2147483647"}));

INSTANTIATE_TEST_SUITE_P(
    Zones, RefusedEvents,
    testing::Values(
        Refused{With(R"("zone": {})"), "event 1: zone.type: is missing"},
        Refused{With(R"("zone": {"type": "area"})"),
                "event 1: zone.type: \"area\" is not \"field\", \"line\" or a number from 0 to 4294967295"},
        Refused{With(R"("zone": {"type": -1})"), "event 1: zone.type: -1 is not a number from 0 to 4294967295"},
        Refused{With(R"("zones": [{"type": 0}, {"kind": 0}])"), "event 1: zones[1].kind: there is no such field"}));

INSTANTIATE_TEST_SUITE_P(
    Fields, RefusedEvents,
    testing::Values(
        Refused{With(R"("colour": "red")"), "event 1: colour: there is no such field"},
        Refused{With(R"("Type": "red")"), "event 1: Type: there is no such field"},
        Refused{With(R"("": 1)"), "event 1: \"\": there is no such field"},
        Refused{With(R"("a b\n\u007f\u0085": 1)"), "event 1: \"a b\\n\\u007f\\u0085\": there is no such field"},
        Refused{With(R"("objects": [{"id": 1, "speed": 2}])"), "event 1: objects[0].speed: there is no such field"},
        Refused{With(R"("channel": 1, "channels": [])"),
                "event 1: channels: there is also channel; give one of the two"},
        Refused{With(R"("zones": [], "zone": {"type": 0})"), "event 1: zones: there is also zone; give one of the two"},
        Refused{With(R"("count": 1, "counts": [2])"), "event 1: counts: there is also count; give one of the two"}));

INSTANTIATE_TEST_SUITE_P(RepeatedKeys, RefusedEvents,
                         testing::Values(Refused{R"({"type": "a", "type": "b"})", "event 1: type: occurs twice"},
                                         Refused{R"([{"type": "a"}, {"type": "a", "name": "n", "\u006eame": "n"}])",
                                                 "event 2: name: occurs twice"},
                                         Refused{With(R"("objects": [{"id": 1}, {"id": 2, "class": "c", "id": 2}])"),
                                                 "event 1: objects[1].id: occurs twice"},
                                         Refused{With(R"("zone": {"type": 1, "type": 1})"),
                                                 "event 1: zone.type: occurs twice"}));

INSTANTIATE_TEST_SUITE_P(
    Texts, RefusedEvents,
    testing::Values(
        Refused{With(R"("name": "a\u0000b")"), "event 1: name: \"a\\u0000b\" holds a character that XML cannot carry"},
        Refused{R"({"type": "\u001b[2J"})", "event 1: type: \"\\u001b[2J\" holds a character that XML cannot carry"},
        Refused{With(R"("objects": [{"id": 1, "class": "\uffff"}])"),
                "event 1: objects[0].class: \"\uffff\" holds a character that XML cannot carry"},
        Refused{With(R"("objects": [{"id": 1, "name": "\ufffe"}])"),
                "event 1: objects[0].name: \"\ufffe\" holds a character that XML cannot carry"}));

TEST(RefusedStart, ExplainsWhatIsWrongWithTheTime) {
    EXPECT_THAT(GetRefusal(With(R"("start": "yesterday")")),
                AllOf(StartsWith("event 1: start: "), HasSubstr("ISO 8601"), HasSubstr("\"yesterday\"")));
    EXPECT_EQ(GetRefusal(With(R"("start": 1769860800)")), "event 1: start: 1769860800 is not a text");
    EXPECT_THAT(GetRefusal(With(R"("start": "")")), StartsWith("event 1: start: "));
}

TEST(RefusedDocument, NamesThePositionOfASyntaxError) {
    EXPECT_EQ(GetRefusal(""), "line 1, column 1: this is not JSON: incomplete JSON");
    EXPECT_EQ(GetRefusal("hello"), "line 1, column 1: this is not JSON: syntax error");
    EXPECT_EQ(GetRefusal("{\n  \"type\": 'a'}"), "line 2, column 11: this is not JSON: syntax error");
    EXPECT_EQ(GetRefusal(R"({"type": "a"} {"type": "b"})"), "line 1, column 15: this is not JSON: extra data");
    EXPECT_THAT(GetRefusal(R"({"type": "a")"), HasSubstr("incomplete JSON"));
    EXPECT_THAT(GetRefusal(R"([{"type": "a"},])"), HasSubstr("syntax error"));
    EXPECT_THAT(GetRefusal(R"({"count": NaN})"), HasSubstr("syntax error"));
    EXPECT_THAT(GetRefusal("// comment\n{}"), HasSubstr("syntax error"));
}

TEST(RefusedDocument, IsNotUtf8) {
    for (auto const* const bytes : {"\xff", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xe9"}) {
        EXPECT_THAT(GetRefusal(With("\"name\": \"" + std::string(bytes) + "\"")), HasSubstr("this is not JSON"));
    }
    EXPECT_THAT(GetRefusal(With(R"("name": "\ud83d")")), HasSubstr("this is not JSON"));
    EXPECT_THAT(GetRefusal(With("\"name\": \"a\nb\"")), HasSubstr("this is not JSON"));
}

TEST(RefusedDocument, ExceedsABound) {
    EXPECT_EQ(GetRefusal(R"({"type": "a"})" + std::string(MaximumDocumentBytes, ' ')),
              "the text is longer than 16777216 bytes");
    EXPECT_EQ(GetRefusal(Repeat(R"({"type": "a"})", MaximumEvents + 1)),
              "the list of events: more than 10000 elements");
    EXPECT_EQ(GetRefusal(With("\"objects\": " + Repeat(R"({"id": 1})", MaximumObjects + 1))),
              "event 1: objects: 1001 elements are more than 1000");
    for (std::string const name : {"channels", "counts"}) {
        EXPECT_EQ(GetRefusal(With('"' + name + "\": " + Repeat("1", MaximumValues + 1))),
                  "event 1: " + name + ": 65 elements are more than 64");
    }
    EXPECT_EQ(GetRefusal(With("\"zones\": " + Repeat(R"({"type": 0})", MaximumValues + 1))),
              "event 1: zones: 65 elements are more than 64");
}

TEST(RefusedDocument, HasTooManyFields) {
    std::string fields = "\"f0\": 0";
    for (std::size_t i = 1; i < MaximumFields; ++i) fields += ", \"f" + std::to_string(i) + "\": 0";
    EXPECT_EQ(GetRefusal(With(fields)), "event 1: more than 32 fields");
    EXPECT_EQ(GetRefusal(With("\"objects\": [{\"id\": 1}, {\"id\": 2, " + fields + "}]")),
              "event 1: objects[1]: more than 32 fields");
}

TEST(RefusedDocument, IsTooDeep) {
    EXPECT_THAT(GetRefusal(std::string(100000, '[')), HasSubstr("more than 8 levels"));
    EXPECT_EQ(GetRefusal(With("\"objects\": [" + Repeat("1", MaximumEvents + 1) + "]")),
              "event 1: objects[0]: more than 10000 elements");
    EXPECT_THAT(GetRefusal(With("\"zone\": " + std::string(8, '[') + std::string(8, ']'))),
                StartsWith("event 1: zone"));
}

TEST(RefusedTexts, AreTooLong) {
    std::string const text(MaximumTextBytes + 1, 'n');
    auto const complaint = '"' + std::string(80, 'n') + "\"... is longer than 256 bytes";
    EXPECT_EQ(GetRefusal(R"({"type": ")" + text + "\"}"), "event 1: type: " + complaint);
    EXPECT_EQ(GetRefusal(With("\"name\": \"" + text + '"')), "event 1: name: " + complaint);
    EXPECT_EQ(GetRefusal(With("\"start\": \"" + text + '"')), "event 1: start: " + complaint);
    EXPECT_EQ(GetRefusal(With(R"("objects": [{"id": 1, "class": ")" + text + "\"}]")),
              "event 1: objects[0].class: " + complaint);
    EXPECT_EQ(GetRefusal(With(R"("objects": [{"id": 1, "name": ")" + text + "\"}]")),
              "event 1: objects[0].name: " + complaint);
}

TEST(RefusedTexts, AreTruncatedAtCharacterBoundaries) {
    std::string text;
    for (std::size_t i = 0; i < MaximumTextBytes; ++i) text += "門";
    EXPECT_THAT(GetRefusal(With("\"name\": \"" + text + '"')), HasSubstr("門\"... is longer"));
    EXPECT_THAT(GetRefusal(With('"' + text + "\": 1")), HasSubstr("門\"...: there is no such field"));
}

TEST(RefusedTexts, NeverBreakTheLineOfTheMessage) {
    for (int code = 0; code < 0x20; ++code) {
        std::string hex = "\\u00";
        hex += "01"[code / 16];
        hex += "0123456789abcdef"[code % 16];
        auto const message = GetRefusal(With('"' + hex + "\": 1"));
        EXPECT_TRUE(std::all_of(message.begin(), message.end(), [](char c) { return c >= ' ' && c != 0x7f; }));
    }
}

} // namespace
} // namespace zarn::host::events
