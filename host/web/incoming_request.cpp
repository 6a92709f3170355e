#include "host/web/incoming_request.h"

#include "host/web/digest_credentials.h"
#include "host/web/request_target.h"

#include <boost/beast/core/string.hpp>
#include <boost/beast/http/field.hpp>
#include <boost/beast/http/rfc7230.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace zarn::host::web {
namespace {

namespace http = boost::beast::http;
using http::field;
using protocol::network::http::Method;

constexpr field ConnectionFields[]{
    field::connection,
    field::keep_alive,
    field::expect,
    field::te,
    field::trailer,
    field::proxy_connection,
    field::proxy_authorization,
    field::upgrade,
    field::transfer_encoding,
};

void EraseConnectionFields(http::fields& fields) {
    if (auto const connection = fields.find(field::connection); connection != fields.end()) {
        std::string const named(connection->value());
        for (auto const& name : http::token_list(named)) fields.erase(name);
    }
    for (auto each = fields.begin(); each != fields.end();) {
        auto const found = std::ranges::find(ConnectionFields, each->name());
        each = found == std::end(ConnectionFields) ? std::next(each) : fields.erase(each);
    }
}

/// Whether a name occurs more than once, however it is spelled. Most fields have names that the library knows, which
/// are compared as numbers; of the others there are few.
bool HasRepeatedFields(http::fields const& fields) {
    for (auto each = fields.begin(); each != fields.end(); ++each) {
        auto const isSame = [&each](auto const& other) {
            return other.name() == each->name() &&
                   (each->name() != field::unknown || boost::beast::iequals(other.name_string(), each->name_string()));
        };
        if (std::any_of(std::next(each), fields.end(), isSame)) return true;
    }
    return false;
}

void JoinRepeatedFields(http::fields& fields) {
    if (!HasRepeatedFields(fields)) return;
    auto const find = [&] {
        return std::find_if(fields.begin(), fields.end(),
                            [&](auto const& each) { return fields.count(each.name_string()) > 1; });
    };
    for (auto repeated = find(); repeated != fields.end(); repeated = find()) {
        std::string const name(repeated->name_string());
        auto const [first, last] = fields.equal_range(name);
        std::string values(first->value());
        std::for_each(std::next(first), last, [&](auto const& each) { values.append(", ").append(each.value()); });
        fields.set(name, values);
    }
}

void TidyAuthorization(http::fields& fields) {
    auto const found = fields.find(field::authorization);
    if (found == fields.end()) return;
    auto const tidied = RemoveBlanksBeforeSeparators(found->value());
    if (tidied.size() < found->value().size()) fields.set(std::string(found->name_string()), tidied);
}

} // namespace

IncomingRequest::IncomingRequest(Message received)
    : message(std::move(received)),
      method(protocol::network::http::FromString(message.method_string()).value_or(Method::Connect)) {
    if (!message.target().starts_with('/')) message.target(ToOriginForm(message.target()).value_or("/"));
    EraseConnectionFields(message);
    JoinRepeatedFields(message);
    TidyAuthorization(message);
}

std::map<std::string_view, std::string_view> IncomingRequest::GetFields() const {
    std::map<std::string_view, std::string_view> fields;
    for (auto const& each : message) fields.emplace(each.name_string(), each.value());
    return fields;
}

} // namespace zarn::host::web
