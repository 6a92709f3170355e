#pragma once

#include <string_view>

namespace zarn::host::video::rtsp {

/// The statuses of responses. Source: RFC 2326, 7.1.1.
enum class Status {
    Ok = 200,
    BadRequest = 400,
    Unauthorized = 401,
    NotFound = 404,
    EntityTooLarge = 413,
    ParameterNotUnderstood = 451,
    SessionNotFound = 454,
    MethodNotValidInThisState = 455,
    AggregateNotAllowed = 459,
    OnlyAggregateAllowed = 460,
    UnsupportedTransport = 461,
    InternalError = 500,
    NotImplemented = 501,
    Unavailable = 503,
    VersionNotSupported = 505,
    OptionNotSupported = 551,
};

/// The words that go with a status.
std::string_view GetReason(Status status);

} // namespace zarn::host::video::rtsp
