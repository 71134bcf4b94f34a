// The streaming recogniser: sound during the start-up, pieces of text, and every end.

#include "foundation/TaskGroup.h"
#include "foundation/ThreadPool.h"
#include "speech/StreamingModelTranscriber.h"
#include "support/ManualTime.h"

#include <atomic>
#include <mutex>
#include <numeric>
#include <thread>

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Texts = std::vector<std::string>;
using Format = std::expected<std::optional<AudioFormat>, std::string>;
constexpr AudioFormat wanted{16000, 1};

/// What happens to one analysis; outlives it.
struct Session {
    Format format = wanted;
    std::function<void()> duringPrepare = [] {};
    bool starts = true;
    SpeechAnalysisObserver observer;
    std::vector<std::string> words;
    std::mutex lock;
    std::vector<float> heard;
    std::string calls; ///< "p" prepare, "s" start, "f" finalize, "c" cancel, "~" gone
};

class FakeAnalyzer final : public SpeechAnalyzer {
public:
    explicit FakeAnalyzer(std::shared_ptr<Session> session) : session_(std::move(session)) {}
    ~FakeAnalyzer() override { call('~'); }
    Format prepare(const std::vector<std::string>& strings) override {
        call('p');
        session_->words = strings;
        session_->duringPrepare();
        return session_->format;
    }
    std::expected<void, std::string> start() override {
        call('s');
        if (!session_->starts) return std::unexpected("kaputt");
        return {};
    }
    void analyze(std::vector<float> samples) override {
        const std::scoped_lock guard(session_->lock);
        session_->heard.insert(session_->heard.end(), samples.begin(), samples.end());
    }
    void finalizeAndFinishThroughEndOfInput() override { call('f'); }
    void cancelAndFinishNow() override { call('c'); }

private:
    void call(char name) {
        const std::scoped_lock guard(session_->lock);
        session_->calls += name;
    }
    std::shared_ptr<Session> session_;
};

class FakeService final : public SpeechAnalysisService {
public:
    bool isHere() override { return true; }
    std::vector<std::string> supportedLocales() override { return {"de-DE"}; }
    AssetStatus assetStatus(const std::string&) override { return statuses.size() > 1 ? pop() : statuses.front(); }
    std::expected<void, std::string> downloadAndInstall(const std::string&) override {
        ++installs;
        if (!canInstall) return std::unexpected("kein Netz");
        return {};
    }
    std::shared_ptr<SpeechAnalyzer> analyzer(const std::string&, SpeechAnalysisObserver observer) override {
        session->observer = std::move(observer);
        return std::make_shared<FakeAnalyzer>(session);
    }

    std::shared_ptr<Session> session = std::make_shared<Session>();
    std::vector<AssetStatus> statuses = {AssetStatus::installed};
    bool canInstall = true;
    int installs = 0;

private:
    AssetStatus pop() {
        const auto first = statuses.front();
        statuses.erase(statuses.begin());
        return first;
    }
};

/// Doubles each sample, so that the test sees the conversion.
class Doubler final : public AudioConverter {
public:
    std::expected<std::vector<float>, std::string> convert(std::span<const float> samples) override {
        if (samples.front() < 0) return std::unexpected("kaputt");
        std::vector<float> doubled;
        for (const float sample : samples) doubled.push_back(2 * sample);
        return doubled;
    }
};

struct Streaming : testing::Test {
    ManualTime time;
    FakeService service;
    std::vector<AudioFormat> converters;
    std::shared_ptr<StreamingModelTranscriber> transcriber = make();
    std::optional<std::string> outcome;
    TaskGroup tasks;

    std::shared_ptr<StreamingModelTranscriber> make() {
        return std::make_shared<StreamingModelTranscriber>(time.runtime(), service,
                                                           [this](AudioFormat from, AudioFormat) -> std::unique_ptr<AudioConverter> {
                                                               converters.push_back(from);
                                                               if (from.sampleRate == 8000) return nullptr;
                                                               return std::make_unique<Doubler>();
                                                           });
    }
    Session& session() { return *service.session; }
    void begin() { ASSERT_TRUE(transcriber->begin("de-DE", true)); }
    void append(AudioFormat format, std::vector<float> samples) { transcriber->append({format, samples}); }
    void piece(std::string text, bool isFinal) { session().observer.onResult({std::move(text), isFinal}); }
    void finish() {
        tasks.start(finishing());
        time.settle();
    }
    Task<> finishing() {
        auto result = co_await transcriber->finish();
        outcome = result.value_or("Fehler");
    }
};

TEST_F(Streaming, SoundOfTheStartUpIsAnalysedInItsPlace) {
    time.holdBackground = true;
    transcriber->setContextualStrings({"Nießbrauch"});
    session().duringPrepare = [this] { append(wanted, {3}); };
    begin();
    append(wanted, {1});
    append({48000, 2}, {1});
    time.settle();
    EXPECT_TRUE(session().heard.empty());
    time.holdBackground = false;
    time.settle();
    EXPECT_EQ(session().words, Texts{"Nießbrauch"});
    append(wanted, {4});
    EXPECT_EQ(session().heard, (std::vector<float>{1, 2, 3, 4})) << "one of them converted";
}

TEST_F(Streaming, AReleaseDuringTheStartUpLosesNothing) {
    time.holdBackground = true;
    begin();
    append(wanted, {1});
    finish();
    EXPECT_EQ(session().calls, "");
    time.holdBackground = false;
    time.settle();
    EXPECT_EQ(session().heard, std::vector<float>{1});
    EXPECT_EQ(session().calls, "psf");
    piece("Wort", true);
    session().observer.onEnd({});
    time.settle();
    EXPECT_EQ(outcome, "Wort");
    EXPECT_EQ(session().calls, "psf~");
}

TEST_F(Streaming, ConvertsOnlyWhatHasAnotherFormat) {
    begin();
    time.settle();
    append(wanted, {1});
    append({44100, 1}, {1});
    append({44100, 1}, {2});
    append({48000, 1}, {3});
    append({8000, 1}, {9});   // No way from there: lost.
    append({48000, 1}, {-1}); // The conversion fails: lost.
    append({48000, 1}, {4});
    EXPECT_EQ(session().heard, (std::vector<float>{1, 2, 4, 6, 8}));
    EXPECT_EQ(converters, (std::vector<AudioFormat>{{44100, 1}, {48000, 1}, {8000, 1}, {48000, 1}}));
}

TEST_F(Streaming, FinalPiecesAddUpAndAVolatileTailCounts) {
    Texts told;
    transcriber->setOnPartialResult([&](const std::string& text) { told.push_back(text); });
    begin();
    time.settle();
    piece(" ", true);
    piece("A", false);
    piece("A B", false);
    piece("A B ", true);
    piece("", false);
    piece("C", false);
    EXPECT_EQ(told, (Texts{"A", "A B", "A B", "A B", "A B C"}));
    finish();
    EXPECT_FALSE(outcome);
    session().observer.onEnd({});
    time.settle();
    EXPECT_EQ(outcome, "A B C");
    EXPECT_FALSE(transcriber->wasInterrupted());
}

TEST_F(Streaming, EveryFailureEndsTheWaitWithTheEmptyText) {
    struct Row {
        std::function<void()> given;
        const char* calls;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {[this] { session().format = std::unexpected("kein Modell"); }, "pf~", "the model can't be loaded"},
        {[this] { session().starts = false; }, "psf~", "the analysis doesn't start"},
        {[this] {
             session().duringPrepare = [this] {
                 piece("halb", false);
                 session().observer.onEnd(std::unexpected("abgestürzt"));
             };
         },
         "psf~", "it dies behind a word"},
    };
    for (const auto& row : rows) {
        service.session = std::make_shared<Session>();
        transcriber = make();
        outcome.reset();
        row.given();
        begin();
        append(wanted, {1});
        time.settle();
        finish();
        EXPECT_EQ(outcome, "") << row.reason;
        EXPECT_EQ(session().calls, row.calls) << row.reason;
        EXPECT_TRUE(transcriber->wasInterrupted()) << row.reason;
    }
}

TEST_F(Streaming, CancelAtAnyMomentGivesNoText) {
    struct Row {
        bool isStarting;
        bool isFinishing;
        const char* calls;
    };
    for (const auto& row : {Row{true, false, "cp~"}, Row{true, true, "cp~"}, Row{false, false, "psc~"}, Row{false, true, "psfc~"}}) {
        service.session = std::make_shared<Session>();
        transcriber = make();
        outcome.reset();
        time.holdBackground = row.isStarting;
        begin();
        time.settle();
        if (row.isFinishing) finish();
        transcriber->cancel();
        time.settle();
        append(wanted, {1});
        EXPECT_EQ(outcome, row.isFinishing ? std::optional<std::string>("") : std::nullopt);
        time.holdBackground = false;
        time.settle();
        EXPECT_EQ(session().calls, row.calls);
        EXPECT_TRUE(session().heard.empty());
        EXPECT_FALSE(transcriber->wasInterrupted());
    }
    transcriber = make();
    finish();
    EXPECT_EQ(outcome, "") << "nothing was begun";
}

TEST_F(Streaming, LetGoInMidStartUpTouchesNothing) {
    time.holdBackground = true;
    begin();
    append(wanted, {1});
    const auto observer = session().observer;
    transcriber.reset();
    time.holdBackground = false;
    time.settle();
    observer.onResult({"spät", true});
    observer.onEnd({});
    EXPECT_TRUE(session().heard.empty());
    EXPECT_EQ(session().calls, "~");
}

TEST_F(Streaming, AModelIsPutInPlaceOnce) {
    using enum SpeechAnalysisService::AssetStatus;
    struct Row {
        std::vector<SpeechAnalysisService::AssetStatus> statuses;
        bool canInstall;
        bool ready;
        int installs;
    };
    for (const auto& row : {Row{{installed}, true, true, 0}, Row{{unsupported}, true, false, 0}, Row{{missing, installed}, true, true, 1},
                            Row{{missing, missing}, true, false, 1}, Row{{missing}, false, false, 1}}) {
        service.statuses = row.statuses;
        service.canInstall = row.canInstall;
        service.installs = 0;
        EXPECT_EQ(StreamingModelTranscriber::prepareAssets(service, "de-DE"), row.ready);
        EXPECT_EQ(service.installs, row.installs);
    }
    EXPECT_TRUE(StreamingModelTranscriber::isAvailable(service, "de-DE"));
    EXPECT_FALSE(StreamingModelTranscriber::isAvailable(service, "en-US"));
}

/// The audio thread runs on while the start-up, on a thread of its own, passes on what waits.
TEST_F(Streaming, NothingOvertakesWhatWaits) {
    for (int round = 0; round < 30; ++round) {
        service.session = std::make_shared<Session>();
        ThreadPool pool(1);
        std::atomic<int> appended = 0;
        session().duringPrepare = [&] {
            while (appended < 100) std::this_thread::yield();
        };
        auto real = std::make_shared<StreamingModelTranscriber>(Runtime{time, time, pool}, service, MakeAudioConverter());
        ASSERT_TRUE(real->begin("de-DE", true));
        for (int i = 0; i < 400; ++i) {
            const std::vector samples = {static_cast<float>(i)};
            real->append({wanted, samples});
            ++appended;
        }
        const auto count = [&] {
            const std::scoped_lock guard(session().lock);
            return session().heard.size();
        };
        while (count() < 400) std::this_thread::yield();
        std::vector<float> expected(400);
        std::iota(expected.begin(), expected.end(), 0.0F);
        EXPECT_EQ(session().heard, expected);
    }
}

} // namespace
} // namespace querlin
