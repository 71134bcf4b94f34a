#include "legal/RawDeflate.h"

#include "foundation/Release.h"

#include <memory>
#include <new>

#include <libdeflate.h>

namespace querlin::RawDeflate {

namespace {

/// The format packs 258 bytes into two bits at best.
constexpr std::size_t mostBytesOutOfOne = 1032;

/// The first of those that look for the best choice of matches: what they pack unpacks a fifth faster.
constexpr int compressionLevel = 10;

using Decompressor = std::unique_ptr<libdeflate_decompressor, Release<libdeflate_free_decompressor>>;
using Compressor = std::unique_ptr<libdeflate_compressor, Release<libdeflate_free_compressor>>;

bool inflateInto(std::string_view stream, char* bytes, std::size_t lengthInBytes) {
    const Decompressor decompressor(libdeflate_alloc_decompressor());
    if (!decompressor) throw std::bad_alloc();
    // Without a place for the true count the library fails unless that is the length asked for.
    return libdeflate_deflate_decompress(decompressor.get(), stream.data(), stream.size(), bytes,
                                         lengthInBytes, nullptr) == LIBDEFLATE_SUCCESS;
}

} // namespace

bool isPossible(std::size_t lengthInBytes, std::string_view stream) {
    return lengthInBytes / mostBytesOutOfOne <= stream.size();
}

std::optional<std::string> inflate(std::string_view stream, std::size_t lengthInBytes) {
    if (!isPossible(lengthInBytes, stream)) return std::nullopt;
    std::string bytes;
    bool isWhole = false;
    bytes.resize_and_overwrite(lengthInBytes, [&](char* room, std::size_t /*size*/) {
        isWhole = inflateInto(stream, room, lengthInBytes);
        return isWhole ? lengthInBytes : 0;
    });
    return isWhole ? std::optional(std::move(bytes)) : std::nullopt;
}

std::optional<BigText> inflateBig(std::string_view stream, std::size_t lengthInBytes) {
    if (!isPossible(lengthInBytes, stream)) return std::nullopt;
    BigText bytes(lengthInBytes);
    if (!inflateInto(stream, bytes.data(), lengthInBytes)) return std::nullopt;
    return bytes;
}

std::string deflate(std::string_view bytes) {
    const Compressor compressor(libdeflate_alloc_compressor(compressionLevel));
    if (!compressor) throw std::bad_alloc();
    std::string stream(libdeflate_deflate_compress_bound(compressor.get(), bytes.size()), '\0');
    stream.resize(libdeflate_deflate_compress(compressor.get(), bytes.data(), bytes.size(), stream.data(),
                                              stream.size()));
    return stream;
}

std::uint32_t crc32(std::string_view bytes) { return libdeflate_crc32(0, bytes.data(), bytes.size()); }

} // namespace querlin::RawDeflate
