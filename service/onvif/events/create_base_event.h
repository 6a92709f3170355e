#pragma once

#include <memory>
#include <string>
#include <vector>

struct soap;
class tt__ItemList;
class tt__Message;
class wsnt__NotificationMessageHolderType;

namespace zarn::meta::data {
class Event;
class ObjectBase;
} // namespace zarn::meta::data

namespace zarn::service::onvif::events {

/// The dialect of the topics of messages and of filters: concrete topics joined by "|".
/// Source: ONVIF Core, Topic filter.
inline constexpr char ConcreteTopicSetURI[] = "http://www.onvif.org/ver10/tev/topicExpression/ConcreteSet";

/// Orders tracked objects by their ids, ascending.
struct ObjectCompare {
    bool operator()(meta::data::ObjectBase const* left, meta::data::ObjectBase const* right) const noexcept;
};

/// Appends the message that all kinds of events share, with its topic, allocated in the context, and returns its
/// content so that the caller can add further data items. Without memory for it appends nothing and returns null.
///
/// topic  a concrete topic, such as "tns1:RuleEngine/LineDetector/Crossed"
///
/// Source: ONVIF Core, Notification messages; OASIS WS-BaseNotification 1.3.
tt__Message* CreateBaseEvent(soap* soap, std::vector<wsnt__NotificationMessageHolderType*>& messages,
                             std::shared_ptr<meta::data::Event> const& event, std::string const& topic);

/// Adds a named value to a list of items, which may be null for want of memory.
void AddItem(tt__ItemList* items, char const* name, std::string value);

} // namespace zarn::service::onvif::events
