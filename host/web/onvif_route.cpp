#include "host/web/onvif_route.h"

#include "host/web/find_field.h"
#include "host/web/reply.h"

#include <mutex>
#include <utility>

namespace zarn::host::web {

OnvifRoute::OnvifRoute(zarn::web::Service& module, ZarnAuthenticationEngine const& engine)
    : digest(engine), module(&module) {}

OnvifRoute::Response OnvifRoute::Post(std::shared_ptr<zarn::web::Request> request) {
    if (request->GetBody().empty() && FindField(request->GetFields(), "Authorization").empty()) {
        if (auto challenge = digest.Refuse(*request)) return challenge;
    }
    std::shared_lock const lock(mutex);
    if (module == nullptr) return MakeTextResponse(Reply::Status::ServiceUnavailable, "The server is stopping.");
    return module->Post(std::move(request));
}

void OnvifRoute::Stop() {
    std::lock_guard const lock(mutex);
    module = nullptr;
}

} // namespace zarn::host::web
