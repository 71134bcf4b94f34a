#pragma once

#include <string_view>

namespace querlin::bench {

/// Reads all bytes and does next to nothing with them, as fast as this processor can: a lower bound for
/// searches.
unsigned char orOfAll(std::string_view bytes);

} // namespace querlin::bench
