#pragma once

#include <string_view>

namespace querlin::bench {

/// Reads all bytes and does next to nothing with them, as fast as this processor can: no search through all
/// of them takes less.
unsigned char orOfAll(std::string_view bytes);

} // namespace querlin::bench
