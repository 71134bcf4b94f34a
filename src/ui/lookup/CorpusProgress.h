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

    /// Whether the laws are loaded without being asked for.
    enum class Loading : std::uint8_t { Automatic, OnRequest };

    /// Nothing where there are texts already.
    static std::optional<CorpusProgress> of(const LegalUpdateService::Stage& stage, bool hasTexts,
                                            Loading loading);
};

} // namespace querlin
