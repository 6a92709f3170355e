#include "configuration/node/children.h"

#include <algorithm>
#include <utility>

namespace zarn::configuration::node {

std::shared_ptr<Node> Children::Find(std::string_view key) const {
    std::scoped_lock const lock(mutex);
    auto const found = index.find(key);
    return found == index.end() ? nullptr : found->second;
}

std::shared_ptr<Children::List const> Children::GetSnapshot() const {
    std::scoped_lock const lock(mutex);
    if (!snapshot) snapshot = std::make_shared<List const>(list);
    return snapshot;
}

std::size_t Children::GetSize() const {
    std::scoped_lock const lock(mutex);
    return list.size();
}

void Children::Put(std::shared_ptr<Node> child) {
    std::shared_ptr<Node> replaced;
    std::shared_ptr<List const> outdated;
    std::scoped_lock const lock(mutex);
    outdated.swap(snapshot);
    // The index refers to the key that the child itself holds, so a replaced child's entry goes with it.
    if (auto const found = index.find(child->GetKey()); found != index.end()) {
        replaced = std::move(found->second);
        index.erase(found);
        *std::find(list.begin(), list.end(), replaced) = child;
    } else {
        list.push_back(child);
    }
    std::string_view const key = child->GetKey();
    index.emplace(key, std::move(child));
}

std::shared_ptr<Node> Children::Remove(std::string_view key) {
    std::shared_ptr<List const> outdated;
    std::scoped_lock const lock(mutex);
    auto const found = index.find(key);
    if (found == index.end()) return nullptr;
    outdated.swap(snapshot);
    auto child = std::move(found->second);
    index.erase(found);
    list.erase(std::find(list.begin(), list.end(), child));
    return child;
}

void Children::Assign(List replacement) {
    std::unordered_map<std::string_view, std::shared_ptr<Node>> replacementIndex;
    replacementIndex.reserve(replacement.size());
    for (auto const& child : replacement) replacementIndex.emplace(child->GetKey(), child);
    std::shared_ptr<List const> outdated;
    std::scoped_lock const lock(mutex);
    outdated.swap(snapshot);
    list.swap(replacement);
    index.swap(replacementIndex);
}

} // namespace zarn::configuration::node
