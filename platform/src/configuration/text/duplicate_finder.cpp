#include "configuration/text/duplicate_finder.h"

#include "configuration/node/key.h"
#include "configuration/schema/quote.h"

#include <boost/json/basic_parser_impl.hpp>

#include <limits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace zarn::configuration::text {

namespace {

using boost::json::error_code;
using boost::json::string_view;

/// Follows the keys of a JSON text. The names of constants and functions are those that the parser calls.
class Handler {
public:
    static constexpr std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_array_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_key_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_string_size = std::numeric_limits<std::size_t>::max();

    bool on_object_begin(error_code&) {
        objects.emplace_back();
        return true;
    }

    bool on_object_end(std::size_t, error_code&) {
        objects.pop_back();
        return true;
    }

    bool on_key_part(string_view part, std::size_t, error_code&) {
        key.append(part.data(), part.size());
        return true;
    }

    bool on_key(string_view part, std::size_t, error_code& error) {
        key.append(part.data(), part.size());
        auto& object = objects.back();
        object.current = std::exchange(key, {});
        if (object.keys.insert(object.current).second) return true;
        error = boost::json::error::syntax;
        return false;
    }

    bool on_document_begin(error_code&) { return true; }

    bool on_document_end(error_code&) { return true; }

    bool on_array_begin(error_code&) { return true; }

    bool on_array_end(std::size_t, error_code&) { return true; }

    bool on_string_part(string_view, std::size_t, error_code&) { return true; }

    bool on_string(string_view, std::size_t, error_code&) { return true; }

    bool on_number_part(string_view, error_code&) { return true; }

    bool on_int64(std::int64_t, string_view, error_code&) { return true; }

    bool on_uint64(std::uint64_t, string_view, error_code&) { return true; }

    bool on_double(double, string_view, error_code&) { return true; }

    bool on_bool(bool, error_code&) { return true; }

    bool on_null(error_code&) { return true; }

    bool on_comment_part(string_view, error_code&) { return true; }

    bool on_comment(string_view, error_code&) { return true; }

    /// The path of the key that was read last.
    std::string GetPath() const {
        std::string path;
        for (auto const& object : objects) {
            // Whatever is no key may be of any length and hold any character.
            auto const& current = object.current;
            path = node::JoinPath(path, node::IsKey(current) ? current : schema::Quote(current));
        }
        return path;
    }

private:
    struct Object {
        std::unordered_set<std::string> keys;
        std::string current;
    };

    std::vector<Object> objects;
    std::string key;
};

} // namespace

std::optional<Duplicate> FindDuplicate(std::string_view text) {
    boost::json::basic_parser<Handler> parser{boost::json::parse_options()};
    error_code error;
    std::size_t const length = parser.write_some(false, text.data(), text.size(), error);
    if (!error) return std::nullopt;
    return Duplicate{parser.handler().GetPath(), length};
}

} // namespace zarn::configuration::text
