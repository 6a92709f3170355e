#pragma once

#include "host/access/failed_logins.h"
#include "host/web/admission.h"
#include "host/web/handler.h"
#include "host/web/incoming_request.h"
#include "host/web/limits.h"
#include "host/web/reply.h"
#include "host/web/router.h"

#include <zarn/logging/limited_logger.h>

#include <boost/asio/ip/address.hpp>

#include <functional>
#include <memory>

namespace zarn::host::web {

/// Hands a request to the handler of its path, and the handler's answer back. Refuses what exceeds a bound: 429 with
/// Retry-After for an address that guesses passwords, 503 when too many exchanges are under way or no thread can be
/// started for this one. Thread: any.
class Dispatcher {
public:
    using Done = std::function<void(Reply)>;

    /// What is passed by reference must outlive the dispatcher.
    Dispatcher(Router router, Admission& admission, FailedLogins& failedLogins);

    Dispatcher(Dispatcher const&) = delete;
    Dispatcher& operator=(Dispatcher const&) = delete;

    /// Answers one request; `done` is called once, on any thread, possibly before this function returns.
    void Handle(boost::asio::ip::address const& peer, std::shared_ptr<IncomingRequest> const& request,
                Limits const& limits, Done done);

private:
    struct Exchange;

    void Serve(std::shared_ptr<Exchange> const& exchange);
    void Finish(Exchange& exchange, Answer answer);

    Router router;
    Admission& admission;
    FailedLogins& failedLogins;
    logging::LimitedLogger throttled{"zarn.host.web"};
    logging::LimitedLogger overloaded{"zarn.host.web"};
    logging::LimitedLogger failed{"zarn.host.web"};
};

} // namespace zarn::host::web
