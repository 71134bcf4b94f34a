// Both transcribers over a scripted engine: pieces of text, every end and every race, sound during the start-up.

#include "foundation/TaskGroup.h"
#include "foundation/ThreadPool.h"
#include "speech/ClassicTranscriber.h"
#include "speech/LocalTranscribers.h"
#include "speech/StreamingModelTranscriber.h"
#include "support/FakeEngine.h"
#include "support/ManualTime.h"

#include <atomic>
#include <cmath>
#include <numeric>
#include <thread>

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Texts = std::vector<std::string>;
using Result = std::expected<std::string, TranscriptionError>;
using Kind = TranscriptionError::Kind;

/// A second that rises and falls as a voice does.
std::vector<float> voice() {
    std::vector<float> samples(8000);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = (i / 1600 % 2 == 0 ? 0.001F : 0.1F) * std::cos(static_cast<float>(i) * 0.4F);
    return samples;
}

struct Transcribers : testing::Test {
    ManualTime time;
    std::unique_ptr<FakeEngine> engine;
    std::shared_ptr<StreamingTranscriber> transcriber;
    std::optional<Result> outcome;
    TaskGroup tasks;

    void make(TranscriptionEngine which) {
        tasks.abandonAll();
        transcriber.reset();
        engine = std::make_unique<FakeEngine>();
        outcome.reset();
        transcriber = LocalTranscribers(time.runtime(), *engine, *engine).make(which);
    }
    void begin() {
        ASSERT_TRUE(transcriber->begin("de-DE"));
        time.settle();
    }
    void speak() { transcriber->append({{8000, 1}, voice()}); }
    void append(float sample) { transcriber->append({{16000, 1}, std::span(&sample, 1)}); }
    void finish() {
        tasks.start(finishing());
        time.settle();
    }
    Task<> finishing() {
        auto result = co_await transcriber->finish();
        outcome = std::move(result);
    }
};

constexpr auto classic = TranscriptionEngine::classic;
constexpr auto streaming = TranscriptionEngine::streaming;

TEST_F(Transcribers, EveryOrderOfPiecesEndAndRelease) {
    struct Row {
        TranscriptionEngine which;
        std::function<void(FakeEngine&)> before;
        std::function<void(FakeEngine&)> after;
        double wait;
        std::optional<Result> outcome;
        bool interrupted;
        const char* reason;
    };
    const auto failed = std::unexpected(TranscriptionError{Kind::failed, "Leitung tot"});
    const auto nothing = [](FakeEngine&) {};
    const auto half = [](FakeEngine& e) { e.volatilePiece("halb"); };
    const auto fails = [](FakeEngine& e) { e.fail(); };
    const auto whole = [](FakeEngine& e) {
        e.finalPiece("eins");
        e.volatilePiece("zw");
        e.finalPiece(" zwei ");
        e.volatilePiece("drei");
        e.end();
        e.fail(); // Too late.
    };
    const std::vector<Row> rows = {
        {classic, half, whole, 0, "eins  zwei  drei", false, "finals add up, and a volatile tail counts"},
        {streaming, half, whole, 0, "eins  zwei  drei", false, "so they do here"},
        {classic, half, nothing, 11.9, {}, false, "no last word yet"},
        {classic, half, nothing, 12, "halb", false, "no last word in twelve seconds"},
        {classic, nothing, nothing, 12, "", false, "no word at all"},
        {streaming, half, nothing, 60, {}, false, "the streaming engine bounds its own silence"},
        {classic, half, fails, 0, "halb", true, "an error after words: they stand"},
        {streaming, half, fails, 0, "", true, "here they are for the rescue"},
        {classic, nothing, fails, 0, failed, true, "an error without a word"},
        {streaming, nothing, fails, 0, "", true, "which is no failure here"},
        {classic, fails, nothing, 0, "", true, "an early error isn't seen, but known of"},
        {streaming, fails, nothing, 0, "", true, "the same"},
        {classic, half, [](auto& e) { e.finalPiece(" \t\n"), e.end(); }, 0, "", false, "white space alone"},
    };
    for (const auto& row : rows) {
        make(row.which);
        begin();
        speak();
        row.before(*engine);
        finish();
        row.after(*engine);
        time.advance(seconds(row.wait));
        EXPECT_EQ(outcome, row.outcome) << row.reason;
        EXPECT_EQ(transcriber->wasInterrupted(), row.interrupted) << row.reason;
    }
}

TEST_F(Transcribers, WhereNobodyHasSpokenThereIsNoText) {
    for (const auto which : {classic, streaming}) {
        for (const bool fails : {false, true}) {
            make(which);
            Texts partials;
            transcriber->setOnPartialResult([&](const std::string& text) { partials.push_back(text); });
            begin();
            transcriber->append({{8000, 1}, std::vector<float>(16000)});
            engine->finalPiece("aus dem Rauschen");
            finish();
            fails ? engine->fail() : engine->end();
            time.settle();
            EXPECT_EQ(outcome->value_or(""), "");
            EXPECT_TRUE(partials.empty());
            EXPECT_FALSE(transcriber->hasHeardVoice());
            EXPECT_FALSE(transcriber->wasInterrupted()) << "nothing is missing";
        }
    }
}

TEST_F(Transcribers, PartialTextsAreWholeAndEndWithTheTranscriber) {
    for (const auto which : {classic, streaming}) {
        make(which);
        transcriber->setContextualStrings({"Nießbrauch"});
        Texts partials;
        transcriber->setOnPartialResult([&](const std::string& text) { partials.push_back(text); });
        begin();
        EXPECT_EQ(engine->words, Texts{"Nießbrauch"});
        engine->volatilePiece("leise");
        speak();
        for (const auto* text : {"", "A", "A B"}) engine->volatilePiece(text);
        engine->finalPiece("A B");
        engine->volatilePiece("C");
        const auto observer = engine->observer;
        transcriber.reset();
        observer.onPiece("spät", true);
        observer.onEnd({});
        EXPECT_EQ(partials, (Texts{"A", "A B", "A B", "A B C"}));
        EXPECT_EQ(engine->calls, "~");
    }
}

TEST_F(Transcribers, CancelAtAnyMomentGivesNoText) {
    struct Row {
        TranscriptionEngine which;
        bool isStarting;
        bool isFinishing;
        const char* calls;
    };
    for (const auto& row : {Row{classic, false, false, "~"}, Row{classic, false, true, "f~"}, Row{streaming, true, false, ""},
                            Row{streaming, true, true, ""}, Row{streaming, false, false, "~"}, Row{streaming, false, true, "f~"}}) {
        make(row.which);
        time.holdBackground = row.isStarting;
        begin();
        speak();
        if (!row.isStarting) engine->volatilePiece("halb");
        if (row.isFinishing) finish();
        transcriber->cancel();
        time.settle();
        append(1);
        EXPECT_EQ(outcome, row.isFinishing ? std::optional<Result>("") : std::nullopt);
        time.holdBackground = false;
        time.settle();
        EXPECT_EQ(engine->calls, row.calls);
        EXPECT_FALSE(transcriber->wasInterrupted());
    }
}

TEST_F(Transcribers, RefusalsOfTheBeginning) {
    for (const auto which : {classic, streaming}) {
        make(which);
        engine->refusal = "kein Modell";
        const auto begun = transcriber->begin("de-DE");
        speak();
        time.settle();
        if (which == classic) {
            EXPECT_EQ(begun.error(), (TranscriptionError{Kind::unavailable, "kein Modell"}));
            continue;
        }
        finish();
        EXPECT_EQ(outcome, Result(""));
        EXPECT_TRUE(transcriber->wasInterrupted()) << "the sound is worth keeping";
    }
}

TEST_F(Transcribers, SoundOfTheStartUpIsHeardInItsPlace) {
    make(streaming);
    time.holdBackground = true;
    begin();
    speak();
    finish();
    EXPECT_EQ(engine->calls, "") << "a release during the start-up";
    time.holdBackground = false;
    time.settle();
    EXPECT_EQ(engine->heard, voice());
    EXPECT_EQ(engine->calls, "f");
    engine->finalPiece("Wort");
    engine->end();
    time.settle();
    EXPECT_EQ(outcome, Result("Wort"));
    EXPECT_EQ(engine->calls, "f~");
}

/// The audio thread runs on while the start-up, on a thread of its own, passes on what waits.
TEST_F(Transcribers, NothingOvertakesWhatWaits) {
    for (int round = 0; round < 30; ++round) {
        make(streaming);
        ThreadPool pool(1);
        std::atomic<int> appended = 0;
        engine->duringBegin = [&] {
            while (appended < 100) std::this_thread::yield();
        };
        transcriber = std::make_shared<StreamingModelTranscriber>(Runtime{time, time, pool}, *engine);
        ASSERT_TRUE(transcriber->begin("de-DE"));
        for (int i = 0; i < 400; ++i) {
            append(static_cast<float>(i));
            ++appended;
        }
        const auto count = [&] {
            const std::scoped_lock guard(engine->lock);
            return engine->heard.size();
        };
        while (count() < 400) std::this_thread::yield();
        std::vector<float> expected(400);
        std::iota(expected.begin(), expected.end(), 0.0F);
        EXPECT_EQ(engine->heard, expected);
        transcriber.reset();
    }
}

} // namespace
} // namespace querlin
