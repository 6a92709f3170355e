#include <zarn/asio/global_context.h>
#include <zarn/asio/io_context.h>

#include <boost/asio/io_context.hpp>

#include <algorithm>
#include <iterator>
#include <mutex>
#include <vector>

namespace zarn::asio {

namespace {

using Contexts = std::vector<std::unique_ptr<IoContext>>;

bool RunsOnThisThread(std::unique_ptr<IoContext> const& context) {
    return context->Get().get_executor().running_in_this_thread();
}

/// The context of the process, and former ones whose last handle went on their own thread, which cannot join itself.
class Registry {
public:
    constexpr Registry() = default;

    ~Registry() {
        while (DestroyRetired()) continue; // the thread of one may have retired another
        // A handler has ended the process: its context is in use for ever.
        for (auto& own : retired) static_cast<void>(own.release());
    }

    Registry(Registry const&) = delete;
    Registry& operator=(Registry const&) = delete;

    std::shared_ptr<IoContext> Share() {
        std::unique_lock lock(mutex);
        if (auto shared = current.lock()) return shared;
        lock.unlock();
        DestroyRetired();
        lock.lock();
        auto shared = current.lock();
        if (!shared) {
            shared = std::shared_ptr<IoContext>(new IoContext(1), [this](IoContext* last) { End(last); });
            current = shared;
        }
        return shared;
    }

private:
    /// The last handle has gone.
    void End(IoContext* last) noexcept {
        std::unique_ptr<IoContext> context(last);
        if (!RunsOnThisThread(context)) return;
        context->Stop();
        std::scoped_lock const lock(mutex);
        retired.push_back(std::move(context));
    }

    /// Waits for the threads of retired contexts other than this thread. Returns whether there were any.
    bool DestroyRetired() {
        Contexts others; // destroyed without the lock, since a handler may be making a handle
        std::scoped_lock const lock(mutex);
        auto const first = std::ranges::partition(retired, RunsOnThisThread).begin();
        others.assign(std::move_iterator(first), std::move_iterator(retired.end()));
        retired.erase(first, retired.end());
        return !others.empty();
    }

    std::mutex mutex; ///< guards the members below
    std::weak_ptr<IoContext> current;
    Contexts retired;
};

/// Initialised before any code runs, and destroyed after the static objects of all libraries that use this one, so
/// that they may hold handles.
constinit Registry TheRegistry;

} // namespace

GlobalContext::GlobalContext() : context(TheRegistry.Share()) {}

GlobalContext::GlobalContext(GlobalContext const& other) noexcept = default;
GlobalContext& GlobalContext::operator=(GlobalContext const& other) noexcept = default;
GlobalContext::~GlobalContext() = default;

boost::asio::io_context& GlobalContext::Get() const noexcept { return context->Get(); }

} // namespace zarn::asio
