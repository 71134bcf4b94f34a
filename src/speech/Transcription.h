#pragma once

#include "foundation/OneShot.h"
#include "speech/RecognitionSession.h"
#include "speech/StreamingTranscriber.h"
#include "speech/VoiceActivity.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace querlin {

/// What both transcribers share: one session of an engine, whose pieces become one text. The outcome is
/// decided exactly once. Where nobody has spoken there is no text, whatever the engine believes to have
/// heard. Shared with the engine's callbacks and the audio thread; any thread.
class Transcription : public std::enable_shared_from_this<Transcription> {
public:
    using Outcome = std::expected<std::string, TranscriptionError>;
    /// What a failure leaves of the words before it.
    enum class AfterFailure : std::uint8_t { WordsStand, Nothing };

    Transcription(MainQueue& queue, AfterFailure afterFailure) :
        afterFailure_(afterFailure), decided_(queue) {}

    void setOnPartialResult(std::function<void(std::string)> onPartialResult);
    /// For the session; it keeps nothing alive.
    RecognitionObserver observer();
    /// The session that runs from now on; cancelled at once if this has been given up meanwhile.
    void run(std::shared_ptr<RecognitionSession> session);
    /// Null if none runs.
    std::shared_ptr<RecognitionSession> session() const;

    /// Listens for a voice in the sound of the dictation. Audio thread.
    void listen(const AudioBuffer& buffer);
    bool hasHeardVoice() const;

    /// The engine can't go on.
    void fail(const std::string& detail);
    /// Decides for the text there is.
    void standOnText();
    /// Decides for no text, and lets the session go.
    void giveUp();
    void letGo();

    bool isDecided() const;
    /// To be awaited once, on the main thread.
    const OneShot<Outcome>& decided() const { return decided_; }
    bool wasInterrupted() const;

private:
    void piece(std::string text, bool isFinal);
    void end(const std::expected<void, std::string>& result);
    std::string text() const;
    void decide(Outcome outcome);

    const AfterFailure afterFailure_;
    OneShot<Outcome> decided_;
    mutable std::mutex lock_;
    // Guarded by the lock, which is never held during a call.
    std::function<void(std::string)> onPartialResult_;
    std::shared_ptr<RecognitionSession> session_;
    VoiceActivity voice_;
    std::string finalText_;
    std::string volatileText_;
    bool isDecided_ = false;
    bool isGivenUp_ = false;
    bool hasFailed_ = false;
};

} // namespace querlin
