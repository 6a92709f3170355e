#pragma once

#include "host/video/rtsp/status.h"

#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zarn::host::video::rtsp {

/// The answer to a request.
struct Response {
    Status status = Status::Ok;
    std::vector<std::pair<std::string, std::string>> fields = {}; ///< without CSeq, Server, Date and Content-Length
    std::string body = {};
};

/// The text of a response.
/// sequence  the CSeq of the request; empty: it had none
/// now       for the Date field
/// Pure. Source: RFC 2326, 7.
std::string WriteResponse(Response const& response, std::string_view sequence,
                          std::chrono::system_clock::time_point now);

/// The answer of an HTTP server that opens a tunnel. It has no end.
std::string WriteTunnelResponse(std::chrono::system_clock::time_point now);

/// The answer of an HTTP server to what opens no tunnel.
std::string WriteHttpRefusal(std::chrono::system_clock::time_point now);

} // namespace zarn::host::video::rtsp
