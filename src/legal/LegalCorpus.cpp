#include "legal/LegalCorpus.h"

#include "foundation/Characters.h"
#include "foundation/GermanFormat.h"
#include "foundation/Graphemes.h"
#include "foundation/OneShot.h"
#include "foundation/Replacing.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "legal/CorpusIndexer.h"
#include "legal/LegalCorpusFile.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <map>
#include <ranges>
#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace querlin {

namespace {

/// The hits of one search, each section once.
class Hits {
public:
    explicit Hits(std::size_t limit) : limit_(limit) {}

    bool isFull() const { return hits_.size() >= limit_; }
    void add(const LegalLaw& law, const LegalSection& section) {
        LegalHit hit{law.abbr, section};
        if (seen_.insert(hit.id()).second) hits_.push_back(std::move(hit));
    }
    std::vector<LegalHit> take() {
        if (hits_.size() > limit_) hits_.resize(limit_);
        return std::move(hits_);
    }

private:
    std::size_t limit_;
    std::vector<LegalHit> hits_;
    std::set<std::string> seen_;
};

} // namespace

/// One version of the laws, with all that answers need.
class LegalCorpus::Snapshot {
public:
    /// The index is of these laws.
    Snapshot(std::vector<LegalLaw> laws, CorpusIndex index) :
        laws_(std::move(laws)), index_(std::move(index)) {
        for (std::size_t number = 0; number < laws_.size(); ++number) {
            byName_.insert_or_assign(uppercase(laws_[number].abbr), number);
            longestNameFirst_.push_back(number);
            sectionCount_ += laws_[number].sections.size();
        }
        std::ranges::stable_sort(longestNameFirst_, std::ranges::greater(),
                                 [this](std::size_t number) { return graphemeCount(laws_[number].abbr); });
    }

    const std::vector<LegalLaw>& laws() const { return laws_; }
    Extent extent() const { return {laws_.size(), sectionCount_}; }

    /// By the law's number and the id in small letters; null if there is none.
    const LegalSection* section(std::size_t law, std::string_view id) const {
        const auto found = index_.numbers[law].find(id);
        return found == index_.numbers[law].end() ? nullptr : found->second;
    }
    const LegalSection* section(std::string_view law, std::string_view id) const {
        const auto number = byName_.find(uppercase(law));
        return number == byName_.end() ? nullptr : section(number->second, id);
    }

    using Laws = SearchIndex::Laws;
    struct Query {
        std::string term;
        Laws laws;
    };
    /// Takes a law's name, wherever it stands, out of a query: "1814 BGB". Of two that fit it is the longer.
    Query understood(std::string_view query) const {
        for (const auto law : longestNameFirst_) {
            const auto name = findIgnoringCase(query, laws_[law].abbr);
            if (!name) continue;
            std::string rest(query);
            rest.erase(static_cast<std::size_t>(name->data() - query.data()), name->size());
            return {std::string(trimWhitespaceAndNewlines(rest)), {law, law + 1}};
        }
        return {std::string(query), {0, laws_.size()}};
    }

    /// The sections with this number, then those whose number begins with it.
    void addNumbers(std::string_view number, Laws laws, Hits& hits) const {
        for (auto law = laws.first; law < laws.end; ++law) {
            if (const auto* found = section(law, number)) hits.add(laws_[law], *found);
        }
        for (auto law = laws.first; law < laws.end; ++law) {
            for (const auto& section : laws_[law].sections) {
                if (hits.isFull()) return;
                if (section.id.view().starts_with(number)) hits.add(laws_[law], section);
            }
        }
    }

    /// Those with the words in their titles, then those with the words in their texts.
    void addWords(std::string_view words, Laws laws, Hits& hits) const {
        for (const auto part : {SearchIndex::Part::titles, SearchIndex::Part::texts}) {
            if (hits.isFull()) return;
            index_.words.matches(words, part, laws, [&](const SearchIndex::Entry& entry) {
                hits.add(laws_[entry.law], *entry.section);
                return !hits.isFull();
            });
        }
    }

private:
    std::vector<LegalLaw> laws_;
    CorpusIndex index_;
    std::size_t sectionCount_ = 0;
    /// By the abbreviation in capital letters.
    std::map<std::string, std::size_t> byName_;
    std::vector<std::size_t> longestNameFirst_;
};

LegalCorpus::LegalCorpus(const LegalCorpusStore& store, Runtime runtime) : store_(store), runtime_(runtime) {}
LegalCorpus::~LegalCorpus() = default;

void LegalCorpus::preload() {
    if (!isLoaded()) runtime_.background.run([this] { loadIfNeeded(); });
}

Task<> LegalCorpus::ready() {
    if (isLoaded()) co_return;
    const OneShot<bool> ended(runtime_.mainQueue);
    runtime_.background.run([this, sender = ended.sender()] { sender.send(loadIfNeeded()); });
    const auto limit =
        runtime_.mainQueue.after(longestWait, [sender = ended.sender()] { sender.send(false); });
    co_await ended;
}

bool LegalCorpus::loadIfNeeded() {
    const std::scoped_lock guard(loading_);
    return isLoaded() || load();
}

bool LegalCorpus::reload() {
    const std::scoped_lock guard(loading_);
    return load();
}

bool LegalCorpus::load() {
    auto fresh = read();
    if (!fresh) return false;
    const std::scoped_lock guard(lock_);
    snapshot_.swap(fresh);
    return true;
}

LegalCorpus::SnapshotPointer LegalCorpus::loaded() const {
    const std::scoped_lock guard(lock_);
    return snapshot_;
}

bool LegalCorpus::isLoaded() const { return loaded() != nullptr; }

LegalCorpus::SnapshotPointer LegalCorpus::read() const {
    const auto note = [](std::string_view line) { DiagnosticsLog::note("legal", line); };
    const auto file = store_.corpusURL();
    if (!file) {
        note("LegalCorpus.deflate nicht gefunden.");
        return nullptr;
    }
    const auto started = runtime_.clock.instant();
    LegalCorpusFile content;
    CorpusIndexer indexer; // Ends before the content does.
    const auto read = loadCorpus(*file, content, indexer);
    auto index = indexer.finish();
    if (!read || !index) {
        note(read ? "Laden fehlgeschlagen: Der Gesetzesbestand enthält Text, der kein UTF-8 ist."
                  : read.error());
        return nullptr;
    }
    constexpr double bytesInMegabyte = 1'048'576;
    DiagnosticsLog::trace(
        "legal", fmt::format("Korpus entpackt und gelesen in {:.2f} s ({:.1f} MB)",
                             inSeconds(runtime_.clock.instant() - started),
                             static_cast<double>(indexer.documentLengthInBytes()) / bytesInMegabyte));
    auto snapshot = std::make_shared<const Snapshot>(std::move(content.laws), std::move(*index));
    std::vector<std::string_view> names;
    for (const auto& law : snapshot->laws()) names.push_back(law.abbr);
    note(fmt::format("Geladen: {} Paragraphen aus {}", snapshot->extent().sections, fmt::join(names, ", ")));
    return snapshot;
}

std::optional<LegalCorpus::Extent> LegalCorpus::extent() const {
    const auto snapshot = loaded();
    return snapshot ? std::optional(snapshot->extent()) : std::nullopt;
}

std::vector<LegalLaw> LegalCorpus::laws() const {
    const auto snapshot = loaded();
    return snapshot ? snapshot->laws() : std::vector<LegalLaw>();
}

std::optional<LegalSection> LegalCorpus::section(std::string_view id, std::string_view law) {
    const auto snapshot = loaded();
    const auto* found = snapshot ? snapshot->section(law, lowercase(id)) : nullptr;
    return found ? std::optional(*found) : std::nullopt;
}

std::optional<LegalHit> LegalCorpus::sectionInAnyLaw(std::string_view id) {
    const auto snapshot = loaded();
    if (!snapshot) return std::nullopt;
    const auto key = lowercase(id);
    const auto& laws = snapshot->laws();
    for (std::size_t law = 0; law < laws.size(); ++law) {
        if (const auto* found = snapshot->section(law, key)) return LegalHit{laws[law].abbr, *found};
    }
    return std::nullopt;
}

std::vector<std::string> LegalCorpus::standSummary() const {
    const auto snapshot = loaded();
    std::vector<std::string> lines;
    if (!snapshot) return lines;
    for (const auto& law : snapshot->laws()) {
        const auto date = law.buildDate();
        lines.push_back(fmt::format("{}: {} §§, Stand {} – {}", law.abbr.view(), law.sections.size(),
                                    date ? germanDate(*date) : "?", law.stand.view()));
    }
    return lines;
}

std::vector<LegalHit> LegalCorpus::search(std::string_view query, std::size_t limit) const {
    const auto snapshot = loaded();
    const auto wanted = trimWhitespaceAndNewlines(query);
    if (!snapshot || wanted.empty()) return {};

    const auto [term, laws] = snapshot->understood(wanted);
    Hits hits(limit);
    const auto bare = replacingAll(term, "§", "");
    const auto number = lowercase(trimWhitespaceAndNewlines(bare));
    if (isNumeric(std::string_view(number))) snapshot->addNumbers(number, laws, hits);
    // Of a query that is a law's name alone, the name is looked for.
    const auto words = term.empty() ? wanted : std::string_view(term);
    if (firstGraphemes(words, 1).size() < words.size()) snapshot->addWords(words, laws, hits);
    return hits.take();
}

} // namespace querlin
