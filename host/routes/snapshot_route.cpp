#include "host/routes/snapshot_route.h"

#include "host/web/reply.h"

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace zarn::host::routes {
namespace {

using video::Snapshot;
using video::SnapshotError;
using web::MakeTextReply;
using web::Reply;
using web::Status;
using zarn::web::response::Pending;
using zarn::web::response::State;

/// Carries the picture from the thread that makes it to the one that asks for it.
struct Delivery {
    std::mutex mutex; ///< guards snapshot
    std::optional<Snapshot> snapshot;
};

Reply MakeReply(Snapshot const& snapshot) {
    if (snapshot.error == SnapshotError::None) {
        return {Status::Ok,
                {{"Content-Type", "image/jpeg"}, {"Cache-Control", "no-store"}},
                {State::Complete, {snapshot.jpeg}}};
    }
    if (snapshot.error == SnapshotError::NoSuchChannel) {
        return MakeTextReply(Status::NotFound, "There is no such channel.");
    }
    return MakeTextReply(Status::ServiceUnavailable, snapshot.detail, {{"Retry-After", "1"}});
}

Pending::Data Ask(Delivery& delivery) {
    std::lock_guard const lock(delivery.mutex);
    if (!delivery.snapshot) return {Status::Provisional, {}, {State::NotReady, {}}};
    return MakeReply(*delivery.snapshot);
}

} // namespace

SnapshotRoute::SnapshotRoute(web::Digest digest, Source source)
    : Service({Method::Get, Method::Head}), digest(digest), source(std::move(source)) {}

SnapshotRoute::Response SnapshotRoute::Get(std::shared_ptr<zarn::web::Request> request) {
    if (auto refusal = digest.Refuse(*request)) return refusal;
    auto const delivery = std::make_shared<Delivery>();
    source(request->GetRouteSegment(), [delivery](Snapshot snapshot) {
        std::lock_guard const lock(delivery->mutex);
        delivery->snapshot = std::move(snapshot);
    });
    return std::make_shared<Pending>(
        Status::Provisional, [delivery] { return Ask(*delivery); }, std::chrono::milliseconds(0));
}

SnapshotRoute::Response SnapshotRoute::Head(std::shared_ptr<zarn::web::Request> request) {
    return Get(std::move(request));
}

} // namespace zarn::host::routes
