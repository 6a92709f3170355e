#include "host/events/mqtt_session.h"

#include <zarn/logging/format.h>

#include <mosquitto.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <new>
#include <system_error>
#include <utility>

namespace zarn::host::events {
namespace {

constexpr int QualityOfService = 1;
constexpr int KeepAliveSeconds = 15;
constexpr int RefusedSubscription = 0x80;
constexpr int IdleMilliseconds = 1000;
constexpr std::size_t LongestReason = 300;

int TakeSocketError(int socket) {
    int error = 0;
    socklen_t size = sizeof(error);
    return getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
}

MqttSession& ToSession(void* session) { return *static_cast<MqttSession*>(session); }

} // namespace

void MqttSession::Destroy::operator()(mosquitto* client) const { mosquitto_destroy(client); }

MqttSession::MqttSession(MqttSettings const& settings, Family family, std::chrono::milliseconds timeToConnect,
                         OnMessage callback)
    : topic(settings.topic),
      onMessage(std::move(callback)),
      deadline(std::chrono::steady_clock::now() + timeToConnect) {
    auto const id = settings.clientId.empty() ? MakeClientId() : settings.clientId;
    constexpr bool CleanSession = false;
    client.reset(mosquitto_new(id.c_str(), CleanSession, this));
    if (!client) {
        if (errno == ENOMEM) throw std::bad_alloc();
        End("client_id: the library refuses it");
        return;
    }
    mosquitto_connect_callback_set(client.get(),
                                   [](auto*, void* session, int code) { ToSession(session).Connected(code); });
    mosquitto_subscribe_callback_set(client.get(), [](auto*, void* session, int, int count, int const* granted) {
        ToSession(session).Subscribed(count > 0 ? *granted : RefusedSubscription);
    });
    mosquitto_message_callback_set(
        client.get(), [](auto*, void* session, auto const* message) { ToSession(session).Message(*message); });
    mosquitto_log_callback_set(client.get(), [](auto*, void* session, int level, char const* text) {
        if (level == MOSQ_LOG_ERR) ToSession(session).LibraryError(text);
    });
    Connect(settings, family);
}

MqttSession::~MqttSession() {
    if (!client || HasEnded()) return;
    mosquitto_disconnect(client.get());
    mosquitto_loop_write(client.get(), 1);
}

void MqttSession::Connect(MqttSettings const& settings, Family family) {
    auto const broker = ParseBrokerUrl(settings.url);
    if (!broker) return End("url: it names no broker");
    auto* const library = client.get();
    if (!settings.user.empty())
        Check(mosquitto_username_pw_set(library, settings.user.c_str(), settings.password.c_str()), "user");
    if (broker->tls && settings.caFile.empty())
        Check(mosquitto_int_option(library, MOSQ_OPT_TLS_USE_OS_CERTS, 1), "certificates of the system");
    if (broker->tls && !settings.caFile.empty() &&
        mosquitto_tls_set(library, settings.caFile.c_str(), nullptr, nullptr, nullptr, nullptr) != MOSQ_ERR_SUCCESS)
        End("ca_file: it cannot be read");
    Check(mosquitto_int_option(library, MOSQ_OPT_TCP_NODELAY, 1), "TCP_NODELAY");
    if (HasEnded()) return;
    // A local address of one family leaves only the broker's addresses of that family.
    bool const literal = broker->host.find(':') != std::string::npos;
    char const* const local = family == Family::Ipv4 && !literal ? "0.0.0.0" : nullptr;
    Check(mosquitto_connect_bind_async(library, broker->host.c_str(), broker->port, KeepAliveSeconds, local),
          "connection");
}

bool MqttSession::Serve(int wake) {
    if (HasEnded()) return false;
    auto* const library = client.get();
    std::array<pollfd, 2> descriptors{};
    descriptors[0] = {wake, POLLIN, 0};
    descriptors[1] = {mosquitto_socket(library), POLLIN, 0};
    if (mosquitto_want_write(library)) descriptors[1].events |= POLLOUT;
    if (poll(descriptors.data(), descriptors.size(), IdleMilliseconds) > 0 && descriptors[1].revents != 0) {
        // The library does not notice when a connection fails during a TLS handshake, and would be called for ever.
        bool const broken = (descriptors[1].revents & (POLLERR | POLLHUP)) != 0;
        if (int const error = broken ? TakeSocketError(descriptors[1].fd) : 0; error != 0)
            End("connection: " + std::system_category().message(error));
        // Reads even when only writing became possible: a TLS handshake continues in the reading function.
        if (!HasEnded()) Check(mosquitto_loop_read(library, 1), "connection");
        if (broken && !HasEnded()) End(ready ? "connection: lost" : "connection: the broker cannot be reached");
        if (!HasEnded() && mosquitto_want_write(library)) Check(mosquitto_loop_write(library, 1), "connection");
    }
    if (!HasEnded()) Check(mosquitto_loop_misc(library), "connection");
    if (!HasEnded() && !ready && std::chrono::steady_clock::now() > deadline) End("the broker does not answer");
    return descriptors[0].revents != 0;
}

void MqttSession::Unsubscribe() {
    if (!IsReady()) return;
    Check(mosquitto_unsubscribe(client.get(), nullptr, topic.c_str()), "topic");
}

void MqttSession::Check(int result, std::string_view what) {
    if (result == MOSQ_ERR_SUCCESS || HasEnded()) return;
    End(std::string(what) + ": " + mosquitto_strerror(result));
}

void MqttSession::End(std::string_view why) {
    if (!HasEnded()) reason = logging::ToLine(why, LongestReason);
}

std::string MqttSession::GetDetailedReason() const {
    return problem.empty() ? reason : reason + " (" + logging::ToLine(problem, LongestReason) + ')';
}

void MqttSession::Connected(int refusal) {
    if (refusal != 0) return End(std::string("login: ") + mosquitto_connack_string(refusal));
    Check(mosquitto_subscribe(client.get(), nullptr, topic.c_str(), QualityOfService), "topic");
}

void MqttSession::Subscribed(int granted) {
    if (granted == RefusedSubscription) return End("topic: the broker refuses the subscription");
    ready = true;
}

void MqttSession::Message(mosquitto_message const& message) {
    std::string_view const payload(static_cast<char const*>(message.payload),
                                   static_cast<std::size_t>(std::max(message.payloadlen, 0)));
    onMessage({.topic = message.topic, .payload = payload, .retained = message.retain});
}

void MqttSession::LibraryError(char const* text) {
    if (problem.empty()) problem = text;
}

} // namespace zarn::host::events
