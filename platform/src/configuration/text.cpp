#include "configuration/text/duplicate_finder.h"
#include "configuration/text/writer.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/text.h>

#include <boost/json/parser.hpp>
#include <boost/json/value.hpp>

#include <algorithm>

namespace zarn::configuration::text {

namespace {

constexpr std::size_t MaximumSize = std::size_t{16} * 1024 * 1024;

/// The place of a byte for a person.
std::string Locate(std::string_view text, std::size_t offset) {
    std::string_view const before = text.substr(0, offset);
    auto const line = std::count(before.begin(), before.end(), '\n') + 1;
    auto const column = before.size() - (before.rfind('\n') + 1) + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

} // namespace

boost::json::value Parse(std::string_view text) {
    if (text.size() > MaximumSize) throw Error({}, "the text is longer than 16 MiB");
    boost::json::string_view const source(text.data(), text.size());
    boost::json::error_code error;
    boost::json::parser parser;
    std::size_t const length = parser.write_some(source, error);
    if (!error && text.find_first_not_of(" \t\r\n", length) != std::string_view::npos) {
        error = boost::json::error::extra_data;
    }
    if (error) throw Error({}, Locate(text, length) + ": " + error.message());
    if (auto const duplicate = FindDuplicate(text)) {
        throw Error(duplicate->path, Locate(text, duplicate->offset) + ": the key occurs twice");
    }
    return parser.release();
}

std::string Format(boost::json::value const& json) {
    std::string text;
    Write(json, text);
    return text += '\n';
}

} // namespace zarn::configuration::text
