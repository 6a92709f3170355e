#pragma once

#include "host/video/snapshot.h"
#include "host/web/digest.h"

#include <zarn/web/service.h>

#include <functional>
#include <memory>
#include <string_view>

namespace zarn::host::web {

/// Serves `/snapshot/<id>/latest.jpeg`: the newest picture of a channel, for those who log in.
class SnapshotRoute final : public zarn::web::Service {
public:
    /// Asks for a picture of a channel; calls back once, on any thread, possibly before it returns.
    using Source = std::function<void(std::string_view id, std::function<void(video::Snapshot)> done)>;

    /// digest  decides who may see pictures
    SnapshotRoute(Digest digest, Source source);

    /// 200 with a JPEG file; 401 for who has not logged in; 404 for an unknown channel; 503 when there is no picture
    /// now.
    Response Get(std::shared_ptr<zarn::web::Request> request) override;
    Response Head(std::shared_ptr<zarn::web::Request> request) override;

private:
    Digest digest;
    Source source;
};

} // namespace zarn::host::web
