#pragma once

#include <cstddef>

namespace querlin::bench {

/// How often this program has asked `operator new` for memory.
std::size_t allocationCount();

} // namespace querlin::bench
