#include "speech/StreamingModelTranscriber.h"

#include "foundation/Trimming.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace querlin {

struct StreamingModelTranscriber::State {
    /// A copy of sound that came before its time.
    struct Pending {
        AudioFormat format;
        std::vector<float> samples;
    };

    explicit State(MakeAudioConverter make) : makeConverter(std::move(make)) {}

    const MakeAudioConverter makeConverter;
    std::mutex lock;
    // Guarded by the lock, which is never held during a call.
    std::function<void(std::string)> onPartialResult;
    std::shared_ptr<SpeechAnalyzer> analyzer; ///< null: nothing runs
    std::optional<AudioFormat> targetFormat;
    std::vector<Pending> pending;
    bool isStreaming = false; ///< what waited has been passed on, and sound goes the direct way
    bool finished = false;
    bool wasInterrupted = false;
    std::string finalizedText;
    std::string volatileText;
    std::optional<OneShot<std::string>::Sender> collected;

    // Of the one thread that forwards: the start-up's, then the audio thread.
    std::shared_ptr<AudioConverter> converter;
    AudioFormat converterInput;

    std::shared_ptr<SpeechAnalyzer> running() {
        const std::scoped_lock guard(lock);
        return analyzer;
    }
    bool setUp(SpeechAnalyzer& service, const std::vector<std::string>& contextualStrings);
    void passPendingOn();
    void forward(const AudioBuffer& buffer);
    void collect(SpeechAnalysisResult result);
    void endResults(bool complete);
    void cleanUp();
};

// The start-up, in the background

/// False if there is nothing to wait for.
bool StreamingModelTranscriber::State::setUp(SpeechAnalyzer& service,
                                             const std::vector<std::string>& contextualStrings) {
    const auto format = service.prepare(contextualStrings);
    if (!format) return false;
    {
        const std::scoped_lock guard(lock);
        if (!analyzer) return false; // It was given up meanwhile.
        targetFormat = *format;
    }
    if (!service.start()) return false;
    passPendingOn();
    return true;
}

/// In the order in which it was said: nothing overtakes what waits.
void StreamingModelTranscriber::State::passPendingOn() {
    for (;;) {
        std::vector<Pending> next;
        {
            const std::scoped_lock guard(lock);
            next.swap(pending);
            isStreaming = next.empty();
            if (isStreaming) return;
        }
        for (const auto& buffer : next) forward({buffer.format, buffer.samples});
    }
}

void StreamingModelTranscriber::State::forward(const AudioBuffer& buffer) {
    AudioFormat target;
    std::shared_ptr<SpeechAnalyzer> receiver;
    {
        const std::scoped_lock guard(lock);
        if (!targetFormat || !analyzer || finished) return;
        target = *targetFormat;
        receiver = analyzer;
    }
    if (buffer.format == target) {
        receiver->analyze({buffer.samples.begin(), buffer.samples.end()});
        return;
    }
    if (!converter || converterInput != buffer.format) {
        converter = makeConverter(buffer.format, target);
        converterInput = buffer.format;
    }
    if (!converter) return;
    auto converted = converter->convert(buffer.samples);
    if (converted && !converted->empty()) receiver->analyze(std::move(*converted));
}

// The results, on the service's thread

void StreamingModelTranscriber::State::collect(SpeechAnalysisResult result) {
    std::unique_lock guard(lock);
    if (result.isFinal) {
        finalizedText += result.text;
        volatileText.clear();
    } else {
        volatileText = std::move(result.text);
    }
    const std::string whole = finalizedText + volatileText;
    const auto call = onPartialResult;
    guard.unlock();
    const auto trimmed = trimBlanksAndTabs(whole);
    if (!trimmed.empty() && call) call(std::string(trimmed));
}

void StreamingModelTranscriber::State::endResults(bool complete) {
    std::unique_lock guard(lock);
    const auto receiver = std::exchange(collected, std::nullopt);
    if (!receiver) return;
    wasInterrupted = !complete;
    const auto whole = complete ? finalizedText + volatileText : std::string();
    guard.unlock();
    receiver->send(std::string(trimWhitespaceAndNewlines(whole)));
}

void StreamingModelTranscriber::State::cleanUp() {
    std::shared_ptr<SpeechAnalyzer> former; // Goes behind the lock.
    std::vector<Pending> unused;
    const std::scoped_lock guard(lock);
    former.swap(analyzer);
    unused.swap(pending);
    targetFormat.reset();
    isStreaming = false;
}

// The transcriber

StreamingModelTranscriber::StreamingModelTranscriber(Runtime runtime, SpeechAnalysisService& service,
                                                     MakeAudioConverter makeConverter) :
    runtime_(runtime), service_(service), state_(std::make_shared<State>(std::move(makeConverter))) {}

StreamingModelTranscriber::~StreamingModelTranscriber() { state_->cleanUp(); }

bool StreamingModelTranscriber::isAvailable(SpeechAnalysisService& service, const std::string& locale) {
    const auto known = service.supportedLocales();
    return std::ranges::find(known, locale) != known.end();
}

bool StreamingModelTranscriber::prepareAssets(SpeechAnalysisService& service, const std::string& locale) {
    using Status = SpeechAnalysisService::AssetStatus;
    const auto status = service.assetStatus(locale);
    if (status != Status::missing) return status == Status::installed;
    return service.downloadAndInstall(locale) && service.assetStatus(locale) == Status::installed;
}

void StreamingModelTranscriber::setOnPartialResult(std::function<void(std::string)> onPartialResult) {
    const std::scoped_lock guard(state_->lock);
    state_->onPartialResult = std::move(onPartialResult);
}

std::expected<void, TranscriptionError> StreamingModelTranscriber::begin(const std::string& locale, bool) {
    setup_.emplace(runtime_.mainQueue);
    collector_.emplace(runtime_.mainQueue);
    const std::weak_ptr weak(state_);
    const auto analyzer = service_.analyzer(locale, {[weak](SpeechAnalysisResult result) {
                                                         if (const auto state = weak.lock()) {
                                                             state->collect(std::move(result));
                                                         }
                                                     },
                                                     [weak](const std::expected<void, std::string>& end) {
                                                         if (const auto state = weak.lock()) {
                                                             state->endResults(end.has_value());
                                                         }
                                                     }});
    {
        const std::scoped_lock guard(state_->lock);
        state_->analyzer = analyzer;
        state_->collected = collector_->sender();
        state_->finalizedText.clear();
        state_->volatileText.clear();
        state_->finished = false;
        state_->wasInterrupted = false;
    }
    runtime_.background.run([weak, analyzer, strings = contextualStrings_, over = setup_->sender()] {
        if (const auto state = weak.lock()) {
            if (!state->setUp(*analyzer, strings)) state->endResults(false);
        }
        over.send(true);
    });
    return {};
}

void StreamingModelTranscriber::append(const AudioBuffer& buffer) {
    {
        const std::scoped_lock guard(state_->lock);
        if (!state_->isStreaming) {
            state_->pending.push_back({buffer.format, {buffer.samples.begin(), buffer.samples.end()}});
            return;
        }
    }
    state_->forward(buffer);
}

Task<std::expected<std::string, TranscriptionError>> StreamingModelTranscriber::finish() {
    const auto state = state_;
    if (!collector_) co_return std::string();
    co_await *setup_;
    {
        const std::scoped_lock guard(state->lock);
        state->finished = true;
    }
    if (const auto analyzer = state->running()) analyzer->finalizeAndFinishThroughEndOfInput();
    std::string text = co_await *collector_;
    state->cleanUp();
    co_return text;
}

void StreamingModelTranscriber::cancel() {
    if (const auto analyzer = state_->running()) analyzer->cancelAndFinishNow();
    std::unique_lock guard(state_->lock);
    const auto receiver = std::exchange(state_->collected, std::nullopt);
    guard.unlock();
    if (receiver) receiver->send({});
    if (setup_) setup_->sender().send(true);
    state_->cleanUp();
}

bool StreamingModelTranscriber::wasInterrupted() const {
    const std::scoped_lock guard(state_->lock);
    return state_->wasInterrupted;
}

} // namespace querlin
