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

/// What reads law texts, messages of other processes and users' files, under random bytes.
namespace ReaderStage {
void archive(std::string_view bytes, unsigned options);
void law(std::string_view document, unsigned options);
void corpus(std::string_view bytes, unsigned options);
void search(std::string_view text, unsigned options);
void insertion(std::string_view text, unsigned options);
void frames(std::string_view bytes, unsigned options);
void model(std::string_view bytes, unsigned options);
} // namespace ReaderStage

} // namespace querlin
