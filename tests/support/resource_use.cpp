#include "support/resource_use.h"

#include "support/eventually.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace zarn::test {
namespace {

namespace filesystem = std::filesystem;

/// The number that follows a name in a status file.
std::size_t ReadNumber(filesystem::path const& file, std::string const& name) {
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(name)) return std::stoul(line.substr(name.size()));
    }
    throw std::runtime_error(file.string() + " has no " + name);
}

std::size_t CountEntries(filesystem::path const& folder) {
    return static_cast<std::size_t>(std::distance(filesystem::directory_iterator(folder), {}));
}

} // namespace

ResourceUse ReadResourceUse(pid_t process) {
    constexpr std::size_t Kibibyte = 1024;
    filesystem::path const folder = "/proc/" + std::to_string(process);
    return {.memory = ReadNumber(folder / "status", "VmRSS:") * Kibibyte,
            .threads = CountEntries(folder / "task"),
            .descriptors = CountEntries(folder / "fd")};
}

ResourceUse AwaitResourceUse(pid_t process, std::function<bool(ResourceUse const&)> const& isWanted,
                             std::chrono::milliseconds limit) {
    ResourceUse use;
    Eventually(
        [&] {
            use = ReadResourceUse(process);
            return isWanted(use);
        },
        limit);
    return use;
}

} // namespace zarn::test
