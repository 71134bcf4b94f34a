#include "foundation/Utf8.h"

#include "foundation/PlainText.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include <unicode/utf8.h>

namespace querlin {

namespace {

/// The scalar at `at`, which is advanced past it; negative for ill-formed bytes.
std::int32_t nextScalar(std::string_view text, std::size_t& at) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data()); // NOLINT: ICU's idea of UTF-8
    std::int32_t scalar = 0;
    U8_NEXT(bytes, at, text.size(), scalar); // NOLINT(bugprone-inc-dec-in-conditions): ICU's macro
    return scalar;
}

/// The position of the first ill-formed byte, or the length.
std::size_t validPrefix(std::string_view text) {
    std::size_t at = 0;
    while (true) {
        at += latinPrefix(text.substr(at));
        if (at == text.size()) return at;
        const auto start = at;
        if (nextScalar(text, at) < 0) return start;
    }
}

} // namespace

bool isLatin1(std::string_view text) {
    if (text.empty()) return true;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data()); // NOLINT: bytes, not characters
    const auto isLead = [](std::uint8_t byte) { return (byte & 0xFE) == 0xC2; };
    if ((bytes[0] >= 0x80 && !isLead(bytes[0])) || isLead(bytes[text.size() - 1])) return false;
    std::uint8_t other = 0;
    // On bytes only and without branches, so that the compiler can vectorise it.
    for (std::size_t i = 1; i < text.size(); ++i) {
        const std::uint8_t isAwaited = (bytes[i - 1] & 0xFE) == 0xC2 ? 1 : 0;
        const std::uint8_t continues = (bytes[i] & 0xC0) == 0x80 ? 1 : 0;
        const std::uint8_t isBeyond = bytes[i] >= 0xC4 ? 1 : 0;
        const std::uint8_t isOverlong = (bytes[i] & 0xFE) == 0xC0 ? 1 : 0;
        other = static_cast<std::uint8_t>(other | isBeyond | isOverlong | (continues ^ isAwaited));
    }
    return other == 0;
}

std::size_t asciiPrefix(std::string_view text) {
    static_assert(std::endian::native == std::endian::little, "a block's first byte is its lowest");
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t at = 0;
    for (; at + sizeof(std::uint64_t) <= text.size(); at += sizeof(std::uint64_t)) {
        std::uint64_t block = 0;
        std::memcpy(&block, text.data() + at, sizeof(block));
        if ((block & highBits) != 0)
            return at + (static_cast<std::size_t>(std::countr_zero(block & highBits)) / 8);
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
    return at;
}

std::size_t latinPrefix(std::string_view text) {
    const auto byteAt = [text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    for (std::size_t at = 0;;) {
        at += asciiPrefix(text.substr(at));
        const auto lead = byteAt(at);
        const auto second = byteAt(at + 1);
        if (lead >= 0xC2 && lead < 0xCC && (second & 0xC0U) == 0x80) {
            at += 2;
        } else if (lead == 0xE2 && ((second == 0x80 && byteAt(at + 2) >= 0x90 && byteAt(at + 2) <= 0xA7) ||
                                    (second == 0x82 && byteAt(at + 2) == 0xAC))) {
            at += 3;
        } else {
            return at;
        }
    }
}

DecodedScalar decodeScalarBeyondAscii(std::string_view text) {
    std::size_t at = 0;
    const auto scalar = nextScalar(text, at);
    return {scalar < 0 ? replacementScalar : static_cast<char32_t>(scalar), at};
}

void appendScalar(std::string& text, char32_t scalar) {
    std::array<std::uint8_t, U8_MAX_LENGTH> bytes{};
    std::size_t length = 0;
    UBool isError = 0;
    U8_APPEND(bytes, length, bytes.size(), scalar, isError);
    if (isError != 0) {
        appendScalar(text, replacementScalar);
    } else {
        text.append(bytes.begin(), bytes.begin() + length);
    }
}

bool isValidUtf8(std::string_view text) { return isPlainText(text) || validPrefix(text) == text.size(); }

std::string validUtf8(std::string_view text) {
    auto valid = isPlainText(text) ? text.size() : validPrefix(text);
    std::string repaired(text.substr(0, valid));
    while (valid < text.size()) {
        text.remove_prefix(valid);
        const auto bad = decodeScalar(text);
        appendScalar(repaired, bad.scalar);
        text.remove_prefix(bad.lengthInBytes);
        valid = validPrefix(text);
        repaired += text.substr(0, valid);
    }
    return repaired;
}

} // namespace querlin
