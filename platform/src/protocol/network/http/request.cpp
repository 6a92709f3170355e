#include "protocol/network/http/token.h"

#include <zarn/protocol/network/http/request.h>

#include <algorithm>
#include <ostream>
#include <string_view>
#include <utility>

namespace zarn::protocol::network::http {

namespace {

std::string EncodeTarget(std::string_view target) {
    constexpr std::string_view Digits = "0123456789ABCDEF";
    if (target.empty()) return "/";
    std::string encoded;
    encoded.reserve(target.size());
    for (char const character : target) {
        if ('!' <= character && character <= '~') {
            encoded += character;
            continue;
        }
        auto const byte = static_cast<unsigned char>(character);
        encoded += {'%', Digits[byte >> 4U], Digits[byte & 0xfU]};
    }
    return encoded;
}

std::string CleanValue(std::string value) {
    std::ranges::replace_if(
        value, [](char character) { return character == '\r' || character == '\n' || character == '\0'; }, ' ');
    return value;
}

bool IsFraming(std::string_view name) {
    return EqualsIgnoringCase(name, "Content-Length") || EqualsIgnoringCase(name, "Transfer-Encoding");
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
