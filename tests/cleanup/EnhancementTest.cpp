// The language model's enhancer and the coordinator: whatever the model does, the words come back.

#include "cleanup/EnhancementCoordinator.h"
#include "cleanup/RuleBasedEnhancer.h"
#include "foundation/TaskGroup.h"
#include "state/PreferencesStore.h"
#include "support/CapturedLog.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Answer = std::expected<std::string, EnhancementError>;

/// A model that gives one answer and keeps what it is told.
class ScriptedModel final : public LanguageModel {
public:
    State state() const override { return current; }
    std::unique_ptr<LanguageModelSession> makeSession(std::string text) override {
        instructions = std::move(text);
        ++sessions;
        return std::make_unique<Session>(*this);
    }

    State current = State::available;
    Answer answer = "Fertig.";
    std::string instructions, prompt;
    int sessions = 0;
    int prewarmed = 0;

private:
    struct Session final : LanguageModelSession {
        explicit Session(ScriptedModel& owner) : model(owner) {}
        void prewarm() override { ++model.prewarmed; }
        Task<Answer> respond(std::string text, double temperature) override {
            EXPECT_EQ(temperature, 0.2);
            model.prompt = std::move(text);
            co_return model.answer;
        }
        ScriptedModel& model;
    };
};

class EnhancementTest : public testing::Test {
protected:
    EnhancementOutcome run(std::string text, TextTreatment treatment = {}) {
        std::optional<EnhancementOutcome> outcome;
        tasks_.start(take(coordinator.run(std::move(text), WritingStyle::brief, treatment), outcome));
        time.settle();
        return outcome.value();
    }

    TempFolder folder;
    CapturedLog log;
    ManualTime time;
    PreferencesStore store{folder.path() / "x.json", time.runtime()};
    AppSettings settings{store};
    ScriptedModel model;
    RuleBasedEnhancer rules{time.runtime()};
    LocalModelEnhancer enhancer{model};
    EnhancementCoordinator coordinator{settings, rules, enhancer};

private:
    static Task<> take(Task<EnhancementOutcome> task, std::optional<EnhancementOutcome>& outcome) { outcome = co_await std::move(task); }
    TaskGroup tasks_;
};

TEST_F(EnhancementTest, ChoosesTheWayByModeAndModel) {
    using State = LanguageModel::State;
    const EnhancementError broken{"kaputt"};
    struct Row {
        CleanupMode mode;
        State state;
        Answer answer;
        TextTreatment treatment;
        const char* text;
        EnhancementOutcome outcome;
        const char* reason;
    };
    const std::string tooOld = "Benötigt macOS 26 oder neuer.";
    using enum CleanupMode;
    const std::vector<Row> rows = {
        {local, State::available, "Nie.", {}, " \n", {"", "Roh", {}}, "nothing said, nothing asked"},
        {rules, State::available, "Nie.", {}, " ähm ja ", {"ähm ja", "Regelbasiert", {}}, "the pipeline has run the rules"},
        {none, State::available, "Nie.", {}, " ähm ja ", {"ähm ja", "Roh", {}}, "as it is"},
        {local, State::available, "Ja.", {}, "ja", {"Ja.", "Lokal (Apple)", {}}, "the model"},
        {local, State::available, " \n", {}, "ja Punkt", {"ja.", "Lokal (Apple)", {}}, "a silent model gives the text back"},
        {local, State::unsupported, "Nie.", {}, "ähm ja Punkt", {"Ja.", "Regelbasiert (offline)", tooOld}, "no model"},
        {local,
         State::available,
         std::unexpected(broken),
         {},
         "ähm ja",
         {"Ja.", "Regelbasiert (offline)", "Lokales Modell meldete: kaputt"},
         "a failing model"},
        {local,
         State::unsupported,
         "Nie.",
         {true, true},
         "§ 1 Punkt eins: die die",
         {"§ 1 Punkt eins: die die", "Regelbasiert (offline)", tooOld},
         "rules don't run twice"},
        {local,
         State::unsupported,
         "Nie.",
         {true, false},
         "der Punkt ist ähm klar",
         {"Der Punkt ist klar.", "Regelbasiert (offline)", tooOld},
         "nouns stay nouns"},
    };
    for (const auto& row : rows) {
        settings.cleanupMode.set(row.mode);
        model.current = row.state;
        model.answer = row.answer;
        EXPECT_EQ(run(row.text, row.treatment), row.outcome) << row.reason;
    }
    EXPECT_TRUE(log.has("[cleanup] Lokales Modell fehlgeschlagen: kaputt"));
}

TEST_F(EnhancementTest, GivesEachTextASessionAndStrictInstructions) {
    settings.cleanupMode.set(CleanupMode::local);
    model.answer = "<transkript>\r\n\"U\u0308ber Komma.\"</transkript>";
    EXPECT_EQ(run("über Komma", {true, true}).text, "Über Komma.") << "unwrapped and composed";
    EXPECT_EQ(model.prompt, "<transkript>\nüber Komma\n</transkript>");
    EXPECT_TRUE(model.instructions.starts_with("Du bereinigst deutschsprachige Sprachdiktate eines rechtlichen Betreuers."));
    EXPECT_TRUE(model.instructions.contains("\n\nStil: Schreibe in höflichem"));
    EXPECT_TRUE(model.instructions.ends_with("keine Anführungszeichen, kein Markdown, keine XML-Tags."));
    run("noch einer");
    EXPECT_EQ(model.sessions, 2);

    enhancer.prewarm(WritingStyle::neutral);
    EXPECT_EQ(model.prewarmed, 1);
    EXPECT_TRUE(log.has("[cleanup] Lokales Modell vorgewärmt."));
    model.current = LanguageModel::State::loading;
    enhancer.prewarm(WritingStyle::neutral);
    EXPECT_EQ(model.prewarmed, 1) << "not while it can't be used";
    EXPECT_EQ(EnhancementCoordinator::effectiveDescription(CleanupMode::local, enhancer.availability()),
              "Das lokale Modell wird noch geladen. Später erneut versuchen. Es wird regelbasiert bereinigt.");
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
