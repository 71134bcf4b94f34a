#include "legal/ZipReader.h"

#include "foundation/TextCase.h"
#include "legal/RawDeflate.h"

#include <algorithm>
#include <optional>

#include <fmt/format.h>

namespace querlin {

std::string ZipError::description() const {
    switch (kind) {
    case Kind::notAZip:
        return "Die Antwort ist kein ZIP-Archiv.";
    case Kind::corrupt:
        return fmt::format("Archiv beschädigt: {}", detail);
    case Kind::unsupportedCompression:
        return fmt::format("Unbekanntes Kompressionsverfahren im Archiv ({}).", method);
    }
    return {};
}

namespace ZipReader {

namespace {

using Result = std::expected<std::string, ZipError>;

/// The end of the central directory; a comment of up to 65,536 bytes may follow it.
namespace EndRecord {
constexpr std::string_view signature = "PK\x05\x06";
constexpr std::size_t length = 22;
constexpr std::size_t furthestFromEnd = 65'558;
constexpr std::size_t entryCount = 10;
constexpr std::size_t directoryOffset = 16;
} // namespace EndRecord

namespace CentralEntry {
constexpr std::string_view signature = "PK\x01\x02";
constexpr std::size_t length = 46;
constexpr std::size_t method = 10;
constexpr std::size_t checkSum = 16;
constexpr std::size_t compressedSize = 20;
constexpr std::size_t uncompressedSize = 24;
constexpr std::size_t nameLength = 28;
constexpr std::size_t extraLength = 30;
constexpr std::size_t commentLength = 32;
constexpr std::size_t localOffset = 42;
} // namespace CentralEntry

namespace LocalHeader {
constexpr std::string_view signature = "PK\x03\x04";
constexpr std::size_t length = 30;
constexpr std::size_t nameLength = 26;
constexpr std::size_t extraLength = 28;
} // namespace LocalHeader

constexpr std::uint16_t stored = 0;
constexpr std::uint16_t deflated = 8;

std::unexpected<ZipError> corrupt(std::string detail) {
    return std::unexpected(ZipError{ZipError::Kind::corrupt, std::move(detail), 0});
}

/// A little-endian number of so many bytes; the caller has seen that they are there.
std::size_t number(std::string_view bytes, std::size_t offset, std::size_t length) {
    std::size_t value = 0;
    for (auto i = length; i > 0; --i) value = value << 8U | static_cast<unsigned char>(bytes[offset + i - 1]);
    return value;
}
std::size_t number16(std::string_view bytes, std::size_t offset) { return number(bytes, offset, 2); }
std::size_t number32(std::string_view bytes, std::size_t offset) { return number(bytes, offset, 4); }

/// The record of a known length that begins at an offset with its signature; nothing if it isn't there.
std::optional<std::string_view> record(std::string_view archive, std::size_t offset,
                                       std::string_view signature, std::size_t length) {
    if (offset > archive.size() || archive.size() - offset < length) return std::nullopt;
    const auto bytes = archive.substr(offset);
    return bytes.starts_with(signature) ? std::optional(bytes) : std::nullopt;
}

/// The last end record; the comment's own length is not compared.
std::optional<std::string_view> endRecord(std::string_view archive) {
    const auto furthest =
        archive.substr(archive.size() - std::min(archive.size(), EndRecord::furthestFromEnd));
    if (furthest.size() < EndRecord::length) return std::nullopt;
    const auto offset = furthest.rfind(EndRecord::signature, furthest.size() - EndRecord::length);
    return offset == std::string_view::npos ? std::nullopt : std::optional(furthest.substr(offset));
}

/// The bytes of an entry, whatever its check sum.
Result unpack(std::string_view archive, std::string_view entry) {
    const auto localOffset = number32(entry, CentralEntry::localOffset);
    const auto local = record(archive, localOffset, LocalHeader::signature, LocalHeader::length);
    if (!local) return corrupt("Lokaler Dateikopf nicht gefunden");
    // Name and extra field may be longer here than in the central entry.
    const auto start = LocalHeader::length + number16(*local, LocalHeader::nameLength) +
                       number16(*local, LocalHeader::extraLength);
    const auto compressedSize = number32(entry, CentralEntry::compressedSize);
    if (start > local->size() || local->size() - start < compressedSize)
        return corrupt("Datei reicht über das Archivende hinaus");
    const auto bytes = local->substr(start, compressedSize);

    const auto method = static_cast<std::uint16_t>(number16(entry, CentralEntry::method));
    if (method == stored) return std::string(bytes);
    if (method != deflated)
        return std::unexpected(ZipError{ZipError::Kind::unsupportedCompression, {}, method});
    const auto uncompressedSize = number32(entry, CentralEntry::uncompressedSize);
    if (uncompressedSize == 0) return std::string();
    auto unpacked = RawDeflate::inflate(bytes, uncompressedSize);
    if (!unpacked) return corrupt("Entpacken fehlgeschlagen");
    return std::move(*unpacked);
}

Result extract(std::string_view archive, std::string_view entry) {
    auto file = unpack(archive, entry);
    if (file && RawDeflate::crc32(*file) != number32(entry, CentralEntry::checkSum))
        return corrupt("Prüfsumme stimmt nicht");
    return file;
}

} // namespace

Result firstFile(std::string_view archive, std::string_view suffix) {
    const auto end = endRecord(archive);
    if (!end) return std::unexpected(ZipError{ZipError::Kind::notAZip, {}, 0});
    const auto wanted = lowercase(suffix);
    auto offset = number32(*end, EndRecord::directoryOffset);
    for (auto left = number16(*end, EndRecord::entryCount); left > 0; --left) {
        const auto entry = record(archive, offset, CentralEntry::signature, CentralEntry::length);
        if (!entry) return corrupt("Zentraleintrag nicht gefunden");
        const auto nameLength = number16(*entry, CentralEntry::nameLength);
        if (entry->size() - CentralEntry::length < nameLength)
            return corrupt("Dateiname reicht über das Archivende hinaus");
        const auto name = entry->substr(CentralEntry::length, nameLength);
        if (lowercase(name).ends_with(wanted)) return extract(archive, *entry);
        offset += CentralEntry::length + nameLength + number16(*entry, CentralEntry::extraLength) +
                  number16(*entry, CentralEntry::commentLength);
    }
    return corrupt(fmt::format("Keine Datei mit der Endung {} im Archiv", suffix));
}

} // namespace ZipReader

} // namespace querlin
