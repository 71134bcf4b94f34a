#pragma once

#include "foundation/Processor.h"

#include <string_view>

namespace querlin {

/// Whether the whole text is well-formed UTF-8 within the ranges of nearly all German text: U+0000 to U+00FF,
/// and the punctuation and signs of U+2000 to U+20FF. A fraction of a nanosecond per byte.
bool isPlainText(std::string_view text, Registers registers = widestRegisters());

/// Writes the text in lower case, as `lowercase` does, to `lower`, which has as many bytes. False if the text
/// isn't plain; the content of `lower` is unspecified then.
bool lowercasePlainText(std::string_view text, char* lower, Registers registers = widestRegisters());

} // namespace querlin
