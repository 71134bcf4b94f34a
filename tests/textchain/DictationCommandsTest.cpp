#include "textchain/DictationCommands.h"

#include "Rows.h"

namespace querlin {
namespace {

using DictationCommands::Mode;
using Names = std::vector<std::string>;

void expectAll(Mode mode, const std::vector<Row>& rows) {
    querlin::expectAll([mode](const std::string& text) { return DictationCommands::apply(text, mode).text; }, rows);
}

TEST(DictationCommands, WriteMarksAndLayout) {
    expectAll(Mode::prose,
              {{"", "", "nothing"},
               {"Sehr geehrte Damen und Herren Komma neue Zeile wir bitten Sie den Betreuten in die Liste aufzunehmen Punkt neuer "
                "Absatz Mit freundlichen Grüßen neue Zeile Hanna Quellmann",
                "Sehr geehrte Damen und Herren,\nWir bitten Sie den Betreuten in die Liste aufzunehmen.\n\nMit freundlichen "
                "Grüßen\nHanna Quellmann",
                "a letter"},
               {"Ende (Komma) aus Punkt.", "Ende, aus.", "a command takes its own marks along"},
               {"Frage Fragezeichen ja Ausrufezeichen nein Ausrufungszeichen", "Frage? Ja! Nein!", "sentence marks"},
               {"Wort Gedankenstrich Wort", "Wort – Wort", "the dash brings its blanks"},
               {"a Doppelpunkt runde Klammer auf b runde Klammer zu c", "A: (b) c", "the longer phrase; a blank behind the colon"},
               {"Anführungszeichen Hallo Anführungszeichen und Anführungszeichen ja", "„Hallo“ und „ja", "quotes take turns"},
               {"Zitat Anfang ja Zitat Ende Anführungszeichen unten nein Anführungszeichen oben Anführungszeichen x", "„Ja“„nein“„x",
                "named quotes don't flip the others"},
               {"Eins\n\n\nZwei \n drei", "Eins\n\nZwei\nDrei", "delivered breaks, one empty line at most"},
               {"1. mai und d.h. nichts", "1. Mai und d. H. Nichts", "any point ends a sentence"},
               {"a ( b ) „ c “", "A (b) „c“", "spacing within brackets and quotes"},
               {"u\u0308ber Pu\u0308nktchen", "U\u0308ber Pu\u0308nktchen", "a decomposed letter is one character"}});
}

TEST(DictationCommands, TellNounsFromCommands) {
    expectAll(Mode::prose, {{"der Punkt ist strittig", "Der Punkt ist strittig", "an article in front, a verb behind"},
                            {"zweitens Punkt ein neuer Gedanke", "Zweitens. Ein neuer Gedanke", "neither"},
                            {"der Anführungszeichen unten", "Der „", "the row that matched first isn't doubtful"},
                            {"der neue Zeile", "Der", "breaks are never nouns"},
                            {"der – Punkt – ist", "Der –. – Ist", "a lone mark hides both neighbours"}});
    EXPECT_EQ(DictationCommands::apply("der Punkt Punkt", Mode::prose).appliedCommands, (Names{"punkt"}))
        << "only the word at hand stays, and the next is looked at anew";
}

TEST(DictationCommands, TakeBack) {
    expectAll(Mode::prose, {{"Erster Satz. Zweiter Satz streiche das", "Erster Satz.", "the last sentence"},
                            {"Erster Satz. Zweiter Satz. das streichen Dritter", "Erster Satz. Dritter", "one that has its mark"},
                            {"Eins Punkt zwei neue Zeile drei streich das vier", "Eins. Zwei\nVier", "a break ends a sentence"},
                            {"gar nichts streiche das aber dies", "Aber dies", "without a mark everything so far"},
                            {"a. b. Letzten Satz löschen, streiche das c", "C", "twice, with marks and case"},
                            {"streiche dass", "Streiche dass", "no command"}});
    const auto outcome = DictationCommands::apply("Hallo Komma Welt Alles verwerfen und mehr", Mode::prose);
    EXPECT_EQ(outcome, (DictationCommands::Outcome{"", true, {"komma", "alles verwerfen"}}));
    EXPECT_TRUE(DictationCommands::apply("diktat verwerfen.", Mode::compact).discardedEverything);
}

TEST(DictationCommands, CloseUpInASearchField) {
    expectAll(Mode::compact, {{"www Punkt Beispiel Punkt de", "www.Beispiel.de", "an address in the case as spoken"},
                              {"Müller Komma Hans", "Müller,Hans", "no blank behind marks"},
                              {"👩‍⚖️ ja 👍 nein", "👩‍⚖️ja 👍nein", "emoji are neither letters nor numbers"}});
}

} // namespace
} // namespace querlin
