#include "Zlib.h"

#include <stdexcept>

#include <zlib.h>

namespace querlin::bench {

std::string inflatedByZlib(std::string_view stream, std::size_t lengthInBytes) {
    std::string bytes(lengthInBytes, '\0');
    z_stream state{};
    constexpr int rawWindow = -15;
    inflateInit2(&state, rawWindow);
    state.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(stream.data())); // NOLINT: the library's bytes
    state.avail_in = static_cast<uInt>(stream.size());
    state.next_out = reinterpret_cast<Bytef*>(bytes.data()); // NOLINT: as above
    state.avail_out = static_cast<uInt>(bytes.size());
    const auto result = inflate(&state, Z_FINISH);
    inflateEnd(&state);
    if (result != Z_STREAM_END) throw std::runtime_error("zlib");
    return bytes;
}

} // namespace querlin::bench
