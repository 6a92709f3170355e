#include "host/video/rtsp/response.h"

#include <algorithm>
#include <array>
#include <ctime>

namespace zarn::host::video::rtsp {
namespace {

struct Reason {
    Status status;
    std::string_view text;
};

constexpr std::array Reasons{
    Reason{Status::Ok, "OK"},
    Reason{Status::BadRequest, "Bad Request"},
    Reason{Status::Unauthorized, "Unauthorized"},
    Reason{Status::NotFound, "Not Found"},
    Reason{Status::EntityTooLarge, "Request Entity Too Large"},
    Reason{Status::ParameterNotUnderstood, "Parameter Not Understood"},
    Reason{Status::SessionNotFound, "Session Not Found"},
    Reason{Status::MethodNotValidInThisState, "Method Not Valid in This State"},
    Reason{Status::AggregateNotAllowed, "Aggregate operation not allowed"},
    Reason{Status::OnlyAggregateAllowed, "Only aggregate operation allowed"},
    Reason{Status::UnsupportedTransport, "Unsupported transport"},
    Reason{Status::InternalError, "Internal Server Error"},
    Reason{Status::NotImplemented, "Not Implemented"},
    Reason{Status::Unavailable, "Service Unavailable"},
    Reason{Status::VersionNotSupported, "RTSP Version Not Supported"},
    Reason{Status::OptionNotSupported, "Option not supported"},
};

constexpr std::string_view ServerField = "Server: zarn-host\r\n";
constexpr std::string_view UncachedFields = "Connection: close\r\nCache-Control: no-store\r\nPragma: no-cache\r\n";

/// The Date field, whatever the locale. Source: RFC 1123, 5.2.14.
std::string WriteDate(std::chrono::system_clock::time_point now) {
    constexpr std::array Days{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array Months{"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    auto const seconds = std::chrono::system_clock::to_time_t(now);
    std::tm time{};
    gmtime_r(&seconds, &time);
    std::array<char, 32> rest{};
    std::array<char, 8> day{};
    std::strftime(day.data(), day.size(), "%d", &time);
    std::strftime(rest.data(), rest.size(), "%Y %H:%M:%S GMT", &time);
    return std::string("Date: ") + Days.at(static_cast<std::size_t>(time.tm_wday)) + ", " + day.data() + " " +
           Months.at(static_cast<std::size_t>(time.tm_mon)) + " " + rest.data() + "\r\n";
}

} // namespace

std::string_view GetReason(Status status) {
    auto const row = std::ranges::find(Reasons, status, &Reason::status);
    return row == Reasons.end() ? "Error" : row->text;
}

std::string WriteResponse(Response const& response, std::string_view sequence,
                          std::chrono::system_clock::time_point now) {
    auto text = "RTSP/1.0 " + std::to_string(static_cast<int>(response.status)) + " ";
    text.append(GetReason(response.status)).append("\r\n");
    if (!sequence.empty()) text.append("CSeq: ").append(sequence).append("\r\n");
    for (auto const& [name, value] : response.fields) text.append(name).append(": ").append(value).append("\r\n");
    text.append(ServerField).append(WriteDate(now));
    if (!response.body.empty()) text += "Content-Length: " + std::to_string(response.body.size()) + "\r\n";
    return text.append("\r\n").append(response.body);
}

std::string WriteTunnelResponse(std::chrono::system_clock::time_point now) {
    return std::string("HTTP/1.0 200 OK\r\n")
        .append(ServerField)
        .append(UncachedFields)
        .append("Content-Type: application/x-rtsp-tunnelled\r\n")
        .append(WriteDate(now))
        .append("\r\n");
}

std::string WriteHttpRefusal(std::chrono::system_clock::time_point now) {
    return std::string("HTTP/1.0 400 Bad Request\r\n")
        .append(ServerField)
        .append(UncachedFields)
        .append(WriteDate(now))
        .append("\r\n");
}

} // namespace zarn::host::video::rtsp
