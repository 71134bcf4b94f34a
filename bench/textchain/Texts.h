#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace querlin::bench {

/// A dictation as a recogniser delivers it, of so many words: file notes and letters with commands,
/// citations, dates, hesitations and corrections in a row.
inline std::string dictationOf(std::size_t words) {
    constexpr std::string_view source =
        "Aktenvermerk Doppelpunkt heute habe ich die Betreute in ihrer Wohnung aufgesucht Punkt ähm sie war "
        "freundlich Komma wirkte aber müde und klagte über Schmerzen im Rücken Punkt neuer Absatz der "
        "Pflegedienst "
        "kommt täglich um acht nein um neun Uhr Punkt Rechtsgrundlage ist Paragraph achtzehnhundertvierzehn "
        "Absatz "
        "zwei BGB Punkt Das Gericht hat mit Beschluss vom 3. März 2024 Komma Aktenzeichen XVII 123 24 Komma "
        "die "
        "Betreuung verlängert Punkt also der Punkt ist strittig Komma ob die Kosten für die Brille "
        "übernommen werden "
        "Fragezeichen Bitte teilen Sie mir bis zum Ende des Monats mit Komma welche Unterlagen noch fehlen "
        "Punkt "
        "neue Zeile Mit der Bank wurde vereinbart Komma dass die Daueraufträge angepasst werden "
        "Gedankenstrich die "
        "Miete steigt um vierzig Euro Punkt Weitere Angaben Klammer auf Rentenbescheid Klammer zu liegen bei "
        "Punkt "
        "Sie wünscht ausdrücklich Komma in ihrer eigenen Wohnung zu bleiben und von ihrer Tochter sozusagen "
        "nur an "
        "den Wochenenden besucht zu werden Punkt Die nächste Anhörung findet im Sommer statt Punkt ";
    std::string text;
    std::string_view rest;
    for (std::size_t i = 0; i < words; ++i) {
        if (rest.empty()) rest = source;
        const auto end = rest.find(' ');
        text.append(rest.substr(0, end)).append(i + 1 < words ? " " : "");
        rest.remove_prefix(end + 1);
    }
    return text;
}

/// Texts that make careless patterns take quadratic time or worse; `count` repetitions each.
inline std::vector<std::pair<std::string, std::string>> hostileTexts(std::size_t count) {
    const auto repeated = [count](std::string_view piece) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) text += piece;
        return text;
    };
    return {{"blanks", "a" + repeated(" ") + "b"},
            {"tabs_and_newlines", "a" + repeated("\t\n") + "b"},
            {"commas", repeated(",")},
            {"full_stops_apart", repeated(". ")},
            {"opening_quotes", repeated("„")},
            {"closing_quotes_apart", repeated(" “")},
            {"brackets", repeated("( ") + repeated(" )")},
            {"punkt", repeated("punkt ")},
            {"streiche_das", repeated("a streiche das ")},
            {"klammer_auf", repeated("klammer auf ")},
            {"one_word", repeated("ä")},
            {"umlauts_apart", repeated("ä ")},
            {"decomposed", repeated("o\u0308 ")},
            {"stuttering", repeated("ja ")},
            {"nein", repeated("um nein ")},
            {"hesitations", repeated("ähm, ")},
            {"paragraphs", repeated("§ ")},
            {"one_citation", "§ 5 " + repeated("Absatz 2 ")},
            {"digits", "Az 1 " + repeated("1 ")},
            {"file_number_with_a_gap", "Az 1 1" + repeated(" ") + "x"},
            {"days", repeated("1. ") + "März"},
            {"address_with_gaps", "www" + repeated(" ") + ". a" + repeated(" ") + "."},
            {"labels", "www" + repeated(".a")},
            {"slashes", "https://a.b" + repeated("/ ")},
            {"line_breaks", repeated("\n")},
            {"emoji", repeated("👩‍⚖️")}};
}

} // namespace querlin::bench
