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

DictationHistory::DictationHistory(fs::path folder, const Clock& clock) :
    folder_(std::move(folder)), clock_(clock) {
    (void)Files::makeFolder(folder_);
    Files::removeUnfinishedWrites(folder_);
    load();
}

void DictationHistory::load() {
    const auto content = Files::read(indexFile());
    if (!content) {
        indexIsForeign_ = !content.error().isMissing();
        return;
    }
    const auto json = Json::parse(*content);
    if (auto decoded = json ? fromJson<std::vector<DictationEntry>>(*json) : std::nullopt) {
        entries_.set(std::move(*decoded));
    } else {
        indexIsForeign_ = true;
    }
}

void DictationHistory::save() {
    if (indexIsForeign_) {
        const auto place = Files::setAside(indexFile(), clock_.now());
        if (!place) return; // Rather no write than one over dictations that someone may still need.
        indexIsForeign_ = false;
        DiagnosticsLog::note("history", fmt::format("Verlauf war nicht lesbar – beiseitegelegt als {}.",
                                                    place->filename().string()));
    }
    if (Files::makeFolder(folder_))
        (void)Files::writeAtomically(indexFile(), Json::pretty(toJson(entries())));
}

void DictationHistory::setRetentionDays(std::int64_t days) {
    retentionDays_ = days;
    pruneExpired();
}

void DictationHistory::pruneExpired() {
    if (retentionDays_ < 1) return;
    const auto limit = daysBefore(clock_.now(), retentionDays_).value_or(Date::min());
    const auto isExpired = [limit](const DictationEntry& entry) { return entry.date < limit; };
    auto kept = entries();
    const auto expired = std::ranges::stable_partition(kept, std::not_fn(isExpired));
    if (expired.empty()) return;
    for (const auto& entry : expired) removeAudio(entry);
    const auto count = expired.size();
    kept.erase(expired.begin(), expired.end());
    entries_.set(std::move(kept));
    save();
    DiagnosticsLog::note("history", fmt::format("{} abgelaufene Einträge entfernt.", count));
}

void DictationHistory::record(std::string_view text, std::string_view appName, std::string_view engine,
                              const std::optional<fs::path>& audioSource) {
    if (trimWhitespaceAndNewlines(text).empty()) return;
    auto extended = entries();
    extended.insert(extended.begin(),
                    DictationEntry{.id = newUuid(),
                                   .date = std::chrono::floor<std::chrono::seconds>(clock_.now()),
                                   .text = validUtf8(text),
                                   .appName = validUtf8(appName),
                                   .engine = std::string(engine),
                                   .audioFileName = audioSource ? storeAudio(*audioSource) : std::nullopt,
                                   .wordCount = static_cast<std::int64_t>(countWords(text))});
    entries_.set(std::move(extended));
    pruneExpired();
    save();
}

std::optional<std::string> DictationHistory::storeAudio(const fs::path& source) const {
    (void)Files::makeFolder(audioFolder());
    auto name = newUuid() + ".caf";
    if (const auto stored = Files::linkOrCopy(source, audioFolder() / name); !stored) {
        DiagnosticsLog::note("history", "Aufnahme nicht gesichert: " + stored.error().description());
        return std::nullopt;
    }
    return name;
}

void DictationHistory::removeAudio(const DictationEntry& entry) const {
    if (entry.audioFileName) Files::remove(audioFolder() / *entry.audioFileName);
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
    removeAudio(entry);
    auto kept = entries();
    std::erase_if(kept, [&id](const DictationEntry& other) { return other.id == id; });
    entries_.set(std::move(kept));
    save();
}

void DictationHistory::removeAll() {
    for (const auto& entry : entries()) removeAudio(entry);
    entries_.set({});
    save();
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
