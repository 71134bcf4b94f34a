#include "legal/LegalXMLParser.h"

#include "legal/LawEdition.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <filesystem>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

using LegalXMLParser::parse;

std::string ownLaw() { return contentOf(std::filesystem::path(QUERLIN_TEST_LAWS) / "mbtg.xml"); }

/// A law with one section of the given content.
std::string lawWith(std::string_view content) {
    return fmt::format("<dokumente><norm><metadaten><enbez>§ 1</enbez></metadaten><textdaten><text>{}</text>"
                       "</textdaten></norm></dokumente>",
                       content);
}

TEST(LegalXMLParser, ReadsALaw) {
    const std::vector<LegalManifestEntry::Range> ranges = {{1, 1}, {7, 9}};
    const auto law = parse(ownLaw(), ranges);
    ASSERT_TRUE(law) << law.error().description();
    EXPECT_EQ(law->name, "Gesetz über das\nMuster der Betreuung") << "of the first norm alone";
    EXPECT_EQ(law->stand, "Zuletzt geändert am 1.2.2023") << "the first note of this kind, trimmed";
    EXPECT_EQ(law->builddate, "20240102030405") << "of the first norm";

    const std::vector<LegalSection> expected = {
        {"1", 1, "", "§ 1", "Grundsatz", "Buch 1 – Anfang",
         "(1) Muster sind zu hegen. Sehr.\n\n(2) Sie wach\nsen\nnicht von selbst.\n\n(2a) Auch hier nicht.\n\n"
         "(3) Siehe § 2 Absatz 1.",
         true},
        {"1a", 1, "a", "§ 1A", "Listen", "Buch 1 – Anfang / Abschnitt 2", "Es gibt\n1.Erstes,\n2.Zweites.", true},
        {"5", 5, "", "§ 5", "Tafel", "Nur ein Titel",
         "Der zweite Text gilt:\n\ta\tb\n\nEnde\n\nund Schluss.\n\na <b> c 17 Euro, 5 \u2003Uhr\n\ta\t\tc", false},
        {"99999999999999999999", 0, "", "§ 99999999999999999999", "", "Nur ein Titel", "Sehr spät.", false}};
    ASSERT_EQ(law->sections.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto& section = law->sections[i];
        EXPECT_EQ(section, expected[i]) << section.label.view() << " | " << section.title.view() << " | " << section.path.view() << " | "
                                        << section.text.view();
    }
}

TEST(LegalXMLParser, RefusesWhatIsDamagedOrHostile) {
    const auto whole = ownLaw();
    std::string bomb = "<!DOCTYPE d [<!ENTITY a 'ha'>";
    for (char name = 'b'; name < 'z'; ++name)
        bomb += fmt::format("<!ENTITY {} '&{};&{};'>", name, static_cast<char>(name - 1), static_cast<char>(name - 1));
    const std::string foreign = "<!DOCTYPE d SYSTEM 'http://example.invalid/x.dtd'>";
    std::string deep;
    for (int i = 0; i < 100'000; ++i) deep += "<a>";
    for (const auto& document : {std::string(), whole.substr(0, whole.size() / 2), lawWith("\xC3\x28"), lawWith("\xC0\xAF"),
                                 std::string("<a><b></a></b>"), "<!DOCTYPE d [<!ENTITY a 'x'>]>" + lawWith("&a;"),
                                 bomb + "]>" + lawWith("&y;"), "<!DOCTYPE d [<!ENTITY a SYSTEM 'file:///etc/passwd'>]>" + lawWith("&a;"),
                                 foreign + lawWith("a&nbsp;b"), // Text that would be lost.
                                 deep})
        EXPECT_FALSE(parse(document, {})) << document.substr(0, 200);
    EXPECT_TRUE(parse(foreign + lawWith("a"), {})) << "a grammar that nobody needs is not fetched";
}

TEST(LegalXMLParser, ReadsTheLawsOfThePortal) {
    const std::filesystem::path laws = QUERLIN_LAWS;
    if (!std::filesystem::is_directory(laws)) GTEST_SKIP() << "no real laws in " << laws;
    for (const auto& folder : std::filesystem::directory_iterator(laws)) {
        const auto law = lawFromArchive({}, contentOf(folder.path() / "xml.zip"));
        ASSERT_TRUE(law) << folder.path() << ": " << law.error();
        EXPECT_TRUE(law->buildDate()) << folder.path();
        EXPECT_FALSE(law->sections.empty()) << folder.path();
    }
    struct Row {
        const char* slug;
        std::size_t sections;
        const char* id;
        const char* text; // A part of it.
    };
    for (const auto& row : {Row{"bgb", 2509, "1814", "(1) Kann ein Volljähriger"}, Row{"btog", 34, "22", "\n\n(2) "},
                            Row{"rbeg_2021", 9, "5", "\n\tAbteilung"}}) {
        const auto law = lawFromArchive({}, contentOf(laws / row.slug / "xml.zip"));
        EXPECT_EQ(law->sections.size(), row.sections) << row.slug;
        const auto section = std::ranges::find(law->sections, row.id, [](const auto& one) { return one.id.view(); });
        ASSERT_NE(section, law->sections.end()) << row.slug;
        EXPECT_TRUE(section->text.view().contains(row.text)) << section->text.view();
    }
}

} // namespace
} // namespace querlin
