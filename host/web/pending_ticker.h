#pragma once

#include "host/web/reply.h"

#include <zarn/web/response/pending.h>

#include <boost/asio/io_context.hpp>

#include <functional>
#include <memory>

namespace zarn::host::web {

/// Asks all pending responses of the web server whether they are ready. A pending response cannot wake anybody, so it
/// has to be asked again and again: a young one often, since most requests take well under a millisecond, an old one
/// rarely, since it is waiting for something to happen. One timer serves them all. Thread: any.
class PendingTicker {
public:
    /// Called once with the reply, on a thread of the I/O context or from within Watch.
    using Done = std::function<void(Reply)>;

    /// io  runs the timer; must outlive the ticker, and no thread may run it while the ticker is destroyed
    explicit PendingTicker(boost::asio::io_context& io);

    /// Drops what is still pending, without calling anybody.
    ~PendingTicker();

    PendingTicker(PendingTicker const&) = delete;
    PendingTicker& operator=(PendingTicker const&) = delete;

    /// Asks `pending` until it is complete, then calls `done`. A response that throws when asked becomes a 500 (what
    /// was thrown is logged); one that is not complete within its own time-out becomes a 504.
    void Watch(std::shared_ptr<zarn::web::response::Pending const> pending, Done done);

private:
    class Impl;
    std::shared_ptr<Impl> impl;
};

} // namespace zarn::host::web
