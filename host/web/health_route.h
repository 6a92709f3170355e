#pragma once

#include <zarn/web/service.h>

#include <boost/json/value.hpp>

#include <functional>
#include <memory>

namespace zarn::host::web {

/// Tells everybody how the host is.
class HealthRoute final : public zarn::web::Service {
public:
    /// describe  makes the status; called for each request, on any thread
    explicit HealthRoute(std::function<boost::json::value()> describe);

    /// 200 with the status as JSON.
    Response Get(std::shared_ptr<zarn::web::Request> request) override;
    Response Head(std::shared_ptr<zarn::web::Request> request) override;

private:
    std::function<boost::json::value()> describe;
};

} // namespace zarn::host::web
