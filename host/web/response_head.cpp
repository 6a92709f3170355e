#include "host/web/response_head.h"

#include <zarn/protocol/network/http/token.h>

#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <clocale>
#include <cstddef>
#include <ctime>
#include <string_view>

namespace zarn::host::web {
namespace {

constexpr std::array<std::string_view, 6> OwnFields{"Connection", "Content-Length", "Date",
                                                    "Keep-Alive", "Server",         "Transfer-Encoding"};

bool IsOwn(std::string_view name) {
    return std::any_of(OwnFields.begin(), OwnFields.end(), [&](auto own) { return boost::beast::iequals(own, name); });
}

bool IsValue(std::string_view value) {
    constexpr std::string_view Splitters("\r\n\0", 3);
    return value.find_first_of(Splitters) == std::string_view::npos;
}

/// The Date field, made once a second by each thread, since it is the same for every response of that second. In the C
/// locale, whatever the process uses. Source: RFC 9110, 5.6.7.
std::string_view GetDate() {
    static locale_t const c = newlocale(LC_ALL_MASK, "C", nullptr);
    thread_local std::time_t made = -1; // never
    thread_local std::array<char, 40> text{};
    std::time_t const now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    if (now != made) {
        std::tm utc{};
        gmtime_r(&now, &utc);
        strftime_l(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S GMT", &utc, c);
        made = now;
    }
    return text.data();
}

void Add(std::string& head, std::string_view name, std::string_view value) {
    head.append(name).append(": ").append(value).append("\r\n");
}

} // namespace

bool HasBody(Status status) noexcept { return status != Status::NoContent && status != Status::NotModified; }

std::string MakeResponseHead(Reply const& reply, ResponseForm form) {
    auto code = static_cast<unsigned>(reply.GetStatus());
    if (code < 200 || code > 599) code = static_cast<unsigned>(Status::InternalServerError);

    std::string head;
    head.reserve(512);
    head.append("HTTP/1.1 ").append(std::to_string(code)).append(" ");
    head.append(protocol::network::http::response::ToString(static_cast<Status>(code))).append("\r\n");
    Add(head, "Date", GetDate());
    Add(head, "Server", "zarn-host");
    if (!form.keepAlive) {
        Add(head, "Connection", "close");
    } else if (form.minorVersion == 0) {
        Add(head, "Connection", "keep-alive");
    }
    if (HasBody(reply.GetStatus())) {
        std::size_t length = 0;
        for (auto const& chunk : reply.GetBody()) length += chunk->GetSize();
        Add(head, "Content-Length", std::to_string(length));
    }
    for (auto const& [name, value] : reply.GetFields()) {
        if (protocol::network::http::IsToken(name) && IsValue(value) && !IsOwn(name)) Add(head, name, value);
    }
    head.append("\r\n");
    return head;
}

} // namespace zarn::host::web
