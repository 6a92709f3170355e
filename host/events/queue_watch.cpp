#include "host/events/queue_watch.h"

#include "host/events/subscriptions_status.h"

#include <utility>

namespace zarn::host::events {

void QueueWatch::Look(std::size_t limit) {
    auto const subscriptions = zarn::onvif::events::GetSubscriptions();
    auto const queued = CountQueued(subscriptions);
    bool const wasOver = std::exchange(isOver, queued > limit);
    if (!isOver || wasOver) return;
    logger.Log(
        logging::Level::Warning,
        "%0% events wait in %1% subscriptions, more than settings.events.queued_warning (%2%); clients fetch too "
        "few of them",
        queued, subscriptions.size(), limit);
}

} // namespace zarn::host::events
