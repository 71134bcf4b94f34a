#include "legal/LegalUpdateService.h"

#include "support/CapturedLog.h"
#include "support/FakePortal.h"
#include "support/HostileDisk.h"
#include "support/KilledChild.h"
#include "support/Laws.h"
#include "support/ManualTime.h"

#include "foundation/Json.h"

#include <random>

#include <gtest/gtest.h>

namespace querlin {
namespace {

using namespace LegalUpdateStage;

LegalManifestEntry rowOf(const std::string& abbr, std::string lastModified, std::int64_t sectionCount) {
    LegalManifestEntry row;
    row.abbr = row.slug = abbr;
    row.source = "https://portal.example/" + abbr + "/xml.zip";
    row.tier = 2;
    row.priorityRanges = {{2, 3}};
    row.lastModified = std::move(lastModified);
    row.sectionCount = sectionCount;
    row.sha256 = "Prüfsumme " + abbr;
    return row;
}

/// The service over a portal with two laws, of which the second has a new version.
struct World {
    CapturedLog log;
    LawFolders laws;
    ManualTime time;
    PreferencesStore preferences{laws.folder / "Einstellungen.json", time.runtime()};
    AppSettings settings{preferences};
    LegalCorpus corpus{laws.store, time.runtime()};
    FakePortal portal{time};
    std::optional<LegalUpdateService> service;

    World() {
        laws.deliver({lawOf("BGB", {sectionOf("1", "", "Alt")}), lawOf("FamFG", {sectionOf("1", "", "Alt")})});
        deliver({"2026-01-01", {rowOf("BGB", "Montag", 1), rowOf("FamFG", "Montag", 1)}});
        portal.pages[address("BGB")] = {"Montag", "nicht gefragt"};
        portal.pages[address("FamFG")] = {"Dienstag", lawArchive("Verfahren", 3, "Neu")};
        corpus.loadIfNeeded();
        start();
    }
    void deliver(const LegalManifest& manifest) {
        writeFile(laws.folder / "Ressourcen/LegalManifest.json", Json::compact(toJson(manifest)));
    }
    /// As at the program's start.
    void start() { service.emplace(settings, laws.store, corpus, portal, time.runtime()); }
    static std::string address(const std::string& abbr) { return "https://portal.example/" + abbr + "/xml.zip"; }

    LegalUpdateService::Stage check() {
        service->checkNow();
        time.advance(seconds(60));
        EXPECT_FALSE(service->isRunning());
        return service->stage.get();
    }
    std::string textOf(const std::string& law) {
        const auto section = corpus.section("1", law);
        return section ? std::string(section->text) : "nichts";
    }
};

TEST(LegalUpdateService, FetchesWhatHasChanged) {
    World world;
    EXPECT_EQ(world.textOf("FamFG"), "Alt");
    EXPECT_EQ(world.check(), LegalUpdateService::Stage(Updated{{"FamFG"}}));

    EXPECT_EQ(world.portal.requests, 3) << "what is as old as ours is not fetched";
    EXPECT_EQ(world.textOf("FamFG"), "Neu") << "the running corpus has it at once";
    EXPECT_EQ(world.textOf("BGB"), "Alt");
    const auto stored = loadCorpus(world.laws.store.updatedCorpusURL()).value();
    ASSERT_EQ(stored.laws.size(), 2);
    const auto& law = stored.laws[1];
    EXPECT_EQ(law.name, "Verfahren");
    EXPECT_TRUE(!law.sections[0].priority && law.sections[1].priority) << "by the row's ranges";

    auto expected = rowOf("FamFG", "Dienstag", 3);
    expected.builddate = "20250102030405";
    expected.stand = "Stand Neu";
    const LegalManifest manifest{"2026-03-14", {rowOf("BGB", "Montag", 1), expected}};
    EXPECT_EQ(world.laws.store.currentManifest(), manifest) << "the check sum too stays what it was";
    EXPECT_EQ(world.service->laws.get(), manifest.laws);
    EXPECT_TRUE(world.settings.lawsLastChecked.get());

    EXPECT_EQ(world.check(), LegalUpdateService::Stage(UpToDate{})) << "what was fetched counts";
}

TEST(LegalUpdateService, LeavesALawThatCannotBeHadAsItIs) {
    struct Row {
        std::function<void(World&)> change;
        LegalUpdateService::Stage end;
        bool counts; // As a check, for thirty days.
        const char* reason;
    };
    const auto page = [](World& world) -> FakePortal::Page& { return world.portal.pages[World::address("FamFG")]; };
    const Failed none{"Keine der neuen Fassungen ließ sich laden."};
    const Failed half{"Für 1 von 2 Gesetzen kam keine Antwort vom Gesetzesportal, die übrigen sind aktuell."};
    const Failed nobody{"Das Gesetzesportal ist nicht erreichbar."};
    const auto garbled = [&](std::string body) { return [&page, body](World& world) { page(world).body = body; }; };
    const std::vector<Row> rows = {
        {[&](World& world) { page(world).headError = "Kein Netz."; }, half, false, "one that can't be reached"},
        {[&](World& world) { page(world).lastModified = ""; }, half, false, "an answer without age says nothing"},
        {[](World& world) { world.portal.pages.clear(); }, nobody, false, "another's page for all, as in a hotel"},
        {[](World& world) {
             auto row = rowOf("FamFG", "Montag", 1);
             row.source = "ftp://portal.example/x";
             world.deliver({"", {row}});
         },
         nobody, false, "no address"},
        {[&](World& world) { page(world).getError = "Abgebrochen."; }, none, false, "broken off"},
        {garbled("<html>404</html>"), none, true, "an error page"},
        {garbled(archiveOf({{"a.xml", "<a><b></a>"}})), none, true, "damaged"},
        {garbled(lawArchive("X", 0, "")), none, true, "empty"},
        {[](World& world) { std::filesystem::remove(world.laws.folder / "Ressourcen/LegalManifest.json"); },
         Failed{"Kein Gesetzesmanifest gefunden."}, false, "no manifest"},
        {[](World& world) { writeFile(world.laws.folder / "Ressourcen/LegalCorpus.deflate", "beschädigt"); },
         Failed{"Der vorhandene Gesetzesbestand ließ sich nicht lesen."}, false, "nothing to put the new law into"},
    };
    for (const auto& [change, end, counts, reason] : rows) {
        World world;
        world.portal.pages[World::address("FamFG")].lastModified = end == LegalUpdateService::Stage(half) ? "Montag" : "Dienstag";
        change(world);
        EXPECT_EQ(world.check(), end) << reason;
        EXPECT_FALSE(world.log.has("[gesetze] Alle Gesetzesstände aktuell.")) << reason;
        EXPECT_FALSE(world.laws.store.hasUpdatedCorpus()) << reason;
        EXPECT_EQ(world.settings.lawsLastChecked.get().has_value(), counts) << reason;
    }
}

TEST(LegalUpdateService, TakesWhatWorks) {
    World world;
    world.deliver({"", {rowOf("BGB", "", 0), rowOf("FamFG", "Montag", 1), rowOf("BtOG", "", 0)}});
    world.portal.pages[World::address("BGB")].getError = "Abgebrochen.";
    world.portal.pages[World::address("FamFG")].getIsAgeless = true;
    world.portal.pages[World::address("BtOG")] = {"Gestern", lawArchive("", 1, "Organisation")};
    EXPECT_EQ(world.check(), LegalUpdateService::Stage(Updated{{"FamFG", "BtOG"}}));
    EXPECT_FALSE(world.settings.lawsLastChecked.get()) << "BGB is asked for again at the next start";
    const auto laws = world.corpus.laws();
    ASSERT_EQ(laws.size(), 3);
    EXPECT_EQ(laws[2].abbr, "BtOG") << "one that wasn't there comes last";
    EXPECT_EQ(laws[2].name, "BtOG") << "a law without a name is called by its abbreviation";
    const auto rows = world.service->laws.get();
    EXPECT_EQ(rows[0], rowOf("BGB", "", 0)) << "unchanged, so that it is tried again";
    EXPECT_EQ(rows[1].lastModified, "Montag") << "an answer without age leaves the row's";
    EXPECT_EQ(rows[2].lastModified, "Gestern");
}

TEST(LegalUpdateService, ChecksByItselfWhenItIsTime) {
    using std::chrono::days;
    struct Row {
        std::optional<Duration> since;
        bool isOn;
        std::int64_t sections;
        bool checks;
        const char* reason;
    };
    for (const auto& [since, isOn, sections, checks, reason] : {
             Row{std::nullopt, true, 1, true, "never yet"},
             Row{days(30), true, 1, true, "thirty days"},
             Row{days(30) - std::chrono::seconds(1), true, 1, false, "a second less"},
             Row{days(1), true, 0, true, "a law has never been loaded"},
             Row{std::nullopt, false, 0, false, "switched off"},
         }) {
        World world;
        world.deliver({"", {rowOf("BGB", "Montag", 1), rowOf("FamFG", "Dienstag", sections)}});
        world.settings.updateLawsAutomatically.set(isOn);
        if (since) world.settings.lawsLastChecked.set(world.time.now() - std::chrono::duration_cast<Date::duration>(*since));
        world.start();
        world.service->checkIfDue();
        world.time.advance(seconds(60));
        EXPECT_EQ(world.portal.requests > 0, checks) << reason;
        EXPECT_EQ(world.service->stage.get(), LegalUpdateService::Stage(Idle{})) << reason << ": nothing new is nothing to show";
        EXPECT_EQ(world.check(), LegalUpdateService::Stage(UpToDate{})) << reason << ": the user may always ask";
    }
}

TEST(LegalUpdateService, RunsOnceAtATimeAndEndsWithItsOwner) {
    World world;
    world.service->checkNow();
    world.time.advance(seconds(0.15));
    EXPECT_TRUE(world.service->isRunning());
    world.service->checkNow();
    world.service->checkIfDue();
    world.time.advance(seconds(60));
    EXPECT_EQ(world.portal.requests, 3);

    for (int steps = 0; steps < 6; ++steps) {
        world.portal.pages[World::address("FamFG")].lastModified += "!";
        world.service->checkNow();
        world.time.advance(seconds(0.06 * steps));
        world.service.reset(); // In the middle.
        world.time.advance(seconds(60));
        world.portal.atOnce = 0;
        world.start();
    }
    world.portal.pages[World::address("FamFG")].lastModified += "!";
    EXPECT_EQ(world.check(), LegalUpdateService::Stage(Updated{{"FamFG"}}));
}

TEST(LegalUpdateService, DiscardsThePairThatItCannotSave) {
    World world;
    world.check();
    world.portal.pages[World::address("FamFG")] = {"Mittwoch", lawArchive("Verfahren", 1, "Noch neuer")};
    {
        const ReadOnlyFolder noRoom(world.laws.store.directory());
        EXPECT_TRUE(std::get<Failed>(world.check()).message.starts_with("Speichern fehlgeschlagen: "));
    }
    EXPECT_EQ(world.textOf("FamFG"), "Neu") << "what is in memory stays";
    const FullDisk full(10);
    world.portal.pages[World::address("FamFG")].lastModified = "Donnerstag";
    EXPECT_TRUE(std::get<Failed>(world.check()).message.starts_with("Speichern fehlgeschlagen: "));
    EXPECT_FALSE(world.laws.store.hasUpdatedCorpus());
    EXPECT_EQ(world.laws.store.currentManifest()->laws[1].lastModified, "Montag");
    EXPECT_TRUE(fileNames(world.laws.store.directory()).empty()) << "nothing half-written is left";
}

TEST(LegalUpdateService, LeavesAWholePairWhereverItIsKilled) {
    constexpr int kills = 200;
    std::mt19937 random(8);
    int longestMicroseconds = 40'000; // Grows on a machine that takes longer for an update.
    const TempFolder folder;
    int versions = 0;
    for (int i = 0; i < kills && !testing::Test::HasFailure(); ++i) {
        const std::chrono::microseconds life(std::uniform_int_distribution(0, longestMicroseconds)(random));
        const auto told = killedAfter('u', {QUERLIN_UPDATE_CHILD, folder.path()}, life);
        ASSERT_TRUE(told.starts_with('u')) << "the child must begin an update";
        const LegalCorpusStore store(folder / "Gesetze", folder / "Ressourcen");
        const auto corpus = loadCorpus(*store.corpusURL());
        ASSERT_TRUE(corpus) << "kill " << i << ": " << corpus.error();
        const auto manifest = store.currentManifest();
        ASSERT_TRUE(manifest);
        const auto version = [&](std::size_t law) { return std::stoi(std::string(corpus->laws.at(law).stand.view().substr(6))); };
        const auto known = [&](std::size_t law) { return std::stoi(manifest->laws.at(law).lastModified); };
        EXPECT_EQ(version(0), version(1)) << "kill " << i << ": laws of one update";
        EXPECT_EQ(known(0), known(1));
        EXPECT_TRUE(known(0) == version(0) || known(0) + 1 == version(0)) << "the manifest is never newer";
        EXPECT_GE(version(0), versions) << "and nothing goes back";
        if (version(0) == versions) longestMicroseconds += longestMicroseconds / 20;
        versions = version(0);
    }
    EXPECT_GT(versions, kills / 4) << "otherwise the kills have not met the writing";
}

} // namespace
} // namespace querlin
