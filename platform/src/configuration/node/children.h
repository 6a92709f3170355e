#pragma once

#include <zarn/configuration/node.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zarn::configuration::node {

/// The children of a map, in their order and by key.
/// Thread: any. The mutex is held for one look-up or one change only, and nothing is destroyed or called under it.
class Children {
public:
    using List = std::vector<std::shared_ptr<Node>>;

    /// The child with a key, or null.
    std::shared_ptr<Node> Find(std::string_view key) const;

    /// The children in their order; the list never changes.
    std::shared_ptr<List const> GetSnapshot() const;

    std::size_t GetSize() const;

    /// Replaces the child with the same key, or appends the child.
    void Put(std::shared_ptr<Node> child);

    /// Removes a child and returns it; null when no child has this key.
    std::shared_ptr<Node> Remove(std::string_view key);

    /// Replaces all children.
    void Assign(List replacement);

private:
    mutable std::mutex mutex;
    List list;
    /// By the keys that the children hold.
    std::unordered_map<std::string_view, std::shared_ptr<Node>> index;
    /// Made on demand, dropped when the list changes.
    mutable std::shared_ptr<List const> snapshot;
};

} // namespace zarn::configuration::node
