#include "speech/VocabularyProvider.h"

#include "foundation/Files.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "state/DiagnosticsLog.h"
#include "state/JsonFields.h"
#include "state/JsonRecord.h"

#include <set>

#include <fmt/format.h>

namespace querlin {

namespace {

std::optional<std::vector<std::string>> strings(const JsonValue& json, std::string_view key) {
    const auto* member = json.member(key);
    if (!member || !member->array()) return std::nullopt;
    std::vector<std::string> list;
    for (const auto& element : *member->array()) {
        if (!element.string()) return std::nullopt;
        list.push_back(*element.string());
    }
    return list;
}

std::optional<VocabularyFile> read(const std::filesystem::path& path) {
    const auto text = Files::read(path);
    if (!text) return std::nullopt;
    const auto json = Json::parse(*text);
    return json ? fromJson<VocabularyFile>(*json) : std::nullopt;
}

} // namespace

std::optional<VocabularyFile> readJson(const JsonValue& json, const VocabularyFile*) {
    auto generated = JsonFields::string(json, "generated");
    const auto total = JsonFields::integer(json, "total");
    const auto priority = JsonFields::integer(json, "priorityCount");
    const auto candidates = JsonFields::integer(json, "contextualCount");
    auto terms = strings(json, "terms");
    auto contextual = strings(json, "contextual");
    if (!generated || !total || !priority || !candidates || !terms || !contextual) return std::nullopt;
    return VocabularyFile{std::move(*generated), *total, *priority, *candidates, std::move(*terms),
                          std::move(*contextual)};
}

struct VocabularyProvider::State {
    using File = std::shared_ptr<const VocabularyFile>;

    explicit State(std::filesystem::path where) : path(std::move(where)) {}

    const std::filesystem::path path;
    std::mutex lock;
    File file; ///< null if it is missing or damaged
    bool didLoad = false;

    File loadIfNeeded();
};

/// Two threads may both read the file; what they find is the same.
VocabularyProvider::State::File VocabularyProvider::State::loadIfNeeded() {
    {
        const std::scoped_lock guard(lock);
        if (didLoad) return file;
    }
    auto found = read(path);
    const auto loaded = found ? std::make_shared<const VocabularyFile>(std::move(*found)) : nullptr;
    {
        const std::scoped_lock guard(lock);
        file = loaded;
        didLoad = true;
    }
    DiagnosticsLog::note(
        "vocab", loaded ? fmt::format("Fachwortschatz geladen: {} Begriffe, {} für die Erkennung geeignet.",
                                      loaded->total, loaded->contextualCount)
                        : "LegalVocabulary.json fehlt oder ist unlesbar.");
    return loaded;
}

VocabularyProvider::VocabularyProvider(const std::filesystem::path& resources, Executor& background) :
    state_(std::make_shared<State>(resources / fileName)), background_(background) {}

void VocabularyProvider::preload() {
    background_.run([state = state_] { state->loadIfNeeded(); });
}

std::int64_t VocabularyProvider::totalTerms() const {
    const auto file = state_->loadIfNeeded();
    return file ? file->total : 0;
}

std::int64_t VocabularyProvider::priorityTerms() const {
    const auto file = state_->loadIfNeeded();
    return file ? file->priorityCount : 0;
}

std::int64_t VocabularyProvider::contextualCandidates() const {
    const auto file = state_->loadIfNeeded();
    return file ? file->contextualCount : 0;
}

std::string VocabularyProvider::generatedOn() const {
    const auto file = state_->loadIfNeeded();
    return file ? file->generated : "–";
}

std::vector<std::string> VocabularyProvider::allTerms() const {
    const auto file = state_->loadIfNeeded();
    return file ? file->terms : std::vector<std::string>();
}

std::vector<std::string> VocabularyProvider::contextualStrings(const std::vector<std::string>& userTerms,
                                                               std::int64_t limit) const {
    std::vector<std::string> result;
    std::set<std::string> known;
    /// False once the list is full.
    const auto add = [&](std::string_view term) {
        if (!known.insert(nfc(lowercase(term))).second) return true;
        result.emplace_back(term);
        return std::ssize(result) < limit;
    };
    for (const auto& term : userTerms) {
        const auto trimmed = trimWhitespaceAndNewlines(term);
        if (!trimmed.empty() && !add(trimmed)) return result;
    }
    const auto file = state_->loadIfNeeded();
    if (!file) return result;
    for (const auto& term : file->contextual) {
        if (!add(term)) break;
    }
    return result;
}

} // namespace querlin
