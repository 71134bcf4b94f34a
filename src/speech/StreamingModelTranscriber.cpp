#include "speech/StreamingModelTranscriber.h"

#include "speech/Transcription.h"

#include <mutex>
#include <utility>

namespace querlin {

/// The sound from the beginning until the session takes it directly.
struct StreamingModelTranscriber::StartUp {
    struct Copy {
        AudioFormat format;
        std::vector<float> samples;
    };

    std::mutex lock;
    std::vector<Copy> waiting;
    bool isOver = false;

    /// Keeps a buffer; false once sound goes the direct way.
    bool keep(const AudioBuffer& buffer);
    void passOn(RecognitionSession& session);
    void drop();
};

bool StreamingModelTranscriber::StartUp::keep(const AudioBuffer& buffer) {
    const std::scoped_lock guard(lock);
    if (isOver) return false;
    waiting.push_back({buffer.format, {buffer.samples.begin(), buffer.samples.end()}});
    return true;
}

/// In the order in which it was said: nothing overtakes what waits.
void StreamingModelTranscriber::StartUp::passOn(RecognitionSession& session) {
    for (;;) {
        std::vector<Copy> next;
        {
            const std::scoped_lock guard(lock);
            next.swap(waiting);
            isOver = next.empty();
            if (isOver) return;
        }
        for (const auto& copy : next) session.append({copy.format, copy.samples});
    }
}

void StreamingModelTranscriber::StartUp::drop() {
    std::vector<Copy> unused;
    const std::scoped_lock guard(lock);
    unused.swap(waiting);
    isOver = true;
}

StreamingModelTranscriber::StreamingModelTranscriber(Runtime runtime, SpeechEngine& engine) :
    runtime_(runtime),
    engine_(engine),
    transcription_(std::make_shared<Transcription>(runtime.mainQueue, Transcription::AfterFailure::Nothing)),
    startUp_(std::make_shared<StartUp>()) {}

StreamingModelTranscriber::~StreamingModelTranscriber() { cancel(); }

void StreamingModelTranscriber::setOnPartialResult(std::function<void(std::string)> onPartialResult) {
    transcription_->setOnPartialResult(std::move(onPartialResult));
}

std::expected<void, TranscriptionError> StreamingModelTranscriber::begin(const std::string& locale) {
    started_.emplace(runtime_.mainQueue);
    runtime_.background.run([transcription = std::weak_ptr(transcription_), startUp = startUp_,
                             &engine = engine_, locale, words = contextualStrings_,
                             over = started_->sender()]() mutable {
        if (const auto alive = transcription.lock(); alive && !alive->isDecided()) {
            auto begun = engine.begin(locale, std::move(words), alive->observer());
            if (begun) {
                const std::shared_ptr<RecognitionSession> session = std::move(*begun);
                alive->run(session);
                startUp->passOn(*session);
            } else {
                startUp->drop();
                alive->fail(begun.error());
            }
        }
        over.send(true);
    });
    return {};
}

void StreamingModelTranscriber::append(const AudioBuffer& buffer) {
    transcription_->listen(buffer);
    if (startUp_->keep(buffer)) return;
    if (const auto session = transcription_->session()) session->append(buffer);
}

Task<std::expected<std::string, TranscriptionError>> StreamingModelTranscriber::finish() {
    const auto transcription = transcription_;
    if (!started_) co_return std::string();
    co_await *started_;
    if (const auto session = transcription->session()) session->finish();
    auto outcome = co_await transcription->decided();
    transcription->letGo();
    co_return outcome;
}

void StreamingModelTranscriber::cancel() {
    transcription_->giveUp();
    startUp_->drop();
    if (started_) started_->sender().send(true);
}

bool StreamingModelTranscriber::wasInterrupted() const { return transcription_->wasInterrupted(); }
bool StreamingModelTranscriber::hasHeardVoice() const { return transcription_->hasHeardVoice(); }

} // namespace querlin
