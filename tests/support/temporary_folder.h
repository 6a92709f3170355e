#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace zarn::test {

/// A temporary folder, removed with its contents by the destructor.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();

    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;

    std::filesystem::path const& GetPath() const { return path; }

    /// The path of a file in the folder.
    std::string operator/(std::string_view name) const { return (path / name).string(); }

    /// Writes a file in the folder and returns its path.
    std::string Write(std::string_view name, std::string_view text) const;

    /// The content of a file in the folder; empty when the file does not exist.
    std::string Read(std::string_view name) const;

private:
    std::filesystem::path path;
};

} // namespace zarn::test
