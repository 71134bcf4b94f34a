#pragma once

#include "foundation/Executor.h"
#include "foundation/Json.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// The professional vocabulary as it lies in the resources. The counts are reported as they stand there.
struct VocabularyFile {
    std::string generated; ///< a date for people
    std::int64_t total = 0;
    std::int64_t priorityCount = 0;
    std::int64_t contextualCount = 0;
    std::vector<std::string> terms;
    std::vector<std::string> contextual; ///< for the recogniser, the most important first
};
/// All members are required.
std::optional<VocabularyFile> readJson(const JsonValue& json, const VocabularyFile*);

/// The words that a recogniser is to favour: the user's own before those of the field. Reads the
/// vocabulary once, at the first need. Any thread.
class VocabularyProvider {
public:
    static constexpr std::string_view fileName = "LegalVocabulary.json";

    /// `background` outlives this; the work on it doesn't hold this.
    VocabularyProvider(const std::filesystem::path& resources, Executor& background);

    /// Reads the vocabulary in the background, so that nobody has to wait for it.
    void preload();

    // Of a vocabulary that is missing or damaged: 0, "–" and nothing.
    std::int64_t totalTerms() const;
    std::int64_t priorityTerms() const;
    std::int64_t contextualCandidates() const;
    std::string generatedOn() const;
    std::vector<std::string> allTerms() const;

    /// The user's terms in their order, then those of the field, until there are `limit`. Of terms that
    /// differ by case alone the first one counts; the user's are trimmed.
    std::vector<std::string> contextualStrings(const std::vector<std::string>& userTerms,
                                               std::int64_t limit) const;

private:
    struct State;
    std::shared_ptr<State> state_;
    Executor& background_;
};

} // namespace querlin
