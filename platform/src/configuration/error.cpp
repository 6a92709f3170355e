#include <zarn/configuration/error.h>

namespace zarn::configuration {

Error::Error(std::string const& nodePath, std::string const& message)
    : std::runtime_error(nodePath.empty() ? message : nodePath + ": " + message), path(nodePath) {}

std::string const& Error::GetPath() const noexcept { return path; }

} // namespace zarn::configuration
