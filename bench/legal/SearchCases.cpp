#include "Allocations.h"
#include "BenchRuntime.h"
#include "Cases.h"
#include "Queries.h"
#include "ReadFloor.h"
#include "Searchers.h"
#include "SqliteSearch.h"
#include "WorkFolder.h"
#include "report/Measuring.h"

#include "foundation/Files.h"
#include "foundation/Utf8.h"
#include "legal/LegalCorpus.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>

namespace querlin::bench {

namespace {

using Mixes = std::vector<QueryMix>;

/// Measures ours and a peer for each term of a mix, and reports the middle term and nearly the slowest.
template<class Ours, class Peer>
void overTerms(const Setting& setting, const std::string& name, const QueryMix& mix, Bar half, Bar nearlyAll,
               Ours ours, Peer peer) {
    constexpr std::size_t repetitions = 7;
    std::vector<double> ourTimes;
    std::vector<double> peerTimes;
    for (const auto& term : mix.terms) {
        const auto [a, b] = interleavedMedians(
            setting.repetitions(repetitions), [&] { return secondsOf([&] { return ours(term); }); },
            [&] { return secondsOf([&] { return peer(term); }); });
        ourTimes.push_back(a);
        peerTimes.push_back(b);
    }
    constexpr double middle = 0.5;
    constexpr double tail = 0.99;
    auto& report = setting.report;
    report.times(name + ", p50", percentile(ourTimes, middle), percentile(peerTimes, middle), half);
    report.times(name + ", p99", percentile(ourTimes, tail), percentile(peerTimes, tail), nearlyAll);
}

void expect(const Setting& setting, bool agrees, std::string_view term) {
    if (!agrees) setting.report.disagreement(fmt::format("about \"{}\"", term));
}

void besideMemmem(const Setting& setting, Searchers& searchers, const Mixes& mixes) {
    setting.report.section("Searching all texts");
    for (const auto& mix : mixes) {
        for (const auto& term : mix.terms) expect(setting, searchers.agreeOn(term), term);
        overTerms(
            setting, fmt::format("4 {} | memmem", mix.name), mix, Bar::atLeast(5), Bar::atLeast(3.5),
            [&](const auto& term) { return &searchers.ours(term); },
            [&](const auto& term) { return &searchers.plainly(term); });
    }
}

void wholeSearch(const Setting& setting, Searchers& searchers, const Mixes& mixes, LegalCorpus& corpus) {
    constexpr auto limit = LegalCorpus::defaultLimit;
    const auto namesALaw = [&](const std::string& term) { // The peer doesn't understand that.
        return std::ranges::any_of(searchers.plain().laws, [&](const PlainLaw& law) {
            return term.contains(plainLowercase(law.abbr));
        });
    };
    for (const auto& mix : mixes) {
        for (const auto& term : mix.terms) {
            if (namesALaw(term)) continue;
            const bool isSame = std::ranges::equal(
                corpus.search(term, limit), searchers.shownPlainly(term, limit), {}, &LegalHit::section,
                [&](std::size_t number) { return searchers.section(number); });
            expect(setting, isSame, term);
        }
        overTerms(
            setting, fmt::format("  {}, {} hits shown | memmem", mix.name, limit), mix, {}, {},
            [&](const auto& term) { return corpus.search(term, limit); },
            [&](const auto& term) { return &searchers.shownPlainly(term, limit); });
    }
}

void besideSqlite(const Setting& setting, Searchers& searchers, Mixes mixes) {
    setting.report.section("Searching all texts beside an index");
    const Stopwatch stopwatch;
    auto sqlite = SqliteSearch::of(setting.corpus);
    if (!sqlite) {
        setting.report.note("5 left out: this SQLite has no trigram index.");
        return;
    }
    setting.report.note(fmt::format("SQLite {} took {} to build its index.", SqliteSearch::version(),
                                    inWords(stopwatch.seconds())));
    for (auto& mix : mixes) {
        // The index has no shorter terms.
        std::erase_if(mix.terms, [](const std::string& term) { return lengthInScalars(term) < 3; });
        for (const auto& term : mix.terms)
            expect(setting, std::ranges::equal(sqlite->search(term), searchers.plainly(term)), term);
        overTerms(
            setting, fmt::format("5 {} | SQLite FTS5 trigram", mix.name), mix, {}, Bar::atLeast(2),
            [&](const auto& term) { return &searchers.ours(term); },
            [&](const auto& term) { return &sqlite->search(term); });
    }
}

/// The term of so many bytes that most sections have, and the one that fewest have.
void allocations(const Setting& setting, Searchers& searchers, const Mixes& mixes) {
    setting.report.section("Memory during a search");
    const auto allocated = [&](std::string_view term, std::size_t& occurrences) {
        const auto before = allocationCount();
        searchers.index().matches(term, SearchIndex::Part::texts, searchers.index().allLaws(),
                                  [&occurrences](const SearchIndex::Entry&) { return ++occurrences > 0; });
        return allocationCount() - before;
    };
    for (const std::size_t length : {3U, 24U}) {
        std::string dense;
        std::string rare;
        for (const auto& mix : mixes) {
            for (auto term : mix.terms) {
                term.resize(std::min(term.size(), length));
                const auto count = searchers.ours(term).size();
                if (term.size() != length || !isValidUtf8(term)) continue;
                if (dense.empty() || count > searchers.ours(dense).size()) dense = term;
                if (rare.empty() || count < searchers.ours(rare).size()) rare = term;
            }
        }
        if (dense.empty()) continue;
        std::size_t denseOccurrences = 0;
        std::size_t rareOccurrences = 0;
        const auto often = allocated(dense, denseOccurrences);
        const auto seldom = allocated(rare, rareOccurrences);
        setting.report.note(fmt::format("6 \"{}\": {} allocations for {} hits; \"{}\": {} for {}", dense,
                                        often, denseOccurrences, rare, seldom, rareOccurrences));
        setting.report.verdict("6 as many allocations for a frequent term as for a rare one",
                               often == seldom);
    }
}

void denseTerms(const Setting& setting, Searchers& searchers) {
    const auto& bytes = searchers.plain().texts.bytes;
    setting.report.section("Terms that are everywhere");
    for (const std::string_view term : {"e", "en"}) {
        expect(setting, searchers.agreeOn(term), term);
        const auto [ours, floor] = interleavedMedians(
            setting.repetitions(101), [&] { return secondsOf([&] { return &searchers.ours(term); }); },
            [&] { return secondsOf([&] { return orOfAll(bytes); }); });
        setting.report.times(fmt::format("7 \"{}\" | reading all bytes", term), ours, floor, Bar::atMost(4));
    }
}

void wideRegisters(const Setting& setting, Searchers& searchers, const Mixes& mixes) {
    setting.report.section("Wide registers");
    if (widestRegisters() == Registers::portable) {
        setting.report.note("8 left out: this processor has none.");
        return;
    }
    for (const auto& mix : mixes) {
        overTerms(
            setting, fmt::format("8 {} | without", mix.name), mix, {}, {},
            [&](const auto& term) { return &searchers.scanned(term, widestRegisters()); },
            [&](const auto& term) { return &searchers.scanned(term, Registers::portable); });
    }
}

} // namespace

void runSearchCases(const Setting& setting) {
    const WorkFolder folder;
    const auto file = folder.path() / LegalCorpusStore::corpusName;
    if (!Files::writeAtomically(file, setting.corpus.container))
        throw std::runtime_error("The corpus can't be written.");
    Searchers searchers(setting.corpus, PlainCorpus::load(file));
    const LegalCorpusStore store(folder.path() / "Gesetze", folder.path());
    BenchRuntime runtime;
    LegalCorpus corpus(store, runtime);
    corpus.loadIfNeeded();

    const auto mixes = queryMixes(setting.corpus, setting.isQuick ? 40 : 400);
    besideMemmem(setting, searchers, mixes);
    wholeSearch(setting, searchers, mixes, corpus);
    besideSqlite(setting, searchers, mixes);
    allocations(setting, searchers, mixes);
    denseTerms(setting, searchers);
    wideRegisters(setting, searchers, mixes);
}

} // namespace querlin::bench
