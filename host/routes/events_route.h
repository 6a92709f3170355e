#pragma once

#include "host/events/read_events.h"
#include "host/web/digest.h"
#include "host/web/handler.h"

#include <zarn/asio/io_context.h>

namespace zarn::host::routes {

/// Serves `/api/events`: takes events from other programs that log in. Threads of the route read the body and deliver
/// its events: it may be a list of thousands, for each of a thousand subscriptions.
/// 202 with `{"taken": N}` after all events of the body went to the sink; 400 with `{"error": "..."}` when the body is
/// invalid, and then none of them went there; 401 without valid credentials; 415 with the same form when the
/// Content-Type is not JSON.
class EventsRoute final : public web::Handler {
public:
    /// digest  decides which requests are served
    /// sink    is called with each event, before the answer, on a thread of the route
    /// Throws std::system_error when no thread can be started.
    EventsRoute(web::Digest digest, events::EventSink sink);

    /// Drops the requests that no thread has started to read, and waits for the others.
    ~EventsRoute() override = default;

private:
    void Serve(RequestPtr request, Done done) override;
    web::Reply Take(zarn::web::Request const& request) const;

    web::Digest digest;
    events::EventSink sink;
    /// Few threads, because a text needs many times its length while it is read.
    asio::IoContext readers{2};
};

} // namespace zarn::host::routes
