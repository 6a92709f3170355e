#include "host/web/dispatcher.h"

#include "host/web/digest_credentials.h"
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

/// Whether a refusal only asks for a newer nonce: the response was right.
bool IsStale(Reply const& reply) {
    return std::any_of(reply.GetFields().begin(), reply.GetFields().end(), [](auto const& field) {
        if (!boost::beast::iequals(field.first, "WWW-Authenticate")) return false;
        // Parsed as a client does, because the realm may be a text that the client sent.
        auto challenge = ParseDigestParameters(field.second);
        return challenge && boost::beast::iequals((*challenge)["stale"], "true");
    });
}

/// Whether a request was refused because its response was wrong.
bool IsFailedLogin(IncomingRequest const& request, Reply const& reply) {
    if (reply.GetStatus() != Status::Unauthorized) return false;
    auto const authorization = request.FindField("Authorization");
    return boost::istarts_with(authorization, "Digest") && !IsOfUnofferedForm(authorization) && !IsStale(reply);
}

} // namespace

Dispatcher::Dispatcher(Router router, PendingTicker& ticker, Admission& admission, FailedLogins& failedLogins)
    : router(std::move(router)), ticker(ticker), admission(admission), failedLogins(failedLogins) {}

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
    ticker.Watch(Ask(request),
                 [this, peer, slot = std::move(slot), request, done = std::move(done)](Reply reply) mutable {
                     slot.reset();
                     if (IsFailedLogin(*request, reply)) failedLogins.Count(peer);
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
        // No thread could be started: the load is too high for now.
        failed.Log(Level::Error, "A request could not be started: %0%", error.what());
        return MakeTextResponse(Status::ServiceUnavailable, "The request cannot be worked on now; try again later.",
                                {{"Retry-After", "1"}});
    } catch (std::exception const& error) {
        failed.Log(Level::Error, "A request failed: %0%", error.what());
        return MakeTextResponse(Status::InternalServerError, "The request could not be worked on.");
    }
}

} // namespace zarn::host::web
