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

template <class Tell>
void Stream::ForEachSubscriber(Tell tell) {
    std::erase_if(subscribers, [&tell](std::weak_ptr<Subscriber> const& weak) {
        auto const subscriber = weak.lock();
        if (subscriber) tell(*subscriber);
        return !subscriber;
    });
}

void Stream::Publish(std::shared_ptr<AccessUnit> unit) {
    std::scoped_lock const lock(mutex);
    newest = unit->arrived;
    if (format && !format->rate) rate.Add(unit->stamp.decoding);
    unit->number = ++count;
    AccessUnitPtr const published = std::move(unit);
    group.Add(published);
    // Subscribers only append, so they may be told under the lock, which keeps the order.
    ForEachSubscriber([&published](Subscriber& subscriber) { subscriber.OnUnit(published); });
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
    ForEachSubscriber([](Subscriber& subscriber) { subscriber.OnEnd(); });
    group.Clear();
}

std::optional<Stream::Recent> Stream::GetRecent() const {
    std::scoped_lock const lock(mutex);
    if (!format || group.GetUnits().empty()) return std::nullopt;
    return Recent{*format, group.GetUnits()};
}

void Stream::Subscribe(std::weak_ptr<Subscriber> subscriber) {
    std::scoped_lock const lock(mutex);
    subscribers.push_back(std::move(subscriber));
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
