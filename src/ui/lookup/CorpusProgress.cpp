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
        return {.text = "Das Gesetzesportal wird gefragt …", .share = shareOf(stage.done, stage.total), .isUnderWay = true};
    }
    CorpusProgress operator()(const Downloading& stage) const {
        return {.text = fmt::format("Die Gesetze werden geladen: {} ({} von {})", stage.law, stage.done + 1, stage.total),
                .share = shareOf(stage.done, stage.total),
                .isUnderWay = true};
    }
    CorpusProgress operator()(const Applying& /*stage*/) const {
        return {.text = "Die Gesetze werden gespeichert …", .share = 1.0, .isUnderWay = true};
    }
    CorpusProgress operator()(const Failed& stage) const { return ended(stage.message); }
    template<class Other>
    CorpusProgress operator()(const Other& /*stage*/) const {
        return ended("Noch sind keine Gesetzestexte da.");
    }

    static CorpusProgress ended(const std::string& what) {
        return {.text = what + "\nSie werden vom Gesetzesportal des Bundes geladen: im Menü unter "
                               "„Gesetzesstände aktualisieren…“.",
                .share = std::nullopt,
                .isUnderWay = false};
    }
};

} // namespace

std::optional<CorpusProgress> CorpusProgress::of(const LegalUpdateService::Stage& stage, bool hasTexts) {
    if (hasTexts) return std::nullopt;
    return std::visit(Teller(), stage);
}

} // namespace querlin
