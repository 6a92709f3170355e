#include "host/video/still_service.h"

#include "host/video/still_decoder.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zarn::host::video {
namespace {

Snapshot Refuse(SnapshotError error, std::string detail) { return {error, std::move(detail), nullptr}; }

} // namespace

StillService::StillService() : StillService(Bounds()) {}

StillService::StillService(Bounds const& bounds) : bounds(bounds) {
    for (std::size_t index = 0; index < bounds.workers; ++index) {
        threads.emplace_back([this](std::stop_token const& stop) { Work(stop); });
    }
    threads.emplace_back([this](std::stop_token const& stop) { Expire(stop); });
}

StillService::~StillService() { Stop(); }

void StillService::Request(SlotPtr const& slot, Done done) {
    Snapshot answer;
    auto const now = Clock::now();
    {
        std::scoped_lock const lock(mutex);
        if (isStopped) {
            answer = Refuse(SnapshotError::Stopped, "the video engine stops");
        } else if (slot->jpeg && now - slot->made < bounds.reuse && now - slot->arrived < GreatestAge) {
            answer.jpeg = slot->jpeg;
        } else if (waiting >= bounds.waiting) {
            answer = Refuse(SnapshotError::Busy, "too many snapshots are being made");
        } else {
            slot->waiters.push_back({std::move(done), now + bounds.patience});
            ++waiting;
            if (slot->isQueued) return;
            slot->isQueued = true;
            queue.push_back(slot);
            active.push_back(slot);
            wake.notify_one();
            expire.notify_one();
            return;
        }
    }
    done(std::move(answer));
}

void StillService::Work(std::stop_token const& stop) {
    std::unique_lock lock(mutex);
    while (wake.wait(lock, stop, [this] { return !queue.empty(); }) && !stop.stop_requested()) {
        auto const slot = std::move(queue.front());
        queue.pop_front();
        bool const othersWait = !queue.empty();
        lock.unlock();
        auto const answer = Make(*slot, othersWait, stop);
        lock.lock();
        if (stop.stop_requested()) break;
        auto const waiters = std::exchange(slot->waiters, {});
        waiting -= waiters.size();
        slot->isQueued = false;
        std::erase(active, slot);
        lock.unlock();
        for (auto const& waiter : waiters) waiter.done(answer);
        lock.lock();
    }
}

Snapshot StillService::Make(Slot& slot, bool othersWait, std::stop_token const& stop) {
    auto recent = slot.stream->GetRecent();
    if (!recent) return Refuse(SnapshotError::NoFrame, "the channel has no video");
    auto& units = recent->units;
    auto const now = Clock::now();
    if (now - units.back()->arrived >= GreatestAge) {
        return Refuse(SnapshotError::NoFrame, "the newest picture is too old");
    }
    if (othersWait && now - units.front()->arrived < GreatestAgeWhileOthersWait) {
        // Needs no lock: only the worker that has the slot changes its picture. Never give an older picture than last
        // time.
        if (slot.jpeg && slot.arrived >= units.front()->arrived) return {SnapshotError::None, {}, slot.jpeg};
        units.resize(1);
    }
    auto const arrived = units.back()->arrived;
    auto still = DecodeStill(*recent, std::min(now + bounds.decodingTime, arrived + GreatestAge), stop);
    if (!still.jpeg) return Refuse(SnapshotError::Failed, std::move(still.failure));
    std::scoped_lock const lock(mutex);
    slot.jpeg = still.jpeg;
    slot.made = Clock::now();
    slot.arrived = arrived;
    return {SnapshotError::None, {}, std::move(still.jpeg)};
}

void StillService::Expire(std::stop_token const& stop) {
    std::unique_lock lock(mutex);
    while (!stop.stop_requested()) {
        auto next = Clock::time_point::max();
        for (auto const& slot : active) {
            for (auto const& waiter : slot->waiters) next = std::min(next, waiter.deadline);
        }
        if (active.empty()) {
            expire.wait(lock, stop, [this] { return !active.empty(); });
            continue;
        }
        // A slot without waiters has no deadline; look again when its next one could expire.
        expire.wait_until(lock, stop, std::min(next, Clock::now() + bounds.patience), [] { return false; });
        auto const expired = TakeExpired(Clock::now());
        lock.unlock();
        for (auto const& waiter : expired)
            waiter.done(Refuse(SnapshotError::Busy, "the snapshot was not made in time"));
        lock.lock();
    }
}

std::vector<StillService::Slot::Waiter> StillService::TakeExpired(Clock::time_point now) {
    std::vector<Slot::Waiter> expired;
    for (auto const& slot : active) {
        auto& waiters = slot->waiters;
        auto const late = std::stable_partition(waiters.begin(), waiters.end(),
                                                [now](auto const& waiter) { return waiter.deadline > now; });
        std::move(late, waiters.end(), std::back_inserter(expired));
        waiters.erase(late, waiters.end());
    }
    waiting -= expired.size();
    return expired;
}

void StillService::Stop() {
    {
        std::scoped_lock const lock(mutex);
        isStopped = true;
    }
    for (auto& thread : threads) thread.request_stop();
    threads.clear();
    for (auto const& slot : std::exchange(active, {})) {
        for (auto const& waiter : std::exchange(slot->waiters, {})) {
            waiter.done(Refuse(SnapshotError::Stopped, "the video engine stops"));
        }
    }
    queue.clear();
}

} // namespace zarn::host::video
