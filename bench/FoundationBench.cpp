// The text library's fast paths, each compared with ICU.

#include "foundation/Graphemes.h"
#include "foundation/TextCase.h"

#include <memory>

#include <benchmark/benchmark.h>
#include <unicode/brkiter.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

namespace {

/// About 36 KB of German prose.
const std::string& germanText() {
    static const std::string text = [] {
        std::string repeated;
        while (repeated.size() < 36U << 10U) {
            repeated += "Die Betreute äußerte im Gespräch, dass sie „auf jeden Fall“ in ihrer Wohnung "
                        "bleiben möchte. Der Pflegedienst kommt täglich; größere Ausgaben – ab 500 € – "
                        "werden vorher abgesprochen (§ 1838 BGB).\n";
        }
        return repeated;
    }();
    return text;
}

void graphemesCounted(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(querlin::graphemeCount(germanText()));
}

void graphemesIterated(benchmark::State& state) {
    for (auto _ : state) {
        for (const auto character : querlin::Graphemes(germanText())) benchmark::DoNotOptimize(character);
    }
}

void graphemesIcu(benchmark::State& state) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    const std::unique_ptr<UText, decltype(&utext_close)> text(
        utext_openUTF8(nullptr, germanText().data(), static_cast<std::int64_t>(germanText().size()), &status),
        &utext_close);
    for (auto _ : state) {
        iterator->setText(text.get(), status);
        std::size_t count = 0;
        while (iterator->next() != icu::BreakIterator::DONE) ++count;
        benchmark::DoNotOptimize(count);
    }
}

void nfcCheckOurs(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(querlin::isNfc(germanText()));
}

void nfcCheckIcu(benchmark::State& state) {
    UErrorCode status = U_ZERO_ERROR;
    const auto* normalizer = icu::Normalizer2::getNFCInstance(status);
    for (auto _ : state) benchmark::DoNotOptimize(normalizer->isNormalizedUTF8(germanText(), status));
}

void lowercaseOurs(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(querlin::lowercase(germanText()));
}

void lowercaseIcu(benchmark::State& state) {
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        std::string result;
        icu::StringByteSink<std::string> sink(&result);
        icu::CaseMap::utf8ToLower("", 0, germanText(), sink, nullptr, status);
        benchmark::DoNotOptimize(result);
    }
}

BENCHMARK(graphemesCounted)->Name("Graphemes/ours_counted");
BENCHMARK(graphemesIterated)->Name("Graphemes/ours_iterated");
BENCHMARK(graphemesIcu)->Name("Graphemes/icu_break_iterator");
BENCHMARK(nfcCheckOurs)->Name("NfcCheck/ours");
BENCHMARK(nfcCheckIcu)->Name("NfcCheck/icu");
BENCHMARK(lowercaseOurs)->Name("Lowercase/ours");
BENCHMARK(lowercaseIcu)->Name("Lowercase/icu");

} // namespace
