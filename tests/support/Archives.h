#pragma once

#include "legal/RawDeflate.h"

#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// A file in an archive made for a test.
struct ArchivedFile {
    std::string name;
    std::string content;
    std::uint16_t method = 8;
    std::string localExtra = {};
    /// What the central entry says, where it lies.
    std::optional<std::size_t> claimedLength = {};
    std::optional<std::size_t> claimedPacked = {};
};

inline std::string littleEndian(std::size_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
}

/// A ZIP archive whose sizes are only in the central directory, as with a data descriptor.
inline std::string archiveOf(const std::vector<ArchivedFile>& entries, const std::string& comment = "") {
    std::string files, directory;
    for (const auto& entry : entries) {
        const auto packed = entry.method == 8 ? RawDeflate::deflate(entry.content) : entry.content;
        const auto offset = files.size();
        files += "PK\x03\x04" + std::string(22, '\0') + littleEndian(entry.name.size(), 2) + littleEndian(entry.localExtra.size(), 2) +
                 entry.name + entry.localExtra + packed;
        directory += "PK\x01\x02" + std::string(6, '\0') + littleEndian(entry.method, 2) + std::string(4, '\0') +
                     littleEndian(RawDeflate::crc32(entry.content), 4) + littleEndian(entry.claimedPacked.value_or(packed.size()), 4) +
                     littleEndian(entry.claimedLength.value_or(entry.content.size()), 4) + littleEndian(entry.name.size(), 2) +
                     std::string(12, '\0') + littleEndian(offset, 4) + entry.name;
    }
    return files + directory + "PK\x05\x06" + std::string(4, '\0') + littleEndian(entries.size(), 2) + littleEndian(entries.size(), 2) +
           littleEndian(directory.size(), 4) + littleEndian(files.size(), 4) + littleEndian(comment.size(), 2) + comment;
}

} // namespace querlin
