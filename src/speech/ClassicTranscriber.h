#pragma once

#include "foundation/Runtime.h"
#include "speech/SpeechRecognizer.h"
#include "speech/StreamingTranscriber.h"

#include <memory>

namespace querlin {

/// The classic recogniser. The outcome of a recognition is decided exactly once: by the service's last
/// result, its error, `cancel`, or twelve seconds after `finish` by the text there is.
class ClassicTranscriber final : public StreamingTranscriber {
public:
    /// Both outlive the transcriber.
    ClassicTranscriber(Runtime runtime, SpeechRecognitionService& service);
    ~ClassicTranscriber() override;

    void setOnPartialResult(std::function<void(std::string)> onPartialResult) override;
    void setContextualStrings(std::vector<std::string> strings) override {
        contextualStrings_ = std::move(strings);
    }
    std::expected<void, TranscriptionError> begin(const std::string& locale, bool onDeviceOnly) override;
    void append(const AudioBuffer& buffer) override;
    Task<std::expected<std::string, TranscriptionError>> finish() override;
    void cancel() override;
    bool wasInterrupted() const override;

private:
    struct State;

    void letGo();

    Runtime runtime_;
    SpeechRecognitionService& service_;
    std::vector<std::string> contextualStrings_;
    std::shared_ptr<SpeechRecognizer> recognizer_;
    std::shared_ptr<State> state_; ///< shared with the service's callbacks and the audio thread
};

} // namespace querlin
