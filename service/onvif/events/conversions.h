#pragma once

#include <memory>
#include <vector>

struct soap;
class wsnt__NotificationMessageHolderType;

namespace zarn::meta::data {
class Event;
}

/// Each appends the message of an event of its family to the messages, allocated in the context, and returns whether it
/// has handled the event; an event of another family is left alone. Thread: the one that runs the context's exchange.
namespace zarn::service::onvif::events::conversions {

/// Topics `tns1:RuleEngine/FieldDetector/...`: events of a zone that is a field.
bool FieldDetector(soap* soap, std::vector<wsnt__NotificationMessageHolderType*>& messages,
                   std::shared_ptr<meta::data::Event> const& event);

/// Topics `tns1:RuleEngine/LineDetector/...`: events of a zone that is a line.
bool LineDetector(soap* soap, std::vector<wsnt__NotificationMessageHolderType*>& messages,
                  std::shared_ptr<meta::data::Event> const& event);

/// Topics `tns1:RuleEngine/LoiteringDetector/...`: objects that stay. Returns false also when it has appended a
/// message.
bool LoiteringDetector(soap* soap, std::vector<wsnt__NotificationMessageHolderType*>& messages,
                       std::shared_ptr<meta::data::Event> const& event);

/// Topic `tns1:RuleEngine/CountAggregation/Counter`: counts.
bool CountAggregation(soap* soap, std::vector<wsnt__NotificationMessageHolderType*>& messages,
                      std::shared_ptr<meta::data::Event> const& event);

} // namespace zarn::service::onvif::events::conversions
