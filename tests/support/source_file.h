#pragma once

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace zarn::test {

/// The text of a file of this repository, by its path in it. For tests of what must say the same as the code.
inline std::string ReadSourceFile(std::string const& path) {
    std::ifstream file(ZARN_SOURCE_FOLDER "/" + path);
    if (!file) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace zarn::test
