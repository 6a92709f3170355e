#include "support/broker.h"

#include "support/eventually.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <mosquitto.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace zarn::test {
namespace {

using namespace std::chrono_literals;
using boost::asio::ip::tcp;

tcp::endpoint MakeEndpoint(std::string const& address, std::uint16_t port) {
    return {boost::asio::ip::make_address(address), port};
}

bool IsListening(std::string const& address, std::uint16_t port) {
    boost::asio::io_context context;
    tcp::socket socket(context);
    boost::system::error_code error;
    socket.connect(MakeEndpoint(address, port), error);
    return !error;
}

/// Debian installs mosquitto in a directory that only administrators have on their PATH.
std::string FindProgram() {
    std::string const path = "/usr/sbin/mosquitto";
    return std::filesystem::exists(path) ? path : "mosquitto";
}

} // namespace

Broker::Broker(std::string lines, std::string listened)
    : folder(std::make_unique<TemporaryFolder>()), configuration(std::move(lines)), address(std::move(listened)) {
    Start();
}

void Broker::Stop() {
    // Repeat the signal: a broker that has only just started listening ignores the first one.
    bool const ended = Eventually([this] {
        process->Signal(SIGTERM);
        return process->Wait(100ms).has_value();
    });
    if (!ended) throw std::runtime_error("the broker does not end");
}

void Broker::Start() {
    // Without this, a broker started as root switches to an account that cannot write to the folder.
    auto const file =
        folder->Write("mosquitto.conf", "listener " + std::to_string(GetPort()) + " " + address + "\nuser root\n" +
                                            "persistence true\npersistence_location " + folder->GetPath().string() +
                                            "/\nmax_queued_messages 0\n" + configuration);
    process = std::make_unique<Process>(std::vector<std::string>{FindProgram(), "-c", file});
    bool const decided = Eventually([&] { return IsListening(address, GetPort()) || process->Wait(0ms); });
    if (!decided || !IsListening(address, GetPort()))
        throw std::runtime_error("the broker does not start: " + process->GetLog());
}

void Broker::Publish(std::string const& topic, std::string const& payload, std::vector<std::string> arguments) const {
    std::vector<std::string> command{"mosquitto_pub",
                                     "-h",
                                     "127.0.0.1",
                                     "-p",
                                     std::to_string(GetPort()),
                                     "-q",
                                     "1",
                                     "-t",
                                     topic,
                                     "-f",
                                     folder->Write("payload", payload)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    Process publisher(command);
    if (publisher.Wait() != 0) throw std::runtime_error("mosquitto_pub: " + publisher.GetLog());
}

void Broker::PublishNumbered(std::string const& topic, int count) const {
    mosquitto_lib_init();
    auto* const client = mosquitto_new(nullptr, true, nullptr);
    int acknowledged = 0;
    mosquitto_user_data_set(client, &acknowledged);
    mosquitto_publish_callback_set(client, [](auto*, void* number, int) { ++*static_cast<int*>(number); });
    int result = mosquitto_connect(client, address.c_str(), GetPort(), 60);
    for (int i = 0; i < count && result == MOSQ_ERR_SUCCESS; ++i) {
        auto const payload = R"({"type": ")" + std::to_string(i) + "\"}";
        result = mosquitto_publish(client, nullptr, topic.c_str(), static_cast<int>(payload.size()), payload.data(), 1,
                                   false);
    }
    while (acknowledged < count && result == MOSQ_ERR_SUCCESS) result = mosquitto_loop(client, 1000, 1);
    mosquitto_destroy(client);
    mosquitto_lib_cleanup();
    if (result != MOSQ_ERR_SUCCESS) throw std::runtime_error(mosquitto_strerror(result));
}

} // namespace zarn::test
