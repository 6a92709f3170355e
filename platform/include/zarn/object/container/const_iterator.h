#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

namespace zarn::object::container {

/// Walks over the elements that a container had when the iterator was made, and keeps them alive.
/// Changes of the container reach neither the iterator nor the elements it gives. Every iterator that has come to its
/// end equals the end, which is a default-constructed iterator: begin and end of a container may be taken at different
/// times. Thread: an iterator is used by one thread at a time; iterators of several threads do not disturb each other.
template <class T>
class ConstIterator {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = T const*;
    using reference = T const&;

    /// The end of every container.
    ConstIterator() noexcept = default;

    /// The first element of a snapshot, or the end when the snapshot is empty.
    explicit ConstIterator(std::shared_ptr<std::vector<T> const> elements) noexcept : snapshot(std::move(elements)) {
        EndWhenPassed();
    }

    reference operator*() const { return (*snapshot)[position]; }

    pointer operator->() const { return &(*snapshot)[position]; }

    ConstIterator& operator++() noexcept {
        ++position;
        EndWhenPassed();
        return *this;
    }

    ConstIterator operator++(int) noexcept {
        ConstIterator before = *this;
        ++*this;
        return before;
    }

    friend bool operator==(ConstIterator const&, ConstIterator const&) noexcept = default;

private:
    void EndWhenPassed() noexcept {
        if (snapshot && position < snapshot->size()) return;
        snapshot.reset();
        position = 0;
    }

    std::shared_ptr<std::vector<T> const> snapshot;
    std::size_t position = 0;
};

} // namespace zarn::object::container
