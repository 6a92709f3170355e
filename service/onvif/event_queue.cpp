#include "event_queue.h"

#include <tuple>
#include <utility>

namespace zarn::service::onvif {

void EventQueue::Push(EventPtr const& event) {
    auto const place = first + size;
    if (place == blocks.size() * std::tuple_size_v<Block>) blocks.emplace_back();
    blocks.back()[place % std::tuple_size_v<Block>] = event;
    ++size;
}

EventPtr EventQueue::Pop() noexcept {
    auto event = std::move(blocks.front()[first]);
    ++first;
    --size;
    if (size == 0) {
        first = 0; // of the only block
    } else if (first == std::tuple_size_v<Block>) {
        first = 0;
        blocks.pop_front();
    }
    return event;
}

} // namespace zarn::service::onvif
