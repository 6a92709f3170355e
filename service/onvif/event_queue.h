#pragma once

#include "event_ptr.h"

#include <array>
#include <cstddef>
#include <list>
#include <utility>

namespace zarn::service::onvif {

/// Events in the order of their arrival. Grows by one small block at a time: adding an event takes about as long
/// however many there are. (std::deque now and then moves its list of blocks, and the queues of all subscriptions do so
/// with the same event.) Thread: one at a time.
class EventQueue {
public:
    EventQueue() = default;
    EventQueue(EventQueue const&) = delete;
    EventQueue& operator=(EventQueue const&) = delete;

    /// Exchanges the events.
    void Swap(EventQueue& other) noexcept {
        blocks.swap(other.blocks);
        std::swap(first, other.first);
        std::swap(size, other.size);
    }

    /// The number of events.
    std::size_t GetSize() const noexcept { return size; }

    bool IsEmpty() const noexcept { return size == 0; }

    /// Adds an event at the end. Throws std::bad_alloc, and then the queue is as before.
    void Push(EventPtr const& event);

    /// Takes the oldest event; the queue must not be empty.
    EventPtr Pop() noexcept;

private:
    using Block = std::array<EventPtr, 32>;

    std::list<Block> blocks; ///< one is kept when there are no events, for the next one
    std::size_t first = 0;   ///< index of the oldest event in the first block
    std::size_t size = 0;
};

} // namespace zarn::service::onvif
