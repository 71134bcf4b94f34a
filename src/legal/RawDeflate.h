#pragma once

#include "foundation/BigText.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Raw DEFLATE streams (RFC 1951), without the wrapper of zlib or gzip, and the check sum of archives. Any
/// thread.
namespace querlin::RawDeflate {

/// Whether a stream can have such a length at all, by what the format packs into a byte at best.
bool isPossible(std::size_t lengthInBytes, std::string_view stream);

/// Unpacks a stream that must yield exactly so many bytes; nothing for a damaged stream, and for one that
/// yields fewer or more. Memory for a length that no such stream can have is never asked for.
std::optional<std::string> inflate(std::string_view stream, std::size_t lengthInBytes);
/// The same into memory of megabytes.
std::optional<BigText> inflateBig(std::string_view stream, std::size_t lengthInBytes);

std::string deflate(std::string_view bytes);

/// CRC-32 as ZIP and gzip have it.
std::uint32_t crc32(std::string_view bytes);

} // namespace querlin::RawDeflate
