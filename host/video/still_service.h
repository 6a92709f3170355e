#pragma once

#include "host/video/snapshot.h"
#include "host/video/stream.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

namespace zarn::host::video {

/// Makes still images on request, on a few threads of its own. Requests for one channel share one decoding, and its
/// result for a moment longer. While other channels wait, the answer is the key frame, which decodes without other
/// frames, or the last still image, whichever is newer, if the key frame is young. A request that is not served in time
/// gets an error. Thread: any.
class StillService {
public:
    using Done = std::function<void(Snapshot)>;
    using Clock = std::chrono::steady_clock;

    /// How much is done, and for how long.
    struct Bounds {
        std::size_t workers = 2;                      ///< decodings at the same time
        std::size_t waiting = 256;                    ///< requests that wait
        std::chrono::milliseconds patience{2500};     ///< how long a request waits
        std::chrono::milliseconds decodingTime{2000}; ///< how long a decoding may last
        std::chrono::milliseconds reuse{300};         ///< how long a picture is given out again
    };

    /// A picture's greatest age when it is given out.
    static constexpr std::chrono::milliseconds GreatestAge{2000};

    /// The greatest age of a key frame that is used while other channels wait; leaves 200 ms to decode it.
    static constexpr std::chrono::milliseconds GreatestAgeWhileOthersWait{1800};

    /// What the service remembers of one channel. Kept by the channel's owner, guarded by the service.
    class Slot {
    public:
        explicit Slot(std::shared_ptr<Stream> stream) : stream(std::move(stream)) {}

    private:
        friend class StillService;

        struct Waiter {
            Done done;
            Clock::time_point deadline;
        };

        std::shared_ptr<Stream> const stream;
        std::shared_ptr<container::Buffer> jpeg;
        Clock::time_point made;    ///< when `jpeg` was made
        Clock::time_point arrived; ///< when its picture came from the source
        std::vector<Waiter> waiters;
        bool isQueued = false; ///< waits for a worker or is with one
    };

    StillService();
    explicit StillService(Bounds const& bounds);

    /// Stop().
    ~StillService();

    StillService(StillService const&) = delete;
    StillService& operator=(StillService const&) = delete;

    /// Asks for a picture; `done` is called once: here when the answer is known, else on a thread of the service. Never
    /// waits.
    void Request(std::shared_ptr<Slot> const& slot, Done done);

    /// Ends the decodings and answers all that wait with Stopped. Stopping twice is harmless.
    void Stop();

private:
    using SlotPtr = std::shared_ptr<Slot>;

    void Work(std::stop_token const& stop);
    void Expire(std::stop_token const& stop);
    Snapshot Make(Slot& slot, bool othersWait, std::stop_token const& stop);
    std::vector<Slot::Waiter> TakeExpired(Clock::time_point now);

    Bounds const bounds;
    std::mutex mutex; ///< guards all below and every slot
    std::condition_variable_any wake;
    std::condition_variable_any expire;
    bool isStopped = false;
    std::size_t waiting = 0;
    std::deque<SlotPtr> queue;
    std::vector<SlotPtr> active; ///< queued or with a worker
    std::vector<std::jthread> threads;
};

} // namespace zarn::host::video
