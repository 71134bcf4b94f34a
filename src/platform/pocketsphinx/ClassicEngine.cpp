#include "platform/pocketsphinx/ClassicEngine.h"

#include <algorithm>
#include <array>
#include <utility>

#include <fmt/format.h>
#include <unistd.h>

namespace querlin {

namespace fs = std::filesystem;

namespace {

constexpr std::array modelFiles = {
    "mdef",      "means",  "variances", "mixture_weights", "transition_matrices", "feat.params",
    "noisedict", "de.dic", "de.lm.bin", "decoder.options", "phonemap.tsv"};

/// German of any country.
bool isGerman(const std::string& locale) {
    return locale == "de" || locale.starts_with("de-") || locale.starts_with("de_");
}

} // namespace

ClassicEngine::ClassicEngine(Setup setup) :
    model_(std::move(setup.model)),
    program_(setup.program),
    process_({.program = std::move(setup.program),
              .model = {.engine = "pocketsphinx", .settings = {{"folder", model_.string()}}},
              .makeConverter = std::move(setup.makeConverter),
              .longestSilence = setup.longestSilence}) {}

bool ClassicEngine::isHere(const std::string& locale) {
    std::error_code failure;
    return (locale.empty() || isGerman(locale)) && ::access(program_.c_str(), X_OK) == 0 &&
           std::ranges::all_of(modelFiles,
                               [&](const char* file) { return fs::exists(model_ / file, failure); });
}

std::expected<std::unique_ptr<RecognitionSession>, std::string>
ClassicEngine::begin(const std::string& locale, std::vector<std::string> words,
                     RecognitionObserver observer) {
    if (!isGerman(locale))
        return std::unexpected(fmt::format("Für {} ist kein Erkenner installiert.", locale));
    if (!isHere(locale))
        return std::unexpected(fmt::format("Der Erkenner für {} ist gerade nicht bereit.", locale));
    return process_.begin(std::move(words), std::move(observer));
}

} // namespace querlin
