#include <zarn/json/parse.h>

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value.hpp>
#include <boost/json/value_stack.hpp>

#include <algorithm>
#include <cstdint>
#include <unordered_set>

namespace zarn::json {

namespace {

using boost::json::error;
using boost::json::error_code;
using Text = boost::json::string_view;
using Reason = ParseError::Reason;

/// Builds the value as boost::json::parser does, and follows the lists and objects that are open. The names of
/// constants and functions are those that the library's parser uses.
class Builder {
public:
    static constexpr std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_array_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_key_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_string_size = std::numeric_limits<std::size_t>::max();

    explicit Builder(Bounds const& bounds) : bounds(bounds) {}

    bool on_document_begin(error_code&) {
        values.reset();
        return true;
    }

    static bool on_document_end(error_code&) { return true; }

    bool on_object_begin(error_code& code) { return Open(false, code); }

    bool on_object_end(std::size_t size, error_code&) {
        values.push_object(size);
        open.pop_back();
        return true;
    }

    bool on_array_begin(error_code& code) { return Open(true, code); }

    bool on_array_end(std::size_t size, error_code&) {
        values.push_array(size);
        open.pop_back();
        return true;
    }

    bool on_key_part(Text part, std::size_t, error_code&) {
        key.append(part.data(), part.size());
        values.push_chars(part);
        return true;
    }

    bool on_key(Text part, std::size_t, error_code& code) {
        auto& object = open.back();
        if (object.keys.size() == bounds.fields) return Fail(Reason::TooManyFields, code);
        key.append(part.data(), part.size());
        values.push_key(part);
        auto const [position, isNew] = object.keys.insert(std::exchange(key, {}));
        object.key = &*position;
        return isNew || Fail(Reason::DuplicateKey, code);
    }

    bool on_string_part(Text part, std::size_t, error_code&) {
        values.push_chars(part);
        return true;
    }

    bool on_string(Text part, std::size_t, error_code& code) {
        values.push_string(part);
        return CountElement(code);
    }

    static bool on_number_part(Text, error_code&) { return true; }

    bool on_int64(std::int64_t number, Text, error_code& code) {
        values.push_int64(number);
        return CountElement(code);
    }

    bool on_uint64(std::uint64_t number, Text, error_code& code) {
        values.push_uint64(number);
        return CountElement(code);
    }

    bool on_double(double number, Text, error_code& code) {
        values.push_double(number);
        return CountElement(code);
    }

    bool on_bool(bool value, error_code& code) {
        values.push_bool(value);
        return CountElement(code);
    }

    bool on_null(error_code& code) {
        values.push_null();
        return CountElement(code);
    }

    static bool on_comment_part(Text, error_code&) { return true; }

    static bool on_comment(Text, error_code&) { return true; }

    boost::json::value Release() { return values.release(); }

    Reason GetReason(error_code const& code) const { return code == error::too_deep ? Reason::TooManyLevels : reason; }

    std::vector<Level> GetPath() const {
        std::vector<Level> path;
        for (auto const& each : open)
            path.push_back({each.isList, each.elements, each.key ? std::optional(*each.key) : std::nullopt});
        return path;
    }

private:
    struct OpenLevel {
        bool isList;
        std::size_t elements = 0;
        std::unordered_set<std::string> keys{};
        std::string const* key = nullptr; ///< in `keys`
    };

    bool Open(bool isList, error_code& code) {
        if (!CountElement(code)) return false;
        open.push_back({isList});
        return true;
    }

    /// Called when a list or an object begins, and for other values when they are complete.
    bool CountElement(error_code& code) {
        if (open.empty() || !open.back().isList) return true;
        return open.back().elements++ < bounds.elements || Fail(Reason::TooManyElements, code);
    }

    bool Fail(Reason why, error_code& code) {
        reason = why;
        code = error::extra_data; // any error ends the parsing
        return false;
    }

    Bounds const bounds;
    boost::json::value_stack values;
    std::vector<OpenLevel> open;
    std::string key;
    Reason reason = Reason::Syntax;
};

/// The position of a byte for a person.
std::string Locate(std::string_view text, std::size_t offset) {
    std::string_view const before = text.substr(0, offset);
    auto const line = std::count(before.begin(), before.end(), '\n') + 1;
    auto const column = before.size() - (before.rfind('\n') + 1) + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

} // namespace

boost::json::value Parse(std::string_view text, Bounds const& bounds) {
    boost::json::parse_options options;
    options.max_depth = bounds.levels;
    boost::json::basic_parser<Builder> parser(options, bounds);
    error_code code;
    std::size_t const length = parser.write_some(false, text.data(), text.size(), code);
    if (!code && text.find_first_not_of(" \t\r\n", length) != std::string_view::npos) code = error::extra_data;
    auto& builder = parser.handler();
    if (code) throw ParseError(builder.GetReason(code), code.message(), Locate(text, length), builder.GetPath());
    return builder.Release();
}

} // namespace zarn::json
