#include "ReadFloor.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace querlin::bench {

namespace {

constexpr std::size_t lanes = 16;
using Lanes = std::array<std::uint64_t, lanes>;

} // namespace

// Four of the wide registers at a time; a processor without them takes the other version.
#if defined(__x86_64__)
__attribute__((target_clones("avx2", "default"))) // NOLINT: the compiler's
#endif
unsigned char
orOfAll(std::string_view bytes) {
    Lanes seen{};
    std::size_t at = 0;
    for (; at + sizeof(Lanes) <= bytes.size(); at += sizeof(Lanes)) {
        Lanes read;
        std::memcpy(&read, bytes.data() + at, sizeof(read));
        for (std::size_t i = 0; i < lanes; ++i) seen[i] |= read[i];
    }
    std::uint64_t all = 0;
    for (const auto lane : seen) all |= lane;
    for (; at < bytes.size(); ++at) all |= static_cast<unsigned char>(bytes[at]);
    for (int half = 32; half >= 8; half /= 2) all |= all >> half;
    return static_cast<unsigned char>(all);
}

} // namespace querlin::bench
