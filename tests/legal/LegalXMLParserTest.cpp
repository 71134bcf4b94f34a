#include "legal/LegalXMLParser.h"

#include "legal/LawEdition.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <filesystem>
#include <random>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

using LegalXMLParser::parse;

std::string ownLaw() { return contentOf(std::filesystem::path(QUERLIN_TEST_LAWS) / "mbtg.xml"); }

/// What is wrong with a document; nothing if it is read.
std::string faultOf(std::string_view document) {
    const auto law = parse(document, {});
    return law ? "" : law.error().description();
}

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
        {"5", 5, "", "§ 5", "Tafel", "Nur ein Titel", "Der zweite Text gilt:\n\ta\tb\n\nEnde\n\nund Schluss.", false},
        {"99999999999999999999", 0, "", "§ 99999999999999999999", "", "Nur ein Titel", "Sehr spät.", false}};
    ASSERT_EQ(law->sections.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto& section = law->sections[i];
        EXPECT_EQ(section, expected[i]) << section.label.view() << " | " << section.title.view() << " | " << section.path.view() << " | "
                                        << section.text.view();
    }
}

TEST(LegalXMLParser, BringsTextIntoItsForm) {
    struct Row {
        const char* content;
        const char* text;
        const char* reason;
    };
    for (const auto& [content, text, reason] : {
             Row{"<P>a</P><P></P><P>b</P>", "a\n\nb", "one empty line at most"},
             Row{"<row><entry>a </entry><entry> b</entry></row>", "a \t b", "a cell's tab stays between blanks"},
             Row{"<tr><td>a</td><td></td><td>c</td></tr>", "a\t\tc", "an empty cell keeps its place"},
             Row{"Lang<BR/>sam<BR/> und <I>schräg</I>", "Lang\nsam\nund schräg", "inner elements join"},
             Row{"a&#xA0;&#xA0;b &#x2003; c", "a b \u2003 c", "no-break blanks fold, others stay"},
             Row{"lang und länger&#xA0; als sechzehn &#xA0;Zeichen  \n  und so&#xA0;\n", "lang und länger als sechzehn Zeichen\nund so",
                 "at any place"},
             Row{"<![CDATA[a <b> c]]>", "a <b> c", "character data"},
         }) {
        const auto law = parse(lawWith(content), {});
        ASSERT_TRUE(law) << reason << ": " << law.error().description();
        ASSERT_EQ(law->sections.size(), 1) << reason;
        EXPECT_EQ(law->sections[0].text, text) << reason;
    }
    EXPECT_TRUE(parse(lawWith(" <P>&#160;</P> "), {})->sections.empty()) << "without text there is no section";
}

TEST(LegalXMLParser, RefusesWhatIsDamagedOrHostile) {
    const auto whole = ownLaw();
    const std::string unreadable = "Gesetzestext nicht lesbar: ";
    const auto ownEntity = unreadable + "eigene Entitäten";
    std::string bomb = "<!DOCTYPE d [<!ENTITY a 'ha'>";
    for (char name = 'b'; name < 'z'; ++name)
        bomb += fmt::format("<!ENTITY {} '&{};&{};'>", name, static_cast<char>(name - 1), static_cast<char>(name - 1));
    const std::string foreign = "<!DOCTYPE d SYSTEM 'http://example.invalid/x.dtd'>";
    for (const auto& [document, fault] : std::vector<std::pair<std::string, std::string>>{
             {"", unreadable},
             {whole.substr(0, whole.size() / 2), unreadable},
             {lawWith("\xC3\x28"), unreadable},
             {lawWith("\xC0\xAF"), unreadable},
             {"<a><b></a></b>", unreadable},
             {"<!DOCTYPE d [<!ENTITY a 'x'>]>" + lawWith("&a;"), ownEntity},
             {bomb + "]>" + lawWith("&y;"), ownEntity},
             {"<!DOCTYPE d [<!ENTITY a SYSTEM 'file:///etc/passwd'>]>" + lawWith("&a;"), ownEntity},
             {foreign + lawWith("a&nbsp;b"), unreadable + "unbekannte Entität"}, // Text that would be lost.
         })
        EXPECT_TRUE(faultOf(document).starts_with(fault)) << document << ": " << faultOf(document);
    EXPECT_EQ(faultOf(foreign + lawWith("a")), "") << "a grammar that nobody needs is not fetched";
    std::string deep;
    for (int i = 0; i < 100'000; ++i) deep += "<a>";
    EXPECT_TRUE(faultOf(deep).starts_with(unreadable + "zu tief verschachtelt"));
    EXPECT_TRUE(parse("<dokumente/>", {})->sections.empty()) << "no section is no error here";
}

TEST(LegalXMLParser, ReadsTheLawsOfThePortal) {
    const std::filesystem::path laws = QUERLIN_LAWS;
    if (!std::filesystem::is_directory(laws)) GTEST_SKIP() << "no real laws in " << laws;
    struct Row {
        const char* slug;
        std::size_t sections;
        const char* stand;
        const char* id;
        const char* title;
        const char* path;
        const char* text; // A part of it.
    };
    for (const auto& row : {
             Row{"bgb", 2509, "zuletzt geändert", "1814", "Voraussetzungen", "Titel 3 – Rechtliche Betreuung / ",
                 "(1) Kann ein Volljähriger"},
             Row{"famfg", 523, "Zuletzt geändert", "278", "Anhörung", "Verfahren in Betreuungssachen", "(1) Das Gericht hat"},
             Row{"btog", 34, "Zuletzt geändert", "22", "Vereinbarung", "Abschnitt 3 – Rechtliche Betreuer / Titel 2", "\n\n(2) "},
             Row{"rbeg_2021", 9, "Zuletzt geändert", "5", "Verbrauchsausgaben", "", "\n\tAbteilung"},
             Row{"sgb_12", 193, "Zuletzt geändert", "41", "Leistungsberechtigte", "Grundsicherung im Alter", "\t"},
         }) {
        LegalManifestEntry entry;
        entry.abbr = row.slug;
        const auto law = lawFromArchive(entry, contentOf(laws / row.slug / "xml.zip"));
        ASSERT_TRUE(law) << row.slug << ": " << law.error();
        EXPECT_TRUE(law->stand.view().starts_with(row.stand)) << row.slug << ": " << law->stand.view();
        EXPECT_TRUE(law->buildDate()) << row.slug;
        EXPECT_EQ(law->sections.size(), row.sections) << row.slug;
        const auto section = std::ranges::find(law->sections, row.id, [](const auto& one) { return one.id.view(); });
        ASSERT_NE(section, law->sections.end()) << row.slug;
        EXPECT_TRUE(section->title.view().contains(row.title)) << section->title.view();
        EXPECT_TRUE(section->path.view().contains(row.path)) << section->path.view();
        EXPECT_TRUE(section->text.view().contains(row.text)) << section->text.view();
    }
}

TEST(LegalXMLParser, SurvivesAnyDamage) {
    const auto whole = ownLaw();
    std::mt19937 random(4);
    for (int round = 0; round < 3000; ++round) {
        auto document = whole;
        for (int i = 0; i < 1 + round % 3; ++i)
            document[std::uniform_int_distribution<std::size_t>(0, document.size() - 1)(random)] = static_cast<char>(random());
        const auto law = parse(document, {});
        for (const auto& section : law ? law->sections : std::vector<LegalSection>())
            ASSERT_FALSE(section.text.view().empty() || section.id.view().empty());
    }
}

} // namespace
} // namespace querlin
