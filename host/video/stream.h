#pragma once

#include "host/video/access_unit.h"
#include "host/video/format.h"
#include "host/video/rate_meter.h"

#include <zarn/meta/data/video_info.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace zarn::host::video {

/// A channel's coded video where it forks: the channel publishes, RTSP viewers and snapshots take.
/// Thread: any. Nothing here waits for video.
class Stream {
public:
    /// Is told what a stream publishes, in order. Called under the stream's lock, on the publishing thread: must only
    /// note what it is told.
    class Subscriber {
    public:
        Subscriber() = default;
        virtual ~Subscriber() = default;
        Subscriber(Subscriber const&) = delete;
        Subscriber& operator=(Subscriber const&) = delete;

        /// The next access unit; it already belongs to the newest group of pictures.
        virtual void OnUnit(AccessUnitPtr const& unit) = 0;

        /// Present viewers cannot go on; what comes next is for new ones.
        virtual void OnEnd() = 0;
    };

    using Clock = std::chrono::steady_clock;

    /// What a decoder needs for the newest picture.
    struct Recent {
        Format format;
        AccessUnits units; ///< begins with a key frame
    };

    /// described  the description until a format is known
    explicit Stream(meta::data::VideoInfo described);

    /// Changes the description until a format is known.
    void SetDescribed(meta::data::VideoInfo value);

    /// The time on the stream's timeline.
    std::chrono::nanoseconds GetNow() const { return Clock::now() - begin; }

    /// Sets the format of what is published next. Returns false when viewers cannot go on with it: their streams have
    /// then ended.
    bool SetFormat(Format const& value);

    /// Numbers the next access unit and hands it to all subscribers. The caller does not change it any more.
    void Publish(std::shared_ptr<AccessUnit> unit);

    /// The source failed: viewers wait for it to recover; new ones get nothing before the next key frame.
    void Interrupt();

    /// Ends the streams of all viewers; new ones get nothing before the next key frame.
    void End();

    /// The newest group of pictures; none before the first key frame.
    std::optional<Recent> GetRecent() const;

    /// Tells a subscriber what is published from now on, as long as it lives.
    void Subscribe(std::weak_ptr<Subscriber> subscriber);

    /// What the video is.
    meta::data::VideoInfo Describe() const;

    /// When the newest access unit arrived.
    std::optional<Clock::time_point> GetNewest() const;

private:
    template <class Tell>
    void ForEachSubscriber(Tell tell);
    void EndLocked();

    Clock::time_point const begin = Clock::now();
    mutable std::mutex mutex; ///< guards all below
    meta::data::VideoInfo described;
    std::optional<Format> format;
    RateMeter rate;
    GroupOfPictures group;
    std::vector<std::weak_ptr<Subscriber>> subscribers;
    std::uint64_t count = 0; ///< of published access units
    std::optional<Clock::time_point> newest;
};

} // namespace zarn::host::video
