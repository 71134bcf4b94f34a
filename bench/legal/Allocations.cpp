#include "Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations = 0; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

} // namespace

// The other forms call these. The sanitizers have their own, and then nothing is counted.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
void* operator new(std::size_t bytes) {
    // Not an atomic increment, which would cost the peers time: only one thread counts.
    allocations.store(allocations.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    if (auto* memory = std::malloc(bytes == 0 ? 1 : bytes)) return memory; // NOLINT: beneath all owners
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }              // NOLINT: as above
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); } // NOLINT: as above
#endif

namespace querlin::bench {

std::size_t allocationCount() { return allocations.load(std::memory_order_relaxed); }

} // namespace querlin::bench
