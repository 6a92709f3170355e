#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zarn::test {

/// The number of whole pages of an object that take memory.
template <class Object>
std::size_t CountResidentPages(Object const* object) {
    auto const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    auto const begin = (reinterpret_cast<std::uintptr_t>(object) + page - 1) / page;
    auto const end = (reinterpret_cast<std::uintptr_t>(object) + sizeof(Object)) / page;
    std::vector<unsigned char> states(end - begin);
    EXPECT_EQ(mincore(reinterpret_cast<void*>(begin * page), (end - begin) * page, states.data()), 0);
    std::size_t resident = 0;
    for (auto const state : states) resident += state & 1U;
    return resident;
}

} // namespace zarn::test
