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

    /// described  the description that stands until a format is known
    explicit Stream(meta::data::VideoInfo described);

    /// Changes the description that stands until a format is known.
    void SetDescribed(meta::data::VideoInfo value);

    /// The time on the stream's timeline.
    std::chrono::nanoseconds GetNow() const { return Clock::now() - begin; }

    /// What is published from now on has this format. Returns false when those who view cannot go on with it: they have
    /// been given their end.
    bool SetFormat(Format const& value);

    /// Hands the next access unit to all who view.
    void Publish(AccessUnitPtr unit);

    /// The source failed: those who view wait for it to come back, a new viewer gets nothing before the next key frame.
    void Interrupt();

    /// Gives all who view their end; a new viewer gets nothing before the next key frame.
    void End();

    /// The newest group of pictures; none before the first key frame.
    std::optional<Recent> GetRecent() const;

    /// Feeds a media's application source from the newest key frame on, as long as the result lives. Null when there is
    /// none.
    std::shared_ptr<Feed> Join(ObjectHandle<GstElement> source);

    /// The coding of what a viewer would get now; none when there is nothing to view.
    std::optional<Codec> GetCodec() const;

    /// What the video is.
    meta::data::VideoInfo Describe() const;

    /// When the newest access unit came.
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
