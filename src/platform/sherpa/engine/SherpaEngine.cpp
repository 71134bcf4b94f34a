#include "platform/sherpa/engine/SherpaEngine.h"

#include "platform/sherpa/engine/SherpaSession.h"

#include <charconv>
#include <exception>

#include <fmt/format.h>

namespace querlin {

namespace {

/// Pauses after which a piece of text is final.
constexpr float pauseSeconds = 1.2F;
constexpr float silenceSeconds = 2.4F;
constexpr float longestPieceSeconds = 30;
/// How much a favoured word counts more than others: more than this, and others suffer.
constexpr float hotwordsScore = 1.5F;
constexpr std::size_t secondOfSilence = RecogniserProtocol::sampleRate;

constexpr auto isUnusable = "Das Modell lässt sich nicht laden.";

} // namespace

std::expected<void, std::string> SherpaEngine::open(const Settings& settings) {
    settings_ = settings;
    auto functions = Sherpa::load(settings_["library"]);
    if (!functions) return std::unexpected(std::move(functions.error()));
    functions_ = *functions;

    const auto path = [this](const char* setting) -> const char* {
        const auto found = settings_.find(setting);
        return found == settings_.end() ? nullptr : found->second.c_str();
    };
    const auto kind = settings_["kind"];
    const bool canFavour = settings_.contains("modelingUnit");
    if (canFavour) hotwords_ = Hotwords(settings_["tokens"]);
    Sherpa::Configuration configuration;
    auto& model = configuration.model;
    model.transducer = {path("encoder"), path("decoder"), path("joiner")};
    (kind == "nemo-ctc" ? model.nemoCtc : model.zipformerCtc) = path("model");
    model.tokens = path("tokens");
    model.threads = settings_["threads"] == "2" ? 2 : 1;
    model.modelingUnit = path("modelingUnit");
    model.bpeVocabulary = path("bpeVocab");
    configuration.decodingMethod = canFavour ? "modified_beam_search" : "greedy_search";
    configuration.endpointWithoutTextSeconds = silenceSeconds;
    configuration.endpointSeconds = pauseSeconds;
    configuration.longestUtteranceSeconds = longestPieceSeconds;
    configuration.hotwordsScore = hotwordsScore;
    try {
        recognizer_ = functions_.createOnlineRecognizer(&configuration);
        if (!recognizer_) return std::unexpected(isUnusable);
        // A model may load and still not run.
        const auto session = begin({});
        if (!session) return std::unexpected(session.error());
        (*session)->accept(std::vector<std::int16_t>(secondOfSilence), [](const auto&) {});
    } catch (const std::exception&) { // The library's, across its C interface.
        return std::unexpected(isUnusable);
    }
    return {};
}

std::expected<std::unique_ptr<EngineSession>, std::string>
SherpaEngine::begin(const std::vector<std::string>& words) {
    const auto hotwords = hotwords_.listOf(words);
    const auto* stream =
        hotwords.empty() ? nullptr : functions_.createOnlineStreamWithHotwords(recognizer_, hotwords.c_str());
    if (!stream) stream = functions_.createOnlineStream(recognizer_);
    if (!stream) return std::unexpected(isUnusable);
    double padding = 0;
    const auto& text = settings_["padding"];
    std::from_chars(text.data(), text.data() + text.size(), padding);
    return std::make_unique<SherpaSession>(functions_, recognizer_, stream, padding);
}

} // namespace querlin
