#include <zarn/protocol/network/http/request.h>
#include <zarn/protocol/network/http/token.h>
#include <zarn/text/character.h>

#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <ostream>
#include <string_view>
#include <utility>

namespace zarn::protocol::network::http {

namespace {

std::string EncodeTarget(std::string_view target) {
    return target.empty() ? "/" : text::PercentEncode(target, [](char each) { return '!' <= each && each <= '~'; });
}

std::string CleanValue(std::string value) {
    std::ranges::replace_if(
        value, [](char character) { return character == '\r' || character == '\n' || character == '\0'; }, ' ');
    return value;
}

bool IsFraming(std::string_view name) {
    return boost::beast::iequals(name, "Content-Length") || boost::beast::iequals(name, "Transfer-Encoding");
}

} // namespace

Request::Request(Method method, std::string target, std::string body, std::map<std::string, std::string> fields)
    : method(method), target(std::move(target)), body(std::move(body)), fields(std::move(fields)) {}

std::ostream& operator<<(std::ostream& stream, Request const& request) {
    stream << ToString(request.GetMethod()) << ' ' << EncodeTarget(request.GetTarget()) << " HTTP/1.1\r\n";
    for (auto const& [name, value] : request.GetFields()) {
        if (IsToken(name) && !IsFraming(name)) stream << name << ": " << CleanValue(value) << "\r\n";
    }
    return stream << "Content-Length: " << std::to_string(request.GetBody().size()) << "\r\n\r\n" << request.GetBody();
}

} // namespace zarn::protocol::network::http
