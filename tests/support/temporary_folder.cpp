#include "support/temporary_folder.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace zarn::test {

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zarn-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make the folder " + pattern);
    path = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::string TemporaryFolder::Write(std::string_view name, std::string_view text) const {
    std::ofstream(path / name, std::ios::binary | std::ios::trunc) << text;
    return *this / name;
}

std::string TemporaryFolder::Read(std::string_view name) const {
    std::ostringstream text;
    text << std::ifstream(path / name, std::ios::binary).rdbuf();
    return text.str();
}

} // namespace zarn::test
