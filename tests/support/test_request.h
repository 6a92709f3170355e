#pragma once

#include <zarn/web/request.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::test {

/// A request as the web server passes it on.
class TestRequest final : public web::Request {
public:
    using Method = protocol::network::http::Method;

    TestRequest(Method method, std::string target, std::map<std::string, std::string> fields = {},
                std::string body = {}, std::string routeSegment = {})
        : method(method),
          target(std::move(target)),
          fields(std::move(fields)),
          body(std::move(body)),
          routeSegment(std::move(routeSegment)) {}

    Method GetMethod() const override { return method; }

    std::string_view GetTarget() const override { return target; }

    std::string_view GetBody() const override { return body; }

    std::map<std::string_view, std::string_view> GetFields() const override { return {fields.begin(), fields.end()}; }

    std::string_view GetRouteSegment() const override { return routeSegment; }

private:
    Method method;
    std::string target;
    std::map<std::string, std::string> fields;
    std::string body;
    std::string routeSegment;
};

} // namespace zarn::test
