#pragma once

#include "support/process.h"
#include "support/reserved_port.h"
#include "support/temporary_folder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zarn::test {

/// A mosquitto broker on its own loopback port. It keeps its sessions in a temporary folder.
class Broker {
public:
    /// lines    configuration lines appended after the listener's
    /// address  a loopback IPv4 address
    /// Throws std::runtime_error when the broker does not start.
    explicit Broker(std::string lines = "allow_anonymous true\n", std::string address = "127.0.0.1");

    /// Shuts the broker down gracefully, so that its persistent sessions are on disk.
    void Stop();

    /// Restarts the broker on the same port with the same sessions.
    void Start();

    std::uint16_t GetPort() const { return port.Get(); }

    std::string GetUrl() const { return "mqtt://" + address + ':' + std::to_string(GetPort()); }

    /// Publishes with QoS 1, in order. Returns when the broker has received every message.
    /// arguments  additional arguments for mosquitto_pub
    void Publish(std::string const& topic, std::string const& payload, std::vector<std::string> arguments = {}) const;

    /// Publishes `count` events of types "0" to "count - 1", one message each, in order.
    void PublishNumbered(std::string const& topic, int count) const;

    TemporaryFolder const& GetFolder() const { return *folder; }

private:
    std::unique_ptr<TemporaryFolder> folder;
    std::string configuration;
    std::string address;
    ReservedPort port; ///< stays reserved while the broker is stopped
    std::unique_ptr<Process> process;
};

} // namespace zarn::test
