#pragma once

#include "configuration/schema/description.h"

#include <zarn/configuration/schema.h>

#include <memory>
#include <string>
#include <vector>

namespace zarn::configuration::schema {

/// Describes a collection: what its entries are made of.
class CollectionDescription : public Description {
public:
    CollectionDescription(std::vector<Schema> entrySchemas, std::string descriptionText, Options descriptionOptions);

    std::shared_ptr<Node> Create(node::Place const& place) const override;
    boost::json::value ToJson() const override;

    /// The members of an entry.
    std::vector<Schema> const& GetEntry() const noexcept { return entry; }

private:
    std::vector<Schema> const entry;
};

} // namespace zarn::configuration::schema
