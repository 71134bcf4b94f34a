#pragma once

#include <cstdint>
#include <string>

namespace querlin {

/// Why a law, or the whole corpus, could not be renewed.
struct LegalUpdateError {
    enum class Kind : std::uint8_t { badSource, empty, compressionFailed, notReadable };

    Kind kind = Kind::badSource;
    /// Of the law; empty for the corpus.
    std::string abbr;

    /// In German, for the user and the log.
    std::string description() const;
};

} // namespace querlin
