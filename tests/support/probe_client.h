#pragma once

#include "support/eventually.h"
#include "support/network_namespace.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/multicast.hpp>
#include <boost/asio/ip/udp.hpp>
#include <fcntl.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace zarn::test {

/// Runs `work` in its own network, a loopback device with multicast, so that no other program uses the WS-Discovery
/// port. Skips the test when the kernel does not allow namespaces.
inline void OnOwnNetwork(std::function<void()> const& work) {
    bool const entered = RunInNetworkNamespace([&] {
        ASSERT_TRUE(Ip("link set lo up multicast on"));
        work();
    });
    if (!entered) GTEST_SKIP() << WhyNoNamespace();
}

/// A probe of WS-Discovery 2005/04 for ONVIF devices.
inline std::string MakeProbe(std::string const& messageId) {
    return R"(<?xml version="1.0" encoding="utf-8"?>)"
           R"(<e:Envelope xmlns:e="http://www.w3.org/2003/05/soap-envelope")"
           R"( xmlns:w="http://schemas.xmlsoap.org/ws/2004/08/addressing")"
           R"( xmlns:d="http://schemas.xmlsoap.org/ws/2005/04/discovery")"
           R"( xmlns:dn="http://www.onvif.org/ver10/network/wsdl">)"
           R"(<e:Header><w:MessageID>)" +
           messageId +
           R"(</w:MessageID><w:To>urn:schemas-xmlsoap-org:ws:2005:04:discovery</w:To>)"
           R"(<w:Action>http://schemas.xmlsoap.org/ws/2005/04/discovery/Probe</w:Action></e:Header>)"
           R"(<e:Body><d:Probe><d:Types>dn:NetworkVideoTransmitter</d:Types></d:Probe></e:Body></e:Envelope>)";
}

/// A WS-Discovery client on the device with this address; by default, the loopback device.
class ProbeClient {
public:
    explicit ProbeClient(std::string const& address = "127.0.0.1")
        : socket(context, {boost::asio::ip::make_address(address), 0}) {
        socket.set_option(boost::asio::ip::multicast::outbound_interface(boost::asio::ip::make_address_v4(address)));
        socket.set_option(boost::asio::ip::multicast::enable_loopback(true));
    }

    /// Sends a datagram to the group or to another address.
    void Send(std::string const& text, std::string const& address = "239.255.255.250") {
        socket.send_to(boost::asio::buffer(text), {boost::asio::ip::make_address(address), 3702});
    }

    /// The next datagram; nullopt on timeout.
    std::optional<std::string> Receive(std::chrono::milliseconds limit = std::chrono::seconds(60)) {
        std::optional<std::string> answer;
        socket.async_receive_from(boost::asio::buffer(datagram), source,
                                  [&](boost::system::error_code error, std::size_t size) {
                                      if (!error) answer.emplace(datagram.data(), size);
                                  });
        context.restart();
        context.run_for(limit);
        if (!context.stopped()) {
            socket.cancel();
            context.run();
        }
        return answer;
    }

    /// Sender of the last received datagram.
    boost::asio::ip::udp::endpoint GetSource() const { return source; }

    /// Sends a datagram to the group and returns the answer.
    std::optional<std::string> Ask(std::string const& text) {
        Send(text);
        return Receive();
    }

    /// Probes repeatedly until a responder answers; false after `limit`.
    bool FindsAnybody(std::chrono::milliseconds limit = std::chrono::seconds(60)) {
        return Eventually(
            [this] {
                Send(MakeProbe("urn:uuid:anybody"));
                return Receive(std::chrono::milliseconds(100)).has_value();
            },
            limit);
    }

private:
    boost::asio::io_context context;
    boost::asio::ip::udp::socket socket;
    boost::asio::ip::udp::endpoint source;
    std::array<char, 65536> datagram{};
};

/// How often a responder starts and stops during a flood. Each start takes several times as long under a sanitizer.
#ifdef ZARN_SANITIZED
inline constexpr int StartsAndStops = 500;
#else
inline constexpr int StartsAndStops = 2000;
#endif

/// Sends probes to the loopback address as fast as possible during its lifetime.
class Flood {
public:
    Flood() {
        socket.non_blocking(true);
        sender = std::jthread([this](std::stop_token const& over) {
            while (!over.stop_requested()) Exchange();
        });
    }

    /// Number of answers received so far.
    int CountAnswers() const { return answers; }

private:
    void Exchange() {
        boost::system::error_code error;
        socket.send_to(boost::asio::buffer(probe), {boost::asio::ip::address_v4::loopback(), 3702}, 0, error);
        while (socket.receive(boost::asio::buffer(datagram), 0, error) > 0) ++answers;
    }

    std::string const probe = MakeProbe("urn:uuid:flood");
    boost::asio::io_context context;
    boost::asio::ip::udp::socket socket{context, {boost::asio::ip::address_v4::loopback(), 0}};
    std::array<char, 65536> datagram{};
    std::atomic<int> answers = 0;
    std::jthread sender; ///< declared last so that it stops first
};

/// Occupies the WS-Discovery port as another program would.
class PortHolder {
public:
    PortHolder() : socket(context, {boost::asio::ip::udp::v4(), 3702}) {
        fcntl(socket.native_handle(), F_SETFD, FD_CLOEXEC); // child processes must not inherit the port
    }

private:
    boost::asio::io_context context;
    boost::asio::ip::udp::socket socket;
};

} // namespace zarn::test
