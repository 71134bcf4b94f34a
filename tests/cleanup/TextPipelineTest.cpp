// The order of the stages and their conditions, and the model's part: whatever the model does, the words come back.

#include "cleanup/TextPipeline.h"
#include "foundation/TaskGroup.h"
#include "legal/LegalLookup.h"
#include "support/CapturedLog.h"
#include "support/FakeLanguageModel.h"
#include "support/ManualTime.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using enum TextStage;
using Texts = std::vector<std::string>;

class TextPipelineTest : public testing::Test {
protected:
    PipelineOutcome run(std::string transcript) {
        std::optional<PipelineOutcome> outcome;
        better.clear();
        modelBegan = false;
        PipelineProgress progress{.onBetterText = [this](const std::string& text) { better.push_back(text); },
                                  .onModelBegins = [this] { modelBegan = true; }};
        tasks_.start(take(pipeline.run(std::move(transcript), request, std::move(progress)), outcome));
        time.advance(std::chrono::minutes(1));
        return outcome.value();
    }

    CapturedLog log;
    ManualTime time;
    FakeLanguageModel model{time};
    LocalModelEnhancer enhancer{model, time};
    EnhancementCoordinator coordinator{time.runtime(), enhancer};
    NoLaws laws;
    TextPipeline pipeline{time.runtime(), laws, coordinator};
    PipelineRequest request{.style = {}, .settings = {.textBlocks = {{"Gruß", "Mit Gruß"}}}, .now = {}};
    Texts better;
    bool modelBegan = false;

private:
    static Task<> take(Task<PipelineOutcome> task, std::optional<PipelineOutcome>& outcome) { outcome = co_await std::move(task); }
    TaskGroup tasks_;
};

TEST_F(TextPipelineTest, StagesRunInTheirOrderUnderTheirConditions) {
    struct Row {
        std::function<void(PipelineRequest&)> given;
        const char* text;
        const char* engine;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {[](auto&) {}, "Am 03.03.2024, Mit Gruß § 5 BGB www.a.de.", "Regelbasiert", "file style by rules"},
        {[](auto& r) { r.settings.commandsEnabled = false; }, "Am 03.03.2024, Mit Gruß § 5 BGB www.a.de.", "Regelbasiert",
         "the rules know the marks too"},
        {[](auto& r) { r.settings.cleanupMode = CleanupMode::none; }, "Äh am 03.03.2024, Mit Gruß § 5 BGB www.a.de", "Roh", "no cleanup"},
        {[](auto& r) { r.style.style = WritingStyle::brief; }, "Am 3. März 2024, Mit Gruß § 5 BGB www.a.de.", "Regelbasiert",
         "a letter keeps its dates"},
        {[](auto& r) {
             r.settings.cleanupMode = CleanupMode::local;
             r.style = {WritingStyle::neutral, false, "Suchfeld", true};
         },
         "äh am 3.März 2024,Vorlage Gruß § 5 BGB www.a.de", "Regelbasiert", "a search field gets neither rules nor model"},
        {[](auto& r) { r.stages = {commands, citations, addresses}; }, "Äh am 3. März 2024, Vorlage Gruß § 5 BGB www.a.de", "Regelbasiert",
         "some stages only"},
    };
    const auto untouched = request;
    for (const auto& row : rows) {
        request = untouched;
        row.given(request);
        const auto outcome = run("äh am 3. März 2024 Komma Vorlage Gruß Paragraph 5 BGB www Punkt a Punkt de");
        EXPECT_EQ(outcome.text, row.text) << row.reason;
        EXPECT_EQ(outcome.engineName, row.engine) << row.reason;
        EXPECT_EQ(outcome.trace.front().before, "äh am 3. März 2024 Komma Vorlage Gruß Paragraph 5 BGB www Punkt a Punkt de");
        for (std::size_t i = 1; i < outcome.trace.size(); ++i)
            EXPECT_EQ(outcome.trace[i].before, outcome.trace[i - 1].after) << row.reason << ", step " << i;
        EXPECT_EQ(better.back(), outcome.text);
        EXPECT_FALSE(modelBegan) << row.reason;
    }
}

TEST_F(TextPipelineTest, ReportsWhatFired) {
    auto outcome = run("hallo Komma Vorlage Gruß");
    EXPECT_EQ(outcome.fired(commands), Texts{"komma"});
    EXPECT_EQ(outcome.fired(blocks), Texts{"Gruß"});
    request.settings.cleanupMode = CleanupMode::local;
    outcome = run("bitte alles verwerfen");
    EXPECT_TRUE(outcome.discardedEverything);
    EXPECT_EQ(outcome.trace.size(), 1U) << "nothing runs after it";
    EXPECT_TRUE(better.empty() && !modelBegan);
}

TEST_F(TextPipelineTest, TheMainThreadNeverComputes) {
    time.holdBackground = true;
    std::optional<PipelineOutcome> outcome;
    TaskGroup tasks;
    const auto take = [](Task<PipelineOutcome> task, std::optional<PipelineOutcome>& to) -> Task<> { to = co_await std::move(task); };
    tasks.start(take(pipeline.run("hallo", request), outcome));
    time.settle();
    EXPECT_FALSE(outcome);
    time.holdBackground = false;
    time.settle();
    EXPECT_EQ(outcome->text, "Hallo.");
}

TEST_F(TextPipelineTest, WhateverTheModelDoesTheRulesTextGoesOn) {
    using enum LocalModelAvailability;
    using Answer = FakeLanguageModel::Answer;
    const auto meldete = [](const char* why) { return std::string("Lokales Modell meldete: ") + why; };
    struct Row {
        LocalModelAvailability state;
        Answer answer;
        Duration delay;
        const char* text;
        const char* engine;
        std::optional<std::string> fallback;
        const char* reason;
    };
    const char* rulesText = "die die § 5 BGB am 03.05.2024.";
    const std::vector<Row> rows = {
        {available, "Am 3. Mai 2024.", seconds(1), "Am 03.05.2024.", "Lokal (Modell)", {}, "an answer, formatted again"},
        {available, " \n", seconds(1), rulesText, "Lokal (Modell)", {}, "a silent model gives the text back"},
        {notSetUp, "Nie.", {}, rulesText, "Regelbasiert (offline)", "Das lokale Modell ist nicht eingerichtet.", "no model"},
        {available, std::unexpected(EnhancementError{"kaputt"}), {}, rulesText, "Regelbasiert (offline)", meldete("kaputt"), "failing"},
        {available, std::string(400, 'x'), {}, rulesText, "Regelbasiert (offline)", meldete("Die Antwort war zu lang."), "endless"},
        {available, "Spät.", seconds(11.9), "Spät.", "Lokal (Modell)", {}, "slow"},
        {available, "Nie.", std::chrono::hours(1), rulesText, "Regelbasiert (offline)", meldete("Die Antwort kam nicht rechtzeitig."),
         "stuck"},
    };
    request.settings.cleanupMode = CleanupMode::local;
    request.settings.textBlocks = {{"Zitat", "die die"}};
    for (const auto& row : rows) {
        model.next = row.state;
        model.answer = row.answer;
        model.delay = row.delay;
        model.cancelled = 0;
        const auto outcome = run("Baustein Zitat Paragraph 5 BGB am 3. Mai 2024");
        EXPECT_EQ(outcome.text, row.text) << row.reason << ": text put in after the rules isn't cleaned";
        EXPECT_EQ(outcome.engineName, row.engine) << row.reason;
        EXPECT_TRUE(modelBegan || row.state != available) << row.reason;
        EXPECT_EQ(outcome.fallbackReason, row.fallback) << row.reason;
        EXPECT_EQ(model.cancelled, row.delay > LocalModelEnhancer::longestWait ? 1 : 0) << row.reason;
    }
    EXPECT_EQ(log.countOf("§"), 0U) << "no dictated word in the log";
}

TEST_F(TextPipelineTest, AnAbandonedRunLeavesTheModelsAnswer) {
    request.settings.cleanupMode = CleanupMode::local;
    {
        TaskGroup tasks;
        const auto drop = [](Task<PipelineOutcome> task) -> Task<> { (void)co_await std::move(task); };
        tasks.start(drop(pipeline.run("hallo", request)));
        time.advance(seconds(0.5));
        EXPECT_EQ(model.sessions, 1);
    }
    EXPECT_EQ(time.pendingTimers(), 0U) << "neither the answer nor its deadline is waited for";
}

TEST_F(TextPipelineTest, GivesEachTextASessionAndStrictInstructions) {
    request.settings.cleanupMode = CleanupMode::local;
    request.style.style = WritingStyle::brief;
    model.answer = "<transkript>\r\n\"U\u0308ber Komma.\"</transkript>";
    EXPECT_EQ(run("über alles").text, "Über Komma.") << "unwrapped and composed";
    EXPECT_EQ(model.asked.prompt, "<transkript>\nÜber alles.\n</transkript>");
    EXPECT_TRUE(model.instructions.contains("\n\nStil: Schreibe in höflichem"));
    run("noch einer");
    EXPECT_EQ(model.sessions, 2);
}

TEST(LocalModelEnhancer, UnwrapsAnswers) {
    const std::vector<std::pair<const char*, const char*>> rows = {{"<transkript>\nHallo Welt.\n</transkript>", "Hallo Welt."},
                                                                   {"\"Hallo Welt.\"", "Hallo Welt."},
                                                                   {"„Hallo Welt.“", "„Hallo Welt.“"},
                                                                   {"\"\"ja\"\"", "\"ja\""},
                                                                   {"\"", "\""},
                                                                   {"\"\"", ""},
                                                                   {"a</transkript>b<transkript>", "ab"}};
    for (const auto& [answer, text] : rows) EXPECT_EQ(LocalModelEnhancer::stripWrapping(answer), text) << answer;
}

} // namespace
} // namespace querlin
