#include "host/web/handler.h"

#include <zarn/logging/limited_logger.h>

#include <algorithm>
#include <exception>

namespace zarn::host::web {
namespace {

using logging::Level;
using zarn::web::response::State;

Reply MakeEmptyReply(Status status, std::string const& allow) {
    return {status, {{"Allow", allow}}, {State::Complete, {}}};
}

logging::LimitedLogger throwing{"zarn.host.web"};
logging::LimitedLogger failing{"zarn.host.web"};

Answer MakeOrExplain(std::function<Answer()> const& make) {
    auto const fail = [](char const* why) {
        throwing.Log(Level::Error, "A request ended without an answer: %0%", why);
        return MakeTextReply(Status::InternalServerError, "The request ended without an answer.");
    };
    try {
        return make();
    } catch (std::exception const& error) {
        return fail(error.what());
    } catch (...) {
        return fail("an exception of unknown type");
    }
}

} // namespace

Handler::Handler(std::vector<Method> methods)
    : allowed(std::move(methods)), allow(protocol::network::http::MakeAllow(allowed)) {}

void Handler::Handle(RequestPtr request, Done done) {
    auto const method = request->GetMethod();
    if (std::ranges::find(allowed, method) != allowed.end()) return Serve(std::move(request), std::move(done));
    done(MakeEmptyReply(method == Method::Options ? Status::NoContent : Status::MethodNotAllowed, allow));
}

void Deliver(Handler::Done const& done, std::function<Answer()> const& make) noexcept {
    try {
        done(MakeOrExplain(make));
    } catch (std::exception const& error) {
        // Out of memory, most likely.
        failing.Log(Level::Error, "An answer could not be delivered: %0%", error.what());
    }
}

} // namespace zarn::host::web
