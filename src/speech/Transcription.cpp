#include "speech/Transcription.h"

#include "foundation/Trimming.h"

#include <utility>

namespace querlin {

void Transcription::setOnPartialResult(std::function<void(std::string)> onPartialResult) {
    const std::scoped_lock guard(lock_);
    onPartialResult_ = std::move(onPartialResult);
}

RecognitionObserver Transcription::observer() {
    return {[weak = weak_from_this()](std::string text, bool isFinal) {
                if (const auto alive = weak.lock()) alive->piece(std::move(text), isFinal);
            },
            [weak = weak_from_this()](const std::expected<void, std::string>& result) {
                if (const auto alive = weak.lock()) alive->end(result);
            }};
}

void Transcription::run(std::shared_ptr<RecognitionSession> session) {
    const std::scoped_lock guard(lock_);
    if (!isGivenUp_) session_.swap(session); // The other one goes when the lock is free again.
}

std::shared_ptr<RecognitionSession> Transcription::session() const {
    const std::scoped_lock guard(lock_);
    return session_;
}

void Transcription::listen(const AudioBuffer& buffer) {
    const std::scoped_lock guard(lock_);
    voice_.add(buffer);
}

bool Transcription::hasHeardVoice() const {
    const std::scoped_lock guard(lock_);
    return voice_.isHeard();
}

void Transcription::piece(std::string text, bool isFinal) {
    std::unique_lock guard(lock_);
    if (isFinal) {
        if (!finalText_.empty() && !text.empty()) finalText_ += ' ';
        finalText_ += text;
        volatileText_.clear();
    } else {
        volatileText_ = std::move(text);
    }
    auto whole = Transcription::text();
    const auto call = onPartialResult_;
    guard.unlock();
    if (!whole.empty() && call) call(std::move(whole));
}

/// With the lock held.
std::string Transcription::text() const {
    if (!voice_.isHeard()) return {};
    const bool isJoined = !finalText_.empty() && !volatileText_.empty();
    return std::string(trimWhitespaceAndNewlines(finalText_ + (isJoined ? " " : "") + volatileText_));
}

void Transcription::end(const std::expected<void, std::string>& result) {
    if (result) {
        standOnText();
    } else {
        fail(result.error());
    }
}

void Transcription::fail(const std::string& detail) {
    std::unique_lock guard(lock_);
    hasFailed_ = hasFailed_ || !isDecided_;
    auto words = text();
    guard.unlock();
    if (afterFailure_ == AfterFailure::Nothing) {
        decide(std::string());
    } else if (words.empty()) {
        decide(std::unexpected(TranscriptionError{TranscriptionError::Kind::failed, detail}));
    } else {
        decide(std::move(words));
    }
}

void Transcription::standOnText() {
    std::unique_lock guard(lock_);
    auto words = text();
    guard.unlock();
    decide(std::move(words));
}

void Transcription::giveUp() {
    {
        const std::scoped_lock guard(lock_);
        isGivenUp_ = true;
    }
    decide(std::string());
    letGo();
}

void Transcription::letGo() {
    std::unique_lock guard(lock_);
    const auto former = std::exchange(session_, nullptr);
    guard.unlock();
}

void Transcription::decide(Outcome outcome) {
    {
        const std::scoped_lock guard(lock_);
        if (std::exchange(isDecided_, true)) return;
    }
    decided_.sender().send(std::move(outcome));
}

bool Transcription::isDecided() const {
    const std::scoped_lock guard(lock_);
    return isDecided_;
}

/// Where nobody has spoken nothing is missing.
bool Transcription::wasInterrupted() const {
    const std::scoped_lock guard(lock_);
    return hasFailed_ && voice_.isHeard();
}

} // namespace querlin
