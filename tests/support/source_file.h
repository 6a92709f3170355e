#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace zarn::test {

/// The text of a file of this repository, by its relative path. For tests that compare documents with the code.
inline std::string ReadSourceFile(std::string const& path) {
    std::ifstream file(ZARN_SOURCE_FOLDER "/" + path);
    if (!file) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The files of a folder of this repository with this extension, by their paths in it.
inline std::vector<std::string> ListSourceFiles(std::string const& folder, std::string const& extension) {
    std::vector<std::string> files;
    for (auto const& entry : std::filesystem::directory_iterator(ZARN_SOURCE_FOLDER "/" + folder)) {
        if (entry.path().extension() == extension) files.push_back(folder + '/' + entry.path().filename().string());
    }
    return files;
}

} // namespace zarn::test
