#include "configuration/schema/collection_description.h"

#include "configuration/node/place.h"
#include "configuration/schema/quote.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/dynamic.h>
#include <zarn/configuration/node/root.h>

#include <boost/json/value.hpp>

#include <utility>

namespace zarn::configuration::schema {

CollectionDescription::CollectionDescription(std::vector<Schema> entrySchemas, std::string descriptionText,
                                             Options descriptionOptions, Rule<std::string> entryKeyRule)
    : Description(std::move(descriptionText), descriptionOptions),
      entry(std::move(entrySchemas)),
      keyRule(std::move(entryKeyRule)) {}

void CollectionDescription::CheckKey(std::string_view key, std::string const& path) const {
    if (keyRule.accepts && !keyRule.accepts(std::string(key)))
        throw Error(path, Quote(key) + " is not " + keyRule.text);
}

std::shared_ptr<Node> CollectionDescription::Create(node::Place const& place) const {
    return std::make_shared<node::Dynamic>(place,
                                           std::static_pointer_cast<CollectionDescription const>(shared_from_this()));
}

boost::json::value CollectionDescription::ToJson() const {
    // Paths of members may make maps on the way, so an entry is made to tell its shape.
    auto const example = std::make_shared<node::Root>();
    example->Schema(entry);
    return {{"type", "object"}, {"description", GetText()}, {"additionalProperties", example->GetSchema()}};
}

} // namespace zarn::configuration::schema
