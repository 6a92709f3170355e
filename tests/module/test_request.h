#pragma once

#include <zarn/web/request.h>

#include <map>
#include <string>
#include <utility>

namespace zarn::test {

/// A request as the web server would hand it over.
class TestRequest : public web::Request {
public:
    using Method = protocol::network::http::Method;

    TestRequest(Method method, std::string target, std::string body, std::map<std::string, std::string> fields)
        : method(method), target(std::move(target)), body(std::move(body)), fields(std::move(fields)) {}

    Method GetMethod() const override { return method; }

    std::string_view GetTarget() const override { return target; }

    std::string_view GetBody() const override { return body; }

    std::map<std::string_view, std::string_view> GetFields() const override { return {fields.begin(), fields.end()}; }

private:
    Method method;
    std::string target;
    std::string body;
    std::map<std::string, std::string> fields;
};

} // namespace zarn::test
