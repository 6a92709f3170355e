#pragma once

#include "host/video/gstreamer.h"
#include "host/video/rtsp/mount.h"
#include "host/video/rtsp/session.h"
#include "host/video/rtsp/worker.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zarn::host::video::rtsp {

/// An access unit that is sent as packets with these payloads.
inline std::shared_ptr<AccessUnit> MakeUnit(bool isKey, std::vector<std::string> payloads = {"payload"},
                                            std::uint64_t number = 0) {
    auto unit = std::make_shared<AccessUnit>();
    unit->isKey = isKey;
    unit->number = number;
    unit->packets = rtp::MakePackets(std::make_shared<rtp::MediaFormat>(), std::move(payloads));
    return unit;
}

/// A stream that is served as channel 1 by a worker without a thread, whose handlers run when the test says so.
class ServedStreamTest : public testing::Test {
protected:
    ServedStreamTest() { stream->Subscribe(hub); }

    /// Without a format, a stream has no group of pictures to begin with.
    void SetFormat() {
        InitializeGStreamer();
        MiniHandle<GstCaps> const caps(gst_caps_from_string("video/x-h264,width=128,height=96"));
        stream->SetFormat(*ReadFormat(caps.get()));
        RunHandlers();
    }

    std::shared_ptr<Mount const> MakeMount(std::string id) const {
        return std::make_shared<Mount const>(std::move(id), std::vector<Mount::Hubs>{{hub}});
    }

    std::shared_ptr<Session> MakeSession() {
        auto session = std::make_shared<Session>(worker, mount, "id", nullptr);
        worker.Add(session);
        return session;
    }

    /// Lets a session look as if its viewer had been silent for much too long.
    static void Silence(Session& session) { session.Touch(Session::Clock::now() - 10 * Session::Timeout); }

    /// Whether a session survives a check.
    static bool SurvivesSweep(Session& session) {
        session.Sweep(Session::Clock::now());
        return !session.HasEnded();
    }

    void RunHandlers() { worker.GetContext().poll(); }

    Worker worker{0};
    std::shared_ptr<Stream> const stream = std::make_shared<Stream>(meta::data::VideoInfo());
    std::shared_ptr<Hub> const hub = std::make_shared<Hub>(worker.GetContext(), stream, 0);
    std::shared_ptr<Mount const> const mount = MakeMount("1");
};

} // namespace zarn::host::video::rtsp
