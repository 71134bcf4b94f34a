#pragma once

#include "foundation/OneShot.h"
#include "foundation/Runtime.h"
#include "speech/RecognitionSession.h"
#include "speech/StreamingTranscriber.h"

#include <memory>
#include <optional>

namespace querlin {

class Transcription;

/// The streaming recogniser. Its session begins in the background while the user already speaks, because the
/// model has to be found first: until then the sound waits in copies, and goes to the session in its order.
class StreamingModelTranscriber final : public StreamingTranscriber {
public:
    /// The engine outlives the transcriber.
    StreamingModelTranscriber(Runtime runtime, SpeechEngine& engine);
    ~StreamingModelTranscriber() override;

    void setOnPartialResult(std::function<void(std::string)> onPartialResult) override;
    void setContextualStrings(std::vector<std::string> strings) override {
        contextualStrings_ = std::move(strings);
    }
    /// Never fails: what goes wrong at the start or later comes out of `finish` as an empty text.
    std::expected<void, TranscriptionError> begin(const std::string& locale) override;
    void append(const AudioBuffer& buffer) override;
    Task<std::expected<std::string, TranscriptionError>> finish() override;
    void cancel() override;
    bool wasInterrupted() const override;
    bool hasHeardVoice() const override;

private:
    struct StartUp;

    Runtime runtime_;
    SpeechEngine& engine_;
    std::vector<std::string> contextualStrings_;
    std::shared_ptr<Transcription> transcription_;
    std::shared_ptr<StartUp> startUp_;     ///< shared with the background and the audio thread
    std::optional<OneShot<bool>> started_; ///< the start-up is over; unset before `begin`
};

} // namespace querlin
