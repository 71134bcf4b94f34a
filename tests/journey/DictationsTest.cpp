// Dictations that reach their end: into editors, lines and search fields, with laws, and taken back.

#include "Journey.h"

#include "support/Archives.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

struct Dictations : Journey {};

TEST_F(Dictations, ALetterIntoAnEditorOfGtk) {
    startQuerlin();
    const auto editor = open({"mousepad", "--disable-server"}, "Textbereich: ");
    dictate("sehr geehrte Frau Müller Komma neuer Absatz der Antrag wurde am Montag bewilligt Punkt neuer Absatz mit freundlichen Grüßen");
    const std::string letter = "Sehr geehrte Frau Müller,\n\nDer Antrag wurde am Montag bewilligt.\n\nMit freundlichen Grüßen.";
    expectDelivered("Textbereich: " + letter, letter);
}

/// A word of the user's own, a text block of his, a file number, a date and a citation.
TEST_F(Dictations, ANoteForTheFileIntoAnEditorOfQt) {
    if (!isInstalled("featherpad")) GTEST_SKIP() << "featherpad isn't installed.";
    querlin.prepare([](AppSettings& settings) {
        settings.writingStyle.set(WritingStyle::aktenstil);
        settings.userDictionary.set({"Textbaustein"});
        settings.textBlocks.set({{"Aktenzeichen", "Aktenzeichen XVII 412 25 vom 3. März 2026."}});
    });
    startQuerlin();
    const auto editor = open({"featherpad", "--standalone"}, "Textbereich: ");
    dictate("Vermerk Doppelpunkt Textbaustein Aktenzeichen Punkt auf Paragraph achtzehn hundert vierzehn Absatz zwei B G B wird verwiesen "
            "Punkt");
    const std::string note = "Vermerk: Aktenzeichen XVII 412/25 vom 03.03.2026. Auf § 1814 Abs. 2 BGB wird verwiesen.";
    expectDelivered("Textbereich: " + note, note);
}

TEST_F(Dictations, OneLineIntoAFieldToSearchBy) {
    if (!isInstalled("firefox-esr")) GTEST_SKIP() << "Firefox isn't installed.";
    startQuerlin();
    const auto browser = open(firefoxWith(folder.path(), "<input autofocus><input type=search>"), "Textfeld: ");
    shell("xdotool key Tab");
    ASSERT_TRUE(comesToShow("Textfeld (Suche): "));
    dictate("der Antrag auf Grundsicherung wurde abgelehnt neue Zeile");
    const std::string words = "der Antrag auf Grundsicherung wurde abgelehnt";
    expectDelivered("Textfeld (Suche): " + words, words);
}

TEST_F(Dictations, NothingIntoAPasswordField) {
    startQuerlin();
    const auto dialog = open({"zenity", "--password"}, "Textfeld (Passwort): -");
    ASSERT_TRUE(beginRecording());
    EXPECT_TRUE(eventually([&] { return words().contains("Passwortfeld – hier wird nicht eingefügt"); })) << words();
    EXPECT_TRUE(querlin.recordings().empty()) << "the microphone stays closed";
    release();
    EXPECT_TRUE(overlayGoes());
    expectNothingKept();
}

/// A law of our own wording under a name that is known to speech, as the portal has it.
std::string lawArchive() {
    auto law = contentOf(std::filesystem::path(QUERLIN_TEST_LAWS) / "mbtg.xml");
    law.replace(law.find("<jurabk>MBtG"), 12, "<jurabk>BGB");
    return archiveOf({{"BGB.xml", law}});
}

TEST_F(Dictations, TheWordingOfALaw) {
    std::filesystem::create_directories(folder / "archiv/bgb");
    writeFile(folder / "archiv/bgb/xml.zip", lawArchive());
    writeFile(folder / "manifest.json",
              R"({"generated": "2026-01-01", "laws": [{"abbr": "BGB", "slug": "bgb", "source": "https://portal.example/bgb/xml.zip",)"
              R"( "tier": 1, "priorityRanges": [], "builddate": "", "stand": "", "lastModified": "", "sectionCount": 0, "sha256": ""}]})");
    shell(fmt::format("{} make '{}' '{}' '{}'", QUERLIN_LAWCORPUS, (folder / "manifest.json").string(), querlin.paths().laws().string(),
                      (folder / "archiv").string()));
    startQuerlin();
    const auto editor = open({"mousepad", "--disable-server"}, "Textbereich: ");
    dictate("füge Paragraph eins B G B, ein neuer Absatz mit freundlichen Grüßen");
    const std::string law = "§ 1 BGB – Grundsatz\n(1) Muster sind zu hegen. Sehr.\n\n(2) Sie wach\nsen\nnicht von selbst.\n\n"
                            "(2a) Auch hier nicht.\n\n(3) Siehe § 2 Abs. 1.\n\nMit freundlichen Grüßen.";
    expectDelivered("Textbereich: " + law, law);
}

TEST_F(Dictations, OneThatIsTakenBack) {
    startQuerlin();
    const auto editor = open({"mousepad", "--disable-server"}, "Textbereich: ");
    dictate("die Rechnung liegt vor alles verwerfen");
    EXPECT_TRUE(querlin.says("[commands] Diktat auf Zuruf verworfen."));
    EXPECT_TRUE(overlayGoes());
    EXPECT_TRUE(becomes("Textbereich: "));
    expectNothingKept();
}

TEST_F(Dictations, TheKeyPressedAgainBeforeTheTextIsThereChangesNothing) {
    startQuerlin();
    const auto editor = open({"mousepad", "--disable-server"}, "Textbereich: ");
    dictate("das Amtsgericht hat den Antrag auf Betreuung genehmigt");
    press();
    release();
    const std::string text = "Das Amtsgericht hat den Antrag auf Betreuung genehmigt.";
    expectDelivered("Textbereich: " + text, text);
}

TEST_F(Dictations, OneAfterTheOther) {
    startQuerlin();
    const auto editor = open({"mousepad", "--disable-server"}, "Textbereich: ");
    std::string all;
    for (const std::size_t number : {1U, 2U, 3U}) {
        dictate("mit freundlichen Grüßen");
        all += "Mit freundlichen Grüßen.";
        EXPECT_TRUE(becomes("Textbereich: " + all));
        ASSERT_TRUE(eventually([&] { return querlin.countOf("[timing] Erkennung") == number; }));
        EXPECT_EQ(clipboard(), copiedBefore);
    }
    EXPECT_TRUE(eventually([&] { return querlin.history().size() == 3; }));
    EXPECT_TRUE(eventually([&] { return querlin.statistics() == "3 Diktate, 9 Wörter"; })) << querlin.statistics();
}

} // namespace
} // namespace querlin
