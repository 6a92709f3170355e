#include "host/video/rtsp/connection.h"

#include "host/video/log.h"
#include "host/video/rtsp/description.h"
#include "host/video/rtsp/stream_path.h"
#include "host/video/rtsp/transport.h"
#include "host/video/rtsp/worker.h"

#include <zarn/text/character.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <exception>
#include <set>
#include <utility>

namespace zarn::host::video::rtsp {
namespace {

namespace asio = boost::asio;
using SystemClock = std::chrono::system_clock;

/// What the system keeps of a client that never stops sending.
constexpr int ReceiveBuffer = 32 * 1024;

/// What the system keeps unsent for a client that does not read; the rest waits in queues that viewers share.
constexpr int UnsentBytes = 256 * 1024;

/// How long a client may leave unread what it has been sent, in milliseconds. A little video would fit into the
/// system's buffers for much longer.
constexpr unsigned UnreadTime = std::chrono::milliseconds(Session::Timeout).count();

constexpr std::string_view Tunnelled = "x-sessioncookie";

std::string WritePair(unsigned first, unsigned second) { return std::to_string(first) + "-" + std::to_string(second); }

/// The identifier in a Session field, without parameters.
std::string GetSessionId(Request const& request) {
    auto const field = request.Find("Session");
    return std::string(text::Trim(field.substr(0, field.find(';'))));
}

constexpr std::array<std::string_view, 8> Methods{"OPTIONS", "DESCRIBE", "GET_PARAMETER", "PAUSE",
                                                  "PLAY",    "SETUP",    "SET_PARAMETER", "TEARDOWN"};

/// The answer to OPTIONS, GET_PARAMETER and SET_PARAMETER, which need no session here; none for other methods.
std::optional<Response> AnswerStateless(Request const& request) {
    if (request.method.ends_with("_PARAMETER"))
        return Response{request.body.empty() ? Status::Ok : Status::ParameterNotUnderstood};
    if (request.method != "OPTIONS") return std::nullopt;
    std::string names;
    for (auto const method : Methods) names.append(names.empty() ? "" : ", ").append(method);
    return Response{Status::Ok, {{"Public", std::move(names)}}};
}

} // namespace

Connection::Connection(std::shared_ptr<Site> site, Worker& worker, Accepted accepted)
    : site(std::move(site)),
      worker(worker),
      socket(std::move(accepted.socket)),
      peer(std::move(accepted.peer)),
      slot(std::move(accepted.slot)),
      authentication(std::move(accepted.authentication)) {}

Connection::~Connection() { Close(); }

/// Runs a handler. Without memory or random bytes, it ends this connection and no other.
template <class Work>
void Connection::Guard(Work const& work) {
    try {
        work();
    } catch (std::exception const& error) {
        ReportFailure(error);
        Close();
    }
}

void Connection::ReportFailure(std::exception const& error) {
    site->GetRefusals().Log(logging::Level::Error, "An RTSP connection failed and is closed: %0%", error.what());
}

void Connection::Start() {
    Guard([this] {
        boost::system::error_code ignored;
        socket.non_blocking(true, ignored);
        socket.set_option(asio::ip::tcp::no_delay(true), ignored);
        socket.set_option(asio::socket_base::receive_buffer_size(ReceiveBuffer), ignored);
        setsockopt(socket.native_handle(), IPPROTO_TCP, TCP_NOTSENT_LOWAT, &UnsentBytes, sizeof(UnsentBytes));
        setsockopt(socket.native_handle(), IPPROTO_TCP, TCP_USER_TIMEOUT, &UnreadTime, sizeof(UnreadTime));
        worker.Add(shared_from_this());
        Read();
    });
}

void Connection::Read() {
    if (isReading || isClosed || isBusy || !outbox.HasRoom()) return;
    isReading = true;
    socket.async_read_some(asio::buffer(buffer),
                           [self = shared_from_this()](boost::system::error_code error, std::size_t size) {
                               self->isReading = false;
                               self->Guard([&] { self->OnRead(error, size); });
                           });
}

void Connection::OnRead(boost::system::error_code error, std::size_t size) {
    if (error) return Close();
    if (cookie.empty()) {
        OnReceived({buffer.data(), size});
    } else if ((received += size) > MaximumReceived) { // requests come through the other half
        return Close();
    }
    Read();
}

void Connection::ReadTunnel() {
    if (!tunnel || isReadingTunnel || isClosed || isBusy || !outbox.HasRoom()) return;
    isReadingTunnel = true;
    tunnel->async_read_some(asio::buffer(tunnelBuffer), [self = shared_from_this(), half = tunnel](
                                                            boost::system::error_code error, std::size_t size) {
        if (self->isClosed || self->tunnel != half) return; // another one has taken its place
        self->isReadingTunnel = false;
        self->Guard([&] { self->OnTunnelRead(error, size); });
    });
}

void Connection::OnTunnelRead(boost::system::error_code error, std::size_t size) {
    if (error) return EndTunnel(); // the client may open another one
    auto const bytes = decoder.Decode({tunnelBuffer.data(), size});
    if (!bytes) return Close();
    OnReceived(*bytes);
    ReadTunnel();
}

void Connection::EndTunnel() {
    boost::system::error_code ignored;
    if (tunnel) tunnel->close(ignored);
    tunnel.reset();
    tunnelSlot.reset();
    isReadingTunnel = false;
}

void Connection::OnReceived(std::string_view bytes) {
    received += bytes.size();
    if (received > MaximumReceived) return Close();
    if (isFinishing) return; // waits for the client to close
    input.append(bytes);
    Parse();
}

void Connection::Parse() {
    std::size_t parsed = 0;
    while (!isBusy && !isFinishing && !isClosed && outbox.HasRoom() && socket.is_open()) {
        if (input.size() - parsed < incomplete.needed) break;
        auto const next = ParseInput(std::string_view(input).substr(parsed), incomplete.searched);
        parsed += next.size;
        incomplete = {};
        if (auto const* more = std::get_if<Input::Incomplete>(&next.what)) {
            incomplete = *more;
            break;
        }
        if (auto const* request = std::get_if<Request>(&next.what)) {
            if (request->version.starts_with("HTTP/")) {
                input.erase(0, std::exchange(parsed, 0)); // what follows goes through the tunnel
                OnHttp(*request);
                continue;
            }
            OnRequest(*request);
        } else if (auto const* packet = std::get_if<Input::Interleaved>(&next.what)) {
            OnInterleaved(*packet);
        } else {
            Refuse(std::get<Input::Refused>(next.what));
        }
    }
    input.erase(0, std::min(parsed, input.size()));
}

/// Goes on with requests that had to wait.
void Connection::Resume() {
    Guard([this] {
        Parse();
        Read();
        ReadTunnel();
    });
}

/// Whatever they say, receiver reports are signs of life.
void Connection::OnInterleaved(Input::Interleaved const& packet) {
    if (!rtp::IsRtcp(packet.data)) return;
    for (auto const& session : sessions) {
        if (session->IsInterleaved()) session->Touch(Clock::now());
    }
}

void Connection::Refuse(Input::Refused const& refused) {
    if (!refused.status) return Close();
    Reply({*refused.status}, refused.sequence);
    Finish();
}

void Connection::OnRequest(Request const& request) {
    auto const sequence = std::string(request.Find("CSeq"));
    if (sequence.empty()) return Refuse({Status::BadRequest});
    for (auto const& session : sessions) session->Touch(Clock::now());
    if (request.version != "RTSP/1.0") return Reply({Status::VersionNotSupported}, sequence);
    if (auto const required = request.Find("Require"); !required.empty())
        return Reply({Status::OptionNotSupported, {{"Unsupported", std::string(required)}}}, sequence);
    if (std::ranges::find(Methods, request.method) == Methods.end()) return Reply({Status::NotImplemented}, sequence);
    if (request.method == "DESCRIBE") return Reply(AnswerDescribe(request), sequence);
    if (request.method == "SETUP") return Reply(AnswerSetUp(request), sequence);
    auto const id = GetSessionId(request);
    if (id.empty()) return Reply(AnswerStateless(request).value_or(Response{Status::SessionNotFound}), sequence);
    auto* const owner = site->FindWorker(id);
    if (owner == nullptr) return Reply({Status::SessionNotFound}, sequence);
    AnswerInSession(request, id, *owner);
}

/// Has the worker that owns the session answer the request.
void Connection::AnswerInSession(Request const& request, std::string const& id, Worker& owner) {
    struct Answered {
        Response response{Status::SessionNotFound};
        std::weak_ptr<Session const> session = {};
    };

    auto answer = [request, id, authority = GetAuthority(), asker = this, &owner] {
        Answered answered;
        auto const session = owner.FindSession(id);
        // An interleaved session belongs to its connection.
        if (!session || (session->IsInterleaved() && !session->UsesOutlet(*asker))) return answered;
        answered.session = session;
        session->Touch(Clock::now());
        if (auto response = AnswerStateless(request)) {
            answered.response = *std::move(response);
            answered.response.fields.emplace_back("Session", id);
        } else if (auto const path = ParseStreamPath(request.uri)) {
            answered.response = session->Handle(request, *path, MakeChannelUri(request.uri, path->id, authority));
        } else {
            answered.response = {Status::NotFound};
        }
        return answered;
    };
    auto const sequence = std::string(request.Find("CSeq"));
    auto const finish = [sequence](Connection& self, Answered const& answered) {
        self.isBusy = false;
        self.Watch(answered.session);
        self.Reply(answered.response, sequence);
    };
    if (&owner == &worker) {
        auto const answered = answer();
        finish(*this, answered);
        if (auto const session = owner.FindSession(id)) session->Proceed();
        return;
    }
    isBusy = true;
    asio::post(owner.GetContext(), [answer = std::move(answer), finish, id, &owner, &home = worker,
                                    weak = weak_from_this(), &refusals = site->GetRefusals()] {
        Answered answered{{Status::InternalError}};
        try {
            answered = answer();
            if (auto const session = owner.FindSession(id)) session->Proceed();
        } catch (std::exception const& error) {
            refusals.Log(logging::Level::Error, "An RTSP request failed: %0%", error.what());
        }
        asio::post(home.GetContext(), [finish, weak, answered = std::move(answered)] {
            auto const self = weak.lock();
            if (!self || self->isClosed) return;
            self->Guard([&] { finish(*self, answered); });
            self->Resume();
        });
    });
}

/// The connection stays as long as a session that was asked for over it.
void Connection::Watch(std::weak_ptr<Session const> const& session) {
    auto const isSame = [&session](std::weak_ptr<Session const> const& each) {
        return !each.owner_before(session) && !session.owner_before(each);
    };
    if (!session.expired() && std::ranges::none_of(watched, isSame)) watched.push_back(session);
}

/// The two halves of a tunnel are recognised by their requests.
void Connection::OnHttp(Request const& request) {
    auto const wanted = std::string(request.Find(Tunnelled));
    bool const isUsable = cookie.empty() && !wanted.empty() && wanted.size() <= Tunnels::MaximumCookie;
    if (isUsable && request.method == "POST") return HandOver(request);
    if (!isUsable || request.method != "GET" || !site->GetTunnels().Add(wanted, {&worker, weak_from_this(), peer})) {
        outbox.Add(WriteHttpRefusal(SystemClock::now()));
        return Finish();
    }
    cookie = wanted;
    outbox.Add(WriteTunnelResponse(SystemClock::now()));
    Flush();
}

/// Gives the socket to the other half of the tunnel; this connection has ended then. One that has sessions cannot be
/// given away: their packets go over it. Nor can one from another address, which may have overheard the cookie.
void Connection::HandOver(Request const& request) {
    auto const half = site->GetTunnels().Find(request.Find(Tunnelled));
    if (!half || half->peer != peer || !sessions.empty()) return Close();
    boost::system::error_code error;
    io::UniqueDescriptor descriptor(socket.release(error));
    if (error) return Close();
    asio::post(half->worker->GetContext(), [connection = half->connection, descriptor = std::move(descriptor),
                                            received = std::exchange(input, {}), slot = slot]() mutable {
        auto const other = connection.lock();
        if (other) other->Attach(std::move(descriptor), received, std::move(slot));
    });
    Close();
}

void Connection::Attach(io::UniqueDescriptor descriptor, std::string_view bytes, ConnectionCount::Slot otherSlot) {
    if (isClosed) return;
    Guard([&] {
        EndTunnel();
        boost::system::error_code error;
        tunnel = std::make_shared<Socket>(worker.GetContext());
        tunnel->assign(asio::ip::tcp::v4(), descriptor.Get(), error);
        if (error) return EndTunnel();
        descriptor.Release();
        tunnelSlot = std::move(otherSlot);
        decoder = {};
        auto const decoded = decoder.Decode(bytes);
        if (!decoded) return Close();
        OnReceived(*decoded);
        ReadTunnel();
    });
}

void Connection::Reply(Response const& response, std::string_view sequence) {
    if (isClosed) return;
    outbox.Add(WriteResponse(response, sequence, SystemClock::now()));
    Flush();
}

void Connection::SendControl(Track const& track, std::string packet) try {
    if (isClosed || !outbox.HasRoom()) return;
    std::string frame{'$', static_cast<char>(track.channel + 1), static_cast<char>(packet.size() >> 8),
                      static_cast<char>(packet.size() & 0xFF)};
    outbox.Add(frame += packet);
    Flush();

} catch (std::exception const& error) {

    hasFailed = true; // not now: the caller may be going through the sessions
    ReportFailure(error);
}

void Connection::Flush() {
    try {
        SendWaiting();
    } catch (std::exception const& error) {
        hasFailed = true; // as above
        ReportFailure(error);
    }
}

void Connection::SendWaiting() {
    if (isWriting || isClosed) return;
    isWriting = true;
    bool const hadRoom = outbox.HasRoom();
    isSending = true;
    auto const result = outbox.Send(socket.native_handle(), sessions);
    isSending = false;
    if (isClosed) return ReleaseMemory();
    using enum Outbox::Result;
    if (result == Empty) {
        isWriting = false;
    } else if (result == Failed) {
        // Not now: the caller may be going through the sessions.
        asio::post(worker.GetContext(), [self = shared_from_this()] { self->Close(); });
    } else {
        auto goOn = [self = shared_from_this()](boost::system::error_code = {}) {
            self->isWriting = false;
            self->Flush();
        };
        if (result == Full) {
            socket.async_wait(Socket::wait_write, std::move(goOn));
        } else {
            asio::post(worker.GetContext(), std::move(goOn));
        }
    }
    if (isFinishing && outbox.HasSentTexts()) {
        boost::system::error_code ignored;
        socket.shutdown(Socket::shutdown_send, ignored);
    }
    if (!hadRoom && outbox.HasRoom()) {
        asio::post(worker.GetContext(), [self = shared_from_this()] { self->Resume(); });
    }
}

/// Closes when the client does: closing at once would make its system discard the answer before it is read.
void Connection::Finish() {
    isFinishing = true;
    Flush();
}

void Connection::Sweep(Clock::time_point now) {
    if (hasFailed) return Close();
    received = 0;
    if (outbox.TakeProgress()) {
        for (auto const& session : sessions) {
            if (session->IsInterleaved()) session->Touch(now);
        }
    }
    std::erase_if(sessions, [](auto const& session) { return session->HasEnded(); });
    std::erase_if(watched, [](auto const& session) { return session.expired(); });
    if (!sessions.empty() || !watched.empty()) seen = now;
    if (now - seen > Patience) Close();
}

void Connection::Close() {
    if (std::exchange(isClosed, true)) return;
    boost::system::error_code ignored;
    socket.close(ignored);
    EndTunnel();
    if (!cookie.empty()) site->GetTunnels().Remove(cookie);
    slot.reset();
    for (auto const& session : std::exchange(sessions, {})) {
        if (session->IsInterleaved() || !session->IsPlaying()) session->End();
    }
    ReleaseMemory();
}

/// Handlers that are still to come keep a closed connection, but not what waits in it.
void Connection::ReleaseMemory() {
    std::string().swap(input);
    if (!isSending) outbox = Outbox();
}

/// A viewer whose stream ends hears of it by the end of its connection, too, unless that serves another session.
void Connection::OnSessionExpiry() {
    auto const isAlive = [](auto const& session) { return !session->HasEnded(); };
    if (std::ranges::count_if(sessions, isAlive) <= 1) Close();
}

std::optional<Response> Connection::CheckLogin(Request const& request) {
    if (!authentication) return std::nullopt;
    auto const credentials = request.Find("Authorization");
    bool isStale = false;
    if (!credentials.empty() && !site->GetFailedLogins().GetWait(peer)) {
        using enum Authentication::Verdict;
        auto const verdict = authentication->Check(credentials, request.method, nonce);
        if (verdict == Right) return std::nullopt;
        if (verdict == Wrong) site->GetFailedLogins().Count(peer);
        isStale = verdict == Stale;
    }
    return Response{Status::Unauthorized, {{"WWW-Authenticate", authentication->MakeChallenge(isStale)}}};
}

Response Connection::AnswerDescribe(Request const& request) {
    if (auto refusal = CheckLogin(request)) return *std::move(refusal);
    auto const path = ParseStreamPath(request.uri);
    auto const mount = path && !path->track ? site->GetMounts().Find(path->id) : nullptr;
    if (!mount) return {Status::NotFound};
    auto const tracks = mount->Describe();
    if (!tracks) return {Status::Unavailable};
    auto const number = SystemClock::now().time_since_epoch().count();
    boost::system::error_code ignored;
    auto const address = socket.local_endpoint(ignored).address().to_string();
    return {Status::Ok,
            {{"Content-Type", "application/sdp"},
             {"Content-Base", MakeChannelUri(request.uri, path->id, GetAuthority()) + "/"}},
            WriteDescription(*tracks, static_cast<std::uint64_t>(number), address)};
}

Response Connection::AnswerSetUp(Request const& request) {
    if (auto refusal = CheckLogin(request)) return *std::move(refusal);
    auto const path = ParseStreamPath(request.uri);
    auto const mount = path ? site->GetMounts().Find(path->id) : nullptr;
    if (!mount) return {Status::NotFound};
    if (!path->track && mount->CountTracks() > 1) return {Status::AggregateNotAllowed};
    auto const track = path->track.value_or(0);
    if (track >= mount->CountTracks()) return {Status::NotFound};
    auto const id = GetSessionId(request);
    auto session = FindOwn(id);
    if (!id.empty() && !session) return {Status::SessionNotFound};
    auto const transport = ChooseTransport(request.Find("Transport"));
    if (!transport) return {Status::UnsupportedTransport};
    if (session) {
        if (session->GetMount().GetId() != path->id) return {Status::AggregateNotAllowed};
        if (session->IsPlaying()) return {Status::MethodNotValidInThisState};
        return SetUp(*session, track, *transport);
    }
    if (!mount->Describe()) return {Status::Unavailable};
    std::erase_if(sessions, [](auto const& each) { return each->HasEnded(); });
    auto sessionSlot = site->AddSession(peer);
    if (!sessionSlot || sessions.size() >= MaximumSessions) return {Status::Unavailable};
    session = std::make_shared<Session>(worker, mount, Site::MakeSessionId(worker), std::move(sessionSlot));
    auto response = SetUp(*session, track, *transport);
    if (response.status != Status::Ok) return response;
    session->SetOnExpiry([weak = weak_from_this()] {
        if (auto const self = weak.lock()) self->OnSessionExpiry();
    });
    sessions.push_back(session);
    worker.Add(session);
    return response;
}

Response Connection::SetUp(Session& session, std::size_t track, Transport const& transport) try {
    std::string text;
    rtp::Sender const* sender = nullptr;
    if (transport.isInterleaved) {
        auto const channel = ChooseChannel(transport.channel, session.GetTracks()[track].get());
        if (!channel) return {Status::UnsupportedTransport};
        sender = &session.SetUp(track, *channel, *this).sender;
        text = "RTP/AVP/TCP;unicast;interleaved=" + WritePair(*channel, *channel + 1U);
    } else {
        sender = &session.SetUp(track, peer, transport).sender;
        unsigned const port = worker.GetUdpPorts().GetPort();
        text = "RTP/AVP;unicast;client_port=" + WritePair(transport.rtpPort, transport.rtcpPort) +
               ";server_port=" + WritePair(port, port + 1);
    }
    text += ";ssrc=" + sender->GetName() + ";mode=\"PLAY\"";
    return {Status::Ok,
            {{"Transport", std::move(text)},
             {"Session", session.GetId() + ";timeout=" + std::to_string(Session::Timeout.count())}}};

} catch (std::exception const& error) {

    site->GetRefusals().Log(logging::Level::Error, "An RTSP session cannot be set up: %0%", error.what());
    return {Status::InternalError};
}

/// The wanted channel, or the first free one. A track that is set up again may keep its own.
std::optional<std::uint8_t> Connection::ChooseChannel(std::optional<std::uint8_t> wanted, Track const* own) const {
    std::set<unsigned> used;
    for (auto const& session : sessions) {
        if (!session->IsInterleaved() || session->HasEnded()) continue;
        for (auto const& track : session->GetTracks()) {
            if (track && track.get() != own) used.insert({track->channel, track->channel + 1U});
        }
    }
    auto const isFree = [&used](unsigned channel) { return !used.contains(channel) && !used.contains(channel + 1); };
    if (wanted && isFree(*wanted)) return wanted;
    for (unsigned channel = 0; channel < 255; channel += 2) {
        if (isFree(channel)) return static_cast<std::uint8_t>(channel);
    }
    return std::nullopt;
}

std::shared_ptr<Session> Connection::FindOwn(std::string_view id) const {
    auto const found = std::ranges::find_if(
        sessions, [id](auto const& session) { return session->GetId() == id && !session->HasEnded(); });
    return found == sessions.end() ? nullptr : *found;
}

std::string Connection::GetAuthority() const {
    boost::system::error_code ignored;
    auto const local = socket.local_endpoint(ignored);
    return local.address().to_string() + ":" + std::to_string(local.port());
}

} // namespace zarn::host::video::rtsp
