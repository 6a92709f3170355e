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

/// Long enough for a loaded machine under a sanitizer; nothing waits for it that goes well.
inline constexpr std::chrono::seconds Deadline{30};

/// A source of test video that costs little.
inline constexpr char Small[] = "test:ball?width=128&height=96&rate=10";

/// For what takes about a second, with room for a busy machine. Below the five seconds for which a source waits for its
/// server: a stop that waited for it, too, would take longer.
inline constexpr std::chrono::seconds StopLimit{4};

/// A decoded picture: one byte of brightness per pixel.
struct Picture {
    int width = 0;
    int height = 0;
    std::string brightness;
    std::chrono::nanoseconds time{0};
};

/// How a viewer comes.
struct ViewerOptions {
    std::string user = {};
    std::string password = {};
    std::string transport = "tcp";
    bool decode = true; ///< without it only the coded pictures are counted: Picture has a time and a size of 0 x 0
};

/// An RTSP client that decodes what it gets.
class Viewer {
public:
    explicit Viewer(std::string const& url, ViewerOptions const& options = {});
    ~Viewer();
    Viewer(Viewer const&) = delete;
    Viewer& operator=(Viewer const&) = delete;

    /// The next picture; none when there will be none, or none within the time.
    std::optional<Picture> Next(std::chrono::milliseconds timeout = Deadline);

    /// True when the stream has ended or failed.
    bool HasEnded() const;

    /// Why the viewer got nothing; empty when nothing failed.
    std::string GetFailure() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

/// Decodes a JPEG file.
std::optional<Picture> DecodeJpeg(std::string_view jpeg);

/// Runs a GStreamer launch line to its end; false when it fails.
bool RunToEnd(std::string const& launchLine);

/// Settings of a channel with a source.
ChannelSettings From(std::string id, std::string source);

/// The fixture: an engine without authentication, a temporary folder, and no tolerance for critical messages of GLib.
class VideoTest : public testing::Test {
protected:
    VideoTest();
    ~VideoTest() override;

    /// Address of a channel's stream.
    std::string GetUrl(std::string const& id) const;

    /// Waits until a channel is in a state.
    bool WaitForState(std::string const& id, ChannelState state);

    /// Waits until a channel's source fails; returns the reason, empty if it does not fail. The channel may already be
    /// retrying.
    std::string AwaitFailure(std::string const& id);

    /// The status of a channel; it must be there.
    ChannelStatus GetStatus(std::string const& id) const;

    /// Asks for a snapshot and waits for it.
    Snapshot TakeSnapshot(std::string const& id);

    /// Asks for a snapshot until there is one.
    Snapshot WaitForSnapshot(std::string const& id);

    std::filesystem::path folder;
    std::unique_ptr<Engine> engine;
};

} // namespace zarn::host::video
