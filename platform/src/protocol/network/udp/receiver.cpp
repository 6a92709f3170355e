#include "network/change_notices.h"
#include "protocol/network/udp/membership.h"
#include "protocol/network/udp/port.h"

#include <zarn/container/buffer.h>
#include <zarn/logging/level.h>
#include <zarn/logging/limited_logger.h>
#include <zarn/logging/logger.h>
#include <zarn/network/interface.h>
#include <zarn/protocol/network/udp/admission.h>
#include <zarn/protocol/network/udp/receiver.h>
#include <zarn/protocol/network/udp/throttle.h>

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>

#include <chrono>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zarn::protocol::network::udp {

namespace {

using boost::asio::ip::udp;
using boost::system::error_code;
using zarn::network::Interface;

constexpr unsigned long MaximumBufferSize = 65535;
/// How many datagrams are read before other handlers of the context get their turn.
constexpr int MaximumAtOnce = 64;
/// After receiving failed: whatever the reason is, it must not keep a processor busy.
constexpr std::chrono::milliseconds PauseAfterError{100};
/// Until what could not be joined or read is tried again.
constexpr std::chrono::seconds RetryInterval{10};

constexpr char LoggerName[] = "zarn.protocol.network.udp.Receiver";

} // namespace

/// All of the receiver. Handlers that wait share it, so that one that completes late finds it alive, and closed.
class Receiver::State : public std::enable_shared_from_this<State> {
public:
    State(boost::asio::io_context& ioContext, unsigned short number, boost::optional<boost::asio::ip::address> group,
          unsigned long bufferSize, Callback callback, AnySource anySource)
        : executor(boost::asio::make_strand(ioContext)),
          number(number),
          group(std::move(group)),
          bufferSize(bufferSize),
          callback(std::move(callback)),
          anySource(std::move(anySource)) {}

    void Start();
    void Close() noexcept;

private:
    void Check() const;
    void Join();
    void Report() const;
    void Begin();

    void AwaitDatagram();
    void OnReadable();
    void ReadSome();
    void Handle(Datagram const& datagram);
    bool IsAdmitted(Datagram const& datagram);
    void Deliver(error_code const& error, std::size_t size, udp::endpoint const& source);

    void AwaitChange();
    void Refresh();
    void FollowInterfaces();
    void RetryLater();

    /// "UDP port 3702 for group 239.255.255.250"
    std::string Describe() const;

    /// A handler that holds this object and does nothing once the receiver is closed.
    template <class Work>
    auto Guarded(Work work) {
        return [self = shared_from_this(), work](auto const&...) {
            if (self->port.IsOpen()) work(*self);
        };
    }

    boost::asio::any_io_executor const executor; ///< a strand, for the case that the context has several threads
    unsigned short const number;
    boost::optional<boost::asio::ip::address> const group;
    unsigned long const bufferSize;
    Callback const callback;
    AnySource const anySource;
    logging::Logger const logger{LoggerName};

    Port port{executor};
    boost::asio::steady_timer pause{executor};
    std::string buffer;
    bool wanted = true; ///< the callback has not said Stop
    bool failed = false;
    Throttle throttle;
    logging::LimitedLogger strangers{LoggerName};
    logging::LimitedLogger surplus{LoggerName};

    zarn::network::ChangeNotices notices{executor};
    boost::asio::steady_timer retry{executor};
    std::vector<Interface> interfaces;
    std::optional<Membership> membership;
    std::vector<Membership::Failure> failures;
};

std::string Receiver::State::Describe() const {
    auto text = "UDP port " + std::to_string(number);
    if (group) text += " for group " + group->to_string();
    return text;
}

void Receiver::State::Start() {
    auto const what = "Failed to receive at " + Describe() + ": ";
    if (port.IsOpen()) throw std::runtime_error(what + "it has been started before");
    try {
        Check();
        notices.Open(); // first, so that no change is missed
        port.Open(number);
        interfaces = zarn::network::ReadInterfaces();
        if (group) Join();
        buffer.resize(bufferSize);
        boost::asio::post(executor, Guarded([](State& self) { self.Begin(); }));
    } catch (std::exception const& error) {
        Close();
        throw std::runtime_error(what + error.what());
    }
}

void Receiver::State::Check() const {
    if (bufferSize == 0 || bufferSize > MaximumBufferSize) {
        throw std::runtime_error("a buffer of " + std::to_string(bufferSize) + " bytes is not one of 1 to 65535");
    }
    if (group && !(group->is_v4() && group->is_multicast())) {
        throw std::runtime_error("the group is no IPv4 multicast address");
    }
}

void Receiver::State::Join() {
    membership.emplace(group->to_v4());
    failures = membership->Follow(port.GetDescriptor(), interfaces);
    if (membership->GetCount() == 0) {
        if (failures.empty()) throw std::runtime_error("no interface that is up has an IPv4 address and can multicast");
        auto const& [interface, reason] = failures.front();
        throw std::runtime_error("the group cannot be joined on " + interface + ": " + reason.message());
    }
    Report();
}

void Receiver::State::Report() const {
    for (auto const& [interface, reason] : failures) {
        logger.Log(logging::Level::Warning, "Not listening on %0% at %1%: %2%; trying again every %3% seconds",
                   interface, Describe(), reason.message(), RetryInterval.count());
    }
}

void Receiver::State::Close() noexcept {
    port.Close();
    notices.Close();
    pause.cancel();
    retry.cancel();
    membership.reset();
    failures.clear();
}

void Receiver::State::Begin() {
    AwaitChange();
    AwaitDatagram();
    if (!failures.empty()) RetryLater();
}

void Receiver::State::AwaitDatagram() {
    if (!port.IsOpen() || !wanted) return;
    if (std::exchange(failed, false)) {
        pause.expires_after(PauseAfterError);
        pause.async_wait(Guarded([](State& self) { self.OnReadable(); }));
    } else {
        port.Wait(Guarded([](State& self) { self.OnReadable(); }));
    }
}

void Receiver::State::OnReadable() {
    try {
        ReadSome();
    } catch (...) { // for the context's thread to log
        AwaitDatagram();
        throw;
    }
    AwaitDatagram();
}

void Receiver::State::ReadSome() {
    for (int i = 0; i < MaximumAtOnce && port.IsOpen() && wanted; ++i) {
        Datagram datagram;
        auto const error = port.Read(buffer, datagram);
        if (error == boost::asio::error::would_block) return;
        if (error) {
            failed = true;
            Deliver(error, 0, {});
            return;
        }
        Handle(datagram);
    }
}

void Receiver::State::Handle(Datagram const& datagram) {
    if (!IsAdmitted(datagram)) return;
    auto const error = datagram.truncated ? error_code(boost::asio::error::message_size) : error_code();
    Deliver(error, datagram.size, datagram.source);
}

bool Receiver::State::IsAdmitted(Datagram const& datagram) {
    auto const source = datagram.source.address().to_v4();
    if (!(anySource && anySource()) && !IsNearby(interfaces, datagram.interface, source)) {
        strangers.Log(logging::Level::Debug,
                      "Refused a datagram from %0%: it comes from no network that is connected directly", source);
        return false;
    }
    if (!throttle.Admit(source)) {
        surplus.Log(logging::Level::Debug, "Refused a datagram from %0%: too many lately", source);
        return false;
    }
    return true;
}

void Receiver::State::Deliver(error_code const& error, std::size_t size, udp::endpoint const& source) {
    auto const datagram = std::make_shared<container::Buffer>(buffer.substr(0, size));
    wanted = callback(error, datagram, source) == Operation::Continue;
}

void Receiver::State::AwaitChange() {
    notices.Wait(Guarded([](State& self) {
        self.AwaitChange();
        self.Refresh();
    }));
}

void Receiver::State::Refresh() {
    try {
        FollowInterfaces();
        if (!failures.empty()) RetryLater();
    } catch (std::exception const& error) {
        RetryLater(); // first: telling of it may fail as well
        logger.Log(logging::Level::Warning, "%0%; trying again in %1% seconds", error.what(), RetryInterval.count());
    }
}

void Receiver::State::FollowInterfaces() {
    interfaces = zarn::network::ReadInterfaces();
    if (!membership) return;
    auto const before = std::exchange(failures, membership->Follow(port.GetDescriptor(), interfaces));
    if (failures != before) Report();
}

void Receiver::State::RetryLater() {
    retry.expires_after(RetryInterval);
    retry.async_wait(Guarded([](State& self) { self.Refresh(); }));
}

Receiver::Receiver(boost::asio::io_context& ioContext, unsigned short port,
                   boost::optional<boost::asio::ip::address> multicastGroup, unsigned long bufferSize,
                   Callback callback, AnySource anySource)
    : state(std::make_shared<State>(ioContext, port, std::move(multicastGroup), bufferSize, std::move(callback),
                                    std::move(anySource))) {}

Receiver::~Receiver() { state->Close(); }

void Receiver::Start() { state->Start(); }

} // namespace zarn::protocol::network::udp
