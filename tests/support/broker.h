#pragma once

#include "support/process.h"
#include "support/reserved_port.h"
#include "support/temporary_folder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zarn::test {

/// A mosquitto broker on its own port of an address of this machine, which keeps its sessions in a folder of the test.
class Broker {
public:
    /// lines    of its configuration, behind the listener's
    /// address  one of the loopback's, an IPv4 address
    /// Throws std::runtime_error when it does not start.
    explicit Broker(std::string lines = "allow_anonymous true\n", std::string address = "127.0.0.1");

    /// Ends the broker as a system does that shuts down; what it keeps for sessions is on the disk then.
    void Stop();

    /// Starts it anew, on the same port with the same sessions.
    void Start();

    std::uint16_t GetPort() const { return port.Get(); }

    std::string GetUrl() const { return "mqtt://" + address + ':' + std::to_string(GetPort()); }

    /// Publishes with QoS 1, in order, and returns when the broker has them all.
    /// arguments  further ones for mosquitto_pub
    void Publish(std::string const& topic, std::string const& payload, std::vector<std::string> arguments = {}) const;

    /// Publishes events of the types "0" to "count - 1", one message each, in order.
    void PublishNumbered(std::string const& topic, int count) const;

    TemporaryFolder const& GetFolder() const { return *folder; }

private:
    std::unique_ptr<TemporaryFolder> folder;
    std::string configuration;
    std::string address;
    ReservedPort port; ///< also while the broker is stopped
    std::unique_ptr<Process> process;
};

} // namespace zarn::test
