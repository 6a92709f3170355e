#include <zarn/asio/global_context.h>
#include <zarn/asio/io_context.h>

#include <boost/asio/io_context.hpp>

#include <functional>
#include <mutex>
#include <utility>

namespace zarn::asio {

namespace {

/// A context, and its place in a list: putting it there takes no memory.
struct Context : IoContext {
    using IoContext::IoContext;

    std::unique_ptr<Context> next;
};

bool RunsOnThisThread(IoContext const& context) { return context.Get().get_executor().running_in_this_thread(); }

/// The context of the process, and former ones whose last handle went on their own thread, which cannot join itself.
class Registry {
public:
    constexpr Registry() = default;

    ~Registry() {
        while (TakeRetired(std::not_fn(RunsOnThisThread))) continue; // the thread of one may have retired another
        static_cast<void>(retired.release()); // a handler ends the process: its context stays in use, so it is leaked
    }

    Registry(Registry const&) = delete;
    Registry& operator=(Registry const&) = delete;

    std::shared_ptr<IoContext> Share() {
        auto const ended = TakeRetired([](IoContext const& each) { return each.HasEnded(); });
        std::scoped_lock const lock(mutex); // `ended` outlives it, since handlers that it destroys may make handles
        auto shared = current.lock();
        if (!shared) {
            shared = std::shared_ptr<IoContext>(new Context(1), [this](Context* last) { End(last); });
            current = shared;
        }
        return shared;
    }

private:
    /// Called when the last handle is released.
    void End(Context* last) noexcept {
        std::unique_ptr<Context> context(last);
        if (!RunsOnThisThread(*context)) return;
        context->Stop();
        std::scoped_lock const lock(mutex);
        context->next = std::move(retired);
        retired = std::move(context);
    }

    /// Removes the retired contexts for which `isWanted` is true. To be destroyed without the lock.
    template <class IsWanted>
    std::unique_ptr<Context> TakeRetired(IsWanted isWanted) {
        std::unique_ptr<Context> taken;
        std::scoped_lock const lock(mutex);
        for (auto* place = &retired; *place;) {
            if (!isWanted(**place)) {
                place = &(*place)->next;
                continue;
            }
            auto found = std::exchange(*place, std::move((*place)->next));
            found->next = std::exchange(taken, nullptr);
            taken = std::move(found);
        }
        return taken;
    }

    std::mutex mutex; ///< guards the members below
    std::weak_ptr<IoContext> current;
    std::unique_ptr<Context> retired;
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
