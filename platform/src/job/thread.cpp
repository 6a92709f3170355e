#include "job/thread.h"

#include <memory>
#include <system_error>
#include <utility>

namespace zarn::job {

namespace {

void Check(int error, char const* what) {
    if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

/// The attributes of one thread to be started.
class Attributes {
public:
    explicit Attributes(std::size_t stackSize) {
        Check(pthread_attr_init(&value), "Failed to prepare a thread");
        int const error = pthread_attr_setstacksize(&value, stackSize);
        if (error != 0) pthread_attr_destroy(&value);
        Check(error, "Failed to set the stack size of a thread");
    }

    ~Attributes() { pthread_attr_destroy(&value); }

    Attributes(Attributes const&) = delete;
    Attributes& operator=(Attributes const&) = delete;

    pthread_attr_t const* Get() const { return &value; }

private:
    pthread_attr_t value{};
};

void* Run(void* argument) {
    std::unique_ptr<std::function<void()>> const function(static_cast<std::function<void()>*>(argument));
    pthread_setname_np(pthread_self(), "zarn.job"); // for debuggers and top; a failure changes nothing
    (*function)();
    return nullptr;
}

} // namespace

void StartThread(std::size_t stackSize, std::function<void()> function) {
    Attributes const attributes(stackSize);
    auto argument = std::make_unique<std::function<void()>>(std::move(function));
    pthread_t unused{};
    Check(pthread_create(&unused, attributes.Get(), &Run, argument.get()), "Failed to start a thread");
    static_cast<void>(argument.release()); // the thread has it
}

ThreadHandle GetCurrentThread() noexcept { return pthread_self(); }

void JoinThread(ThreadHandle thread) noexcept { pthread_join(thread, nullptr); }

} // namespace zarn::job
