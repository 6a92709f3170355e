#include "create_base_event.h"

#include <zarn/meta/data/channel.h>
#include <zarn/meta/data/classification/confidence.h>
#include <zarn/meta/data/classification/name.h>
#include <zarn/meta/data/event.h>
#include <zarn/meta/data/object.h>
#include <zarn/onvif/filled.h>

#include <soapH.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <set>
#include <utility>

namespace zarn::service::onvif::events {

namespace data = meta::data;
using zarn::onvif::Filled;

namespace {

/// The channel id in the message of an event without a channel.
constexpr auto NoChannel = std::numeric_limits<std::uint32_t>::max();

/// An id that occurs twice counts once: the first object that bears it.
using Objects = std::set<data::ObjectBase const*, ObjectCompare>;

Objects CollectObjects(data::Event const& event) {
    Objects objects;
    for (auto const& object : event.OfType<data::Object>()) objects.insert(&object);
    return objects;
}

std::string GetVideoSource(data::Event const& event) {
    auto const* channel = event.First<data::Channel>();
    return "channels." + std::to_string(channel ? channel->GetId() : NoChannel);
}

std::string GetClass(data::ObjectBase const& object) {
    if (auto const* confidence = object.First<data::classification::Confidence>()) return confidence->GetClass();
    auto const* name = object.First<data::classification::Name>();
    return name ? name->GetValue() : "";
}

std::string JoinIds(Objects const& objects) {
    std::string ids;
    for (auto const* object : objects) ids += std::to_string(object->GetId()) + ' ';
    return ids;
}

/// Empty when no object has a class.
std::string JoinClasses(Objects const& objects) {
    std::string classes;
    bool isClassified = false;
    for (auto const* object : objects) {
        auto const name = GetClass(*object);
        isClassified = isClassified || !name.empty();
        classes += (name.empty() ? "unclassified" : name) + ' ';
    }
    return isClassified ? classes : "";
}

tt__Message* MakeMessage(soap* soap, data::Event const& event) {
    return Filled(soap_new_tt__Message(soap), [&](tt__Message& message) {
        using std::chrono::seconds;
        message.UtcTime = std::chrono::duration_cast<seconds>(event.GetStart().time_since_epoch()).count();
        message.PropertyOperation = soap_new_tt__PropertyOperation(soap);
        if (message.PropertyOperation) *message.PropertyOperation = tt__PropertyOperation__Changed;
        message.Source = soap_new_tt__ItemList(soap);
        AddItem(message.Source, "VideoSource", GetVideoSource(event));
        AddItem(message.Source, "Rule", event.GetName());
        message.Data = soap_new_tt__ItemList(soap);
        auto const objects = CollectObjects(event);
        AddItem(message.Data, "ObjectId", JoinIds(objects));
        if (auto classes = JoinClasses(objects); !classes.empty()) {
            AddItem(message.Data, "ClassTypes", std::move(classes));
        }
    });
}

wsnt__TopicExpressionType* MakeTopic(soap* soap, std::string const& text) {
    return Filled(soap_new_wsnt__TopicExpressionType(soap), [&](wsnt__TopicExpressionType& topic) {
        topic.Dialect = ConcreteTopicSetURI;
        topic.__mixed.soap = soap; // which owns the text
        soap_elt_text(&topic.__mixed, text.c_str());
    });
}

} // namespace

bool ObjectCompare::operator()(data::ObjectBase const* left, data::ObjectBase const* right) const noexcept {
    return left->GetId() < right->GetId();
}

tt__Message* CreateBaseEvent(soap* soap, std::vector<wsnt__NotificationMessageHolderType*>& messages,
                             std::shared_ptr<data::Event> const& event, std::string const& topic) {
    auto* const message = MakeMessage(soap, *event);
    auto* const holder = message ? soap_new_wsnt__NotificationMessageHolderType(soap) : nullptr;
    if (!holder) return nullptr;
    holder->Topic = MakeTopic(soap, topic);
    soap_elt_node(&holder->Message.__any, message, SOAP_TYPE__tt__Message);
    messages.push_back(holder);
    return message;
}

void AddItem(tt__ItemList* items, char const* name, std::string value) {
    if (!items) return;
    auto& item = items->SimpleItem.emplace_back();
    item.Name = name;
    item.Value = std::move(value);
}

} // namespace zarn::service::onvif::events
