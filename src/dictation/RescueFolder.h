#pragma once

#include "foundation/Clock.h"
#include "state/RecordingFolder.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace querlin {

/// The user's folder of rescued dictations: "Diktat ⟨time⟩.txt" with the recording of the same name
/// beside it. No index: the files are the whole state. Main thread; file work is synchronous.
class RescueFolder {
public:
    /// How many rescued texts stay.
    static constexpr std::size_t keepNewest = 20;

    /// What has really been written and moved.
    struct Result {
        std::optional<std::filesystem::path> textFile;
        std::optional<std::filesystem::path> audioFile;
    };

    RescueFolder(std::filesystem::path folder, const Clock& clock) :
        folder_(std::move(folder)), clock_(clock) {}

    /// Keeps a text and its recording, and removes the oldest beyond `keepNewest`; files that this program
    /// has not named are never touched. Never fails towards the caller. What can't be moved here stays in the
    /// folder of recordings, with the text beside it, for the next start to find.
    Result keep(std::string_view text, std::optional<RecordingFile> recording);

    /// Whether there is at least one rescued text.
    bool hasEntries() const;

    const std::filesystem::path& path() const { return folder_; }

private:
    Result write(std::string_view text, std::optional<RecordingFile>& recording);
    void prune(const Result& justWritten) const;

    std::filesystem::path folder_;
    const Clock& clock_;
};

} // namespace querlin
