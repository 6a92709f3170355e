#pragma once

#include <memory>

namespace boost::asio {
class io_context;
}

namespace zarn::asio {

class IoContext;

/// A handle to the I/O context of the process and the one thread that runs it. The first handle makes the context and
/// starts the thread; copies share it; the last one stops the thread, waits for it and destroys the context. A handle
/// made after that makes another context.
///
/// A thread that calls something of the context, such as posting a handler or starting a timer, holds a handle until
/// the call has returned. Whatever is bound to the context, such as a timer, must be destroyed before the last handle:
/// keep a handle beside it, declared before it. A handler that has not begun when the last handle goes is destroyed
/// without having run, on the thread that releases the handle. A handler must not own a handle that is waiting in the
/// context itself, since the two would keep each other alive.
///
/// The last handle may also go on the context's own thread, within a handler. It does not wait then: the thread ends
/// after that handler. A handle made after its end destroys the context; otherwise the end of the process waits for the
/// thread and destroys it. To be sure that nothing runs any more, the owner of static state keeps a handle and releases
/// it on another thread.
///
/// What a handler throws is logged and goes no further; the others run on.
/// Thread: any; one handle is used by one thread at a time, as usual. A handle must not go while its thread holds a
/// lock that a handler takes, because the last one waits for handlers.
class GlobalContext {
public:
    /// Throws std::system_error when the thread cannot be started; nothing is left behind then.
    GlobalContext();

    /// Shares the context.
    GlobalContext(GlobalContext const& other) noexcept;
    /// Shares the other's context, then lets go of the one so far.
    GlobalContext& operator=(GlobalContext const& other) noexcept;
    ~GlobalContext();

    /// The context; the reference holds as long as a handle to it lives.
    boost::asio::io_context& Get() const noexcept;

private:
    std::shared_ptr<IoContext> context;
};

} // namespace zarn::asio
