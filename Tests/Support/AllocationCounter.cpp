#include "Tests/Support/AllocationCounter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;

void* counted(std::size_t size) noexcept {
    ++allocations;
    return std::malloc(size == 0 ? 1 : size);
}

} // namespace

// Not inlined, or the compiler sees malloc and delete meet and warns.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* memory = counted(size))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return counted(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace kestrio {

std::size_t allocationCount() {
    return allocations;
}

} // namespace kestrio
