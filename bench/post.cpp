#include "post.h"

#include <zarn/job/end_notice.h>
#include <zarn/logging/logger.h>
#include <zarn/web/response/pending.h>

#include <semaphore>
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
    std::binary_semaphore ended(0);
    job::EndNotice const notice([&ended](job::End) { ended.release(); });
    auto const pending = manager.Post(request);
    ended.acquire();
    return static_cast<int>(pending->GetData().GetStatus());
}

} // namespace zarn::bench
