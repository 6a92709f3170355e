#pragma once

#include "host/web/handler.h"

#include <future>
#include <memory>
#include <utility>

namespace zarn::host::web {

/// Hands a request to a handler; the future gets its answer, or an exception if the handler drops the request.
inline std::future<Answer> Send(Handler& handler, Handler::RequestPtr request) {
    auto const promise = std::make_shared<std::promise<Answer>>();
    auto future = promise->get_future();
    handler.Handle(std::move(request), [promise](Answer answer) { promise->set_value(std::move(answer)); });
    return future;
}

/// The reply to a request. Waits for it.
inline Reply Ask(Handler& handler, Handler::RequestPtr request) {
    return Send(handler, std::move(request)).get().reply;
}

} // namespace zarn::host::web
