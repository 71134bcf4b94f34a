#pragma once

#include "foundation/Published.h"
#include "foundation/Runtime.h"
#include "foundation/TaskGroup.h"
#include "legal/LegalCorpus.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// Query, hits and selection of the lookup window. The texts are searched in the background; the result of an
/// outdated query is dropped. Main thread.
class LawSearch {
public:
    /// A pause this long ends the typing and starts the search.
    static constexpr Duration typingPause = std::chrono::milliseconds(220);
    static constexpr Duration copiedTime = std::chrono::milliseconds(1500);

    /// The corpus outlives this.
    LawSearch(Runtime runtime, LegalCorpus& corpus) : runtime_(runtime), corpus_(corpus) {}

    /// Searches after the pause; a further change restarts it.
    void setQuery(std::string query);
    /// Searches without a pause.
    void searchNow();
    /// The law texts have been replaced: searches again.
    void textsChanged();
    /// Clears query, hits and selection.
    void clear();
    /// Selects one of the hits.
    void select(std::optional<LegalHit> hit) { selection_.set(std::move(hit)); }
    /// Text has been copied; `copied` is set for a short time.
    void markCopied();

    const Published<std::string>& query() const { return query_; }
    const Published<std::vector<LegalHit>>& hits() const { return hits_; }
    const Published<std::optional<LegalHit>>& selection() const { return selection_; }
    const Published<bool>& searching() const { return searching_; }
    const Published<bool>& copied() const { return copied_; }

    /// The text shown in place of the hits while there are none.
    std::string_view hint() const;

    /// "§ 5 BGB – Titel", and the text below it.
    static std::string fullText(const LegalHit& hit);

private:
    Task<> runSearch();
    void take(std::vector<LegalHit> found);

    Runtime runtime_;
    LegalCorpus& corpus_;
    Published<std::string> query_;
    Published<std::vector<LegalHit>> hits_;
    Published<std::optional<LegalHit>> selection_;
    Published<bool> searching_{false};
    Published<bool> copied_{false};
    Registration pause_;
    Registration copiedReset_;
    std::uint64_t lastSearch_ = 0;
    TaskGroup tasks_; ///< last: running tasks use all members above
};

} // namespace querlin
