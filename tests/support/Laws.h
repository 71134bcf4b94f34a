#pragma once

#include "legal/CorpusContainer.h"
#include "legal/LegalCorpusFile.h"
#include "legal/LegalCorpusStore.h"
#include "support/TempFolder.h"

#include <string>
#include <vector>

namespace querlin {

inline LegalSection sectionOf(std::string id, std::string title, std::string text) {
    LegalSection section;
    const auto digits = id.find_first_not_of("0123456789");
    section.number = std::stoll(id);
    section.suffix = digits == std::string::npos ? "" : id.substr(digits);
    section.label = "§ " + id;
    section.id = std::move(id);
    section.title = std::move(title);
    section.text = std::move(text);
    return section;
}

inline LegalLaw lawOf(std::string abbr, std::vector<LegalSection> sections) {
    LegalLaw law;
    law.name = "Gesetz " + abbr;
    law.source = "https://portal.example/" + abbr + "/xml.zip";
    law.builddate = "20240102030405";
    law.stand = "Zuletzt geändert am 1.2.2023";
    law.abbr = std::move(abbr);
    law.sections = std::move(sections);
    return law;
}

/// Puts a corpus where the delivered one lies, or the stored one.
inline void writeCorpus(const std::filesystem::path& folder, const LegalCorpusFile& corpus) {
    std::filesystem::create_directories(folder);
    writeFile(folder / LegalCorpusStore::corpusName, *CorpusContainer::deflate(corpus.toJson()));
}

/// A user's folder for laws, and the delivered files, all in a temporary folder.
struct LawFolders {
    TempFolder folder;
    LegalCorpusStore store{folder / "Gesetze", folder / "Ressourcen"};

    void deliver(std::vector<LegalLaw> laws) { writeCorpus(folder / "Ressourcen", {"2026-01-01", std::move(laws)}); }
};

} // namespace querlin
