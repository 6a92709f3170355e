#pragma once

#include "host/video/rtsp/status.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zarn::host::video::rtsp {

/// A request of RTSP, or of the HTTP that it may be tunnelled through.
struct Request {
    std::string method;
    std::string uri;
    std::string version; ///< such as "RTSP/1.0"
    std::vector<std::pair<std::string, std::string>> fields;
    std::string body;

    /// The first field with this name in any case, without white space at its ends; empty when there is none.
    std::string_view Find(std::string_view name) const;
};

/// The longest header of a request, request line included, in bytes.
inline constexpr std::size_t MaximumHeader = std::size_t{16} * 1024;

/// The most header fields of a request.
inline constexpr std::size_t MaximumFields = 100;

/// The longest body of a request, in bytes.
inline constexpr std::size_t MaximumBody = std::size_t{64} * 1024;

/// The beginning of what a client has sent.
struct Input {
    /// More bytes are needed. Both numbers count from behind the `size` bytes.
    struct Incomplete {
        std::size_t needed = 1;   ///< with fewer bytes it stays incomplete
        std::size_t searched = 0; ///< bytes in which no header ends
    };

    /// Packets of RTP or RTCP among the requests. Source: RFC 2326, 10.12.
    struct Interleaved {
        std::uint8_t channel = 0;
        std::string_view data; ///< in the parsed text
    };

    /// Something that is no request, or exceeds a bound: the connection cannot go on.
    struct Refused {
        std::optional<Status> status = {}; ///< none: a header without end, which gets no answer
        std::string sequence = {};         ///< the CSeq field, if it could be read
    };

    std::variant<Incomplete, Request, Interleaved, Refused> what;
    std::size_t size = 0; ///< bytes that it takes
};

/// Reads the next request or interleaved packet. Empty lines before a request are skipped; a line may end with LF
/// alone. Never needs more than MaximumHeader + MaximumBody bytes, or 65,539 for an interleaved packet, to tell what it
/// is. Pure. Source: RFC 2326, 4 and 6.
/// searched  Incomplete::searched of the last call with the beginning of this text, so that a header that arrives in
///           small pieces is not searched again and again
Input ParseInput(std::string_view text, std::size_t searched = 0);

} // namespace zarn::host::video::rtsp
