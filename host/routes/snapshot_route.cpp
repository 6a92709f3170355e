#include "host/routes/snapshot_route.h"

#include "host/web/reply.h"

#include <utility>

namespace zarn::host::routes {
namespace {

using video::Snapshot;
using video::SnapshotError;
using web::MakeTextReply;
using web::Reply;
using web::Status;
using zarn::web::response::State;

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

} // namespace

SnapshotRoute::SnapshotRoute(web::Digest digest, Source source)
    : Handler({Method::Get, Method::Head}), digest(digest), source(std::move(source)) {}

void SnapshotRoute::Serve(RequestPtr request, Done done) {
    if (auto refusal = digest.Refuse(*request)) return done(*std::move(refusal));
    source(request->GetRouteSegment(), [done = std::move(done)](Snapshot const& snapshot) {
        web::Deliver(done, [&snapshot] { return MakeReply(snapshot); });
    });
}

} // namespace zarn::host::routes
