#pragma once

#include "foundation/BigText.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The file that holds the corpus: the document's length as eight bytes, little-endian and signed, and after
/// it the document as one raw DEFLATE stream (RFC 1951). Any thread.
namespace querlin::CorpusContainer {

inline constexpr std::size_t longestDocumentInBytes = 0x1FFF'FFFF;

/// The length that the container claims for its document; nothing if it can't be.
std::optional<std::size_t> documentLength(std::string_view container);

/// The document; nothing for what is no such file. A length that the stream can't have takes no memory.
std::optional<BigText> inflate(std::string_view container);

/// Nothing for a document that `inflate` wouldn't take.
std::optional<std::string> deflate(std::string_view document);

} // namespace querlin::CorpusContainer
