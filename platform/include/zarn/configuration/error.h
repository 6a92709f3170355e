#pragma once

#include <stdexcept>
#include <string>

namespace zarn::configuration {

/// A value, a key or a description that the configuration does not accept.
/// what() names path and reason: "settings.web_port: 70000 is not a port (1 to 65535)". Values of write-only nodes are
/// never quoted.
class Error : public std::runtime_error {
public:
    /// nodePath  the dotted path of the node at fault; empty for the root
    /// message   what is wrong, without the path
    Error(std::string const& nodePath, std::string const& message)
        : std::runtime_error(nodePath.empty() ? message : nodePath + ": " + message), path(nodePath) {}

    /// The dotted path of the node at fault; empty for the root.
    std::string const& GetPath() const noexcept { return path; }

private:
    std::string path;
};

} // namespace zarn::configuration
