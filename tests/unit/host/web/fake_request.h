#pragma once

#include <zarn/web/request.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::host::web {

/// A request as a test says it.
class FakeRequest final : public zarn::web::Request {
public:
    using Method = protocol::network::http::Method;

    FakeRequest(Method method, std::string target, std::map<std::string, std::string> fields = {},
                std::string body = {})
        : method(method), target(std::move(target)), fields(std::move(fields)), body(std::move(body)) {}

    Method GetMethod() const override { return method; }

    std::string_view GetTarget() const override { return target; }

    std::string_view GetBody() const override { return body; }

    std::map<std::string_view, std::string_view> GetFields() const override { return {fields.begin(), fields.end()}; }

private:
    Method method;
    std::string target;
    std::map<std::string, std::string> fields;
    std::string body;
};

} // namespace zarn::host::web
