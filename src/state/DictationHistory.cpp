#include "state/DictationHistory.h"

#include "foundation/Characters.h"
#include "foundation/Files.h"
#include "foundation/GermanFormat.h"
#include "foundation/Graphemes.h"
#include "foundation/IsoDate.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "foundation/Utf8.h"
#include "foundation/Uuid.h"
#include "state/DiagnosticsLog.h"
#include "state/JsonFields.h"
#include "state/JsonRecord.h"

#include <algorithm>
#include <numeric>

#include <fmt/format.h>

namespace querlin {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t previewLengthInCharacters = 90;

/// A name in the audio folder and nothing else: an index brought in from elsewhere must not make the
/// history delete or play files of other folders.
bool isPlainFileName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

} // namespace

std::string DictationEntry::preview() const {
    std::string line = text;
    std::ranges::replace(line, '\n', ' ');
    const auto shown = firstGraphemes(line, previewLengthInCharacters);
    return shown.size() == line.size() ? line : std::string(shown) + "…";
}

JsonValue toJson(const DictationEntry& entry) {
    JsonValue::Object object = {{"id", entry.id},
                                {"date", isoDate(entry.date)},
                                {"text", entry.text},
                                {"appName", entry.appName},
                                {"engine", entry.engine}};
    if (entry.audioFileName) object.emplace_back("audioFileName", *entry.audioFileName);
    object.emplace_back("wordCount", entry.wordCount);
    return object;
}

std::optional<DictationEntry> readJson(const JsonValue& json, const DictationEntry*) {
    const auto id = JsonFields::string(json, "id");
    auto canonicalId = id ? canonicalUuid(*id) : std::nullopt;
    const auto dateText = JsonFields::string(json, "date");
    const auto date = dateText ? parseIsoDate(*dateText) : std::nullopt;
    auto text = JsonFields::string(json, "text");
    auto appName = JsonFields::string(json, "appName");
    auto engine = JsonFields::string(json, "engine");
    const auto wordCount = JsonFields::integer(json, "wordCount");
    if (!canonicalId || !date || !text || !appName || !engine || !wordCount) return std::nullopt;

    std::optional<std::string> audio;
    if (const auto* member = json.member("audioFileName"); member != nullptr && *member != JsonValue()) {
        if (!member->string() || !isPlainFileName(*member->string())) return std::nullopt;
        audio = *member->string();
    }
    return DictationEntry{
        std::move(*canonicalId), *date,     std::move(*text), std::move(*appName), std::move(*engine),
        std::move(audio),        *wordCount};
}

/// The index file. Used by one thread at a time.
struct DictationHistory::Index {
    fs::path file;
    const Clock& clock;
    /// The file holds something that has not been read and must be moved out of the way first.
    bool isForeign = false;

    std::vector<DictationEntry> read() {
        const auto content = Files::read(file);
        isForeign = content || !content.error().isMissing();
        const auto json = content ? Json::parse(*content) : std::unexpected(JsonError());
        auto entries = json ? fromJson<std::vector<DictationEntry>>(*json) : std::nullopt;
        if (!entries) return {};
        isForeign = false;
        return std::move(*entries);
    }

    FileResult<> write(const std::vector<DictationEntry>& entries) {
        if (isForeign) {
            const auto place = Files::setAside(file, clock.now());
            // Rather no write than one over dictations that someone may still need.
            if (!place) return std::unexpected(place.error());
            isForeign = false;
            DiagnosticsLog::note("history", fmt::format("Verlauf war nicht lesbar – beiseitegelegt als {}.",
                                                        place->filename().string()));
        }
        if (auto folder = Files::makeFolder(file.parent_path()); !folder) return folder;
        return Files::writeAtomically(file, Json::pretty(toJson(entries)));
    }
};

DictationHistory::DictationHistory(fs::path folder, Runtime runtime) :
    folder_(std::move(folder)),
    runtime_(runtime),
    index_(std::make_shared<Index>(folder_ / "Verlauf.json", runtime.clock)),
    entries_(index_->read()),
    writer_(runtime, {.delay = {}, .subject = "Verlauf", .logCategory = "history", .prepare = [this] {
                          return [index = index_, copy = entries()] { return index->write(copy); };
                      }}) {
    (void)Files::makeFolder(folder_);
    Files::removeUnfinishedWrites(folder_);
}

DictationHistory::~DictationHistory() = default;

void DictationHistory::change(std::vector<DictationEntry> entries) {
    entries_.set(std::move(entries));
    writer_.changed();
}

void DictationHistory::setRetentionDays(std::int64_t days) {
    retentionDays_ = days;
    pruneExpired();
}

void DictationHistory::pruneExpired() {
    if (retentionDays_ < 1) return;
    const auto limit = daysBefore(runtime_.clock.now(), retentionDays_).value_or(Date::min());
    const auto isExpired = [limit](const DictationEntry& entry) { return entry.date < limit; };
    auto kept = entries();
    const auto expired = std::ranges::stable_partition(kept, std::not_fn(isExpired));
    if (expired.empty()) return;
    removeAudio(expired);
    const auto count = expired.size();
    kept.erase(expired.begin(), expired.end());
    change(std::move(kept));
    DiagnosticsLog::note("history", fmt::format("{} abgelaufene Einträge entfernt.", count));
}

void DictationHistory::record(std::string_view text, std::string_view appName, std::string_view engine,
                              const std::optional<fs::path>& audioSource) {
    if (trimWhitespaceAndNewlines(text).empty()) return;
    auto extended = entries();
    extended.insert(extended.begin(),
                    DictationEntry{.id = newUuid(),
                                   .date = std::chrono::floor<std::chrono::seconds>(runtime_.clock.now()),
                                   .text = validUtf8(text),
                                   .appName = validUtf8(appName),
                                   .engine = std::string(engine),
                                   .audioFileName = audioSource ? keepAudio(*audioSource) : std::nullopt,
                                   .wordCount = static_cast<std::int64_t>(countWords(text))});
    change(std::move(extended));
    pruneExpired();
}

// The source may be gone after this: it is linked here and now, or held open for a copy in the background.
std::optional<std::string> DictationHistory::keepAudio(const fs::path& source) {
    (void)Files::makeFolder(audioFolder());
    auto name = newUuid() + ".caf";
    const auto place = audioFolder() / name;
    if (Files::link(source, place)) {
        runtime_.background.run([place] { Files::makeDurable(place); });
        return name;
    }
    auto opened = Files::OpenFile::open(source);
    if (!opened) {
        audioLost(name, opened.error());
        return std::nullopt;
    }
    auto failed = lifetime_.onMain(runtime_.mainQueue,
                                   [this, name](const FileError& error) { audioLost(name, error); });
    runtime_.background.run([file = std::move(*opened), place, failed] {
        if (const auto copied = file.copyTo(place); !copied) failed(copied.error());
    });
    return name;
}

void DictationHistory::audioLost(const std::string& name, const FileError& error) {
    DiagnosticsLog::note("history", "Aufnahme nicht gesichert: " + error.description());
    auto corrected = entries();
    const auto entry = std::ranges::find(corrected, name, &DictationEntry::audioFileName);
    if (entry == corrected.end()) return;
    entry->audioFileName.reset();
    change(std::move(corrected));
}

// In the background, after a copy that may still be under way.
void DictationHistory::removeAudio(std::span<const DictationEntry> entries) {
    std::vector<fs::path> files;
    for (const auto& entry : entries) {
        if (entry.audioFileName) files.push_back(audioFolder() / *entry.audioFileName);
    }
    if (files.empty()) return;
    runtime_.background.run([files = std::move(files)] {
        for (const auto& file : files) Files::remove(file);
    });
}

std::vector<DictationEntry> DictationHistory::search(std::string_view query) const {
    const auto sought = trimWhitespaceAndNewlines(query);
    if (sought.empty()) return entries();
    std::vector<DictationEntry> found;
    std::ranges::copy_if(entries(), std::back_inserter(found), [sought](const DictationEntry& entry) {
        return containsIgnoringCase(entry.text, sought) || containsIgnoringCase(entry.appName, sought);
    });
    return found;
}

void DictationHistory::remove(const DictationEntry& entry) {
    const auto id = entry.id; // The entry may be one of the list that is about to change.
    removeAudio({&entry, 1});
    auto kept = entries();
    std::erase_if(kept, [&id](const DictationEntry& other) { return other.id == id; });
    change(std::move(kept));
}

void DictationHistory::removeAll() {
    removeAudio(entries());
    change({});
    DiagnosticsLog::note("history", "Verlauf vollständig gelöscht.");
}

std::optional<fs::path> DictationHistory::audioFile(const DictationEntry& entry) const {
    if (!entry.audioFileName) return std::nullopt;
    auto file = audioFolder() / *entry.audioFileName;
    std::error_code ignored;
    return fs::exists(file, ignored) ? std::optional(std::move(file)) : std::nullopt;
}

std::int64_t DictationHistory::totalWords() const {
    return std::accumulate(
        entries().begin(), entries().end(), std::int64_t{0},
        [](std::int64_t sum, const DictationEntry& entry) { return sum + entry.wordCount; });
}

} // namespace querlin
