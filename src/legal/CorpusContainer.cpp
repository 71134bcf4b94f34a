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

std::optional<BigText> inflate(std::string_view container) {
    Length length = 0;
    if (container.size() <= sizeof(length)) return std::nullopt;
    std::memcpy(&length, container.data(), sizeof(length));
    // A negative one is far too great.
    if (!isAllowed(static_cast<std::uint64_t>(length))) return std::nullopt;
    return RawDeflate::inflateBig(container.substr(sizeof(length)), static_cast<std::size_t>(length));
}

std::optional<std::string> deflate(std::string_view document) {
    if (!isAllowed(document.size())) return std::nullopt;
    const auto length = static_cast<Length>(document.size());
    std::string container(sizeof(length), '\0');
    std::memcpy(container.data(), &length, sizeof(length));
    return container += RawDeflate::deflate(document);
}

} // namespace querlin::CorpusContainer
