#pragma once

#include "platform/sherpa/StreamingModels.h"

#include "platform/recogniser/RecogniserProcess.h"

#include "foundation/SerialQueue.h"
#include "speech/SpeechAnalyzer.h"

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// Recognition by sherpa-onnx with a model that the user has installed: the first usable one by name that
/// serves the language. Folders are looked at again whenever something in them has changed. A model that the
/// helper couldn't load is left out until then; so `preload` at the program's start makes `isHere` true to
/// life.
class StreamingService final : public SpeechAnalysisService {
public:
    struct Setup {
        std::filesystem::path models; ///< the folder of all models
        std::vector<std::filesystem::path>
            libraries; ///< folders that may hold the library; the first that does
        std::filesystem::path program = RecogniserProcess::defaultProgram();
        Duration longestSilence = std::chrono::seconds(12);
    };

    explicit StreamingService(Setup setup);
    ~StreamingService() override;

    /// Loads the first usable model, so that an analysis begins at once and `isHere` knows. Main thread.
    void preload();
    /// All models and what they are good for, in the order of their names. Any thread.
    std::vector<ModelReport> models();
    /// Whether the library is in one of its folders. Any thread.
    bool hasLibrary() const { return library().has_value(); }

    bool isHere() override;
    std::vector<std::string> supportedLocales() override;
    AssetStatus assetStatus(const std::string& locale) override;
    /// The user installs models.
    std::expected<void, std::string> downloadAndInstall(const std::string& locale) override;
    std::shared_ptr<SpeechAnalyzer> analyzer(const std::string& locale,
                                             SpeechAnalysisObserver observer) override;

    /// Where the build has put the library, if it has.
    static std::filesystem::path libraryOfBuild();
    /// For tests and benchmarks: the process of the last analysis; null before.
    RecogniserProcess* process() { return process_.get(); }

private:
    struct Found;

    std::optional<std::filesystem::path> library() const;
    std::optional<RecogniserProtocol::OpenRequest> requestFor(const std::string& locale);
    /// The process with this model. Main thread.
    std::shared_ptr<RecogniserProcess> processFor(const RecogniserProtocol::OpenRequest& request);

    Setup setup_;
    std::shared_ptr<Found> found_;
    std::shared_ptr<SerialQueue> ends_; ///< tells analyses that have no process of their end
    RecogniserProtocol::OpenRequest openRequest_;
    /// That of a former model goes with the last analysis in it.
    std::shared_ptr<RecogniserProcess> process_;
};

} // namespace querlin
