#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <thread>

namespace zarn::host::web {

/// An I/O context that runs on its own thread.
class IoThread {
public:
    IoThread() = default;

    ~IoThread() { Stop(); }

    IoThread(IoThread const&) = delete;
    IoThread& operator=(IoThread const&) = delete;

    boost::asio::io_context& GetContext() { return io; }

    void Stop() {
        io.stop();
        if (thread.joinable()) thread.join();
    }

private:
    boost::asio::io_context io;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work{io.get_executor()};
    std::thread thread{[this] { io.run(); }};
};

} // namespace zarn::host::web
