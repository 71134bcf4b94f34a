#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace querlin::bench {

/// A raw DEFLATE stream that yields so many bytes, unpacked by zlib.
std::string inflatedByZlib(std::string_view stream, std::size_t lengthInBytes);

} // namespace querlin::bench
