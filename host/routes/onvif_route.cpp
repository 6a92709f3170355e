#include "host/routes/onvif_route.h"

#include "host/web/reply.h"

#include <mutex>
#include <utility>

namespace zarn::host::routes {

using zarn::web::response::Pending;
using zarn::web::response::State;

OnvifRoute::OnvifRoute(zarn::web::Service& module, web::Digest digest) : digest(digest), module(&module) {}

OnvifRoute::Response OnvifRoute::Post(std::shared_ptr<zarn::web::Request> request) {
    if (request->GetBody().empty() && request->FindField("Authorization").empty()) {
        if (auto challenge = digest.Refuse(*request)) return challenge;
    }
    auto const pending = Ask(request);
    auto const getData = [pending, request = std::move(request), digest = digest] {
        auto data = pending->GetData();
        bool const refused = data.GetState() == State::Complete && data.GetStatus() == web::Status::Unauthorized;
        return refused ? digest.ReplaceChallenge(data, *request) : data;
    };
    return std::make_shared<Pending>(pending->GetStatus(), getData, pending->GetTimeout());
}

OnvifRoute::Response OnvifRoute::Ask(std::shared_ptr<zarn::web::Request> request) {
    std::shared_lock const lock(mutex);
    if (module == nullptr) return web::MakeTextResponse(web::Status::ServiceUnavailable, "The server is stopping.");
    return module->Post(std::move(request));
}

void OnvifRoute::Stop() {
    std::lock_guard const lock(mutex);
    module = nullptr;
}

} // namespace zarn::host::routes
