// The whole text chain beside the same chain on ICU's regular expressions, the compilation of all its
// expressions, its growth, and inputs made to hurt it. `--check` only compares the outputs.

#include "Peer.h"
#include "Texts.h"

#include "cleanup/TextPipeline.h"
#include "foundation/Graphemes.h"
#include "foundation/Pattern.h"
#include "legal/LegalLookup.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include <benchmark/benchmark.h>
#include <unicode/brkiter.h>
#include <unicode/regex.h>

namespace {

using querlin::bench::dictationOf;

std::string ours(std::string_view text, bool appliesCommands, bool isCompact) {
    static querlin::PipelineRequest request = [] {
        querlin::PipelineRequest everyday;
        everyday.settings.textBlocks = querlin::TextBlock::builtIn();
        return everyday;
    }();
    static querlin::NoLaws none;
    request.settings.commandsEnabled = appliesCommands;
    request.style.compactText = isCompact;
    return querlin::TextPipeline::runWithoutModel(text, request, none).text;
}

/// Ends the program if the two chains differ anywhere: their times mean something only for the same work.
void compareOutputs() {
    auto texts = querlin::bench::hostileTexts(200);
    for (const std::size_t words : {1U, 50U, 500U, 5000U}) texts.push_back({"dictation", dictationOf(words)});
    for (const auto& [name, text] : texts) {
        for (const bool appliesCommands : {true, false}) {
            for (const bool isCompact : {true, false}) {
                if (ours(text, appliesCommands, isCompact) ==
                    icu_peer::runPipeline(text, appliesCommands, isCompact))
                    continue;
                std::fprintf(stderr, "The chains differ: %s\n", name.c_str());
                std::exit(EXIT_FAILURE);
            }
        }
    }
    std::printf("Both chains say the same for %zu texts.\n", texts.size());
}

void chainOurs(benchmark::State& state) {
    const auto text = dictationOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(ours(text, true, false));
    state.counters["per_word"] =
        benchmark::Counter(static_cast<double>(state.range(0)),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void chainIcu(benchmark::State& state, bool keepsMatchers) {
    icu_peer::keepMatchers(keepsMatchers);
    const auto text = dictationOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(icu_peer::runPipeline(text, true, false));
    state.counters["per_word"] =
        benchmark::Counter(static_cast<double>(state.range(0)),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void compileOurs(benchmark::State& state) {
    const auto expressions = icu_peer::compiledExpressions();
    for (auto _ : state) {
        for (const auto& [expression, ignoresCase] : expressions) {
            const querlin::Pattern pattern(expression, ignoresCase ? querlin::LetterCase::ignored
                                                                   : querlin::LetterCase::counts);
            benchmark::DoNotOptimize(&pattern);
        }
    }
    state.counters["expressions"] = static_cast<double>(expressions.size());
}

void compileIcu(benchmark::State& state) {
    const auto expressions = icu_peer::compiledExpressions();
    for (auto _ : state) {
        for (const auto& [expression, ignoresCase] : expressions) {
            UErrorCode status = U_ZERO_ERROR;
            const std::unique_ptr<icu::RegexPattern> pattern(icu::RegexPattern::compile(
                icu::UnicodeString::fromUTF8(expression),
                ignoresCase ? std::uint32_t{UREGEX_CASE_INSENSITIVE} : 0U, status));
            benchmark::DoNotOptimize(pattern.get());
        }
    }
    state.counters["expressions"] = static_cast<double>(expressions.size());
}

void graphemesOurs(benchmark::State& state) {
    const auto text = dictationOf(5000);
    for (auto _ : state) {
        for (const auto character : querlin::Graphemes(text)) benchmark::DoNotOptimize(character);
    }
}

void graphemesIcu(benchmark::State& state) {
    const auto text = dictationOf(5000);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    const std::unique_ptr<UText, decltype(&utext_close)> handle(
        utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status), &utext_close);
    for (auto _ : state) {
        iterator->setText(handle.get(), status);
        for (auto at = iterator->next(); at != icu::BreakIterator::DONE; at = iterator->next())
            benchmark::DoNotOptimize(at);
    }
}

void hostile(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(ours(text, true, false));
        benchmark::DoNotOptimize(ours(text, false, false));
        benchmark::DoNotOptimize(ours(text, true, true));
    }
}

void registerAll() {
    for (const std::int64_t words : {50, 500, 5000}) {
        benchmark::RegisterBenchmark("chain/ours", chainOurs)->Arg(words);
        benchmark::RegisterBenchmark("chain/icu_replaceAll", chainIcu, false)->Arg(words);
        benchmark::RegisterBenchmark("chain/icu_replaceAll_on_one_thread", chainIcu, true)->Arg(words);
    }
    benchmark::RegisterBenchmark("compile/ours", compileOurs);
    benchmark::RegisterBenchmark("compile/icu", compileIcu);
    benchmark::RegisterBenchmark("graphemes/ours", graphemesOurs);
    benchmark::RegisterBenchmark("graphemes/icu_break_iterator", graphemesIcu);
    for (const std::int64_t words : {10'000, 100'000}) {
        benchmark::RegisterBenchmark("growth/ours", chainOurs)->Arg(words)->Unit(benchmark::kMillisecond);
    }
    for (const std::size_t count : {10'000U, 100'000U}) {
        for (const auto& [name, text] : querlin::bench::hostileTexts(count)) {
            benchmark::RegisterBenchmark(("hostile/" + name + "/" + std::to_string(count)).c_str(),
                                         [text = text](benchmark::State& state) { hostile(state, text); })
                ->Unit(benchmark::kMillisecond);
        }
    }
}

} // namespace

int main(int count, char** arguments) {
    compareOutputs();
    if (count == 2 && std::string_view(arguments[1]) == "--check") return EXIT_SUCCESS;
    registerAll();
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
