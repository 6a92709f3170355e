#pragma once

#include "host/video/producer.h"
#include "host/video/stream.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

namespace zarn::host::video {

/// A stream to which a test publishes directly.
class StreamTest : public testing::Test {
protected:
    /// Publishes an access unit of `size` zero bytes that arrived `age` ago.
    void Publish(bool isKey, std::size_t size = 10, std::chrono::milliseconds age = {}) {
        auto unit = std::make_shared<AccessUnit>();
        unit->data.reset(gst_buffer_new_allocate(nullptr, size, nullptr));
        gst_buffer_memset(unit->data.get(), 0, 0, size);
        unit->isKey = isKey;
        unit->size = size;
        unit->stamp = {time, time};
        unit->arrived = Stream::Clock::now() - age;
        time += std::chrono::milliseconds(40);
        stream->Publish(std::move(unit));
    }

    /// Sets the stream's format.
    bool
    SetFormat(std::string const& caps = "video/x-h264,stream-format=byte-stream,alignment=au,width=128,height=96") {
        MiniHandle<GstCaps> const parsed(gst_caps_from_string(caps.c_str()));
        return stream->SetFormat(*ReadFormat(parsed.get()));
    }

    /// Publishes coded video that arrived at this time.
    void PublishBuffer(GstBuffer* buffer, Stream::Clock::time_point arrived) {
        auto unit = std::make_shared<AccessUnit>();
        unit->data.reset(gst_buffer_ref(buffer));
        unit->isKey = !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
        unit->size = gst_buffer_get_size(buffer);
        unit->arrived = arrived;
        stream->Publish(std::move(unit));
    }

    /// Publishes frames of real test video.
    void PublishVideo(int count) {
        Producer producer(*ParseSource("test:ball?width=128&height=96&rate=30").source, {});
        while (count > 0) {
            auto result = producer.Pull(std::chrono::seconds(1));
            ASSERT_FALSE(std::holds_alternative<Failure>(result));
            auto const* picture = std::get_if<Producer::Picture>(&result);
            if (picture == nullptr) continue;
            auto* buffer = gst_sample_get_buffer(picture->sample.get());
            ASSERT_TRUE(stream->SetFormat(*ReadFormat(gst_sample_get_caps(picture->sample.get()))));
            PublishBuffer(buffer, Stream::Clock::now());
            --count;
        }
    }

    std::shared_ptr<Stream> stream = std::make_shared<Stream>(meta::data::VideoInfo({1, 2}, "described", 3, 4));
    std::chrono::nanoseconds time{0};
};

} // namespace zarn::host::video
