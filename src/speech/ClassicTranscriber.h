#pragma once

#include "foundation/Runtime.h"
#include "speech/RecognitionSession.h"
#include "speech/StreamingTranscriber.h"

#include <memory>

namespace querlin {

class Transcription;

/// The classic recogniser. It has its time: what isn't decided by its last result, its error or `cancel` is
/// decided twelve seconds after `finish`, by the text there is. Words before an error stand.
class ClassicTranscriber final : public StreamingTranscriber {
public:
    /// The engine outlives the transcriber.
    ClassicTranscriber(Runtime runtime, SpeechEngine& engine);
    ~ClassicTranscriber() override;

    void setOnPartialResult(std::function<void(std::string)> onPartialResult) override;
    void setContextualStrings(std::vector<std::string> strings) override {
        contextualStrings_ = std::move(strings);
    }
    std::expected<void, TranscriptionError> begin(const std::string& locale) override;
    void append(const AudioBuffer& buffer) override;
    Task<std::expected<std::string, TranscriptionError>> finish() override;
    void cancel() override;
    bool wasInterrupted() const override;
    bool hasHeardVoice() const override;

private:
    Runtime runtime_;
    SpeechEngine& engine_;
    std::vector<std::string> contextualStrings_;
    std::shared_ptr<Transcription> transcription_;
};

} // namespace querlin
