// Counts what is allocated. A program that has AllocationCounter.cpp among its sources has its operator new replaced by
// one that counts, on each thread for itself.
#pragma once

#include <cstddef>

namespace kestrio {

/// By this thread so far.
std::size_t allocationCount();

template <class Work>
std::size_t allocationsOf(const Work& work) {
    const auto before = allocationCount();
    work();
    return allocationCount() - before;
}

} // namespace kestrio
