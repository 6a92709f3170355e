#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <functional>

namespace zarn::network {

/// Tells when an interface of this network namespace, or one of its IPv4 addresses, has changed.
/// Not thread-safe: everything happens on the executor. Source: rtnetlink(7).
class ChangeNotices {
public:
    /// Changes that follow each other this closely are told as one, so that a machine whose interfaces come and go all
    /// the time costs little.
    static constexpr std::chrono::milliseconds Settling{50};

    explicit ChangeNotices(boost::asio::any_io_executor const& executor);

    /// Listens for changes from now on. Throws std::system_error when the kernel does not allow it.
    void Open();

    /// A handler that waits is let go without a call, maybe later on the executor.
    void Close() noexcept;

    /// Calls `handler` once, on the executor, when something has changed since Open or since the last call. It must
    /// keep this object alive.
    void Wait(std::function<void()> handler);

private:
    void Settle(std::function<void()> handler);
    void Drain() noexcept;

    boost::asio::posix::stream_descriptor netlink;
    boost::asio::steady_timer settling;
};

} // namespace zarn::network
