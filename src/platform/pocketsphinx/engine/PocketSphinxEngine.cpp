#include "platform/pocketsphinx/engine/PocketSphinxEngine.h"

#include "platform/pocketsphinx/engine/SphinxSession.h"

#include <chrono>
#include <utility>

#include <fmt/format.h>

namespace querlin {

std::expected<void, std::string> PocketSphinxEngine::open(const Settings& settings) {
    const auto folder = settings.find("folder");
    if (folder == settings.end()) return std::unexpected("Es ist kein Modell angegeben.");
    folder_ = folder->second;
    pronunciations_.emplace(folder_ / "phonemap.tsv");
    auto prepared = preparedFor({});
    if (!prepared) return std::unexpected(std::move(prepared.error()));
    idle_ = std::move(*prepared);
    return {};
}

void PocketSphinxEngine::prepare(const std::vector<std::string>& words) {
    auto prepared = preparedFor(words);
    if (prepared) idle_ = std::move(*prepared);
}

std::expected<std::unique_ptr<EngineSession>, std::string>
PocketSphinxEngine::begin(const std::vector<std::string>& words) {
    auto prepared = preparedFor(words);
    if (!prepared) return std::unexpected(std::move(prepared.error()));
    auto giveBack = [this](Prepared used) { idle_ = std::move(used); };
    return std::make_unique<SphinxSession>(std::move(*prepared), std::move(giveBack));
}

std::expected<PocketSphinxEngine::Prepared, std::string>
PocketSphinxEngine::preparedFor(const std::vector<std::string>& words) {
    if (idle_ && idle_->words == words) return std::exchange(idle_, std::nullopt).value();
    idle_.reset();
    auto decoder = SphinxDecoder::open(folder_);
    if (!decoder) return std::unexpected(std::move(decoder.error()));
    if (!words.empty()) favour(**decoder, words);
    return Prepared{words, std::move(*decoder)};
}

void PocketSphinxEngine::favour(SphinxDecoder& decoder, const std::vector<std::string>& words) {
    const auto begin = std::chrono::steady_clock::now();
    const auto phrases = ContextModel::phrases(words);
    std::vector<std::string> unknown;
    for (const auto& word : ContextModel::wordsOf(phrases)) {
        if (!decoder.knows(word)) unknown.push_back(word);
    }
    if (!pronunciations_->learn(unknown))
        note_("espeak-ng antwortet nicht; Fachbegriffe ohne Aussprache bleiben unerkannt.");
    if (!decoder.favour(phrases, *pronunciations_)) note_("Die Fachbegriffe ließen sich nicht einmischen.");
    const auto span = std::chrono::steady_clock::now() - begin;
    note_(fmt::format("{} Fachbegriffe vorbereitet, davon {} Wörter neu, in {} ms.", phrases.size(),
                      unknown.size(), span / std::chrono::milliseconds(1)));
}

} // namespace querlin
