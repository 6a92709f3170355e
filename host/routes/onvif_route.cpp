#include "host/routes/onvif_route.h"

#include <zarn/job/end_notice.h>

#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <utility>

namespace zarn::host::routes {
namespace {

using zarn::web::response::Pending;
using zarn::web::response::State;

/// A request that the module answers. Thread: any.
class Call {
public:
    Call(web::Digest digest, web::Handler::RequestPtr request, web::Handler::Done done)
        : digest(digest), request(std::move(request)), done(std::move(done)) {}

    /// A job of the module for this request has ended.
    void OnEnd(job::End end) {
        {
            std::scoped_lock const lock(mutex);
            if (end == job::End::Dropped) isDropped = true;
            if (++ended != posted) return;
        }
        Finish();
    }

    /// The module has returned.
    /// jobs  how many it has posted; they may have ended already
    void Await(std::shared_ptr<Pending> response, unsigned jobs) {
        {
            std::scoped_lock const lock(mutex);
            pending = std::move(response);
            posted = jobs;
            if (ended != posted) return;
        }
        Finish();
    }

private:
    void Finish() noexcept {
        web::Deliver(done, [this] { return Ask(); });
    }

    web::Answer Ask() const {
        if (isDropped) return web::MakeOverloadReply();
        auto data = pending->GetData();
        if (data.GetState() != State::Complete)
            throw std::logic_error("the response is not complete although its job has ended");
        if (data.GetStatus() == web::Status::Unauthorized) return digest.ReplaceChallenge(data, *request);
        return data;
    }

    web::Digest digest;
    web::Handler::RequestPtr request;
    web::Handler::Done done;
    std::mutex mutex; ///< guards the following; the last to take it finishes the call
    unsigned ended = 0;
    bool isDropped = false;         ///< one of the jobs did not run
    std::optional<unsigned> posted; ///< none: the module has not returned
    std::shared_ptr<Pending> pending;
};

} // namespace

OnvifRoute::OnvifRoute(zarn::web::Service& module, web::Digest digest)
    : Handler({Method::Post}), digest(digest), module(&module) {}

void OnvifRoute::Serve(RequestPtr request, Done done) {
    if (request->GetBody().empty() && request->FindField("Authorization").empty()) {
        if (auto challenge = digest.Refuse(*request)) return done(*std::move(challenge));
    }
    std::shared_lock const lock(mutex);
    if (module == nullptr) return done(web::MakeTextReply(web::Status::ServiceUnavailable, "The server is stopping."));
    auto const call = std::make_shared<Call>(digest, request, std::move(done));
    job::EndNotice const notice([call](job::End end) { call->OnEnd(end); });
    auto pending = module->Post(std::move(request));
    call->Await(std::move(pending), notice.GetCount());
}

void OnvifRoute::Stop() {
    std::lock_guard const lock(mutex);
    module = nullptr;
}

} // namespace zarn::host::routes
