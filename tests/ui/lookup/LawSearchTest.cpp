#include "ui/lookup/LawSearch.h"

#include "SomeLaws.h"

#include "support/CapturedLog.h"
#include "support/ManualTime.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

constexpr auto pause = std::chrono::milliseconds(220);
constexpr auto moment = std::chrono::milliseconds(1);

struct LawSearchTest : testing::Test {
    LawSearchTest() {
        laws.deliver(someLaws());
        counting = search.hits().subscribe([this](const auto&) { ++searches; }, FirstValue::Skip);
    }

    /// "BGB-1814 [BGB-1815]": the hits, the chosen one in brackets.
    std::string shown() const {
        std::string ids;
        const auto& chosen = search.selection().get();
        for (const auto& hit : search.hits().get()) {
            const bool isChosen = chosen && hit.id() == chosen->id();
            ids += (ids.empty() ? "" : " ") + (isChosen ? "[" + hit.id() + "]" : hit.id());
        }
        return ids;
    }
    void ask(const std::string& query) {
        search.setQuery(query);
        time.advance(pause);
    }

    CapturedLog log;
    ManualTime time;
    LawFolders laws;
    LegalCorpus corpus{laws.store, time.runtime()};
    LawSearch search{time.runtime(), corpus};
    int searches = 0;
    Registration counting;
};

TEST_F(LawSearchTest, typing_searches_once_when_it_pauses) {
    for (const auto* typed : {"g", "ge", "gesp", "gespräch"}) {
        search.setQuery(typed);
        time.advance(pause - moment);
    }
    EXPECT_EQ(searches, 0);
    time.advance(moment);
    EXPECT_EQ(shown(), "[FamFG-278]");
    EXPECT_EQ(searches, 1);
    EXPECT_FALSE(search.searching().get());

    search.setQuery("1815");
    search.searchNow();
    time.settle();
    EXPECT_EQ(shown(), "[BGB-1815]");
    time.advance(pause);
    EXPECT_EQ(searches, 2) << "the pause has no search of its own any more";
}

TEST_F(LawSearchTest, an_answer_to_what_is_no_longer_asked_is_dropped) {
    ask("1814");
    time.holdBackground = true;
    ask("278");
    search.setQuery("1815");
    time.holdBackground = false;
    time.settle();
    EXPECT_EQ(shown(), "[BGB-1814]") << "the answer to 278 comes too late";
    EXPECT_TRUE(search.searching().get());
    time.advance(pause);
    EXPECT_EQ(shown(), "[BGB-1815]");

    time.holdBackground = true;
    ask("278");
    search.clear();
    time.holdBackground = false;
    time.advance(pause);
    EXPECT_EQ(shown(), "") << "nor does it fill a field that was cleared";
    EXPECT_FALSE(search.selection().get());
    EXPECT_FALSE(search.searching().get());
}

TEST_F(LawSearchTest, the_choice_stays_while_it_is_among_the_hits) {
    ask("geholfen");
    search.select(search.hits().get().at(1));
    EXPECT_EQ(shown(), "BGB-1814 [BGB-1815] FamFG-278");
    ask("geholfen wird");
    EXPECT_EQ(shown(), "BGB-1814 [BGB-1815] FamFG-278");
    ask("278");
    EXPECT_EQ(shown(), "[FamFG-278]");
    ask("nirgends zu finden");
    EXPECT_EQ(shown(), "");
    EXPECT_FALSE(search.selection().get());
}

} // namespace
} // namespace querlin
