#pragma once

#include <zarn/protocol/network/udp/operation.h>

#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/udp.hpp>
#include <boost/optional/optional.hpp>
#include <boost/system/error_code.hpp>

#include <functional>
#include <memory>

namespace boost::asio {
class io_context;
}

namespace zarn::container {
class Buffer;
}

namespace zarn::protocol::network::udp {

/// Receives the datagrams that come to a UDP port of this machine over IPv4, by unicast or for a multicast group.
///
/// The port is this receiver's alone: no other socket can share it, whatever options that socket sets. The group is
/// joined on every interface that is up, has an IPv4 address and can multicast. The system's loopback interface usually
/// cannot; programs on the same machine still reach the receiver, since the kernel hands what they send to the group on
/// any interface back to this machine. Interfaces that appear, go, or change their addresses later are followed within
/// a second.
///
/// A datagram reaches the callback only when it keeps to both rules, so that the receiver's user cannot be made to
/// flood another host:
/// - its source is on a network that is directly connected to the interface that received it, or is this machine
///   itself, unless the receiver's user allows any source (AnySource);
/// - its source has not sent too many lately, and neither have all sources together (Throttle).
/// Others are counted and reported in the log, at most once a second.
///
/// Threads: the callback runs on a thread of the context, one call at a time. Construction and Start: any thread. The
/// receiver is destroyed on the thread of a context that has one thread, within the callback too, or on any thread once
/// the context has stopped; no callback begins after that. What the callback refers to must live until then.
class Receiver {
public:
    /// Handles one datagram.
    /// error   none for a datagram. boost::asio::error::message_size for one that was longer than the buffer, whose
    ///         first part is given. Any other: receiving failed; it goes on after a tenth of a second.
    /// buffer  the datagram, never null; empty when receiving failed
    /// source  of the datagram; unspecified when receiving failed
    /// What it throws is left to the context's thread; receiving goes on.
    using Callback =
        std::function<Operation(boost::system::error_code const& error, std::shared_ptr<container::Buffer> buffer,
                                boost::asio::ip::udp::endpoint source)>;

    /// Whether datagrams from any source are taken at this moment. Asked for each datagram, on the callback's thread. A
    /// device that answers any source can be abused to flood a forged address; Throttle bounds that.
    using AnySource = std::function<bool()>;

    /// Binds nothing yet, so that another receiver for the same port may still exist.
    /// ioContext       where the callback runs; must outlive the receiver
    /// port            to bind on all IPv4 addresses of this machine
    /// multicastGroup  an IPv4 group to join; none: unicast and broadcast only
    /// bufferSize      the longest datagram in bytes, at least 1 and at most 65,535
    /// anySource       null: only sources nearby, see above
    Receiver(boost::asio::io_context& ioContext, unsigned short port,
             boost::optional<boost::asio::ip::address> multicastGroup, unsigned long bufferSize, Callback callback,
             AnySource anySource = nullptr);

    /// Closes the port. No callback begins any more, see above.
    ~Receiver();
    Receiver(Receiver const&) = delete;
    Receiver& operator=(Receiver const&) = delete;

    /// Binds the port, joins the group and begins to receive. To be called once; a receiver whose start failed has
    /// bound nothing and may be started again.
    /// Throws std::runtime_error whose text names the port, the group and the reason: the port is taken, the group is
    /// no IPv4 multicast address, no interface can multicast, none could be joined, the buffer size is out of range, or
    /// it has been started before. A group that can be joined on some interfaces only is no failure: the others are
    /// logged and tried again every ten seconds.
    void Start();

private:
    class State;
    std::shared_ptr<State> state;
};

} // namespace zarn::protocol::network::udp
