#pragma once

#include <zarn/logging/logger.h>

#include <cstddef>

namespace zarn::host::events {

/// Warns when clients leave more events than expected in their subscriptions, which drop none until they end.
/// Thread: one at a time.
class QueueWatch {
public:
    /// Looks at the subscriptions. Writes one line when they together hold more than `limit` events, and no further one
    /// until they have held less meanwhile.
    void Look(std::size_t limit);

private:
    logging::Logger logger{"zarn.host.events"};
    bool isOver = false;
};

} // namespace zarn::host::events
