#pragma once

#include "host/events/read_events.h"
#include "host/web/digest.h"

#include <zarn/web/service.h>

#include <functional>
#include <memory>

namespace zarn::host::events {

/// Where events go. Thread: any, several at once; the events of one thread stay in their order.
using Sink = std::function<void(std::shared_ptr<meta::data::Event>)>;

/// Serves `/api/events`: takes events of other programs, from those who log in.
class EventsRoute final : public zarn::web::Service {
public:
    /// engine  decides who may bring events; must outlive the route
    /// sink    is called with each event, before the answer
    EventsRoute(ZarnAuthenticationEngine const& engine, Sink sink);

    /// 202 with `{"taken": N}` when all events of the body have gone to the sink; 400 with `{"error": "..."}` when it
    /// does not hold events, none of which has been taken then; 401 for who has not logged in; 415 with the same form
    /// for a body that says that it is not JSON.
    Response Post(std::shared_ptr<zarn::web::Request> request) override;

private:
    web::Digest digest;
    Sink sink;
};

} // namespace zarn::host::events
