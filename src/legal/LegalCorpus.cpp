#include "legal/LegalCorpus.h"

#include "foundation/Characters.h"
#include "foundation/GermanFormat.h"
#include "foundation/Graphemes.h"
#include "foundation/Replacing.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "legal/LegalCorpusFile.h"
#include "legal/SearchIndex.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <ranges>
#include <set>
#include <unordered_map>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace querlin {

/// One version of the laws, with all that answers need. Its members point into its laws.
class LegalCorpus::Snapshot {
public:
    explicit Snapshot(std::vector<LegalLaw> laws) : laws_(std::move(laws)), index_(laws_) {
        for (const auto& law : laws_) {
            auto& sections = byNumber_[uppercase(law.abbr)];
            sections.reserve(sections.size() + law.sections.size());
            for (const auto& section : law.sections) sections.insert_or_assign(section.id, &section);
        }
        for (const auto& law : laws_) longestNameFirst_.push_back(&law);
        std::ranges::stable_sort(longestNameFirst_, std::ranges::greater(),
                                 [](const LegalLaw* law) { return graphemeCount(law->abbr); });
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    const std::vector<LegalLaw>& laws() const { return laws_; }
    const std::vector<const LegalLaw*>& longestNameFirst() const { return longestNameFirst_; }
    const SearchIndex& index() const { return index_; }

    /// By the id in small letters.
    const LegalSection* section(std::string_view id, std::string_view law) const {
        const auto sections = byNumber_.find(uppercase(law));
        if (sections == byNumber_.end()) return nullptr;
        const auto found = sections->second.find(id);
        return found == sections->second.end() ? nullptr : found->second;
    }

private:
    using ById = std::unordered_map<std::string_view, const LegalSection*>;

    std::vector<LegalLaw> laws_;
    /// By the abbreviation in capital letters, which several laws may share.
    std::unordered_map<std::string, ById> byNumber_;
    std::vector<const LegalLaw*> longestNameFirst_;
    SearchIndex index_;
};

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

LegalCorpus::LegalCorpus(const LegalCorpusStore& store, const Clock& clock) : store_(store), clock_(clock) {}
LegalCorpus::~LegalCorpus() = default;

void LegalCorpus::preload(Executor& background) {
    background.run([this] { loadIfNeeded(); });
}

bool LegalCorpus::loadIfNeeded() { return loaded() != nullptr; }

bool LegalCorpus::reload() {
    {
        const std::scoped_lock guard(lock_);
        snapshot_.reset();
        ++generation_;
    }
    return loadIfNeeded();
}

bool LegalCorpus::isLoaded() const {
    const std::scoped_lock guard(lock_);
    return snapshot_ != nullptr;
}

LegalCorpus::SnapshotPointer LegalCorpus::loaded() {
    std::uint64_t generation = 0;
    {
        const std::scoped_lock guard(lock_);
        if (snapshot_) return snapshot_;
        generation = generation_;
    }
    const auto note = [](std::string_view line) { DiagnosticsLog::note("legal", line); };
    const auto file = store_.corpusURL();
    if (!file) {
        note("LegalCorpus.deflate nicht gefunden.");
        return nullptr;
    }
    const auto started = clock_.instant();
    auto corpus = loadCorpus(*file);
    if (!corpus) {
        note(corpus.error());
        return nullptr;
    }
    constexpr double bytesInMegabyte = 1'048'576;
    DiagnosticsLog::trace("legal",
                          fmt::format("Korpus entpackt und gelesen in {:.2f} s ({:.1f} MB)",
                                      inSeconds(clock_.instant() - started),
                                      static_cast<double>(corpus->documentLengthInBytes) / bytesInMegabyte));
    auto snapshot = std::make_shared<const Snapshot>(std::move(corpus->content.laws));
    {
        const std::scoped_lock guard(lock_);
        // An update came meanwhile: these may be the texts of before.
        if (generation == generation_) snapshot_ = snapshot;
    }
    std::size_t count = 0;
    std::vector<std::string_view> names;
    for (const auto& law : snapshot->laws()) {
        count += law.sections.size();
        names.push_back(law.abbr);
    }
    note(fmt::format("Geladen: {} Paragraphen aus {}", count, fmt::join(names, ", ")));
    return snapshot;
}

std::vector<LegalLaw> LegalCorpus::laws() {
    const auto snapshot = loaded();
    return snapshot ? snapshot->laws() : std::vector<LegalLaw>();
}

std::optional<LegalSection> LegalCorpus::section(std::string_view id, std::string_view law) {
    const auto snapshot = loaded();
    const auto* found = snapshot ? snapshot->section(lowercase(id), law) : nullptr;
    return found ? std::optional(*found) : std::nullopt;
}

std::optional<LegalHit> LegalCorpus::sectionInAnyLaw(std::string_view id) {
    const auto snapshot = loaded();
    if (!snapshot) return std::nullopt;
    const auto key = lowercase(id);
    for (const auto& law : snapshot->laws()) {
        if (const auto* found = snapshot->section(key, law.abbr)) return LegalHit{law.abbr, *found};
    }
    return std::nullopt;
}

std::vector<std::string> LegalCorpus::standSummary() {
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

std::vector<LegalHit> LegalCorpus::search(std::string_view query, std::size_t limit) {
    const auto snapshot = loaded();
    const auto wanted = trimWhitespaceAndNewlines(query);
    if (!snapshot || wanted.empty()) return {};

    // A law by its name, wherever it stands.
    const LegalLaw* only = nullptr;
    std::string rest(wanted);
    for (const auto* law : snapshot->longestNameFirst()) {
        const auto name = findIgnoringCase(wanted, law->abbr);
        if (!name) continue;
        only = law;
        rest.erase(static_cast<std::size_t>(name->data() - wanted.data()), name->size());
        rest = trimWhitespaceAndNewlines(rest);
        break;
    }
    const std::span<const LegalLaw> laws =
        only ? std::span(only, 1) : std::span<const LegalLaw>(snapshot->laws());
    Hits hits(limit);

    const auto bare = replacingAll(rest, "§", "");
    const auto number = lowercase(trimWhitespaceAndNewlines(bare));
    if (isNumeric(std::string_view(number))) {
        for (const auto& law : laws) {
            if (const auto* section = snapshot->section(number, law.abbr)) hits.add(law, *section);
        }
        for (const auto& law : laws) {
            for (const auto& section : law.sections) {
                if (hits.isFull()) return hits.take();
                if (section.id.view().starts_with(number)) hits.add(law, section);
            }
        }
    }

    const auto term = rest.empty() ? wanted : std::string_view(rest);
    if (firstGraphemes(term, 1).size() == term.size()) return hits.take();
    for (const auto part : {SearchIndex::Part::titles, SearchIndex::Part::texts}) {
        if (hits.isFull()) break;
        snapshot->index().matches(term, part, only, [&hits](const SearchIndex::Entry& entry) {
            hits.add(*entry.law, *entry.section);
            return !hits.isFull();
        });
    }
    return hits.take();
}

} // namespace querlin
