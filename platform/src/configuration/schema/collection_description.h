#pragma once

#include "configuration/schema/description.h"

#include <zarn/configuration/schema.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::configuration::schema {

/// Describes a collection: what its entries are made of.
class CollectionDescription : public Description {
public:
    CollectionDescription(std::vector<Schema> entrySchemas, std::string descriptionText, Options descriptionOptions,
                          Rule<std::string> entryKeyRule);

    std::shared_ptr<Node> Create(node::Place const& place) const override;
    boost::json::value ToJson() const override;

    /// The members of an entry.
    std::vector<Schema> const& GetEntry() const noexcept { return entry; }

    /// Throws Error for the collection's path when the rule refuses the key of an entry.
    void CheckKey(std::string_view key, std::string const& path) const;

private:
    std::vector<Schema> const entry;
    Rule<std::string> const keyRule;
};

} // namespace zarn::configuration::schema
