#pragma once

#include "foundation/OneShot.h"
#include "foundation/Runtime.h"
#include "speech/AudioConverter.h"
#include "speech/SpeechAnalyzer.h"
#include "speech/StreamingTranscriber.h"

#include <memory>
#include <optional>

namespace querlin {

/// The streaming recogniser. The analysis starts while the user already speaks: until it has told the
/// format that it wants, the sound waits in copies, and goes to it in its order. Final pieces of text add
/// up, a volatile one stands behind them until the next piece comes.
class StreamingModelTranscriber final : public StreamingTranscriber {
public:
    /// The service outlives the transcriber.
    StreamingModelTranscriber(Runtime runtime, SpeechAnalysisService& service,
                              MakeAudioConverter makeConverter);
    ~StreamingModelTranscriber() override;

    /// Whether the service knows the language. Any thread; may take a moment.
    static bool isAvailable(SpeechAnalysisService& service, const std::string& locale);
    /// Puts the language's model in place beforehand; true if it is. May take minutes.
    static bool prepareAssets(SpeechAnalysisService& service, const std::string& locale);

    void setOnPartialResult(std::function<void(std::string)> onPartialResult) override;
    void setContextualStrings(std::vector<std::string> strings) override {
        contextualStrings_ = std::move(strings);
    }
    /// Never fails: what goes wrong at the start comes out of `finish` as an empty text.
    std::expected<void, TranscriptionError> begin(const std::string& locale, bool onDeviceOnly) override;
    void append(const AudioBuffer& buffer) override;
    Task<std::expected<std::string, TranscriptionError>> finish() override;
    void cancel() override;
    bool wasInterrupted() const override;

private:
    struct State;

    Runtime runtime_;
    SpeechAnalysisService& service_;
    std::vector<std::string> contextualStrings_;
    std::shared_ptr<State> state_; ///< shared with the service's callbacks, the start-up and the audio thread
    // While a recognition is under way
    std::optional<OneShot<bool>> setup_;            ///< the start-up is over
    std::optional<OneShot<std::string>> collector_; ///< the results are over; the whole text
};

} // namespace querlin
