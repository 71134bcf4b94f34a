#include "platform/sherpa/StreamingModels.h"

#include "platform/sherpa/ModelFiles.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace querlin {

namespace fs = std::filesystem;

namespace {

using ModelFiles::Wish;
using Properties = OnnxMetadata::Properties;
template<class Value>
using Result = std::expected<Value, std::string>;

constexpr std::string_view wholeFiles =
    "Das Modell verarbeitet nur ganze Aufnahmen; es ist kein Streaming-Modell.";

/// Encoders of transducers that look back on a fixed number of tokens: words can be favoured with them.
constexpr std::array<std::string_view, 5> statelessTypes = {"conformer", "ebranchformer", "lstm", "zipformer",
                                                            "zipformer2"};
constexpr std::array<std::string_view, 4> modelingUnits = {"bpe", "bbpe", "cjkchar", "cjkchar+bpe"};

/// From here on a second thread saves more time than it costs.
constexpr std::uintmax_t bigModelInBytes = 50U << 20U;

constexpr double framesPerSecond = 100;
/// Silence that lets the last word come out, at least.
constexpr double shortestPaddingSeconds = 0.5;

struct Parts {
    std::optional<fs::path> encoder;
    std::optional<fs::path> decoder;
    std::optional<fs::path> joiner;
    std::optional<fs::path> single;
};

Parts partsOf(const fs::path& folder) {
    Parts parts;
    parts.encoder = ModelFiles::onnx(folder, "encoder", Wish::quantised);
    parts.decoder =
        ModelFiles::onnx(folder, "decoder", Wish::exact); // Small, and its rounding errors add up.
    parts.joiner = ModelFiles::onnx(folder, "joiner", Wish::quantised);
    if (parts.encoder || parts.decoder || parts.joiner) return parts;
    for (const auto* part : {"model", "ctc"}) {
        if (!parts.single) parts.single = ModelFiles::onnx(folder, part, Wish::quantised);
    }
    return parts;
}

bool isOneOf(std::string_view text, auto& rows) { return std::ranges::find(rows, text) != std::end(rows); }

bool isStreaming(const Properties& properties) {
    return ModelFiles::number(properties, "decode_chunk_len") && ModelFiles::number(properties, "T");
}
/// Of the NeMo toolkit.
bool isCached(const Properties& properties) {
    return ModelFiles::number(properties, "window_size") && ModelFiles::number(properties, "chunk_shift") &&
           ModelFiles::number(properties, "cache_last_channel_dim1");
}

/// How a model's kind is called between us and the engine; an error if it can't be used.
Result<std::string> kindOf(const Parts& parts, const Properties& properties) {
    const auto type = properties.find("model_type");
    if (type == properties.end()) return std::unexpected("Das Modell nennt seine Bauart nicht (model_type).");
    const bool isTransducer = parts.encoder.has_value();
    if (isCached(properties)) return isTransducer ? "nemo-transducer" : "nemo-ctc";
    if (!isStreaming(properties)) return std::unexpected(std::string(wholeFiles));
    if (isTransducer && isOneOf(type->second, statelessTypes)) return "transducer";
    if (!isTransducer && type->second == "zipformer2") return "zipformer-ctc";
    return std::unexpected(fmt::format("Die Bauart „{}“ wird nicht unterstützt.", type->second));
}

Result<Parts> completePartsOf(const fs::path& folder) {
    auto parts = partsOf(folder);
    if (parts.single) return parts;
    if (!parts.encoder && !parts.decoder && !parts.joiner)
        return std::unexpected("Der Ordner enthält kein Sprachmodell (…onnx).");
    if (parts.encoder && parts.decoder && !parts.joiner) {
        // Whisper and its like have no joiner; a transducer's encoder says what it is.
        const auto properties = ModelFiles::properties(*parts.encoder);
        if (properties && !isStreaming(*properties) && !isCached(*properties))
            return std::unexpected(std::string(wholeFiles));
    }
    if (!parts.encoder) return std::unexpected("Es fehlt encoder….onnx.");
    if (!parts.decoder) return std::unexpected("Es fehlt decoder….onnx.");
    if (!parts.joiner) return std::unexpected("Es fehlt joiner….onnx.");
    return parts;
}

/// The NeMo toolkit doesn't count the blank.
std::optional<std::string> disagreement(std::int64_t tokens, const Properties& properties) {
    const auto expected = ModelFiles::number(properties, "vocab_size");
    if (!expected || *expected == tokens || (isCached(properties) && *expected + 1 == tokens))
        return std::nullopt;
    return fmt::format("tokens.txt gehört nicht zum Modell: {} Zeichen statt {}.", tokens, *expected);
}

std::string paddingOf(const Properties& properties) {
    const auto frames = static_cast<double>(ModelFiles::number(properties, "T").value_or(0));
    return fmt::format("{:.2f}", std::max(shortestPaddingSeconds, (frames + 10) / framesPerSecond));
}

std::string threadsFor(const fs::path& file) {
    std::error_code failure;
    const auto size = fs::file_size(file, failure);
    return !failure && size > bigModelInBytes ? "2" : "1";
}

Result<StreamingModel> modelIn(const fs::path& folder) {
    const auto parts = completePartsOf(folder);
    if (!parts) return std::unexpected(parts.error());
    const bool isTransducer = parts->encoder.has_value();
    const auto& main = isTransducer ? *parts->encoder : *parts->single;
    const auto properties = ModelFiles::properties(main);
    if (!properties) return std::unexpected(properties.error());
    const auto kind = kindOf(*parts, *properties);
    if (!kind) return std::unexpected(kind.error());
    const auto tokens = ModelFiles::tokenCount(folder / "tokens.txt");
    if (!tokens) return std::unexpected(tokens.error());
    const auto description = ModelFiles::description(folder / "MODELL.json");
    if (!description) return std::unexpected(description.error());

    StreamingModel model{.language = description->language,
                         .request = {.engine = "sherpa-onnx", .settings = {}}};
    auto& settings = model.request.settings;
    settings = {{"kind", *kind},
                {"tokens", folder / "tokens.txt"},
                {"padding", paddingOf(*properties)},
                {"threads", threadsFor(main)}};
    auto whereVocabularyIs = *properties;
    if (isTransducer) {
        for (const auto& part : {*parts->decoder, *parts->joiner}) {
            auto found = ModelFiles::properties(part);
            if (!found) return std::unexpected(found.error());
            if (part == *parts->decoder) whereVocabularyIs = std::move(*found);
        }
        settings["encoder"] = *parts->encoder;
        settings["decoder"] = *parts->decoder;
        settings["joiner"] = *parts->joiner;
    } else {
        settings["model"] = *parts->single;
    }
    if (*kind == "transducer" && !ModelFiles::number(whereVocabularyIs, "context_size"))
        return std::unexpected("Der Decoder nennt seine Bauart nicht (context_size).");
    if (const auto fault = disagreement(*tokens, whereVocabularyIs)) return std::unexpected(*fault);

    std::error_code failure;
    const auto vocabulary = folder / "bpe.vocab";
    const auto& unit = description->modelingUnit;
    const bool hasPieces = !unit.ends_with("bpe") || fs::exists(vocabulary, failure);
    if (*kind == "transducer" && isOneOf(unit, modelingUnits) && hasPieces) {
        settings["modelingUnit"] = unit;
        if (unit.ends_with("bpe")) settings["bpeVocab"] = vocabulary;
    }
    return model;
}

std::string_view primaryLanguage(std::string_view locale) {
    return locale.substr(0, locale.find_first_of("-_"));
}

} // namespace

bool StreamingModel::serves(const std::string& locale) const {
    return primaryLanguage(locale) == primaryLanguage(language);
}

ModelReport StreamingModels::inspect(const fs::path& folder) {
    return {folder.filename().string(), folder, modelIn(folder)};
}

std::vector<ModelReport> StreamingModels::inspectAll(const fs::path& folder) {
    std::vector<fs::path> folders;
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(folder, failure)) {
        if (entry.is_directory(failure) && !entry.path().filename().string().starts_with('.'))
            folders.push_back(entry.path());
    }
    std::ranges::sort(folders);
    std::vector<ModelReport> reports;
    reports.reserve(folders.size());
    for (const auto& each : folders) reports.push_back(inspect(each));
    return reports;
}

} // namespace querlin
