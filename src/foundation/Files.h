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
    /// In German for errors that users run into, in the operating system's words otherwise.
    std::string description() const;
    /// Whether there is no such file.
    bool isMissing() const {
        return code == std::errc::no_such_file_or_directory || code == std::errc::not_a_directory;
    }
};

template<class Value = void>
using FileResult = std::expected<Value, FileError>;

/// Everything that the program writes may hold dictated text or hint at it: all files and folders made here
/// are accessible to their owner only (0600, 0700).
namespace Files {

/// What a finished write survives.
enum class Durability : std::uint8_t {
    Synced,  ///< a power cut, from the moment of the return
    Unsynced ///< the end of the process; for frequent writes
};

/// The whole content. A file of more than `limitInBytes`, and anything that is no regular file, is
/// refused (`file_too_large`, `not_supported`).
FileResult<std::string> read(const std::filesystem::path& file, std::size_t limitInBytes = 256U << 20U);

/// The same for files of megabytes.
FileResult<BigText> readBig(const std::filesystem::path& file, std::size_t limitInBytes = 256U << 20U);

/// Replaces a file atomically: readers of `file` find the old content or the new, never a part. The folder
/// must exist.
FileResult<> writeAtomically(const std::filesystem::path& file, std::string_view content,
                             Durability durability = Durability::Synced);

/// Makes a folder with its parents; an existing one is no failure.
FileResult<> makeFolder(const std::filesystem::path& folder);

/// Moves a file, also to another file system. An existing file at `to` is replaced.
FileResult<> move(const std::filesystem::path& from, const std::filesystem::path& to);

/// Copies a regular file, completely or not at all.
FileResult<> copy(const std::filesystem::path& from, const std::filesystem::path& to);

/// A regular file that is held open: its content can be copied even when its name has gone.
class OpenFile {
public:
    static FileResult<OpenFile> open(const std::filesystem::path& file);
    OpenFile(OpenFile&& other) noexcept;
    OpenFile& operator=(OpenFile&&) = delete;
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile();

    /// All bytes or none.
    FileResult<> copyTo(const std::filesystem::path& to) const;

private:
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    int descriptor_;
};

/// Gives a regular file that no longer changes a second name by a hard link; fails if the file system has no
/// links between the two places. Survives a power cut only after `makeDurable`.
FileResult<> link(const std::filesystem::path& from, const std::filesystem::path& to);

/// Waits until a file's content and name would survive a power cut. A failure is ignored.
void makeDurable(const std::filesystem::path& file);

/// Deletes a file; a missing one counts as deleted. False if it still exists.
bool remove(const std::filesystem::path& file);

/// When the content was last changed; unset if unknown.
std::optional<Date> modificationTime(const std::filesystem::path& file);

/// Renames a file that can't be used to a dated name beside it ("Verlauf beschädigt 2026-03-14
/// 09-30-00.json"), so that nothing overwrites it. Returns the new path.
FileResult<std::filesystem::path> setAside(const std::filesystem::path& file, Date now);

/// `folder`/`stem``extension`, or with " (2)", " (3)" after the stem if a file of that stem exists
/// already, whatever its extension.
std::filesystem::path unusedName(const std::filesystem::path& folder, const std::string& stem,
                                 const std::string& extension);

/// An unused hidden name beside `file`, for content that is renamed to `file` when it is complete.
std::filesystem::path unfinishedName(const std::filesystem::path& file);

/// Deletes leftovers of unfinished writes in `folder` that are older than a minute.
void removeUnfinishedWrites(const std::filesystem::path& folder);

} // namespace Files

} // namespace querlin
