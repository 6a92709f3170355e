#pragma once

#include "host/web/digest.h"
#include "host/web/handler.h"

#include <zarn/web/service.h>

#include <shared_mutex>

namespace zarn::host::routes {

/// Hands requests to the ONVIF module until Stop(): the module is destroyed while the web server still runs, because
/// only the module can end the requests that wait. A POST gets the module's answer, a refusal with the host's challenge
/// instead of the module's; 503 after Stop(). A request without body and credentials is answered 401 when clients have
/// to log in: some clients hold the body of their first request back until they have been asked for credentials.
///
/// A response of the module is pending and cannot tell when it is complete. It is asked when the jobs that the module
/// has posted for the request have ended, on the thread that ran the last of them.
class OnvifRoute final : public web::Handler {
public:
    /// module  must live until Stop() has returned
    /// digest  makes the challenges that clients get
    OnvifRoute(zarn::web::Service& module, web::Digest digest);

    /// When this returns, no request is in the module's Post and none will be.
    void Stop();

private:
    void Serve(RequestPtr request, Done done) override;

    web::Digest digest;
    std::shared_mutex mutex; ///< guards module
    zarn::web::Service* module;
};

} // namespace zarn::host::routes
