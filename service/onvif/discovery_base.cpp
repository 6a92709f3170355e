#include "discovery_base.h"

#include <zarn/container/buffer.h>
#include <zarn/logging/logger.h>
#include <zarn/network/address.h>
#include <zarn/onvif/discovery/request.h>
#include <zarn/onvif/discovery/response.h>
#include <zarn/protocol/network/udp/receiver.h>
#include <zarn/protocol/network/udp/sender.h>

#include <cstddef>
#include <exception>
#include <utility>

namespace zarn::service::onvif {

using boost::asio::ip::udp;
using boost::system::error_code;
using container::Buffer;
using protocol::network::udp::Operation;
using protocol::network::udp::Receiver;
using protocol::network::udp::Sender;

boost::asio::ip::address const MulticastAddress = network::address::v4::Make(239, 255, 255, 250);

namespace {

/// Of WS-Discovery (2005/04, section 2.4).
constexpr unsigned short Port = 3702;

constexpr std::size_t LongestDatagram = 65535;

constexpr auto Traffic = logging::Level::Debug;

logging::Logger const& DiscoveryLog() {
    static logging::Logger const logger("zarn.service.onvif.DiscoveryBase");
    return logger;
}

void LogFailure(std::exception const& failure) noexcept {
    try {
        DiscoveryLog().Log(logging::Level::Error, "Failed to start Onvif discovery service: %0%", failure.what());
    } catch (std::exception const&) {
        return; // setup is retried either way
    }
}

} // namespace

DiscoveryBase::DiscoveryBase(std::chrono::milliseconds retryInterval)
    : retryInterval(retryInterval), ioContext(1), retryTimer(ioContext.Get()) {}

DiscoveryBase::~DiscoveryBase() = default;

void DiscoveryBase::Begin() {
    try {
        TrySetup();
    } catch (...) {
        End(); // the destructor of the derived class does not run
        throw;
    }
}

void DiscoveryBase::End() { ioContext.Stop(); }

void DiscoveryBase::TrySetup() {
    try {
        receiver = std::make_unique<Receiver>(
            ioContext.Get(), Port, MulticastAddress, LongestDatagram,
            [this](error_code const& error, std::shared_ptr<Buffer> const& datagram, udp::endpoint const& source) {
                return HandleReceiveFrom(error, datagram, source);
            },
            [this] { return anySource.load(); });
        receiver->Start();
        DiscoveryLog().Log(logging::Level::Info, "Onvif discovery service started successfully");
    } catch (std::exception const& error) {
        RetryLater(); // first: logging may fail as well
        LogFailure(error);
    }
}

void DiscoveryBase::RetryLater() {
    retryTimer.expires_after(retryInterval);
    retryTimer.async_wait([this](error_code const& error) {
        if (!error) TrySetup();
    });
}

Operation DiscoveryBase::HandleReceiveFrom(error_code const& error, std::shared_ptr<Buffer> const& datagram,
                                           udp::endpoint const& source) {
    if (!error) Answer(datagram->ToStringView(), source);
    return Operation::Continue;
}

void DiscoveryBase::Answer(std::string_view text, udp::endpoint const& source) {
    zarn::onvif::discovery::Request const request{std::string(text)};
    if (request.IsParseError()) {
        DiscoveryLog().Log(Traffic, "Failed to parse discovery request: %0%", text);
        return;
    }
    DiscoveryLog().Log(Traffic, "Successfully parsed discovery request: %0%", text);
    auto const response = HandleReceive(request);
    if (!response.IsValid()) {
        DiscoveryLog().Log(Traffic, "Failed to generate discovery response for request: %0%", text);
        return;
    }
    Send(response.GetXML(), source);
}

void DiscoveryBase::Send(std::string xml, udp::endpoint const& destination) {
    DiscoveryLog().Log(Traffic, "Successfully generated discovery response: %0%", xml);
    auto const buffer = std::make_shared<Buffer>(std::move(xml));
    auto const sender = std::make_shared<Sender>(ioContext.Get(), destination);
    // Both live until the datagram is sent.
    sender->Send(buffer, [sender, buffer](error_code const& error) {
        if (!error) return;
        DiscoveryLog().Log(Traffic, "Failed to send discovery response: %0% with error %1% ", buffer->ToStringView(),
                           error.message());
    });
}

} // namespace zarn::service::onvif
