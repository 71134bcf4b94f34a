#include "speech/ClassicTranscriber.h"

#include "foundation/OneShot.h"
#include "foundation/Trimming.h"
#include "state/DiagnosticsLog.h"

#include <mutex>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr Duration longestWait = std::chrono::seconds(12);

using Outcome = std::expected<std::string, TranscriptionError>;

std::unexpected<TranscriptionError> failure(TranscriptionError::Kind kind, std::string detail) {
    return std::unexpected(TranscriptionError{kind, std::move(detail)});
}

} // namespace

struct ClassicTranscriber::State {
    explicit State(MainQueue& mainQueue) : queue(mainQueue) {}

    MainQueue& queue;
    std::mutex lock;
    // Guarded by the lock, which is never held during a call.
    std::function<void(std::string)> onPartialResult;
    std::shared_ptr<SpeechRecognitionTask> task; ///< null: no recognition is running
    std::string latestTranscript;
    bool hasResumed = false;
    bool wasInterrupted = false;
    std::optional<OneShot<Outcome>::Sender> continuation; ///< the waiting `finish`

    std::shared_ptr<SpeechRecognitionTask> running() {
        const std::scoped_lock guard(lock);
        return task;
    }
    bool waitWith(const OneShot<Outcome>::Sender& waiter);
    void resume(Outcome outcome);
    void result(SpeechRecognitionResult result);
    void failed(std::string detail);
    void standOnLatest();
    void tellPartialResult(std::string text);
};

/// True if the outcome is still open; else the waiter has it already.
bool ClassicTranscriber::State::waitWith(const OneShot<Outcome>::Sender& waiter) {
    const std::scoped_lock guard(lock);
    if (hasResumed) {
        waiter.send(latestTranscript);
        return false;
    }
    continuation = waiter;
    return true;
}

/// Decides the outcome, unless it is decided already.
void ClassicTranscriber::State::resume(Outcome outcome) {
    std::unique_lock guard(lock);
    if (std::exchange(hasResumed, true)) return;
    const auto waiter = std::exchange(continuation, std::nullopt);
    guard.unlock();
    if (waiter) waiter->send(std::move(outcome));
}

void ClassicTranscriber::State::result(SpeechRecognitionResult result) {
    {
        const std::scoped_lock guard(lock);
        latestTranscript = result.text;
    }
    if (result.isFinal) resume(std::move(result.text));
}

/// An error behind words: the words stand.
void ClassicTranscriber::State::failed(std::string detail) {
    std::string text;
    {
        const std::scoped_lock guard(lock);
        wasInterrupted = wasInterrupted || !hasResumed;
        text = latestTranscript;
    }
    if (text.empty()) {
        resume(failure(TranscriptionError::Kind::failed, std::move(detail)));
    } else {
        resume(std::move(text));
    }
}

/// The service has not said its last word in time.
void ClassicTranscriber::State::standOnLatest() {
    std::string text;
    {
        const std::scoped_lock guard(lock);
        text = latestTranscript;
    }
    resume(std::move(text));
}

void ClassicTranscriber::State::tellPartialResult(std::string text) {
    std::unique_lock guard(lock);
    const auto call = onPartialResult;
    guard.unlock();
    if (call) call(std::move(text));
}

ClassicTranscriber::ClassicTranscriber(Runtime runtime, SpeechRecognitionService& service) :
    runtime_(runtime), service_(service), state_(std::make_shared<State>(runtime.mainQueue)) {}

ClassicTranscriber::~ClassicTranscriber() { letGo(); }

void ClassicTranscriber::setOnPartialResult(std::function<void(std::string)> onPartialResult) {
    const std::scoped_lock guard(state_->lock);
    state_->onPartialResult = std::move(onPartialResult);
}

std::expected<void, TranscriptionError> ClassicTranscriber::begin(const std::string& locale,
                                                                  bool onDeviceOnly) {
    using Kind = TranscriptionError::Kind;
    if (!service_.isAuthorized()) return failure(Kind::notAuthorized, {});
    auto recognizer = service_.recognizer(locale);
    if (!recognizer) {
        return failure(Kind::unavailable, fmt::format("Für {} ist kein Erkenner installiert.", locale));
    }
    if (!recognizer->isAvailable()) {
        return failure(Kind::unavailable,
                       fmt::format("Der Erkenner für {} ist gerade nicht bereit.", locale));
    }
    SpeechRecognitionRequest request;
    request.requiresOnDevice = onDeviceOnly && recognizer->supportsOnDeviceRecognition();
    if (!contextualStrings_.empty()) {
        request.contextualStrings = contextualStrings_;
        DiagnosticsLog::note("speech", fmt::format("{} Fachbegriffe übergeben.", contextualStrings_.size()));
    }
    {
        const std::scoped_lock guard(state_->lock);
        state_->latestTranscript.clear();
        state_->hasResumed = false;
        state_->wasInterrupted = false;
    }
    auto handler = [weak = std::weak_ptr(state_)](std::optional<SpeechRecognitionResult> result,
                                                  std::optional<std::string> error) {
        const auto state = weak.lock();
        if (!state) return;
        if (result && !result->isFinal) {
            state->queue.post([weak, text = result->text] {
                if (const auto alive = weak.lock()) alive->tellPartialResult(text);
            });
        }
        if (result) state->result(std::move(*result));
        if (error) state->failed(std::move(*error));
    };
    std::shared_ptr<SpeechRecognitionTask> task = recognizer->start(std::move(request), std::move(handler));
    recognizer_ = std::move(recognizer);
    const std::scoped_lock guard(state_->lock);
    state_->task = std::move(task);
    return {};
}

void ClassicTranscriber::append(const AudioBuffer& buffer) {
    if (const auto task = state_->running()) task->append(buffer);
}

Task<std::expected<std::string, TranscriptionError>> ClassicTranscriber::finish() {
    const auto state = state_;
    const auto task = state->running();
    if (!task) {
        TranscriptionError error{TranscriptionError::Kind::failed, "Keine laufende Erkennung."};
        co_return std::unexpected(std::move(error));
    }
    const OneShot<Outcome> decided(runtime_.mainQueue);
    Registration timeOut;
    if (state->waitWith(decided.sender())) {
        task->endAudio();
        auto giveUp = [weak = std::weak_ptr(state)] {
            if (const auto alive = weak.lock()) alive->standOnLatest();
        };
        timeOut = runtime_.mainQueue.after(longestWait, std::move(giveUp));
    }
    const Outcome outcome = co_await decided;
    if (!outcome) co_return std::unexpected(outcome.error());
    letGo();
    co_return std::string(trimWhitespaceAndNewlines(*outcome));
}

void ClassicTranscriber::cancel() {
    if (const auto task = state_->running()) {
        task->cancel();
        task->endAudio();
    }
    state_->resume(std::string());
    letGo();
}

bool ClassicTranscriber::wasInterrupted() const {
    const std::scoped_lock guard(state_->lock);
    return state_->wasInterrupted;
}

void ClassicTranscriber::letGo() {
    recognizer_.reset();
    std::unique_lock guard(state_->lock);
    const auto task = std::exchange(state_->task, nullptr);
    guard.unlock();
}

} // namespace querlin
