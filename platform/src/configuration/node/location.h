#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::configuration::node {

/// Where a node is: what it shares with its tree, and its name in it.
struct Location {
    std::shared_ptr<std::recursive_mutex> treeMutex;
    std::string key;
    std::string path;
};

/// Whether a text can be the key of a node: 1 to 64 letters, digits, '-' and '_'.
bool IsKey(std::string_view text) noexcept;

/// Throws Error for the path when the text cannot be a key.
void RequireKey(std::string_view text, std::string const& path);

/// The path of a child of the node with a path.
std::string JoinPath(std::string_view path, std::string_view key);

/// The parts of a dotted path; at least one, empty ones included.
std::vector<std::string_view> SplitPath(std::string_view path);

} // namespace zarn::configuration::node
