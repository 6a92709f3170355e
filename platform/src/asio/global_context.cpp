#include "run.h"

#include <zarn/asio/global_context.h>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>

namespace zarn::asio {

namespace {

/// The thread of one context. It outlives its context when the last handle goes on the thread itself.
struct Worker {
    std::thread thread;
    /// The thread is about to end; joining it takes no time.
    std::atomic<bool> finished = false;
    /// The next one in the list of those that wait to be joined.
    std::unique_ptr<Worker> next;
};

void Join(Worker& worker) {
    // Only when a handler itself ends the process; nobody could wait for its end.
    if (worker.thread.get_id() == std::this_thread::get_id()) {
        worker.thread.detach();
    } else {
        worker.thread.join();
    }
}

} // namespace

class GlobalContext::Context {
public:
    Context() : work(boost::asio::make_work_guard(ioContext)), worker(std::make_unique<Worker>()) {
        worker->thread = std::thread([this, own = worker.get()] {
            Run();
            own->finished = true;
        });
    }

    /// The context of the process, made when there is none.
    static std::shared_ptr<Context> Share();

    boost::asio::io_context& Get() noexcept { return ioContext; }

private:
    /// What is left at the end of the process is waited for.
    struct Registry {
        constexpr Registry() = default;
        ~Registry();
        Registry(Registry const&) = delete;
        Registry& operator=(Registry const&) = delete;

        std::mutex mutex; ///< guards the members below
        std::weak_ptr<Context> current;
        std::unique_ptr<Worker> retired;
    };

    /// Initialised before any code runs, and destroyed after the static objects of all libraries that use this one, so
    /// that they may hold handles.
    static Registry TheRegistry;

    /// Joins the retired threads that have finished.
    static void Reap(Registry& registry);

    /// The last handle has gone.
    static void End(Context* context) noexcept;

    void Run();

    boost::asio::io_context ioContext{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work;
    std::unique_ptr<Worker> worker;
    /// The thread destroys the context. Used on the thread only.
    bool orphaned = false;
};

constinit GlobalContext::Context::Registry GlobalContext::Context::TheRegistry;

GlobalContext::Context::Registry::~Registry() {
    std::unique_lock lock(mutex);
    while (retired) {
        auto const last = std::move(retired);
        retired = std::move(last->next);
        lock.unlock(); // the thread may be making a handle
        Join(*last);
        lock.lock();
    }
}

std::shared_ptr<GlobalContext::Context> GlobalContext::Context::Share() {
    std::scoped_lock const lock(TheRegistry.mutex);
    auto context = TheRegistry.current.lock();
    if (!context) {
        Reap(TheRegistry);
        context = std::shared_ptr<Context>(new Context, &End);
        TheRegistry.current = context;
    }
    return context;
}

void GlobalContext::Context::Reap(Registry& registry) {
    for (auto* place = &registry.retired; *place;) {
        if ((*place)->finished) {
            Join(**place);
            *place = std::move((*place)->next);
        } else {
            place = &(*place)->next;
        }
    }
}

void GlobalContext::Context::End(Context* context) noexcept {
    context->ioContext.stop();
    if (context->ioContext.get_executor().running_in_this_thread()) {
        context->orphaned = true;
        std::scoped_lock const lock(TheRegistry.mutex);
        context->worker->next = std::move(TheRegistry.retired);
        TheRegistry.retired = std::move(context->worker);
        return;
    }
    context->worker->thread.join();
    delete context;
}

void GlobalContext::Context::Run() {
    RunUntilStopped(ioContext, "zarn.asio.GlobalContext");
    if (orphaned) delete this;
}

GlobalContext::GlobalContext() : context(Context::Share()) {}

GlobalContext::GlobalContext(GlobalContext const& other) noexcept = default;
GlobalContext& GlobalContext::operator=(GlobalContext const& other) noexcept = default;
GlobalContext::~GlobalContext() = default;

boost::asio::io_context& GlobalContext::Get() const noexcept { return context->Get(); }

} // namespace zarn::asio
