#pragma once

#include "foundation/Json.h"
#include "foundation/Lifetime.h"
#include "state/CoalescedWriter.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
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

/// The finished dictations, newest first, for as long as the retention says: one JSON file that is rewritten
/// whole after changes, and a folder of recordings.
///
/// Memory is always right. The file follows in the background at once, and at the latest in the destructor; a
/// write that fails is reported through `trouble` and made good by the next one. An index that can't be
/// decoded is set aside under a dated name before the first write, so that nothing in it is lost. Main thread
/// only.
class DictationHistory {
public:
    /// Loads the index; makes the folder. `runtime.background` does the file work and must keep its order.
    DictationHistory(std::filesystem::path folder, Runtime runtime);
    ~DictationHistory();
    DictationHistory(const DictationHistory&) = delete;
    DictationHistory& operator=(const DictationHistory&) = delete;

    const std::vector<DictationEntry>& entries() const { return entries_.get(); }
    Registration subscribe(Published<std::vector<DictationEntry>>::Subscriber subscriber,
                           FirstValue first = FirstValue::Deliver) const {
        return entries_.subscribe(std::move(subscriber), first);
    }

    /// How many calendar days an entry is kept; below 1 for ever. Setting it removes what has expired.
    void setRetentionDays(std::int64_t days);

    /// Adds an entry for a text; a blank one is no entry. `audioSource`, which nobody changes any more and
    /// which may be deleted after the call, is kept with it; an entry whose recording can't be kept goes
    /// without.
    void record(std::string_view text, std::string_view appName, std::string_view engine,
                const std::optional<std::filesystem::path>& audioSource);

    /// The entries whose text or application holds the query, whatever the case; all for a blank one.
    std::vector<DictationEntry> search(std::string_view query) const;

    void remove(const DictationEntry& entry);
    void removeAll();

    /// The entry's recording, if it has one and the file is there.
    std::optional<std::filesystem::path> audioFile(const DictationEntry& entry) const;

    std::int64_t totalWords() const;

    /// Writes here and now what isn't in the file yet.
    void flush() { writer_.flush(); }
    /// Why the entries aren't saved, in German for the user; nothing as a rule.
    const Published<std::optional<std::string>>& trouble() const { return writer_.trouble(); }
    /// Where the history lies, for people.
    std::string storageDescription() const { return folder_.string(); }

private:
    struct Index;

    void change(std::vector<DictationEntry> entries);
    void pruneExpired();
    std::optional<std::string> keepAudio(const std::filesystem::path& source);
    void audioLost(const std::string& name, const FileError& error);
    void removeAudio(std::span<const DictationEntry> entries);
    std::filesystem::path audioFolder() const { return folder_ / "Aufnahmen"; }

    std::filesystem::path folder_;
    Runtime runtime_;
    std::shared_ptr<Index> index_; ///< shared with the writes
    Published<std::vector<DictationEntry>> entries_;
    std::int64_t retentionDays_ = 30;
    CoalescedWriter writer_; ///< after the above: its end writes them
    Lifetime lifetime_;
};

} // namespace querlin
