#pragma once

#include <zarn/web/service.h>

#include <memory>
#include <shared_mutex>

namespace zarn::host::web {

/// Hands requests to the ONVIF module until it is told to stop: the module goes while the web server still runs, since
/// it is the module that ends the requests which wait.
class OnvifRoute final : public zarn::web::Service {
public:
    /// module  must live until Stop() has returned
    explicit OnvifRoute(zarn::web::Service& module);

    /// The module's answer; 503 after Stop().
    Response Post(std::shared_ptr<zarn::web::Request> request) override;

    /// When this returns, no request is in the module's Post and none will be.
    void Stop();

private:
    std::shared_mutex mutex; ///< guards module
    zarn::web::Service* module;
};

} // namespace zarn::host::web
