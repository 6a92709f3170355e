#pragma once

#include "host/events/mqtt_session.h"
#include "host/events/mqtt_settings.h"
#include "host/events/read_events.h"
#include "host/events/status.h"

#include <zarn/chrono/back_off.h>
#include <zarn/io/unique_descriptor.h>
#include <zarn/logging/limited_logger.h>
#include <zarn/logging/logger.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>

namespace zarn::host::events {

/// Fetches events from an MQTT broker as long as it lives, on a thread of its own, which starts when the intake is
/// first enabled. The broker keeps the session while the host is away; a lost connection is made again. Thread: any,
/// unless a function says otherwise.
class MqttClient {
public:
    /// Bytes of a message; a longer one is refused.
    static constexpr std::size_t LongestMessage = std::size_t{1024} * 1024;

    /// How long a broker may take to confirm the subscription.
    static constexpr std::chrono::seconds TimeToConnect{10};

    /// sink           is called with each event, in the order in which the broker sent them
    /// timeToConnect  how long the broker may take to confirm the subscription
    explicit MqttClient(EventSink sink, std::chrono::milliseconds timeToConnect = TimeToConnect);

    /// Stop().
    ~MqttClient();

    MqttClient(MqttClient const&) = delete;
    MqttClient& operator=(MqttClient const&) = delete;

    /// Follows the settings from now on; does not wait. The same settings again disturb nothing.
    /// Throws std::system_error when the thread cannot be started; then nothing has changed. Thread: that of Stop.
    void Configure(MqttSettings const& settings);

    /// Makes the thread end, without waiting for it: at most the message at hand still goes to the sink. Thread: any.
    void RequestStop();

    /// Ends the connection and the thread; the sink is not called any more. A broker cannot delay it; the resolution of
    /// a name can, until the system's resolver gives up, which in this thread asks each server once, for a second.
    /// Stopping twice is harmless. Thread: that of Configure.
    void Stop();

    MqttStatus GetStatus() const;

private:
    /// Wakes the thread; stays readable until Clear().
    class Wake {
    public:
        Wake();

        void Set() const;
        void Clear() const;

        int GetDescriptor() const { return descriptor.Get(); }

    private:
        io::UniqueDescriptor descriptor;
    };

    /// The library, initialised as long as this lives.
    struct Library {
        Library();
        ~Library();
        Library(Library const&) = delete;
        Library& operator=(Library const&) = delete;
    };

    void Run();

    /// Like RunSession, but treats an exception, such as a lack of memory, as a lost connection.
    std::chrono::steady_clock::duration TrySession(MqttSettings const& settings, MqttSession::Family family) noexcept;

    /// Returns how long the connection was usable.
    std::chrono::steady_clock::duration RunSession(MqttSettings const& settings, MqttSession::Family family);

    void Serve(MqttSession& session) const;
    void Report(MqttSettings const& settings, std::string const& reason);
    void AwaitWake(std::chrono::milliseconds limit) const;
    void HandleMessage(MqttSettings const& settings, MqttMessage const& message);
    std::size_t Deliver(MqttSettings const& settings, MqttMessage const& message);
    bool IsCurrent(MqttSettings const& settings) const;
    bool IsAnotherTopic(MqttSettings const& settings) const;
    void SetState(MqttState state, std::string detail);

    logging::Logger logger{"zarn.host.mqtt"};
    logging::LimitedLogger refusals{"zarn.host.mqtt"};
    EventSink const sink;
    std::chrono::milliseconds const timeToConnect;
    Library library;
    Wake wake;

    mutable std::mutex mutex; ///< guards wanted, stopping and status
    std::shared_ptr<MqttSettings const> wanted = std::make_shared<MqttSettings const>();
    bool stopping = false;
    MqttStatus status;

    std::minstd_rand chance{std::random_device{}()};         ///< of the thread
    chrono::BackOff backOff{std::chrono::milliseconds(500)}; ///< of the thread
    std::string lastFailure; ///< of the thread: what was logged last, so that it is not repeated
    std::thread thread;
};

} // namespace zarn::host::events
