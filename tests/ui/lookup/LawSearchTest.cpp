#include "ui/lookup/LawSearch.h"

#include "support/Laws.h"
#include "support/ManualTime.h"
#include "ui/lookup/CorpusProgress.h"

namespace querlin {
namespace {

class LawSearchTest : public ::testing::Test {
protected:
    LawSearchTest() {
        laws.deliver({lawOf("BGB", {sectionOf("1814", "Voraussetzungen", "Wer Hilfe braucht, bekommt sie."),
                                    sectionOf("1815", "", "Umfang der Hilfe.")}),
                      lawOf("FamFG", {sectionOf("1", "Anwendung", "Für alle.")})});
    }
    std::vector<std::string> found() const {
        std::vector<std::string> ids;
        for (const auto& hit : search.hits().get()) ids.push_back(hit.id());
        return ids;
    }
    std::string chosen() const { return search.selection().get() ? search.selection().get()->id() : "nichts"; }
    /// Types and waits for the answer.
    void ask(const std::string& query) {
        search.setQuery(query);
        time.advance(LawSearch::typingPause);
    }

    ManualTime time;
    LawFolders laws;
    LegalCorpus corpus{laws.store, time};
    LawSearch search{time.runtime(), corpus};
    using Ids = std::vector<std::string>;
};

TEST_F(LawSearchTest, typing_searches_once_220_milliseconds_behind_the_last_key) {
    EXPECT_EQ(search.hint(), "BGB und FamFG durchsuchen");
    int answers = 0;
    const auto counting = search.hits().subscribe([&](const auto&) { ++answers; }, FirstValue::Skip);
    for (const std::string query : {"1", "18", "181"}) {
        search.setQuery(query);
        time.advance(std::chrono::milliseconds(219));
        EXPECT_EQ(search.hint(), "Suche…");
    }
    EXPECT_EQ(answers, 0);
    time.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(found(), Ids({"BGB-1814", "BGB-1815"}));
    EXPECT_EQ(chosen(), "BGB-1814") << "the first one, where nothing was chosen";

    search.setQuery("1815");
    search.searchNow(); // Return.
    time.settle();
    EXPECT_EQ(found(), Ids({"BGB-1815"}));
    time.advance(seconds(1));
    EXPECT_EQ(answers, 2) << "and not again when the pause is over";
}

TEST_F(LawSearchTest, an_answer_to_what_is_no_longer_asked_is_dropped) {
    ask("1814");
    time.holdBackground = true;
    ask("Anwendung");
    search.setQuery("1815");
    time.holdBackground = false;
    time.settle();
    EXPECT_EQ(found(), Ids({"BGB-1814"})) << "the state stays as it is";
    EXPECT_TRUE(search.searching().get());
    time.advance(LawSearch::typingPause);
    EXPECT_EQ(found(), Ids({"BGB-1815"}));
    EXPECT_FALSE(search.searching().get());
}

TEST_F(LawSearchTest, the_choice_stays_while_it_is_among_the_hits) {
    ask("181");
    search.select(search.hits().get().at(1));
    ask("Hilfe");
    EXPECT_EQ(chosen(), "BGB-1815");
    ask("Anwendung");
    EXPECT_EQ(chosen(), "FamFG-1");
    ask("gibt es nicht");
    EXPECT_EQ(chosen(), "nichts");
    EXPECT_EQ(search.hint(), "Kein Treffer");
    ask("");
    EXPECT_EQ(search.hint(), "BGB und FamFG durchsuchen");
    ask("181");
    search.setQuery("1");
    search.clear();
    time.advance(seconds(1));
    EXPECT_EQ(found(), Ids());
    EXPECT_EQ(chosen(), "nichts");
    EXPECT_FALSE(search.searching().get());
}

TEST_F(LawSearchTest, a_copy_shows_for_a_moment) {
    search.markCopied();
    time.advance(seconds(1));
    search.markCopied();
    time.advance(seconds(0.5));
    EXPECT_FALSE(search.copied().get()) << "the second copy restarts nothing";
}

TEST_F(LawSearchTest, the_full_text_names_its_source) {
    ask("181");
    EXPECT_EQ(LawSearch::fullText(search.hits().get().at(0)),
              "§ 1814 BGB – Voraussetzungen\nWer Hilfe braucht, bekommt sie.");
    EXPECT_EQ(LawSearch::fullText(search.hits().get().at(1)), "§ 1815 BGB\nUmfang der Hilfe.");
}

/// What the empty pane says while there is no text at all.
TEST(CorpusProgressTest, tells_how_far_the_first_load_is) {
    using namespace LegalUpdateStage;
    struct Row {
        LegalUpdateService::Stage stage;
        std::string beginning;
        std::optional<double> share;
        bool isUnderWay;
    };
    const std::vector<Row> rows = {
        {Checking{13, 26}, "Das Gesetzesportal wird gefragt", 0.5, true},
        {Checking{0, 0}, "Das Gesetzesportal wird gefragt", std::nullopt, true},
        {Downloading{"BGB", 2, 8}, "Die Gesetze werden geladen: BGB (3 von 8)", 0.25, true},
        {Applying{}, "Die Gesetze werden gespeichert", 1.0, true},
        {Failed{"Keine Verbindung."}, "Keine Verbindung.\nSie werden", std::nullopt, false},
        {Idle{}, "Noch sind keine Gesetzestexte da.\nSie werden", std::nullopt, false},
    };
    for (const auto& [stage, beginning, share, isUnderWay] : rows) {
        const auto progress = CorpusProgress::of(stage, false);
        ASSERT_TRUE(progress) << beginning;
        EXPECT_TRUE(progress->text.starts_with(beginning)) << progress->text;
        EXPECT_EQ(progress->share, share) << beginning;
        EXPECT_EQ(progress->isUnderWay, isUnderWay) << beginning;
        EXPECT_EQ(CorpusProgress::of(stage, true), std::nullopt) << "with texts there is nothing to say";
    }
}

} // namespace
} // namespace querlin
