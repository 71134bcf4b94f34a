#include "dictation/RescueFolder.h"

#include "foundation/Files.h"
#include "foundation/GermanFormat.h"
#include "foundation/Pattern.h"
#include "foundation/Utf8.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>

namespace querlin {

namespace fs = std::filesystem;

namespace {

/// Of all recordings.
constexpr const char* audioExtension = ".caf";

/// The files of the folder; empty if it can't be read.
std::vector<fs::path> listing(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        files.push_back(entry->path());
    }
    return files;
}

/// Whether a file is a rescued text: "Diktat 2026-03-14 09-30-00.txt", or with " (2)" and so on after the
/// time. Whatever else lies in the folder is the user's.
bool isRescuedText(const fs::path& file) {
    static const Pattern name(R"(^Diktat \d{4}-\d\d-\d\d \d\d-\d\d-\d\d(?: \(\d+\))?\.txt$)",
                              LetterCase::counts);
    return name.isFoundIn(file.filename().string());
}

fs::path withExtension(fs::path file, const char* extension) { return file.replace_extension(extension); }

} // namespace

RescueFolder::Result RescueFolder::keep(std::string_view text, std::optional<RecordingFile> recording) {
    const auto result = write(text, recording);
    prune(result);
    return result;
}

RescueFolder::Result RescueFolder::write(std::string_view text, std::optional<RecordingFile>& recording) {
    // Should anything below fail, the next start finds the text with the recording.
    if (recording) recording->keepText(text);

    Result result;
    if (const auto made = Files::makeFolder(folder_); !made) {
        DiagnosticsLog::note("rescue", "Rettungsordner nicht anlegbar: " + made.error().description());
        return result;
    }
    const auto textFile = Files::unusedName(folder_, "Diktat " + localFileStamp(clock_.now()), ".txt");
    if (const auto written = Files::writeAtomically(textFile, validUtf8(text)); !written) {
        DiagnosticsLog::note("rescue", "Text nicht schreibbar: " + written.error().description());
        return result;
    }
    result.textFile = textFile;

    std::error_code ignored;
    if (!recording) return result;
    if (!fs::exists(recording->audio(), ignored)) {
        recording->discard();
        return result;
    }
    auto audioFile = withExtension(textFile, audioExtension);
    if (const auto moved = recording->moveAudio(audioFile); !moved) {
        DiagnosticsLog::note("rescue", "Tonspur nicht sicherbar: " + moved.error().description());
        return result;
    }
    result.audioFile = audioFile;
    return result;
}

void RescueFolder::prune(const Result& justWritten) const {
    Files::removeUnfinishedWrites(folder_);
    std::vector<std::pair<Date, fs::path>> texts;
    for (const auto& file : listing(folder_)) {
        // What was written just now is the newest, whatever a clock that was set back says.
        if (!isRescuedText(file) || file == justWritten.textFile) continue;
        texts.emplace_back(Files::modificationTime(file).value_or(Date::min()), file);
    }
    const std::size_t others = justWritten.textFile ? keepNewest - 1 : keepNewest;
    if (texts.size() <= others) return;
    std::ranges::sort(texts, std::greater());
    for (auto old = texts.begin() + static_cast<std::ptrdiff_t>(others); old != texts.end(); ++old) {
        Files::remove(withExtension(old->second, audioExtension));
        Files::remove(old->second);
    }
}

bool RescueFolder::hasEntries() const { return std::ranges::any_of(listing(folder_), isRescuedText); }

} // namespace querlin
