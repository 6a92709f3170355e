#pragma once

#include <zarn/web/service.h>

#include <boost/json/value.hpp>

#include <functional>
#include <memory>

namespace zarn::host::routes {

/// Serves `/api/health`: the status of the host, without login.
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

} // namespace zarn::host::routes
