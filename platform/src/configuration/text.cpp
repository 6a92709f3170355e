#include "configuration/node/location.h"
#include "configuration/schema/quote.h"
#include "configuration/text/writer.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/text.h>
#include <zarn/json/parse.h>

#include <boost/json/value.hpp>

namespace zarn::configuration::text {

namespace {

constexpr std::size_t MaximumSize = std::size_t{16} * 1024 * 1024;

/// The dotted path of the key that was read last, without the indices of lists.
std::string GetPath(json::ParseError const& error) {
    std::string path;
    for (auto const& level : error.GetPath()) {
        // A text that is not a key may be of any length and hold any character.
        if (level.key) path = node::JoinPath(path, node::IsKey(*level.key) ? *level.key : schema::Quote(*level.key));
    }
    return path;
}

} // namespace

boost::json::value Parse(std::string_view text) {
    if (text.size() > MaximumSize) throw Error({}, "the text is longer than 16 MiB");
    try {
        return json::Parse(text);
    } catch (json::ParseError const& error) {
        if (error.GetReason() == json::ParseError::Reason::DuplicateKey)
            throw Error(GetPath(error), error.GetPosition() + ": the key occurs twice");
        throw Error({}, error.GetPosition() + ": " + error.what());
    }
}

std::string Format(boost::json::value const& json) {
    std::string text;
    Write(json, text);
    return text += '\n';
}

} // namespace zarn::configuration::text
