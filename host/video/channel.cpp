#include "host/video/channel.h"

#include "host/video/log.h"
#include "host/video/source.h"

#include <zarn/chrono/back_off.h>

#include <stdexcept>
#include <system_error>
#include <utility>

namespace zarn::host::video {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// How long one wait for a picture lasts; a stop is noticed after it.
constexpr std::chrono::milliseconds PullWait = 100ms;

/// A source that gives nothing for so long has failed.
constexpr std::chrono::seconds PictureTimeout = 10s;

/// A file that lags more than this, because the machine could not follow, goes on in real time instead of catching up.
constexpr std::chrono::seconds LagLimit = 1s;

std::string ToText(meta::data::VideoInfo const& info) {
    auto const [width, height] = info.GetResolution();
    return info.GetCodec() + " " + std::to_string(width) + "x" + std::to_string(height) + " " +
           std::to_string(info.GetFrameRateNumerator()) + "/" + std::to_string(info.GetFrameRateDenominator());
}

} // namespace

Channel::Channel(ChannelSettings settings)
    : settings(std::move(settings)), stream(std::make_shared<Stream>(this->settings.described)) {
    if (!HasSource()) return;
    auto parsed = ParseSource(this->settings.source);
    if (!parsed.source) {
        Refuse({"the source is not understood", std::move(parsed.error)});
        return;
    }
    state = ChannelState::Connecting;
    hasEnded = false;
    try {
        thread = std::jthread([this, source = std::move(*parsed.source)](std::stop_token const& stop) {
            Run(stop, source);
            std::scoped_lock const lock(mutex);
            hasEnded = true;
            end.notify_all();
        });
    } catch (std::system_error const& error) {
        hasEnded = true;
        couldBegin = false;
        Refuse({"there is no thread for the source", error.what()});
    }
}

Channel::~Channel() = default;

void Channel::Stop() { thread.request_stop(); }

void Channel::Refuse(Failure const& why) {
    state = ChannelState::Failed;
    detail = why.summary;
    Log().Log(logging::Level::Warning, "channel %0%: %1%: %2%", settings.id, why.summary, why.detail);
}

void Channel::Abandon() { stream->End(); }

bool Channel::WaitForEnd(Clock::time_point deadline) {
    std::unique_lock lock(mutex);
    return end.wait_until(lock, deadline, [this] { return hasEnded; });
}

bool Channel::CanGoOnWith(ChannelSettings const& other) const {
    if (!couldBegin) return false;
    auto same = other;
    same.described = settings.described;
    return same == settings;
}

ChannelStatus Channel::GetStatus() const {
    ChannelStatus status;
    status.id = settings.id;
    status.info = stream->Describe();
    if (auto const newest = stream->GetNewest()) {
        status.frameAge = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - *newest);
    }
    std::scoped_lock const lock(mutex);
    status.state = state;
    status.detail = detail;
    status.restarts = restarts;
    return status;
}

void Channel::Run(std::stop_token const& stop, Source const& source) {
    chrono::BackOff backOff(1s);
    OpenOptions options{settings.user, settings.password, false};
    while (!stop.stop_requested()) {
        auto outcome = RunOnce(stop, source, options);
        if (stop.stop_requested() || !outcome.failure) continue;
        stream->Interrupt();
        SetState(ChannelState::Failed, *outcome.failure);
        auto const lasted = outcome.firstPicture ? Clock::now() - *outcome.firstPicture : Clock::duration{0};
        WaitUntil(stop, Clock::now() + backOff.Fail(lasted));
        // A server that refuses one transport may offer the other.
        if (!outcome.firstPicture) options.overUdp = !options.overUdp;
        if (stop.stop_requested()) break;
        {
            std::scoped_lock const lock(mutex);
            ++restarts;
        }
        SetState(ChannelState::Connecting, {});
    }
    stream->End();
}

Channel::Outcome Channel::RunOnce(std::stop_token const& stop, Source const& source, OpenOptions const& options) {
    bool const isPaced = !source.isLive;
    Outcome outcome;
    timeline.BeginRun();
    Producer producer(source, options);
    auto newest = Clock::now();
    while (!stop.stop_requested()) {
        auto result = producer.Pull(PullWait);
        // It may have hung for long, and another channel may have taken this one's place.
        if (stop.stop_requested()) break;
        if (auto* picture = std::get_if<Producer::Picture>(&result)) {
            newest = Clock::now();
            Publish(stop, std::move(*picture), isPaced);
            if (!outcome.firstPicture) outcome.firstPicture = newest;
        } else if (auto* failure = std::get_if<Failure>(&result)) {
            outcome.failure = std::move(*failure);
            return outcome;
        } else if (std::holds_alternative<Producer::Ended>(result)) {
            if (!isPaced) outcome.failure = Failure{"the video ended"};
            if (!outcome.firstPicture) outcome.failure = Failure{"it holds no video"};
            return outcome;
        } else if (Clock::now() - newest > PictureTimeout) {
            outcome.failure = Failure{"no picture came for 10 seconds"};
            return outcome;
        }
    }
    return outcome;
}

void Channel::Publish(std::stop_token const& stop, Producer::Picture picture, bool isPaced) {
    UpdateFormat(gst_sample_get_caps(picture.sample.get()));
    auto const now = stream->GetNow();
    if (isPaced && now - timeline.GetPosition() > LagLimit) timeline.BeginRun();
    auto unit = std::make_shared<AccessUnit>();
    unit->stamp = timeline.Place(picture.times, now);
    if (isPaced) WaitUntil(stop, Clock::now() + (unit->stamp.decoding - now));
    auto* buffer = gst_sample_get_buffer(picture.sample.get());
    unit->data.reset(gst_buffer_ref(buffer));
    unit->isKey = !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
    unit->size = gst_buffer_get_size(buffer);
    unit->arrived = Clock::now();
    if (payloader) unit->packets = payloader->Pay(buffer, caps.get(), unit->stamp.presentation);
    stream->Publish(std::move(unit));
    SetState(ChannelState::Running, {});
}

void Channel::UpdateFormat(GstCaps* next) {
    if (caps && (caps.get() == next || gst_caps_is_equal(caps.get(), next) != FALSE)) return;
    auto const format = ReadFormat(next);
    if (!format) return;
    caps = format->caps;
    if (stream->SetFormat(*format) && payloader) return;
    try {
        payloader = std::make_unique<Payloader>(format->codec);
    } catch (std::runtime_error const& error) {
        payloader.reset();
        Log().Log(logging::Level::Error, "channel %0%: cannot be viewed over RTSP: %1%", settings.id, error.what());
    }
}

void Channel::WaitUntil(std::stop_token const& stop, Clock::time_point time) {
    std::unique_lock lock(mutex);
    wake.wait_until(lock, stop, time, [] { return false; });
}

/// Thread: the channel's own, the only one that writes the state.
void Channel::SetState(ChannelState next, Failure const& why) {
    if (state == next && detail == why.summary) return;
    Report(next, why.GetText()); // first, so that a visible state has its line in the log
    std::scoped_lock const lock(mutex);
    state = next;
    detail = why.summary;
}

void Channel::Report(ChannelState next, std::string why) {
    if (next == ChannelState::Running) {
        Log().Log(logging::Level::Info, "channel %0%: running, %1%", settings.id, ToText(stream->Describe()));
        reported.clear();
    } else if (next == ChannelState::Failed && reported != why) {
        Log().Log(logging::Level::Warning, "channel %0%: source %1% failed and will be reopened: %2%", settings.id,
                  WithoutSecrets(settings.source), why);
        reported = std::move(why);
    }
}

} // namespace zarn::host::video
