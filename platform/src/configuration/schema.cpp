#include "configuration/node/location.h"
#include "configuration/schema/description.h"
#include "configuration/schema/quote.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/dynamic.h>
#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>

#include <boost/json/value.hpp>

namespace zarn::configuration {

Schema::Schema(std::string nodePath, std::shared_ptr<schema::Description const> nodeDescription)
    : path(std::move(nodePath)), description(std::move(nodeDescription)) {}

Schema::Schema(std::string nodePath, char const* defaultValue, std::string text, schema::Options options,
               schema::Rule<std::string> rule)
    : Schema(std::move(nodePath), std::string(defaultValue), std::move(text), options, std::move(rule)) {}

Schema Schema::Collection(std::string nodePath, std::vector<Schema> entry, std::string text, schema::Options options,
                          schema::Rule<std::string> keyRule) {
    return {std::move(nodePath), std::make_shared<schema::CollectionDescription>(std::move(entry), std::move(text),
                                                                                 options, std::move(keyRule))};
}

std::string const& Schema::GetPath() const noexcept { return path; }

std::shared_ptr<schema::Description const> const& Schema::GetDescription() const noexcept { return description; }

boost::json::value Schema::ToJson() const { return description->ToJson(); }

namespace schema {

CollectionDescription::CollectionDescription(std::vector<Schema> entrySchemas, std::string descriptionText,
                                             Options descriptionOptions, Rule<std::string> entryKeyRule)
    : Description(std::move(descriptionText), descriptionOptions),
      entry(std::move(entrySchemas)),
      keyRule(std::move(entryKeyRule)) {}

void CollectionDescription::CheckKey(std::string_view key, std::string const& path) const {
    if (keyRule.accepts && !keyRule.accepts(std::string(key)))
        throw Error(path, Quote(key) + " is not " + keyRule.text);
}

std::shared_ptr<Node> CollectionDescription::Create(node::Location const& location) const {
    return std::make_shared<node::Dynamic>(location,
                                           std::static_pointer_cast<CollectionDescription const>(shared_from_this()));
}

boost::json::value CollectionDescription::ToJson() const {
    // Paths of members may make maps on the way, so an entry is made to tell its shape.
    auto const example = std::make_shared<node::Root>();
    example->Schema(entry);
    return {{"type", "object"}, {"description", GetText()}, {"additionalProperties", example->GetSchema()}};
}

} // namespace schema
} // namespace zarn::configuration
