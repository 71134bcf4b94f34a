#pragma once

#include "foundation/Files.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// A recording that somebody is responsible for: the audio file, and beside it a small text file with
/// what has been recognised so far.
///
/// The owner ends it by `discard` or by `moveAudio`. A recording that just goes out of scope stays on
/// disk: then its process is about to end, and the next start will find it. While an owner lives, a
/// lock keeps every other process away from the files.
class RecordingFile {
public:
    RecordingFile(RecordingFile&& other) noexcept;
    RecordingFile& operator=(RecordingFile&& other) noexcept;
    RecordingFile(const RecordingFile&) = delete;
    RecordingFile& operator=(const RecordingFile&) = delete;
    ~RecordingFile();

    const std::filesystem::path& audio() const { return audio_; }

    /// What was recognised so far, as the side file has it; empty if there is none.
    std::string text() const;
    /// Replaces the side file's text. A failure is silent: the audio is there all the same.
    void keepText(std::string_view text) const;

    /// Deletes audio and text. Failures are ignored.
    void discard();
    /// Moves the audio to its new place and deletes the rest. On failure everything stays as it is,
    /// for the next start to find.
    FileResult<> moveAudio(const std::filesystem::path& to);

private:
    friend class RecordingFolder;
    RecordingFile(std::filesystem::path audio, int lock) : audio_(std::move(audio)), lock_(lock) {}
    std::filesystem::path textFile() const;
    std::filesystem::path lockFile() const;
    void closeLock();

    std::filesystem::path audio_;
    int lock_ = -1; ///< descriptor that holds the lock; -1 once this is no longer responsible
};

/// The folder of recordings under way.
///
///     dictation-⟨UUID⟩.caf    the audio
///     dictation-⟨UUID⟩.txt    what has been recognised of it so far
///     dictation-⟨UUID⟩.lock   held (flock) for as long as the owning process lives
class RecordingFolder {
public:
    explicit RecordingFolder(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// A new recording, whose audio file doesn't exist yet. The lock is there before the audio.
    FileResult<RecordingFile> begin() const;

    /// What dead processes have left, oldest first; the caller becomes their owner. Recordings of
    /// living processes are not touched, remains without audio and text are swept away.
    std::vector<RecordingFile> leftBehind() const;

private:
    std::filesystem::path folder_;
};

} // namespace querlin
