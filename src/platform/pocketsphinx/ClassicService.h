#pragma once

#include "platform/recogniser/RecogniserProcess.h"

#include "speech/SpeechRecognizer.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace querlin {

/// German recognition by PocketSphinx with a model that the program is delivered with. The first recognition
/// starts the helper, unless `preload` has; it is kept then, with the list of words that it was last given.
class ClassicService final : public SpeechRecognitionService {
public:
    struct Setup {
        std::filesystem::path model; ///< its folder
        MakeAudioConverter makeConverter;
        std::filesystem::path program = RecogniserProcess::defaultProgram();
        Duration longestSilence = std::chrono::seconds(12);
    };

    explicit ClassicService(Setup setup);
    ~ClassicService() override;

    /// Gets ready for a recognition with these words, so that it begins at once.
    void preload(std::vector<std::string> words = {});

    bool isAuthorized() override { return true; }
    /// For German of any country.
    std::shared_ptr<SpeechRecognizer> recognizer(const std::string& locale) override;

    /// For tests and benchmarks.
    RecogniserProcess& process() { return *process_; }

private:
    std::shared_ptr<SpeechRecognizer> recognizer_;
    std::shared_ptr<RecogniserProcess> process_;
};

} // namespace querlin
