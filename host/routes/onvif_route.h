#pragma once

#include "host/web/digest.h"

#include <zarn/web/service.h>

#include <memory>
#include <shared_mutex>

namespace zarn::host::routes {

/// Hands requests to the ONVIF module until Stop(): the module is destroyed while the web server still runs, because
/// only the module can end the requests that wait.
class OnvifRoute final : public zarn::web::Service {
public:
    /// module  must live until Stop() has returned
    /// digest  makes the challenges that clients get
    OnvifRoute(zarn::web::Service& module, web::Digest digest);

    /// The module's answer, in a refusal with the host's challenge; 503 after Stop(). A request without body and
    /// credentials is answered 401 when clients have to log in: some clients hold the body of their first request back
    /// until they have been asked for credentials.
    Response Post(std::shared_ptr<zarn::web::Request> request) override;

    /// When this returns, no request is in the module's Post and none will be.
    void Stop();

private:
    Response Ask(std::shared_ptr<zarn::web::Request> request);

    web::Digest digest;
    std::shared_mutex mutex; ///< guards module
    zarn::web::Service* module;
};

} // namespace zarn::host::routes
