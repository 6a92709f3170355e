#pragma once

#include "host/web/handler.h"

#include <boost/json/value.hpp>

#include <functional>

namespace zarn::host::routes {

/// Serves `/api/health`: the status of the host, without login. 200 with the status as JSON.
class HealthRoute final : public web::Handler {
public:
    /// describe  makes the status; called for each request, on any thread
    explicit HealthRoute(std::function<boost::json::value()> describe);

private:
    void Serve(RequestPtr request, Done done) override;

    std::function<boost::json::value()> describe;
};

} // namespace zarn::host::routes
