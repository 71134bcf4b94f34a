#include "foundation/BigText.h"

#include <algorithm>
#include <cstring>
#include <new>

#include <sys/mman.h>

namespace querlin {

void BigText::Unmap::operator()(char* memory) const { ::munmap(memory, length); }

BigText::Memory BigText::map(std::size_t capacity) {
    constexpr std::size_t smallPage = 4096;
    constexpr std::size_t largePage = 2U << 20U;
    const auto needed = capacity + roomBehind;
    // The remainder gets a large page of its own if it fills at least half of it.
    const auto page = needed % largePage > largePage / 2 ? largePage : smallPage;
    const auto length = (needed + page - 1) / page * page;
    // A large page is aligned to its size: map one more, then unmap what sticks out at either end.
    const auto asked = length + largePage;
    void* start = ::mmap(nullptr, asked, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (start == MAP_FAILED) throw std::bad_alloc(); // NOLINT: the system's constant
    void* aligned = start;
    auto space = asked;
    std::align(largePage, length, aligned, space);
    auto* memory = static_cast<char*>(aligned);
    if (asked > space) ::munmap(start, asked - space);
    if (space > length) ::munmap(memory + length, space - length);
    ::madvise(memory, length, MADV_HUGEPAGE); // Harmless where there are none.
    return {memory, Unmap{length}};
}

BigText::BigText(std::size_t size) : memory_(map(size)), size_(size), capacity_(size) {}

BigText::BigText(std::string_view text) : BigText(text.size()) { text.copy(data(), text.size()); }

void BigText::reserve(std::size_t capacity) {
    if (capacity <= capacity_) return;
    auto larger = map(capacity);
    if (size_ > 0) std::memcpy(larger.get(), memory_.get(), size_);
    memory_ = std::move(larger);
    capacity_ = capacity;
}

void BigText::makeReady() {
    // Unknown to older kernels; pages are then made ready at their first use.
    if (capacity_ > 0) ::madvise(memory_.get(), capacity_, MADV_POPULATE_WRITE);
}

char* BigText::extend(std::size_t bytes) {
    if (size_ + bytes > capacity_) reserve(std::max(size_ + bytes, capacity_ * 2));
    auto* place = memory_.get() + size_;
    size_ += bytes;
    return place;
}

void BigText::append(std::string_view text) { text.copy(extend(text.size()), text.size()); }

} // namespace querlin
