#pragma once

#include "platform/recogniser/RecogniserProcess.h"

#include "speech/RecognitionSession.h"

#include <filesystem>
#include <string>
#include <vector>

namespace querlin {

/// German recognition by PocketSphinx with a model that the program is delivered with. The first recognition
/// starts the helper, unless `preload` has; it is kept then, with the list of words that it was last given.
class ClassicEngine final : public SpeechEngine {
public:
    struct Setup {
        std::filesystem::path model; ///< its folder
        MakeAudioConverter makeConverter;
        std::filesystem::path program = RecogniserProcess::defaultProgram();
        Duration longestSilence = std::chrono::seconds(12);
    };

    explicit ClassicEngine(Setup setup);

    /// Gets ready for a recognition with these words, so that it begins at once.
    void preload(std::vector<std::string> words = {}) { process_.preload(std::move(words)); }

    bool isHere(const std::string& locale) override;
    std::expected<std::unique_ptr<RecognitionSession>, std::string>
    begin(const std::string& locale, std::vector<std::string> words, RecognitionObserver observer) override;

    /// For tests and benchmarks.
    const RecogniserProcess& process() const { return process_; }

private:
    std::filesystem::path model_;
    std::filesystem::path program_;
    RecogniserProcess process_;
};

} // namespace querlin
