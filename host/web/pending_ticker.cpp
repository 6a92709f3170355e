#include "host/web/pending_ticker.h"

#include <boost/asio/bind_executor.hpp>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <iterator>
#include <utility>

namespace zarn::host::web {
namespace {

using logging::Level;
using zarn::web::response::Pending;
using zarn::web::response::State;
using Duration = std::chrono::steady_clock::duration;
using namespace std::chrono_literals;

/// The shortest pause between two questions.
constexpr Duration ShortestPause = 50us;

/// A response of age T is asked again after T / PausesPerAge: the answer is late by an eighth of its time at most.
constexpr int PausesPerAge = 8;

/// From this age on a response counts as one that waits for an event; those are asked all together.
constexpr Duration WaitingAge = 20ms;

/// The pause between two rounds over the waiting responses grows with their number, so that asking costs the same share
/// of a core however many there are, between two bounds.
constexpr Duration PausePerWaiting = 40us;
constexpr Duration ShortestRoundPause = 4ms;
constexpr Duration LongestRoundPause = 40ms;

/// An event that completes one waiting response often completes others: after one was complete, so many rounds follow
/// sooner.
constexpr int HastyRounds = 8;
constexpr Duration HastyRoundPause = 1ms;

/// Removes the entries for which `isFinished` returns true, in any order: nothing is moved but the last one.
template <class Entries, class IsFinished>
void RemoveIf(Entries& entries, IsFinished isFinished) {
    for (std::size_t i = 0; i < entries.size();) {
        if (!isFinished(entries[i])) {
            ++i;
            continue;
        }
        if (i + 1 < entries.size()) entries[i] = std::move(entries.back());
        entries.pop_back();
    }
}

} // namespace

PendingTicker::PendingTicker(boost::asio::io_context& io) : strand(boost::asio::make_strand(io)), timer(io) {}

void PendingTicker::Watch(std::shared_ptr<Pending const> pending, Done done) {
    auto const now = Clock::now();
    Entry entry{std::move(pending), std::move(done), now, now + ShortestPause};
    if (auto reply = Ask(entry, now)) return entry.done(*std::move(reply));
    std::lock_guard const lock(mutex);
    arrived.push_back(std::move(entry));
    ArmLocked(arrived.back().due);
}

std::optional<Reply> PendingTicker::Ask(Entry const& entry, Clock::time_point now) {
    auto const fail = [this](char const* why) {
        throwing.Log(Level::Error, "A request ended without an answer: %0%", why);
        return MakeTextReply(Status::InternalServerError, "The request ended without an answer.");
    };
    try {
        auto data = entry.pending->GetData();
        if (data.GetState() == State::Complete) return data;
        auto const timeout = entry.pending->GetTimeout();
        if (timeout <= 0ms || now - entry.begun < timeout) return std::nullopt;
        return MakeTextReply(Status::GatewayTimeout, "The request was not answered in time.");
    } catch (std::exception const& error) {
        return fail(error.what());
    } catch (...) {
        return fail("an exception of unknown type");
    }
}

/// Asks a response and delivers its reply. Returns whether it is finished. A delivery that throws concerns this
/// response only: the others are still to be asked.
bool PendingTicker::AskAndFinish(Entry const& entry, Clock::time_point now) {
    auto reply = Ask(entry, now);
    if (!reply) return false;
    try {
        entry.done(*std::move(reply));
    } catch (std::exception const& error) {
        failing.Log(Level::Error, "An answer could not be delivered: %0%", error.what());
    }
    return true;
}

void PendingTicker::Tick() {
    auto const now = Clock::now();
    try {
        AskAll(now);
    } catch (std::exception const& error) {
        // Out of memory, most likely. The rest is asked again at the next tick.
        nextRound = std::max(nextRound, now + LongestRoundPause);
        failing.Log(Level::Error, "Not all pending responses could be asked: %0%", error.what());
    }

    auto next = waiting.empty() ? Clock::time_point::max() : nextRound;
    for (auto const& entry : young) next = std::min(next, entry.due);
    if (next == Clock::time_point::max()) return;
    std::lock_guard const lock(mutex);
    // The pause counts from the end of the work, so that asking leaves the thread some time however much there is to
    // do.
    ArmLocked(std::max(next, Clock::now() + ShortestPause));
}

void PendingTicker::AskAll(Clock::time_point now) {
    {
        std::lock_guard const lock(mutex);
        young.reserve(young.size() + arrived.size());
        std::move(arrived.begin(), arrived.end(), std::back_inserter(young));
        arrived.clear();
    }
    RemoveIf(young, [&](Entry& entry) { return AskIfDue(entry, now); });
    if (!waiting.empty() && nextRound <= now) AskWaiting(now);
}

/// Asks a young response if it is due. Returns whether it is finished or counts as waiting from now on.
bool PendingTicker::AskIfDue(Entry& entry, Clock::time_point now) {
    if (entry.due > now) return false;
    if (AskAndFinish(entry, now)) return true;
    auto const age = now - entry.begun;
    entry.due = now + std::max(age / PausesPerAge, ShortestPause);
    if (age < WaitingAge) return false;
    if (waiting.empty()) nextRound = now + ShortestRoundPause;
    waiting.push_back(std::move(entry));
    return true;
}

void PendingTicker::AskWaiting(Clock::time_point now) {
    auto const before = waiting.size();
    RemoveIf(waiting, [&](Entry const& entry) { return AskAndFinish(entry, now); });
    hastyRounds = waiting.size() < before ? HastyRounds : std::max(hastyRounds - 1, 0);
    auto const pause =
        std::clamp(PausePerWaiting * static_cast<long>(waiting.size()), ShortestRoundPause, LongestRoundPause);
    nextRound = now + (hastyRounds > 0 ? HastyRoundPause : pause);
}

void PendingTicker::ArmLocked(Clock::time_point when) {
    if (armed && *armed <= when) return;
    armed = when;
    timer.expires_at(when);
    timer.async_wait(
        boost::asio::bind_executor(strand, [this, life = std::weak_ptr(alive)](boost::system::error_code error) {
            if (error || life.expired()) return; // an earlier time was set, or the ticker was destroyed
            {
                std::lock_guard const lock(mutex);
                armed.reset();
            }
            Tick();
        }));
}

} // namespace zarn::host::web
