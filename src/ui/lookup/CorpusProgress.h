#pragma once

#include "legal/LegalUpdateService.h"

#include <optional>
#include <string>

namespace querlin {

/// The progress of the very first load of the laws, in words for the user.
struct CorpusProgress {
    std::string text;
    /// From 0 to 1; unset while the amount of work is unknown.
    std::optional<double> share;
    bool isUnderWay = true;

    bool operator==(const CorpusProgress&) const = default;

    /// Whether the laws are loaded without being asked for.
    enum class Loading : std::uint8_t { Automatic, OnRequest };

    /// Unset if there are texts already.
    static std::optional<CorpusProgress> of(const LegalUpdateService::Stage& stage, bool hasTexts,
                                            Loading loading);
};

} // namespace querlin
