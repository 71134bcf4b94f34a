#pragma once

#include "platform/pocketsphinx/engine/ContextModel.h"
#include "platform/pocketsphinx/engine/Pronunciations.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// One decoder of PocketSphinx with a model of its own in memory. Between `beginUtterance` and `endUtterance`
/// it takes sound.
class SphinxDecoder {
public:
    /// The files that make a model; `decoder.options` has a row for each option, "name value".
    static constexpr std::string_view languageModelFile = "de.lm.bin";
    static constexpr std::string_view dictionaryFile = "de.dic";
    static constexpr std::string_view optionsFile = "decoder.options";

    /// The error is a German text.
    static std::expected<std::unique_ptr<SphinxDecoder>, std::string>
    open(const std::filesystem::path& folder);
    ~SphinxDecoder();
    SphinxDecoder(const SphinxDecoder&) = delete;
    SphinxDecoder& operator=(const SphinxDecoder&) = delete;

    bool knows(const std::string& word) const;
    /// Adds the words that it doesn't know, where they have a pronunciation, and mixes the phrases into its
    /// language model. Between utterances, once. False if that failed; then it works without them.
    bool favour(const std::vector<ContextModel::Phrase>& phrases, const Pronunciations& pronunciations);

    /// Another speaker, another room.
    void beginStream();
    void beginUtterance();
    void process(std::span<const std::int16_t> samples);
    /// Whether the last sound was speech, or came less than half a second after some.
    bool isHearingSpeech() const;
    /// The text so far.
    std::string text() const;
    void endUtterance();

private:
    struct Handle;
    explicit SphinxDecoder(std::filesystem::path folder, std::unique_ptr<Handle> handle);
    bool mixIn(std::string_view contextModel);

    std::filesystem::path folder_;
    std::unique_ptr<Handle> handle_;
};

} // namespace querlin
