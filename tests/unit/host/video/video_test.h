#pragma once

#include "host/video/engine.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::video {

/// Long enough for a loaded machine under a sanitizer; only failing tests wait this long.
inline constexpr std::chrono::seconds Deadline{30};

/// An inexpensive test video source.
inline constexpr char Small[] = "test:ball?width=128&height=96&rate=10";

/// For operations that take about a second, with a margin for a busy machine. Less than the five seconds for which a
/// source waits for its server, so that a stop that waits for it exceeds the limit.
inline constexpr std::chrono::seconds StopLimit{4};

/// A decoded picture: one luma byte per pixel.
struct Picture {
    int width = 0;
    int height = 0;
    std::string brightness;
    std::chrono::nanoseconds time{0};
};

/// How a viewer connects.
struct ViewerOptions {
    std::string user = {};
    std::string password = {};
    std::string transport = "tcp";
    bool decode = true; ///< false: count encoded pictures only; each Picture has a time and a size of 0 x 0
};

/// An RTSP client that decodes the stream.
class Viewer {
public:
    explicit Viewer(std::string const& url, ViewerOptions const& options = {});
    ~Viewer();
    Viewer(Viewer const&) = delete;
    Viewer& operator=(Viewer const&) = delete;

    /// The next picture; nullopt at the end of the stream or on timeout.
    std::optional<Picture> Next(std::chrono::milliseconds timeout = Deadline);

    /// True if the stream has ended or failed.
    bool HasEnded() const;

    /// The viewer's error; empty when nothing failed.
    std::string GetFailure() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

/// Decodes a JPEG file.
std::optional<Picture> DecodeJpeg(std::string_view jpeg);

/// Runs a GStreamer launch line to the end; false when it fails.
bool RunToEnd(std::string const& launchLine);

/// Settings of a channel with this source.
ChannelSettings From(std::string id, std::string source);

/// The fixture: an engine without authentication or channels, a temporary folder, and no tolerance for critical
/// messages of GLib.
class VideoTest : public testing::Test {
protected:
    VideoTest();
    ~VideoTest() override;

    /// Address of a channel's stream.
    std::string GetUrl(std::string const& id) const;

    /// Waits until a channel is in a state.
    bool WaitForState(std::string const& id, ChannelState state);

    /// Waits until a channel's source fails. Returns the reason, or an empty text when it does not fail. The channel
    /// may already be retrying.
    std::string AwaitFailure(std::string const& id);

    /// The status of an existing channel.
    ChannelStatus GetStatus(std::string const& id) const;

    /// Requests a snapshot and waits for it.
    Snapshot TakeSnapshot(std::string const& id);

    /// Requests snapshots until one is available.
    Snapshot WaitForSnapshot(std::string const& id);

    std::filesystem::path folder;
    std::unique_ptr<Engine> engine;
};

} // namespace zarn::host::video
