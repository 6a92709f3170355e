#pragma once

#include <memory>
#include <mutex>
#include <string>

namespace zarn::configuration::node {

/// Where a node is: what it shares with its tree, and its name in it.
struct Place {
    std::shared_ptr<std::recursive_mutex> treeMutex;
    std::string key;
    std::string path;
};

} // namespace zarn::configuration::node
