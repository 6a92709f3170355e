#include "fair_mutex.h"

namespace zarn::service::onvif {

void FairMutex::lock() {
    auto const turn = asked.fetch_add(1, std::memory_order_relaxed);
    for (auto at = served.load(std::memory_order_acquire); at != turn; at = served.load(std::memory_order_acquire))
        served.wait(at, std::memory_order_acquire);
}

void FairMutex::unlock() {
    served.fetch_add(1, std::memory_order_release);
    served.notify_all(); // every waiting thread checks whether it is its turn
}

} // namespace zarn::service::onvif
