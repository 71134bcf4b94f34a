#include "ui/lookup/CorpusProgress.h"

#include <fmt/format.h>

namespace querlin {

namespace {

using namespace LegalUpdateStage;
using Loading = CorpusProgress::Loading;

std::optional<double> shareOf(std::size_t done, std::size_t total) {
    if (total == 0) return std::nullopt;
    return static_cast<double>(done) / static_cast<double>(total);
}

struct Describe {
    Loading loading;

    CorpusProgress operator()(const Checking& stage) const {
        return {.text = "Das Gesetzesportal wird gefragt …", .share = shareOf(stage.done, stage.total)};
    }
    CorpusProgress operator()(const Downloading& stage) const {
        return {.text = fmt::format("Die Gesetze werden geladen: {} ({} von {})", stage.law, stage.done + 1,
                                    stage.total),
                .share = shareOf(stage.done, stage.total)};
    }
    CorpusProgress operator()(const Applying& /*stage*/) const {
        return {.text = "Die Gesetze werden gespeichert …", .share = 1.0};
    }
    CorpusProgress operator()(const Failed& stage) const {
        return ended(fmt::format(
            "{}\nBitte prüfen Sie die Internetverbindung, und laden Sie die Gesetze dann noch einmal.",
            stage.message));
    }
    template<class Other>
    CorpusProgress operator()(const Other& /*stage*/) const {
        if (loading == Loading::OnRequest) return ended("Noch keine Gesetze geladen – jetzt laden");
        return ended("Die Gesetzestexte werden einmalig geladen (Netzverbindung nötig); danach liegen sie "
                     "vollständig auf diesem Rechner.");
    }

    static CorpusProgress ended(std::string text) {
        return {.text = std::move(text), .share = std::nullopt, .isUnderWay = false};
    }
};

} // namespace

std::optional<CorpusProgress> CorpusProgress::of(const LegalUpdateService::Stage& stage, bool hasTexts,
                                                 Loading loading) {
    if (hasTexts) return std::nullopt;
    return std::visit(Describe{loading}, stage);
}

} // namespace querlin
