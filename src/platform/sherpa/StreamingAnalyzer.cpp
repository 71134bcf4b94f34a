#include "platform/sherpa/StreamingAnalyzer.h"

#include <atomic>
#include <utility>

namespace querlin {

namespace {

constexpr AudioFormat wantedFormat{.sampleRate = RecogniserProtocol::sampleRate, .channelCount = 1};
constexpr auto notPrepared = "Die Spracherkennung ist nicht vorbereitet.";

} // namespace

/// What the observer gets: blanks between the pieces, and its last call once.
class StreamingAnalyzer::Results {
public:
    explicit Results(SpeechAnalysisObserver observer) : observer_(std::move(observer)) {}

    void piece(const std::string& text, bool isFinal) {
        observer_.onResult({hasFinal_ && !text.empty() ? " " + text : text, isFinal});
        hasFinal_ = hasFinal_ || isFinal;
    }
    void end(std::expected<void, std::string> result) {
        if (!hasEnded_.exchange(true)) observer_.onEnd(std::move(result));
    }

private:
    SpeechAnalysisObserver observer_;
    bool hasFinal_ = false;
    std::atomic<bool> hasEnded_ = false;
};

StreamingAnalyzer::StreamingAnalyzer(std::shared_ptr<RecogniserProcess> process, std::string reason,
                                     std::shared_ptr<SerialQueue> ends, SpeechAnalysisObserver observer) :
    process_(std::move(process)),
    reason_(std::move(reason)),
    ends_(std::move(ends)),
    results_(std::make_shared<Results>(std::move(observer))) {}

std::expected<std::optional<AudioFormat>, std::string>
StreamingAnalyzer::prepare(const std::vector<std::string>& contextualStrings) {
    if (!process_) {
        endWithoutSession(std::unexpected(reason_));
        return std::unexpected(reason_);
    }
    const std::scoped_lock guard(lock_);
    if (isOver_ || session_) return std::unexpected(notPrepared);
    session_ = process_->begin(
        contextualStrings,
        {[results = results_](const std::string& text, bool isFinal) { results->piece(text, isFinal); },
         [results = results_](std::expected<void, std::string> result) { results->end(std::move(result)); }});
    return wantedFormat;
}

std::expected<void, std::string> StreamingAnalyzer::start() {
    if (session()) return {};
    endWithoutSession(std::unexpected(notPrepared));
    return std::unexpected(notPrepared);
}

void StreamingAnalyzer::analyze(std::vector<float> samples) {
    if (const auto running = session()) running->append(wantedFormat, std::move(samples));
}

void StreamingAnalyzer::finalizeAndFinishThroughEndOfInput() {
    if (const auto running = session()) {
        running->finish();
    } else {
        endWithoutSession(std::unexpected(notPrepared));
    }
}

void StreamingAnalyzer::cancelAndFinishNow() {
    if (const auto running = session()) {
        running->cancel();
    } else {
        endWithoutSession({});
    }
}

std::shared_ptr<RecogniserSession> StreamingAnalyzer::session() {
    const std::scoped_lock guard(lock_);
    return session_;
}

void StreamingAnalyzer::endWithoutSession(std::expected<void, std::string> result) {
    {
        const std::scoped_lock guard(lock_);
        if (session_ || std::exchange(isOver_, true)) return;
    }
    ends_->run(
        [results = results_, result = std::move(result)]() mutable { results->end(std::move(result)); });
}

} // namespace querlin
