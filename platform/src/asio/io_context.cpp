#include <zarn/asio/io_context.h>
#include <zarn/logging/logger.h>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <atomic>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace zarn::asio {

struct IoContext::Impl {
    ~Impl() { Stop(); }

    void Start(unsigned count) {
        threads.reserve(count);
        running = count;
        for (unsigned i = 0; i < count; ++i) threads.emplace_back([this] { Run(); });
    }

    void Run() noexcept {
        while (!ioContext.stopped()) {
            try {
                ioContext.run();
            } catch (std::exception const& error) {
                Report(error.what());
            } catch (...) {
                Report("an exception of unknown type");
            }
        }
        --running;
    }

    static void Report(char const* what) noexcept {
        try {
            logging::Logger("zarn.asio.IoContext").Log(logging::Level::Error, "A handler threw: %0%", what);
        } catch (...) {
            return; // no memory for the line: the thread matters more
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
    std::atomic<unsigned> running = 0; ///< threads that have not ended
    std::mutex mutex;                  ///< guards the threads once they run
    std::vector<std::thread> threads;
};

IoContext::IoContext(unsigned threads) : impl(std::make_unique<Impl>()) {
    if (threads == 0) throw std::invalid_argument("An I/O context cannot run on 0 threads");
    impl->Start(threads);
}

IoContext::~IoContext() = default;

boost::asio::io_context& IoContext::Get() const noexcept { return impl->ioContext; }

bool IoContext::HasEnded() const noexcept { return impl->running == 0; }

void IoContext::Stop() noexcept { impl->Stop(); }

} // namespace zarn::asio
