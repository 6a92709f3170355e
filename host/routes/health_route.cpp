#include "host/routes/health_route.h"

#include <boost/json/serialize.hpp>

#include <memory>
#include <utility>

namespace zarn::host::routes {

using web::Reply;
using web::Status;
using zarn::web::response::State;

HealthRoute::HealthRoute(std::function<boost::json::value()> describe)
    : Handler({Method::Get, Method::Head}), describe(std::move(describe)) {}

void HealthRoute::Serve(RequestPtr /*request*/, Done done) {
    auto text = std::make_shared<container::Buffer>(boost::json::serialize(describe()) + '\n');
    done(Reply(Status::Ok, {{"Content-Type", "application/json"}, {"Cache-Control", "no-store"}},
               {State::Complete, {std::move(text)}}));
}

} // namespace zarn::host::routes
