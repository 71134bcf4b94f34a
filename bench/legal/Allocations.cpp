#include "Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations = 0; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

} // namespace

// The other forms call these.
void* operator new(std::size_t bytes) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (auto* memory = std::malloc(bytes == 0 ? 1 : bytes)) return memory; // NOLINT: beneath all owners
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); } // NOLINT: as above
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); } // NOLINT: as above

namespace querlin::bench {

std::size_t allocationCount() { return allocations.load(std::memory_order_relaxed); }

} // namespace querlin::bench
