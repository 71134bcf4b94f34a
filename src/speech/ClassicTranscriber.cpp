#include "speech/ClassicTranscriber.h"

#include "speech/Transcription.h"
#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr Duration longestWait = std::chrono::seconds(12);

} // namespace

ClassicTranscriber::ClassicTranscriber(Runtime runtime, SpeechEngine& engine) :
    runtime_(runtime),
    engine_(engine),
    transcription_(
        std::make_shared<Transcription>(runtime.mainQueue, Transcription::AfterFailure::WordsStand)) {}

ClassicTranscriber::~ClassicTranscriber() { transcription_->giveUp(); }

void ClassicTranscriber::setOnPartialResult(std::function<void(std::string)> onPartialResult) {
    transcription_->setOnPartialResult(std::move(onPartialResult));
}

std::expected<void, TranscriptionError> ClassicTranscriber::begin(const std::string& locale) {
    auto session = engine_.begin(locale, contextualStrings_, transcription_->observer());
    if (!session) {
        return std::unexpected(
            TranscriptionError{TranscriptionError::Kind::unavailable, std::move(session.error())});
    }
    if (!contextualStrings_.empty())
        DiagnosticsLog::note("speech", fmt::format("{} Fachbegriffe übergeben.", contextualStrings_.size()));
    transcription_->run(std::move(*session));
    return {};
}

void ClassicTranscriber::append(const AudioBuffer& buffer) {
    transcription_->listen(buffer);
    if (const auto session = transcription_->session()) session->append(buffer);
}

Task<std::expected<std::string, TranscriptionError>> ClassicTranscriber::finish() {
    const auto transcription = transcription_;
    const auto session = transcription->session();
    if (!session) {
        TranscriptionError error{TranscriptionError::Kind::failed, "Keine laufende Erkennung."};
        co_return std::unexpected(std::move(error));
    }
    const bool wasDecided = transcription->isDecided();
    if (!wasDecided) session->finish();
    auto giveUp = [weak = std::weak_ptr(transcription)] {
        if (const auto alive = weak.lock()) alive->standOnText();
    };
    const auto timeOut = runtime_.mainQueue.after(longestWait, std::move(giveUp));
    auto outcome = co_await transcription->decided();
    // A failure before the release is known by `wasInterrupted`.
    if (!outcome && wasDecided) outcome = std::string();
    if (outcome) transcription->letGo();
    co_return outcome;
}

void ClassicTranscriber::cancel() { transcription_->giveUp(); }

bool ClassicTranscriber::wasInterrupted() const { return transcription_->wasInterrupted(); }
bool ClassicTranscriber::hasHeardVoice() const { return transcription_->hasHeardVoice(); }

} // namespace querlin
