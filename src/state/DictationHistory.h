#pragma once

#include "foundation/Clock.h"
#include "foundation/Json.h"
#include "foundation/Published.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// One delivered dictation. All fields count in a comparison.
struct DictationEntry {
    /// A UUID in canonical upper-case form.
    std::string id;
    /// To the second, as the file keeps it.
    Date date;
    /// As inserted, untrimmed.
    std::string text;
    std::string appName;
    /// The name of the cleanup that made the text.
    std::string engine;
    /// The recording in the audio folder, if one was kept.
    std::optional<std::string> audioFileName;
    std::int64_t wordCount = 0;

    /// The text on one line; of more than 90 characters the first 90 and "…".
    std::string preview() const;

    bool operator==(const DictationEntry&) const = default;
};

JsonValue toJson(const DictationEntry& entry);
std::optional<DictationEntry> readJson(const JsonValue& json, const DictationEntry*);

/// The finished dictations, newest first, for as long as the retention says: one JSON file that is
/// rewritten whole at each change, and a folder of recordings.
///
/// Memory is always right; a write that fails is silent and made good by the next one. An index that
/// can't be decoded is set aside under a dated name before the first write, so that nothing in it is
/// lost. Main thread only; all file work is synchronous.
class DictationHistory {
public:
    /// Loads the index; makes the folder.
    DictationHistory(std::filesystem::path folder, const Clock& clock);

    const std::vector<DictationEntry>& entries() const { return entries_.get(); }
    Registration subscribe(Published<std::vector<DictationEntry>>::Subscriber subscriber,
                           FirstValue first = FirstValue::Deliver) const {
        return entries_.subscribe(std::move(subscriber), first);
    }

    /// How many calendar days an entry is kept; below 1 for ever. Setting it removes what has expired.
    void setRetentionDays(std::int64_t days);

    /// Adds an entry for a text; a blank one is no entry. `audioSource`, which nobody changes any
    /// more, is kept with it; an entry whose recording can't be kept is made without.
    void record(std::string_view text, std::string_view appName, std::string_view engine,
                const std::optional<std::filesystem::path>& audioSource);

    /// The entries whose text or application holds the query, whatever the case; all for a blank one.
    std::vector<DictationEntry> search(std::string_view query) const;

    void remove(const DictationEntry& entry);
    void removeAll();

    /// The entry's recording, if it has one and the file is there.
    std::optional<std::filesystem::path> audioFile(const DictationEntry& entry) const;

    std::int64_t totalWords() const;
    /// Where the history lies, for people.
    std::string storageDescription() const { return folder_.string(); }

private:
    void load();
    void save();
    void pruneExpired();
    std::optional<std::string> storeAudio(const std::filesystem::path& source) const;
    void removeAudio(const DictationEntry& entry) const;
    std::filesystem::path indexFile() const { return folder_ / "Verlauf.json"; }
    std::filesystem::path audioFolder() const { return folder_ / "Aufnahmen"; }

    std::filesystem::path folder_;
    const Clock& clock_;
    Published<std::vector<DictationEntry>> entries_;
    std::int64_t retentionDays_ = 30;
    /// The file holds something that isn't in `entries_` and must be moved out of the way first.
    bool indexIsForeign_ = false;
};

} // namespace querlin
