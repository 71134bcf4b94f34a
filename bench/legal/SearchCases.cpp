#include "Allocations.h"
#include "Cases.h"
#include "Measuring.h"
#include "PlainCorpus.h"
#include "Queries.h"
#include "ReadFloor.h"
#include "WorkFolder.h"

#include "foundation/Files.h"
#include "legal/LegalCorpus.h"
#include "legal/SearchIndex.h"
#include "legal/TextBlob.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>

namespace querlin::bench {

namespace {

using Found = std::vector<std::size_t>;

/// Ours and the peer side by side, over the same laws.
class Searchers {
public:
    Searchers(const Corpus& corpus, PlainCorpus plain) :
        index(corpus.laws), texts(plain.texts.starts.size(), plain.texts.bytes.size()), plain_(std::move(plain)) {
        for (const auto& law : corpus.laws) {
            for (const auto& section : law.sections) {
                sections_.push_back(&section);
                texts.append(section.text);
            }
        }
        found_.reserve(sections_.size());
        numbers_.reserve(sections_.size());
    }

    /// All sections with the term, collected by SearchIndex.
    const std::vector<const LegalSection*>& ours(std::string_view term) {
        found_.clear();
        index.matches(term, SearchIndex::Part::texts, nullptr, [this](const SearchIndex::Entry& entry) {
            found_.push_back(entry.section);
            return true;
        });
        return found_;
    }
    /// By memmem.
    const Found& plainly(std::string_view term) {
        numbers_.clear();
        plain_.texts.search(term, [this](std::size_t number) {
            numbers_.push_back(number);
            return true;
        });
        return numbers_;
    }
    const Found& scanned(std::string_view term, Scanning scanning) {
        numbers_.clear();
        const auto visit = [this](std::size_t number) {
            numbers_.push_back(number);
            return true;
        };
        texts.search(term, {0, texts.count()}, visit, scanning);
        return numbers_;
    }
    /// What a whole search shows: titles, then texts, until so many sections are there.
    const Found& shownPlainly(std::string_view term, std::size_t limit) {
        numbers_.clear();
        const auto visit = [&](std::size_t number) {
            if (std::ranges::find(numbers_, number) == numbers_.end()) numbers_.push_back(number);
            return numbers_.size() < limit;
        };
        plain_.titles.search(term, visit);
        if (numbers_.size() < limit) plain_.texts.search(term, visit);
        return numbers_;
    }

    bool agreeOn(std::string_view term) {
        Found ourNumbers;
        for (const auto* section : ours(term))
            ourNumbers.push_back(static_cast<std::size_t>(std::ranges::find(sections_, section) - sections_.begin()));
        return ourNumbers == plainly(term) && ourNumbers == scanned(term, Scanning::portable) &&
               ourNumbers == scanned(term, bestScanning());
    }
    const LegalSection& section(std::size_t number) const { return *sections_[number]; }
    const PlainCorpus& plain() const { return plain_; }

    SearchIndex index;
    TextBlob texts;

private:
    PlainCorpus plain_;
    std::vector<const LegalSection*> sections_;
    std::vector<const LegalSection*> found_;
    Found numbers_;
};

/// Times of all terms, ours in the first column.
struct Columns {
    std::vector<double> ours;
    std::vector<double> peer;

    void report(Report& report, const std::string& name, Bar half, Bar nearlyAll) const {
        constexpr double middle = 0.5;
        constexpr double tail = 0.99;
        report.times(name + ", p50", percentile(ours, middle), percentile(peer, middle), half);
        report.times(name + ", p99", percentile(ours, tail), percentile(peer, tail), nearlyAll);
    }
};

template<class Ours, class Peer>
Columns overTerms(const QueryMix& mix, std::size_t repetitions, Ours ours, Peer peer) {
    Columns columns;
    for (const auto& term : mix.terms) {
        const auto [a, b] = interleavedMedians(
            repetitions, [&] { return secondsOf([&] { return &ours(term); }); },
            [&] { return secondsOf([&] { return &peer(term); }); });
        columns.ours.push_back(a);
        columns.peer.push_back(b);
    }
    return columns;
}

void compare(const Setting& setting, Searchers& searchers, const std::vector<QueryMix>& mixes) {
    for (const auto& mix : mixes) {
        for (const auto& term : mix.terms) {
            if (!searchers.agreeOn(term)) setting.report.disagreement(fmt::format("about \"{}\"", term));
        }
    }
}

void besideMemmem(const Setting& setting, Searchers& searchers, const std::vector<QueryMix>& mixes) {
    setting.report.section("Searching all texts");
    for (const auto& mix : mixes) {
        overTerms(
            mix, setting.repetitions(7), [&](const auto& term) -> auto& { return searchers.ours(term); },
            [&](const auto& term) -> auto& { return searchers.plainly(term); })
            .report(setting.report, fmt::format("4 {} | memmem", mix.name), Bar::atLeast(5), Bar::atLeast(3.5));
    }
}

void wholeSearch(const Setting& setting, Searchers& searchers, const std::vector<QueryMix>& mixes,
                 LegalCorpus& corpus) {
    constexpr auto limit = LegalCorpus::defaultLimit;
    const auto namesALaw = [&](const std::string& term) {
        return std::ranges::any_of(searchers.plain().laws, [&](const PlainLaw& law) {
            return term.contains(plainLowercase(law.abbr));
        });
    };
    for (const auto& mix : mixes) {
        for (const auto& term : mix.terms) {
            if (namesALaw(term)) continue; // The peer doesn't understand that.
            Found shown = searchers.shownPlainly(term, limit);
            const auto hits = corpus.search(term, limit);
            const bool isSame = std::ranges::equal(hits, shown, {}, [](const LegalHit& hit) { return hit.section; },
                                                   [&](std::size_t number) { return searchers.section(number); });
            if (!isSame) setting.report.disagreement(fmt::format("about what is shown for \"{}\"", term));
        }
        std::vector<LegalHit> hits;
        overTerms(
            mix, setting.repetitions(7),
            [&](const auto& term) -> auto& { return hits = corpus.search(term, limit); },
            [&](const auto& term) -> auto& { return searchers.shownPlainly(term, limit); })
            .report(setting.report, fmt::format("  {}, {} hits | memmem", mix.name, limit), {}, {});
    }
}

void denseTerms(const Setting& setting, Searchers& searchers) {
    const auto& bytes = searchers.plain().texts.bytes;
    for (const std::string_view term : {"e", "en"}) {
        if (!searchers.agreeOn(term)) setting.report.disagreement(fmt::format("about \"{}\"", term));
        const auto [ours, floor] = interleavedMedians(
            setting.repetitions(101), [&] { return secondsOf([&] { return &searchers.ours(term); }); },
            [&] { return secondsOf([&] { return orOfAll(bytes); }); });
        setting.report.times(fmt::format("7 \"{}\" | reading all bytes", term), ours, floor, Bar::atMost(4));
    }
}

} // namespace

void runSearchCases(const Setting& setting) {
    const WorkFolder folder;
    const auto file = folder.path() / LegalCorpusStore::corpusName;
    if (!Files::writeAtomically(file, setting.corpus.container)) throw std::runtime_error("The corpus can't be written.");
    Searchers searchers(setting.corpus, PlainCorpus::load(file));
    const LegalCorpusStore store(folder.path() / "Gesetze", folder.path());
    const SystemClock clock;
    LegalCorpus corpus(store, clock);
    corpus.loadIfNeeded();

    const auto mixes = queryMixes(setting.corpus, setting.isQuick ? 40 : 400);
    compare(setting, searchers, mixes);
    besideMemmem(setting, searchers, mixes);
    wholeSearch(setting, searchers, mixes, corpus);
    denseTerms(setting, searchers);
}

} // namespace querlin::bench
