#include "host/events/parse_document.h"

#include "host/events/bounds.h"
#include "host/events/quote.h"
#include "host/events/read_error.h"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value.hpp>
#include <boost/json/value_stack.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zarn::host::events {
namespace {

namespace json = boost::json;
using Error = json::error_code;
using Text = json::string_view;

/// Builds the value as json::parser does, and keeps the keys of the objects that are open: the library's own would let
/// the last of two equal keys win.
class Builder {
public:
    // The names are the library's.
    static constexpr std::size_t max_object_size = MaximumFields;
    static constexpr std::size_t max_array_size = MaximumEvents;
    static constexpr std::size_t max_key_size = MaximumDocumentBytes;
    static constexpr std::size_t max_string_size = MaximumDocumentBytes;

    bool on_document_begin(Error&) {
        values.reset();
        return true;
    }

    static bool on_document_end(Error&) { return true; }

    bool on_object_begin(Error&) { return Open(false); }

    bool on_object_end(std::size_t size, Error&) {
        values.push_object(size);
        open.pop_back();
        return true;
    }

    bool on_array_begin(Error&) { return Open(true); }

    bool on_array_end(std::size_t size, Error&) {
        values.push_array(size);
        open.pop_back();
        return true;
    }

    bool on_key_part(Text part, std::size_t, Error&) {
        key.append(part.data(), part.size());
        values.push_chars(part);
        return true;
    }

    bool on_key(Text part, std::size_t, Error& error) {
        key.append(part.data(), part.size());
        values.push_key(part);
        auto& keys = open.back().keys;
        bool const repeated = std::find(keys.begin(), keys.end(), key) != keys.end();
        keys.push_back(std::move(key));
        key.clear();
        if (repeated) error = json::error::extra_data; // any error ends the parsing; the reason is kept here
        duplicate = repeated;
        return !repeated;
    }

    bool on_string_part(Text part, std::size_t, Error&) {
        values.push_chars(part);
        return true;
    }

    bool on_string(Text part, std::size_t, Error&) {
        Count();
        values.push_string(part);
        return true;
    }

    static bool on_number_part(Text, Error&) { return true; }

    bool on_int64(std::int64_t number, Text, Error&) {
        Count();
        values.push_int64(number);
        return true;
    }

    bool on_uint64(std::uint64_t number, Text, Error&) {
        Count();
        values.push_uint64(number);
        return true;
    }

    bool on_double(double number, Text, Error&) {
        Count();
        values.push_double(number);
        return true;
    }

    bool on_bool(bool value, Error&) {
        Count();
        values.push_bool(value);
        return true;
    }

    bool on_null(Error&) {
        Count();
        values.push_null();
        return true;
    }

    static bool on_comment_part(Text, Error&) { return true; }

    static bool on_comment(Text, Error&) { return true; }

    json::value Release() { return values.release(); }

    bool HasDuplicate() const { return duplicate; }

    /// What is being read, as Place writes it, such as "event 2: objects[1].id"; empty when nothing is yet.
    std::string GetPlace() const { return open.empty() ? std::string() : WritePlace(open.size()); }

    /// The innermost list or object that is being read.
    std::string GetContainer() const { return open.size() > 1 ? WritePlace(open.size() - 1) : GetOutermost(); }

private:
    /// A list or an object whose end has not come yet.
    struct Level {
        bool list = false;
        std::size_t elements = 0;      ///< of a list, the one that is being read included
        std::vector<std::string> keys; ///< of an object; no more than MaximumFields
    };

    /// What the first `count` open levels lead to.
    std::string WritePlace(std::size_t count) const {
        auto text = "event " + std::to_string(open.front().list ? std::max<std::size_t>(open.front().elements, 1) : 1);
        char const* separator = ": ";
        for (std::size_t i = open.front().list ? 1 : 0; i < count; ++i) {
            auto const& level = open[i];
            if (level.list && level.elements > 0) text += '[' + std::to_string(level.elements - 1) + ']';
            if (!level.list && !level.keys.empty()) text += separator + QuoteKey(level.keys.back());
            separator = ".";
        }
        return text;
    }

    std::string GetOutermost() const { return open.front().list ? "the list of events" : "event 1"; }

    bool Open(bool list) {
        Count();
        open.emplace_back().list = list;
        return true;
    }

    /// A value begins or, if it is short, is there.
    void Count() {
        if (!open.empty() && open.back().list) ++open.back().elements;
    }

    json::value_stack values;
    std::vector<Level> open;
    std::string key;
    bool duplicate = false;
};

/// The place of a byte for a person.
std::string Locate(std::string_view text, std::size_t offset) {
    std::string_view const before = text.substr(0, offset);
    auto const line = std::count(before.begin(), before.end(), '\n') + 1;
    auto const column = before.size() - (before.rfind('\n') + 1) + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

[[noreturn]] void Refuse(Builder const& builder, Error error, std::string_view text, std::size_t length) {
    if (builder.HasDuplicate()) throw ReadError(builder.GetPlace() + ": occurs twice");
    if (error == json::error::object_too_large)
        throw ReadError(builder.GetContainer() + ": more than " + std::to_string(MaximumFields) + " fields");
    if (error == json::error::array_too_large)
        throw ReadError(builder.GetContainer() + ": more than " + std::to_string(MaximumEvents) + " elements");
    if (error == json::error::too_deep)
        throw ReadError(builder.GetPlace() + ": more than " + std::to_string(MaximumDepth) + " levels");
    throw ReadError(Locate(text, length) + ": this is not JSON: " + error.message());
}

} // namespace

json::value ParseDocument(std::string_view text) {
    if (text.size() > MaximumDocumentBytes)
        throw ReadError("the text is longer than " + std::to_string(MaximumDocumentBytes) + " bytes");
    json::parse_options options;
    options.max_depth = MaximumDepth;
    json::basic_parser<Builder> parser(options);
    Error error;
    std::size_t const length = parser.write_some(false, text.data(), text.size(), error);
    if (!error && text.find_first_not_of(" \t\r\n", length) != std::string_view::npos) error = json::error::extra_data;
    if (error) Refuse(parser.handler(), error, text, length);
    return parser.handler().Release();
}

} // namespace zarn::host::events
