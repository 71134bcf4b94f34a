#include "legal/LegalCorpus.h"

#include "support/Laws.h"
#include "support/CapturedLog.h"
#include "support/ManualTime.h"

#include <atomic>
#include <thread>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

/// A corpus over delivered laws.
struct World {
    CapturedLog log;
    LawFolders laws;
    ManualTime time;
    LegalCorpus corpus{laws.store, time};

    explicit World(std::vector<LegalLaw> delivered) { laws.deliver(std::move(delivered)); }

    /// "BGB 1814, FamFG 278": what is found, in its order.
    std::string find(std::string_view query, std::size_t limit = LegalCorpus::defaultLimit) {
        std::vector<std::string> found;
        for (const auto& hit : corpus.search(query, limit))
            found.push_back(fmt::format("{} {}", hit.law.view(), hit.section.id.view()));
        return fmt::format("{}", fmt::join(found, ", "));
    }
};

std::vector<LegalLaw> someLaws() {
    return {lawOf("BGB", {sectionOf("18", "Betreuung", "Der Betreuer handelt."), sectionOf("181", "Insichgeschäft", "Siehe § 1814."),
                          sectionOf("1814", "Voraussetzungen", "Betreuung der Äpfel nach BGB."),
                          sectionOf("1814a", "STRASSE", "Zwei\nZeilen")}),
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
        {"bgb 1814", "BGB 1814, BGB 1814a, BGB 181", "in whatever case and place"},
        {"xbgbx betreu", "", "also within a word, which leaves the rest of it"},
        {"BGB", "BGB 1814", "a law alone is looked for within itself"},
        {"1 SGB XII", "SGB XII 1, SGB XII 1814", "the longer of two names that begin alike"},
        {"1 sgb xi", "SGB XI 1", "the shorter where only it is said"},
        {"betreuung", "BGB 18, BGB 1814, SGB XII 1814", "titles first; each section once"},
        {"BETREUUNG", "BGB 18, BGB 1814, SGB XII 1814", "case doesn't count"},
        {"äpfel", "BGB 1814", "umlauts count"},
        {"apfel", "", "and aren't the vowel"},
        {"straße", "SGB XI 1", "ß is no ss"},
        {"strasse", "BGB 1814a", "nor the reverse"},
        {"handelt.", "BGB 18", "punctuation counts"},
        {"zwei\nzeilen", "BGB 1814a", "line feeds too"},
        {"buch\nbetreuung", "SGB XII 1", "what goes over the end belongs where it begins"},
        {"e", "", "one letter is too little"},
        {"1", "SGB XI 1, SGB XII 1, BGB 18, BGB 181, BGB 1814, BGB 1814a, SGB XII 1814", "one digit gives numbers alone"},
        {"  ", "", "blanks"},
        {"", "", "nothing"},
        {"zuletzt", "SGB XII 1814", "the very last entry"},
        {"\xFF\xFE", "", "no text at all"},
        {"½", "", "a number that no section has"},
    };
    for (const auto& [query, found, reason] : rows) EXPECT_EQ(world.find(query), found) << query << ": " << reason;
    EXPECT_EQ(world.find("1814", 3), "BGB 1814, SGB XII 1814, BGB 1814a") << "no more than asked for";
    EXPECT_EQ(world.find("betreuung", 1), "BGB 18");
    EXPECT_EQ(world.find("1814", 0), "");
    EXPECT_EQ(world.find("betreuung " + std::string(100'000, 'x')), "") << "pasted at length";
}

TEST(LegalCorpus, LooksSectionsUp) {
    auto laws = someLaws();
    laws[2].sections.push_back(sectionOf("1", "Später", "Doppelt"));
    laws[1].builddate = "kein Datum";
    World world(std::move(laws));
    EXPECT_FALSE(world.corpus.isLoaded() || world.corpus.extent()) << "nothing is loaded unasked";
    EXPECT_EQ(world.corpus.section("1814A", "bgb")->title, "STRASSE") << "case counts nowhere";
    EXPECT_EQ(world.corpus.section("1", "SGB XII")->title, "Später") << "of two the later";
    EXPECT_FALSE(world.corpus.section("1", "BGB"));
    EXPECT_FALSE(world.corpus.section("1814", "FamFG"));
    EXPECT_EQ(world.corpus.sectionInAnyLaw("1814")->id(), "BGB-1814");
    EXPECT_EQ(world.corpus.sectionInAnyLaw("1")->law, "SGB XI");
    EXPECT_FALSE(world.corpus.sectionInAnyLaw("7"));
    EXPECT_EQ(world.corpus.extent()->laws, 3U);
    EXPECT_EQ(world.corpus.extent()->sections, 6U);
    EXPECT_EQ(world.corpus.standSummary(),
              (std::vector<std::string>{"BGB: 4 §§, Stand 02.01.2024 – Zuletzt geändert am 1.2.2023",
                                        "SGB XI: 1 §§, Stand ? – Zuletzt geändert am 1.2.2023",
                                        "SGB XII: 3 §§, Stand 02.01.2024 – Zuletzt geändert am 1.2.2023"}));
    EXPECT_TRUE(world.log.has("[legal] Geladen: 8 Paragraphen aus BGB, SGB XI, SGB XII"));
    EXPECT_EQ(world.log.countOf("Korpus entpackt und gelesen in 0.00 s (0.0 MB)"), 1) << "loaded once";
}

TEST(LegalCorpus, StaysEmptyUntilItCanBeLoaded) {
    World world({});
    const auto file = world.laws.folder / "Ressourcen/LegalCorpus.deflate";
    struct Row {
        std::string content;
        const char* line;
    };
    for (const auto& [content, line] : std::vector<Row>{
             {"kurz", "[legal] Korpus liess sich nicht entpacken."},
             {*CorpusContainer::deflate("{}"), "[legal] Laden fehlgeschlagen: Der Gesetzesbestand ist kein vollständiger Bestand"},
             {*CorpusContainer::deflate("x"), "[legal] Laden fehlgeschlagen: Der Gesetzesbestand ist kein gültiges JSON"},
             {*CorpusContainer::deflate(LegalCorpusFile{"", {lawOf("A", {sectionOf("1", "", "kaputt \xFF")})}}.toJson()),
              "[legal] Laden fehlgeschlagen: Der Gesetzesbestand enthält Text, der kein UTF-8 ist."}}) {
        writeFile(file, content);
        EXPECT_FALSE(world.corpus.loadIfNeeded());
        EXPECT_FALSE(world.corpus.section("1", "BGB"));
        EXPECT_EQ(world.log.countOf(line), 2) << line << ": each call tries again";
    }
    std::filesystem::remove(file);
    EXPECT_TRUE(world.corpus.laws().empty() && world.corpus.search("xy").empty() && world.corpus.standSummary().empty());
    EXPECT_TRUE(world.log.has("[legal] LegalCorpus.deflate nicht gefunden."));

    world.laws.deliver(someLaws());
    world.corpus.preload(world.time);
    EXPECT_FALSE(world.corpus.isLoaded()) << "in the background";
    world.time.settle();
    EXPECT_TRUE(world.corpus.isLoaded());

    std::filesystem::create_directories(world.laws.store.directory());
    writeFile(world.laws.store.updatedCorpusURL(), "beschädigt");
    EXPECT_FALSE(world.corpus.reload()) << "a damaged stored corpus isn't replaced by the delivered one";
    EXPECT_TRUE(world.corpus.laws().empty()) << "nor by what was there";
    writeCorpus(world.laws.store.directory(), {"neu", {lawOf("Neu", {})}});
    EXPECT_TRUE(world.corpus.reload());
    EXPECT_EQ(world.corpus.laws().at(0).abbr, "Neu");
}

TEST(LegalCorpus, AnswersWhileItIsReplaced) {
    World world(someLaws());
    std::atomic<bool> isOver = false;
    std::atomic<int> answers = 0;
    const auto ask = [&](auto question) {
        return std::jthread([&, question] {
            while (!isOver) {
                question();
                ++answers;
            }
        });
    };
    {
        const auto searching = ask([&] {
            const auto hits = world.corpus.search("betreuung");
            EXPECT_TRUE(hits.size() == 3 || hits.size() == 1) << "one version or the other";
        });
        const auto looking = ask([&] { EXPECT_TRUE(world.corpus.section("1814", "BGB")); });
        const auto listing = ask([&] { EXPECT_GE(world.corpus.laws().size(), 1U); });
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
