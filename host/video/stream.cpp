#include "host/video/stream.h"

#include <utility>

namespace zarn::host::video {

Stream::Stream(meta::data::VideoInfo described) : described(std::move(described)) {}

void Stream::SetDescribed(meta::data::VideoInfo value) {
    std::scoped_lock const lock(mutex);
    described = std::move(value);
}

bool Stream::SetFormat(Format const& value) {
    std::scoped_lock const lock(mutex);
    bool const continues = !format || format->Continues(value);
    if (!continues) {
        EndLocked();
        rate.Reset();
    }
    format = value;
    return continues;
}

void Stream::Publish(AccessUnitPtr unit) {
    std::scoped_lock const lock(mutex);
    newest = unit->arrived;
    if (format && !format->rate) rate.Add(unit->stamp.decoding);
    // Handing over only appends to the media's queue, so it may be done under the lock, which keeps the order.
    std::erase_if(feeds, [&unit](std::weak_ptr<Feed> const& weak) {
        auto const feed = weak.lock();
        if (feed) feed->Push(*unit);
        return !feed;
    });
    group.Add(std::move(unit));
}

void Stream::Interrupt() {
    std::scoped_lock const lock(mutex);
    group.Clear();
}

void Stream::End() {
    std::scoped_lock const lock(mutex);
    EndLocked();
}

void Stream::EndLocked() {
    for (auto const& weak : feeds) {
        if (auto const feed = weak.lock()) feed->End();
    }
    feeds.clear();
    group.Clear();
}

std::optional<Stream::Recent> Stream::GetRecent() const {
    std::scoped_lock const lock(mutex);
    if (!format || group.GetUnits().empty()) return std::nullopt;
    return Recent{*format, group.GetUnits()};
}

std::shared_ptr<Feed> Stream::Join(ObjectHandle<GstElement> source) {
    std::scoped_lock const lock(mutex);
    if (!format || group.GetUnits().empty()) return nullptr;
    auto feed = std::make_shared<Feed>(std::move(source), *format, group.GetUnits(), GetNow());
    feeds.push_back(feed);
    return feed;
}

std::optional<Codec> Stream::GetCodec() const {
    std::scoped_lock const lock(mutex);
    if (!format || group.GetUnits().empty()) return std::nullopt;
    return format->codec;
}

meta::data::VideoInfo Stream::Describe() const {
    std::scoped_lock const lock(mutex);
    return format ? ToVideoInfo(*format, rate.GetRate()) : described;
}

std::optional<Stream::Clock::time_point> Stream::GetNewest() const {
    std::scoped_lock const lock(mutex);
    return newest;
}

} // namespace zarn::host::video
