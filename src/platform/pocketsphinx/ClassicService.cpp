#include "platform/pocketsphinx/ClassicService.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <utility>

#include <unistd.h>

namespace querlin {

namespace fs = std::filesystem;

namespace {

constexpr std::array modelFiles = {
    "mdef",      "means",  "variances", "mixture_weights", "transition_matrices", "feat.params",
    "noisedict", "de.dic", "de.lm.bin", "decoder.options", "phonemap.tsv"};

/// Puts the pieces together; on the process's thread.
class Answers {
public:
    explicit Answers(SpeechRecognitionHandler handler) : handler_(std::move(handler)) {}

    void piece(const std::string& text, bool isFinal) {
        auto whole = finalText_.empty() || text.empty() ? finalText_ + text : finalText_ + " " + text;
        if (isFinal) finalText_ = whole;
        handler_(SpeechRecognitionResult{std::move(whole), false}, std::nullopt);
    }
    void end(const std::expected<void, std::string>& result) {
        if (result) {
            handler_(SpeechRecognitionResult{finalText_, true}, std::nullopt);
        } else {
            handler_(std::nullopt, result.error());
        }
    }

private:
    SpeechRecognitionHandler handler_;
    std::string finalText_;
};

class ClassicTask final : public SpeechRecognitionTask {
public:
    ClassicTask(RecogniserProcess& process, SpeechRecognitionRequest request,
                SpeechRecognitionHandler handler) {
        const auto answers = std::make_shared<Answers>(std::move(handler));
        session_ = process.begin(
            std::move(request.contextualStrings),
            {[answers](const std::string& text, bool isFinal) { answers->piece(text, isFinal); },
             [answers, isCancelled = isCancelled_](const std::expected<void, std::string>& result) {
                 if (!*isCancelled) answers->end(result);
             }});
    }
    ~ClassicTask() override { *isCancelled_ = true; }

    void append(const AudioBuffer& buffer) override {
        session_->append(buffer.format, {buffer.samples.begin(), buffer.samples.end()});
    }
    void endAudio() override { session_->finish(); }
    void cancel() override {
        *isCancelled_ = true;
        session_->cancel();
    }

private:
    std::shared_ptr<std::atomic<bool>> isCancelled_ = std::make_shared<std::atomic<bool>>(false);
    std::unique_ptr<RecogniserSession> session_;
};

class ClassicRecognizer final : public SpeechRecognizer {
public:
    ClassicRecognizer(std::weak_ptr<RecogniserProcess> process, fs::path model, fs::path program) :
        process_(std::move(process)), model_(std::move(model)), program_(std::move(program)) {}

    bool isAvailable() override {
        std::error_code failure;
        return !process_.expired() && ::access(program_.c_str(), X_OK) == 0 &&
               std::ranges::all_of(modelFiles,
                                   [&](const char* file) { return fs::exists(model_ / file, failure); });
    }
    bool supportsOnDeviceRecognition() override { return true; }
    std::unique_ptr<SpeechRecognitionTask> start(SpeechRecognitionRequest request,
                                                 SpeechRecognitionHandler handler) override {
        const auto process = process_.lock();
        return process ? std::make_unique<ClassicTask>(*process, std::move(request), std::move(handler))
                       : nullptr;
    }

private:
    std::weak_ptr<RecogniserProcess> process_;
    fs::path model_;
    fs::path program_;
};

} // namespace

ClassicService::ClassicService(Setup setup) {
    process_ = std::make_shared<RecogniserProcess>(RecogniserProcess::Setup{
        .program = setup.program,
        .model = {.engine = "pocketsphinx", .settings = {{"folder", setup.model.string()}}},
        .makeConverter = std::move(setup.makeConverter),
        .longestSilence = setup.longestSilence,
    });
    recognizer_ =
        std::make_shared<ClassicRecognizer>(process_, std::move(setup.model), std::move(setup.program));
}
ClassicService::~ClassicService() = default;

void ClassicService::preload(std::vector<std::string> words) { process_->preload(std::move(words)); }

std::shared_ptr<SpeechRecognizer> ClassicService::recognizer(const std::string& locale) {
    const bool isGerman = locale == "de" || locale.starts_with("de-") || locale.starts_with("de_");
    return isGerman ? recognizer_ : nullptr;
}

} // namespace querlin
