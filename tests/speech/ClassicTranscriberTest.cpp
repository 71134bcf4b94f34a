// The classic recogniser's races, each in the order in which it can happen.

#include "speech/ClassicTranscriber.h"
#include "foundation/TaskGroup.h"
#include "speech/LocalTranscribers.h"
#include "support/CapturedLog.h"
#include "support/ManualTime.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Result = std::expected<std::string, TranscriptionError>;
using Kind = TranscriptionError::Kind;

/// Speaks German; its results come when the test says so.
class FakeService final : public SpeechRecognitionService, public SpeechRecognizer {
public:
    bool isAuthorized() override { return authorized; }
    std::shared_ptr<SpeechRecognizer> recognizer(const std::string& locale) override {
        if (locale != "de-DE") return nullptr;
        return {std::shared_ptr<void>(), this};
    }
    bool isAvailable() override { return available; }
    bool supportsOnDeviceRecognition() override { return onDevice; }
    std::unique_ptr<SpeechRecognitionTask> start(SpeechRecognitionRequest given, SpeechRecognitionHandler call) override {
        request = std::move(given);
        handler = std::move(call);
        return std::make_unique<RunningTask>(*this);
    }
    void partial(std::string text) { handler(SpeechRecognitionResult{std::move(text), false}, {}); }
    void final(std::string text) { handler(SpeechRecognitionResult{std::move(text), true}, {}); }
    void fail() { handler({}, "Leitung tot"); }

    bool authorized = true;
    bool available = true;
    bool onDevice = true;
    SpeechRecognitionRequest request;
    SpeechRecognitionHandler handler;
    std::string calls; ///< "a" per buffer, "e" for the end of the audio, "c" for cancel

private:
    class RunningTask final : public SpeechRecognitionTask {
    public:
        explicit RunningTask(FakeService& service) : service_(service) {}
        void append(const AudioBuffer&) override { service_.calls += 'a'; }
        void endAudio() override { service_.calls += 'e'; }
        void cancel() override { service_.calls += 'c'; }

    private:
        FakeService& service_;
    };
};

struct Classic : testing::Test {
    CapturedLog log;
    ManualTime time;
    FakeService service;
    std::shared_ptr<ClassicTranscriber> transcriber = std::make_shared<ClassicTranscriber>(time.runtime(), service);
    std::optional<Result> outcome;
    TaskGroup tasks;

    void begin() { ASSERT_TRUE(transcriber->begin("de-DE", false)); }
    void finish() {
        tasks.start(finishing());
        time.settle();
    }
    Task<> finishing() {
        auto result = co_await transcriber->finish();
        outcome = std::move(result);
    }
};

TEST_F(Classic, RefusalsOfTheBeginning) {
    struct Row {
        std::function<void()> given;
        const char* locale;
        TranscriptionError error;
    };
    const std::vector<Row> rows = {
        {[] {}, "en-US", {Kind::unavailable, "Für en-US ist kein Erkenner installiert."}},
        {[this] { service.available = false; }, "de-DE", {Kind::unavailable, "Der Erkenner für de-DE ist gerade nicht bereit."}},
        {[this] { service.authorized = false; }, "de-DE", {Kind::notAuthorized, {}}},
    };
    for (const auto& row : rows) {
        row.given();
        const auto begun = transcriber->begin(row.locale, true);
        ASSERT_FALSE(begun);
        EXPECT_EQ(begun.error(), row.error);
    }
    finish();
    EXPECT_EQ(outcome->error(), (TranscriptionError{Kind::failed, "Keine laufende Erkennung."}));
}

TEST_F(Classic, TheRequestCarriesWordsAndTheWishToStayOnTheDevice) {
    transcriber->setContextualStrings({"Nießbrauch", "Sorge"});
    ASSERT_TRUE(transcriber->begin("de-DE", true));
    EXPECT_EQ(service.request.contextualStrings.size(), 2U);
    EXPECT_TRUE(service.request.requiresOnDevice);
    EXPECT_TRUE(log.has("[speech] 2 Fachbegriffe übergeben."));
    service.onDevice = false;
    ClassicTranscriber other(time.runtime(), service);
    ASSERT_TRUE(other.begin("de-DE", true)) << "goes on without";
    EXPECT_FALSE(service.request.requiresOnDevice);
    EXPECT_EQ(log.lines().size(), 1U) << "no words, no note";
}

TEST_F(Classic, EveryOrderOfResultErrorAndRelease) {
    struct Row {
        std::function<void(FakeService&)> before;
        std::function<void(FakeService&)> after;
        double wait;
        std::optional<Result> outcome;
        bool interrupted;
        const char* calls;
        const char* reason;
    };
    const auto failed = std::unexpected(TranscriptionError{Kind::failed, "Leitung tot"});
    const auto nothing = [](FakeService&) {};
    const std::vector<Row> rows = {
        {[](auto& s) { s.final(" ganz \n"); }, nothing, 0, "ganz", false, "", "final before the release"},
        {[](auto& s) { s.partial("halb"); }, [](auto& s) { s.final("ganz"); }, 0, "ganz", false, "e", "final behind it"},
        {[](auto& s) { s.partial("halb"); }, nothing, 11.9, {}, false, "e", "no last word yet"},
        {[](auto& s) { s.partial("halb"); }, nothing, 12, "halb", false, "e", "no last word in twelve seconds"},
        {nothing, nothing, 12, "", false, "e", "no word at all"},
        {[](auto& s) { s.partial("halb"); }, [](auto& s) { s.fail(); }, 0, "halb", true, "e", "error behind words"},
        {nothing, [](auto& s) { s.fail(); }, 0, failed, true, "e", "error without a word"},
        {[](auto& s) { s.fail(); }, nothing, 0, "", true, "", "an early error isn't seen, but known of"},
        {[](auto& s) {
             s.partial("halb");
             s.fail();
             s.final("zu spät");
         },
         nothing, 0, "zu spät", true, "", "the latest text stands"},
        {nothing,
         [](auto& s) {
             s.final("eins");
             s.final("zwei");
             s.fail();
         },
         0, "eins", false, "e", "the first outcome stands"},
        {[](auto& s) { s.partial("x"); }, [](auto& s) { s.final(" \t\n"); }, 0, "", false, "e", "white space alone"},
        {nothing, [](auto& s) { s.handler(SpeechRecognitionResult{"beides", false}, "Leitung tot"); }, 0, "beides", true, "e",
         "result and error in one"},
    };
    for (const auto& row : rows) {
        service.calls.clear();
        transcriber = std::make_shared<ClassicTranscriber>(time.runtime(), service);
        outcome.reset();
        begin();
        row.before(service);
        finish();
        row.after(service);
        time.advance(seconds(row.wait));
        EXPECT_EQ(outcome, row.outcome) << row.reason;
        EXPECT_EQ(transcriber->wasInterrupted(), row.interrupted) << row.reason;
        EXPECT_EQ(service.calls, row.calls) << row.reason;
        tasks.abandonAll();
    }
    EXPECT_EQ(time.pendingTimers(), 0U);
}

TEST_F(Classic, CancelEndsAWaitingFinishWithTheEmptyText) {
    begin();
    service.partial("halb");
    finish();
    transcriber->cancel();
    time.settle();
    EXPECT_EQ(outcome, Result(""));
    EXPECT_EQ(service.calls, "ece");
    EXPECT_FALSE(transcriber->wasInterrupted());
    transcriber->append({});
    EXPECT_EQ(service.calls, "ece") << "sound goes nowhere";
    service.final("zu spät");
    service.fail();
    EXPECT_FALSE(transcriber->wasInterrupted());
}

TEST_F(Classic, PartialTextsComeOnTheMainQueueAndNotAfterTheEnd) {
    std::vector<std::string> told;
    transcriber->setOnPartialResult([&](const std::string& text) { told.push_back(text); });
    begin();
    service.partial("eins");
    EXPECT_TRUE(told.empty());
    time.settle();
    service.final("eins zwei");
    time.settle();
    EXPECT_EQ(told, std::vector<std::string>{"eins"});
    service.partial("gehört niemandem mehr");
    const auto handler = service.handler;
    transcriber.reset();
    time.settle();
    handler(SpeechRecognitionResult{"nach dem Ende", false}, {});
    time.settle();
    EXPECT_EQ(told.size(), 1U);
}

TEST(Locale, FollowsTheUsersSettings) {
    struct Row {
        const char* lcAll;
        const char* lcMessages;
        const char* lang;
        const char* locale;
    };
    for (const auto& row :
         {Row{"", "", "de_AT.UTF-8", "de-AT"}, Row{"", "en_GB", "de_DE.UTF-8", "en-GB"}, Row{"fr_FR@euro", "en_GB", "de_DE", "fr-FR"},
          Row{"C.UTF-8", "", "de_DE", "de-DE"}, Row{"", "", "", "de-DE"}, Row{"", "", "de", "de"}}) {
        EXPECT_EQ(systemLocale(row.lcAll, row.lcMessages, row.lang), row.locale);
    }
}

} // namespace
} // namespace querlin
