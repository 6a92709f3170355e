#include "configuration/schema/collection_description.h"
#include "configuration/schema/description.h"

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

} // namespace zarn::configuration
