#pragma once

#include "foundation/BigText.h"
#include "foundation/Time.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace querlin {

/// Why a file operation failed.
struct FileError {
    std::error_code code;
    /// In German for what users meet, in the operating system's words for the rest.
    std::string description() const;
    /// Whether there simply is no such file.
    bool isMissing() const {
        return code == std::errc::no_such_file_or_directory || code == std::errc::not_a_directory;
    }
};

template<class Value = void>
using FileResult = std::expected<Value, FileError>;

/// Everything that the program writes may hold dictated text or tell of it: all files and folders
/// made here are for their owner's eyes only (0600, 0700).
namespace Files {

/// How a finished write is protected.
enum class Durability : std::uint8_t {
    Synced,  ///< survives a power cut from the moment of the return
    Unsynced ///< survives the end of the process, for what is written often
};

/// The whole content. A file of more than `limitInBytes`, and anything that is no regular file, is
/// refused (`file_too_large`, `not_supported`).
FileResult<std::string> read(const std::filesystem::path& file, std::size_t limitInBytes = 256U << 20U);

/// The same into memory of megabytes.
FileResult<BigText> readBig(const std::filesystem::path& file, std::size_t limitInBytes = 256U << 20U);

/// Puts a whole file in place at once: whoever reads `file` finds the old content or the new, never
/// a part. The folder must exist.
FileResult<> writeAtomically(const std::filesystem::path& file, std::string_view content,
                             Durability durability = Durability::Synced);

/// Makes a folder with its parents; one that is there already is no failure.
FileResult<> makeFolder(const std::filesystem::path& folder);

/// Moves a file, also to another file system. What stands at `to` is replaced.
FileResult<> move(const std::filesystem::path& from, const std::filesystem::path& to);

/// Copies a regular file's bytes; all of them or none.
FileResult<> copy(const std::filesystem::path& from, const std::filesystem::path& to);

/// Gives a regular file that nobody will change any more a second place: at once and without room by a
/// link, or by a copy where the file system has none between the two places.
FileResult<> linkOrCopy(const std::filesystem::path& from, const std::filesystem::path& to);

/// Deletes a file; one that isn't there counts as deleted. False if it is still there.
bool remove(const std::filesystem::path& file);

/// When the content was last changed; nothing if that can't be told.
std::optional<Date> modificationTime(const std::filesystem::path& file);

/// Renames a file that can't be used to a dated name beside it ("Verlauf beschädigt 2026-03-14
/// 09-30-00.json"), so that nothing overwrites it. Gives the new place.
FileResult<std::filesystem::path> setAside(const std::filesystem::path& file, Date now);

/// `folder`/`stem``extension`, or with " (2)", " (3)" behind the stem where any file of that stem
/// is there already, whatever its extension.
std::filesystem::path unusedName(const std::filesystem::path& folder, const std::string& stem,
                                 const std::string& extension);

/// A hidden name beside `file` that nobody has, for what is to be renamed to `file` when it is whole.
std::filesystem::path unfinishedName(const std::filesystem::path& file);

/// Deletes what writes that a killed process didn't finish have left in `folder` more than a minute
/// ago.
void removeUnfinishedWrites(const std::filesystem::path& folder);

} // namespace Files

} // namespace querlin
