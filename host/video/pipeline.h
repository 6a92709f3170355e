#pragma once

#include "host/video/gstreamer.h"

#include <gst/gst.h>

#include <mutex>
#include <optional>
#include <string>

namespace zarn::host::video {

/// Why a source or a pipeline failed.
struct Failure {
    /// Public: names no address, path, user or password.
    std::string summary;

    /// For the log: what GStreamer says, which may name addresses and paths. Empty when the summary says it all.
    std::string detail = {};

    /// The text for the log.
    std::string const& GetText() const { return detail.empty() ? summary : detail; }
};

/// A GStreamer pipeline that remembers why it failed and keeps no other messages. Destruction ends it.
/// Thread: any.
class Pipeline {
public:
    Pipeline();
    ~Pipeline();
    Pipeline(Pipeline const&) = delete;
    Pipeline& operator=(Pipeline const&) = delete;

    /// The pipeline as a bin, to put elements into.
    GstBin* GetBin() const { return GST_BIN(pipeline.get()); }

    /// Makes an element of this kind and puts it into the pipeline. Null when GStreamer lacks it: the pipeline has
    /// failed.
    GstElement* Add(char const* kind);

    /// Makes a bin of a launch line and puts it into the pipeline; open ends become its pads. Null when that fails: the
    /// pipeline has failed.
    GstElement* AddText(std::string const& text);

    /// Starts to play.
    void Play();

    /// Ends everything; the streaming threads have gone when this returns. The destructor does it too.
    void End();

    /// Sets why the pipeline failed; the first reason stays.
    void Fail(Failure reason);

    /// Why the pipeline failed; none when it did not.
    std::optional<Failure> GetFailure() const;

    /// The application sink called `SinkName`, once it is there.
    ObjectHandle<GstElement> FindSink() const;

    /// The same, once it has started. Before that, a sink reports the end of the video.
    ObjectHandle<GstElement> FindStartedSink() const;

private:
    static GstBusSyncReply OnMessage(GstBus* bus, GstMessage* message, gpointer self);

    ObjectHandle<GstElement> pipeline;
    mutable std::mutex mutex; ///< guards `failure`
    std::optional<Failure> failure;
};

} // namespace zarn::host::video
