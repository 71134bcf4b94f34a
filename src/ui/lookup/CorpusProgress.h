#pragma once

#include "legal/LegalUpdateService.h"

#include <optional>
#include <string>

namespace querlin {

/// How far the very first load of the laws has come, for the user.
struct CorpusProgress {
    std::string text;
    /// From 0 to 1; nothing where no measure is known.
    std::optional<double> share;
    bool isUnderWay = true;

    bool operator==(const CorpusProgress&) const = default;

    /// Nothing where there are texts already, or nothing to say.
    static std::optional<CorpusProgress> of(const LegalUpdateService::Stage& stage, bool hasTexts);
};

} // namespace querlin
