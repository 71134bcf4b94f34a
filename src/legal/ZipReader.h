#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

namespace querlin {

/// Why an archive gave no file.
struct ZipError {
    enum class Kind : std::uint8_t { notAZip, corrupt, unsupportedCompression };

    Kind kind = Kind::notAZip;
    /// Of `corrupt`: what is wrong, in German.
    std::string detail;
    /// Of `unsupportedCompression`: the method that the archive names.
    std::uint16_t method = 0;

    /// In German, for the user and the log.
    std::string description() const;

    bool operator==(const ZipError&) const = default;
};

/// Reads the small archives in which the law portal delivers a law (PKWARE APPNOTE): from memory, stored or
/// deflated. Sizes and check sums come from the central directory. ZIP64, encryption and several disks are
/// not known. Any thread.
namespace ZipReader {

/// The bytes of the first file, in the order of the central directory, whose name ends so; case doesn't
/// count. A file whose CRC-32 is another than the directory's is an error. Whatever the bytes claim, nothing
/// beyond them is read and no more memory is taken than they can unpack to.
std::expected<std::string, ZipError> firstFile(std::string_view archive, std::string_view suffix);

} // namespace ZipReader

} // namespace querlin
