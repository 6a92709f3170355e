#pragma once

#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>
#include <zarn/logging/logger.h>

#include <cstddef>
#include <vector>

namespace zarn::host::events {

/// Describes `settings.events.queued_warning`.
std::vector<configuration::Schema> MakeQueueSchemas();

/// How many events may wait in all subscriptions together before the log warns.
std::size_t ReadQueuedWarning(configuration::node::Root const& root);

/// Warns when clients leave more events than expected in their subscriptions, which drop none until they end.
/// Thread: one at a time.
class QueueWatch {
public:
    /// Writes one line when the subscriptions together hold more than `limit` events, and no further one until they
    /// have held less.
    void CheckQueues(std::size_t limit);

private:
    logging::Logger logger{"zarn.host.events"};
    bool isOver = false;
};

} // namespace zarn::host::events
