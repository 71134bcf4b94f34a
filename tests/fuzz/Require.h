#pragma once

#include "foundation/Utf8.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace querlin {

/// Ends the program where something doesn't hold, so that the input is kept.
inline void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "Does not hold: %s\n", what);
    std::abort();
}

inline void requireValid(std::string_view text) { require(isValidUtf8(text), "a stage gives well-formed text"); }

} // namespace querlin
