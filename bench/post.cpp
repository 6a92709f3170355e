#include "post.h"

#include <zarn/logging/logger.h>
#include <zarn/web/response/pending.h>

#include <thread>
#include <utility>

namespace zarn::bench {

namespace {

/// Keep log lines out of the benchmark results.
[[maybe_unused]] bool const quiet = (logging::SetLevel(logging::Level::Warning), true);

} // namespace

Request::Request(std::string_view operation, std::string target)
    : target(std::move(target)),
      body(R"(<?xml version="1.0" encoding="UTF-8"?><s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope">)"
           "<s:Body>" +
           std::string(operation) + "</s:Body></s:Envelope>") {}

int Post(service::onvif::Manager& manager, std::shared_ptr<Request> const& request) {
    auto const pending = manager.Post(request);
    for (;;) {
        auto const data = pending->GetData();
        if (data.GetState() == web::response::State::Complete) return static_cast<int>(data.GetStatus());
        std::this_thread::yield();
    }
}

} // namespace zarn::bench
