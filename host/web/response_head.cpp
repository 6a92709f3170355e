#include "host/web/response_head.h"

#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <mutex>
#include <string_view>

namespace zarn::host::web {
namespace {

constexpr std::array<std::string_view, 6> OwnFields{"Connection", "Content-Length", "Date",
                                                    "Keep-Alive", "Server",         "Transfer-Encoding"};

bool IsOwn(std::string_view name) {
    return std::any_of(OwnFields.begin(), OwnFields.end(), [&](auto own) { return boost::beast::iequals(own, name); });
}

bool IsToken(std::string_view name) {
    constexpr std::string_view Marks = "!#$%&'*+-.^_`|~";
    return !name.empty() && std::all_of(name.begin(), name.end(), [&](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               Marks.find(c) != std::string_view::npos;
    });
}

bool IsValue(std::string_view value) {
    constexpr std::string_view Splitters("\r\n\0", 3);
    return value.find_first_of(Splitters) == std::string_view::npos;
}

/// The time of an HTTP header; made once a second, since it is the same for every response of that second.
std::string HttpDate() {
    static std::mutex mutex;
    static std::time_t made = 0;
    static std::string text;
    std::time_t const now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::lock_guard const lock(mutex);
    if (now != made || text.empty()) {
        constexpr std::array<char const*, 7> Days{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
        constexpr std::array<char const*, 12> Months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
        std::tm utc{};
        gmtime_r(&now, &utc);
        std::array<char, 40> rest{};
        std::size_t const length = std::strftime(rest.data(), rest.size(), " %Y %H:%M:%S GMT", &utc);
        std::array<char, 3> day{};
        std::strftime(day.data(), day.size(), "%d", &utc);
        text = Days.at(static_cast<std::size_t>(utc.tm_wday));
        text.append(", ").append(day.data(), 2).append(" ").append(Months.at(static_cast<std::size_t>(utc.tm_mon)));
        text.append(rest.data(), length);
        made = now;
    }
    return text;
}

void Add(std::string& head, std::string_view name, std::string_view value) {
    head.append(name).append(": ").append(value).append("\r\n");
}

} // namespace

bool HasBody(Reply::Status status) noexcept {
    return status != Reply::Status::NoContent && status != Reply::Status::NotModified;
}

std::string MakeResponseHead(Reply const& reply, ResponseForm form) {
    auto code = static_cast<unsigned>(reply.status);
    if (code < 200 || code > 599) code = static_cast<unsigned>(Reply::Status::InternalServerError);

    std::string head;
    head.reserve(512);
    head.append("HTTP/1.1 ").append(std::to_string(code)).append(" ");
    head.append(protocol::network::http::response::ToString(static_cast<Reply::Status>(code))).append("\r\n");
    Add(head, "Date", HttpDate());
    Add(head, "Server", "zarn-host");
    if (!form.keepAlive) {
        Add(head, "Connection", "close");
    } else if (form.minorVersion == 0) {
        Add(head, "Connection", "keep-alive");
    }
    if (HasBody(reply.status)) {
        std::size_t length = 0;
        for (auto const& chunk : reply.body) length += chunk->GetSize();
        Add(head, "Content-Length", std::to_string(length));
    }
    for (auto const& [name, value] : reply.fields) {
        if (IsToken(name) && IsValue(value) && !IsOwn(name)) Add(head, name, value);
    }
    head.append("\r\n");
    return head;
}

} // namespace zarn::host::web
