#pragma once

#include "host/video/gstreamer.h"
#include "host/video/pipeline.h"
#include "host/video/source.h"
#include "host/video/timeline.h"

#include <chrono>
#include <memory>
#include <string>
#include <variant>

namespace zarn::host::video {

/// How a source is opened.
struct OpenOptions {
    std::string user;     ///< for RTSP; empty: none
    std::string password; ///< for RTSP
    bool overUdp = false; ///< for RTSP: UDP instead of TCP
};

/// One run of a source: from opening it to its end or failure.
/// Thread: one at a time.
class Producer {
public:
    /// One coded picture.
    struct Picture {
        MiniHandle<GstSample> sample; ///< the access unit with its caps
        SourceTimes times;            ///< on the clock of this run
    };

    struct Nothing {}; ///< no picture in time

    struct Ended {}; ///< the source has no more pictures

    using Result = std::variant<Nothing, Picture, Ended, Failure>;

    /// Begins to open the source.
    Producer(Source const& source, OpenOptions const& options);

    /// Closes the source.
    ~Producer();

    Producer(Producer const&) = delete;
    Producer& operator=(Producer const&) = delete;

    /// Waits for the next picture. Live sources give pictures when they are taken; a file gives them as fast as they
    /// are asked for.
    Result Pull(std::chrono::milliseconds timeout);

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace zarn::host::video
