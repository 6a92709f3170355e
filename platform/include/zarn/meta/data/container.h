#pragma once

#include <zarn/object/container/typed_view.h>
#include <zarn/object/typed.h>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace zarn::meta::data {

/// An object that carries other objects, told apart by their types, in the order in which they were added.
/// Thread: one thread fills it; once it has been handed on it never changes, and any thread may read it.
class Container : public object::Typed<Container> {
public:
    static constexpr char const* TypeName = "zarn.meta.data.Container";

    Container() = default;
    Container(Container const&) = delete;
    Container& operator=(Container const&) = delete;

    /// Adds an object, which may be shared with other containers.
    /// Throws std::invalid_argument for a null pointer.
    void Add(std::shared_ptr<object::Object const> added) {
        if (!added) throw std::invalid_argument("Container::Add: the object is null");
        objects.push_back(std::move(added));
    }

    /// Makes an object and adds it. Returns it, to be filled further before the container is handed on; the reference
    /// holds as long as the container.
    template <class T, class... Args>
    T& Emplace(Args&&... args) {
        auto const made = std::make_shared<T>(std::forward<Args>(args)...);
        Add(made);
        return *made;
    }

    /// The objects that are a T or derived from T, to be iterated over: `for (auto const& zone :
    /// event.OfType<Zone>())`. The references hold as long as the container.
    template <class T>
    object::container::TypedView<T> OfType() const noexcept {
        return object::container::TypedView<T>(objects);
    }

    /// The first object that is a T, or null.
    template <class T>
    T const* First() const noexcept {
        auto const view = OfType<T>();
        return view.empty() ? nullptr : &*view.begin();
    }

    /// The number of objects of all types.
    std::size_t GetCount() const noexcept { return objects.size(); }

private:
    std::vector<std::shared_ptr<object::Object const>> objects;
};

} // namespace zarn::meta::data
