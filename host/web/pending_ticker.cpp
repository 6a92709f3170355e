#include "host/web/pending_ticker.h"

#include <zarn/logging/limited_logger.h>

#include <boost/asio/bind_executor.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <exception>
#include <iterator>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace zarn::host::web {
namespace {

using zarn::web::response::Pending;
using zarn::web::response::State;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/// The shortest pause between two questions.
constexpr Clock::duration ShortestPause = 50us;

/// A response that has waited for T is asked again after T / this: it loses an eighth of its own duration at most.
constexpr int PausesPerAge = 8;

/// From this age on a response counts as one that waits for an event; those are asked all together.
constexpr Clock::duration WaitingAge = 20ms;

/// Pause between two rounds over the waiting ones: in proportion to their number, so that asking costs the same share
/// of a core however many there are, between two bounds.
constexpr Clock::duration PausePerWaiting = 40us;
constexpr Clock::duration ShortestRoundPause = 4ms;
constexpr Clock::duration LongestRoundPause = 40ms;

/// What has woken one waiting response wakes others: for so many rounds after one was ready they are asked sooner.
constexpr int HastyRounds = 8;
constexpr Clock::duration HastyRoundPause = 1ms;

struct Entry {
    std::shared_ptr<Pending const> pending;
    PendingTicker::Done done;
    Clock::time_point begun;
    Clock::time_point due;
};

/// Removes one of many whose order does not matter.
void Remove(std::vector<Entry>& entries, std::size_t index) {
    if (index + 1 < entries.size()) entries[index] = std::move(entries.back());
    entries.pop_back();
}

} // namespace

class PendingTicker::Impl : public std::enable_shared_from_this<Impl> {
public:
    explicit Impl(boost::asio::io_context& io) : strand(boost::asio::make_strand(io)), timer(io) {}

    void Watch(std::shared_ptr<Pending const> pending, Done done);
    void Stop();

private:
    std::optional<Reply> Ask(Entry const& entry, Clock::time_point now);
    Reply Unanswered(std::string_view why);
    void Finish(Entry const& entry, Reply reply);
    bool Settle(Entry& entry, Clock::time_point now);
    void Tick();
    void TakeArrived();
    void AskYoung(Clock::time_point now);
    void AskWaiting(Clock::time_point now);
    void ArmLocked(Clock::time_point when);

    logging::LimitedLogger throwing{"zarn.host.web"};
    logging::LimitedLogger failing{"zarn.host.web"};
    boost::asio::strand<boost::asio::io_context::executor_type> strand;

    std::mutex mutex; ///< guards the members up to the next blank line
    boost::asio::steady_timer timer;
    std::optional<Clock::time_point> armed; ///< when the timer fires; none: it does not
    std::vector<Entry> arrived;
    bool stopped = false;

    // Only touched on the strand.
    std::vector<Entry> young;
    std::vector<Entry> waiting;
    Clock::time_point nextRound;
    int hastyRounds = 0;
};

void PendingTicker::Impl::Watch(std::shared_ptr<Pending const> pending, Done done) {
    auto const now = Clock::now();
    Entry entry{std::move(pending), std::move(done), now, now + ShortestPause};
    if (auto reply = Ask(entry, now)) {
        entry.done(*std::move(reply));
        return;
    }
    std::lock_guard const lock(mutex);
    if (stopped) return;
    arrived.push_back(std::move(entry));
    ArmLocked(arrived.back().due);
}

void PendingTicker::Impl::Stop() {
    std::vector<Entry> dropped;
    {
        std::lock_guard const lock(mutex);
        stopped = true;
        timer.cancel();
        dropped.swap(arrived);
    }
    young.clear();
    waiting.clear();
}

std::optional<Reply> PendingTicker::Impl::Ask(Entry const& entry, Clock::time_point now) {
    try {
        auto data = entry.pending->GetData();
        if (data.GetState() == State::Complete) return Reply{data.GetStatus(), data.GetFields(), data.GetBody()};
        auto const timeout = entry.pending->GetTimeout();
        if (timeout > 0ms && now - entry.begun >= timeout) {
            return MakeTextReply(Reply::Status::GatewayTimeout, "The request was not answered in time.");
        }
        return std::nullopt;
    } catch (std::exception const& error) {
        return Unanswered(error.what());
    } catch (...) {
        return Unanswered("an exception of unknown type");
    }
}

Reply PendingTicker::Impl::Unanswered(std::string_view why) {
    throwing.Log(logging::Level::Error, "A request ended without an answer: %0%", why);
    return MakeTextReply(Reply::Status::InternalServerError, "The request ended without an answer.");
}

/// Hands a reply over. What is thrown concerns this one only: the others are still to be asked.
void PendingTicker::Impl::Finish(Entry const& entry, Reply reply) {
    try {
        entry.done(std::move(reply));
    } catch (std::exception const& error) {
        failing.Log(logging::Level::Error, "An answer could not be delivered: %0%", error.what());
    }
}

void PendingTicker::Impl::Tick() {
    auto const now = Clock::now();
    try {
        TakeArrived();
        AskYoung(now);
        if (!waiting.empty() && nextRound <= now) AskWaiting(now);
    } catch (std::exception const& error) {
        // Out of memory, most likely. All that is left is asked again at the next tick.
        nextRound = std::max(nextRound, now + LongestRoundPause);
        failing.Log(logging::Level::Error, "Not all pending responses could be asked: %0%", error.what());
    }

    std::optional<Clock::time_point> next;
    for (auto const& entry : young) next = next ? std::min(*next, entry.due) : entry.due;
    if (!waiting.empty()) next = next ? std::min(*next, nextRound) : nextRound;
    // The pause counts from the end of the work, so that asking cannot eat up the thread however much there is to ask.
    if (next) next = std::max(*next, Clock::now() + ShortestPause);
    std::lock_guard const lock(mutex);
    if (next && !stopped) ArmLocked(*next);
}

void PendingTicker::Impl::TakeArrived() {
    std::lock_guard const lock(mutex);
    young.reserve(young.size() + arrived.size());
    std::move(arrived.begin(), arrived.end(), std::back_inserter(young));
    arrived.clear();
}

/// Asks a young response that is due. Returns true when it is young no more.
bool PendingTicker::Impl::Settle(Entry& entry, Clock::time_point now) {
    if (entry.due > now) return false;
    if (auto reply = Ask(entry, now)) {
        Finish(entry, *std::move(reply));
        return true;
    }
    auto const age = now - entry.begun;
    entry.due = now + std::max(age / PausesPerAge, ShortestPause);
    if (age < WaitingAge) return false;
    if (waiting.empty()) nextRound = now + ShortestRoundPause;
    waiting.push_back(std::move(entry));
    return true;
}

void PendingTicker::Impl::AskYoung(Clock::time_point now) {
    for (std::size_t i = 0; i < young.size();) {
        if (Settle(young[i], now)) {
            Remove(young, i);
        } else {
            ++i;
        }
    }
}

void PendingTicker::Impl::AskWaiting(Clock::time_point now) {
    bool ready = false;
    for (std::size_t i = 0; i < waiting.size();) {
        if (auto reply = Ask(waiting[i], now)) {
            ready = true;
            Finish(waiting[i], *std::move(reply));
            Remove(waiting, i);
        } else {
            ++i;
        }
    }
    hastyRounds = ready ? HastyRounds : std::max(hastyRounds - 1, 0);
    auto const pause =
        std::clamp(PausePerWaiting * static_cast<long>(waiting.size()), ShortestRoundPause, LongestRoundPause);
    nextRound = now + (hastyRounds > 0 ? HastyRoundPause : pause);
}

void PendingTicker::Impl::ArmLocked(Clock::time_point when) {
    if (armed && *armed <= when) return;
    armed = when;
    timer.expires_at(when);
    timer.async_wait(boost::asio::bind_executor(strand, [self = shared_from_this()](boost::system::error_code error) {
        // Cancelled because an earlier time was set: that one ticks.
        if (error) return;
        {
            std::lock_guard const lock(self->mutex);
            if (self->stopped) return;
            self->armed.reset();
        }
        self->Tick();
    }));
}

PendingTicker::PendingTicker(boost::asio::io_context& io) : impl(std::make_shared<Impl>(io)) {}

PendingTicker::~PendingTicker() { impl->Stop(); }

void PendingTicker::Watch(std::shared_ptr<zarn::web::response::Pending const> pending, Done done) {
    impl->Watch(std::move(pending), std::move(done));
}

} // namespace zarn::host::web
