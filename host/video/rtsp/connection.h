#pragma once

#include "host/access/connection_count.h"
#include "host/video/rtsp/authentication.h"
#include "host/video/rtsp/base64_decoder.h"
#include "host/video/rtsp/outbox.h"
#include "host/video/rtsp/outlet.h"
#include "host/video/rtsp/request.h"
#include "host/video/rtsp/response.h"
#include "host/video/rtsp/session.h"
#include "host/video/rtsp/site.h"

#include <zarn/io/unique_descriptor.h>

#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/system/error_code.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host::video::rtsp {

class Worker;

/// One client's connection: reads requests, answers them, and carries the packets of its interleaved sessions. Its
/// worker keeps it until it is closed. Thread: its worker's. Source: RFC 2326.
class Connection final : public Outlet, public std::enable_shared_from_this<Connection> {
public:
    using Socket = boost::asio::ip::tcp::socket;
    using Clock = Session::Clock;

    /// How long a connection may be there without a session.
    static constexpr std::chrono::seconds Patience{10};

    /// How many bytes a client may send from one Sweep() to the next. Viewers send some hundreds a second.
    static constexpr std::size_t MaximumReceived = std::size_t{256} * 1024;

    /// The most sessions that are set up over one connection.
    static constexpr std::size_t MaximumSessions = 16;

    /// What a connection is made of.
    struct Accepted {
        Socket socket; ///< on the worker's I/O context
        boost::asio::ip::address peer;
        ConnectionCount::Slot slot;                     ///< held until the connection is closed
        std::shared_ptr<Authentication> authentication; ///< null: none is required
    };

    /// worker  must outlive the connection
    Connection(std::shared_ptr<Site> site, Worker& worker, Accepted accepted);
    ~Connection() override;

    /// Begins to serve; to be called once.
    void Start();

    /// Enforces Patience and MaximumReceived; to be called regularly.
    void Sweep(Clock::time_point now);

    /// Closes the connection and ends its sessions, but for those that play over UDP. Closing twice is harmless.
    void Close();

    /// Whether it has been closed.
    bool IsClosed() const { return isClosed; }

    /// Reads requests, in Base64, from another connection instead: this one is the other half of a tunnel.
    /// descriptor  of the other connection's socket
    /// received    what has been read from it
    /// slot        of the other connection
    void Attach(io::UniqueDescriptor descriptor, std::string_view received, ConnectionCount::Slot slot);

    void Flush() override;
    void SendControl(Track const& track, std::string packet) override;

private:
    template <class Work>
    void Guard(Work const& work);
    void ReportFailure(std::exception const& error);
    void Read();
    void OnRead(boost::system::error_code error, std::size_t size);
    void ReadTunnel();
    void OnTunnelRead(boost::system::error_code error, std::size_t size);
    void EndTunnel();
    void OnReceived(std::string_view bytes);
    void Parse();
    void Resume();
    void OnInterleaved(Input::Interleaved const& packet);
    void Refuse(Input::Refused const& refused);
    void OnRequest(Request const& request);
    void OnHttp(Request const& request);
    void HandOver(Request const& request);
    void AnswerInSession(Request const& request, std::string const& id, Worker& owner);
    void Watch(std::weak_ptr<Session const> const& session);
    void Reply(Response const& response, std::string_view sequence);
    void SendWaiting();
    void ReleaseMemory();
    void OnSessionExpiry();
    void Finish();

    std::optional<Response> CheckLogin(Request const& request);
    Response AnswerDescribe(Request const& request);
    Response AnswerSetUp(Request const& request);
    Response SetUp(Session& session, std::size_t track, Transport const& transport);
    std::optional<std::uint8_t> ChooseChannel(std::optional<std::uint8_t> wanted, Track const* own) const;
    std::shared_ptr<Session> FindOwn(std::string_view id) const;
    std::string GetAuthority() const;

    std::shared_ptr<Site> const site;
    Worker& worker;
    Socket socket;
    boost::asio::ip::address const peer;
    ConnectionCount::Slot slot;
    std::shared_ptr<Authentication> const authentication;
    std::string nonce; ///< that the client answers

    std::array<char, 4096> buffer{};
    std::string input;            ///< received and not parsed
    Input::Incomplete incomplete; ///< of `input`
    std::size_t received = 0;     ///< since the last sweep
    bool isReading = false;
    bool isBusy = false; ///< another worker answers a request
    bool isFinishing = false;
    bool isClosed = false;
    bool hasFailed = false; ///< the next sweep closes it

    Outbox outbox;
    bool isSending = false; ///< the outbox is in use
    bool isWriting = false; ///< in Flush(), or waiting for the socket

    std::vector<std::shared_ptr<Session>> sessions;    ///< that were set up over this connection
    std::vector<std::weak_ptr<Session const>> watched; ///< that were asked for over it; may belong to other workers
    Clock::time_point seen = Clock::now();             ///< when it was accepted or last had a session

    std::string cookie;             ///< of the tunnel; empty: there is none
    std::shared_ptr<Socket> tunnel; ///< a handler of a former one must know that it is not this one
    bool isReadingTunnel = false;
    std::array<char, 4096> tunnelBuffer{};
    ConnectionCount::Slot tunnelSlot;
    Base64Decoder decoder;
};

} // namespace zarn::host::video::rtsp
