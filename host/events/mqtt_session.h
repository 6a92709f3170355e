#pragma once

#include "host/events/mqtt_settings.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct mosquitto;
struct mosquitto_message;

namespace zarn::host::events {

/// A message as the broker sent it. Valid during the call that delivers it.
struct MqttMessage {
    std::string_view topic;
    std::string_view payload;
    bool retained = false; ///< the broker kept it from earlier: it was not sent now
};

/// One connection to a broker, from the first step to its end: logs in, resumes the session of the client identifier
/// and subscribes with QoS 1. Only Serve waits, which can be woken, and the resolution of a name. The
/// library's own loop is not used: it cannot be woken, and it ends the process when its socket is above 1,023.
/// Thread: one.
class MqttSession {
public:
    /// Which addresses of a broker's name are tried. Of one family the library uses only the first address.
    enum class Family { Any, Ipv4 };

    using OnMessage = std::function<void(MqttMessage const&)>;

    /// Starts to connect. Any failure, here too, ends the session.
    /// settings       with a url
    /// timeToConnect  how long the broker may take to confirm the subscription
    /// onMessage      must not throw
    MqttSession(MqttSettings const& settings, Family family, std::chrono::milliseconds timeToConnect,
                OnMessage onMessage);

    /// Disconnects from the broker as far as that needs no waiting; the broker keeps the session.
    ~MqttSession();

    MqttSession(MqttSession const&) = delete;
    MqttSession& operator=(MqttSession const&) = delete;

    /// Waits until there is something to do, for at most a second and until `wake` becomes readable, and does it.
    /// Returns whether `wake` is readable.
    bool Serve(int wake);

    /// Whether the broker has confirmed the subscription, and the session has not ended.
    bool IsReady() const { return ready && !HasEnded(); }

    bool HasEnded() const { return !reason.empty(); }

    /// Why the session has ended: one line without secrets.
    std::string const& GetReason() const { return reason; }

    /// The same with the library's own message, which may name files: one line for the log.
    std::string GetDetailedReason() const;

    /// Tells the broker not to keep messages of this topic for the session any longer.
    void Unsubscribe();

private:
    struct Destroy {
        void operator()(mosquitto* client) const;
    };

    void Connect(MqttSettings const& settings, Family family);
    void Check(int result, std::string_view what);
    void End(std::string_view why);

    void Connected(int refusal);
    void Subscribed(int granted);
    void Message(mosquitto_message const& message);
    void LibraryError(char const* text);

    std::string topic;
    OnMessage onMessage;
    std::chrono::steady_clock::time_point const deadline; ///< for getting ready
    bool ready = false;
    std::string reason;  ///< empty: not ended
    std::string problem; ///< the library's first error message
    std::unique_ptr<mosquitto, Destroy> client;
};

} // namespace zarn::host::events
