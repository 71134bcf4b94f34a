#pragma once

#include "platform/sherpa/StreamingModels.h"

#include "platform/recogniser/RecogniserProcess.h"

#include "speech/RecognitionSession.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// Recognition by sherpa-onnx with a model that the user has installed: the first usable one by name that
/// serves the language. Folders are looked at again whenever something in them has changed. A model that the
/// helper couldn't load is left out until then; so `preload` at the program's start makes `isHere` true to
/// life. Any thread.
class StreamingEngine final : public SpeechEngine {
public:
    struct Setup {
        std::filesystem::path models; ///< the folder of all models
        std::vector<std::filesystem::path>
            libraries; ///< folders that may hold the library; the first that does
        MakeAudioConverter makeConverter;
        std::filesystem::path program = RecogniserProcess::defaultProgram();
        Duration longestSilence = std::chrono::seconds(12);
    };

    explicit StreamingEngine(Setup setup);
    ~StreamingEngine() override;

    /// Loads the first usable model, so that a session begins at once and `isHere` knows.
    void preload();
    /// All models and what they are good for, in the order of their names.
    std::vector<ModelReport> models();
    /// Whether the library is in one of its folders.
    bool hasLibrary() const { return library().has_value(); }

    bool isHere(const std::string& locale) override;
    std::expected<std::unique_ptr<RecognitionSession>, std::string>
    begin(const std::string& locale, std::vector<std::string> words, RecognitionObserver observer) override;

    /// Where the build has put the library, if it has.
    static std::filesystem::path libraryOfBuild();
    /// For tests and benchmarks: the process of the last session; null before.
    std::shared_ptr<RecogniserProcess> process();

private:
    struct Found;

    std::optional<std::filesystem::path> library() const;
    std::optional<RecogniserProtocol::OpenRequest> requestFor(const std::string& locale);
    /// The process with this model.
    std::shared_ptr<RecogniserProcess> processFor(const RecogniserProtocol::OpenRequest& request);

    Setup setup_;
    std::shared_ptr<Found> found_;
    std::mutex lock_;
    // Guarded by the lock
    RecogniserProtocol::OpenRequest openRequest_;
    std::shared_ptr<RecogniserProcess> process_; ///< of the model that was last asked for
};

} // namespace querlin
