#pragma once

#include <cstdint>

namespace querlin {

/// The vector registers that a loop may use.
enum class Registers : std::uint8_t { portable, avx2 };

/// The widest registers that this processor has and that there is code for.
inline Registers widestRegisters() {
#if defined(__x86_64__)
    static const bool hasAvx2 = __builtin_cpu_supports("avx2");
    if (hasAvx2) return Registers::avx2;
#endif
    return Registers::portable;
}

} // namespace querlin
