#pragma once

#include "host/video/snapshot.h"
#include "host/web/digest.h"
#include "host/web/handler.h"

#include <functional>
#include <string_view>

namespace zarn::host::routes {

/// Serves `/snapshot/<id>/latest.jpeg`: the newest picture of a channel, for clients that log in. The channel's id is
/// the segment that the "*" of the route stands for. 200 with a JPEG file; 401 without valid credentials; 404 for an
/// unknown channel; 503 when there is no picture now.
class SnapshotRoute final : public web::Handler {
public:
    /// Asks for a picture of a channel; calls back once, on any thread, possibly before it returns.
    using Source = std::function<void(std::string_view id, std::function<void(video::Snapshot)> done)>;

    /// digest  decides which requests are served
    SnapshotRoute(web::Digest digest, Source source);

private:
    void Serve(RequestPtr request, Done done) override;

    web::Digest digest;
    Source source;
};

} // namespace zarn::host::routes
