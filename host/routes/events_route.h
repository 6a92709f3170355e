#pragma once

#include "host/events/read_events.h"
#include "host/web/digest.h"

#include <zarn/asio/io_context.h>
#include <zarn/web/service.h>

#include <memory>

namespace zarn::host::routes {

/// Serves `/api/events`: takes events from other programs that log in.
class EventsRoute final : public zarn::web::Service {
public:
    /// digest  decides which requests are served
    /// sink    is called with each event, before the answer, on a thread of the route
    /// Throws std::system_error when no thread can be started.
    EventsRoute(web::Digest digest, events::EventSink sink);

    /// Drops the requests whose events have not been read, and waits for those that have.
    ~EventsRoute() override = default;

    /// Pending while the body is read and its events are taken, which does not hold up the web server's thread: it may
    /// be a list of thousands, for each of a thousand subscriptions.
    /// 202 with `{"taken": N}` when all events of the body have gone to the sink; 400 with `{"error": "..."}` when it
    /// does not hold events, none of which has been taken then; 401 for who has not logged in; 415 with the same form
    /// for a body that says that it is not JSON.
    Response Post(std::shared_ptr<zarn::web::Request> request) override;

private:
    Response Deliver(zarn::web::Request const& request) const;

    web::Digest digest;
    events::EventSink sink;
    /// Few threads, since a text takes many times its length while it is read: the others wait for their turn.
    asio::IoContext readers{2};
};

} // namespace zarn::host::routes
