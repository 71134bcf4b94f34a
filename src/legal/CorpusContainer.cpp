#include "legal/CorpusContainer.h"

#include "legal/RawDeflate.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace querlin::CorpusContainer {

namespace {

using Length = std::int64_t;
static_assert(std::endian::native == std::endian::little, "the length is written as it lies in memory");

bool isAllowed(std::uint64_t length) { return length > 0 && length <= longestDocumentInBytes; }

} // namespace

std::optional<std::size_t> documentLength(std::string_view container) {
    Length length = 0;
    if (container.size() <= sizeof(length)) return std::nullopt;
    std::memcpy(&length, container.data(), sizeof(length));
    const auto bytes = static_cast<std::size_t>(length); // A negative one is far too great.
    return isAllowed(bytes) && RawDeflate::isPossible(bytes, container.substr(sizeof(length)))
               ? std::optional(bytes)
               : std::nullopt;
}

std::optional<BigText> inflate(std::string_view container) {
    const auto length = documentLength(container);
    if (!length) return std::nullopt;
    return RawDeflate::inflateBig(container.substr(sizeof(Length)), *length);
}

std::optional<std::string> deflate(std::string_view document) {
    if (!isAllowed(document.size())) return std::nullopt;
    const auto length = static_cast<Length>(document.size());
    std::string container(sizeof(length), '\0');
    std::memcpy(container.data(), &length, sizeof(length));
    return container += RawDeflate::deflate(document);
}

} // namespace querlin::CorpusContainer
