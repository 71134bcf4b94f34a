#pragma once

#include "platform/pocketsphinx/engine/SphinxDecoder.h"
#include "platform/recogniser/helper/RecognitionEngine.h"

#include <optional>

namespace querlin {

/// PocketSphinx. Settings: "folder", the model's.
///
/// A decoder that was prepared for a list of words is kept for the next session with the same list.
class PocketSphinxEngine final : public RecognitionEngine {
public:
    static constexpr std::string_view name = "pocketsphinx";

    explicit PocketSphinxEngine(std::function<void(std::string)> note) : note_(std::move(note)) {}

    std::expected<void, std::string> open(const Settings& settings) override;
    void prepare(const std::vector<std::string>& words) override;
    std::expected<std::unique_ptr<EngineSession>, std::string>
    begin(const std::vector<std::string>& words) override;

    struct Prepared {
        std::vector<std::string> words;
        std::unique_ptr<SphinxDecoder> decoder;
    };

private:
    std::expected<Prepared, std::string> preparedFor(const std::vector<std::string>& words);
    void favour(SphinxDecoder& decoder, const std::vector<std::string>& words);

    std::function<void(std::string)> note_;
    std::filesystem::path folder_;
    std::optional<Pronunciations> pronunciations_;
    std::optional<Prepared> idle_;
};

} // namespace querlin
