#include "host/web/dispatcher.h"

#include "host/web/digest_answer.h"
#include "host/web/digest_parameters.h"
#include "host/web/request_target.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <exception>
#include <string>
#include <system_error>
#include <utility>

namespace zarn::host::web {
namespace {

using logging::Level;
using Status = Reply::Status;

/// Whether the refusal only asks for a newer nonce, so that the answer itself was right.
bool IsStale(Reply const& reply) {
    return std::any_of(reply.fields.begin(), reply.fields.end(), [](auto const& field) {
        if (!boost::beast::iequals(field.first, "WWW-Authenticate")) return false;
        // Read as a client does: the realm in it may be the text of the one who guesses.
        auto challenge = ParseDigestParameters(field.second);
        return challenge && boost::beast::iequals((*challenge)["stale"], "true");
    });
}

} // namespace

Dispatcher::Dispatcher(Router router, PendingTicker& ticker, Admission& admission, FailedLogins& failedLogins)
    : router(std::move(router)), ticker(ticker), admission(admission), failedLogins(failedLogins) {}

void Dispatcher::Handle(boost::asio::ip::address const& peer, std::shared_ptr<IncomingRequest> const& request,
                        Limits const& limits, Done done) {
    auto const authorization = request->FindField("Authorization");
    if (!authorization.empty()) {
        if (auto const wait = failedLogins.GetWait(peer)) {
            throttled.Log(Level::Warning, "%0% sent too many wrong passwords, refused for %1% s", peer.to_string(),
                          wait->count());
            return done(MakeTextReply(Status::TooManyRequests, "Too many wrong logins; try again later.",
                                      {{"Retry-After", std::to_string(wait->count())}}));
        }
    }
    auto slot = admission.BeginExchange(limits);
    if (!slot) {
        overloaded.Log(Level::Warning, "Refused a request from %0%: %1% exchanges are under way", peer.to_string(),
                       limits.exchanges);
        return done(MakeTextReply(Status::ServiceUnavailable, "Too many requests are under way; try again later.",
                                  {{"Retry-After", "1"}}));
    }
    bool const answersDigest = boost::istarts_with(authorization, "Digest") && !IsOfOtherForm(authorization);
    auto pending = Ask(request);
    ticker.Watch(std::move(pending), [this, peer, answersDigest, slot = std::move(slot), request,
                                      done = std::move(done)](Reply reply) mutable {
        slot.reset();
        if (answersDigest) CountFailure(peer, reply);
        done(std::move(reply));
    });
}

std::shared_ptr<zarn::web::response::Pending> Dispatcher::Ask(std::shared_ptr<IncomingRequest> const& request) {
    auto const [service, segment] = router.Find(GetPath(request->GetTarget()));
    if (service == nullptr) return MakeTextResponse(Status::NotFound, "There is nothing here.");
    request->SetRouteSegment(segment);
    try {
        return service->Process(request);
    } catch (std::system_error const& error) {
        // No thread could be started: the load is too high, which passes.
        failed.Log(Level::Error, "A request could not be started: %0%", error.what());
        return MakeTextResponse(Status::ServiceUnavailable, "The request cannot be worked on now; try again later.",
                                {{"Retry-After", "1"}});
    } catch (std::exception const& error) {
        failed.Log(Level::Error, "A request failed: %0%", error.what());
        return MakeTextResponse(Status::InternalServerError, "The request could not be worked on.");
    }
}

void Dispatcher::CountFailure(boost::asio::ip::address const& peer, Reply const& reply) {
    if (reply.status == Status::Unauthorized && !IsStale(reply)) failedLogins.Count(peer);
}

} // namespace zarn::host::web
