#include "host/video/rtsp/response.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <iomanip>
#include <locale>
#include <sstream>

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

/// The Date field, whatever the locale. Source: RFC 1123, 5.2.14.
std::string WriteDate(std::chrono::system_clock::time_point now) {
    auto const seconds = std::chrono::system_clock::to_time_t(now);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::put_time(&utc, "Date: %a, %d %b %Y %H:%M:%S GMT\r\n");
    return text.str();
}

/// The head of an HTTP response that no cache keeps.
std::string WriteHttpHead(std::string_view status, std::string_view fields, std::chrono::system_clock::time_point now) {
    return std::string("HTTP/1.0 ")
        .append(status)
        .append("\r\n")
        .append(ServerField)
        .append("Connection: close\r\nCache-Control: no-store\r\nPragma: no-cache\r\n")
        .append(fields)
        .append(WriteDate(now))
        .append("\r\n");
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
    return WriteHttpHead("200 OK", "Content-Type: application/x-rtsp-tunnelled\r\n", now);
}

std::string WriteHttpRefusal(std::chrono::system_clock::time_point now) {
    return WriteHttpHead("400 Bad Request", {}, now);
}

} // namespace zarn::host::video::rtsp
