#pragma once

#include <memory>

namespace boost::asio {
class io_context;
}

namespace zarn::asio {

/// An I/O context with threads of its own that run it. It runs on when there is nothing to do, and what a handler
/// throws is logged and goes no further.
///
/// Whatever is bound to the context, such as a timer or a socket, must be destroyed before it: declare it behind.
class IoContext {
public:
    /// threads  at least 1
    /// Throws std::invalid_argument for 0 threads, std::system_error when a thread cannot be started; nothing is left
    /// behind then.
    explicit IoContext(unsigned threads);

    /// Calls Stop; handlers that have not begun are destroyed without having run. Not on one of its own threads.
    ~IoContext();
    IoContext(IoContext const&) = delete;
    IoContext& operator=(IoContext const&) = delete;

    /// The context; the reference holds as long as this object lives. Thread: any.
    boost::asio::io_context& Get() const noexcept;

    /// Ends the threads after the handlers that are running and waits for them: when it returns, no handler runs or
    /// will run, so that what handlers use may be taken apart. Stopping twice is harmless. From within a handler it
    /// cannot wait: it only stops the context, and the next call from outside waits. Thread: any; the caller must hold
    /// no lock that a handler takes.
    void Stop() noexcept;

    /// True once the last handler has returned after Stop: destroying the context takes no time. Thread: any.
    bool HasEnded() const noexcept;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace zarn::asio
