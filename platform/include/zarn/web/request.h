#pragma once

#include <zarn/protocol/network/http/method.h>

#include <map>
#include <string_view>

namespace zarn::web {

/// A request that the web server hands to a service. The views are valid as long as the request lives.
/// Thread: one at a time.
class Request {
public:
    Request() = default;
    virtual ~Request() = default;
    Request(Request const&) = delete;
    Request& operator=(Request const&) = delete;

    /// The method.
    virtual protocol::network::http::Method GetMethod() const = 0;

    /// The request target in origin form: path and, behind "?", query; percent-encoded as the client sent it.
    virtual std::string_view GetTarget() const = 0;

    /// The body, decoded from its transfer coding.
    virtual std::string_view GetBody() const = 0;

    /// Header fields, name to value; names in the client's spelling.
    virtual std::map<std::string_view, std::string_view> GetFields() const = 0;

    /// The value of one header field, its name compared without case; empty when there is none.
    virtual std::string_view FindField(std::string_view name) const;

    /// The part of the path that the "*" in the pattern of the route stands for, as the web server matched it; empty
    /// when the pattern has none.
    virtual std::string_view GetRouteSegment() const { return {}; }
};

} // namespace zarn::web
