#include "descriptions.h"

#include "../service.h"
#include "subtopics.h"

#include <soapH.h>

#include <initializer_list>

namespace zarn::service::onvif::events {

namespace {

struct Item {
    char const* name;
    char const* type; ///< qualified name
};

tt__ItemListDescription* MakeItems(soap* soap, std::initializer_list<Item> items) {
    return Filled(soap_new_tt__ItemListDescription(soap), [&](tt__ItemListDescription& list) {
        for (auto const& item : items) {
            auto& description = list.SimpleItemDescription.emplace_back();
            description.Name = item.name;
            description.Type = item.type;
        }
    });
}

void AddLeaf(soap* soap, soap_dom_element* rule, char const* name, std::initializer_list<Item> data) {
    auto* const leaf = soap_elt(rule, nullptr, name);
    if (!leaf) return;
    soap_att_text(soap_att(leaf, nullptr, "wstop:topic"), "true");
    auto* const description = CreateBaseEventDescription(soap, *leaf);
    if (!description || !description->Data) return;
    for (auto const& item : data) {
        auto& added = description->Data->SimpleItemDescription.emplace_back();
        added.Name = item.name;
        added.Type = item.type;
    }
}

/// The topics of all three families are those of fields, on purpose, whatever the messages of the others say.
void AddDetector(soap* soap, soap_dom_element& ruleEngine, char const* rule, std::initializer_list<Item> data) {
    auto* const branch = soap_elt(&ruleEngine, nullptr, rule);
    for (auto const& subtopic : FieldDetectorSubtopics) AddLeaf(soap, branch, subtopic.name, data);
}

} // namespace

tt__MessageDescription* CreateBaseEventDescription(soap* soap, soap_dom_element& leaf) {
    auto* const description = Filled(soap_new_tt__MessageDescription(soap), [&](tt__MessageDescription& made) {
        made.IsProperty = &TrueValue;
        made.Source = MakeItems(soap, {{"VideoSourceConfigurationToken", "tt:ReferenceToken"},
                                       {"VideoAnalyticsConfigurationToken", "tt:ReferenceToken"},
                                       {"Rule", "xsd:string"}});
        made.Data = MakeItems(soap, {{"ObjectId", "xsd:integer"}});
    });
    soap_elt_node(soap_elt(&leaf, nullptr, "tt:MessageDescription"), description, SOAP_TYPE_tt__MessageDescription);
    return description;
}

namespace descriptions {

void FieldDetector(soap* soap, soap_dom_element& ruleEngine) {
    AddDetector(soap, ruleEngine, "FieldDetector", {{"IsInside", "xsd:boolean"}});
}

void LineDetector(soap* soap, soap_dom_element& ruleEngine) { AddDetector(soap, ruleEngine, "LineDetector", {}); }

void LoiteringDetector(soap* soap, soap_dom_element& ruleEngine) {
    AddDetector(soap, ruleEngine, "LoiteringDetector", {{"Since", "xsd:dateTime"}});
}

void CountAggregation(soap* soap, soap_dom_element& ruleEngine) {
    AddLeaf(soap, soap_elt(&ruleEngine, nullptr, "CountAggregation"), "Counter", {{"Count", "xsd:integer"}});
}

} // namespace descriptions
} // namespace zarn::service::onvif::events
