#pragma once

#include <zarn/web/request.h>

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <map>
#include <string_view>

namespace zarn::host::web {

/// A request from a connection, in the form that handlers and the module read.
/// It leaves out the fields that concern the connection only (Connection and what it names, Keep-Alive, Expect, TE,
/// Trailer, Transfer-Encoding, Upgrade, Proxy-...), which the web server has dealt with. It joins the values of a
/// repeated field with ", " (RFC 9110, 5.3). In Authorization it removes the white space before "," and "=".
class IncomingRequest final : public zarn::web::Request {
public:
    using Message = boost::beast::http::request<boost::beast::http::string_body>;

    /// message  the whole request; its body decoded, its target in origin or absolute form
    explicit IncomingRequest(Message message);

    /// A method that HTTP does not define is given as CONNECT, which nothing serves: it gets the same answer.
    protocol::network::http::Method GetMethod() const override { return method; }

    std::string_view GetTarget() const override { return message.target(); }

    std::string_view GetBody() const override { return message.body(); }

    std::map<std::string_view, std::string_view> GetFields() const override;

    std::string_view FindField(std::string_view name) const override { return message[name]; }

    std::string_view GetRouteSegment() const override { return routeSegment; }

    /// segment  a part of the target
    void SetRouteSegment(std::string_view segment) { routeSegment = segment; }

private:
    Message message;
    protocol::network::http::Method method;
    std::string_view routeSegment;
};

} // namespace zarn::host::web
