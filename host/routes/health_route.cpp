#include "host/routes/health_route.h"

#include <boost/json/serialize.hpp>

#include <utility>

namespace zarn::host::routes {

HealthRoute::HealthRoute(std::function<boost::json::value()> describe)
    : Service({Method::Get, Method::Head}), describe(std::move(describe)) {}

HealthRoute::Response HealthRoute::Get(std::shared_ptr<zarn::web::Request> /*request*/) {
    return zarn::web::response::MakeComplete(protocol::network::http::response::Status::Ok,
                                             {{"Content-Type", "application/json"}, {"Cache-Control", "no-store"}},
                                             boost::json::serialize(describe()) + '\n');
}

HealthRoute::Response HealthRoute::Head(std::shared_ptr<zarn::web::Request> request) { return Get(std::move(request)); }

} // namespace zarn::host::routes
