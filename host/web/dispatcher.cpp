#include "host/web/dispatcher.h"

#include "host/web/request_target.h"

#include <atomic>
#include <exception>
#include <string>
#include <system_error>
#include <utility>

namespace zarn::host::web {
namespace {

using logging::Level;

} // namespace

/// A request that is being answered.
struct Dispatcher::Exchange {
    Exchange(boost::asio::ip::address peer, std::shared_ptr<IncomingRequest> request, Admission::Slot slot, Done done)
        : peer(std::move(peer)), request(std::move(request)), slot(std::move(slot)), done(std::move(done)) {}

    boost::asio::ip::address peer;
    std::shared_ptr<IncomingRequest> request;
    Admission::Slot slot;
    Done done;
    std::atomic<bool> isAnswered = false;
};

Dispatcher::Dispatcher(Router router, Admission& admission, FailedLogins& failedLogins)
    : router(std::move(router)), admission(admission), failedLogins(failedLogins) {}

void Dispatcher::Handle(boost::asio::ip::address const& peer, std::shared_ptr<IncomingRequest> const& request,
                        Limits const& limits, Done done) {
    if (!request->FindField("Authorization").empty()) {
        if (auto const wait = failedLogins.GetWait(peer)) {
            throttled.Log(Level::Warning, "%0% sent too many wrong passwords, refused for %1% s", peer, wait->count());
            return done(MakeTextReply(Status::TooManyRequests, "Too many wrong logins; try again later.",
                                      {{"Retry-After", std::to_string(wait->count())}}));
        }
    }
    auto slot = admission.BeginExchange(limits);
    if (!slot) {
        overloaded.Log(Level::Warning, "Refused a request from %0%: %1% exchanges are under way", peer,
                       limits.exchanges);
        return done(MakeTextReply(Status::ServiceUnavailable, "Too many requests are under way; try again later.",
                                  {{"Retry-After", "1"}}));
    }
    Serve(std::make_shared<Exchange>(peer, request, std::move(slot), std::move(done)));
}

void Dispatcher::Serve(std::shared_ptr<Exchange> const& exchange) {
    auto const [handler, segment] = router.Find(GetPath(exchange->request->GetTarget()));
    if (handler == nullptr) return Finish(*exchange, MakeTextReply(Status::NotFound, "There is nothing here."));
    exchange->request->SetRouteSegment(segment);
    try {
        handler->Handle(exchange->request, [this, exchange](Answer answer) { Finish(*exchange, std::move(answer)); });
    } catch (std::system_error const& error) {
        failed.Log(Level::Error, "A request could not be started: %0%", error.what());
        Finish(*exchange, MakeOverloadReply());
    } catch (std::exception const& error) {
        failed.Log(Level::Error, "A request failed: %0%", error.what());
        Finish(*exchange, MakeTextReply(Status::InternalServerError, "The request could not be worked on."));
    }
}

/// The first answer counts: a handler that has answered may still throw.
void Dispatcher::Finish(Exchange& exchange, Answer answer) {
    if (exchange.isAnswered.exchange(true)) return;
    exchange.slot.reset();
    if (answer.login == Login::Wrong) failedLogins.Count(exchange.peer);
    exchange.done(std::move(answer.reply));
}

} // namespace zarn::host::web
