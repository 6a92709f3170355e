#pragma once

#include "host/access/access_settings.h"

#include <chrono>
#include <cstddef>

namespace zarn::host::web {

/// The bounds of the web server that the configuration sets (`settings.limits`). They may change while it runs; each
/// request keeps the bounds in force when it starts.
struct Limits {
    /// Connections in all; further ones are answered 503 and closed.
    std::size_t connections = ConnectionLimits().connections;

    /// Connections from one address; further ones are answered 503 and closed.
    std::size_t connectionsPerAddress = ConnectionLimits().connectionsPerAddress;

    /// Requests whose response is not complete yet; further ones are answered 503.
    std::size_t exchanges = 1024;

    /// Bytes of a request's body; a longer one is answered 413.
    std::size_t bodyBytes = 1048576;

    /// From the first byte of a request until its header is complete; a slower one is answered 408. Also bounds the TLS
    /// handshake.
    std::chrono::seconds headerTime{10};

    /// How long a connection may be silent between requests, and how long receiving a body or sending a response
    /// may take.
    std::chrono::seconds idleTime{60};

    bool operator==(Limits const&) const = default;
};

/// The longest header field that is taken, "Name: value" without its line end: the SOAP engine reads lines of 8,191
/// characters, of which the carriage return is one.
inline constexpr std::size_t MaximumFieldLine = 8190;

/// The most header fields that a request may have.
inline constexpr std::ptrdiff_t MaximumFields = 100;

/// The longest header of a request, request line included.
inline constexpr std::size_t MaximumHeader = 64 * 1024;

/// The most bytes that request target and Host field may have together: the SOAP engine joins them to one address of
/// less than 1,024 characters, scheme included, and refuses what is longer.
inline constexpr std::size_t MaximumTargetAndHost = 1000;

} // namespace zarn::host::web
