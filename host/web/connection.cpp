#include "host/web/connection.h"

#include "host/web/dispatcher.h"
#include "host/web/incoming_request.h"
#include "host/web/request_check.h"
#include "host/web/response_head.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/read.hpp>

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zarn::host::web {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using Clock = Connection::Clock;
using TlsStream = asio::ssl::stream<Socket>;

/// How much is read at once at the start of a request; most requests fit into it.
constexpr std::size_t FirstRead = 4096;

/// How long, and how much, a client may go on sending when its connection ends. Closing while it still sends would make
/// its system discard the answer before it is read.
constexpr std::chrono::seconds LingerTime{2};
constexpr std::size_t LingerBytes = 16 * 1024 * 1024;

/// How long a cancelled operation may take to end.
constexpr std::chrono::seconds CancelTime{1};

/// Line ends that are skipped in front of a request. A client that sent nothing else would never be idle for long
/// enough to be closed.
constexpr int MostSkipped = 4;

constexpr std::string_view ContinueText = "HTTP/1.1 100 Continue\r\n\r\n";

Socket& GetSocket(Socket& stream) { return stream; }

Socket& GetSocket(TlsStream& stream) { return stream.next_layer(); }

template <class Stream>
class Session final : public Connection {
public:
    template <class... StreamArgs>
    explicit Session(Accepted accepted, StreamArgs&... streamArgs)
        : stream(std::move(accepted.socket), streamArgs...),
          peer(std::move(accepted.peer)),
          slot(std::move(accepted.slot)),
          context(std::move(accepted.context)),
          limits(context->GetLimits()) {}

    ~Session() override { context->GetLiving().Remove(*this); }

    void Start() override {
        context->GetLiving().Add(*this);
        asio::dispatch(stream.get_executor(), [self = Self()] { self->Begin(); });
    }

    void CheckDeadline() override {
        asio::post(stream.get_executor(), [self = Self()] {
            auto const time = Clock::now();
            if (!self->IsOverdue(time)) return;
            // Cancelling misses an operation of several steps between two of them, and a client that floods the
            // connection keeps its steps from waiting: every sweep cancels, until `CancelTime` after the first.
            // Closing at once would deny the client its 408 only because the host is busy.
            if (!std::exchange(self->timedOut, true)) self->closing = time + CancelTime;
            if (time >= self->closing) return self->CloseNow();
            beast::error_code ignored;
            GetSocket(self->stream).cancel(ignored);
        });
    }

    void Finish() override {
        finishing = true; // at once, so that a response made from now on already announces the end
        asio::post(stream.get_executor(), [self = Self()] {
            if (!self->idle) return;
            // Cancelling loses nothing that has been read.
            self->deadline = Clock::now() + self->context->GetLastRequestTime();
            beast::error_code ignored;
            GetSocket(self->stream).cancel(ignored);
        });
    }

    void Close() override {
        asio::post(stream.get_executor(), [self = Self()] { self->CloseNow(); });
    }

private:
    using Handler = void (Session::*)(beast::error_code);

    std::shared_ptr<Session> Self() { return std::static_pointer_cast<Session>(shared_from_this()); }

    /// Whether the present request is the last one.
    bool IsFinishing() const { return finishing || context->IsFinishing(); }

    /// A completion handler that calls `method`.
    auto Then(Handler method) {
        return [self = Self(), method](beast::error_code error, std::size_t = 0) { ((*self).*method)(error); };
    }

    void Allow(Clock::duration time) {
        timedOut = false;
        deadline = Clock::now() + time;
    }

    void Begin() {
        if constexpr (std::is_same_v<Stream, TlsStream>) {
            Allow(limits.headerTime);
            stream.async_handshake(asio::ssl::stream_base::server, Then(&Session::OnHandshake));
        } else {
            AwaitRequest();
        }
    }

    void OnHandshake(beast::error_code error) {
        if (error) return CloseNow();
        AwaitRequest();
    }

    void AwaitRequest() {
        SkipEmptyLines();
        if (buffer.size() > 0) return ReadHeader();
        if (IsFinishing() && !MayHaveRequest()) return Linger();
        idle = true;
        Allow(IsFinishing() ? Clock::duration(context->GetLastRequestTime()) : context->GetLimits().idleTime);
        stream.async_read_some(buffer.prepare(FirstRead), [self = Self()](beast::error_code error, std::size_t count) {
            self->idle = false;
            self->buffer.commit(count);
            if (count > 0) self->fresh = false;
            // A busy host may time out before it reads what arrived in time.
            bool const goesOn = error == asio::error::operation_aborted &&
                                (self->timedOut ? self->HasUnread() : self->finishing && self->MayHaveRequest());
            if (error && !goesOn) return self->CloseNow();
            self->AwaitRequest();
        });
    }

    /// Whether the client has sent more than the host has read.
    bool HasUnread() {
        beast::error_code ignored;
        return GetSocket(stream).available(ignored) > 0;
    }

    /// Whether a connection that is to end still has a request to answer: something has arrived, or the connection is
    /// so new that the client is about to send its first request.
    bool MayHaveRequest() {
        if constexpr (std::is_same_v<Stream, TlsStream>) {
            if (SSL_has_pending(stream.native_handle()) || BIO_pending(SSL_get_rbio(stream.native_handle())) > 0)
                return true;
        }
        return HasUnread() || (fresh && !context->IsFinishing());
    }

    /// Old clients end a body with a line end that does not belong to it. Source: RFC 9112, 2.2.
    void SkipEmptyLines() {
        for (; skipped < MostSkipped && buffer.size() > 0; ++skipped) {
            char const first = *static_cast<char const*>(buffer.cdata().data());
            if (first != '\r' && first != '\n') return;
            buffer.consume(1);
        }
    }

    void ReadHeader() {
        skipped = 0;
        limits = context->GetLimits();
        parser.emplace();
        parser->header_limit(static_cast<std::uint32_t>(MaximumHeader));
        parser->body_limit(limits.bodyBytes);
        Allow(limits.headerTime);
        auto const error = ParseReceived();
        if (error || parser->is_header_done()) return OnHeader(error);
        http::async_read_header(stream, buffer, *parser, Then(&Session::OnHeader));
    }

    /// Parses what has been received. Most requests have arrived as a whole: this saves them the way through the queues
    /// of handlers.
    beast::error_code ParseReceived() {
        beast::error_code error;
        if (buffer.size() > 0) buffer.consume(parser->put(buffer.data(), error));
        return error == http::error::need_more ? beast::error_code() : error;
    }

    void OnHeader(beast::error_code error) {
        if (error) return OnReadError(error);
        if (auto refusal = CheckHeader(*parser)) return Refuse(*std::move(refusal));
        Allow(limits.idleTime);
        auto const& header = parser->get();
        if (parser->chunked()) checkedHeader = header.base();
        bool const asked = header.version() >= 11 && boost::beast::iequals(header[http::field::expect], "100-continue");
        if (!asked || parser->is_done() || buffer.size() > 0) return ReadBody({});
        asio::async_write(stream, asio::buffer(ContinueText), Then(&Session::ReadBody));
    }

    void ReadBody(beast::error_code error) {
        if (error) return CloseNow();
        parser->eager(true);
        if (!parser->is_done()) error = ParseReceived();
        if (error || parser->is_done()) return OnRequest(error);
        http::async_read(stream, buffer, *parser, Then(&Session::OnRequest));
    }

    void OnReadError(beast::error_code error) {
        if (timedOut) return Refuse(MakeTextReply(Status::RequestTimeout, "The request took too long to arrive."));
        auto const rest = buffer.cdata();
        std::string_view const received(static_cast<char const*>(rest.data()), rest.size());
        if (auto refusal = ExplainReadError(error, received, limits)) return Refuse(*std::move(refusal));
        CloseNow();
    }

    void OnRequest(beast::error_code error) {
        if (error) return OnReadError(error);
        auto message = parser->release();
        parser.reset();
        // The parser adds trailer fields to the header, unchecked.
        if (checkedHeader) message.base() = *std::exchange(checkedHeader, std::nullopt);
        form = {message.version() % 10, message.keep_alive()};
        headOnly = message.method() == http::verb::head;
        deadline = Clock::time_point::max();
        context->GetDispatcher().Handle(
            peer, std::make_shared<IncomingRequest>(std::move(message)), limits, [self = Self()](Reply answer) {
                asio::dispatch(self->stream.get_executor(),
                               [self, answer = std::move(answer)]() mutable { self->Write(std::move(answer)); });
            });
    }

    /// Answers a request without reading the rest of it; where the next one would start is unknown.
    void Refuse(Reply refusal) {
        headOnly = false;
        form = {1, false};
        parser.reset(); // before draining: its many small fields may take much more memory than was sent
        Write(std::move(refusal));
    }

    void Write(Reply answer) {
        form.keepAlive = form.keepAlive && !IsFinishing();
        reply = std::move(answer);
        head = MakeResponseHead(*reply, form);
        std::vector<asio::const_buffer> chunks{asio::buffer(head)};
        if (!headOnly && HasBody(reply->GetStatus())) {
            for (auto const& chunk : reply->GetBody()) chunks.emplace_back(asio::buffer(chunk->ToStringView()));
        }
        Allow(limits.idleTime);
        asio::async_write(stream, chunks, Then(&Session::OnWritten));
    }

    void OnWritten(beast::error_code error) {
        reply.reset();
        if (error) return CloseNow();
        if (form.keepAlive) return AwaitRequest();
        Linger();
    }

    void Linger() {
        Allow(LingerTime);
        if constexpr (std::is_same_v<Stream, TlsStream>) {
            stream.async_shutdown(Then(&Session::ShutDown));
        } else {
            ShutDown({});
        }
    }

    void ShutDown(beast::error_code) {
        beast::error_code error;
        GetSocket(stream).shutdown(asio::socket_base::shutdown_send, error);
        if (error || timedOut) return CloseNow();
        buffer.clear();
        Drain();
    }

    void Drain() {
        GetSocket(stream).async_read_some(buffer.prepare(FirstRead),
                                          [self = Self()](beast::error_code error, std::size_t count) {
                                              self->drained += count;
                                              if (error || self->drained > LingerBytes) return self->CloseNow();
                                              self->Drain();
                                          });
    }

    void CloseNow() {
        beast::error_code ignored;
        GetSocket(stream).close(ignored);
    }

    Stream stream;
    boost::asio::ip::address peer;
    Admission::Slot slot;
    std::shared_ptr<ConnectionContext> context;
    std::atomic<bool> finishing = false; ///< no request follows the present one

    // Only touched on the stream's strand.
    Limits limits;             ///< of the present request
    bool timedOut = false;     ///< the present operation was cancelled because its time was over
    Clock::time_point closing; ///< when to close the connection if cancelling has not ended the operation
    bool idle = false;         ///< waiting for the first byte of a request
    bool fresh = true;         ///< nothing has been received yet
    int skipped = 0;           ///< bytes of line ends in front of the next request
    beast::flat_buffer buffer{MaximumHeader + FirstRead};
    std::optional<RequestParser> parser;
    std::optional<RequestParser::value_type::header_type> checkedHeader; ///< of a chunked request
    ResponseForm form;
    bool headOnly = false;
    std::optional<Reply> reply; ///< being written
    std::string head;
    std::size_t drained = 0;
};

} // namespace

std::shared_ptr<Connection> MakeConnection(Accepted accepted, std::shared_ptr<asio::ssl::context> const& tls) {
    if (tls) return std::make_shared<Session<TlsStream>>(std::move(accepted), *tls);
    return std::make_shared<Session<Socket>>(std::move(accepted));
}

} // namespace zarn::host::web
