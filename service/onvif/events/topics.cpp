#include "topics.h"

#include "create_base_event.h"

#include <zarn/meta/data/event.h>
#include <zarn/meta/data/zone.h>
#include <zarn/onvif/filled.h>

#include <soapH.h>

#include <algorithm>

namespace zarn::service::onvif::events {

namespace {

void Append(tt__ItemListDescription* items, std::initializer_list<ItemDescription> added) {
    if (!items) return;
    for (auto const& item : added) {
        auto& description = items->SimpleItemDescription.emplace_back();
        description.Name = item.name;
        description.Type = item.type;
    }
}

} // namespace

Subtopic const* Selection::Find(meta::data::Event const& event) const {
    auto const row = std::ranges::find(subtopics, event.GetType(), &Subtopic::type);
    if (row == subtopics.end()) return nullptr;
    auto const* first = zone ? event.First<meta::data::Zone>() : nullptr;
    bool const isInZone = !zone || (first && first->GetType() == *zone);
    return isInZone ? &*row : nullptr;
}

std::string GetTopic(char const* family, Subtopic const& subtopic) {
    return std::string("tns1:RuleEngine/") + family + '/' + subtopic.name;
}

tt__Message* CreateEvent(soap* soap, Messages& messages, EventPtr const& event, char const* family,
                         Selection const& selection) {
    auto const* const subtopic = selection.Find(*event);
    return subtopic ? CreateBaseEvent(soap, messages, event, GetTopic(family, *subtopic)) : nullptr;
}

tt__MessageDescription* CreateBaseEventDescription(soap* soap, soap_dom_element& leaf) {
    static bool isProperty = true; // gSOAP wants a pointer to a mutable value; nothing writes through it
    auto const make = [&](tt__MessageDescription& description) {
        description.IsProperty = &isProperty;
        description.Source = soap_new_tt__ItemListDescription(soap);
        Append(description.Source, {{"VideoSourceConfigurationToken", "tt:ReferenceToken"},
                                    {"VideoAnalyticsConfigurationToken", "tt:ReferenceToken"},
                                    {"Rule", "xsd:string"}});
        description.Data = soap_new_tt__ItemListDescription(soap);
        Append(description.Data, {{"ObjectId", "xsd:integer"}});
    };
    auto* const description = zarn::onvif::Filled(soap_new_tt__MessageDescription(soap), make);
    soap_elt_node(soap_elt(&leaf, nullptr, "tt:MessageDescription"), description, SOAP_TYPE_tt__MessageDescription);
    return description;
}

void AddTopics(soap* soap, soap_dom_element& ruleEngine, char const* family, std::span<Subtopic const> subtopics,
               std::initializer_list<ItemDescription> data) {
    auto* const branch = soap_elt(&ruleEngine, nullptr, family);
    for (auto const& subtopic : subtopics) {
        auto* const leaf = soap_elt(branch, nullptr, subtopic.name); // the one of an earlier row with the same name
        if (!leaf) continue;
        soap_att_text(soap_att(leaf, nullptr, "wstop:topic"), "true");
        if (auto* const description = CreateBaseEventDescription(soap, *leaf)) Append(description->Data, data);
    }
}

} // namespace zarn::service::onvif::events
