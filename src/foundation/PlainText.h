#pragma once

#include "foundation/Processor.h"

#include <string_view>

namespace querlin {

/// Whether the whole text is well-formed UTF-8 and of what nearly all German text is made of: U+0000 to
/// U+00FF, and the punctuation and signs of U+2000 to U+20FF. Takes a fraction of a nanosecond for a byte.
bool isPlainText(std::string_view text, Registers registers = widestRegisters());

/// Writes the text in small letters, as `lowercase` gives it, as many bytes as it has. False, and nothing of
/// use, for what isn't plain.
bool lowercasePlainText(std::string_view text, char* lower, Registers registers = widestRegisters());

} // namespace querlin
