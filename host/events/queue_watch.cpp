#include "host/events/queue_watch.h"

#include "host/events/status.h"

#include <zarn/configuration/node/primitive.h>

#include <cstdint>
#include <utility>

namespace zarn::host::events {
namespace {

constexpr char QueuedWarningPath[] = "settings.events.queued_warning";

} // namespace

std::vector<configuration::Schema> MakeQueueSchemas() {
    return {{QueuedWarningPath,
             std::uint32_t{100000},
             "Events waiting in all subscriptions together above which the log warns",
             {},
             configuration::schema::Between(1, 1000000000)}};
}

std::size_t ReadQueuedWarning(configuration::node::Root const& root) {
    return configuration::node::Read<std::uint32_t>(root, QueuedWarningPath);
}

void QueueWatch::CheckQueues(std::size_t limit) {
    auto const subscriptions = zarn::onvif::events::GetSubscriptions();
    auto const queued = CountQueued(subscriptions);
    bool const wasOver = std::exchange(isOver, queued > limit);
    if (!isOver || wasOver) return;
    logger.Log(logging::Level::Warning,
               "%0% events wait in %1% subscriptions, more than %2% (%3%); clients fetch too few of them", queued,
               subscriptions.size(), QueuedWarningPath, limit);
}

} // namespace zarn::host::events
