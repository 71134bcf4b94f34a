#pragma once

#include "support/Laws.h"

namespace querlin {

/// Two laws in words of our own.
inline std::vector<LegalLaw> someLaws() {
    auto first = sectionOf("1814", "<i>Wann</i> geholfen wird",
                           "Wer <b>nicht</b> allein zurechtkommt, dem wird geholfen.\n\nAber nur so weit wie nötig.");
    first.path = "Viertes Buch / Hilfe";
    first.priority = true;
    return {lawOf("BGB", {first, sectionOf("1815", "Aufgaben", "Was zu tun ist, wird benannt; geholfen wird gern.")}),
            lawOf("FamFG", {sectionOf("1", "", "Hier steht, wie verfahren wird."),
                            sectionOf("278", "Gespräch", "Man redet miteinander, ehe geholfen wird.")})};
}

} // namespace querlin
