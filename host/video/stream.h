#pragma once

#include "host/video/access_unit.h"
#include "host/video/feed.h"
#include "host/video/format.h"
#include "host/video/rate_meter.h"

#include <zarn/meta/data/video_info.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace zarn::host::video {

/// A channel's coded video where it forks: the channel publishes, RTSP medias and snapshots take.
/// Thread: any. Nothing here waits for video.
class Stream {
public:
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

    /// Hands the next access unit to all viewers.
    void Publish(AccessUnitPtr unit);

    /// The source failed: viewers wait for it to recover; new ones get nothing before the next key frame.
    void Interrupt();

    /// Ends the streams of all viewers; new ones get nothing before the next key frame.
    void End();

    /// The newest group of pictures; none before the first key frame.
    std::optional<Recent> GetRecent() const;

    /// Feeds a media's application source from the newest key frame on, as long as the result lives. Null when there is
    /// none.
    std::shared_ptr<Feed> Join(ObjectHandle<GstElement> source);

    /// The codec of what a viewer would get now; none when there is nothing to view.
    std::optional<Codec> GetCodec() const;

    /// What the video is.
    meta::data::VideoInfo Describe() const;

    /// When the newest access unit arrived.
    std::optional<Clock::time_point> GetNewest() const;

private:
    void EndLocked();

    Clock::time_point const begin = Clock::now();
    mutable std::mutex mutex; ///< guards all below
    meta::data::VideoInfo described;
    std::optional<Format> format;
    RateMeter rate;
    GroupOfPictures group;
    std::vector<std::weak_ptr<Feed>> feeds;
    std::optional<Clock::time_point> newest;
};

} // namespace zarn::host::video
