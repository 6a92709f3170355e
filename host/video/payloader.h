#pragma once

#include "host/video/codec.h"
#include "host/video/gstreamer.h"
#include "host/video/rtp/packets.h"

#include <chrono>
#include <memory>
#include <vector>

namespace zarn::host::video {

/// Cuts access units into the payloads of RTP packets, once for all viewers. GStreamer's payloader does the work on the
/// calling thread: it stands between two pads of this class, in no pipeline, and has no thread of its own.
/// Thread: one at a time. Source: RFC 6184 (H.264), RFC 7798 (H.265).
class Payloader {
public:
    /// Throws std::runtime_error when GStreamer lacks the payloader.
    explicit Payloader(Codec codec);
    ~Payloader();
    Payloader(Payloader const&) = delete;
    Payloader& operator=(Payloader const&) = delete;

    /// The packets of an access unit. They refer to its memory and keep it. Null when the payloader makes none.
    /// unit  byte stream, one access unit
    /// caps  describe it
    std::shared_ptr<rtp::Packets const> Pay(GstBuffer* unit, GstCaps* caps, std::chrono::nanoseconds presentation);

private:
    static GstFlowReturn OnPacket(GstPad* pad, GstObject* parent, GstBuffer* packet);
    static gboolean OnEvent(GstPad* pad, GstObject* parent, GstEvent* event);
    void SetInput(GstCaps* caps);
    std::shared_ptr<rtp::MediaFormat const> GetFormat();

    ObjectHandle<GstElement> element;
    ObjectHandle<GstPad> source; ///< feeds the element
    ObjectHandle<GstPad> sink;   ///< collects what it makes
    MiniHandle<GstCaps> input;
    MiniHandle<GstCaps> output;
    std::shared_ptr<rtp::MediaFormat const> format; ///< what `output` says
    std::vector<MiniHandle<GstBuffer>> made;
};

} // namespace zarn::host::video
