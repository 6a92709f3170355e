#pragma once

struct soap;
struct soap_dom_element;
class tt__MessageDescription;

namespace zarn::service::onvif::events {

/// Gives a topic of the topic set the description that all messages share, allocated in the context, and returns it;
/// null without memory. Source: ONVIF Core, Message description language.
/// The items of the source are those of ONVIF's rules, on purpose: the messages themselves name "VideoSource" and
/// "Rule".
tt__MessageDescription* CreateBaseEventDescription(soap* soap, soap_dom_element& leaf);

/// Each adds the branch of its family, its topics with their descriptions, to the element `tns1:RuleEngine`.
namespace descriptions {

void FieldDetector(soap* soap, soap_dom_element& ruleEngine);
void LineDetector(soap* soap, soap_dom_element& ruleEngine);
void LoiteringDetector(soap* soap, soap_dom_element& ruleEngine);
void CountAggregation(soap* soap, soap_dom_element& ruleEngine);

} // namespace descriptions
} // namespace zarn::service::onvif::events
