#include "foundation/Uuid.h"

#include <array>
#include <random>

#include <fmt/format.h>

namespace querlin {

std::string newUuid() {
    std::random_device random; // The kernel's generator, so that no two processes draw the same.
    std::array<std::uint32_t, 4> part{};
    for (auto& value : part) value = random();
    return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:04X}{:08X}", part[0], part[1] >> 16U,
                       (part[1] & 0x0FFFU) | 0x4000U, (part[2] >> 16U & 0x3FFFU) | 0x8000U, part[2] & 0xFFFFU,
                       part[3]);
}

std::optional<std::string> canonicalUuid(std::string_view text) {
    constexpr std::string_view shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    if (text.size() != shape.size()) return std::nullopt;
    std::string canonical;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool isDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
        if (shape[i] == '-' ? c != '-' : !isDigit) return std::nullopt;
        canonical += c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return canonical;
}

} // namespace querlin
