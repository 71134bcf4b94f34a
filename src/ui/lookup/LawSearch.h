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

/// What the lookup window asks for, finds and has chosen. The texts are searched in the background; an answer
/// to what isn't asked any more is dropped. Main thread.
class LawSearch {
public:
    /// Who pauses this long has finished typing.
    static constexpr Duration typingPause = std::chrono::milliseconds(220);
    static constexpr Duration copiedTime = std::chrono::milliseconds(1500);

    /// The corpus outlives this.
    LawSearch(Runtime runtime, LegalCorpus& corpus) : runtime_(runtime), corpus_(corpus) {}

    /// Searches after the pause; a further change begins it anew.
    void setQuery(std::string query);
    /// Searches without a pause.
    void searchNow();
    /// The texts are others now: the present query has other hits, too.
    void textsChanged();
    /// Back to nothing asked and nothing found.
    void clear();
    /// One of the hits, or none.
    void select(std::optional<LegalHit> hit) { selection_.set(std::move(hit)); }
    /// Something has been copied: that shows for a moment.
    void markCopied();

    const Published<std::string>& query() const { return query_; }
    const Published<std::vector<LegalHit>>& hits() const { return hits_; }
    const Published<std::optional<LegalHit>>& selection() const { return selection_; }
    const Published<bool>& searching() const { return searching_; }
    const Published<bool>& copied() const { return copied_; }

    /// What stands in place of the hits while there are none.
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
    TaskGroup tasks_; ///< last: what still runs uses all of the above
};

} // namespace querlin
