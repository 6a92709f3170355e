#pragma once

#include "host/video/channel_settings.h"
#include "host/video/channel_status.h"
#include "host/video/payloader.h"
#include "host/video/producer.h"
#include "host/video/source.h"
#include "host/video/stream.h"
#include "host/video/timeline.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

namespace zarn::host::video {

/// Keeps one source open and publishes its video in real time: replays a file at its end, and reopens a source that
/// failed after a pause. Each channel with a source has a thread of its own, so that none can hold up
/// another. Thread: any.
class Channel {
public:
    /// The channel fails at once when its source is not valid or no thread can be started.
    explicit Channel(ChannelSettings settings);

    /// Stop(); waits without a deadline.
    ~Channel();

    Channel(Channel const&) = delete;
    Channel& operator=(Channel const&) = delete;

    /// Begins to close the source, does not wait.
    void Stop();

    /// Waits until a stopped channel has closed its source; false when the deadline comes first, as it does for a file
    /// on a disk that does not answer. After that nothing is published.
    bool WaitForEnd(std::chrono::steady_clock::time_point deadline);

    /// Gives up waiting for a channel that does not end: its streams end.
    void Abandon();

    /// True when the settings differ only in the description, so that the channel can go on. A channel whose thread
    /// could not be started cannot.
    bool CanGoOnWith(ChannelSettings const& other) const;

    /// Changes the description until the video is known.
    void SetDescribed(meta::data::VideoInfo const& value) { stream->SetDescribed(value); }

    /// The video; never null.
    std::shared_ptr<Stream> const& GetStream() const { return stream; }

    /// True when the channel has a source.
    bool HasSource() const { return !settings.source.empty(); }

    /// The channel at this moment.
    ChannelStatus GetStatus() const;

private:
    /// How one run of the source ended.
    struct Outcome {
        std::optional<Failure> failure = {};                                    ///< none: the file ended, or stopped
        std::optional<std::chrono::steady_clock::time_point> firstPicture = {}; ///< when video began
    };

    void Refuse(Failure const& why);
    void Run(std::stop_token const& stop, Source const& source);
    Outcome RunOnce(std::stop_token const& stop, Source const& source, OpenOptions const& options);
    void Publish(std::stop_token const& stop, Producer::Picture picture, bool isPaced);
    void UpdateFormat(GstCaps* caps);
    void WaitUntil(std::stop_token const& stop, std::chrono::steady_clock::time_point time);
    void SetState(ChannelState next, Failure const& why);
    void Report(ChannelState next, std::string why);

    ChannelSettings const settings;
    std::shared_ptr<Stream> const stream;
    Timeline timeline;                    ///< the channel's thread only
    std::shared_ptr<GstCaps> caps;        ///< of the newest picture; the channel's thread only
    std::unique_ptr<Payloader> payloader; ///< for those caps; the channel's thread only

    std::string reported; ///< the failure that was logged last; the channel's thread only

    bool couldBegin = true;

    mutable std::mutex mutex; ///< guards the members up to the next blank line
    std::condition_variable_any wake;
    ChannelState state = ChannelState::Described;
    std::string detail;
    std::uint64_t restarts = 0;
    bool hasEnded = true; ///< no thread uses the source
    std::condition_variable end;

    std::jthread thread;
};

} // namespace zarn::host::video
