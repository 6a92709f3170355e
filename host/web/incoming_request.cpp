#include "host/web/incoming_request.h"

#include "host/web/digest_parameters.h"
#include "host/web/find_field.h"

#include <boost/beast/core/string.hpp>
#include <boost/beast/http/rfc7230.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace zarn::host::web {
namespace {

namespace http = boost::beast::http;
using protocol::network::http::Method;

constexpr std::array<std::string_view, 9> ConnectionFields{
    "Connection",       "Keep-Alive",          "Expect",  "TE", "Trailer", "Transfer-Encoding",
    "Proxy-Connection", "Proxy-Authorization", "Upgrade",
};

bool IsConnectionField(std::string_view name, std::string_view connection) {
    return std::any_of(ConnectionFields.begin(), ConnectionFields.end(),
                       [&](auto field) { return boost::beast::iequals(field, name); }) ||
           http::token_list(connection).exists(name);
}

} // namespace

IncomingRequest::IncomingRequest(Message message, std::string target)
    : message(std::move(message)),
      target(std::move(target)),
      method(protocol::network::http::FromString(this->message.method_string()).value_or(Method::Connect)) {
    std::string_view const connection = this->message[http::field::connection];
    for (auto const& field : this->message) {
        if (!IsConnectionField(field.name_string(), connection)) AddField(field.name_string(), field.value());
    }
    TidyAuthorization();
}

std::string_view IncomingRequest::FindField(std::string_view name) const { return web::FindField(fields, name); }

void IncomingRequest::AddField(std::string_view name, std::string_view value) {
    auto const same = std::find_if(fields.begin(), fields.end(),
                                   [&](auto const& field) { return boost::beast::iequals(field.first, name); });
    if (same == fields.end()) {
        fields.emplace(name, value);
    } else {
        same->second = changed.emplace_back(std::string(same->second).append(", ").append(value));
    }
}

void IncomingRequest::TidyAuthorization() {
    auto const field = std::find_if(fields.begin(), fields.end(), [](auto const& entry) {
        return boost::beast::iequals(entry.first, "Authorization");
    });
    if (field == fields.end()) return;
    auto tidied = RemoveBlanksBeforeSeparators(field->second);
    if (tidied.size() < field->second.size()) field->second = changed.emplace_back(std::move(tidied));
}

} // namespace zarn::host::web
