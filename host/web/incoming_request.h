#pragma once

#include <zarn/web/request.h>

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <list>
#include <map>
#include <string>
#include <string_view>

namespace zarn::host::web {

/// A request as it came from a connection, in the form that services read.
/// The fields that concern the connection only (Connection and what it names, Keep-Alive, Expect, TE, Trailer,
/// Transfer-Encoding, Upgrade, Proxy-...) are left out: the web server has dealt with them. A field that came several
/// times stands once, its values joined with ", " (RFC 9110, 5.3). In Authorization no blanks stand before "," and "=".
class IncomingRequest final : public zarn::web::Request {
public:
    using Message = boost::beast::http::request<boost::beast::http::string_body>;

    /// message  the whole request; its body decoded
    /// target   the target in origin form
    IncomingRequest(Message message, std::string target);

    /// A method that is none of those of HTTP is given as CONNECT, which no service serves: it gets the same answer.
    protocol::network::http::Method GetMethod() const override { return method; }

    std::string_view GetTarget() const override { return target; }

    std::string_view GetBody() const override { return message.body(); }

    std::map<std::string_view, std::string_view> GetFields() const override { return fields; }

    /// The value of one field, its name compared without case, without a copy of all; empty when there is none.
    std::string_view FindField(std::string_view name) const;

private:
    void AddField(std::string_view name, std::string_view value);
    void TidyAuthorization();

    Message message;
    std::string target;
    protocol::network::http::Method method;
    std::map<std::string_view, std::string_view> fields;
    std::list<std::string> changed; ///< the text of values that are not as they came, where `fields` points to
};

} // namespace zarn::host::web
