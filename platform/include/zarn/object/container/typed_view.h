#pragma once

#include <zarn/object/object.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

namespace zarn::object::container {

/// The objects of a list that are a T, in the order of the list. Holds as long as the list, unchanged.
template <class T>
class TypedView {
public:
    /// The list that is viewed.
    using Elements = std::vector<std::shared_ptr<Object const>>;

    /// Walks over the objects that are a T.
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = T const*;
        using reference = T const&;

        /// Equals only others that were made this way.
        Iterator() noexcept = default;

        /// The first T from `first` on.
        Iterator(Elements::const_iterator first, Elements::const_iterator last) noexcept : position(first), end(last) {
            SkipOthers();
        }

        reference operator*() const noexcept { return static_cast<T const&>(**position); }

        pointer operator->() const noexcept { return &**this; }

        Iterator& operator++() noexcept {
            ++position;
            SkipOthers();
            return *this;
        }

        Iterator operator++(int) noexcept {
            Iterator before = *this;
            ++*this;
            return before;
        }

        friend bool operator==(Iterator const& left, Iterator const& right) noexcept {
            return left.position == right.position;
        }

    private:
        void SkipOthers() noexcept {
            while (position != end && !(*position)->template Is<T>()) ++position;
        }

        Elements::const_iterator position;
        Elements::const_iterator end;
    };

    /// list  none of its pointers is null
    explicit TypedView(Elements const& list) noexcept : elements(&list) {}

    Iterator begin() const noexcept { return {elements->begin(), elements->end()}; }

    Iterator end() const noexcept { return {elements->end(), elements->end()}; }

    /// Whether no object is a T.
    bool empty() const noexcept { return begin() == end(); }

private:
    Elements const* elements;
};

} // namespace zarn::object::container
