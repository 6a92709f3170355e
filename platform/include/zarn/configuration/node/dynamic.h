#pragma once

#include <zarn/configuration/node/map.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::configuration {

namespace schema {
class CollectionDescription;
}

namespace node {

/// A collection: its children, the entries, are maps of one schema that can be added and removed, in an order of their
/// own. Adding and removing deliver event::Added and event::Removed, a new order event::Changed of the collection.
class Dynamic : public object::Typed<Dynamic, Map> {
public:
    static constexpr char const* TypeName = "zarn.configuration.node.Dynamic";

    /// Made by Map::Schema only.
    Dynamic(Location const& location, std::shared_ptr<schema::CollectionDescription const> collectionDescription);
    ~Dynamic() override;

    /// Adds an entry with default values behind the others and returns it.
    /// entryKey  1 to 64 letters, digits, '-' and '_', as far as the collection's rule accepts it
    /// Throws Error when the key is something else or is taken.
    std::shared_ptr<Map> Add(std::string_view entryKey);

    /// Removes an entry. Returns false when no entry has this key.
    bool Remove(std::string_view entryKey);

    /// Puts the entries into another order.
    /// keys  each key of the collection once (throws Error otherwise)
    void Reorder(std::vector<std::string> const& keys);

private:
    std::shared_ptr<Node> MakeUnknown(std::string_view childKey, boost::json::value const& json,
                                      Change const& change) const override;
    bool PrepareMissing(Node& child, Change& change) override;
    void Rearrange(List after, Notification& notification) override;
    bool IsWrittenEmpty() const noexcept override;
    boost::json::value WriteSchema() const override;
    bool AcceptsSchema() const noexcept override;

    std::shared_ptr<Map> MakeEntry(std::string_view entryKey) const;

    std::shared_ptr<schema::CollectionDescription const> const description;
};

} // namespace node
} // namespace zarn::configuration
