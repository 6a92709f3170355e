#include "host/events/mqtt_client.h"

#include "host/events/mqtt_session.h"

#include <mosquitto.h>
#include <poll.h>
#include <resolv.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <exception>
#include <system_error>
#include <utility>

namespace zarn::host::events {
namespace {

using logging::Level;
using Clock = std::chrono::steady_clock;

/// Makes the system's resolver give up soon, in this thread only, so that a name server which is away cannot keep the
/// program from ending.
void LimitResolving() {
    res_init();
    _res.retrans = 1;
    _res.retry = 1;
}

/// Whether a topic is one that a subscription is for; of a shared one ("$share/GROUP/FILTER") the filter counts.
bool IsSubscribed(std::string const& filter, std::string const& topic) {
    constexpr std::string_view Shared = "$share/";
    auto const begin = filter.starts_with(Shared) ? filter.find('/', Shared.size()) + 1 : 0;
    bool matches = false;
    mosquitto_topic_matches_sub(filter.c_str() + begin, topic.c_str(), &matches);
    return matches;
}

} // namespace

MqttClient::Wake::Wake() : descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!descriptor) throw std::system_error(errno, std::system_category(), "eventfd");
}

void MqttClient::Wake::Set() const { eventfd_write(descriptor.Get(), 1); }

void MqttClient::Wake::Clear() const {
    eventfd_t value = 0;
    eventfd_read(descriptor.Get(), &value);
}

MqttClient::Library::Library() { mosquitto_lib_init(); }

MqttClient::Library::~Library() { mosquitto_lib_cleanup(); }

MqttClient::MqttClient(EventSink sink, std::chrono::milliseconds timeToConnect)
    : sink(std::move(sink)), timeToConnect(timeToConnect) {}

MqttClient::~MqttClient() { Stop(); }

void MqttClient::Configure(MqttSettings const& settings) {
    auto next = std::make_shared<MqttSettings const>(settings);
    {
        std::lock_guard const lock(mutex);
        if (stopping || settings == *wanted) return;
    }
    // Before the settings count: when it cannot be started, the same ones are to be tried again.
    if (!thread.joinable() && settings.enabled) thread = std::thread([this] { Run(); });
    {
        std::lock_guard const lock(mutex);
        wanted.swap(next);
    }
    wake.Set();
}

void MqttClient::RequestStop() {
    {
        std::lock_guard const lock(mutex);
        stopping = true;
    }
    wake.Set();
}

void MqttClient::Stop() {
    RequestStop();
    if (thread.joinable()) thread.join();
}

MqttStatus MqttClient::GetStatus() const {
    std::lock_guard const lock(mutex);
    return status;
}

void MqttClient::Run() {
    LimitResolving();
    std::uniform_real_distribution<double> distribution;
    std::shared_ptr<MqttSettings const> settings;
    for (auto family = MqttSession::Family::Any;;) {
        wake.Clear();
        {
            std::lock_guard const lock(mutex);
            if (stopping) return;
            if (settings != wanted) backOff.Reset();
            settings = wanted;
        }
        if (!settings->enabled) {
            SetState(MqttState::Off, {});
            AwaitWake(std::chrono::milliseconds(-1));
            continue;
        }
        auto const lasted = TrySession(*settings, family);
        if (!IsCurrent(*settings)) continue;
        // A name may have addresses of both families, of which the broker serves only one.
        bool const first = family == MqttSession::Family::Any && lasted == Clock::duration::zero();
        family = first ? MqttSession::Family::Ipv4 : MqttSession::Family::Any;
        AwaitWake(backOff.Fail(lasted, distribution(chance)));
    }
}

Clock::duration MqttClient::TrySession(MqttSettings const& settings, MqttSession::Family family) noexcept {
    try {
        return RunSession(settings, family);
    } catch (std::exception const& error) {
        try {
            Report(settings, error.what());
            SetState(MqttState::Waiting, error.what());
        } catch (std::exception const&) { // no memory for the line: the next attempt matters more
        }
    }
    return Clock::duration::zero();
}

Clock::duration MqttClient::RunSession(MqttSettings const& settings, MqttSession::Family family) {
    SetState(MqttState::Connecting, GetStatus().detail);
    MqttSession session(settings, family, timeToConnect,
                        [&](MqttMessage const& message) { HandleMessage(settings, message); });
    while (!session.IsReady() && !session.HasEnded() && IsCurrent(settings)) Serve(session);
    auto const begin = Clock::now();
    bool const connected = session.IsReady();
    if (connected) {
        logger.Log(Level::Info, "Connected to %0%, topic %1%", settings.url, settings.topic);
        lastFailure.clear();
        SetState(MqttState::Connected, {});
    }
    while (session.IsReady() && IsCurrent(settings)) Serve(session);
    if (session.HasEnded()) {
        Report(settings, session.GetDetailedReason());
        SetState(MqttState::Waiting, session.GetReason());
    } else if (IsAnotherTopic(settings)) {
        session.Unsubscribe();
    }
    return connected ? Clock::now() - begin : Clock::duration::zero();
}

void MqttClient::Serve(MqttSession& session) const {
    if (session.Serve(wake.GetDescriptor())) wake.Clear();
}

void MqttClient::Report(MqttSettings const& settings, std::string const& reason) {
    auto const level = reason == lastFailure ? Level::Debug : Level::Warning;
    logger.Log(level, "No connection to %0%: %1%; trying again", settings.url, reason);
    lastFailure = reason;
}

void MqttClient::AwaitWake(std::chrono::milliseconds limit) const {
    pollfd descriptor{wake.GetDescriptor(), POLLIN, 0};
    poll(&descriptor, 1, static_cast<int>(limit.count()));
}

void MqttClient::HandleMessage(MqttSettings const& settings, MqttMessage const& message) {
    std::uint64_t events = 0;
    bool refused = false;
    try {
        events = Deliver(settings, message);
    } catch (std::exception const& error) {
        refused = true;
        refusals.Log(Level::Warning, "Refused a message on topic %0%: %1%", message.topic, error.what());
    }
    std::lock_guard const lock(mutex);
    ++status.received;
    status.refused += refused ? 1 : 0;
    status.events += events;
}

std::size_t MqttClient::Deliver(MqttSettings const& settings, MqttMessage const& message) {
    if (!IsSubscribed(settings.topic, std::string(message.topic)))
        throw ReadError("the topic is not subscribed to; the broker keeps an earlier subscription of this client_id");
    if (message.retained) throw ReadError("the message is retained: an event of the past");
    if (message.payload.size() > LongestMessage)
        throw ReadError("the message is longer than " + std::to_string(LongestMessage) + " bytes");
    return DeliverEvents(message.payload, sink);
}

bool MqttClient::IsCurrent(MqttSettings const& settings) const {
    std::lock_guard const lock(mutex);
    return !stopping && settings == *wanted;
}

bool MqttClient::IsAnotherTopic(MqttSettings const& settings) const {
    std::lock_guard const lock(mutex);
    return settings.topic != wanted->topic;
}

void MqttClient::SetState(MqttState state, std::string detail) {
    std::lock_guard const lock(mutex);
    status.state = state;
    status.detail = std::move(detail);
}

} // namespace zarn::host::events
