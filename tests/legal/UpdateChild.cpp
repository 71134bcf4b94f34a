// Updates two laws again and again, to be killed at any point. Tells "u" before each update.
//
//     update_child ⟨folder⟩

#include <gtest/gtest.h>

#include "support/FakePortal.h"
#include "support/Laws.h"

#include "foundation/Json.h"
#include "legal/LegalUpdateService.h"
#include "support/ManualTime.h"

#include <cstdlib>
#include <random>

#include <unistd.h>

namespace querlin {
namespace {

/// What doesn't pack well, so that writing takes its time.
std::string longText(int version) {
    std::mt19937 random(static_cast<unsigned>(version));
    auto text = fmt::format("{:040}", version);
    for (int i = 0; i < 3000; ++i) text += fmt::format(" {:x}", random());
    return text;
}

int updateForEver(const std::filesystem::path& folder) {
    ManualTime time;
    const LegalCorpusStore store(folder / "Gesetze", folder / "Ressourcen");
    if (!store.bundledManifest()) {
        LegalManifest manifest;
        LegalCorpusFile corpus;
        for (const auto* abbr : {"A", "B"}) {
            auto& row = manifest.laws.emplace_back();
            row.abbr = abbr;
            row.source = fmt::format("https://portal.example/{}/xml.zip", abbr);
            row.lastModified = "0";
            corpus.laws.push_back(lawOf(abbr, {}));
            corpus.laws.back().stand = "Stand 0";
        }
        writeCorpus(folder / "Ressourcen", corpus);
        writeFile(folder / "Ressourcen/LegalManifest.json", Json::compact(toJson(manifest)));
    }
    PreferencesStore preferences(folder / "Einstellungen.json", time.runtime());
    AppSettings settings(preferences);
    LegalCorpus corpus(store, time.runtime());
    FakePortal portal(time);
    LegalUpdateService service(settings, store, corpus, portal, time.runtime());
    while (true) {
        const auto version = std::stoi(store.currentManifest()->laws[0].lastModified) + 1;
        for (const auto* abbr : {"A", "B"})
            portal.pages[fmt::format("https://portal.example/{}/xml.zip", abbr)] = {std::to_string(version), lawArchive(abbr, 2, longText(version))};
        if (::write(STDOUT_FILENO, "u", 1) != 1) std::abort();
        service.checkNow();
        time.advance(seconds(2));
        if (!std::holds_alternative<LegalUpdateStage::Updated>(service.stage.get())) return EXIT_FAILURE;
    }
}

} // namespace
} // namespace querlin

int main(int count, char** arguments) { return count == 2 ? querlin::updateForEver(arguments[1]) : EXIT_FAILURE; }
