#include "run.h"

#include <zarn/asio/io_context.h>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace zarn::asio {

struct IoContext::Impl {
    ~Impl() { Stop(); }

    void Start(unsigned count) {
        threads.reserve(count);
        for (unsigned i = 0; i < count; ++i) {
            threads.emplace_back([this] { RunUntilStopped(ioContext, "zarn.asio.IoContext"); });
        }
    }

    void Stop() noexcept {
        ioContext.stop();
        if (ioContext.get_executor().running_in_this_thread()) return;
        std::scoped_lock const lock(mutex);
        for (auto& thread : threads) {
            thread.join();
        }
        threads.clear();
    }

    boost::asio::io_context ioContext;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work =
        boost::asio::make_work_guard(ioContext);
    std::mutex mutex; ///< guards the threads once they run
    std::vector<std::thread> threads;
};

IoContext::IoContext(unsigned threads) : impl(std::make_unique<Impl>()) {
    if (threads == 0) throw std::invalid_argument("An I/O context cannot run on 0 threads");
    impl->Start(threads);
}

IoContext::~IoContext() = default;

boost::asio::io_context& IoContext::Get() noexcept { return impl->ioContext; }

void IoContext::Stop() noexcept { impl->Stop(); }

} // namespace zarn::asio
