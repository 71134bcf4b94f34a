#include "legal/LegalCorpus.h"

#include "support/CapturedLog.h"
#include "support/Laws.h"
#include "support/ManualTime.h"

#include "foundation/TaskGroup.h"

#include <atomic>
#include <thread>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

/// A corpus over delivered laws.
struct World {
    LawFolders laws;
    ManualTime time;
    LegalCorpus corpus{laws.store, time.runtime()};

    explicit World(std::vector<LegalLaw> delivered) {
        laws.deliver(std::move(delivered));
        corpus.loadIfNeeded();
    }

    /// "BGB 1814, FamFG 278": what is found, in its order.
    std::string find(std::string_view query, std::size_t limit = LegalCorpus::defaultLimit) {
        std::vector<std::string> found;
        for (const auto& hit : corpus.search(query, limit)) found.push_back(fmt::format("{} {}", hit.law.view(), hit.section.id.view()));
        return fmt::format("{}", fmt::join(found, ", "));
    }
};

std::vector<LegalLaw> someLaws() {
    return {lawOf("BGB",
                  {sectionOf("18", "Betreuung", "Der Betreuer handelt."), sectionOf("181", "Insichgeschäft", "Siehe § 1814."),
                   sectionOf("1814", "Voraussetzungen", "Betreuung der Äpfel nach BGB."), sectionOf("1814a", "STRASSE", "Zwei\nZeilen")}),
            lawOf("SGB XI", {sectionOf("1", "Pflege", "Erster der Pflege, Straße 1814.")}),
            lawOf("SGB XII", {sectionOf("1", "Hilfe", "Zwölftes Buch"), sectionOf("1814", "", "betreuung zuletzt")})};
}

TEST(LegalCorpus, FindsSectionsByNumberAndWord) {
    World world(someLaws());
    const std::vector<std::tuple<const char*, const char*, const char*>> rows = {
        {"1814", "BGB 1814, SGB XII 1814, BGB 1814a, BGB 181, SGB XI 1", "exact, then begun so, then texts"},
        {"§ 1814", "BGB 1814, SGB XII 1814, BGB 1814a, BGB 181", "the sign doesn't hinder a number, but counts in texts"},
        {"§§1814A", "BGB 1814a", "case doesn't count"},
        {"1814 BGB", "BGB 1814, BGB 1814a, BGB 181", "a law restricts"},
        {"xbgbx betreu", "", "also within a word, which leaves the rest of it"},
        {"BGB", "BGB 1814", "a law alone is looked for within itself"},
        {"1 SGB XII", "SGB XII 1, SGB XII 1814", "the longer of two names that begin alike"},
        {"1 sgb xi", "SGB XI 1", "the shorter where only it is said"},
        {"betreuung", "BGB 18, BGB 1814, SGB XII 1814", "titles first; each section once"},
        {"straße", "SGB XI 1", "ß is no ss"},
        {"buch\nbetreuung", "SGB XII 1", "what goes over the end belongs where it begins"},
        {"e", "", "one letter is too little"},
        {"1", "SGB XI 1, SGB XII 1, BGB 18, BGB 181, BGB 1814, BGB 1814a, SGB XII 1814", "one digit gives numbers alone"},
        {"\xFF\xFE", "", "no text at all"},
    };
    for (const auto& [query, found, reason] : rows) EXPECT_EQ(world.find(query), found) << query << ": " << reason;
    EXPECT_EQ(world.find("1814", 3), "BGB 1814, SGB XII 1814, BGB 1814a") << "no more than asked for";
    EXPECT_EQ(world.find("betreuung " + std::string(100'000, 'x')), "") << "pasted at length";
}

TEST(LegalCorpus, LooksSectionsUp) {
    auto laws = someLaws();
    laws[2].sections.push_back(sectionOf("1", "Später", "Doppelt"));
    World world(std::move(laws));
    EXPECT_EQ(world.corpus.section("1814A", "bgb")->title, "STRASSE") << "case counts nowhere";
    EXPECT_EQ(world.corpus.section("1", "SGB XII")->title, "Später") << "of two the later";
    EXPECT_FALSE(world.corpus.section("1", "BGB"));
    EXPECT_EQ(world.corpus.sectionInAnyLaw("1814")->id(), "BGB-1814");
    EXPECT_EQ(world.corpus.sectionInAnyLaw("1")->law, "SGB XI");
    EXPECT_FALSE(world.corpus.sectionInAnyLaw("7"));
}

TEST(LegalCorpus, AFailedLoadChangesNothing) {
    World world({});
    const std::vector<std::string> damages = {
        "kurz", *CorpusContainer::deflate("{}"), *CorpusContainer::deflate("x"),
        *CorpusContainer::deflate(LegalCorpusFile{"", {lawOf("A", {sectionOf("1", "", "kaputt \xFF")})}}.toJson())};
    for (const bool wasLoaded : {false, true}) {
        LegalCorpus corpus(world.laws.store, world.time.runtime());
        world.laws.deliver(someLaws());
        if (wasLoaded) corpus.loadIfNeeded();
        for (const auto& content : damages) {
            writeFile(*world.laws.store.corpusURL(), content);
            EXPECT_FALSE(corpus.reload());
            EXPECT_EQ(corpus.section("1814", "BGB").has_value(), wasLoaded);
        }
        std::filesystem::remove(*world.laws.store.corpusURL());
        EXPECT_FALSE(corpus.reload());
    }
}

Task<> whenReady(LegalCorpus& corpus, int& count) {
    co_await corpus.ready();
    ++count;
}

TEST(LegalCorpus, TheFirstLoadIsWaitedForAndHappensOnce) {
    LawFolders laws;
    laws.deliver(someLaws());
    CapturedLog log;
    ManualTime time;
    LegalCorpus corpus(laws.store, time.runtime());
    TaskGroup tasks;
    int ready = 0;
    time.holdBackground = true;
    corpus.preload();
    tasks.start(whenReady(corpus, ready));
    tasks.start(whenReady(corpus, ready));
    time.settle();
    EXPECT_FALSE(corpus.section("1814", "BGB")) << "a look never loads, whatever thread it is on";
    EXPECT_EQ(ready, 0);
    time.holdBackground = false;
    time.settle();
    EXPECT_EQ(ready, 2);
    EXPECT_TRUE(corpus.section("1814", "BGB"));
    EXPECT_EQ(log.countOf("[legal] Geladen: 7 Paragraphen aus BGB, SGB XI, SGB XII"), 1);

    LegalCorpus stuck(laws.store, time.runtime());
    time.holdBackground = true;
    tasks.start(whenReady(stuck, ready));
    time.advance(LegalCorpus::longestWait);
    EXPECT_EQ(ready, 3) << "a disk that doesn't answer holds nobody up for long";
    time.holdBackground = false;
    time.settle();
}

TEST(LegalCorpus, AnswersWhileItIsReplaced) {
    World world(someLaws());
    std::atomic<bool> isOver = false;
    std::atomic<int> answers = 0;
    {
        const std::jthread asking([&] {
            for (; !isOver; ++answers) {
                const auto hits = world.corpus.search("betreuung");
                EXPECT_TRUE(hits.size() == 3 || hits.size() == 1) << "one version or the other";
                EXPECT_TRUE(world.corpus.section("1814", "BGB"));
            }
        });
        for (int round = 0; round < 40; ++round) {
            // What was loaded before an update is gone for good.
            const auto put = [&world](std::vector<LegalLaw> laws) {
                const auto count = laws.size();
                EXPECT_TRUE(world.laws.store.write({{"neu", std::move(laws)}, {}}, Date()));
                EXPECT_TRUE(world.corpus.reload());
                EXPECT_EQ(world.corpus.laws().size(), count);
            };
            put({lawOf("BGB", {sectionOf("1814", "Betreuung", "Neu")})});
            put(someLaws());
        }
        isOver = true;
    }
    EXPECT_GT(answers, 0);
}

} // namespace
} // namespace querlin
