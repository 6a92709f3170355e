#pragma once

#include <service/onvif/manager.h>
#include <zarn/web/request.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace zarn::bench {

/// A request as the web server passes it on.
class Request : public web::Request {
public:
    /// operation  element of the SOAP body
    /// target     path and query
    explicit Request(std::string_view operation, std::string target = "/onvif/device_service");

    protocol::network::http::Method GetMethod() const override { return protocol::network::http::Method::Post; }

    std::string_view GetTarget() const override { return target; }

    std::string_view GetBody() const override { return body; }

    std::map<std::string_view, std::string_view> GetFields() const override {
        return {{"Host", "device:8080"}, {"Content-Type", "application/soap+xml; charset=utf-8"}};
    }

private:
    std::string target;
    std::string body;
};

/// Passes a request to the manager, waits for the answer and returns its status.
int Post(service::onvif::Manager& manager, std::shared_ptr<Request> const& request);

} // namespace zarn::bench
