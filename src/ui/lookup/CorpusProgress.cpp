#include "ui/lookup/CorpusProgress.h"

#include <fmt/format.h>

namespace querlin {

namespace {

using namespace LegalUpdateStage;

std::optional<double> shareOf(std::size_t done, std::size_t total) {
    if (total == 0) return std::nullopt;
    return static_cast<double>(done) / static_cast<double>(total);
}

struct Teller {
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
        return ended(stage.message,
                     "Bitte prüfen Sie die Internetverbindung, und laden Sie die Gesetze dann noch einmal.");
    }
    template<class Other>
    CorpusProgress operator()(const Other& /*stage*/) const {
        return ended("Noch sind keine Gesetzestexte da.",
                     "Sie kommen vom Gesetzesportal des Bundes; dafür braucht es eine Internetverbindung.");
    }

    static CorpusProgress ended(std::string_view what, std::string_view remedy) {
        return {.text = fmt::format("{}\n{}", what, remedy), .share = std::nullopt, .isUnderWay = false};
    }
};

} // namespace

std::optional<CorpusProgress> CorpusProgress::of(const LegalUpdateService::Stage& stage, bool hasTexts) {
    if (hasTexts) return std::nullopt;
    return std::visit(Teller(), stage);
}

} // namespace querlin
