#pragma once

#include <functional>

namespace zarn::type {

/// Keeps something bound, such as a callback to a source of events, for as long as it lives.
/// Move-only. The release function runs once: when the binding is destroyed, reset or assigned to.
/// Thread: one thread at a time; what the release function promises (such as that no callback runs any more) is
/// documented where the binding is made.
class Binding {
public:
    /// A binding of nothing.
    Binding() noexcept = default;

    /// release  ends what is bound; must not throw. An empty function makes a binding of nothing.
    explicit Binding(std::function<void()> release) noexcept;

    /// Takes over what the other one holds.
    Binding(Binding&& other) noexcept;
    /// Releases what this one held, then takes over the other's; assigning a binding to itself does nothing.
    Binding& operator=(Binding&& other) noexcept;
    Binding(Binding const&) = delete;
    Binding& operator=(Binding const&) = delete;
    ~Binding();

    /// Releases now; afterwards the binding holds nothing. Harmless when it holds nothing already.
    void Reset() noexcept;

    /// Whether something is bound.
    explicit operator bool() const noexcept;

private:
    std::function<void()> release;
};

} // namespace zarn::type
