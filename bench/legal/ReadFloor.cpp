#include "ReadFloor.h"

#include <array>
#include <cstddef>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace querlin::bench {

namespace {

unsigned char orOfPlainly(std::string_view bytes) {
    unsigned char all = 0;
    for (const char byte : bytes) all |= static_cast<unsigned char>(byte);
    return all;
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] unsigned char orOfWithAvx2(std::string_view bytes) {
    constexpr std::size_t width = 32;
    const auto at = [bytes](std::size_t offset) __attribute__((target("avx2"))) {
        return _mm256_loadu_si256(
            reinterpret_cast<const __m256i*>(bytes.data() + offset)); // NOLINT: as it is loaded
    };
    // Four registers, so that none waits for another.
    auto first = _mm256_setzero_si256();
    auto second = first;
    auto third = first;
    auto fourth = first;
    std::size_t from = 0;
    for (; from + 4 * width <= bytes.size(); from += 4 * width) {
        first = _mm256_or_si256(first, at(from));
        second = _mm256_or_si256(second, at(from + width));
        third = _mm256_or_si256(third, at(from + 2 * width));
        fourth = _mm256_or_si256(fourth, at(from + 3 * width));
    }
    const auto all = _mm256_or_si256(_mm256_or_si256(first, second), _mm256_or_si256(third, fourth));
    std::array<char, width> lanes{};
    std::memcpy(lanes.data(), &all, width);
    return orOfPlainly({lanes.data(), width}) | orOfPlainly(bytes.substr(from));
}
#endif

} // namespace

unsigned char orOfAll(std::string_view bytes) {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2") != 0) return orOfWithAvx2(bytes);
#endif
    return orOfPlainly(bytes);
}

} // namespace querlin::bench
