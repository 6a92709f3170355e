#include <zarn/type/binding.h>

#include <utility>

namespace zarn::type {

Binding::Binding(std::function<void()> releaseFunction) noexcept : release(std::move(releaseFunction)) {}

// A moved-from std::function may hold anything, so the other one is emptied by exchange.
Binding::Binding(Binding&& other) noexcept : release(std::exchange(other.release, nullptr)) {}

Binding& Binding::operator=(Binding&& other) noexcept {
    if (this != &other) {
        Reset();
        release = std::exchange(other.release, nullptr);
    }
    return *this;
}

Binding::~Binding() { Reset(); }

void Binding::Reset() noexcept {
    // Emptied first: the release function may destroy the owner of this binding.
    if (auto const function = std::exchange(release, nullptr)) function();
}

Binding::operator bool() const noexcept { return static_cast<bool>(release); }

} // namespace zarn::type
